#include "ambrelio/engine/embedded/jet/table_copy.h"

#include <functional>
#include <string_view>

#include "ambrelio/engine/embedded/jet/stored_values.h"
#include "ambrelio/engine/embedded/storage/table_form.h"
#include "ambrelio/engine/jetfile/data_page.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/usage_map.h"

namespace ambrelio::embedded {

using jetfile::ColumnDefinition;
using jetfile::DataPage;
using jetfile::Page;
using jetfile::RowPointer;
using jetfile::TableDefinition;
using jetfile::TableReader;
using jetfile::TableWriter;

namespace {

// The columns of the definition that the table shows.
std::vector<const ColumnDefinition*> ShownColumns(const TableInfo& table,
                                                  const TableDefinition& definition) {
  std::vector<const ColumnDefinition*> shown;
  for (const ColumnDefinition& column : definition.columns) {
    if (table.FindField(column.name) != nullptr) shown.push_back(&column);
  }
  return shown;
}

std::string NamesOf(const std::vector<const ColumnDefinition*>& columns) {
  std::string names;
  for (const ColumnDefinition* const column : columns) {
    names += (names.empty() ? "" : ", ") + QuoteName(column->name);
  }
  return names;
}

// Rows of the file are as they are, whatever the rules of their table say by now.
class WithoutRules {
 public:
  explicit WithoutRules(Storage& storage) : storage_(storage) { Set("on"); }
  ~WithoutRules() { Set("off"); }
  WithoutRules(const WithoutRules&) = delete;
  WithoutRules& operator=(const WithoutRules&) = delete;

 private:
  void Set(const char* state) {
    const std::string sql = std::string("pragma ignore_check_constraints = ") + state;
    sqlite3_exec(storage_.raw(), sql.c_str(), nullptr, nullptr, nullptr);
  }
  Storage& storage_;
};

bool HasMovedRows(const DataPage& page) {
  for (const jetfile::Slot& slot : page.slots()) {
    if (!slot.deleted() && (slot.moved || slot.pointed_to)) return true;
  }
  return false;
}

uint64_t HashOf(const Page& page) {
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(page->data()), page->size()});
}

bool IsDataPageOf(const Page& page, uint32_t definition) {
  constexpr size_t kOwnerAt = 4;
  const jetfile::ByteView bytes(*page, {});
  return bytes.U16(0) == static_cast<uint16_t>(jetfile::PageType::kData) &&
         bytes.U32(kOwnerAt) == definition;
}

}  // namespace

void TableCopy::Load(const TableInfo& table) {
  if (loaded_) return;
  const TableDefinition definition = ReadDefinition(file_, definition_);
  pages_ = HashPages(definition);
  std::vector<uint32_t> pages;
  for (const auto& [page, hash] : pages_) pages.push_back(page);
  CopyRows(table, definition, pages);
  CreateStoredIndexes(storage_, table);
  loaded_ = true;
}

std::map<uint32_t, TableCopy::Hash> TableCopy::HashPages(const TableDefinition& definition) {
  std::map<uint32_t, Hash> hashes;
  for (const uint32_t number : ReadUsageMap(file_, definition.owned_map).pages) {
    const Page page = file_.Read(number);
    has_moved_rows_ = has_moved_rows_ || HasMovedRows(TablePage(file_, definition, number, page));
    hashes[number] = HashOf(page);
  }
  return hashes;
}

void TableCopy::CopyRows(const TableInfo& table, const TableDefinition& definition,
                         const std::vector<uint32_t>& pages) {
  const auto columns = ShownColumns(table, definition);
  const WithoutRules without(storage_);
  std::string places = "?1";
  for (size_t i = 0; i < columns.size(); ++i) places += ", ?" + std::to_string(i + 2);
  StorageStatement insert(storage_.raw(), "insert into " + QuoteName(table.name) + "(" +
                                              std::string(RowIdName(table)) + ", " +
                                              NamesOf(columns) + ") values(" + places + ")");
  TableReader rows(file_, definition, pages);
  while (rows.Next()) {
    insert.Bind(1, places_.NumberOf(rows.identity()));
    int parameter = 1;
    for (const ColumnDefinition* const column : columns) {
      insert.Bind(++parameter, rows.Value(*column));
    }
    insert.Step();
    insert.Reset();
  }
}

std::vector<int64_t> TableCopy::RemoveRows(const TableInfo& table,
                                           const std::set<uint32_t>& pages) {
  const std::string row(RowIdName(table));
  const std::string from = " from " + QuoteName(table.name) + " where " + row;
  StorageStatement find(storage_.raw(), "select " + row + from + " between ?1 and ?2");
  StorageStatement remove(storage_.raw(), "delete" + from + " = ?1");
  std::vector<int64_t> removed;
  for (const uint32_t page : pages) {
    std::vector<int64_t> numbers = places_.OthersOn(page);
    find.Bind(1, RowPlaces::FirstNumberOn(page));
    find.Bind(2, RowPlaces::LastNumberOn(page));
    while (find.Step()) {
      if (places_.PlaceOf(find.Integer(0)).page == page) numbers.push_back(find.Integer(0));
    }
    find.Reset();
    for (const int64_t number : numbers) {
      remove.Bind(1, number);
      remove.Step();
      remove.Reset();
    }
    removed.insert(removed.end(), numbers.begin(), numbers.end());
  }
  return removed;
}

