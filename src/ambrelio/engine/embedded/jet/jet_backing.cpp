#include "ambrelio/engine/embedded/jet/jet_backing.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/jet/schema_changes.h"
#include "ambrelio/engine/embedded/storage/catalogue_rows.h"
#include "ambrelio/engine/embedded/storage/table_form.h"
#include "ambrelio/platform/clock.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

// Which tables have their rows in the storage. A rollback takes its part of the copied rows with
// it, and then their entry here too.
constexpr const char* kCopiedTables = "create table \"jet.copied\"(definition integer primary key)";

std::set<int64_t> CopiedTables(Storage& storage) {
  std::set<int64_t> copied;
  StorageStatement row(storage.raw(), "select definition from \"jet.copied\"");
  while (row.Step()) copied.insert(row.Integer(0));
  return copied;
}

void MarkCopied(Storage& storage, uint32_t definition) {
  storage.Run("insert or ignore into \"jet.copied\" values(" + std::to_string(definition) + ")");
}

// The counters of all programs but this one, which has the first.
std::vector<uint16_t> CommitsOfOthers(const jetfile::JetFile& file) {
  const std::vector<uint16_t>& commits = file.header().commits;
  return {commits.begin() + 1, commits.end()};
}

bool SameFields(const TableInfo& a, const TableInfo& b) {
  return std::equal(a.fields.begin(), a.fields.end(), b.fields.begin(), b.fields.end(),
                    [](const FieldInfo& x, const FieldInfo& y) { return x.name == y.name; });
}

}  // namespace

// What is written in its life comes from the file: nothing of it stays if it is not completed.
class JetBacking::Copying {
 public:
  explicit Copying(JetBacking& backing) : backing_(backing) {
    backing_.storage_.Run("savepoint \"jet.copying\"");
    backing_.copying_ = true;
  }
  ~Copying() {
    backing_.copying_ = false;
    const char* const end = complete_ ? "release \"jet.copying\""
                                      : "rollback to \"jet.copying\"; release \"jet.copying\"";
    sqlite3_exec(backing_.storage_.raw(), end, nullptr, nullptr, nullptr);
  }
  Copying(const Copying&) = delete;
  Copying& operator=(const Copying&) = delete;
  void Complete() { complete_ = true; }

 private:
  JetBacking& backing_;
  bool complete_ = false;
};

JetBacking::JetBacking(Storage& storage, std::unique_ptr<jetfile::SharedFile> file)
    : storage_(storage), file_(std::move(file)) {
  storage_.Run(kCopiedTables);
  const auto moment = file_->Read();
  file_->ChangedByOthers();
  commits_ = CommitsOfOthers(pages());
  Take(ReadJetCatalogue(pages()));
  sqlite3_update_hook(
      storage_.raw(),
      [](void* self, int operation, const char*, const char* table, sqlite3_int64 number) {
        static_cast<JetBacking*>(self)->Note(operation, table, number);
      },
      this);
}

JetBacking::~JetBacking() {
  sqlite3_update_hook(storage_.raw(), nullptr, nullptr);
  try {
    SaveAll();
  } catch (...) {
    // Nobody is there to be told.
  }
}

void JetBacking::Note(int operation, const std::string& table, int64_t number) {
  if (copying_ || table.find('.') != std::string::npos) return;
  written_[table].try_emplace(number, operation == SQLITE_INSERT);
}

Catalogue JetBacking::Now() {
  return ReadStamp(storage_) == stamp_ ? known_ : ReadCatalogue(storage_);
}

uint32_t JetBacking::StateOfFile() {
  if (file_->ChangedByOthers()) {
    stale_ = true;
    ++state_;
  }
  return state_;
}

void JetBacking::Refresh() {
  StateOfFile();
  if (!stale_) return;
  storage_.SettleReads();
  const auto moment = file_->Read();
  StateOfFile();  // once more, as what others have committed by now is here
  const JetCatalogue catalogue = ReadJetCatalogue(pages());
  if (DigestOf(catalogue) != digest_) {
    Take(catalogue);
  } else {
    // What fails half-way is begun anew, with all that there is.
    const std::string digest = std::exchange(digest_, {});
    std::vector<uint16_t> commits = CommitsOfOthers(pages());
    Copying copying(*this);
    for (auto& [id, table] : tables_) {
      if (commits != commits_) {
        table.CopyAnew(*known_.FindTable(id));
      } else {
        table.Refresh(*known_.FindTable(id), file_->PagesOfOthers());
      }
    }
    copying.Complete();
    commits_ = std::move(commits);
    digest_ = digest;
  }
  file_->ForgetPagesOfOthers();
  stale_ = false;
}

