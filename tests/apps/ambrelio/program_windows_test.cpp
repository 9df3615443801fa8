// The program itself, as another program runs it.
#include <windows.h>

#include "ambrelio/com/text.h"
#include "cli_test.h"
#include "support/child_process.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class Program : public test::MillCliTest {
 protected:
  // The application folder of a mill that has no database yet.
  std::string MillFolder(const std::string& name) const {
    std::string mill = folder.Folder(name);
    test::WriteText(mill + "/CLIEN.INI", "[GENERAL]\nEsclavo=0\n");
    return mill;
  }
  static std::unique_ptr<test::ChildProcess> Start(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), AMBRELIO_PROGRAM);
    return std::make_unique<test::ChildProcess>(arguments, test::kErrorsToOutput);
  }
  // What it printed, errors too.
  static test::Outcome Run(const std::vector<std::string>& arguments) {
    const auto child = Start(arguments);
    child->CloseInput();
    test::Outcome outcome;
    for (std::string line; child->ReadLine(line);) outcome.out += line + "\n";
    outcome.code = child->Wait();
    return outcome;
  }
};

TEST_F(Program, RunsACommandAndEndsLinesAsEverywhere) {
  const auto outcome = Run({"call", "--app", app, "MaximoTolvas"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.out, "4\n");
}

TEST_F(Program, GivesTheExitCodes) {
  EXPECT_EQ(Run({"call", "--app", app, "Deposito(99).Nombre"}).code, 1);
  EXPECT_EQ(Run({"walk"}).code, 2);
  EXPECT_EQ(Run({"create", "--app", app}).code, 3);
}

TEST_F(Program, TakesArgumentsBeyondAsciiAndPrintsThem) {
  const std::string mill = MillFolder("almazara ñandú");
  ASSERT_EQ(Run({"create", "--app", mill}).code, 0);
  EXPECT_TRUE(std::filesystem::exists(FilePath(mill + "/oliva.mdb")));
  EXPECT_EQ(Run({"sql", "--app", mill, "select 'Núñez €' as Ñ", "--csv"}).out, "Ñ\r\nNúñez €\r\n");
  EXPECT_THAT(Run({"journal", "--app", mill, folder.File("año.jsonl")}).out,
              HasSubstr("año.jsonl"));
}

TEST_F(Program, AnswersEachLineOfAPipeAtOnce) {
  const auto child = Start({"journal", "--app", app, "-"});
  std::string answer;
  ASSERT_TRUE(child->Write("{\"call\":\"MaximoTolvas\"}\r\n"));
  ASSERT_TRUE(child->ReadLine(answer));
  EXPECT_EQ(answer, "{\"result\":4}");
  ASSERT_TRUE(child->Write("{\"call\":\"BaseAbierta\"}\n"));
  ASSERT_TRUE(child->ReadLine(answer));
  EXPECT_EQ(answer, "{\"result\":true}");
  child->CloseInput();
  EXPECT_EQ(child->Wait(), 0);
}

TEST_F(Program, AReaderThatWentAwayIsAFileProblem) {
  auto child = Start({"journal", "--app", app, "-"});
  std::string answer;
  ASSERT_TRUE(child->Write("{\"call\":\"MaximoTolvas\"}\n"));
  ASSERT_TRUE(child->ReadLine(answer));
  child->CloseOutput();
  while (child->Write("{\"call\":\"MaximoTolvas\"}\n")) {
  }
  EXPECT_EQ(child->Wait(), 3);
}

// The exit code of a program that got no streams and, by the flags, no console or a hidden one.
int RunUnseen(DWORD flags, const std::string& arguments) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = SW_HIDE;
  std::wstring line = com::ToWide("\"" AMBRELIO_PROGRAM "\" " + arguments);
  PROCESS_INFORMATION process{};
  if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr,
                        &start, &process)) {
    throw std::runtime_error("no process: " + arguments);
  }
  ::CloseHandle(process.hThread);
  ::WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  ::GetExitCodeProcess(process.hProcess, &code);
  ::CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

TEST_F(Program, WorksWhereNobodySeesItsOutput) {
  for (const DWORD flags : {0, DETACHED_PROCESS, CREATE_NEW_CONSOLE, CREATE_NO_WINDOW}) {
    const std::string mill = MillFolder(std::to_string(flags));
    EXPECT_EQ(RunUnseen(flags, "create --app \"" + mill + "\""), 0) << flags;
    EXPECT_TRUE(std::filesystem::exists(FilePath(mill + "/oliva.mdb")));
    EXPECT_EQ(RunUnseen(flags, "walk"), 2) << flags;
  }
}

TEST_F(Program, ReplaysTheExampleSeasonWithoutAnError) {
  SetUpIni("MaxTolvas", "4,2,12");
  const auto outcome =
      Run({"journal", "--app", app, AMBRELIO_SOURCE_DIR "/examples/campana/journal.jsonl"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.lines().size(), 6573U);
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("\"error\"")));
}

}  // namespace
}  // namespace ambrelio::cli
