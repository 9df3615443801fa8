// A client of the automation server: a mill's folder with settings and a database, and late-bound
// calls with every kind of argument.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ambrelio/com/conversion.h"
#include "ambrelio/com/late_bound.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "ambrelio/kestro/ini_file.h"
#include "support/temp_folder.h"
#include "win32/server_dll.h"

namespace ambrelio::test {

using com::ComPtr;
using com::LateBound;
using com::OwnedVariant;

// 4 hoppers, 2 intermediate hoppers, 6 tanks; one weighing of 1000 kg in hopper 1.
class MillFolder {
 public:
  MillFolder() {
    const auto engine = engine::Create();
    host::CreateMillDatabase(*engine, folder_.File("oliva.mdb"), "");
    kestro::IniFile(folder_.File("Vardex.ini"), "GENERAL").Write("MaxTolvas", "4,2,6");
    const auto database =
        engine->DefaultWorkspace().OpenDatabase(folder_.File("oliva.mdb"), false, false, "");
    database->Execute(
        "insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, "
        "H_INICIO, TOLVA, DESCARGA, PARCIALPESO) values (1, 1, 0, 1, 1, 1, 'LOMA', "
        "#11/15/2026 08:00:00#, 1, 1, 1000)");
    database->Close();
  }

  std::string path() const { return folder_.path(); }
  void WriteSensorSetting(const std::string& key, const std::string& value) const {
    kestro::IniFile(folder_.File("Vardex.ini"), "SENSORES").Write(key, value);
  }

 private:
  TempFolder folder_;
};

// A VARIANT that refers to a variable of the client: another VARIANT, or one of type `type`.
inline VARIANT ReferTo(VARIANT& variable) {
  VARIANT reference;
  V_VT(&reference) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference) = &variable;
  return reference;
}
inline VARIANT ReferTo(VARTYPE type, void* variable) {
  VARIANT reference;
  V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | type);
  V_BYREF(&reference) = variable;
  return reference;
}
inline VARIANT Omitted() {
  VARIANT omitted;
  V_VT(&omitted) = VT_ERROR;
  V_ERROR(&omitted) = DISP_E_PARAMNOTFOUND;
  return omitted;
}

// How a call of IDispatch::Invoke ended.
struct Outcome {
  HRESULT result = S_OK;
  HRESULT code = S_OK;  // of the error told
  std::string source;
  std::string description;
  OwnedVariant value;

  Variant Value() const { return com::FromCom(value.get()); }
};

inline DISPID IdOf(IDispatch* object, const char* member) {
  std::wstring name = com::ToWide(member);
  wchar_t* names[] = {name.data()};
  DISPID id = DISPID_UNKNOWN;
  object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

// `arguments` come in the order of the call, `named` tells the places of the last ones. They stay
// the test's.
inline Outcome Invoke(IDispatch* object, const char* member, std::vector<VARIANT> arguments,
                      WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                      std::vector<DISPID> named = {}) {
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  std::vector<DISPID> reversed_named(named.rbegin(), named.rend());
  DISPPARAMS parameters{reversed.data(), reversed_named.data(), static_cast<UINT>(reversed.size()),
                        static_cast<UINT>(reversed_named.size())};
  Outcome outcome;
  EXCEPINFO info{};
  outcome.result = object->Invoke(IdOf(object, member), IID_NULL, LOCALE_USER_DEFAULT, flags,
                                  &parameters, outcome.value.Receive(), &info, nullptr);
  if (outcome.result == DISP_E_EXCEPTION) {
    outcome.code = info.scode;
    const AutomationError error = com::ErrorOf(outcome.result, info, member);
    outcome.source = error.source();
    outcome.description = error.description();
  }
  return outcome;
}

class ServerTest : public ::testing::Test {
 protected:
  // The root at work on the mill.
  void SetUp() override {
    root.Call("Constructor", {mill.path(), false});
    ASSERT_EQ(root.Call("BaseAbierta"), Variant(true));
  }

  // Hopper 1 is discharged into tank 1, where 500 litres are read.
  void FillTank() const {
    ASSERT_EQ(root.ObjectFrom("Tolva", {int16_t{1}}).Call("Descargar", {int16_t{1}, int16_t{1}}),
              Variant(true));
    ASSERT_EQ(Tank().Call("EntradaNivel", {Variant(), int32_t{10}, 500.0}), Variant(true));
  }
  LateBound Tank() const { return root.ObjectFrom("Deposito", {int16_t{1}}); }
  LateBound Hopper() const { return root.ObjectFrom("Tolva", {int16_t{1}}); }

  static int ErrorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return error.number();
    }
    return 0;
  }

  Apartment apartment;
  MillFolder mill;
  ServerDll dll;
  LateBound root{ComPtr<IDispatch>(dll.CreateRoot().get())};
};

}  // namespace ambrelio::test
