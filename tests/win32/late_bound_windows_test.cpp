// Calls by IDispatch, as scripts make them.
#include "support/environment.h"
#include "win32/client.h"

namespace ambrelio {
namespace {

using test::ComPtr;
using test::Invoke;
using test::LateBound;
using test::Omitted;
using test::Outcome;
using test::OwnedVariant;
using test::ReferTo;
using test::ServerTest;

using LateBoundServer = ServerTest;

class UnopenedServer : public ServerTest {
 protected:
  void SetUp() override {}
};

VARIANT Integer(short number) {
  VARIANT value;
  V_VT(&value) = VT_I2;
  V_I2(&value) = number;
  return value;
}
VARIANT Double(double number) {
  VARIANT value;
  V_VT(&value) = VT_R8;
  V_R8(&value) = number;
  return value;
}

// --- names

TEST_F(LateBoundServer, FindsMembersWithoutRegardToCase) {
  EXPECT_EQ(root.Call("maximotolvas"), Variant(int16_t{4}));
  EXPECT_EQ(root.Call("INICIARCAMPAÑA"), Variant(true));
}

TEST_F(LateBoundServer, KnowsNoMemberWithoutItsLetter) {
  EXPECT_EQ(ErrorOf([&] { root.Call("IniciarCampana"); }), 438);
}

TEST_F(LateBoundServer, FindsTheNamesOfArguments) {
  std::wstring member = L"Descargar", first = L"DTO", last = L"qto", other = L"nada";
  wchar_t* names[] = {member.data(), first.data(), last.data()};
  DISPID ids[3];
  const LateBound hopper = Hopper();
  EXPECT_EQ(hopper.get()->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  EXPECT_THAT(ids, ::testing::ElementsAre(3, 0, 2));
  names[1] = other.data();
  EXPECT_EQ(hopper.get()->GetIDsOfNames(IID_NULL, names, 3, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_THAT(ids, ::testing::ElementsAre(3, DISPID_UNKNOWN, 2));
}

TEST_F(LateBoundServer, RefusesANumberWithoutMember) {
  DISPPARAMS none{};
  EXPECT_EQ(root.get()->Invoke(99, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(
      root.get()->Invoke(2, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, nullptr, nullptr, nullptr),
      DISP_E_MEMBERNOTFOUND);
}

TEST_F(LateBoundServer, TakesNoResultForAnAnswer) {
  DISPPARAMS none{};
  EXPECT_EQ(root.get()->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            S_OK);
}

// --- arguments by reference

TEST_F(LateBoundServer, WritesAShareBackIntoTheClientsVariable) {
  VARIANT share = Double(2.5);
  const Outcome outcome =
      Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(share)});
  EXPECT_EQ(outcome.Value(), Variant(true));
  EXPECT_EQ(com::FromCom(share), Variant(1.0));
}

TEST_F(LateBoundServer, AChangedVariableTakesTheTypeOfTheParameter) {
  VARIANT share = Integer(0);
  Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(share)});
  EXPECT_EQ(com::FromCom(share), Variant(1.0));
}

TEST_F(LateBoundServer, AVariableLeftAloneKeepsItsType) {
  OwnedVariant tank = com::ToCom("1");
  VARIANT share = Integer(1);
  const Outcome outcome =
      Invoke(Hopper().get(), "Descargar", {ReferTo(tank.get()), Integer(1), ReferTo(share)});
  EXPECT_EQ(outcome.Value(), Variant(true));
  EXPECT_EQ(com::FromCom(tank.get()), Variant("1"));
  EXPECT_EQ(com::FromCom(share), Variant(int16_t{1}));
}

TEST_F(LateBoundServer, AVariableOfAnotherTypeGetsTheValueConverted) {
  float share = 7;
  Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(VT_R4, &share)});
  EXPECT_EQ(share, 1.0F);
  short whole = 9;
  Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(VT_I2, &whole)});
  EXPECT_EQ(whole, 1);
  BSTR text = ::SysAllocString(L"3");
  Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(VT_BSTR, &text)});
  EXPECT_EQ(com::TextOf(text), "1");
  ::SysFreeString(text);
}

