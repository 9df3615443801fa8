#include "ambrelio/engine/jetfile/properties.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

constexpr std::string_view kJet4Magic{"MR2\0", 4};
constexpr std::string_view kJet3Magic{"KKD\0", 4};
constexpr size_t kMagicBytes = 4;
constexpr size_t kBlockHeader = 6;  // length, kind
constexpr size_t kValueHeader = 8;  // length, flag, type, name, length of the value
constexpr uint16_t kNames = 0x80;

void AppendBlock(Bytes& blob, uint16_t kind, const Bytes& body) {
  Append(blob, body.size() + kBlockHeader, 4);
  Append(blob, kind, 2);
  Append(blob, body);
}

}  // namespace

Properties::Properties(const JetFile& file, ByteView blob) {
  if (blob.empty()) return;
  const ByteView magic = blob.Part(0, kMagicBytes);
  if (magic.Text() != (file.format().jet4 ? kJet4Magic : kJet3Magic)) {
    throw Damage(blob.PlaceOf(0), "properties do not begin as they should");
  }
  magic_ = magic.Copy();
  for (size_t at = kMagicBytes; at < blob.size();) {
    const size_t length = blob.U32(at);
    const uint16_t kind = blob.U16(at + 4);
    if (length < kBlockHeader) {
      throw Damage(blob.PlaceOf(at), "a block of properties cannot be so short");
    }
    const ByteView body = blob.Part(at, length).From(kBlockHeader);
    if (kind == kNames) {
      ReadNames(file, body);
    } else {
      ReadOwner(file, kind, body);
    }
    at += length;
  }
}

void Properties::ReadNames(const JetFile& file, ByteView body) {
  if (!names_.empty() || !owners_.empty()) {
    throw Damage(body.PlaceOf(0), "the names of properties do not stand at their beginning");
  }
  for (size_t at = 0; at < body.size();) {
    const size_t size = body.U16(at);
    names_.push_back(file.PlainText(body.Part(at + 2, size)));
    at += 2 + size;
  }
}

void Properties::ReadOwner(const JetFile& file, uint16_t kind, ByteView body) {
  const size_t header = body.U32(0);
  const size_t name_size = body.U16(4);
  if (header != kBlockHeader + name_size) {
    throw Damage(body.PlaceOf(0), "the owner of properties has a name of two lengths");
  }
  PropertyOwner& owner = owners_.emplace_back();
  owner.kind = kind;
  owner.name = file.PlainText(body.Part(kBlockHeader, name_size));
  for (size_t at = header; at < body.size();) {
    const size_t length = body.U16(at);
    const size_t name = body.U16(at + 4);
    const size_t size = body.U16(at + 6);
    if (length != kValueHeader + size || name >= names_.size()) {
      throw Damage(body.PlaceOf(at), "a property has two lengths, or no name");
    }
    owner.properties.push_back({names_[name], body.U8(at + 2),
                                static_cast<ColumnType>(body.U8(at + 3)),
                                body.Part(at + kValueHeader, size).Copy()});
    at += length;
  }
}

Bytes Properties::Serialise(const JetFile& file) const {
  std::vector<std::string> names = names_;
  Bytes owners;
  for (const PropertyOwner& owner : owners_) {
    const Bytes name = file.PlainBytes(owner.name);
    Bytes body;
    Append(body, kBlockHeader + name.size(), 4);
    Append(body, name.size(), 2);
    Append(body, name);
    for (const Property& property : owner.properties) {
      auto known = std::find(names.begin(), names.end(), property.name);
      if (known == names.end()) known = names.insert(names.end(), property.name);
      Append(body, kValueHeader + property.value.size(), 2);
      body.push_back(property.flag);
      body.push_back(static_cast<uint8_t>(property.type));
      Append(body, static_cast<uint64_t>(known - names.begin()), 2);
      Append(body, property.value.size(), 2);
      Append(body, property.value);
    }
    AppendBlock(owners, owner.kind, body);
  }
  if (names.empty() && owners.empty()) return magic_;
  Bytes list;
  for (const std::string& name : names) {
    const Bytes text = file.PlainBytes(name);
    Append(list, text.size(), 2);
    Append(list, text);
  }
  const std::string_view magic = file.format().jet4 ? kJet4Magic : kJet3Magic;
  Bytes blob(magic.begin(), magic.end());
  AppendBlock(blob, kNames, list);
  Append(blob, owners);
  return blob;
}

const Property* Properties::Find(std::string_view column, std::string_view property) const {
  for (const PropertyOwner& owner : owners_) {
    const bool wanted = column.empty() ? owner.kind == PropertyOwner::kObject
                                       : owner.kind == PropertyOwner::kColumn;
    if (!wanted || !SameText(owner.name, column)) continue;
    for (const Property& candidate : owner.properties) {
      if (SameText(candidate.name, property)) return &candidate;
    }
  }
  return nullptr;
}

bool Properties::Flag(std::string_view column, std::string_view property) const {
  const Property* found = Find(column, property);
  return found != nullptr && !found->value.empty() && found->value.front() != 0;
}

std::string Properties::Text(const JetFile& file, std::string_view column,
                             std::string_view property) const {
  const Property* found = Find(column, property);
  return found == nullptr ? "" : file.PlainText({found->value, {}});
}

}  // namespace ambrelio::jetfile
