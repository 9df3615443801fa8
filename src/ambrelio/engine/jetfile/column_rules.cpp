#include "ambrelio/engine/jetfile/column_rules.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/catalogue_writer.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/properties.h"
#include "ambrelio/engine/jetfile/whole_change.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

constexpr const char* kRequired = "Required";
constexpr const char* kAllowZeroLength = "AllowZeroLength";
constexpr const char* kDefaultValue = "DefaultValue";
constexpr uint8_t kOfTheDesign = 1;

Properties PropertiesOf(const JetFile& file, const CatalogueObject& table) {
  return {file, {table.properties, {table.row.page, 0}}};
}

// What of the table's row changes.
NamedValues Changed(const JetFile& file, const CatalogueObject& table,
                    const Properties& properties) {
  const Bytes blob = properties.Serialise(file);
  if (blob == table.properties) return {};
  return {{"LvProp", std::string(blob.begin(), blob.end())}};
}

void RequireColumn(const JetFile& file, const CatalogueObject& table, std::string_view column) {
  if (ReadDefinition(file, table.definition_page()).FindColumn(column) != nullptr) return;
  dao::Raise(dao::DaoError::kNotInCollection, dao::source::kFields, std::string(column));
}

bool IsColumn(const PropertyOwner& owner, std::string_view column) {
  return owner.kind == PropertyOwner::kColumn && SameText(owner.name, column);
}

PropertyOwner& OwnerOf(Properties& properties, std::string_view column) {
  auto& owners = properties.owners();
  const auto found = std::find_if(owners.begin(), owners.end(),
                                  [column](const auto& owner) { return IsColumn(owner, column); });
  if (found != owners.end()) return *found;
  owners.push_back({PropertyOwner::kColumn, std::string(column), {}});
  return owners.back();
}

void Set(Properties& properties, std::string_view column, const char* name, ColumnType type,
         const Bytes& value) {
  PropertyOwner& owner = OwnerOf(properties, column);
  const auto found =
      std::find_if(owner.properties.begin(), owner.properties.end(),
                   [name](const Property& property) { return SameText(property.name, name); });
  if (found != owner.properties.end()) {
    found->value = value;
  } else {
    owner.properties.push_back({name, kOfTheDesign, type, value});
  }
}

// A flag that is not there is False.
void SetFlag(Properties& properties, std::string_view column, const char* name, bool flag) {
  if (properties.Flag(column, name) == flag) return;
  Set(properties, column, name, ColumnType::kBoolean, {static_cast<uint8_t>(flag ? 1 : 0)});
}

void SetText(const JetFile& file, Properties& properties, std::string_view column, const char* name,
             const std::string& text) {
  if (properties.Text(file, column, name) == text) return;
  Set(properties, column, name, ColumnType::kMemo, file.PlainBytes(text));
}

}  // namespace

ColumnRules ReadRules(const JetFile& file, uint32_t table, std::string_view column) {
  const CatalogueObject object = UserTable(file, table);
  RequireColumn(file, object, column);
  const Properties properties = PropertiesOf(file, object);
  return {properties.Flag(column, kRequired), properties.Flag(column, kAllowZeroLength),
          properties.Text(file, column, kDefaultValue)};
}

void SetRules(JetFile& file, uint32_t table, const std::vector<RulesOfColumn>& columns,
              OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  Properties properties = PropertiesOf(file, object);
  for (const auto& [column, rules] : columns) {
    RequireColumn(file, object, column);
    SetFlag(properties, column, kRequired, rules.required);
    SetFlag(properties, column, kAllowZeroLength, rules.allow_zero_length);
    SetText(file, properties, column, kDefaultValue, rules.default_value);
  }
  const NamedValues changed = Changed(file, object, properties);
  if (changed.empty()) return;
  WholeOrNotAtAll(file, [&] { UpdateObject(file, object, changed, now); });
}

NamedValues PropertiesWithoutColumn(const JetFile& file, const CatalogueObject& table,
                                    std::string_view column) {
  Properties properties = PropertiesOf(file, table);
  std::erase_if(properties.owners(),
                [column](const PropertyOwner& owner) { return IsColumn(owner, column); });
  return Changed(file, table, properties);
}

NamedValues PropertiesWithColumnRenamed(const JetFile& file, const CatalogueObject& table,
                                        std::string_view column, std::string_view name) {
  Properties properties = PropertiesOf(file, table);
  for (PropertyOwner& owner : properties.owners()) {
    if (IsColumn(owner, column)) owner.name = name;
  }
  return Changed(file, table, properties);
}

}  // namespace ambrelio::jetfile
