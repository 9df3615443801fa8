#include "ambrelio/engine/jetfile/findings.h"

#include <utility>

namespace ambrelio::jetfile {
namespace {

// A file with so much wrong is not understood better by more.
constexpr size_t kMostFindings = 1000;

}  // namespace

void Findings::Add(Rule rule, Place place, std::string text) {
  if (all_.size() < kMostFindings) all_.push_back({rule, place, std::move(text)});
}

}  // namespace ambrelio::jetfile
