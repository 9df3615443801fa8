// The numbers of the errors that these tests expect.
#pragma once

namespace ambrelio::jetfile {

inline constexpr int kInvalidArgument = 3001;
inline constexpr int kTableExists = 3010;
inline constexpr int kObjectExists = 3012;
inline constexpr int kDuplicateKey = 3022;
inline constexpr int kFileNotFound = 3024;
inline constexpr int kDiskFull = 3026;
inline constexpr int kOnlyReadable = 3027;
inline constexpr int kWrongPassword = 3031;
inline constexpr int kNoTransaction = 3034;
inline constexpr int kDiskError = 3043;
inline constexpr int kInvalidPath = 3044;
inline constexpr int kFileInUse = 3045;
inline constexpr int kTooLarge = 3047;
inline constexpr int kDamaged = 3049;
inline constexpr int kAccessDenied = 3051;
inline constexpr int kNullInKey = 3058;
inline constexpr int kInvalidName = 3125;
inline constexpr int kTextTooLong = 3163;
inline constexpr int kRecordDeleted = 3167;
inline constexpr int kTooManyFields = 3190;
inline constexpr int kFieldExists = 3191;
inline constexpr int kRecordLocked = 3218;
inline constexpr int kNotSupported = 3251;
inline constexpr int kInvalidFieldType = 3259;
inline constexpr int kNothingDefined = 3264;
inline constexpr int kNotInCollection = 3265;
inline constexpr int kFieldInIndex = 3280;
inline constexpr int kInRelationship = 3281;
inline constexpr int kPrimaryKeyExists = 3283;
inline constexpr int kIndexExists = 3284;
inline constexpr int kUnrecognised = 3343;
inline constexpr int kUnknownIndexField = 3409;

}  // namespace ambrelio::jetfile
