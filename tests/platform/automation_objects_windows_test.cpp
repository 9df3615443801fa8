#include <gtest/gtest.h>

#include "ambrelio/platform/automation_objects.h"
#include "ambrelio/value/convert.h"
#include "support/error_of.h"

namespace ambrelio {
namespace {

TEST(AutomationObjectsOfWindows, AreMadeByTheirIdentifierAndCalledByName) {
  const auto files = AutomationObjects().Create("scripting.filesystemobject");
  EXPECT_EQ(ToText(files->Call("BuildPath", {"C:\\datos", "oliva.mdb"})), "C:\\datos\\oliva.mdb");
}

TEST(AutomationObjectsOfWindows, RaiseWhatTheirMethodsRaise) {
  const auto files = AutomationObjects().Create("Scripting.FileSystemObject");
  EXPECT_EQ(test::ErrorOf([&] { files->Call("GetFile", {"C:\\no such file"}); }), 53);
  EXPECT_EQ(test::ErrorOf([&] { files->Call("NoSuchMethod", {}); }), 438);
}

TEST(AutomationObjectsOfWindows, ComeAfterThoseRegistered) {
  class Stub : public AutomationObject {
    Variant Call(std::string_view, const std::vector<Variant>&) override { return "stub"; }
  };
  AutomationObjects objects;
  objects.Register("Scripting.FileSystemObject", [] { return std::make_shared<Stub>(); });
  EXPECT_EQ(ToText(objects.Create("Scripting.FileSystemObject")->Call("BuildPath", {})), "stub");
}

}  // namespace
}  // namespace ambrelio