TEST_F(LateBoundServer, FollowsAReferenceToAReference) {
  double share = 4;
  VARIANT inner = ReferTo(VT_R8, &share);
  VARIANT outer = ReferTo(inner);
  Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), ReferTo(outer)});
  EXPECT_EQ(share, 1.0);
  EXPECT_EQ(V_VT(&inner), VT_BYREF | VT_R8);
}

TEST_F(LateBoundServer, WritesTheLitresTakenBack) {
  FillTank();
  VARIANT litres = Double(9000);
  EXPECT_EQ(Invoke(Tank().get(), "NuevoVaciado", {Integer(2), ReferTo(litres)}).Value(),
            Variant(int32_t{1}));
  EXPECT_EQ(com::FromCom(litres), Variant(500.0));
}

TEST_F(LateBoundServer, WritesBackWhatWasChangedBeforeAFailure) {
  const LateBound hopper = Hopper();
  root.Call("Cerrar");
  VARIANT share = Double(2.5);
  const Outcome outcome =
      Invoke(hopper.get(), "Descargar", {Integer(1), Integer(1), ReferTo(share)});
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(com::FromCom(share), Variant(1.0));
}

TEST_F(LateBoundServer, FillsVariablesThatAreWrittenOnly) {
  FillTank();
  OwnedVariant litres, level, moment;
  const Outcome outcome =
      Invoke(Tank().get(), "UltimoMovimiento",
             {ReferTo(litres.get()), ReferTo(level.get()), ReferTo(moment.get())});
  EXPECT_EQ(outcome.result, S_OK);
  EXPECT_EQ(com::FromCom(litres.get()), Variant(500.0));
  EXPECT_TRUE(com::FromCom(moment.get()).is_date());
}

// --- which arguments

TEST_F(LateBoundServer, TakesArgumentsLeftOut) {
  EXPECT_EQ(Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1)}).Value(), Variant(true));
  EXPECT_EQ(Invoke(Hopper().get(), "Descargar", {Integer(1), Integer(1), Omitted()}).Value(),
            Variant(true));
  EXPECT_TRUE(
      Invoke(root.get(), "HistoriaNiveles", {Omitted(), Omitted(), Integer(3)}).Value().is_empty());
}

TEST_F(LateBoundServer, TakesArgumentsByName) {
  VARIANT share = Double(3);
  const Outcome outcome = Invoke(Hopper().get(), "Descargar",
                                 {Integer(2), ReferTo(share), Integer(1)}, DISPATCH_METHOD, {2, 1});
  EXPECT_EQ(outcome.Value(), Variant(true));
  EXPECT_EQ(com::FromCom(share), Variant(1.0));
}

TEST_F(LateBoundServer, RefusesNamesThatDoNotFit) {
  const LateBound hopper = Hopper();
  EXPECT_EQ(Invoke(hopper.get(), "Descargar", {Integer(1), Integer(1)}, DISPATCH_METHOD, {7}).code,
            static_cast<HRESULT>(0x800A01C0));
  EXPECT_EQ(
      Invoke(hopper.get(), "Descargar", {Integer(1), Integer(1), Integer(1)}, DISPATCH_METHOD, {0})
          .code,
      static_cast<HRESULT>(0x800A01C2));
  EXPECT_EQ(Invoke(hopper.get(), "Descargar", {Integer(1)}, DISPATCH_METHOD, {1}).code,
            static_cast<HRESULT>(0x800A01C1));
}

