// SQL behaviour as text files that a person can read and extend.
//
//   # a comment
//   == Sum of nothing is Null                  a case of its own, with a database of its own
//   > create table T (a long,                  a statement; lines further in continue it
//       b text(10))
//   > insert into T values (1, 'x')
//   affected 1                                 what it gives, up to the next empty line or
//   statement
//   !> insert into T values (1, 'x')           the same with the fail-on-error option
//   error 3022
//   > select a, b from T
//   a:Long | b:Text                            the columns with their types, then the rows
//   1 | x
//   @ query Q: select a from T                 stores a query
//   @ zero length T.b                          lets a field hold texts of length zero
//   @ default T.b: "none"                      gives a field a default
//
// Without expectations a statement only has to succeed. What stands before the first case is done
// before each of them. Texts stand in apostrophes where they would be mistaken for something else.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace ambrelio::test {

struct SqlStep {
  int line = 0;  // in the file, from 1
  enum class Kind { kStatement, kStrictStatement, kDirective } kind = Kind::kStatement;
  std::string text;
  std::vector<std::string> expected;
};

struct SqlCase {
  std::string file;  // without folder and ending
  std::string title;
  std::vector<SqlStep> steps;
};

// What a failure shows of its parameter.
inline void PrintTo(const SqlCase& sql_case, std::ostream* out) { *out << sql_case.title; }

// All cases of the files in the folder, in the order of their names.
std::vector<SqlCase> LoadSqlCases(const std::string& folder);

}  // namespace ambrelio::test
