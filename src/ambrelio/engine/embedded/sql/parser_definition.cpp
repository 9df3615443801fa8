// Statements that change the schema.
#include <algorithm>
#include <utility>

#include "ambrelio/engine/embedded/sql/parser_state.h"
#include "ambrelio/engine/embedded/sql/scanner.h"

namespace ambrelio::embedded::sql {

using dao::DaoError;

namespace {

std::string UpperCase(std::string word) {
  std::transform(word.begin(), word.end(), word.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return word;
}

}  // namespace

Statement Parser::ParseCreate() {
  if (tokens_.TakeWord("table")) return ParseCreateTable();
  if (tokens_.TakeWord("unique")) {
    tokens_.ExpectWord("index", DaoError::kIndexSyntax);
    return ParseCreateIndex(true);
  }
  if (tokens_.TakeWord("index")) return ParseCreateIndex(false);
  tokens_.Fail(DaoError::kDefinitionSyntax);
}

// create table name (column | constraint, ...)
CreateTable Parser::ParseCreateTable() {
  constexpr DaoError kError = DaoError::kDefinitionSyntax;
  CreateTable create;
  create.name = tokens_.ExpectName(kError);
  tokens_.ExpectSymbol("(", kError);
  do {
    if (AtTableConstraint()) {
      create.constraints.push_back(ParseTableConstraint(kError));
    } else {
      create.columns.push_back(ParseColumnDefinition(kError));
    }
  } while (tokens_.TakeSymbol(","));
  tokens_.ExpectSymbol(")", kError);
  return create;
}

// create [unique] index name on table (column [asc | desc], ...) [with option]
CreateIndex Parser::ParseCreateIndex(bool unique) {
  constexpr DaoError kError = DaoError::kIndexSyntax;
  CreateIndex index;
  index.unique = unique;
  index.name = tokens_.ExpectName(kError);
  tokens_.ExpectWord("on", kError);
  index.table = tokens_.ExpectName(kError);
  tokens_.ExpectSymbol("(", kError);
  do {
    CreateIndex::Column column{tokens_.ExpectName(kError)};
    column.descending = tokens_.TakeWord("desc");
    if (!column.descending) tokens_.TakeWord("asc");
    index.columns.push_back(std::move(column));
  } while (tokens_.TakeSymbol(","));
  tokens_.ExpectSymbol(")", kError);
  if (tokens_.TakeWord("with")) ParseIndexOption(index);
  return index;
}

void Parser::ParseIndexOption(CreateIndex& index) {
  constexpr DaoError kError = DaoError::kIndexSyntax;
  if (tokens_.TakeWord("primary")) {
    index.primary = true;
    return;
  }
  if (tokens_.TakeWord("disallow")) {
    index.disallow_nulls = true;
  } else {
    tokens_.ExpectWord("ignore", kError);
    index.ignore_nulls = true;
  }
  tokens_.ExpectWord("null", kError);
}

// alter table name add ... | drop ...
AlterTable Parser::ParseAlter() {
  constexpr DaoError kError = DaoError::kAlterSyntax;
  tokens_.ExpectWord("table", kError);
  AlterTable alter;
  alter.table = tokens_.ExpectName(kError);
  if (tokens_.TakeWord("add")) {
    ParseAddition(alter);
    return alter;
  }
  tokens_.ExpectWord("drop", kError);
  if (tokens_.TakeWord("constraint")) {
    alter.action = AlterTable::Action::kDropConstraint;
    alter.constraint.name = tokens_.ExpectName(kError);
  } else {
    tokens_.TakeWord("column");
    alter.action = AlterTable::Action::kDropColumn;
    alter.column.name = tokens_.ExpectName(kError);
  }
  return alter;
}

void Parser::ParseAddition(AlterTable& alter) {
  constexpr DaoError kError = DaoError::kAlterSyntax;
  if (AtTableConstraint()) {
    alter.action = AlterTable::Action::kAddConstraint;
    alter.constraint = ParseTableConstraint(kError);
  } else {
    tokens_.TakeWord("column");
    alter.action = AlterTable::Action::kAddColumn;
    alter.column = ParseColumnDefinition(kError);
  }
}

// drop table name | drop index name on table
Drop Parser::ParseDrop() {
  constexpr DaoError kError = DaoError::kDropSyntax;
  Drop drop;
  if (tokens_.TakeWord("table")) {
    drop.what = Drop::What::kTable;
    drop.name = tokens_.ExpectName(kError);
    return drop;
  }
  tokens_.ExpectWord("index", kError);
  drop.what = Drop::What::kIndex;
  drop.name = tokens_.ExpectName(kError);
  tokens_.ExpectWord("on", kError);
  drop.table = tokens_.ExpectName(kError);
  return drop;
}

// name type[(size)] {not null | default expression | [constraint name] primary key | unique}
ColumnDefinition Parser::ParseColumnDefinition(DaoError error) {
  constexpr DaoError kError = DaoError::kFieldDefinitionSyntax;
  ColumnDefinition column;
  column.name = tokens_.ExpectName(error);
  column.type = UpperCase(tokens_.ExpectName(kError));
  if (tokens_.TakeSymbol("(")) {
    column.size = tokens_.ExpectWholeNumber(kError);
    if (column.size == 0) tokens_.Fail(kError);
    tokens_.ExpectSymbol(")", kError);
  }
  while (!tokens_.AtSymbol(",") && !tokens_.AtSymbol(")") && !tokens_.AtSymbol(";") &&
         !tokens_.AtEnd()) {
    ParseColumnConstraint(column);
  }
  return column;
}

void Parser::ParseColumnConstraint(ColumnDefinition& column) {
  constexpr DaoError kError = DaoError::kFieldDefinitionSyntax;
  if (tokens_.TakeWord("not")) {
    tokens_.ExpectWord("null", kError);
    column.not_null = true;
    return;
  }
  if (tokens_.TakeWord("default")) {
    // The `not` of a following `not null` is none of its operators.
    column.default_value = ParseExpression(Precedence::kConcat);
    return;
  }
  if (tokens_.TakeWord("constraint")) column.key_name = tokens_.ExpectName(kError);
  if (tokens_.TakeWord("primary")) {
    tokens_.ExpectWord("key", kError);
    column.primary_key = true;
  } else {
    tokens_.ExpectWord("unique", kError);
    column.unique = true;
  }
}

bool Parser::AtTableConstraint() const {
  return tokens_.AtWord("constraint") || tokens_.AtWord("primary") || tokens_.AtWord("unique");
}

TableConstraint Parser::ParseTableConstraint(DaoError error) {
  TableConstraint constraint;
  if (tokens_.TakeWord("constraint")) constraint.name = tokens_.ExpectName(error);
  constraint.primary_key = tokens_.TakeWord("primary");
  tokens_.ExpectWord(constraint.primary_key ? "key" : "unique", error);
  constraint.columns = ParseNameList(error);
  return constraint;
}

}  // namespace ambrelio::embedded::sql
