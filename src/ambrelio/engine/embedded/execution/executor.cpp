#include "ambrelio/engine/embedded/execution/executor.h"

#include <optional>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/execution/data_definition.h"
#include "ambrelio/engine/embedded/execution/preparation.h"
#include "ambrelio/engine/embedded/execution/recordset.h"
#include "ambrelio/engine/embedded/execution/statement_cache.h"
#include "ambrelio/engine/embedded/execution/stepwise_update.h"
#include "ambrelio/engine/embedded/sql/lexer.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/embedded/storage/transaction_level.h"

namespace ambrelio::embedded {

namespace {

using dao::DaoError;

// What a statement is prepared for: part of its key in the cache.
enum class Use : char { kDynaset = 'd', kSnapshot = 's', kWrite = 'w', kStrictWrite = 'f' };

std::string_view Trimmed(std::string_view text) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && (is_blank(text.back()) || text.back() == ';')) text.remove_suffix(1);
  return text;
}

// Whether the text can be nothing but the name of a table or query.
bool IsName(std::string_view text) {
  if (text.size() > 2 && text.front() == '[') return text.find(']') == text.size() - 1;
  return !text.empty() && text.find_first_of(" \t\r\n()'\"#") == std::string_view::npos;
}

// One for everything that the opening of a recordset reads: it sees one state of the file, whose
// locks are taken once. The recordset's statement holds that state when the transaction has ended.
class ReadTransaction {
 public:
  ReadTransaction(StorageStatement& begin, StorageStatement& end) : end_(end) {
    begin.Step();
    begin.Reset();
  }
  ~ReadTransaction() {
    sqlite3_step(end_.raw());
    sqlite3_reset(end_.raw());
  }
  ReadTransaction(const ReadTransaction&) = delete;
  ReadTransaction& operator=(const ReadTransaction&) = delete;

 private:
  StorageStatement& end_;
};

}  // namespace

class Executor::Impl {
 public:
  Impl(Storage& storage, CatalogueStore& catalogue, const PlanOptions& plan)
      : storage_(storage),
        catalogue_(catalogue),
        plan_(plan),
        begin_reading_(storage.raw(), "begin"),
        end_reading_(storage.raw(), "commit") {}

  int32_t Execute(const std::string& sql, bool fail_on_error) {
    storage_.SettleReads();
    const Catalogue& catalogue = Refresh();
    sql::Shape shape = sql::ShapeOf(sql);
    bool defined = false;
    const auto prepare = [&] {
      const sql::Statement statement = sql::Parse(sql);
      defined = TryDefine(statement);
      if (defined) return Preparation{};
      return PrepareWrite(statement, Ground(catalogue, shape), fail_on_error);
    };
    Lease lease = Get(shape, sql, fail_on_error ? Use::kStrictWrite : Use::kWrite, prepare);
    if (defined) return 0;
    try {
      return Write(*lease, shape.literals);
    } catch (const AutomationError& error) {
      // What others hold is skipped like any other row that cannot be written.
      const bool locked = error.number() == static_cast<int>(DaoError::kRecordLocked);
      if (fail_on_error || !locked) throw;
      return 0;
    }
  }

  std::unique_ptr<dao::Recordset> Open(const std::string& source, dao::RecordsetType type,
                                       Liveness alive) {
    // Where nobody has committed since the catalogue was looked at, nothing is read but the
    // statement's own rows; if somebody has by the time it is open, it is opened once more.
    const bool in_transaction = storage_.level() > 0;
    if (in_transaction || storage_.CatchUp()) {
      std::unique_ptr<dao::Recordset> rows;
      try {
        rows = OpenNow(source, type, alive);
      } catch (const AutomationError&) {
        if (in_transaction || storage_.IsAsLookedAt()) throw;
      }
      if (rows && (in_transaction || storage_.IsAsLookedAt())) return rows;
    }
    storage_.CatchUp();
    const ReadTransaction reading(begin_reading_, end_reading_);
    return OpenNow(source, type, std::move(alive));
  }

  Explanation Explain(const std::string& source) {
    const Catalogue& catalogue = Refresh();
    std::string of_name;
    const std::string& sql = SelectText(source, catalogue, of_name);
    sql::Shape shape = sql::ShapeOf(sql);
    const sql::Statement statement = sql::Parse(sql);
    if (IsDefinition(statement)) {
      dao::Raise(DaoError::kInvalidStatement, dao::source::kDatabase, sql);
    }
    const PreparationGround ground = Ground(catalogue, shape);
    const Preparation preparation = std::holds_alternative<sql::Query>(statement)
                                        ? PrepareQuery(statement, ground, /*as_snapshot=*/false)
                                        : PrepareWrite(statement, ground, /*strict=*/false);
    // Tables have their indexes once their rows are there.
    storage_.Need({.read = preparation.prepared->touched.read, .written = {}});
    return ExplanationOf(preparation, ground, std::move(shape));
  }

