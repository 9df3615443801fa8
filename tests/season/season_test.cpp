// Whole seasons through the command line, beside the model: every answer and every table.

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "season/mill_model.h"
#include "season/season_generator.h"
#include "support/child_process.h"
#include "support/temp_folder.h"

namespace ambrelio::season {
namespace {

using test::ChildProcess;

const std::string kProgram = AMBRELIO_PROGRAM;
const std::string kExample = std::string(AMBRELIO_SOURCE_DIR) + "/examples/campana/";

std::map<int, std::string> ReadNames(const std::string& file) {
  std::map<int, std::string> names;
  std::ifstream in(kExample + file);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    const size_t comma = line.find(',');
    std::string name = line.substr(comma + 1);
    name.erase(name.find_last_not_of('\r') + 1);
    if (name.starts_with('"')) name = name.substr(1, name.size() - 2);
    names[std::stoi(line)] = name;
  }
  return names;
}

// A database of either form.
constexpr const char* kJet = "oliva.mdb";
constexpr const char* kOwn = "oliva.sqlite";

// A mill on disk, driven through the command line, and the model that has lived through the same.
class Season {
 public:
  Season(int hoppers, int intermediate, int tanks, const char* database)
      : model(hoppers, intermediate, tanks) {
    model.members = ReadNames("socios.csv");
    model.products = ReadNames("productos.csv");
    model.municipalities = ReadNames("municipios.csv");
    std::ofstream(folder.File("CLIEN.INI")) << "[GENERAL]\nEsclavo=0\n";
    std::ofstream(folder.File("Vardex.ini"))
        << "[GENERAL]\nMaxTolvas=" << hoppers << ',' << intermediate << ',' << tanks
        << "\nBaseDatos=" << database << "\n";
    ChildProcess create({kProgram, "create", "--app", folder.path(), "--masters", kExample},
                        folder.File("errors"));
    EXPECT_EQ(create.Wait(), 0) << Errors();
  }

  std::string Errors() const {
    std::stringstream text;
    text << std::ifstream(folder.File("errors")).rdbuf();
    return text.str();
  }

  // Replays the lines from a file and gives the answers.
  std::vector<Json> Replay(const std::vector<Json>& lines) {
    std::ofstream journal(folder.File("journal.jsonl"));
    for (const Json& line : lines) journal << line.dump() << '\n';
    journal.close();
    ChildProcess replay({kProgram, "journal", "--app", folder.path(), folder.File("journal.jsonl")},
                        folder.File("errors"));
    std::vector<Json> answers;
    for (std::string text; replay.ReadLine(text);) {
      answers.push_back(Json::parse(text));
      answers.back().erase("description");
    }
    EXPECT_EQ(replay.Wait(), 0) << Errors();
    return answers;
  }

  // The rows of the model's tables as the database has them, by table.
  std::map<std::string, Json> ReadTables() {
    std::vector<Json> questions;
    for (const std::string& table : MillModel::Tables()) {
      const std::string columns = MillModel::Columns(table);
      questions.push_back({{"sql", "select " + columns + " from " + table}});
    }
    const std::vector<Json> answers = Replay(questions);
    std::map<std::string, Json> tables;
    for (size_t i = 0; i < answers.size(); ++i) {
      tables[MillModel::Tables()[i]] = answers[i].value("result", Json());
    }
    return tables;
  }

