// The data access errors, by the numbers that DAO's clients know.
#pragma once

#include <string>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::dao {

enum class DaoError : int {
  kReserved = 3000,  // what has no number of its own
  kInvalidArgument = 3001,
  kTooManyTransactions = 3003,
  kInvalidDatabaseName = 3005,
  kTableLocked = 3008,
  kTableExists = 3010,
  kObjectExists = 3012,
  kNoCurrentRecord = 3021,
  kDuplicateKey = 3022,
  kFileNotFound = 3024,
  kDiskFull = 3026,
  kReadOnly = 3027,
  kWrongPassword = 3031,
  kNoTransaction = 3034,
  kDiskError = 3043,
  kInvalidPath = 3044,
  kFileInUse = 3045,
  kNotADatabaseOrDamaged = 3049,
  kAccessDenied = 3051,
  kNullInPrimaryKey = 3058,
  kTooFewParameters = 3061,
  kDuplicateOutputAlias = 3062,
  kDuplicateTarget = 3063,
  kExecuteOnSelect = 3065,
  kConditionOverflow = 3071,
  kNotUpdatable = 3073,
  kExpressionSyntax = 3075,
  kUnknownTable = 3078,
  kAmbiguousColumn = 3079,
  kUndefinedFunction = 3085,
  kOrderByDistinct = 3093,
  kAggregateInExpression = 3095,
  kAggregateInWhere = 3096,
  kAggregateInGroupBy = 3098,
  kAggregateInJoin = 3099,
  kCircularQuery = 3102,
  kCircularAlias = 3103,
  kNotGrouped = 3122,
  kInvalidName = 3125,
  kUnknownInsertColumn = 3127,
  kInvalidStatement = 3129,
  kDeleteSyntax = 3130,
  kFromSyntax = 3131,
  kGroupBySyntax = 3132,
  kHavingSyntax = 3133,
  kInsertSyntax = 3134,
  kJoinSyntax = 3135,
  kJunkAtEnd = 3137,
  kOrderBySyntax = 3138,
  kSelectSyntax = 3141,
  kTextAfterEnd = 3142,
  kUpdateSyntax = 3144,
  kWhereSyntax = 3145,
  kTextTooLong = 3163,
  kRecordDeleted = 3167,
  kUnknownDatabaseType = 3170,
  kTooManyFields = 3190,
  kFieldExists = 3191,
  kUnknownInsertTable = 3192,
  kHasPartners = 3200,    // in a table on the other side of a relationship
  kPartnerNeeded = 3201,  // there
  kDatabaseExists = 3204,
  kRecordLocked = 3218,
  kInvalidOperation = 3219,
  kNotSupported = 3251,
  kInvalidFieldType = 3259,
  kLockedByOther = 3260,
  kNothingDefined = 3264,
  kNotInCollection = 3265,
  kAlreadyAppended = 3266,
  kFixedAfterAppend = 3268,
  kFieldInIndex = 3280,
  kInRelationship = 3281,
  kPrimaryKeyExists = 3283,
  kIndexExists = 3284,
  kDefinitionSyntax = 3290,
  kIndexSyntax = 3291,
  kFieldDefinitionSyntax = 3292,
  kAlterSyntax = 3293,
  kDropSyntax = 3295,
  kJoinNotSupported = 3296,
  kSubqueryColumns = 3306,
  kUnionColumns = 3307,
  kNullInRequiredField = 3314,
  kZeroLengthText = 3315,
  kUnionSyntax = 3319,
  kUnrecognisedFormat = 3343,
  kValueCount = 3346,
  kUnionOrderBy = 3351,
  kHeldExclusively = 3356,
  kNameInCollection = 3367,
  kNoSuchIndex = 3372,
  kFieldExistsInAlter = 3380,
  kUnknownIndexField = 3409,
  kObjectClosed = 3420,
  kConversion = 3421,
  kTypeMismatchInCondition = 3464,
};

// The classes that DAO names as the source of an error.
namespace source {
inline constexpr const char* kDatabase = "DAO.Database";
inline constexpr const char* kField = "DAO.Field";
inline constexpr const char* kFields = "DAO.Fields";
inline constexpr const char* kIndex = "DAO.Index";
inline constexpr const char* kIndexes = "DAO.Indexes";
inline constexpr const char* kQueryDef = "DAO.QueryDef";
inline constexpr const char* kQueryDefs = "DAO.QueryDefs";
inline constexpr const char* kRecordset = "DAO.Recordset";
inline constexpr const char* kTableDef = "DAO.TableDef";
inline constexpr const char* kTableDefs = "DAO.TableDefs";
inline constexpr const char* kWorkspace = "DAO.Workspace";
}  // namespace source

// Throws the AutomationError of `error`; `detail` (a name, a piece of SQL) is set into the
// sentence. `source` is the class that failed.
[[noreturn]] void Raise(DaoError error, const std::string& source, const std::string& detail = {});

}  // namespace ambrelio::dao
