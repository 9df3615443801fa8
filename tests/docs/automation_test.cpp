// docs/automation.md holds every class and member of the object model, and its examples are true.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <variant>
#include <vector>

#include "ambrelio/automation/describe.h"
#include "docs/document_test.h"
#include "journal_line.h"

namespace ambrelio::test {
namespace {

using automation::MemberKind;

const Document& Automation() {
  static const Document document = ReadDocument("automation.md");
  return document;
}

const char* KindText(MemberKind kind) {
  if (kind == MemberKind::kMethod) return "method";
  return kind == MemberKind::kGet ? "property get" : "property let";
}

// What the document has to say of a member, in one line.
std::string ReferenceOf(const automation::Member& member) {
  return "`" + automation::DescribeMember(member) + "` (" + KindText(member.kind) + ", " +
         std::to_string(member.dispid) + "): " + member.help;
}

// The headings of classes and members and the references, as the table would have them. The get
// and the let of a property stand under one heading.
std::vector<std::string> ReferencesOfTheTable() {
  std::vector<std::string> lines;
  for (const automation::Class& owner : automation::Model()) {
    lines.push_back(std::string("## ") + owner.name);
    std::string last;
    for (const automation::Member& member : owner.members) {
      const std::string heading = std::string("### ") + owner.name + "." + member.name;
      if (heading != last) lines.push_back(heading);
      last = heading;
      lines.push_back(ReferenceOf(member));
    }
  }
  return lines;
}

bool IsClass(const std::string& line) {
  const auto& model = automation::Model();
  return std::any_of(model.begin(), model.end(), [&line](const automation::Class& owner) {
    return line == std::string("## ") + owner.name;
  });
}

// The same lines of the document; from its first class on, every heading counts.
std::vector<std::string> ReferencesOfTheDocument() {
  const std::vector<std::string>& text = Automation().text;
  const auto is_reference = [](const std::string& line) {
    return line.starts_with('#') ||
           (line.starts_with('`') && (line.find("` (method, ") != std::string::npos ||
                                      line.find("` (property ") != std::string::npos));
  };
  std::vector<std::string> lines;
  std::copy_if(std::find_if(text.begin(), text.end(), IsClass), text.end(),
               std::back_inserter(lines), is_reference);
  return lines;
}

// How the examples under a heading reach the member that it names.
struct Uses {
  bool call = false;
  bool let = false;
};
Uses UsesUnder(const std::string& heading, const std::string& member) {
  Uses uses;
  for (const Example& example : Automation().examples) {
    if (example.heading != heading) continue;
    const cli::JournalLine line = cli::ParseJournalLine(example.input);
    if (const auto* call = std::get_if<cli::CallLine>(&line.action)) {
      uses.call = uses.call || call->path.back().name == member;
    } else if (const auto* let = std::get_if<cli::LetLine>(&line.action)) {
      uses.let = uses.let || let->path.back().name == member;
    }
  }
  return uses;
}

TEST(AutomationDocument, HoldsEveryMemberOfTheTableAndNoOther) {
  EXPECT_EQ(ReferencesOfTheDocument(), ReferencesOfTheTable());
}

TEST(AutomationDocument, SaysWhatEveryClassIs) {
  const std::vector<std::string>& text = Automation().text;
  for (const automation::Class& owner : automation::Model()) {
    const auto heading = std::find(text.begin(), text.end(), std::string("## ") + owner.name);
    ASSERT_TRUE(heading != text.end() && heading + 1 != text.end()) << owner.name;
    EXPECT_THAT(heading[1], testing::StartsWith(owner.help));
  }
}

TEST(AutomationDocument, HasAnExampleOfEveryMember) {
  for (const automation::Class& owner : automation::Model()) {
    for (const automation::Member& member : owner.members) {
      const std::string heading = std::string(owner.name) + "." + member.name;
      const Uses uses = UsesUnder(heading, member.name);
      EXPECT_TRUE(member.kind == MemberKind::kLet ? uses.let : uses.call)
          << heading << " (" << KindText(member.kind) << ")";
    }
  }
}

TEST(AutomationDocument, HoldsEveryValueOfAnEnumeration) {
  const Document& document = Automation();
  for (const automation::Enumeration& enumeration : automation::Enumerations()) {
    EXPECT_THAT(document.text, testing::Contains(testing::StartsWith(enumeration.help)));
    std::vector<std::vector<std::string>> rows;
    for (const TableRow& row : document.rows) {
      if (row.heading == enumeration.name) rows.push_back(row.cells);
    }
    ASSERT_FALSE(rows.empty()) << enumeration.name;
    rows.erase(rows.begin());  // the headings of the columns
    std::vector<std::vector<std::string>> values;
    for (const automation::Enumeration::Value& value : enumeration.values) {
      values.push_back(
          {std::to_string(value.number), std::string("`") + value.name + "`", value.help});
    }
    EXPECT_EQ(rows, values) << enumeration.name;
  }
}

class AutomationExamples : public DocumentTest {};

TEST_F(AutomationExamples, AnswerAsWritten) {
  MakeMill(Automation().Block("ini"));
  CarryOut("automation.md", Automation().ExamplesOf("journal"),
           [](const std::string& line) { return line; });
}

}  // namespace
}  // namespace ambrelio::test