  test::TempFolder folder;
  MillModel model;
};

bool SameTables(const MillModel& model, const std::map<std::string, Json>& tables) {
  for (const auto& [name, rows] : tables) {
    if (!SameAnswer(model.Table(name), rows)) return false;
  }
  return true;
}

void ExpectSameTables(const MillModel& model, const std::map<std::string, Json>& tables) {
  for (const auto& [name, rows] : tables) {
    const Json expected = model.Table(name);
    ASSERT_EQ(expected.size(), rows.size()) << name;
    for (size_t i = 0; i < rows.size(); ++i) {
      ASSERT_TRUE(SameAnswer(expected[i], rows[i]))
          << name << "\nexpected: " << expected[i] << "\nfound:    " << rows[i];
    }
  }
}

void ExpectSameSeason(Season& season, const std::vector<Json>& lines) {
  const std::vector<Json> answers = season.Replay(lines);
  ASSERT_EQ(answers.size(), lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    const Json expected = season.model.Play(lines[i]);
    ASSERT_TRUE(SameAnswer(expected, answers[i]))
        << "line " << i + 1 << ": " << lines[i] << "\nexpected: " << expected
        << "\nfound:    " << answers[i];
  }
  ExpectSameTables(season.model, season.ReadTables());
}

class RandomSeason : public ::testing::TestWithParam<uint32_t> {};

TEST_P(RandomSeason, AnswersAndTablesAreTheModels) {
  SeasonOptions options;
  options.seed = GetParam();
  options.days = 8 + static_cast<int>(GetParam() % 3) * 4;
  options.tanks = 3 + static_cast<int>(GetParam() % 4);
  options.hoppers = 2 + static_cast<int>(GetParam() % 3);
  Season season(options.hoppers, options.intermediate_hoppers, options.tanks,
                options.seed % 2 == 0 ? kJet : kOwn);
  ExpectSameSeason(season, MakeSeason(options));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSeason, ::testing::Range(1U, 9U));

class ExampleSeason : public ::testing::TestWithParam<const char*> {};

TEST_P(ExampleSeason, AnswersAndTablesAreTheModels) {
  std::vector<Json> lines;
  std::ifstream in(kExample + "journal.jsonl");
  for (std::string line; std::getline(in, line);) lines.push_back(Json::parse(line));
  const Json last = lines.back();
  for (int tank = 1; tank <= 12; ++tank) {
    for (int kind = 1; kind <= 5; ++kind) {
      const std::string path = "Deposito(" + std::to_string(tank) + ").Composicion";
      lines.push_back({{"m", last["m"]}, {"call", path}, {"args", {kind}}});
    }
  }
  Season season(4, 2, 12, GetParam());
  ExpectSameSeason(season, lines);
}

INSTANTIATE_TEST_SUITE_P(OfAJetFile, ExampleSeason, testing::Values(kJet));
INSTANTIATE_TEST_SUITE_P(OfTheEnginesOwnFile, ExampleSeason, testing::Values(kOwn));

// After every event, the shares of each divided weighing sum to 1 but for the rests that were
// dropped, and so do the fractions of each discharge over its tanks with what left the mill.
TEST(Conservation, HoldsAfterEveryEvent) {
  SeasonOptions options;
  options.seed = 77;
  options.days = 6;
  options.questions = false;
  std::vector<Json> lines;
  for (Json& line : MakeSeason(options)) {
    const bool event = line.contains("call");
    lines.push_back(std::move(line));
    if (!event) continue;
    lines.push_back({{"sql",
                      "select cooperativa, partida, sum(fraccion) as whole from splitDescar group "
                      "by cooperativa, partida, mediana, codpro having sum(fraccion) < 0.995 or "
                      "sum(fraccion) > 1.000001"}});
    lines.push_back(
        {{"sql",
          "select Tolva, Descarga, Deposito, Fraccion from Descargas where Deposito > 0 "
          "order by Tolva, Descarga"}});
  }
  Season season(options.hoppers, options.intermediate_hoppers, options.tanks, kOwn);
  const std::vector<Json> answers = season.Replay(lines);
  ASSERT_EQ(answers.size(), lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].contains("sql")) {
      season.model.Play(lines[i]);
      continue;
    }
    const Json& rows = answers[i]["result"];
    if (lines[i]["sql"].get<std::string>().find("splitDescar") != std::string::npos) {
      ASSERT_TRUE(rows.empty()) << "after line " << i << ": " << rows;
      continue;
    }
    std::map<DischargeKey, double> whole;
    for (const Json& row : rows) {
      const DischargeKey discharge{row[0], row[1]};
      whole.try_emplace(discharge, season.model.LeftTheMill(discharge)).first->second +=
          row[3].get<double>();
    }
    // Each tank may have lost a rest below 0.0001, each emptying a rounding in the eighth decimal.
    for (const auto& [discharge, sum] : whole) {
      if (season.model.WasReopenedInPart(discharge)) continue;
      ASSERT_NEAR(sum, 1, 0.0001 * (options.tanks + 4))
          << "discharge " << discharge.number << " of hopper " << discharge.hopper << " after line "
          << i << ": " << lines[i - 2];
    }
  }
}

// The process is killed while lines are under way. What it had answered is there when the database
// is opened again, and no line is there in part.
TEST(KilledProcess, LosesNothingAnsweredAndLeavesNothingHalfDone) {
  std::mt19937 random(20251103);
  for (uint32_t round = 0; round < 15; ++round) {
    SeasonOptions options;
    options.seed = 900 + round;
    options.days = 4;
    options.questions = false;
    const std::vector<Json> lines = MakeSeason(options);
    Season season(options.hoppers, options.intermediate_hoppers, options.tanks,
                  round % 2 == 0 ? kJet : kOwn);
    ChildProcess replay({kProgram, "journal", "--app", season.folder.path(), "-"});
    const size_t victim = std::uniform_int_distribution<size_t>(20, lines.size() - 2)(random);
    size_t answered = 0;
    size_t sent = 0;
    // Two lines are always on their way, so that the kill falls into the work on one.
    std::string answer;
    while (answered < victim) {
      while (sent < lines.size() && sent < answered + 2) {
        ASSERT_TRUE(replay.Write(lines[sent++].dump() + "\n"));
      }
      ASSERT_TRUE(replay.ReadLine(answer));
      ++answered;
    }
    replay.Write(lines[sent++].dump() + "\n");
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(0, 1500)(random)));
    replay.Kill();
    while (replay.ReadLine(answer)) ++answered;

    const auto tables = season.ReadTables();
    for (size_t i = 0; i < answered; ++i) season.model.Play(lines[i]);
    bool found = SameTables(season.model, tables);
    for (size_t i = answered; i < sent && !found; ++i) {
      season.model.Play(lines[i]);
      found = SameTables(season.model, tables);
    }
    EXPECT_TRUE(found) << "round " << round << ", killed behind line " << answered;
  }
}

}  // namespace
}  // namespace ambrelio::season
