#include "ambrelio/engine/embedded/storage/catalogue.h"

#include <algorithm>
#include <array>

#include "ambrelio/engine/embedded/functions/functions.h"

namespace ambrelio::embedded {
namespace {

template <class T>
const T* FindByName(const std::vector<T>& items, std::string_view name) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const T& item) { return SameName(item.name, name); });
  return found == items.end() ? nullptr : &*found;
}

template <class T>
const T* FindById(const std::vector<T>& items, int64_t id) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const T& item) { return item.id == id; });
  return found == items.end() ? nullptr : &*found;
}

}  // namespace

bool SameName(std::string_view a, std::string_view b) { return CompareText(a, b) == 0; }

const FieldInfo* TableInfo::FindField(std::string_view field_name) const {
  return FindByName(fields, field_name);
}

const FieldInfo* TableInfo::FindField(int64_t field_id) const { return FindById(fields, field_id); }

const IndexInfo* TableInfo::FindIndex(std::string_view index_name) const {
  return FindByName(indexes, index_name);
}

const IndexInfo* TableInfo::FindIndex(int64_t index_id) const {
  return FindById(indexes, index_id);
}

const IndexInfo* TableInfo::PrimaryKey() const {
  const auto found = std::find_if(indexes.begin(), indexes.end(),
                                  [](const IndexInfo& index) { return index.primary; });
  return found == indexes.end() ? nullptr : &*found;
}

void TableInfo::SortFields() {
  std::stable_sort(fields.begin(), fields.end(), [](const FieldInfo& a, const FieldInfo& b) {
    return a.position != b.position ? a.position < b.position : CompareText(a.name, b.name) < 0;
  });
}

std::string_view RowIdName(const TableInfo& table) {
  constexpr std::array<std::string_view, 3> kNames = {"rowid", "_rowid_", "oid"};
  const auto* const free = std::find_if(kNames.begin(), kNames.end(), [&](std::string_view name) {
    return table.FindField(name) == nullptr;
  });
  return free == kNames.end() ? std::string_view() : *free;
}

const TableInfo* Catalogue::FindTable(std::string_view name) const {
  return FindByName(tables, name);
}

const QueryInfo* Catalogue::FindQuery(std::string_view name) const {
  return FindByName(queries, name);
}

const TableInfo* Catalogue::FindTable(int64_t id) const { return FindById(tables, id); }

const QueryInfo* Catalogue::FindQuery(int64_t id) const { return FindById(queries, id); }

}  // namespace ambrelio::embedded
