#include "table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::cli {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

template <size_t kCount>
bool In(const std::array<Range, kCount>& ranges, char32_t c) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [c](Range range) { return c >= range.first && c <= range.last; });
}

size_t WidthOf(char32_t c) {
  constexpr std::array kNone = {Range{0x300, 0x36F}, Range{0x200B, 0x200F}, Range{0xFE00, 0xFE0F}};
  constexpr std::array kWide = {Range{0x1100, 0x115F}, Range{0x2E80, 0xA4CF},
                                Range{0xAC00, 0xD7A3}, Range{0xF900, 0xFAFF},
                                Range{0xFF00, 0xFF60}, Range{0x1F300, 0x1FAFF}};
  if (In(kNone, c)) return 0;
  return In(kWide, c) ? 2 : 1;
}

// The first character of valid UTF-8 text.
char32_t FirstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const size_t size = Utf8Prefix(text, 1).size();
  if (size == 1) return lead;
  char32_t c = lead & (0x7FU >> size);
  for (size_t i = 1; i < size; ++i) c = (c << 6) | (static_cast<unsigned char>(text[i]) & 0x3FU);
  return c;
}

// Control characters would break the lines, or tell the terminal something.
std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}

std::string Pad(const Table::Cell& cell, size_t width) {
  const std::string blanks(width - DisplayWidth(cell.text), ' ');
  return cell.right ? blanks + cell.text : cell.text + blanks;
}

std::string Line(const std::vector<Table::Cell>& cells, const std::vector<size_t>& widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += "  ";
    line += Pad(cells[i], widths[i]);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

std::string NumberText(double value, int decimals) {
  return decimals < 0 ? fmt::format("{}", value) : fmt::format("{:.{}f}", value, decimals);
}

std::string ListText(const Variant::Array& list) {
  std::string text;
  for (size_t i = 0; i < list.size(); ++i) text += (i > 0 ? ", " : "") + CellOf(list[i]).text;
  return "[" + text + "]";
}

}  // namespace

size_t DisplayWidth(std::string_view text) {
  size_t width = 0;
  while (!text.empty()) {
    width += WidthOf(FirstCharacter(text));
    text.remove_prefix(Utf8Prefix(text, 1).size());
  }
  return width;
}

Table::Cell CellOf(const Variant& value, int decimals) {
  switch (value.type()) {
    case VariantType::kEmpty:
      return {"(vacío)"};
    case VariantType::kNull:
      return {"(nulo)"};
    case VariantType::kBoolean:
      return {value.as<bool>() ? "sí" : "no"};
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
      return {std::to_string(ToLong(value)), true};
    case VariantType::kSingle:
      return {fmt::format("{}", value.as<float>()), true};
    case VariantType::kDouble:
    case VariantType::kCurrency:
      return {NumberText(ToDouble(value), decimals), true};
    case VariantType::kDate:
      return {value.as<OleDate>().Iso()};
    case VariantType::kText:
      return {Printable(value.as<std::string>())};
    case VariantType::kArray:
      return {ListText(value.array())};
    case VariantType::kObject:
      return {value.object() == nullptr ? "(nada)" : value.object()->ClassName()};
  }
  return {};
}

Table::Table(std::vector<std::string> headings) {
  for (std::string& heading : headings) headings_.push_back({Printable(std::move(heading)), false});
}

void Table::AddRow(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }

std::string Table::Text() const {
  std::vector<Cell> headings = headings_;
  std::vector<size_t> widths;
  std::string rule;
  for (size_t i = 0; i < headings.size(); ++i) {
    size_t width = DisplayWidth(headings[i].text);
    headings[i].right = !rows_.empty();
    for (const std::vector<Cell>& row : rows_) {
      width = std::max(width, DisplayWidth(row[i].text));
      headings[i].right = headings[i].right && row[i].right;
    }
    widths.push_back(width);
    rule += (i > 0 ? "  " : "") + std::string(width, '-');
  }
  std::string text;
  if (std::any_of(headings_.begin(), headings_.end(),
                  [](const Cell& heading) { return !heading.text.empty(); })) {
    text = Line(headings, widths) + rule + '\n';
  }
  for (const std::vector<Cell>& row : rows_) text += Line(row, widths);
  return text;
}

}  // namespace ambrelio::cli
