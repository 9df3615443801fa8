// A table of a Jet file as it stands in the storage: its rows, once they were needed, and their way
// back into the file.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/engine/embedded/jet/row_places.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/jetfile/jet_file.h"
#include "ambrelio/engine/jetfile/table_writer.h"

namespace ambrelio::embedded {

// Rows that were written, by their numbers: true for one that the file does not have.
using WrittenRows = std::map<int64_t, bool>;

class TableCopy {
 public:
  // The storage has the table, without rows and indexes. Both must outlive the copy. `definition`
  // is the page of its definition in the file.
  TableCopy(Storage& storage, jetfile::JetFile& file, uint32_t definition)
      : storage_(storage), file_(file), definition_(definition) {}

  uint32_t definition() const { return definition_; }
  bool loaded() const { return loaded_; }
  // Copies the rows and makes the indexes; `table` is the table as the storage has it. Raises
  // Damage, and 3022 or 3058 for rows that break a key of their table.
  void Load(const TableInfo& table);
  // The storage has lost the rows.
  void Lose() { loaded_ = false; }
  // Copies what others have changed in the file: the rows on pages that are not what they were,
  // which are some of those `written`, when these are known. No row of the table may have been
  // written in the storage since.
  void Refresh(const TableInfo& table, const std::optional<std::set<uint32_t>>& written);
  // The same of all rows, where the pages do not tell what changed.
  void CopyAnew(const TableInfo& table);

  // Raises an error when the file's table cannot be written.
  void CheckWritable();
  // As if all rows here and in the file had been written.
  WrittenRows EveryRow(const TableInfo& table);
  // Where rows are that came into the file by a Save, and which have gone.
  struct SavedRows {
    std::vector<int64_t> inserted;
    std::vector<jetfile::RowPointer> places;  // of the inserted ones
    std::vector<int64_t> deleted;
  };
  // Puts rows that were written in the storage into the pages of the file.
  SavedRows Save(const TableInfo& table, const WrittenRows& rows);
  // The pages that changed, whichever tables they are of, are those of the file from now on.
  void Saved(const SavedRows& rows, const std::map<uint32_t, jetfile::Page>& changed_pages);

 private:
  using Hash = uint64_t;

  std::map<uint32_t, Hash> HashPages(const jetfile::TableDefinition& definition);
  void CopyRows(const TableInfo& table, const jetfile::TableDefinition& definition,
                const std::vector<uint32_t>& pages);
  // Gives the numbers that the rows had.
  std::vector<int64_t> RemoveRows(const TableInfo& table, const std::set<uint32_t>& pages);
  // Those of the table's rows, now and as they were copied.
  std::set<uint32_t> AllPages(const jetfile::TableDefinition& definition) const;
  // Makes the rows on these pages what they are in the file.
  void Replace(const TableInfo& table, const jetfile::TableDefinition& definition,
               const std::set<uint32_t>& pages);
  // Takes the hash of a page, if it is one of the table's rows; gives whether it is not what it
  // was.
  bool Rehash(uint32_t number, const jetfile::Page& page);
  // What is to become of the file's rows; `saved` gets the numbers of those that come and go.
  jetfile::TableChanges Changes(const TableInfo& table, const jetfile::TableDefinition& definition,
                                const WrittenRows& written, SavedRows& saved);

  Storage& storage_;
  jetfile::JetFile& file_;
  uint32_t definition_;
  bool loaded_ = false;
  RowPlaces places_;
  std::map<uint32_t, Hash> pages_;  // of rows, as they were copied
  bool has_moved_rows_ = false;     // or once had
  bool known_writable_ = false;
};

}  // namespace ambrelio::embedded