 private:
  const Catalogue& Refresh() {
    const Catalogue& catalogue = catalogue_.Current();
    cache_->KeepVersion(catalogue_.version());
    return catalogue;
  }

  PreparationGround Ground(const Catalogue& catalogue, const sql::Shape& shape) const {
    return {catalogue, storage_, plan_, shape.literals.size()};
  }

  std::unique_ptr<dao::Recordset> OpenNow(const std::string& source, dao::RecordsetType type,
                                          Liveness alive) {
    const Catalogue& catalogue = Refresh();
    std::string of_name;
    const std::string& sql = SelectText(source, catalogue, of_name);
    sql::Shape shape = sql::ShapeOf(sql);
    const bool as_snapshot = type == dao::RecordsetType::kSnapshot;
    const auto prepare = [&] {
      return PrepareQuery(sql::Parse(sql), Ground(catalogue, shape), as_snapshot);
    };
    Lease lease = Get(shape, sql, as_snapshot ? Use::kSnapshot : Use::kDynaset, prepare);
    storage_.Need(lease->touched);
    return OpenRows(storage_, std::move(lease), std::move(shape.literals), std::move(alive));
  }

  // The statement for the text, from the cache or newly prepared. Its use completes the key of the
  // shape.
  template <class Prepare>
  Lease Get(sql::Shape& shape, const std::string& sql, Use use, const Prepare& prepare) {
    shape.key += static_cast<char>(use);
    bool by_text = false;
    std::unique_ptr<Prepared> prepared = cache_->Take(shape.key, by_text);
    if (by_text) prepared = cache_->Take(shape.key + sql, by_text);
    if (prepared) return {std::move(prepared), cache_};
    Preparation made = prepare();
    if (made.prepared) {
      if (made.by_text) cache_->MarkByText(shape.key);
      made.prepared->key = made.by_text ? shape.key + sql : shape.key;
      made.prepared->version = catalogue_.version();
    }
    return {std::move(made.prepared), cache_};
  }

  int32_t Write(Prepared& prepared, const std::vector<Variant>& literals) {
    // Commits at its end what goes into another file; SQLite's own commits come by themselves.
    std::optional<TransactionLevel> level;
    if (storage_.backed() && storage_.level() == 0) level.emplace(storage_);
    storage_.Need(prepared.touched);
    const int32_t written = WriteNow(prepared, literals);
    if (level) level->Complete();
    return written;
  }

  int32_t WriteNow(Prepared& prepared, const std::vector<Variant>& literals) {
    prepared.main.BindAll(literals);
    if (prepared.stepwise) {
      prepared.stepwise->values.BindAll(literals);
      return UpdateStepwise(storage_, prepared);
    }
    prepared.main.Step();
    return static_cast<int32_t>(storage_.Changes());
  }

  // Whether the statement was a data definition, which is carried out then.
  bool TryDefine(const sql::Statement& statement) {
    return std::visit(
        [&](const auto& definition) {
          constexpr bool kDefines = requires { Define(definition, catalogue_); };
          if constexpr (kDefines) Define(definition, catalogue_);
          return kDefines;
        },
        statement);
  }

  static bool IsDefinition(const sql::Statement& statement) {
    return std::visit(
        [](const auto& any) {
          return requires(CatalogueStore & store) { Define(any, store); };
        },
        statement);
  }

  // A name alone stands for everything in the table or query: that text is put into `of_name`.
  static const std::string& SelectText(const std::string& source, const Catalogue& catalogue,
                                       std::string& of_name) {
    std::string_view name = Trimmed(source);
    if (!IsName(name)) return source;
    if (name.front() == '[') name = name.substr(1, name.size() - 2);
    if (catalogue.FindTable(name) == nullptr && catalogue.FindQuery(name) == nullptr) {
      dao::Raise(DaoError::kUnknownTable, dao::source::kDatabase, std::string(name));
    }
    of_name = "select * from [" + std::string(name) + "]";
    return of_name;
  }

  Storage& storage_;
  CatalogueStore& catalogue_;
  const PlanOptions plan_;
  StorageStatement begin_reading_;
  StorageStatement end_reading_;
  std::shared_ptr<StatementCache> cache_ = std::make_shared<StatementCache>();
};

Executor::Executor(Storage& storage, CatalogueStore& catalogue, const PlanOptions& plan)
    : impl_(std::make_unique<Impl>(storage, catalogue, plan)) {}

Executor::~Executor() = default;

int32_t Executor::Execute(const std::string& sql, bool fail_on_error) {
  return impl_->Execute(sql, fail_on_error);
}

std::unique_ptr<dao::Recordset> Executor::Open(const std::string& source, dao::RecordsetType type,
                                               Liveness alive) {
  return impl_->Open(source, type, std::move(alive));
}

Explanation Executor::Explain(const std::string& source) { return impl_->Explain(source); }

}  // namespace ambrelio::embedded
