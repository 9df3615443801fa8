#include "ambrelio/engine/jetfile/header.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/rc4.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kMagicAt = 4;
constexpr size_t kVersionAt = 0x14;
constexpr size_t kMaskedAt = 0x18;
constexpr size_t kFreeMapAt = 0x18;
constexpr size_t kReleasedMapAt = 0x1C;
constexpr size_t kSystemTablesAt = 0x20;
constexpr size_t kJet3LanguageAt = 0x3A;
constexpr size_t kCodePageAt = 0x3C;
constexpr size_t kKeyAt = 0x3E;
constexpr size_t kPasswordAt = 0x42;
constexpr size_t kJet3PasswordBytes = 20;
constexpr size_t kJet4PasswordBytes = 40;
constexpr size_t kBuildAt = 0x6A;
constexpr size_t kLanguageAt = 0x6E;
constexpr size_t kSortIdAt = 0x70;
constexpr size_t kCommitEntries = 256;
constexpr uint32_t kMaskKey = 0x6B39DAC7;
// Behind the part that is masked stand two constants.
constexpr size_t kFirstConstantAt = 0x98;
constexpr uint32_t kFirstConstant = 0x654;
constexpr size_t kFormatNameAt = 0x9C;
constexpr std::string_view kFormatName = "4.0";
// What a new file says of itself.
constexpr uint16_t kWindows1252 = 1252;
constexpr uint32_t kBuild = 9756;  // of the original engine
constexpr uint16_t kNewFileLanguage = 0x0409;
constexpr uint32_t kFirstSystemTable = 2;
constexpr uint16_t kIdle = 0x0100;  // of a user who has not written yet

constexpr std::string_view kJetMagic{"Standard Jet DB\0", 16};
constexpr std::string_view kAceMagic{"Standard ACE DB\0", 16};

std::string MagicOf(ByteView bytes) { return bytes.Part(kMagicAt, kJetMagic.size()).Text(); }

// The date's whole days, as the password field is masked with them. A date beyond all calendars is
// no reason to fail: its file has a password that nobody knows.
uint32_t PasswordMask(double created) {
  if (!(std::abs(created) < 0x7FFFFFFF)) return 0;
  return static_cast<uint32_t>(static_cast<int32_t>(created));
}

std::string Jet4Password(ByteView field, uint32_t mask) {
  std::u16string units;
  for (size_t at = 0; at < field.size(); at += 2) {
    const auto unit = static_cast<char16_t>(field.U16(at) ^ (mask >> (8 * (at % 4)) & 0xFFFF));
    if (unit == 0) break;
    units += unit;
  }
  return Utf16ToUtf8(units);
}

Bytes Jet4PasswordField(std::string_view password, uint32_t mask) {
  std::u16string units = Utf8ToUtf16(password);
  if (units.size() > kJet4PasswordBytes / 2) {
    Refuse(dao::DaoError::kWrongPassword,
           "Not a valid password: it has more than twenty characters.");
  }
  units.resize(kJet4PasswordBytes / 2);
  Bytes field;
  for (const char16_t unit : units) {
    Append(field, unit ^ (mask >> (8 * (field.size() % 4)) & 0xFFFF), 2);
  }
  return field;
}

std::string Jet3Password(ByteView field) {
  const std::string text = field.Text();
  return Windows1252ToUtf8(text.substr(0, text.find('\0')));
}

}  // namespace

bool LooksLikeJet(std::string_view first_bytes) {
  if (first_bytes.size() < kMagicAt + kJetMagic.size()) return false;
  const std::string_view magic = first_bytes.substr(kMagicAt, kJetMagic.size());
  return magic == kJetMagic || magic == kAceMagic;
}

