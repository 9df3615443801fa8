#include "ambrelio/platform/automation_objects.h"

#include <gtest/gtest.h>

#include "ambrelio/value/automation_error.h"
#include "support/error_of.h"

namespace ambrelio {
namespace {

class Named : public AutomationObject {
 public:
  explicit Named(std::string name) : name_(std::move(name)) {}
  Variant Call(std::string_view, const std::vector<Variant>&) override { return name_; }

 private:
  std::string name_;
};

AutomationObjects::Factory MakerOf(const std::string& name) {
  return [name] { return std::make_shared<Named>(name); };
}

Variant NameOf(const std::shared_ptr<AutomationObject>& object) { return object->Call("Name", {}); }

TEST(AutomationObjects, MakesWhatWasRegistered) {
  AutomationObjects objects;
  objects.Register("Sondas.Lector", MakerOf("lector"));
  objects.Register("Sondas.Otro", MakerOf("otro"));
  EXPECT_EQ(NameOf(objects.Create("Sondas.Lector")), Variant("lector"));
  EXPECT_EQ(NameOf(objects.Create("Sondas.Otro")), Variant("otro"));
}

TEST(AutomationObjects, MakesANewObjectEachTime) {
  AutomationObjects objects;
  objects.Register("Sondas.Lector", MakerOf("lector"));
  EXPECT_NE(objects.Create("Sondas.Lector"), objects.Create("Sondas.Lector"));
}

TEST(AutomationObjects, AreFoundWithoutRegardToCase) {
  AutomationObjects objects;
  objects.Register("Sondas.Depósito", MakerOf("lector"));
  EXPECT_EQ(NameOf(objects.Create("SONDAS.DEPÓSITO")), Variant("lector"));
}

TEST(AutomationObjects, TheLastRegistrationCounts) {
  AutomationObjects objects;
  objects.Register("Sondas.Lector", MakerOf("old"));
  objects.Register("sondas.lector", MakerOf("new"));
  EXPECT_EQ(NameOf(objects.Create("Sondas.Lector")), Variant("new"));
}

TEST(AutomationObjects, AnUnknownNameRaises429) {
  const AutomationObjects objects;
  try {
    objects.Create("Sondas.Lector");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 429);
    // The system may tell more of the cause.
    EXPECT_TRUE(
        error.description().starts_with("ActiveX component can't create object: Sondas.Lector"))
        << error.description();
  }
}

TEST(AutomationObjects, AFactoryThatMakesNothingRaises429) {
  AutomationObjects objects;
  objects.Register("Sondas.Lector", [] { return nullptr; });
  EXPECT_EQ(test::ErrorOf([&] { objects.Create("Sondas.Lector"); }), 429);
}

TEST(AutomationObjects, WhatAFactoryRaisesComesOut) {
  AutomationObjects objects;
  objects.Register("Sondas.Lector", []() -> std::shared_ptr<AutomationObject> {
    Raise(RuntimeError::kInvalidCall);
  });
  EXPECT_EQ(test::ErrorOf([&] { objects.Create("Sondas.Lector"); }), 5);
}

TEST(AutomationObjects, AFactoryMayRegisterAnotherInItsPlace) {
  AutomationObjects objects;
  const std::string name = "a name too long to be kept within the function object";
  objects.Register("Sondas.Lector", [&objects, name] {
    objects.Register("Sondas.Lector", MakerOf("second"));
    return std::make_shared<Named>(name);
  });
  EXPECT_EQ(NameOf(objects.Create("Sondas.Lector")), Variant(name));
  EXPECT_EQ(NameOf(objects.Create("Sondas.Lector")), Variant("second"));
}

}  // namespace
}  // namespace ambrelio
