#include "ambrelio/engine/embedded/binder/binder.h"

#include "ambrelio/engine/embedded/binder/binding.h"

namespace ambrelio::embedded {

namespace {

// Only these four have names of columns in them.
struct BindAny {
  Binding& binding;

  bound::Statement operator()(const sql::Query& query) const { return binding.BindQuery(query); }
  bound::Statement operator()(const sql::Insert& insert) const {
    return binding.BindInsert(insert);
  }
  bound::Statement operator()(const sql::Update& update) const {
    return binding.BindUpdate(update);
  }
  bound::Statement operator()(const sql::Delete& statement) const {
    return binding.BindDelete(statement);
  }
  template <class Definition>
  bound::Statement operator()(const Definition& /*unused*/) const {
    dao::Raise(dao::DaoError::kInvalidStatement, dao::source::kDatabase);
  }
};

}  // namespace

BoundStatement Bind(const sql::Statement& statement, const Catalogue& catalogue) {
  Binding binding(catalogue);
  BoundStatement result{std::visit(BindAny{binding}, statement)};
  binding.RequireAllNames();
  result.literals_matter = binding.literals_matter();
  return result;
}

}  // namespace ambrelio::embedded
