// A document of docs/ as its tests see it: headings, paragraphs and examples.
//
// The examples stand in fenced blocks, in which a line that starts with > goes in, a line that
// starts with > and several blanks continues it, and what follows is the answer. An answer that is
// long is broken behind a comma; the lines after the first are set in.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace ambrelio::test {

struct Example {
  int line = 0;         // in the document, from 1
  std::string heading;  // the nearest one above it
  std::string kind;     // the word behind the fence: "journal"
  std::string input;
  std::string answer;                // in one line
  std::vector<std::string> lines{};  // the answer as it stands
};

// A row of a table, its heading and the line below that included.
struct TableRow {
  int line = 0;
  std::string heading;
  std::vector<std::string> cells;
};

struct Document {
  // Headings with their marks ("## Tolva") and the paragraphs of plain text between them, each in
  // one line, in the order of the document.
  std::vector<std::string> text;
  std::vector<Example> examples;
  std::vector<TableRow> rows;
  // The lines of every fenced block that holds no examples, under the word behind its fence.
  std::vector<std::pair<std::string, std::string>> blocks;

  std::vector<Example> ExamplesOf(const std::string& kind) const;
  // The only block of that kind.
  std::string Block(const std::string& kind) const;
};

// Reads docs/<name>. Throws when there is no such document or its form is broken.
Document ReadDocument(const std::string& name);

}  // namespace ambrelio::test
