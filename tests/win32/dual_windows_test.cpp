// Calls through the dual interfaces, as programs compiled against the type library make them.
#include <ocidl.h>

#include <algorithm>
#include <functional>
#include <map>
#include <thread>

#include "ambrelio/automation/call.h"
#include "ambrelio/value/convert.h"
#include "win32/client.h"
#include "win32/type_library_text.h"

namespace ambrelio {
namespace {

using automation::Argument;
using automation::Class;
using automation::Member;
using automation::MemberKind;
using automation::ValueType;
using com::BStr;
using test::ComPtr;
using test::LateBound;
using test::Outcome;
using test::OwnedVariant;
using test::ServerTest;

class DualServer : public ServerTest {
 protected:
  // The same object by its own interface.
  template <class Interface>
  static ComPtr<Interface> As(const LateBound& object) {
    return ComPtr<IDispatch>(object.get()).As<Interface>();
  }

  ComPtr<_Trazabilidad> dual = As<_Trazabilidad>(root);
};

TEST_F(DualServer, GivesAndTakesTypedValues) {
  VARIANT_BOOL open = VARIANT_FALSE;
  EXPECT_EQ(dual->BaseAbierta(&open), S_OK);
  EXPECT_EQ(open, VARIANT_TRUE);
  LONG timeout = 750;
  EXPECT_EQ(dual->put_TimeOutUDP(&timeout), S_OK);
  LONG kept = 0;
  EXPECT_EQ(dual->get_TimeOutUDP(&kept), S_OK);
  EXPECT_EQ(kept, 750);
}

TEST_F(DualServer, HandsOutObjectsByTheirInterfaces) {
  short number = 1;
  ComPtr<_Tolva> hopper;
  ASSERT_EQ(dual->Tolva(&number, hopper.Receive()), S_OK);
  DATE opened = -1;
  EXPECT_EQ(hopper->get_MomentoInicio(&opened), S_OK);
  EXPECT_GE(opened, 0);
  number = 9;
  EXPECT_EQ(dual->Tolva(&number, hopper.Receive()), S_OK);
  EXPECT_FALSE(hopper);
}

TEST_F(DualServer, WritesTheShareBack) {
  const auto hopper = As<_Tolva>(Hopper());
  short tank = 1;
  short line = 1;
  double share = 2.5;
  VARIANT_BOOL done = VARIANT_FALSE;
  EXPECT_EQ(hopper->Descargar(&tank, &line, &share, &done), S_OK);
  EXPECT_EQ(done, VARIANT_TRUE);
  EXPECT_EQ(share, 1.0);
}

TEST_F(DualServer, SetsAPropertyWithAnIndex) {
  short kind = 1;
  ComPtr<_Referente> referent;
  ASSERT_EQ(dual->NuevoReferente(&kind, referent.Receive()), S_OK);
  short line = 3;
  BSTR text = ::SysAllocString(L"Jaén");
  EXPECT_EQ(referent->put_Info(&line, &text), S_OK);
  ::SysFreeString(text);
  BStr kept;
  EXPECT_EQ(referent->get_Info(&line, kept.Receive()), S_OK);
  EXPECT_EQ(kept.Text(), "Jaén");
  BSTR name = ::SysAllocString(L"Aceites del Sur");
  EXPECT_EQ(referent->put_Nombre(&name), S_OK);
  ::SysFreeString(name);
  VARIANT_BOOL saved = VARIANT_FALSE;
  _Referente* given = referent.get();
  EXPECT_EQ(dual->GuardarReferente(&kind, &given, &saved), S_OK);
  EXPECT_EQ(saved, VARIANT_TRUE);
  EXPECT_EQ(given, referent.get());
}

TEST_F(DualServer, TellsErrorsByTheErrorObject) {
  short line = 4;
  const auto referent = As<_Referente>(root.ObjectFrom("NuevoReferente", {int16_t{1}}));
  root.Call("Cerrar");
  const auto tank = As<_Deposito>(Tank());
  EXPECT_FALSE(tank);
  short kind = 1;
  VARIANT list;
  ::VariantInit(&list);
  EXPECT_EQ(dual->ListaReferentes(&kind, &line, &list), static_cast<HRESULT>(0x800A0D5C));
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(::GetErrorInfo(0, info.Receive()), S_OK);
  BStr source;
  BStr description;
  GUID interface_id{};
  info->GetSource(source.Receive());
  info->GetDescription(description.Receive());
  info->GetGUID(&interface_id);
  EXPECT_NE(source.Text(), "");
  EXPECT_NE(description.Text(), "");
  EXPECT_EQ(interface_id, __uuidof(_Trazabilidad));
  EXPECT_EQ(dual.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(__uuidof(_Trazabilidad)),
            S_OK);
  EXPECT_EQ(dual.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(__uuidof(_Tolva)), S_FALSE);
}

TEST_F(DualServer, RefusesNullPointers) {
  VARIANT_BOOL open = VARIANT_FALSE;
  EXPECT_EQ(dual->BaseAbierta(nullptr), E_POINTER);
  EXPECT_EQ(dual->EliminarReferente(nullptr, nullptr, &open), E_POINTER);
}

TEST_F(DualServer, ShowsItsTypes) {
  UINT count = 0;
  EXPECT_EQ(dual->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1U);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(dual->GetTypeInfo(0, 0, info.Receive()), S_OK);
  EXPECT_EQ(test::DocumentationOf(info.get(), MEMBERID_NIL).name, "_Trazabilidad");
  EXPECT_EQ(dual->GetTypeInfo(1, 0, info.Receive()), DISP_E_BADINDEX);
  ASSERT_EQ(dual.As<IProvideClassInfo>()->GetClassInfo(info.Receive()), S_OK);
  EXPECT_EQ(test::DocumentationOf(info.get(), MEMBERID_NIL).name, "Trazabilidad");
}

TEST_F(DualServer, IsOneObjectByAnyInterface) {
  EXPECT_EQ(dual.As<ISupportErrorInfo>().As<IUnknown>().get(), dual.As<IUnknown>().get());
  ComPtr<IUnknown> other;
  EXPECT_EQ(dual->QueryInterface(__uuidof(_Tolva), other.ReceiveVoid()), E_NOINTERFACE);
  EXPECT_FALSE(other);
}

// --- every member, both ways

// A value for an argument, so that most members find something.
Variant Sample(const Argument& argument, const Variant& referent) {
  switch (argument.type) {
    case ValueType::kText:
      return "texto";
    case ValueType::kDouble:
      return 0.5;
    case ValueType::kVariant:
      return {};
    case ValueType::kObject:
      return referent;
    default:
      return automation::Coerce(Variant(int32_t{1}), argument.type);
  }
}

std::string Text(const Variant& value) {
  if (value.is_date()) return "a moment";  // the two runs differ in theirs
  if (value.is_object()) return value.object() == nullptr ? "Nothing" : "an object";
  if (value.is_array()) {
    std::string text = "[";
    for (const Variant& element : value.array()) text += Text(element) + ", ";
    return text + "]";
  }
  if (value.is_empty() || value.is_null()) return TypeName(value);
  return TypeName(value) + " " + ToText(value);
}

// How a call ended, with what is in the variables then.
std::string Describe(HRESULT code, const std::string& description, const Variant& result,
                     const std::vector<OwnedVariant>& variables) {
  std::string text = com::NumberOf(code) == 0
                         ? Text(result)
                         : "error " + std::to_string(com::NumberOf(code)) + ": " + description;
  for (const OwnedVariant& variable : variables) text += " | " + Text(com::FromCom(variable.get()));
  return text;
}

// A caller of one member, with its variables.
using Caller =
    std::function<std::string(IDispatch*, const Member&, std::vector<OwnedVariant>& variables)>;

std::string CallLate(IDispatch* object, const Member& member,
                     std::vector<OwnedVariant>& variables) {
  std::vector<VARIANT> arguments;
  for (OwnedVariant& variable : variables) arguments.push_back(test::ReferTo(variable.get()));
  const bool let = member.kind == MemberKind::kLet;
  const Outcome outcome =
      test::Invoke(object, member.name, arguments, let ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD,
                   let ? std::vector<DISPID>{DISPID_PROPERTYPUT} : std::vector<DISPID>{});
  return Describe(outcome.code, outcome.description, outcome.Value(), variables);
}

VARTYPE TypeOf(ValueType type) { return V_VT(&com::ToCom(automation::FreshVariable(type)).get()); }

// By its place in the vtable, which follows from its place in the model.
std::string CallDual(IDispatch* object, const Member& member,
                     std::vector<OwnedVariant>& variables) {
  const Class& owner = *std::find_if(
      automation::Model().begin(), automation::Model().end(), [&](const Class& candidate) {
        return &member >= candidate.members.data() &&
               &member < candidate.members.data() + candidate.members.size();
      });
  const auto place = static_cast<ULONG_PTR>(7 + (&member - owner.members.data()));

  std::vector<VARIANT> references;
  for (size_t i = 0; i < variables.size(); ++i) {
    const bool variant = member.arguments[i].type == ValueType::kVariant;
    VARIANT& variable = variables[i].get();
    references.push_back(variant ? test::ReferTo(variable)
                                 : test::ReferTo(V_VT(&variable), &V_I8(&variable)));
  }
  OwnedVariant result;
  if (member.result != ValueType::kNone) {
    const bool variant = member.result == ValueType::kVariant;
    if (!variant) V_VT(&result.get()) = TypeOf(member.result);
    references.push_back(variant ? test::ReferTo(result.get())
                                 : test::ReferTo(V_VT(&result.get()), &V_I8(&result.get())));
  }
  std::vector<VARTYPE> types;
  std::vector<VARIANT*> pointers;
  for (VARIANT& reference : references) {
    types.push_back(V_VT(&reference));
    pointers.push_back(&reference);
  }
  ::SetErrorInfo(0, nullptr);
  OwnedVariant returned;
  ::DispCallFunc(object, place * sizeof(void*), CC_STDCALL, VT_ERROR,
                 static_cast<UINT>(pointers.size()), types.data(), pointers.data(),
                 returned.Receive());
  const HRESULT code = V_ERROR(&returned.get());
  BStr description;
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Receive()) == S_OK) info->GetDescription(description.Receive());
  const Variant value = FAILED(code) ? Variant() : com::FromCom(result.get());
  return Describe(code, description.Text(), value, variables);
}

