#include "ambrelio/engine/embedded/execution/data_definition.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ambrelio/dao/errors.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::embedded {

namespace {

using dao::DaoError;
using dao::FieldType;

constexpr int32_t kDefaultTextSize = 255;
constexpr const char* kPrimaryKeyName = "PrimaryKey";

struct TypeName {
  std::string_view name;
  FieldType type;
};

constexpr std::array kTypeNames = {
    TypeName{"BIT", FieldType::kBoolean},        TypeName{"YESNO", FieldType::kBoolean},
    TypeName{"BOOLEAN", FieldType::kBoolean},    TypeName{"LOGICAL", FieldType::kBoolean},
    TypeName{"LOGICAL1", FieldType::kBoolean},   TypeName{"BYTE", FieldType::kByte},
    TypeName{"INTEGER1", FieldType::kByte},      TypeName{"TINYINT", FieldType::kByte},
    TypeName{"SHORT", FieldType::kInteger},      TypeName{"SMALLINT", FieldType::kInteger},
    TypeName{"INTEGER2", FieldType::kInteger},   TypeName{"LONG", FieldType::kLong},
    TypeName{"INTEGER", FieldType::kLong},       TypeName{"INTEGER4", FieldType::kLong},
    TypeName{"INT", FieldType::kLong},           TypeName{"COUNTER", FieldType::kLong},
    TypeName{"AUTOINCREMENT", FieldType::kLong}, TypeName{"IDENTITY", FieldType::kLong},
    TypeName{"CURRENCY", FieldType::kCurrency},  TypeName{"MONEY", FieldType::kCurrency},
    TypeName{"SINGLE", FieldType::kSingle},      TypeName{"REAL", FieldType::kSingle},
    TypeName{"FLOAT4", FieldType::kSingle},      TypeName{"IEEESINGLE", FieldType::kSingle},
    TypeName{"DOUBLE", FieldType::kDouble},      TypeName{"FLOAT", FieldType::kDouble},
    TypeName{"FLOAT8", FieldType::kDouble},      TypeName{"IEEEDOUBLE", FieldType::kDouble},
    TypeName{"NUMBER", FieldType::kDouble},      TypeName{"NUMERIC", FieldType::kDouble},
    TypeName{"DECIMAL", FieldType::kDouble},     TypeName{"DATETIME", FieldType::kDate},
    TypeName{"DATE", FieldType::kDate},          TypeName{"TIME", FieldType::kDate},
    TypeName{"TIMESTAMP", FieldType::kDate},     TypeName{"TEXT", FieldType::kText},
    TypeName{"CHAR", FieldType::kText},          TypeName{"CHARACTER", FieldType::kText},
    TypeName{"VARCHAR", FieldType::kText},       TypeName{"NCHAR", FieldType::kText},
    TypeName{"NVARCHAR", FieldType::kText},      TypeName{"STRING", FieldType::kText},
    TypeName{"ALPHANUMERIC", FieldType::kText},  TypeName{"MEMO", FieldType::kMemo},
    TypeName{"LONGTEXT", FieldType::kMemo},      TypeName{"LONGCHAR", FieldType::kMemo},
    TypeName{"NOTE", FieldType::kMemo},          TypeName{"NTEXT", FieldType::kMemo},
};

bool CountsByItself(std::string_view type) {
  return type == "COUNTER" || type == "AUTOINCREMENT" || type == "IDENTITY";
}

// The text of a default: a literal, a negative number or a function without arguments.
std::string DefaultText(const sql::Expr& expr) {
  switch (expr.kind) {
    case sql::ExprKind::kNegate:
      return "-" + DefaultText(*expr.args[0]);
    case sql::ExprKind::kCall:
      if (expr.args.empty()) return expr.name + "()";
      break;
    case sql::ExprKind::kLiteral: {
      const Variant& value = expr.literal;
      if (value.is_null()) return "Null";
      if (value.type() == VariantType::kBoolean) return value.as<bool>() ? "True" : "False";
      if (value.is_date()) return "#" + value.as<OleDate>().Iso() + "#";
      if (!value.is_text()) return NumberText(ToDouble(value), '.');
      std::string text = "\"";
      for (const char c : value.as<std::string>()) text.append(c == '"' ? 2 : 1, c);
      return text + "\"";
    }
    default:
      break;
  }
  dao::Raise(DaoError::kFieldDefinitionSyntax, dao::source::kDatabase, "default");
}

FieldInfo MakeField(const sql::ColumnDefinition& column) {
  const auto* type = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                  [&](const TypeName& entry) { return entry.name == column.type; });
  if (type == kTypeNames.end()) {
    dao::Raise(DaoError::kFieldDefinitionSyntax, dao::source::kDatabase, column.type);
  }
  FieldInfo field;
  field.name = column.name;
  field.type = type->type;
  field.required = column.not_null;
  if (CountsByItself(column.type)) field.attributes |= dao::kAutoIncrement;
  if (field.type == FieldType::kText) field.size = column.size > 0 ? column.size : kDefaultTextSize;
  if (column.default_value) field.default_value = DefaultText(*column.default_value);
  return field;
}

