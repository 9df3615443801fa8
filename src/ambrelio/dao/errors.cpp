#include "ambrelio/dao/errors.h"

#include <algorithm>
#include <array>

namespace ambrelio::dao {
namespace {

struct Sentence {
  DaoError error;
  // "%" stands for the detail.
  const char* text;
};

// In ascending order of the numbers.
constexpr std::array kSentences = {
    Sentence{DaoError::kReserved, "Data access error. %"},
    Sentence{DaoError::kInvalidArgument, "Invalid argument: %"},
    Sentence{DaoError::kTooManyTransactions, "Too many transactions are nested; five is the most."},
    Sentence{DaoError::kInvalidDatabaseName, "'%' is not a valid database name."},
    Sentence{DaoError::kTableLocked, "The table '%' is in use and cannot be locked."},
    Sentence{DaoError::kTableExists, "Table '%' already exists."},
    Sentence{DaoError::kObjectExists, "An object named '%' already exists."},
    Sentence{DaoError::kNoCurrentRecord, "No current record."},
    Sentence{
        DaoError::kDuplicateKey,
        "The change was not made: it would give duplicate values in the primary key or a unique "
        "index. %"},
    Sentence{DaoError::kFileNotFound, "The file '%' was not found."},
    Sentence{DaoError::kDiskFull, "The disk is full. %"},
    Sentence{DaoError::kReadOnly,
             "The change was not made: the database or object is read-only. %"},
    Sentence{DaoError::kWrongPassword, "Not a valid password."},
    Sentence{DaoError::kNoTransaction, "There is no open transaction to commit or roll back."},
    Sentence{DaoError::kDiskError, "The disk failed while reading or writing. %"},
    Sentence{DaoError::kInvalidPath,
             "'%' is not a valid path: the folder does not exist or cannot be reached."},
    Sentence{DaoError::kFileInUse, "The file '%' is already in use."},
    Sentence{DaoError::kNotADatabaseOrDamaged,
             "The database '%' cannot be opened: it is damaged or not a database of this engine."},
    Sentence{
        DaoError::kAccessDenied,
        "The file '%' cannot be opened: it is held exclusively by someone else or you lack the "
        "permission."},
    Sentence{DaoError::kNullInPrimaryKey, "A primary key cannot hold a Null value. %"},
    Sentence{DaoError::kTooFewParameters, "Too few parameters. Expected %."},
    Sentence{DaoError::kDuplicateOutputAlias, "Duplicate output alias '%'."},
    Sentence{DaoError::kDuplicateTarget, "Duplicate output destination '%'."},
    Sentence{DaoError::kExecuteOnSelect, "A select query cannot be executed."},
    Sentence{DaoError::kConditionOverflow,
             "The expression is typed incorrectly or too complex to be evaluated. %"},
    Sentence{DaoError::kNotUpdatable, "The operation must use an updatable query. %"},
    Sentence{DaoError::kExpressionSyntax, "Syntax error in query expression '%'."},
    Sentence{DaoError::kUnknownTable, "The table or query '%' does not exist."},
    Sentence{DaoError::kAmbiguousColumn,
             "The field '%' could refer to more than one table of the from clause."},
    Sentence{DaoError::kUndefinedFunction, "Undefined function '%' in expression."},
    Sentence{DaoError::kOrderByDistinct, "The order by clause (%) conflicts with distinct."},
    Sentence{DaoError::kAggregateInExpression, "Aggregate functions cannot be nested: '%'."},
    Sentence{DaoError::kAggregateInWhere, "An aggregate function cannot stand here: '%'."},
    Sentence{DaoError::kAggregateInGroupBy,
             "An aggregate function cannot stand in the group by clause: '%'."},
    Sentence{DaoError::kAggregateInJoin, "An aggregate function cannot stand in a join: '%'."},
    Sentence{DaoError::kCircularQuery, "The query '%' refers to itself."},
    Sentence{DaoError::kCircularAlias,
             "Circular reference caused by alias '%' in the select list of the query."},
    Sentence{DaoError::kNotGrouped,
             "The query does not include the expression '%' as part of an aggregate function."},
    Sentence{DaoError::kInvalidName, "'%' is not a valid name."},
    Sentence{DaoError::kUnknownInsertColumn,
             "The insert statement has the unknown field name '%'."},
    Sentence{DaoError::kInvalidStatement,
             "Invalid SQL statement; DELETE, INSERT, SELECT or UPDATE expected near '%'."},
    Sentence{DaoError::kDeleteSyntax, "Syntax error in the delete statement near '%'."},
    Sentence{DaoError::kFromSyntax, "Syntax error in the from clause near '%'."},
    Sentence{DaoError::kGroupBySyntax, "Syntax error in the group by clause near '%'."},
    Sentence{DaoError::kHavingSyntax, "Syntax error in the having clause near '%'."},
    Sentence{DaoError::kInsertSyntax, "Syntax error in the insert statement near '%'."},
    Sentence{DaoError::kJoinSyntax, "Syntax error in a join operation near '%'."},
    Sentence{DaoError::kJunkAtEnd, "Unexpected text at the end of the SQL statement: '%'."},
    Sentence{DaoError::kOrderBySyntax, "Syntax error in the order by clause near '%'."},
    Sentence{DaoError::kSelectSyntax,
             "The select statement has a reserved word or a name that is misspelled or missing, or "
             "its punctuation is wrong, near '%'."},
    Sentence{DaoError::kTextAfterEnd, "Text found after the end of the SQL statement: '%'."},
    Sentence{DaoError::kUpdateSyntax, "Syntax error in the update statement near '%'."},
    Sentence{DaoError::kWhereSyntax, "Syntax error in the where clause near '%'."},
    Sentence{DaoError::kTextTooLong, "The text is too long for the field '%'."},
    Sentence{DaoError::kRecordDeleted, "The record was deleted."},
    Sentence{DaoError::kUnknownDatabaseType, "This engine opens no database of the type '%'."},
    Sentence{DaoError::kTooManyFields, "Too many fields are defined."},
    Sentence{DaoError::kFieldExists, "The field '%' is defined more than once."},
    Sentence{DaoError::kUnknownInsertTable, "The table '%' to insert into does not exist."},
    Sentence{DaoError::kHasPartners,
             "The change was not made: the table '%' has records that belong to the record."},
    Sentence{DaoError::kPartnerNeeded,
             "The change was not made: the table '%' lacks the record that it belongs to."},
    Sentence{DaoError::kDatabaseExists, "The database '%' already exists."},
    Sentence{DaoError::kRecordLocked, "The change was not made: the data is locked. %"},
    Sentence{DaoError::kInvalidOperation, "Invalid operation. %"},
    Sentence{DaoError::kNotSupported, "The operation is not supported for this kind of object. %"},
    Sentence{DaoError::kInvalidFieldType, "Invalid field data type: %."},
    Sentence{DaoError::kLockedByOther,
             "The change was not made: the data is locked by someone else. %"},
    Sentence{DaoError::kNothingDefined, "No field is defined in '%': it cannot be appended."},
    Sentence{DaoError::kNotInCollection, "Item '%' not found in this collection."},
    Sentence{DaoError::kAlreadyAppended, "The object '%' already belongs to a collection."},
    Sentence{DaoError::kFixedAfterAppend,
             "The property cannot be set once the object is part of a collection: '%'."},
    Sentence{DaoError::kFieldInIndex, "The field '%' is part of an index and cannot be deleted."},
    Sentence{DaoError::kInRelationship, "'%' is used in a relationship and cannot be deleted."},
    Sentence{DaoError::kPrimaryKeyExists, "The table '%' already has a primary key."},
    Sentence{DaoError::kIndexExists, "The index '%' already exists."},
    Sentence{DaoError::kDefinitionSyntax, "Syntax error in the create table statement near '%'."},
    Sentence{DaoError::kIndexSyntax, "Syntax error in the create index statement near '%'."},
    Sentence{DaoError::kFieldDefinitionSyntax, "Syntax error in a field definition near '%'."},
    Sentence{DaoError::kAlterSyntax, "Syntax error in the alter table statement near '%'."},
    Sentence{DaoError::kDropSyntax, "Syntax error in the drop statement near '%'."},
    Sentence{DaoError::kJoinNotSupported, "The join expression is not supported: '%'."},
    Sentence{DaoError::kSubqueryColumns, "A subquery here may give one column only. %"},
    Sentence{DaoError::kUnionColumns,
             "The queries of a union give different numbers of columns. %"},
    Sentence{DaoError::kNullInRequiredField, "The field '%' cannot hold a Null value."},
    Sentence{DaoError::kZeroLengthText, "The field '%' cannot hold a text of length zero."},
    Sentence{DaoError::kUnionSyntax, "Syntax error in the union query near '%'."},
    Sentence{DaoError::kUnrecognisedFormat, "Unrecognised database format: '%'."},
    Sentence{DaoError::kValueCount, "The number of values and of destination fields differ. %"},
    Sentence{DaoError::kUnionOrderBy,
             "The order by expression '%' names a field that the query does not select."},
    Sentence{DaoError::kHeldExclusively, "The database '%' is held exclusively by someone else."},
    Sentence{DaoError::kNameInCollection, "An object named '%' already belongs to the collection."},
    Sentence{DaoError::kNoSuchIndex, "The table has no index '%'."},
    Sentence{DaoError::kFieldExistsInAlter, "The field '%' already exists in the table."},
    Sentence{DaoError::kUnknownIndexField, "The index names the unknown field '%'."},
    Sentence{DaoError::kObjectClosed, "The object is closed or no longer there."},
    Sentence{DaoError::kConversion, "Data type conversion error. %"},
    Sentence{DaoError::kTypeMismatchInCondition, "Data type mismatch in criteria expression '%'."},
};

static_assert(std::is_sorted(kSentences.begin(), kSentences.end(),
                             [](const Sentence& a, const Sentence& b) {
                               return a.error < b.error;
                             }));

// The sentence with the detail in its place; without a detail the place goes.
std::string Describe(DaoError error, const std::string& detail) {
  const auto* entry = std::find_if(kSentences.begin(), kSentences.end(),
                                   [&](const Sentence& s) { return s.error == error; });
  std::string text = entry == kSentences.end() ? kSentences.front().text : entry->text;
  if (const size_t mark = text.find('%'); mark != std::string::npos) text.replace(mark, 1, detail);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

}  // namespace

void Raise(DaoError error, const std::string& source, const std::string& detail) {
  throw AutomationError(static_cast<int>(error), source, Describe(error, detail));
}

}  // namespace ambrelio::dao