void JetBacking::Take(const JetCatalogue& catalogue) {
  std::set<std::string> copied;
  for (const auto& [id, table] : tables_) {
    if (table.loaded()) copied.insert(known_.FindTable(id)->name);
  }
  tables_ = Rebuild(catalogue);
  Agree(ReadCatalogue(storage_), catalogue);
  for (const std::string& name : copied) Load(known_, name);
}

std::map<int64_t, TableCopy> JetBacking::Rebuild(const JetCatalogue& catalogue) {
  Copying copying(*this);
  for (const TableInfo& table : known_.tables) {
    DeleteTableRows(storage_, table.id);
    storage_.Run("drop table " + QuoteName(table.name));
  }
  for (const QueryInfo& query : known_.queries) DeleteQueryRow(storage_, query.id);
  storage_.Run("delete from \"jet.copied\"");
  std::map<int64_t, TableCopy> tables;
  for (TableInfo table : catalogue.catalogue.tables) {
    const StoredTable& stored = catalogue.stored.at(table.name);
    KeepIds(table, stored);
    InsertTable(storage_, table);
    storage_.Run(TableForm(table));
    tables.emplace(table.id, TableCopy(storage_, pages(), stored.definition));
  }
  for (QueryInfo query : catalogue.catalogue.queries) {
    if (const QueryInfo* const known = known_.FindQuery(query.name)) query.id = known->id;
    InsertQueryRow(storage_, query);
  }
  Restamp(storage_);
  copying.Complete();
  return tables;
}

// Who holds a definition knows it by its id, also when its table has another name now. A page can
// be another table's meanwhile, which was made at the same second at the worst.
void JetBacking::KeepIds(TableInfo& table, const StoredTable& stored) const {
  const auto known = std::find_if(known_.tables.begin(), known_.tables.end(), [&](const auto& old) {
    const auto place = stored_.find(old.name);
    return place != stored_.end() && place->second == stored &&
           (old.name == table.name || SameFields(old, table));
  });
  if (known == known_.tables.end()) return;
  const TableInfo& old = *known;
  table.id = old.id;
  for (FieldInfo& field : table.fields) {
    if (const FieldInfo* const same = old.FindField(field.name)) field.id = same->id;
  }
  for (IndexInfo& index : table.indexes) {
    if (const IndexInfo* const same = old.FindIndex(index.name)) index.id = same->id;
  }
}

void JetBacking::Agree(const Catalogue& now, const JetCatalogue& in_file) {
  known_ = now;
  stamp_ = ReadStamp(storage_);
  stored_ = in_file.stored;
  relationships_ = in_file.relationships;
  digest_ = DigestOf(in_file);
}

void JetBacking::Need(const TablesTouched& tables) {
  if (file_->read_only() && !tables.written.empty()) {
    dao::Raise(DaoError::kReadOnly, dao::source::kDatabase);
  }
  std::vector<std::string> missing;
  for (const std::string& name : tables.read) {
    const TableInfo* const table = known_.FindTable(name);
    if (table == nullptr) continue;  // made or renamed in this transaction, with its rows
    TableCopy& copy = tables_.at(table->id);
    if (tables.written.contains(name)) copy.CheckWritable();
    if (!copy.loaded()) missing.push_back(name);
  }
  if (missing.empty()) return;
  if (storage_.level() == 0) Refresh();
  const auto moment = file_->Read();
  const Catalogue now = Now();
  for (const std::string& name : missing) Load(now, name);
}

void JetBacking::Load(const Catalogue& catalogue, const std::string& table) {
  const TableInfo* const found = catalogue.FindTable(table);
  const auto copy = found == nullptr ? tables_.end() : tables_.find(found->id);
  if (copy == tables_.end() || copy->second.loaded()) return;
  Copying copying(*this);
  copy->second.Load(*found);
  MarkCopied(storage_, copy->second.definition());
  copying.Complete();
}