const Format& RecogniseFormat(ByteView first_bytes) {
  using dao::DaoError;
  if (first_bytes.size() < kMaskedAt) {
    Refuse(DaoError::kUnrecognisedFormat,
           "Unrecognised database format: the file has no more than " +
               std::to_string(first_bytes.size()) + " bytes.");
  }
  const std::string magic = MagicOf(first_bytes);
  const uint32_t version = first_bytes.U32(kVersionAt);
  if (magic == kAceMagic || (magic == kJetMagic && version > 1)) {
    Refuse(DaoError::kUnrecognisedFormat,
           "Unrecognised database format: the file is of Access 2007 or later (version " +
               std::to_string(version) + "); only those of Access 97 to 2003 can be read.");
  }
  if (magic != kJetMagic || first_bytes.U32(0) != static_cast<uint32_t>(PageType::kHeader)) {
    Refuse(DaoError::kUnrecognisedFormat,
           "Unrecognised database format: the file does not begin as a Jet database does.");
  }
  return version == 0 ? kJet3 : kJet4;
}

Header ParseHeader(ByteView page) {
  Header header;
  header.format = &RecogniseFormat(page);
  const Format& format = *header.format;
  Bytes clear = page.Part(0, format.page_size).Copy();
  MaskHeader(clear, format);
  const ByteView view(clear, page.PlaceOf(0));

  header.free_map = ReadRowPointer(view, kFreeMapAt);
  header.released_map = ReadRowPointer(view, kReleasedMapAt);
  for (size_t i = 0; i < header.system_tables.size(); ++i) {
    header.system_tables[i] = view.U32(kSystemTablesAt + 4 * i);
  }
  header.code_page = view.U16(kCodePageAt);
  header.key = view.U32(kKeyAt);
  if (format.jet4) {
    header.language = view.U16(kLanguageAt);
    header.sort_id = view.U8(kSortIdAt);
    header.collation_version = view.U8(kSortIdAt + 1);
    header.created = view.F64(format.created_at);
    header.password =
        Jet4Password(view.Part(kPasswordAt, kJet4PasswordBytes), PasswordMask(header.created));
  } else {
    header.language = view.U16(kJet3LanguageAt);
    header.password = Jet3Password(view.Part(kPasswordAt, kJet3PasswordBytes));
  }
  for (size_t i = 0; i < kCommitEntries; ++i) {
    header.commits.push_back(view.U16(format.commit_table_at + 2 * i));
  }
  return header;
}

Bytes NewHeader(double created, std::string_view password) {
  Bytes page(kJet4.page_size);
  const auto put_text = [&page](size_t at, std::string_view text) {
    std::copy(text.begin(), text.end(), page.begin() + static_cast<std::ptrdiff_t>(at));
  };
  Put(page, 0, static_cast<uint32_t>(PageType::kHeader), 4);
  put_text(kMagicAt, kJetMagic);
  Put(page, kVersionAt, 1, 4);
  Put(page, kFreeMapAt, RowPointerBits({kGlobalMapPage, 0}), 4);
  Put(page, kReleasedMapAt, RowPointerBits({kGlobalMapPage, 1}), 4);
  for (size_t i = 0; i < std::tuple_size_v<decltype(Header::system_tables)>; ++i) {
    Put(page, kSystemTablesAt + 4 * i, kFirstSystemTable + i, 4);
  }
  Put(page, kCodePageAt, kWindows1252, 2);
  const Bytes field = Jet4PasswordField(password, PasswordMask(created));
  std::copy(field.begin(), field.end(), page.begin() + kPasswordAt);
  Put(page, kBuildAt, kBuild, 4);
  Put(page, kLanguageAt, kNewFileLanguage, 2);
  Put(page, kJet4.created_at, std::bit_cast<uint64_t>(created), 8);
  MaskHeader(page, kJet4);
  Put(page, kFirstConstantAt, kFirstConstant, 4);
  put_text(kFormatNameAt, kFormatName);
  // Whoever has the file for himself is the first user, and has written it.
  for (size_t i = 0; i < kCommitEntries; ++i) {
    Put(page, kJet4.commit_table_at + 2 * i, i == 0 ? kIdle + 1 : kIdle, 2);
  }
  return page;
}

void MaskHeader(std::span<uint8_t> page, const Format& format) {
  Rc4(kMaskKey, page.subspan(kMaskedAt, format.masked_bytes));
}

void CheckPassword(const Header& header, std::string_view password) {
  if (header.password.empty() || header.password == password) return;
  dao::Raise(dao::DaoError::kWrongPassword, dao::source::kWorkspace);
}

}  // namespace ambrelio::jetfile