void TableCopy::Refresh(const TableInfo& table, const std::optional<std::set<uint32_t>>& written) {
  if (!loaded_) return;
  const TableDefinition definition = ReadDefinition(file_, definition_);
  std::set<uint32_t> pages = written ? *written : AllPages(definition);
  std::erase_if(pages, [this](uint32_t number) {
    return !Rehash(number, number < file_.page_count() ? file_.Read(number) : Page());
  });
  // The place of a row that moved is on one page, and what it holds on another.
  if (has_moved_rows_ && !pages.empty()) pages.merge(AllPages(definition));
  Replace(table, definition, pages);
}

void TableCopy::CopyAnew(const TableInfo& table) {
  if (!loaded_) return;
  const TableDefinition definition = ReadDefinition(file_, definition_);
  const std::set<uint32_t> pages = AllPages(definition);
  pages_ = HashPages(definition);
  Replace(table, definition, pages);
}

std::set<uint32_t> TableCopy::AllPages(const TableDefinition& definition) const {
  const std::vector<uint32_t> owned = ReadUsageMap(file_, definition.owned_map).pages;
  std::set<uint32_t> pages(owned.begin(), owned.end());
  for (const auto& [page, hash] : pages_) pages.insert(page);
  return pages;
}

void TableCopy::Replace(const TableInfo& table, const TableDefinition& definition,
                        const std::set<uint32_t>& pages) {
  const std::vector<int64_t> removed = RemoveRows(table, pages);
  std::vector<uint32_t> present;
  for (const uint32_t page : pages) {
    if (pages_.contains(page)) present.push_back(page);
  }
  CopyRows(table, definition, present);
  // A row that is there again has kept its number. That of one that is gone may become another's.
  StorageStatement find(storage_.raw(), "select 1 from " + QuoteName(table.name) + " where " +
                                            std::string(RowIdName(table)) + " = ?1");
  for (const int64_t number : removed) {
    find.Bind(1, number);
    if (!find.Step()) places_.Remove(number);
    find.Reset();
  }
}

void TableCopy::CheckWritable() {
  if (!known_writable_) TableWriter(file_, definition_).CheckWritable();
  known_writable_ = true;
}

jetfile::TableChanges TableCopy::Changes(const TableInfo& table, const TableDefinition& definition,
                                         const WrittenRows& written, SavedRows& saved) {
  const auto columns = ShownColumns(table, definition);
  StorageStatement row(storage_.raw(), "select " + NamesOf(columns) + " from " +
                                           QuoteName(table.name) + " where " +
                                           std::string(RowIdName(table)) + " = ?1");
  TableReader stored(file_, definition, {});
  // What the file holds stays as it is where the storage still shows it, and where it never did.
  const auto values_of_row = [&](bool is_stored) {
    std::vector<Variant> values;
    size_t next = 0;
    for (const ColumnDefinition& column : definition.columns) {
      Variant value = is_stored ? stored.Value(column) : Variant::Null();
      if (next < columns.size() && columns[next] == &column) {
        const int place = static_cast<int>(next++);
        if (!is_stored || !ShowsAs(row, place, value, column.type)) {
          value = ValueIn(row, place, column.type);
        }
      }
      values.push_back(std::move(value));
    }
    return values;
  };
  jetfile::TableChanges changes;
  for (const auto& [number, is_new] : written) {
    row.Bind(1, number);
    const bool is_there = row.Step();
    const RowPointer place = places_.PlaceOf(number);
    if (is_new && is_there) {
      changes.inserted.push_back(values_of_row(false));
      saved.inserted.push_back(number);
    } else if (!is_new && is_there) {
      stored.MoveTo(place);
      changes.updated.emplace_back(place, values_of_row(true));
    } else if (!is_new) {
      changes.deleted.push_back(place);
      saved.deleted.push_back(number);
    }
    row.Reset();
  }
  return changes;
}

WrittenRows TableCopy::EveryRow(const TableInfo& table) {
  WrittenRows rows;
  StorageStatement here(
      storage_.raw(), "select " + std::string(RowIdName(table)) + " from " + QuoteName(table.name));
  while (here.Step()) rows[here.Integer(0)] = true;
  if (!loaded_) return rows;
  const TableDefinition definition = ReadDefinition(file_, definition_);
  for (TableReader stored(file_, definition); stored.Next();) {
    rows[places_.NumberOf(stored.identity())] = false;
  }
  return rows;
}

TableCopy::SavedRows TableCopy::Save(const TableInfo& table, const WrittenRows& rows) {
  TableWriter writer(file_, definition_);
  SavedRows saved;
  saved.places = writer.Apply(Changes(table, writer.definition(), rows, saved));
  writer.Finish();
  return saved;
}

void TableCopy::Saved(const SavedRows& rows, const std::map<uint32_t, Page>& changed_pages) {
  loaded_ = true;
  for (const int64_t number : rows.deleted) places_.Remove(number);
  for (size_t i = 0; i < rows.inserted.size(); ++i) {
    places_.Place(rows.inserted[i], rows.places[i]);
  }
  known_writable_ = false;  // the definition may be another one
  for (const auto& [number, page] : changed_pages) Rehash(number, page);
}

bool TableCopy::Rehash(uint32_t number, const Page& page) {
  const auto known = pages_.find(number);
  if (page == nullptr || !IsDataPageOf(page, definition_)) {
    if (known == pages_.end()) return false;
    pages_.erase(known);
    return true;
  }
  has_moved_rows_ = has_moved_rows_ || HasMovedRows(DataPage(page, number, file_.format()));
  const Hash hash = HashOf(page);
  if (known != pages_.end() && known->second == hash) return false;
  pages_[number] = hash;
  return true;
}

}  // namespace ambrelio::embedded