void JetBacking::Lock() {
  if (owing_) return;
  file_->Lock();
  try {
    Refresh();
  } catch (...) {
    Unlock();
    throw;
  }
}

void JetBacking::Unlock() noexcept {
  if (owing_) return;
  try {
    file_->Unlock();
  } catch (...) {
    // The turn ends with the process at the latest.
  }
}

void JetBacking::RolledBack() {
  if (storage_.level() == 0) written_.clear();
  const std::set<int64_t> copied = CopiedTables(storage_);
  std::vector<int64_t> lost;
  for (auto& [id, table] : tables_) {
    if (!table.loaded() || copied.contains(table.definition())) continue;
    table.Lose();
    lost.push_back(id);
  }
  if (lost.empty()) return;
  const Catalogue now = Now();
  for (const int64_t id : lost) {
    if (const TableInfo* const table = now.FindTable(id)) Load(now, table->name);
  }
}

void JetBacking::Save() {
  std::optional<Catalogue> redefined;
  if (ReadStamp(storage_) != stamp_) redefined = ReadCatalogue(storage_);
  if (!redefined && written_.empty()) return;
  if (file_->read_only()) dao::Raise(DaoError::kReadOnly, dao::source::kWorkspace);
  CheckRelationships();
  const std::map<uint32_t, jetfile::Page> before = pages().changes();
  try {
    Write(redefined ? *redefined : known_, redefined.has_value());
  } catch (...) {
    pages().ForgetChanges();
    for (const auto& [number, page] : before) pages().Write(number, *page);
    throw;
  }
  written_.clear();
}

void JetBacking::CheckRelationships() {
  for (const Relationship& relationship : relationships_) {
    if (!written_.contains(relationship.child) && !written_.contains(relationship.parent)) continue;
    const Catalogue now = Now();
    const TableInfo* const child = now.FindTable(relationship.child);
    if (child == nullptr || now.FindTable(relationship.parent) == nullptr) continue;
    Load(now, relationship.child);
    Load(now, relationship.parent);
    CheckRelationship(storage_, relationship, *child, written_);
  }
}

void JetBacking::SaveAll() {
  put_off_ = false;
  if (!std::exchange(owing_, false)) return;
  try {
    file_->Commit();
  } catch (...) {
    // The storage has what the file has not.
    stale_ = true;
    ++state_;
    digest_.clear();
    Unlock();
    throw;
  }
  Unlock();
}

void JetBacking::Write(const Catalogue& now, bool redefined) {
  DefinitionPages definitions;
  for (const auto& [id, table] : tables_) definitions[id] = table.definition();
  SchemaChanges changes_of_schema(pages(), known_, now, Clock::Current().Now());
  if (redefined) changes_of_schema.BeforeRows(definitions);
  std::map<int64_t, TableCopy> made;
  for (const auto& [id, page] : definitions) {
    if (!tables_.contains(id)) made.emplace(id, TableCopy(storage_, pages(), page));
  }
  std::map<int64_t, TableCopy::SavedRows> saved;
  for (const TableInfo& table : now.tables) {
    const auto known = tables_.find(table.id);
    TableCopy& copy = known != tables_.end() ? known->second : made.at(table.id);
    // Rows of a table that had another name meanwhile, or none, are noted under that.
    const bool renamed = known == tables_.end() || known_.FindTable(table.id)->name != table.name;
    const WrittenRows rows = renamed ? copy.EveryRow(table) : written_[table.name];
    if (!rows.empty()) saved[table.id] = copy.Save(table, rows);
  }
  if (redefined) changes_of_schema.AfterRows(definitions);
  const std::map<uint32_t, jetfile::Page> changes = pages().changes();
  if (put_off_) {
    owing_ = true;
  } else {
    file_->Commit();
  }

  for (auto& [id, table] : made) {
    table.Saved(saved[id], changes);
    MarkCopied(storage_, table.definition());
  }
  for (auto& [id, table] : tables_) {
    if (table.loaded()) table.Saved(saved[id], changes);
  }
  if (!redefined) return;
  tables_.merge(made);
  std::erase_if(tables_, [&](const auto& entry) { return !definitions.contains(entry.first); });
  Agree(now, ReadJetCatalogue(pages()));
}

}  // namespace ambrelio::embedded