IndexInfo MakeIndex(const std::string& name, bool primary, const std::vector<std::string>& fields) {
  IndexInfo index;
  index.name = name;
  index.primary = primary;
  index.unique = true;
  index.required = primary;
  for (const std::string& field : fields) index.columns.push_back({field, false});
  return index;
}

// The index of a constraint that may have no name.
IndexInfo MakeIndex(const sql::TableConstraint& constraint) {
  const std::string& fallback =
      constraint.primary_key ? kPrimaryKeyName : constraint.columns.front();
  return MakeIndex(constraint.name.empty() ? fallback : constraint.name, constraint.primary_key,
                   constraint.columns);
}

// The indexes that a column's own definition asks for.
std::vector<IndexInfo> IndexesOf(const sql::ColumnDefinition& column) {
  std::vector<IndexInfo> indexes;
  if (column.primary_key) {
    indexes.push_back(MakeIndex(column.key_name.empty() ? kPrimaryKeyName : column.key_name, true,
                                {column.name}));
  } else if (column.unique) {
    indexes.push_back(
        MakeIndex(column.key_name.empty() ? column.name : column.key_name, false, {column.name}));
  }
  return indexes;
}

void RequireIndex(CatalogueStore& catalogue, const std::string& table, const std::string& index) {
  const TableInfo* found = catalogue.Current().FindTable(table);
  if (found == nullptr) dao::Raise(DaoError::kUnknownTable, dao::source::kDatabase, table);
  if (found->FindIndex(index) == nullptr) {
    dao::Raise(DaoError::kNoSuchIndex, dao::source::kDatabase, index);
  }
}

}  // namespace

void Define(const sql::CreateTable& statement, CatalogueStore& catalogue) {
  TableInfo table;
  table.name = statement.name;
  for (const sql::ColumnDefinition& column : statement.columns) {
    if (table.FindField(column.name) != nullptr) {
      dao::Raise(DaoError::kFieldExistsInAlter, dao::source::kDatabase, column.name);
    }
    FieldInfo field = MakeField(column);
    field.position = static_cast<int16_t>(table.fields.size());
    table.fields.push_back(std::move(field));
    for (IndexInfo& index : IndexesOf(column)) table.indexes.push_back(std::move(index));
  }
  for (const sql::TableConstraint& constraint : statement.constraints) {
    table.indexes.push_back(MakeIndex(constraint));
  }
  catalogue.CreateTable(table);
}

void Define(const sql::CreateIndex& statement, CatalogueStore& catalogue) {
  IndexInfo index;
  index.name = statement.name;
  index.primary = statement.primary;
  index.unique = statement.unique || statement.primary;
  index.required = statement.disallow_nulls || statement.primary;
  index.ignore_nulls = statement.ignore_nulls;
  for (const sql::CreateIndex::Column& column : statement.columns) {
    index.columns.push_back({column.name, column.descending});
  }
  catalogue.CreateIndex(statement.table, index);
}

void Define(const sql::AlterTable& statement, CatalogueStore& catalogue) {
  using Action = sql::AlterTable::Action;
  switch (statement.action) {
    case Action::kAddColumn: {
      const TableInfo* table = catalogue.Current().FindTable(statement.table);
      if (table != nullptr && table->FindField(statement.column.name) != nullptr) {
        dao::Raise(DaoError::kFieldExistsInAlter, dao::source::kDatabase, statement.column.name);
      }
      FieldInfo field = MakeField(statement.column);
      if (table != nullptr && !table->fields.empty()) {
        field.position = static_cast<int16_t>(table->fields.back().position + 1);
      }
      catalogue.AddField(statement.table, field);
      for (const IndexInfo& index : IndexesOf(statement.column)) {
        catalogue.CreateIndex(statement.table, index);
      }
      break;
    }
    case Action::kDropColumn:
      catalogue.DropField(statement.table, statement.column.name);
      break;
    case Action::kAddConstraint:
      catalogue.CreateIndex(statement.table, MakeIndex(statement.constraint));
      break;
    case Action::kDropConstraint:
      RequireIndex(catalogue, statement.table, statement.constraint.name);
      catalogue.DropIndex(statement.table, statement.constraint.name);
      break;
  }
}

void Define(const sql::Drop& statement, CatalogueStore& catalogue) {
  if (statement.what == sql::Drop::What::kTable) {
    catalogue.DropTable(statement.name);
    return;
  }
  RequireIndex(catalogue, statement.table, statement.name);
  catalogue.DropIndex(statement.table, statement.name);
}

}  // namespace ambrelio::embedded
