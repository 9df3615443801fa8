// The library's questions as somebody writes them who knows the tables, their indexes and what the
// storage makes of a statement: driven from the few rows that are asked about, the weighings with
// shares and those without each by an index of their own.
#pragma once

#include <string>

namespace ambrelio::bench::sql {

// Kilograms of discharge ?2 of hopper ?1.
std::string Weight();

// From where a content comes: the rows of a tank (?1), or those of its emptying ?2.
enum class Content { kTank, kEmptying };

// Kilograms of a content.
std::string Kilos(Content content);
// A content by class 1 to 5: key, kilograms; with names: key, name, kilograms.
std::string Composition(Content content, int clase, bool with_names);

// The discharges that ended between ?1 and ?2, with their kilograms; readings and emptyings.
std::string HistoryOfDischarges();
std::string HistoryOfReadings();
std::string HistoryOfEmptyings();

// Level and litres of every tank, for a database that has no quick way to one of them.
std::string StateOfAllTanks();

// The same for DuckDB, which chooses the order of joins itself.
std::string ForDuckDb(const std::string& text);

}  // namespace ambrelio::bench::sql
