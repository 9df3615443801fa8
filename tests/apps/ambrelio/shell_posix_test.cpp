// What the shell completes and what the manual page says, held against the program.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>
#include <set>

#include "cli_test.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

using Words = std::set<std::string>;

// One option or positional argument of a command, as the parser has it.
struct Declared {
  std::string command;  // "" for what stands before a command
  std::string name;     // "--por" or "KIND"
  std::string type;     // "CLASS:{socio,producto}", "" for a flag

  bool is_option() const { return name.starts_with("--"); }
  // The words it is limited to.
  Words Choices() const {
    Words words;
    std::smatch list;
    if (!std::regex_search(type, list, std::regex("\\{(.*)\\}"))) return words;
    std::istringstream stream(list[1]);
    for (std::string word; std::getline(stream, word, ',');) words.insert(word);
    return words;
  }
};

void Collect(const CLI::App& app, const std::string& command, std::vector<Declared>& declared) {
  for (const CLI::Option* option : app.get_options()) {
    const bool flag = option->get_items_expected_max() == 0;
    declared.push_back({command, option->get_name(), flag ? "" : option->get_type_name()});
  }
}

struct Parser {
  Parser() {
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out};
    Context context{console};
    CLI::App app;
    Declare(app, context);
    Collect(app, "", declared);
    for (const CLI::App* command : app.get_subcommands([](CLI::App*) { return true; })) {
      commands.insert(command->get_name());
      Collect(*command, command->get_name(), declared);
    }
  }
  Words OptionsOf(const std::string& command) const {
    Words options;
    for (const Declared& each : declared) {
      if (each.command == command && each.is_option()) options.insert(each.name);
    }
    return options;
  }

  Words commands;
  std::vector<Declared> declared;
};

const Parser& TheParser() {
  static const Parser parser;
  return parser;
}

// Completes the last of the words $3 by the file $2, in the folder $1.
constexpr char kScript[] = R"sh(
cd "$1"
source "$2"
eval "COMP_WORDS=($3)"
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
declared=$(complete -p ambrelio)
[[ $declared =~ -F\ ([^ ]+) ]]
"${BASH_REMATCH[1]}"
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
)sh";

class Completion : public testing::Test {
 protected:
  Completion() {
    folder.Folder("work/olive grove");
    test::WriteText(folder.File("work/oliva.mdb"), "");
  }

  // What bash offers for the last word of a command line, in a folder that holds the file
  // oliva.mdb and the folder "olive grove".
  Words Offered(const std::string& words) {
    const std::string script = folder.File("script");
    const std::string out = folder.File("out");
    const std::string err = folder.File("err");
    test::WriteText(script, kScript);
    const std::string command = "bash -u '" + script + "' '" + folder.File("work") +
                                "' '" AMBRELIO_SOURCE_DIR "/completions/ambrelio.bash' \"" + words +
                                "\" > '" + out + "' 2> '" + err + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(test::ReadText(err), "") << words;
    Words offered;
    for (const std::string& line : test::LinesOf(test::ReadText(out))) offered.insert(line);
    return offered;
  }

  test::TempFolder folder;
};

TEST_F(Completion, OffersEveryCommand) {
  EXPECT_EQ(Offered("ambrelio ''"), TheParser().commands);
  EXPECT_EQ(Offered("ambrelio --trace call ''"), TheParser().commands) << "a file named call";
  EXPECT_EQ(Offered("ambrelio de"), (Words{"deposito", "descarga"}));
}

TEST_F(Completion, OffersTheOptionsOfEachCommand) {
  EXPECT_EQ(Offered("ambrelio --"), TheParser().OptionsOf(""));
  for (const std::string& command : TheParser().commands) {
    Words options = TheParser().OptionsOf(command);
    options.insert("--trace");
    EXPECT_EQ(Offered("ambrelio " + command + " --"), options);
  }
  EXPECT_EQ(Offered("ambrelio deposito 3 --h"), (Words{"--help", "--historia"}));
}

TEST_F(Completion, OffersWhatAnOptionTakes) {
  for (const Declared& each : TheParser().declared) {
    if (!each.is_option() || each.type.empty()) continue;
    Words values = each.Choices();
    if (each.type == "DIR" || each.type == "FILE") values.insert("olive grove");
    if (each.type == "FILE") values.insert("oliva.mdb");
    EXPECT_EQ(Offered("ambrelio " + each.command + " " + each.name + " ''"), values)
        << each.command << " " << each.name;
  }
}

