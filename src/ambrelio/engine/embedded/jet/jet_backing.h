// A Jet file behind a storage in memory.
//
// The storage has all tables of the file, each without rows until a statement needs them. What is
// written in the storage is noted by SQLite's own hook; the outermost commit brings the noted rows,
// and what has become of the catalogue, into the pages of the file, and these onto the disk.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/embedded/jet/jet_catalogue.h"
#include "ambrelio/engine/embedded/jet/relationships.h"
#include "ambrelio/engine/embedded/jet/table_copy.h"
#include "ambrelio/engine/embedded/storage/backing.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/jetfile/shared_file.h"

namespace ambrelio::embedded {

class JetBacking final : public Backing {
 public:
  // Fills the storage, which must outlive the backing, with the catalogue of the file.
  JetBacking(Storage& storage, std::unique_ptr<jetfile::SharedFile> file);
  ~JetBacking() override;

  uint32_t StateOfFile() override;
  void Refresh() override;
  void Need(const TablesTouched& tables) override;
  void Lock() override;
  void Save() override;
  void PutOffSaving() override { put_off_ = true; }
  void SaveAll() override;
  void RolledBack() override;
  void Unlock() noexcept override;

 private:
  class Copying;

  jetfile::JetFile& pages() const { return file_->file(); }
  // SQLite's hook: a row of a table was written.
  void Note(int operation, const std::string& table, int64_t number);
  // The catalogue as it stands in the storage now.
  Catalogue Now();
  void Load(const Catalogue& catalogue, const std::string& table);
  // Makes the storage's catalogue that of the file, whatever it was.
  void Take(const JetCatalogue& catalogue);
  std::map<int64_t, TableCopy> Rebuild(const JetCatalogue& catalogue);
  void KeepIds(TableInfo& table, const StoredTable& stored) const;
  // Brings the storage's catalogue and rows into the pages of the file.
  void Write(const Catalogue& now, bool redefined);
  void Agree(const Catalogue& now, const JetCatalogue& in_file);
  void CheckRelationships();

  Storage& storage_;
  std::unique_ptr<jetfile::SharedFile> file_;
  uint32_t state_ = 0;
  bool stale_ = false;             // others have committed since the last Refresh
  bool copying_ = false;           // what is written in the storage now comes from the file
  bool put_off_ = false;           // see PutOffSaving
  bool owing_ = false;             // what was saved is not in the file yet, and the turn is kept
  std::vector<uint16_t> commits_;  // that other programs had counted in the file

  // What storage and file agreed on last: the catalogue, its stamp in the storage, and in the file
  // the tables by their names, the relationships and a digest of it all.
  Catalogue known_;
  std::string stamp_;
  std::map<std::string, StoredTable> stored_;
  std::vector<Relationship> relationships_;
  std::string digest_;
  std::map<int64_t, TableCopy> tables_;  // by the tables' ids
  // By the tables' names, since the transaction began.
  std::map<std::string, WrittenRows> written_;
};

}  // namespace ambrelio::embedded
