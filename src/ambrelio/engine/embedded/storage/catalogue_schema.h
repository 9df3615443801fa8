// The tables in which a file keeps its own catalogue.
#pragma once

namespace ambrelio::embedded {

// A table, field, index or query keeps its id for life, whatever it is named. The names are unique
// by Jet's comparison, which the catalogue's code enforces. Settings: "stamp" is another random
// value after each change of the catalogue; "password" see password.h.
inline constexpr const char* kCatalogueSchema = R"sql(
create table "jet.settings"(name text primary key not null, value text not null) without rowid;
create table "jet.tables"(id integer primary key autoincrement, name text not null);
create table "jet.fields"(
  id integer primary key autoincrement, table_id integer not null, name text not null,
  type integer not null, size integer not null, position integer not null,
  attributes integer not null, required integer not null, zero_length integer not null,
  default_value text not null);
create table "jet.indexes"(
  id integer primary key autoincrement, table_id integer not null, name text not null,
  is_primary integer not null, is_unique integer not null, ignore_nulls integer not null,
  required integer not null);
create table "jet.index_columns"(
  index_id integer not null, place integer not null, field_id integer not null,
  descending integer not null, primary key(index_id, place)) without rowid;
create table "jet.queries"(
  id integer primary key autoincrement, name text not null, sql text not null);
)sql";

}  // namespace ambrelio::embedded
