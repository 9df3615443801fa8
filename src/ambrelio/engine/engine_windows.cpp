#include <cstdlib>
#include <string>
#include <string_view>

#include "ambrelio/engine/dao_com/dao_engine.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/engine/engine_by_file.h"
#include "ambrelio/engine/mill_indexes.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::engine {
namespace {

enum class JetEngine : uint8_t { kDaoIfThere, kDao, kOwn };

JetEngine ChosenForJet() {
  const char* const text = std::getenv("AMBRELIO_JET");
  const std::string_view choice = text == nullptr ? "" : text;
  if (choice.empty()) return JetEngine::kDaoIfThere;
  if (choice == "dao") return JetEngine::kDao;
  if (choice == "own") return JetEngine::kOwn;
  Raise(RuntimeError::kInvalidCall, "AMBRELIO_JET is dao or own, not " + std::string(choice));
}

}  // namespace

// DAO is looked for when the first file of Jet is opened.
std::shared_ptr<dao::DBEngine> Create() {
  const std::shared_ptr<dao::DBEngine> own =
      embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), MillIndexes());
  const JetEngine choice = ChosenForJet();
  if (choice == JetEngine::kOwn) return own;
  return EngineByFile(own, [own, choice] {
    return choice == JetEngine::kDao || dao_com::IsRegistered() ? dao_com::CreateEngine() : own;
  });
}

}  // namespace ambrelio::engine
