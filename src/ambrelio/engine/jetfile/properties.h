// The properties of an object and of its columns: the blob that the catalogue keeps of each.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

struct Property {
  std::string name;
  uint8_t flag = 0;  // 1 for what is part of the design, 0 for what an interface keeps
  ColumnType type = ColumnType::kText;
  Bytes value;
};

// The properties of the object itself, or of one of its columns.
struct PropertyOwner {
  static constexpr uint16_t kObject = 0x00;
  static constexpr uint16_t kColumn = 0x01;

  uint16_t kind = kObject;
  std::string name;  // of the column; "" for the object
  std::vector<Property> properties;
};

class Properties {
 public:
  Properties() = default;
  // Raises Damage. No bytes are no properties. `place` is what errors name.
  Properties(const JetFile& file, ByteView blob);

  // The same bytes as were read, as long as nothing was changed.
  Bytes Serialise(const JetFile& file) const;

  std::vector<PropertyOwner>& owners() { return owners_; }
  const std::vector<PropertyOwner>& owners() const { return owners_; }

  // Null when there is none. Names are compared without case; "" is the object itself.
  const Property* Find(std::string_view column, std::string_view property) const;
  // What a flag of a column says, False when it has none.
  bool Flag(std::string_view column, std::string_view property) const;
  // A text of a column, "" when it has none.
  std::string Text(const JetFile& file, std::string_view column, std::string_view property) const;

 private:
  void ReadNames(const JetFile& file, ByteView body);
  void ReadOwner(const JetFile& file, uint16_t kind, ByteView body);

  Bytes magic_;
  std::vector<std::string> names_;  // as the blob lists them
  std::vector<PropertyOwner> owners_;
};

}  // namespace ambrelio::jetfile
