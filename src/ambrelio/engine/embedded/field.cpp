#include "ambrelio/engine/embedded/field.h"

#include <algorithm>
#include <utility>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;
using dao::FieldType;

bool IsText(FieldType type) { return type == FieldType::kText || type == FieldType::kMemo; }

int32_t SizeOf(FieldType type) {
  switch (type) {
    case FieldType::kBoolean:
    case FieldType::kByte:
      return 1;
    case FieldType::kInteger:
      return 2;
    case FieldType::kLong:
    case FieldType::kSingle:
      return 4;
    case FieldType::kText:
    case FieldType::kMemo:
      return 0;
    default:
      return 8;
  }
}

}  // namespace

Field::Field(std::shared_ptr<Connection> connection, FieldInfo draft)
    : connection_(std::move(connection)), draft_(std::move(draft)) {}

Field::Field(std::shared_ptr<Connection> connection, int64_t table, int64_t field)
    : connection_(std::move(connection)), place_(Place::kStored), table_(table), field_(field) {}

const FieldInfo& Field::Info() const {
  connection_->CheckOpen();
  if (place_ != Place::kStored) return draft_;
  const FieldInfo* const field = Table().FindField(field_);
  if (field == nullptr) dao::Raise(DaoError::kObjectClosed, dao::source::kField);
  return *field;
}

const TableInfo& Field::Table() const {
  const TableInfo* const table = connection_->catalogue().Known().FindTable(table_);
  if (table == nullptr) dao::Raise(DaoError::kObjectClosed, dao::source::kField);
  return *table;
}

void Field::Change(const char* property, const std::function<void(FieldInfo&)>& change) {
  FieldInfo changed = Info();
  change(changed);
  switch (place_) {
    case Place::kNowhere:
    case Place::kMemory:
      draft_ = std::move(changed);
      break;
    case Place::kIndex:
      dao::Raise(DaoError::kFixedAfterAppend, dao::source::kField, property);
    case Place::kStored: {
      const std::string table = Table().name;
      connection_->catalogue().ChangeField(table, Name(), changed);
    }
  }
}

void Field::SetName(const std::string& name) {
  Change("Name", [&](FieldInfo& info) { info.name = name; });
}

int32_t Field::Size() const {
  const FieldInfo& info = Info();
  return info.type == FieldType::kText ? info.size : SizeOf(info.type);
}

int16_t Field::OrdinalPosition() const { return std::max<int16_t>(Info().position, 0); }

void Field::SetOrdinalPosition(int16_t position) {
  Change("OrdinalPosition", [&](FieldInfo& info) { info.position = position; });
}

int32_t Field::Attributes() const {
  const FieldInfo& info = Info();
  if (place_ != Place::kStored) return info.attributes;
  return info.attributes | dao::kUpdatable |
         (IsText(info.type) ? dao::kVariableField : dao::kFixedField);
}

void Field::SetAttributes(int32_t attributes) {
  if (place_ == Place::kStored) {
    dao::Raise(DaoError::kFixedAfterAppend, dao::source::kField, "Attributes");
  }
  Change("Attributes", [&](FieldInfo& info) { info.attributes = attributes; });
}

void Field::SetRequired(bool required) {
  Change("Required", [&](FieldInfo& info) { info.required = required; });
}

void Field::SetAllowZeroLength(bool allow) {
  Change("AllowZeroLength", [&](FieldInfo& info) { info.allow_zero_length = allow; });
}

void Field::SetDefaultValue(const std::string& expression) {
  // As in a form, the expression may begin with an equals sign.
  Change("DefaultValue", [&](FieldInfo& info) {
    info.default_value = expression.starts_with('=') ? expression.substr(1) : expression;
  });
}

Variant Field::Value() const {
  connection_->CheckOpen();
  dao::Raise(DaoError::kInvalidOperation, dao::source::kField,
             "Only a recordset's field has a value.");
}

void Field::Keep(int16_t position) {
  draft_.position = position;
  place_ = Place::kMemory;
}

void Field::BecomeStored(std::shared_ptr<Connection> connection, int64_t table, int64_t field) {
  connection_ = std::move(connection);
  place_ = Place::kStored;
  table_ = table;
  field_ = field;
}

}  // namespace ambrelio::embedded
