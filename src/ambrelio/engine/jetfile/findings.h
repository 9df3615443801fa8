// What a check of a file found.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {

enum class Rule : uint8_t {
  kFile,        // size, page 0, commit table
  kOwnership,   // every page has one owner
  kDefinition,  // table definitions
  kDataPage,    // slots, free bytes, rows that moved
  kRow,         // rows and long values
  kCount,       // row counters, autonumbers
  kIndex,       // trees and keys
  kCatalogue,   // objects, rights, queries, relationships
};

struct Finding {
  Rule rule = Rule::kFile;
  Place place;
  std::string text;  // what is wrong, a phrase without a stop
};

class Findings {
 public:
  void Add(Rule rule, Place place, std::string text);
  // Does something; what is damaged for it becomes a finding. Whether it came through.
  template <class Action>
  bool Try(Rule rule, Action action) {
    try {
      action();
      return true;
    } catch (const Damage& damage) {
      Add(rule, damage.place(), damage.what_is_wrong());
      return false;
    }
  }
  const std::vector<Finding>& all() const { return all_; }
  std::vector<Finding> Take() { return std::move(all_); }

 private:
  std::vector<Finding> all_;
};

}  // namespace ambrelio::jetfile