TEST_F(LateBoundServer, SetsAPropertyWithAnIndex) {
  const LateBound referent = root.ObjectFrom("NuevoReferente", {int16_t{1}});
  OwnedVariant text = com::ToCom("Tel. 953 000 000");
  const Outcome put = Invoke(referent.get(), "Info", {Integer(2), text.get()}, DISPATCH_PROPERTYPUT,
                             {DISPID_PROPERTYPUT});
  EXPECT_EQ(put.result, S_OK);
  EXPECT_EQ(referent.Call("Info", {int16_t{2}}), Variant("Tel. 953 000 000"));
  EXPECT_EQ(referent.Call("Info", {int16_t{1}}), Variant(""));
}

TEST_F(LateBoundServer, SetsNoReference) {
  VARIANT nothing;
  V_VT(&nothing) = VT_DISPATCH;
  V_DISPATCH(&nothing) = nullptr;
  EXPECT_EQ(
      Invoke(Tank().get(), "Formula", {nothing}, DISPATCH_PROPERTYPUTREF, {DISPID_PROPERTYPUT})
          .result,
      DISP_E_MEMBERNOTFOUND);
}

// --- values

Variant Row(double level, double factor) { return Variant::Array{level, 0.0, factor, 0.0, 0.0}; }

TEST_F(LateBoundServer, TakesAndGivesArraysOfArrays) {
  const LateBound tank = Tank();
  tank.Put("Formula", Variant::Array{Row(0, 2.5), Row(100, 3)});
  const Variant formula = tank.Call("Formula");
  ASSERT_TRUE(formula.is_array());
  ASSERT_EQ(formula.array().size(), 2U);
  EXPECT_EQ(formula.array()[1].array()[2], Variant(3.0));
}

TEST_F(LateBoundServer, IndexesWhatAPropertyHolds) {
  const LateBound tank = Tank();
  tank.Put("Formula", Variant::Array{Row(0, 2.5), Row(100, 3)});
  EXPECT_EQ(tank.Call("Formula", {int32_t{1}}).array()[2], Variant(3.0));
  EXPECT_EQ(ErrorOf([&] { tank.Call("Formula", {int32_t{2}}); }), 9);
  EXPECT_EQ(ErrorOf([&] { tank.Call("Nombre", {int32_t{0}}); }), 450);
}

TEST_F(LateBoundServer, TakesATwoDimensionalArray) {
  SAFEARRAYBOUND bounds[] = {{2, 0}, {5, 1}};
  OwnedVariant table;
  V_VT(&table.get()) = VT_ARRAY | VT_R8;
  V_ARRAY(&table.get()) = ::SafeArrayCreate(VT_R8, 2, bounds);
  for (LONG row = 0; row < 2; ++row) {
    for (LONG column = 1; column <= 5; ++column) {
      LONG at[] = {row, column};
      double number = static_cast<double>(row * 100) + (column == 1 ? 0 : column);
      ::SafeArrayPutElement(V_ARRAY(&table.get()), at, &number);
    }
  }
  const LateBound tank = Tank();
  const Outcome put = Invoke(tank.get(), "Formula", {ReferTo(table.get())}, DISPATCH_PROPERTYPUT,
                             {DISPID_PROPERTYPUT});
  EXPECT_EQ(put.result, S_OK);
  EXPECT_EQ(tank.Call("Formula").array()[1].array()[4], Variant(105.0));
}

TEST_F(LateBoundServer, GivesNothingNullAndEmpty) {
  const Outcome nothing = Invoke(root.get(), "Tolva", {Integer(9)});
  EXPECT_EQ(V_VT(&nothing.value.get()), VT_DISPATCH);
  EXPECT_EQ(V_DISPATCH(&nothing.value.get()), nullptr);
  EXPECT_EQ(V_VT(&Invoke(Tank().get(), "NivelActual", {}).value.get()), VT_NULL);
  EXPECT_EQ(V_VT(&Invoke(root.get(), "ListaDestinoVenta", {}).value.get()), VT_EMPTY);
  EXPECT_EQ(V_VT(&Invoke(root.get(), "BaseAbierta", {}).value.get()), VT_BOOL);
  EXPECT_EQ(V_VT(&Invoke(Hopper().get(), "MomentoInicio", {}).value.get()), VT_DATE);
}

