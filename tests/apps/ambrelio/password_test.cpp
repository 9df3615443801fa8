#include "ambrelio/frame/settings.h"
#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class PasswordCommand : public test::CliTest {
 protected:
  static test::Outcome Password(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), "password");
    return test::RunCli(std::move(arguments), input);
  }
  static std::string Out(std::vector<std::string> arguments, const std::string& input = "") {
    const auto outcome = Password(std::move(arguments), input);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
  }
  static std::string LineOf(const std::string& password) {
    return "PassworDB=" + frame::FramePassword(password) + "\n";
  }
};

TEST_F(PasswordCommand, PrintsTheLineOfTheSettings) {
  EXPECT_EQ(Out({"--encode", "secreta"}), "PassworDB=x131A83A899E959DE2F2A20x\n");
  EXPECT_EQ(Out({"--encode", "Jaén 2026"}), LineOf("Jaén 2026"));
}

TEST_F(PasswordCommand, ReadsThePasswordFromStandardInput) {
  EXPECT_EQ(Out({"--encode"}, "secreta\n"), LineOf("secreta"));
  EXPECT_EQ(Out({"--encode", "-"}, "secreta"), LineOf("secreta"));
  EXPECT_EQ(Out({"--encode"}, "secreta\r\nmore\n"), LineOf("secreta"));
  const auto nothing = Password({"--encode", "-"});
  EXPECT_EQ(nothing.code, 2);
  EXPECT_EQ(nothing.err, "ambrelio: standard input holds no password\n");
}

TEST_F(PasswordCommand, PrintsTheStoredValueForPrograms) {
  EXPECT_EQ(Out({"--encode", "secreta", "--json"}),
            "{\"PassworDB\":\"x131A83A899E959DE2F2A20x\"}\n");
  EXPECT_EQ(Out({"--encode", "secreta", "--csv"}), "PassworDB\r\nx131A83A899E959DE2F2A20x\r\n");
}

TEST_F(PasswordCommand, TheLineOpensTheDatabaseOfAMill) {
  test::WriteText(app + "/Vardex.ini", "[GENERAL]\n" + Out({"--encode", "olé"}));
  Create();
  EXPECT_EQ(test::RunCli({"sql", database(), "select 1", "--password", "olé"}).code, 0);
  EXPECT_EQ(test::RunCli({"sql", database(), "select 1"}).code, 3);
}

TEST_F(PasswordCommand, ChecksAStoredValue) {
  EXPECT_EQ(Out({"--check", frame::FramePassword("secreta")}), "Descifrable  sí\n");
  EXPECT_EQ(Out({"--check", frame::FramePassword("secreta"), "--json"}),
            "{\"descifrable\":true}\n");
  for (const char* const value : {"secreta", "x", "xx", "x131A83A899E959DE2F2A21x"}) {
    const auto outcome = Password({"--check", value});
    EXPECT_EQ(outcome.code, 2) << value;
    EXPECT_EQ(outcome.out, "Descifrable  no\n");
    EXPECT_EQ(outcome.err,
              "ambrelio: the stored value cannot be decoded; the library takes it for no "
              "password\n");
  }
}

TEST_F(PasswordCommand, ShowsThePasswordOnlyWhenToldTo) {
  const std::string stored = frame::FramePassword("secreta");
  SetUpIni("PassworDB", stored);
  Create();
  EXPECT_THAT(Out({"--check", stored}), testing::Not(HasSubstr("secreta")));
  EXPECT_THAT(Out({"--app", app}), testing::Not(HasSubstr("secreta")));
  EXPECT_EQ(Out({"--check", stored, "--show"}), "Descifrable  sí\nContraseña   secreta\n");
  EXPECT_EQ(Out({"--app", app, "--show", "--json"}),
            R"({"guardada":true,"descifrable":true,"abre":true,"contrasena":"secreta"})"
            "\n");
}

TEST_F(PasswordCommand, ChecksAMill) {
  SetUpIni("PassworDB", frame::FramePassword("secreta"));
  Create();
  EXPECT_EQ(Out({"--app", app}),
            "Contraseña guardada    sí\n"
            "Descifrable            sí\n"
            "Abre la base de datos  sí\n");
}

TEST_F(PasswordCommand, AMillMayHaveNoPassword) {
  Create();
  EXPECT_EQ(Out({"--app", app, "--json"}),
            "{\"guardada\":false,\"descifrable\":null,\"abre\":true}\n");
}

TEST_F(PasswordCommand, AWrongPasswordIsCodeThree) {
  SetUpIni("PassworDB", frame::FramePassword("secreta"));
  Create();
  SetUpIni("PassworDB", frame::FramePassword("otra"));
  const auto outcome = Password({"--app", app, "--json"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.out, "{\"guardada\":true,\"descifrable\":true,\"abre\":false}\n");
  EXPECT_THAT(outcome.err, HasSubstr("cannot be opened: error 3031: "));
}

TEST_F(PasswordCommand, AnUndecodablePasswordOfAMillIsCodeTwo) {
  Create();
  SetUpIni("PassworDB", "secreta");
  const auto outcome = Password({"--app", app, "--json"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "{\"guardada\":true,\"descifrable\":false,\"abre\":true}\n");
}

TEST_F(PasswordCommand, ChecksTheNetworkedEdition) {
  const std::string net = folder.Folder("net");
  kestro::IniFile(app + "/CLIEN.INI", "GENERAL").Write("NetPath", net);
  kestro::IniFile(net + "/Vardex.ini", "GENERAL")
      .Write("PassworDB", frame::FramePassword("secreta"));
  ASSERT_EQ(test::RunCli({"create", "--app", app, "--vardex3"}).code, 0);
  EXPECT_EQ(Out({"--app", app, "--vardex3", "--json"}),
            "{\"guardada\":true,\"descifrable\":true,\"abre\":true}\n");
}

TEST_F(PasswordCommand, RefusesWhatDoesNotGoTogether) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"--show"},
      {"--check"},
      {"--encode", "a", "--check", "b"},
      {"--encode", "a", "--app", app},
      {"--check", "a", "--app", app},
      {"--encode", "a", "--show"},
      {"secreta"},
  };
  for (const auto& arguments : wrong) {
    const auto outcome = Password(arguments);
    EXPECT_EQ(outcome.code, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(Password({}).err, "ambrelio: one of --encode, --check and --app is expected\n");
}

}  // namespace
}  // namespace ambrelio::cli
