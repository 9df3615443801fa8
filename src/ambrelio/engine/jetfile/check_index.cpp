#include "ambrelio/engine/jetfile/check_index.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/index_key.h"

namespace ambrelio::jetfile {
namespace {

bool IsNull(const Variant& value) { return value.is_null(); }

}  // namespace

void IndexCheck::Say(Place place, const std::string& text) {
  findings_.Add(Rule::kIndex, place, text + " in index " + name_);
}

void IndexCheck::Run(const std::vector<KeyedRow>* rows) {
  const UsageMap map = owners_.ClaimMap(index_.map, "index " + name_);
  const size_t before = findings_.all().size();
  const bool walked = findings_.Try(Rule::kIndex, [this] { Visit(index_.root, 0); });
  if (!walked) return;
  CheckLinks();
  CheckMap(map);
  const bool sound = findings_.all().size() == before;
  if (rows != nullptr && sound) findings_.Try(Rule::kIndex, [&] { CheckRows(*rows); });
}

std::optional<Bytes> IndexCheck::Visit(uint32_t number, size_t level) {
  const IndexPage page = ReadIndexPage(file_, number);
  if (level == kMostIndexLevels || !pages_.insert(number).second) {
    throw Damage({number, 0}, "the pages of index " + name_ + " go in a circle");
  }
  if (levels_.size() == level) levels_.emplace_back();
  levels_[level].push_back({number, page.previous, page.next});
  CheckPage(page);
  if (!page.leaf) return VisitChildren(page, level);
  CheckLeaf(page);
  return page.entries.empty() ? std::nullopt : std::optional(page.entries.back());
}

void IndexCheck::CheckPage(const IndexPage& page) {
  if (page.table != definition_.page()) {
    Say({page.number, 4},
        "a page is that of the table defined on page " + std::to_string(page.table));
  }
  const size_t free = file_.format().entry_space() - page.used_bytes;
  if (page.free_bytes != free) {
    Say({page.number, 2}, "a page says it has " + std::to_string(page.free_bytes) +
                              " free bytes and has " + std::to_string(free));
  }
  if (page.leaf && (page.tail != 0 || page.level != 0)) {
    Say({page.number, file_.format().previous_at + 8}, "a leaf is marked as a node");
  }
  if (!page.leaf && page.tail == 0) {
    Say({page.number, file_.format().previous_at + 8}, "a node has no last child");
  }
}

void IndexCheck::CheckLeaf(const IndexPage& page) {
  for (size_t i = 0; i < page.entries.size(); ++i) {
    if (!last_entry_.empty() && !(last_entry_ < page.entries[i])) {
      Say({page.number, file_.format().entries_at},
          "entry " + std::to_string(i) + " does not stand behind the one before it");
    }
    last_entry_ = page.entries[i];
    entries_.push_back(page.EntryAt(i));
  }
}

std::optional<Bytes> IndexCheck::VisitChildren(const IndexPage& page, size_t level) {
  std::optional<Bytes> last;
  for (size_t i = 0; i < page.entries.size(); ++i) {
    last = Visit(page.ChildAt(i), level + 1);
    const auto bound = page.BoundAt(i);
    if (last && std::equal(bound.begin(), bound.end(), last->begin(), last->end())) continue;
    Say({page.number, file_.format().entries_at}, "entry " + std::to_string(i) +
                                                      " of a node is not the last one of page " +
                                                      std::to_string(page.ChildAt(i)));
  }
  if (page.tail != 0) last = Visit(page.tail, level + 1);
  return last;
}

void IndexCheck::CheckLinks() {
  for (const auto& level : levels_) {
    for (size_t i = 0; i < level.size(); ++i) {
      const uint32_t previous = i == 0 ? 0 : level[i - 1].number;
      const uint32_t next = i + 1 == level.size() ? 0 : level[i + 1].number;
      const size_t at = file_.format().previous_at;
      if (level[i].previous != previous) {
        Say({level[i].number, at}, "a page names the wrong page before it");
      }
      if (level[i].next != next) {
        Say({level[i].number, at + 4}, "a page names the wrong page behind it");
      }
    }
  }
}

void IndexCheck::CheckMap(const UsageMap& map) {
  for (const uint32_t page : map.pages) {
    if (!pages_.contains(page)) Say({page, 0}, "the map has a page that the tree has not");
  }
  for (const uint32_t page : pages_) {
    if (!map.Contains(page)) Say({page, 0}, "the tree has a page that the map has not");
  }
}

void IndexCheck::CheckRows(const std::vector<KeyedRow>& rows) {
  std::map<RowPointer, const Bytes*> entries;
  for (const IndexEntry& entry : entries_) entries[entry.row] = &entry.key;
  const Place place{index_.root, 0};
  if (entries.size() != entries_.size()) Say(place, "a row has several entries");
  std::set<Bytes> unique;
  for (const KeyedRow& row : rows) {
    const std::string row_name =
        "row " + std::to_string(row.row.row) + " of page " + std::to_string(row.row.page);
    const bool has_null = std::any_of(row.values.begin(), row.values.end(), IsNull);
    const bool all_null = std::all_of(row.values.begin(), row.values.end(), IsNull);
    if (has_null && index_.required()) Say(place, "a required value is Null in " + row_name);
    const auto entry = entries.find(row.row);
    const bool expected = !(index_.ignores_nulls() && all_null);
    if (expected != (entry != entries.end())) {
      Say(place, row_name + (expected ? " has no entry" : ", of Nulls, has an entry"));
    }
    if (entry == entries.end()) continue;
    const Bytes key = *entry->second;
    entries.erase(entry);
    const auto encoded = EncodeKey(definition_, index_, row.values, file_.format().jet4);
    if (encoded && *encoded != key) Say(place, "the key is not that of " + row_name);
    if (index_.unique() && !has_null && !unique.insert(key).second) {
      Say(place, "the key of " + row_name + " is there twice");
    }
  }
  for (const auto& [row, key] : entries) {
    Say(place, "an entry is of row " + std::to_string(row.row) + " of page " +
                   std::to_string(row.page) + ", which is none of the table");
  }
}

}  // namespace ambrelio::jetfile
