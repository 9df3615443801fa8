#include "mdb_export.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::bench {

namespace {

using dao::FieldType;

// The output of a command, piece by piece.
class Output {
 public:
  explicit Output(const std::string& command) : pipe_(popen(command.c_str(), "r")) {}
  ~Output() {
    if (pipe_ == nullptr || pclose(pipe_) != 0) std::exit(1);
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // EOF at the end.
  int Next() { return pipe_ == nullptr ? EOF : std::getc(pipe_); }

 private:
  FILE* pipe_;
};

std::string Export(const std::string& path, const std::string& table) {
  return "mdb-export -D '%Y-%m-%d %H:%M:%S' -T '%Y-%m-%d %H:%M:%S' '" + path + "' '" + table + "'";
}

struct Cell {
  std::string text;
  bool quoted = false;
};

// The cells of a line; false at the end.
bool NextLine(Output& output, std::vector<Cell>& cells) {
  cells.assign(1, {});
  bool inside = false;
  int c = output.Next();
  if (c == EOF) return false;
  for (; c != EOF && (inside || c != '\n'); c = output.Next()) {
    if (c == '"') {
      // A quote within a text is two.
      if (!inside && cells.back().quoted) cells.back().text += '"';
      cells.back().quoted = true;
      inside = !inside;
    } else if (c == ',' && !inside) {
      cells.emplace_back();
    } else {
      cells.back().text += static_cast<char>(c);
    }
  }
  return true;
}

void AddCell(const Cell& cell, FieldType type, Answer& answer) {
  if (cell.text.empty() && !cell.quoted) return answer.AddNull();
  switch (type) {
    case FieldType::kText:
    case FieldType::kMemo:
      return answer.Add(std::string_view(cell.text));
    case FieldType::kDate:
      return answer.Add(OleDate::FromIso(cell.text).value().days());
    case FieldType::kBoolean:
      return answer.Add(-std::stod(cell.text));  // true is -1 elsewhere
    default:
      return answer.Add(std::stod(cell.text));
  }
}

}  // namespace

bool HasMdbExport() { return std::system("command -v mdb-export >/dev/null") == 0; }

int64_t LinesExported(const std::string& path, const std::string& table) {
  Output output(Export(path, table) + " | wc -l");
  std::string lines;
  for (int c = output.Next(); c != EOF; c = output.Next()) lines += static_cast<char>(c);
  return std::stoll(lines);
}

void AddExported(const std::string& path, const std::string& table,
                 dao::Collection<dao::Field>& fields, Answer& answer) {
  std::vector<FieldType> types;
  for (int i = 0; i < fields.Count(); ++i) types.push_back(fields.Item(i)->Type());
  Output output(Export(path, table));
  std::vector<Cell> cells;
  NextLine(output, cells);  // the names
  while (NextLine(output, cells)) {
    for (size_t i = 0; i < types.size(); ++i) AddCell(cells.at(i), types[i], answer);
    answer.EndRow();
  }
}

}  // namespace ambrelio::bench
