#include "wscript_object.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/com/late_bound.h"
#include "ambrelio/value/convert.h"
#include "support/error_of.h"

namespace ambrelio::script_host {
namespace {

class WScriptTest : public ::testing::Test {
 protected:
  WScriptTest() { ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~WScriptTest() override {
    wscript_ = {};
    ::CoUninitialize();
  }

  com::LateBound wscript_{
      com::ComPtr<IDispatch>(MakeWScript(L"Z:\\mill\\día.vbs", {L"uno", L"dós"}).get())};
};

TEST_F(WScriptTest, GivesTheArgumentsOfTheScript) {
  const com::LateBound arguments = wscript_.ObjectFrom("Arguments");
  EXPECT_EQ(ToLong(arguments.Call("Count")), 2);
  EXPECT_EQ(ToLong(arguments.Call("length")), 2);
  EXPECT_EQ(ToText(arguments.Call("Item", {int32_t{1}})), "dós");
  EXPECT_EQ(test::ErrorOf([&] { arguments.Call("Item", {int32_t{2}}); }), 9);
}

TEST_F(WScriptTest, NamesTheScript) {
  EXPECT_EQ(ToText(wscript_.Call("ScriptFullName")), "Z:\\mill\\día.vbs");
  EXPECT_EQ(ToText(wscript_.Call("scriptname")), "día.vbs");
}

TEST_F(WScriptTest, CreatesObjectsByName) {
  const com::LateBound dictionary =
      wscript_.ObjectFrom("CreateObject", {std::string("Scripting.Dictionary")});
  EXPECT_EQ(ToLong(dictionary.Call("Count")), 0);
  EXPECT_EQ(test::ErrorOf([&] { wscript_.Call("CreateObject", {std::string("No.Such")}); }), 429);
}

int ticks = 0;
void CALLBACK CountTick(HWND, UINT, UINT_PTR, DWORD) { ++ticks; }

TEST_F(WScriptTest, SleepDeliversMessages) {
  ticks = 0;
  const UINT_PTR timer = ::SetTimer(nullptr, 0, 10, CountTick);
  while (ticks < 3) wscript_.Call("Sleep", {int32_t{20}});
  ::KillTimer(nullptr, timer);
  EXPECT_GE(ticks, 3);
}

TEST_F(WScriptTest, RefusesWhatItDoesNotHave) {
  EXPECT_EQ(test::ErrorOf([&] { wscript_.Call("Timeout"); }), 438);
  EXPECT_EQ(test::ErrorOf([&] { wscript_.Call("Sleep"); }), 450);
  EXPECT_EQ(test::ErrorOf([&] { wscript_.Call("Sleep", {std::string("x")}); }), 13);
}

}  // namespace
}  // namespace ambrelio::script_host
