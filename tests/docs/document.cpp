#include "docs/document.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace ambrelio::test {
namespace {

constexpr std::string_view kFence = "```";

std::string Trimmed(std::string_view line) {
  const size_t start = line.find_first_not_of(' ');
  return start == std::string_view::npos ? "" : std::string(line.substr(start));
}

// What stands between the bars of a row; a bar within a cell is written \|.
std::vector<std::string> CellsOf(const std::string& line) {
  constexpr std::string_view kBar = " | ";
  std::vector<std::string> cells;
  size_t start = 2;
  for (size_t bar; (bar = line.find(kBar, start)) != std::string::npos;) {
    cells.push_back(line.substr(start, bar - start));
    start = bar + kBar.size();
  }
  cells.push_back(line.substr(start, line.rfind(" |") - start));
  return cells;
}

class Reader {
 public:
  explicit Reader(std::string name) : name_(std::move(name)) {}

  void Read(const std::string& line) {
    ++number_;
    if (line.starts_with(kFence)) {
      EndParagraph();
      in_block_ = !in_block_;
      if (in_block_) StartBlock(line.substr(kFence.size()));
    } else if (in_block_) {
      ReadInBlock(line);
    } else {
      ReadText(line);
    }
  }

  Document Take() {
    EndParagraph();
    if (in_block_) Fail("a block without its end");
    std::erase_if(document_.blocks, [](const auto& block) { return block.second.empty(); });
    return std::move(document_);
  }

 private:
  [[noreturn]] void Fail(const std::string& problem) const {
    throw std::runtime_error(name_ + ":" + std::to_string(number_) + ": " + problem);
  }

  void StartBlock(const std::string& kind) {
    has_example_ = false;
    document_.blocks.emplace_back(kind, "");
  }

  void ReadInBlock(const std::string& line) {
    if (line.starts_with(">  ")) {
      if (!has_example_) Fail("a continuation of nothing");
      document_.examples.back().input += " " + Trimmed(line.substr(1));
    } else if (line.starts_with("> ")) {
      has_example_ = true;
      document_.examples.push_back(
          {number_, heading_, document_.blocks.back().first, line.substr(2), "", {}});
    } else if (has_example_) {
      document_.examples.back().answer += Trimmed(line);
      document_.examples.back().lines.push_back(line);
    } else {
      document_.blocks.back().second += line + "\n";
    }
  }

  void ReadText(const std::string& line) {
    if (line.starts_with('#')) {
      EndParagraph();
      document_.text.push_back(line);
      heading_ = line.substr(line.find_first_not_of("# "));
    } else if (line.starts_with("| ")) {
      EndParagraph();
      document_.rows.push_back({number_, heading_, CellsOf(line)});
    } else if (line.empty()) {
      EndParagraph();
    } else {
      paragraph_ += (paragraph_.empty() ? "" : " ") + line;
    }
  }

  void EndParagraph() {
    if (!paragraph_.empty()) document_.text.push_back(std::exchange(paragraph_, {}));
  }

  std::string name_;
  int number_ = 0;
  bool in_block_ = false;
  bool has_example_ = false;  // in the present block
  std::string heading_;
  std::string paragraph_;
  Document document_;
};

}  // namespace

std::vector<Example> Document::ExamplesOf(const std::string& kind) const {
  std::vector<Example> found;
  std::copy_if(examples.begin(), examples.end(), std::back_inserter(found),
               [&kind](const Example& example) { return example.kind == kind; });
  return found;
}

std::string Document::Block(const std::string& kind) const {
  const auto is_kind = [&kind](const auto& block) { return block.first == kind; };
  if (std::count_if(blocks.begin(), blocks.end(), is_kind) != 1) {
    throw std::runtime_error("one block of the kind " + kind + " is expected");
  }
  return std::find_if(blocks.begin(), blocks.end(), is_kind)->second;
}

Document ReadDocument(const std::string& name) {
  const std::string path = std::string(AMBRELIO_SOURCE_DIR) + "/docs/" + name;
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + " cannot be read");
  Reader reader("docs/" + name);
  for (std::string line; std::getline(file, line);) reader.Read(line);
  return reader.Take();
}

}  // namespace ambrelio::test
