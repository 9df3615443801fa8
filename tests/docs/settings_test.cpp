// docs/settings.md names every setting and every label, and no other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "ambrelio/data/session.h"
#include "ambrelio/folders/carpetas.h"
#include "ambrelio/frame/settings.h"
#include "ambrelio/frame/trazabilidad.h"
#include "apps/ambrelio/cli_test.h"
#include "docs/document.h"
#include "support/temp_folder.h"

namespace ambrelio::test {
namespace {

const Document& SettingsPage() {
  static const Document document = ReadDocument("settings.md");
  return document;
}

// A cell without the marks of code.
std::string Plain(std::string cell) {
  std::erase(cell, '`');
  return cell;
}

// The rows of the table under a heading, without the headings of its columns.
std::vector<std::vector<std::string>> RowsUnder(const std::string& heading) {
  std::vector<std::vector<std::string>> rows;
  for (const TableRow& row : SettingsPage().rows) {
    if (row.heading == heading) rows.push_back(row.cells);
  }
  if (!rows.empty()) rows.erase(rows.begin());
  return rows;
}

// The keys of a section of Vardex.ini, with their defaults as the page has them.
std::vector<std::pair<std::string, std::string>> KeysOf(const std::string& section) {
  std::vector<std::pair<std::string, std::string>> keys;
  for (const auto& row : RowsUnder("Vardex.ini")) {
    if (Plain(row[0]) == section) keys.emplace_back(Plain(row[1]), Plain(row[2]));
  }
  return keys;
}

// The lines of a new Vardex.ini after the sensor settings of a mill without any were written.
std::vector<std::string> WrittenSettings() {
  const TempFolder folder;
  WriteText(folder.File("Vardex.ini"), "[GENERAL]\nMaxTolvas=4,2,6\n");
  EXPECT_EQ(RunCli({"create", "--app", folder.path()}).code, 0);
  Session session;
  Trazabilidad root(session);
  root.Constructor(folder.path(), false);
  root.SalvarValores();
  std::ifstream file(folder.File("Vardex.ini"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), "[SENSORES]"));
  return lines;
}

TEST(SettingsDocument, HasTheSensorSettingsWithTheirDefaults) {
  std::vector<std::string> documented = {"[SENSORES]"};
  for (const auto& [key, value] : KeysOf("SENSORES")) {
    documented.push_back(key + "=" + (value == "empty" ? "" : value));
  }
  EXPECT_EQ(documented, WrittenSettings());
}

TEST(SettingsDocument, HasTheDefaultsOfTheDatabase) {
  const TempFolder folder;
  WriteText(folder.File("Vardex.ini"), "");
  Session session;
  const auto settings = frame::LoadGeneralSettings(session, folder.path());
  const std::string counts = std::to_string(session.hopper_count) + "," +
                             std::to_string(session.intermediate_hopper_count) + "," +
                             std::to_string(session.tank_count);
  EXPECT_EQ(settings.password, "");
  const auto keys = KeysOf("GENERAL");
  ASSERT_EQ(keys.size(), 4U);
  EXPECT_EQ(keys[0], std::pair(std::string("MaxTolvas"), counts));
  EXPECT_EQ(keys[1].first, "BaseDatos");
  EXPECT_EQ(folder.File(keys[1].second), settings.path);
  EXPECT_EQ(keys[2].first, "RutaBaseDatos");
  EXPECT_EQ(keys[3].first, frame::kPasswordKey);
}

TEST(SettingsDocument, HasEveryLabel) {
  std::vector<int> asked;
  for (const auto& row : RowsUnder("The folder of the database")) {
    const std::string label = Plain(row[0]);
    const auto note = [&asked](WellKnownFolder folder) {
      asked.push_back(static_cast<int>(folder));
      return std::string();
    };
    EXPECT_EQ(folders::ExpandSpecialFolder(label, note), "") << label;
  }
  std::sort(asked.begin(), asked.end());
  EXPECT_THAT(asked, testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

}  // namespace
}  // namespace ambrelio::test
