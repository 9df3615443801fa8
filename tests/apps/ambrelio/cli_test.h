// Commands run in process, with the streams caught.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/kestro/ini_file.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/platform/file_path.h"
#include "run.h"
#include "support/made_once.h"
#include "support/temp_folder.h"

namespace ambrelio::test {

inline std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A path as the system itself writes it.
inline std::string Within(const std::string& folder, const std::string& name) {
  return Utf8Path(FilePath(folder) / FilePath(name));
}

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

struct Outcome {
  int code = 0;
  std::string out;
  std::string err;

  std::vector<std::string> lines() const { return LinesOf(out); }
};

inline Outcome RunCli(std::vector<std::string> arguments, const std::string& input = "",
                      std::shared_ptr<EventLoop> events = std::make_shared<EventLoop>()) {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  cli::Console console{in, out, err};
  console.events = std::move(events);
  const int code = static_cast<int>(cli::Run(std::move(arguments), console));
  return {code, out.str(), err.str()};
}

// An application folder: 4 hoppers, 2 intermediate hoppers, 6 tanks, no database yet.
class CliTest : public ::testing::Test {
 protected:
  CliTest() {
    app = folder.Folder("mill");
    SetUpIni("MaxTolvas", "4,2,6");
  }

  void SetUpIni(const std::string& key, const std::string& value) {
    kestro::IniFile(app + "/Vardex.ini", "GENERAL").Write(key, value);
  }

  void SetSensors(const std::string& key, const std::string& value) {
    kestro::IniFile(app + "/Vardex.ini", "SENSORES").Write(key, value);
  }

  void Create() {
    const Outcome created = RunCli({"create", "--app", app});
    ASSERT_EQ(created.code, 0) << created.err;
  }

  std::string database() const { return Within(app, "oliva.mdb"); }

  // One of the Jet files that the tests have.
  static std::string Sample(const std::string& name) {
    return AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/samples/" + name + ".mdb";
  }

  Outcome Journal(const std::string& lines, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"journal", "--app", app, "-"});
    return RunCli(std::move(more), lines);
  }

  // The result line of one journal line.
  std::string Result(const std::string& line) {
    const Outcome outcome = Journal(line + "\n");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.lines().size() == 1 ? outcome.lines().front() : outcome.out;
  }

  // The rows of a query as JSON.
  std::string Query(const std::string& sql) {
    const Outcome outcome = RunCli({"sql", "--app", app, sql, "--json"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.lines().empty() ? "" : outcome.lines().front();
  }

  TempFolder folder;
  std::string app;
};

// A mill with its database.
class MillCliTest : public CliTest {
 protected:
  void SetUp() override {
    static MadeOnce empty;
    empty.PutAt(database(), [this] { Create(); });
  }
};

}  // namespace ambrelio::test