TEST_F(Completion, OffersWhatMayFollowACommand) {
  Words seen;  // of each command the first argument counts
  for (const Declared& each : TheParser().declared) {
    if (each.is_option() || !seen.insert(each.command).second) continue;
    Words values = each.Choices();
    if (each.name == "FILE" || each.name == "FROM") values = {"olive grove", "oliva.mdb"};
    EXPECT_EQ(Offered("ambrelio " + each.command + " ''"), values) << each.command;
    EXPECT_EQ(Offered("ambrelio " + each.command + " --app m ''"), values) << each.command;
  }
  EXPECT_EQ(Offered("ambrelio --trace t historia --desde 2025-11-01 n"), Words{"niveles"});
  EXPECT_EQ(Offered("ambrelio historia niveles ''"), Words{});
  EXPECT_EQ(Offered("ambrelio convert oliva.mdb o"), (Words{"olive grove", "oliva.mdb"}));
  EXPECT_EQ(Offered("ambrelio convert oliva.mdb new.mdb ''"), Words{});
  EXPECT_EQ(Offered("ambrelio walk ''"), Words{});
}

class ManualPage : public testing::Test {
 protected:
  // The lines under a heading, up to the next one.
  std::vector<std::string> Under(const std::string& heading) const {
    std::vector<std::string> found;
    auto line = std::find(lines.begin(), lines.end(), heading);
    if (line == lines.end()) return found;
    for (++line; line != lines.end() && !line->starts_with(".S"); ++line) found.push_back(*line);
    return found;
  }
  // The options that some lines name.
  static Words OptionsIn(const std::vector<std::string>& text) {
    static const std::regex option("--[a-z][a-z0-9-]*");
    Words options;
    for (const std::string& line : text) {
      const std::string plain = std::regex_replace(line, std::regex(R"(\\-)"), "-");
      for (std::sregex_iterator match(plain.begin(), plain.end(), option), end; match != end;
           ++match) {
        options.insert(match->str());
      }
    }
    return options;
  }
  // What stands behind a request at the start of a line: the headings under ".SS".
  Words All(const std::string& request) const {
    Words found;
    for (const std::string& line : lines) {
      if (line.starts_with(request + " ")) found.insert(line.substr(request.size() + 1));
    }
    return found;
  }

  const std::string text = test::ReadText(AMBRELIO_SOURCE_DIR "/docs/ambrelio.1");
  const std::vector<std::string> lines = test::LinesOf(text);
};

TEST_F(ManualPage, HasTheSectionsOfAManualPage) {
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], ".TH AMBRELIO 1 \"\" Ambrelio \"User Commands\"");
  EXPECT_THAT(All(".SH"), testing::IsSupersetOf({"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS",
                                                 "EXIT STATUS", "FILES", "EXAMPLES"}));
}

TEST_F(ManualPage, UsesOnlyRequestsThatManKnows) {
  const Words known = {".TH", ".SH", ".SS", ".PP", ".TP", ".B",  ".I", ".BI",
                       ".BR", ".RB", ".RI", ".IR", ".br", ".nf", ".fi"};
  for (const std::string& line : lines) {
    EXPECT_FALSE(line.empty());
    EXPECT_EQ(line.find('\t'), std::string::npos) << line;
    const std::string request = line.substr(0, line.find(' '));
    EXPECT_TRUE(!line.starts_with('.') || known.contains(request)) << line;
    EXPECT_EQ(line.find("--"), std::string::npos)
        << "a hyphen of an option is written \\-: " << line;
  }
}

TEST_F(ManualPage, TellsEveryCommandAndNoOther) { EXPECT_EQ(All(".SS"), TheParser().commands); }

TEST_F(ManualPage, TellsTheOptionsOfEachCommand) {
  for (const std::string& command : TheParser().commands) {
    Words options = TheParser().OptionsOf(command);
    options.erase("--help");
    EXPECT_EQ(OptionsIn(Under(".SS " + command)), options) << command;
  }
  const Words general = OptionsIn(Under(".SH OPTIONS"));
  for (const std::string& option : TheParser().OptionsOf("")) EXPECT_TRUE(general.contains(option));
}

TEST_F(ManualPage, TellsTheChoicesOfEachKind) {
  for (const Declared& each : TheParser().declared) {
    if (each.is_option()) continue;
    std::string section;
    for (const std::string& line : Under(".SS " + each.command)) section += line + '\n';
    for (const std::string& choice : each.Choices()) {
      EXPECT_THAT(section, testing::HasSubstr(choice)) << each.command;
    }
  }
}

TEST_F(ManualPage, TellsTheExitCodes) {
  const auto codes = Under(".SH EXIT STATUS");
  for (const char* const code : {".B 0", ".B 1", ".B 2", ".B 3"}) {
    EXPECT_THAT(codes, testing::Contains(code));
  }
}

}  // namespace
}  // namespace ambrelio::cli