// Every member of an object of every class, but for those that take the mill away; one line each.
std::vector<std::string> CallEverything(const Caller& call) {
  std::vector<std::string> log;
  // A thread of its own, so that each run has a state of its own.
  std::thread([&] {
    const test::Apartment apartment;
    const test::MillFolder mill;
    const test::ServerDll dll;
    const LateBound root{ComPtr<IDispatch>(dll.CreateRoot().get())};
    root.Call("Constructor", {mill.path(), false});
    const LateBound hopper = root.ObjectFrom("Tolva", {int16_t{1}});
    hopper.Call("Descargar", {int16_t{1}, int16_t{1}, 0.5});
    const LateBound tank = root.ObjectFrom("Deposito", {int16_t{1}});
    // Moments well after those of the clock, so that no run meets two in the same second.
    const OleDate read = OleDate::FromIso("2090-01-01 08:00:00").value();
    const OleDate emptied = OleDate::FromIso("2090-01-02 08:00:00").value();
    tank.Call("EntradaNivel", {read, int32_t{10}, 500.0});
    tank.Call("NuevoVaciado", {int16_t{2}, 100.0, emptied});
    const LateBound referent = root.ObjectFrom("NuevoReferente", {int16_t{1}});
    const std::map<std::string, LateBound> objects = {
        {"Trazabilidad", root},
        {"Referente", referent},
        {"Tolva", hopper},
        {"Descarga", hopper.ObjectFrom("Descarga", {int32_t{1}})},
        {"TvaInter", root.ObjectFrom("TvaInter", {int16_t{1}})},
        {"Deposito", tank},
        {"Nivel", tank.ObjectFrom("Nivel", {int32_t{1}})},
        {"Vaciado", tank.ObjectFrom("Vaciado", {int32_t{1}})}};
    for (const Class& owner : automation::Model()) {
      for (const Member& member : owner.members) {
        const std::string name = member.name;
        if (name == "Constructor" || name == "Cerrar" || name == "IniciarCampaña") continue;
        std::vector<OwnedVariant> variables;
        for (const Argument& argument : member.arguments) {
          variables.push_back(com::ToCom(Sample(argument, referent.AsArgument())));
        }
        const std::string outcome = call(objects.at(owner.name).get(), member, variables);
        log.push_back(std::string(owner.name) + "." + name + ": " + outcome);
      }
    }
  }).join();
  return log;
}

TEST(BothDoors, EveryMemberAnswersTheSame) {
  const std::vector<std::string> late = CallEverything(&CallLate);
  EXPECT_GT(late.size(), 90U);
  EXPECT_THAT(CallEverything(&CallDual), ::testing::ElementsAreArray(late));
}

TEST(BothDoors, MostMembersFindSomething) {
  const std::vector<std::string> log = CallEverything(&CallLate);
  const auto failed = std::count_if(log.begin(), log.end(), [](const std::string& line) {
    return line.find(": error ") != std::string::npos;
  });
  EXPECT_LT(failed, 10) << ::testing::PrintToString(log);
}

}  // namespace
}  // namespace ambrelio