TEST_F(LateBoundServer, TakesAnObjectOfItsOwn) {
  const LateBound referent = root.ObjectFrom("NuevoReferente", {int16_t{1}});
  referent.Put("Nombre", "Aceites del Sur");
  EXPECT_EQ(root.Call("GuardarReferente", {int16_t{1}, referent.AsArgument()}), Variant(true));
  EXPECT_EQ(root.ObjectFrom("UnReferente", {int16_t{1}, int32_t{1}}).Call("Nombre"),
            Variant("Aceites del Sur"));
}

TEST_F(LateBoundServer, TakesNoOtherObject) {
  EXPECT_EQ(ErrorOf([&] { root.Call("GuardarReferente", {int16_t{1}, root.AsArgument()}); }), 13);
  EXPECT_EQ(ErrorOf([&] { root.Call("GuardarReferente", {int16_t{1}, Variant::Nothing()}); }), 91);
  EXPECT_EQ(ErrorOf([&] { root.Call("GuardarReferente", {int16_t{1}, Variant(1.0)}); }), 13);
}

// --- errors

TEST_F(LateBoundServer, TellsErrorsByNumberSourceAndSentence) {
  const Outcome outcome = Invoke(root.get(), "Tolva", {Double(70000)});
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.code, static_cast<HRESULT>(0x800A0006));
  EXPECT_EQ(outcome.source, "Ambrelio");
  EXPECT_FALSE(outcome.description.empty());
}

TEST_F(LateBoundServer, RefusesWrongTypesAndCounts) {
  EXPECT_EQ(ErrorOf([&] { root.Call("Tolva", {"zz"}); }), 13);
  EXPECT_EQ(ErrorOf([&] { root.Call("Tolva", {Variant::Null()}); }), 94);
  EXPECT_EQ(ErrorOf([&] { root.Call("Tolva"); }), 450);
  EXPECT_EQ(ErrorOf([&] { root.Call("Tolva", {int16_t{1}, int16_t{1}}); }), 450);
  EXPECT_EQ(Invoke(root.get(), "Tolva", {Omitted()}).code, static_cast<HRESULT>(0x800A01C1));
}

TEST_F(LateBoundServer, PassesTheNumbersOfTheEngineThrough) {
  FillTank();
  const LateBound tank = Tank();
  tank.Call("NuevoVaciado", {int16_t{2}, 100.0});
  const LateBound emptying = tank.ObjectFrom("Vaciado", {int32_t{1}});
  tank.Call("DeshacerVaciado");
  EXPECT_EQ(ErrorOf([&] { emptying.Call("Litros"); }), 3021);
  root.Call("Cerrar");
  const Outcome outcome = Invoke(tank.get(), "Nombre", {});
  EXPECT_EQ(outcome.code, static_cast<HRESULT>(0x800A0D5C));  // 3420
  EXPECT_FALSE(outcome.source.empty());
  EXPECT_FALSE(outcome.description.empty());
}

// The database is not simply taken for one that does not open.
TEST_F(UnopenedServer, RefusesAnEngineThatIsNone) {
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_JET", "jet");
  try {
    root.Call("Constructor", {mill.path(), false});
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), ::testing::HasSubstr("AMBRELIO_JET is dao or own, not jet"));
  }
}

TEST_F(LateBoundServer, WorksOnAfterAnError) {
  EXPECT_EQ(ErrorOf([&] { root.Call("Tolva", {"zz"}); }), 13);
  root.Call("Cerrar");
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(false));
  root.Call("RecargaValores");
  EXPECT_EQ(root.Call("BaseAbierta"), Variant(true));
  EXPECT_TRUE(Hopper());
}

}  // namespace
}  // namespace ambrelio
