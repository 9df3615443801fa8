#include "ambrelio/automation/model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ambrelio/automation/call.h"
#include "ambrelio/automation/describe.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/referents/referente.h"
#include "ambrelio/tanks/deposito.h"
#include "support/mill.h"

namespace ambrelio::automation {
namespace {

using testing::ElementsAre;

// "1 Name" for each member, get and let of a property once.
std::vector<std::string> Order(const char* class_name) {
  std::vector<std::string> order;
  for (const Member& member : FindClass(class_name)->members) {
    const std::string entry = std::to_string(member.dispid) + " " + member.name;
    if (order.empty() || order.back() != entry) order.push_back(entry);
  }
  return order;
}

TEST(Model, HasTheClassesInTheirOrder) {
  std::vector<std::string> names;
  for (const Class& c : Model()) names.emplace_back(c.name);
  EXPECT_THAT(names, ElementsAre("Trazabilidad", "Referente", "Tolva", "Descarga", "TvaInter",
                                 "Deposito", "Nivel", "Vaciado"));
}

TEST(Model, OnlyTheRootAndReferentsAreCreatable) {
  for (const Class& c : Model()) {
    const bool root = std::string_view(c.name) == "Trazabilidad";
    const bool referent = std::string_view(c.name) == "Referente";
    EXPECT_EQ(c.creatable, root || referent) << c.name;
    EXPECT_EQ(c.application_object, root) << c.name;
  }
}

// The numbers are published: scripts compiled against the type library hold them.
TEST(Model, RootMembersKeepTheirNumbers) {
  EXPECT_THAT(
      Order("Trazabilidad"),
      ElementsAre("1 Constructor", "2 BaseAbierta", "3 MaximoTolvas", "4 Cerrar",
                  "5 RecargaValores", "6 SalvarValores", "7 TvaInter", "8 Tolva", "9 Deposito",
                  "10 NuevoReferente", "11 UnReferente", "12 GuardarReferente",
                  "13 EliminarReferente", "14 ListaReferentes", "15 ListaDestinoVenta",
                  "16 hayLecturaNivel", "17 LecturaNivel", "18 ObjetoActiveX", "19 PuertoUDP",
                  "20 TimeOutUDP", "21 IntervaloPolling", "22 TiempoControlNivel",
                  "23 MargenControlNivel", "24 Trasegar", "25 HistoriaDescargas",
                  "26 HistoriaNiveles", "27 HistoriaVaciados", "28 IniciarCampaña"));
}

TEST(Model, ReferentMembersKeepTheirNumbers) {
  EXPECT_THAT(Order("Referente"), ElementsAre("1 Codigo", "2 Nombre", "3 NIF", "4 Info",
                                              "5 esNuevo", "6 datosValidos"));
}

TEST(Model, HopperMembersKeepTheirNumbers) {
  EXPECT_THAT(Order("Tolva"),
              ElementsAre("1 MomentoInicio", "2 DescargaEnCurso", "3 Descargar", "4 RestaurarCarga",
                          "5 Descarga", "6 Partidas", "7 Acumulado", "8 Composicion"));
  EXPECT_THAT(Order("Descarga"), ElementsAre("1 Tolva", "2 Codigo", "3 Kilos", "4 MomentoDesde",
                                             "5 MomentoHasta", "6 Composicion"));
  EXPECT_THAT(Order("TvaInter"), ElementsAre("1 DescargarEn", "2 Partidas", "3 Acumulado"));
}

TEST(Model, TankMembersKeepTheirNumbers) {
  EXPECT_THAT(
      Order("Deposito"),
      ElementsAre("1 Nombre", "2 Formula", "3 Capacidad", "4 EntradaNivel", "5 EntradaDensidad",
                  "6 EliminarUltimoNivel", "7 NivelActual", "8 LitrosActual", "9 KilosActual",
                  "10 Nivel", "11 NuevoVaciado", "12 DeshacerVaciado", "13 Vaciado",
                  "14 UltimoVaciado", "15 Historial", "16 UltimoMovimiento", "17 Composicion"));
  EXPECT_THAT(Order("Nivel"), ElementsAre("1 Deposito", "2 Codigo", "3 Momento",
                                          "4 GetCotasMomento", "5 Nivel", "6 Litros"));
  EXPECT_THAT(Order("Vaciado"),
              ElementsAre("1 Deposito", "2 Codigo", "3 Uso", "4 Cliente", "5 Transportista",
                          "6 DestinoVenta", "7 fijarUso", "8 Lote", "9 Litros", "10 Momento",
                          "11 GetCotasMomento", "12 Destino", "13 Composicion"));
}

// Names, types and optional arguments of every member, as scripts were written against them.
std::vector<std::string> Signatures(const char* class_name) {
  std::vector<std::string> signatures;
  for (const Member& member : FindClass(class_name)->members) {
    signatures.push_back(DescribeMember(member));
  }
  return signatures;
}

TEST(Model, RootMembersKeepTheirSignatures) {
  EXPECT_THAT(
      Signatures("Trazabilidad"),
      ElementsAre(
          "Constructor(aPath As String, vardex3 As Boolean, [Info As Variant]) As Variant",
          "BaseAbierta As Boolean", "MaximoTolvas As Integer", "Cerrar", "RecargaValores",
          "SalvarValores", "TvaInter(tva As Integer) As TvaInter", "Tolva(tva As Integer) As Tolva",
          "Deposito(dto As Integer) As Deposito", "NuevoReferente(pfx As Integer) As Referente",
          "UnReferente(pfx As Integer, cod As Long) As Referente",
          "GuardarReferente(pfx As Integer, ref As Referente) As Boolean",
          "EliminarReferente(pfx As Integer, cod As Long) As Boolean",
          "ListaReferentes(pfx As Integer, [ord As Integer]) As Variant",
          "ListaDestinoVenta As Variant", "hayLecturaNivel(dep As Integer) As tpHayLectura",
          "LecturaNivel(dep As Integer) As Variant", "ObjetoActiveX As String",
          "ObjetoActiveX = String", "PuertoUDP As String", "PuertoUDP = String",
          "TimeOutUDP As Long", "TimeOutUDP = Long", "IntervaloPolling As Long",
          "IntervaloPolling = Long", "TiempoControlNivel As Long", "TiempoControlNivel = Long",
          "MargenControlNivel As Long", "MargenControlNivel = Long",
          "Trasegar(org As Integer, dno As Integer, [qto As Double]) As Boolean",
          "HistoriaDescargas([dde As Variant], [hta As Variant], [tva As Integer], [dto As "
          "Integer]) As Variant",
          "HistoriaNiveles([dde As Variant], [hta As Variant], [dto As Integer]) As Variant",
          "HistoriaVaciados([dde As Variant], [hta As Variant], [dto As Integer]) As Variant",
          "IniciarCampaña As Boolean"));
}

TEST(Model, ReferentMembersKeepTheirSignatures) {
  EXPECT_THAT(
      Signatures("Referente"),
      ElementsAre("Codigo As Long", "Codigo = Long", "Nombre As String", "Nombre = String",
                  "NIF As String", "NIF = String", "Info(ix As Integer) As String",
                  "Info(ix As Integer) = String", "esNuevo As Boolean", "datosValidos As Boolean"));
}

TEST(Model, HopperMembersKeepTheirSignatures) {
  EXPECT_THAT(Signatures("Tolva"),
              ElementsAre("MomentoInicio As Date", "DescargaEnCurso As Long",
                          "Descargar(dto As Integer, mol As Integer, [qto As Double]) As Boolean",
                          "RestaurarCarga As Boolean", "Descarga(cod As Long) As Descarga",
                          "Partidas As Long", "Acumulado As Double",
                          "Composicion(clase As Integer) As Variant"));
  EXPECT_THAT(
      Signatures("Descarga"),
      ElementsAre("Tolva As Integer", "Codigo As Long", "Kilos As Double", "MomentoDesde As Date",
                  "MomentoHasta As Date", "Composicion(clase As Integer) As Variant"));
  EXPECT_THAT(Signatures("TvaInter"), ElementsAre("DescargarEn(dno As Integer) As Boolean",
                                                  "Partidas As Long", "Acumulado As Long"));
}

TEST(Model, TankMembersKeepTheirSignatures) {
  EXPECT_THAT(
      Signatures("Deposito"),
      ElementsAre("Nombre As String", "Nombre = String", "Formula As Variant", "Formula = Variant",
                  "Capacidad(h As Long) As Double",
                  "EntradaNivel([mmt As Variant], [Nivel As Long], [litrs As Double]) As Boolean",
                  "EntradaDensidad(dens As Double, [itm As Long]) As Boolean",
                  "EliminarUltimoNivel As Boolean", "NivelActual As Variant",
                  "LitrosActual As Variant", "KilosActual As Double", "Nivel(cod As Long) As Nivel",
                  "NuevoVaciado(dno As Integer, qty As Double, [mmto As Variant], [referentes As "
                  "Variant]) As Long",
                  "DeshacerVaciado As Boolean", "Vaciado(cod As Long) As Vaciado",
                  "UltimoVaciado As Long", "Historial As Variant",
                  "UltimoMovimiento(hay As Variant, niv As Variant, mmto As Date) As Integer",
                  "Composicion(clase As Integer) As Variant"));
}

TEST(Model, MembersOfReadingsAndEmptyingsKeepTheirSignatures) {
  EXPECT_THAT(
      Signatures("Nivel"),
      ElementsAre("Deposito As Integer", "Codigo As Long", "Momento As Date", "Momento = Date",
                  "GetCotasMomento(mmt1 As Variant, mmt2 As Variant) As Boolean", "Nivel As Long",
                  "Nivel = Long", "Litros As Double", "Litros = Double"));
  EXPECT_THAT(
      Signatures("Vaciado"),
      ElementsAre("Deposito As Integer", "Codigo As Long", "Uso As Integer", "Cliente As Long",
                  "Transportista As Long", "DestinoVenta As String",
                  "fijarUso(u As Integer, cli As Long, trp As Long, dno As String) As Boolean",
                  "Lote As String", "Lote = String", "Litros As Double", "Momento As Date",
                  "Momento = Date", "GetCotasMomento(mmt1 As Variant, mmt2 As Variant) As Boolean",
                  "Destino As Integer", "Composicion(clase As Integer) As Variant"));
}

TEST(Model, NumbersRiseAndOnlyAPropertySharesOne) {
  for (const Class& c : Model()) {
    for (size_t i = 1; i < c.members.size(); ++i) {
      const Member& before = c.members[i - 1];
      const Member& member = c.members[i];
      const bool pair = before.kind == MemberKind::kGet && member.kind == MemberKind::kLet &&
                        SameName(before.name, member.name);
      EXPECT_EQ(pair, member.dispid == before.dispid) << c.name << "." << member.name;
      EXPECT_LE(before.dispid, member.dispid) << c.name << "." << member.name;
    }
  }
}

TEST(Model, NamesAreUniqueWithinTheirKindOfAccess) {
  for (const Class& c : Model()) {
    for (const Member& member : c.members) {
      const Access access = member.kind == MemberKind::kLet ? Access::kLet : Access::kCall;
      EXPECT_EQ(FindMember(c, member.name, access), &member) << c.name << "." << member.name;
    }
  }
}

TEST(Model, EveryHelpTextIsOneSentence) {
  for (const Class& c : Model()) {
    EXPECT_TRUE(std::string_view(c.help).ends_with('.')) << c.name;
    for (const Member& member : c.members) {
      EXPECT_TRUE(std::string_view(member.help).ends_with('.')) << c.name << "." << member.name;
    }
  }
  for (const Enumeration& enumeration : Enumerations()) {
    EXPECT_TRUE(std::string_view(enumeration.help).ends_with('.')) << enumeration.name;
    for (const Enumeration::Value& value : enumeration.values) {
      EXPECT_TRUE(std::string_view(value.help).ends_with('.')) << value.name;
    }
  }
}

TEST(Model, ObjectsAreOfClassesOfTheModel) {
  for (const Class& c : Model()) {
    for (const Member& member : c.members) {
      EXPECT_EQ(member.result == ValueType::kObject, member.result_class != nullptr);
      if (member.result_class != nullptr) {
        EXPECT_NE(FindClass(member.result_class), nullptr) << c.name << "." << member.name;
      }
    }
  }
}

TEST(Model, EnumerationsAreOfTheModelAndLongs) {
  for (const Class& c : Model()) {
    for (const Member& member : c.members) {
      if (member.result_enumeration == nullptr) continue;
      EXPECT_EQ(member.result, ValueType::kLong) << c.name << "." << member.name;
      EXPECT_TRUE(std::any_of(Enumerations().begin(), Enumerations().end(),
                              [&member](const Enumeration& known) {
                                return std::string_view(known.name) == member.result_enumeration;
                              }))
          << c.name << "." << member.name;
    }
  }
}

TEST(Model, ValuesOfEnumerationsKeepTheirNumbers) {
  std::vector<std::string> values;
  for (const Enumeration& enumeration : Enumerations()) {
    for (const Enumeration::Value& value : enumeration.values) {
      values.push_back(std::string(enumeration.name) + " " + std::to_string(value.number) + " " +
                       value.name);
    }
  }
  EXPECT_THAT(values,
              ElementsAre("tpHayLectura 0 hNoHaySensor", "tpHayLectura 1 hNoHayLectura",
                          "tpHayLectura 2 hErrorLectura", "tpHayLectura 3 hLecturaDisponible"));
}

TEST(Model, OptionalArgumentsStandLast) {
  for (const Class& c : Model()) {
    for (const Member& member : c.members) {
      bool optional = false;
      for (const Argument& argument : member.arguments) {
        EXPECT_TRUE(argument.optional || !optional) << c.name << "." << member.name;
        optional = argument.optional;
      }
    }
  }
}

TEST(FindMember, IgnoresCase) {
  const Class& tank = *FindClass("DEPOSITO");
  EXPECT_STREQ(FindMember(tank, "nuevovaciado", Access::kCall)->name, "NuevoVaciado");
  EXPECT_STREQ(FindMember(*FindClass("vaciado"), "FIJARUSO", Access::kCall)->name, "fijarUso");
  const Class& root = *FindClass("trazabilidad");
  EXPECT_STREQ(FindMember(root, "INICIARCAMPAÑA", Access::kCall)->name, "IniciarCampaña");
  EXPECT_EQ(FindMember(root, "IniciarCampana", Access::kCall), nullptr);
}

TEST(FindMember, TellsSettingFromReading) {
  const Class& tank = *FindClass("Deposito");
  EXPECT_EQ(FindMember(tank, "Nombre", Access::kCall)->kind, MemberKind::kGet);
  EXPECT_EQ(FindMember(tank, "Nombre", Access::kLet)->kind, MemberKind::kLet);
  EXPECT_EQ(FindMember(tank, "Capacidad", Access::kLet), nullptr);
}

TEST(SameName, FoldsLettersOfWesternEuropeanLanguages) {
  EXPECT_TRUE(SameName("IniciarCampaña", "INICIARCAMPAÑA"));
  EXPECT_TRUE(SameName("Ámbito", "ámbito"));
  EXPECT_FALSE(SameName("campana", "campaña"));
  EXPECT_FALSE(SameName("a×", "a÷"));  // signs, no letters
  EXPECT_FALSE(SameName("Tolva", "Tolvas"));
}

TEST(DescribeMember, ReadsLikeVisualBasic) {
  const auto describe = [](const char* owner, const char* name, Access access) {
    return DescribeMember(*FindMember(*FindClass(owner), name, access));
  };
  EXPECT_EQ(describe("Tolva", "Descargar", Access::kCall),
            "Descargar(dto As Integer, mol As Integer, [qto As Double]) As Boolean");
  EXPECT_EQ(describe("Tolva", "Descarga", Access::kCall), "Descarga(cod As Long) As Descarga");
  EXPECT_EQ(describe("Deposito", "Nombre", Access::kCall), "Nombre As String");
  EXPECT_EQ(describe("Deposito", "Nombre", Access::kLet), "Nombre = String");
  EXPECT_EQ(describe("Trazabilidad", "Cerrar", Access::kCall), "Cerrar");
  EXPECT_EQ(describe("Deposito", "UltimoMovimiento", Access::kCall),
            "UltimoMovimiento(hay As Variant, niv As Variant, mmto As Date) As Integer");
  EXPECT_EQ(describe("Referente", "Info", Access::kCall), "Info(ix As Integer) As String");
  EXPECT_EQ(describe("Referente", "Info", Access::kLet), "Info(ix As Integer) = String");
  EXPECT_EQ(describe("Trazabilidad", "hayLecturaNivel", Access::kCall),
            "hayLecturaNivel(dep As Integer) As tpHayLectura");
}

TEST(DescribeModel, NamesEveryMember) {
  const std::string text = DescribeModel();
  for (const Class& c : Model()) {
    EXPECT_THAT(text, testing::HasSubstr("### " + std::string(c.name) + "\n"));
    for (const Member& member : c.members) {
      EXPECT_THAT(text, testing::HasSubstr("| " + std::to_string(member.dispid) + " | `" +
                                           DescribeMember(member) + "` | "));
    }
  }
}

TEST(DescribeModel, NamesEveryValueOfAnEnumeration) {
  const std::string text = DescribeModel();
  EXPECT_THAT(text, testing::HasSubstr("\n### tpHayLectura\n"));
  EXPECT_THAT(text, testing::HasSubstr("| 3 | `hLecturaDisponible` | There is a reading. |\n"));
}

class ModelOfAMill : public test::MillTest {};

TEST_F(ModelOfAMill, AReferentIsFilledSavedAndFoundByName) {
  const auto call = [](Object& object, const char* member, Arguments arguments) {
    return Call(object, member, Access::kCall, std::move(arguments)).result;
  };
  const auto let = [](Object& object, const char* member, Arguments arguments) {
    Call(object, member, Access::kLet, std::move(arguments));
  };
  const Variant client = call(root, "NuevoReferente", {Variant(1.0)});
  Object& record = *client.object();
  EXPECT_STREQ(record.ClassName(), "Referente");
  EXPECT_EQ(call(record, "datosValidos", {}), Variant(false));
  let(record, "Nombre", {Variant("Mora")});
  let(record, "Info", {Variant(2.0), Variant("dos")});
  EXPECT_EQ(call(record, "info", {Variant("2")}), Variant("dos"));
  EXPECT_EQ(call(record, "Info", {Variant(1.0)}), Variant(""));
  EXPECT_EQ(call(record, "datosValidos", {}), Variant(true));
  EXPECT_EQ(call(root, "GuardarReferente", {Variant(1.0), client}), Variant(true));
  const Variant found = call(root, "UnReferente", {Variant(1.0), Variant(1.0)});
  EXPECT_EQ(call(*found.object(), "Info", {Variant(3.0)}), Variant("dos"));
  EXPECT_EQ(call(*found.object(), "esNuevo", {}), Variant(false));
  EXPECT_EQ(call(root, "UnReferente", {Variant(2.0), Variant(1.0)}), Variant::Nothing());
}

TEST_F(ModelOfAMill, OnlyAReferentCanBeSavedAsOne) {
  const Variant hopper(root.Tolva(1));
  const auto save = [this](const Variant& referent) {
    return ErrorOf([&] {
      Call(root, "GuardarReferente", Access::kCall, {Variant(1.0), referent});
    });
  };
  EXPECT_EQ(save(hopper), 13);
  EXPECT_EQ(save(Variant("Mora")), 13);
  EXPECT_EQ(save(Variant::Nothing()), 91);
  EXPECT_EQ(save(Variant()), 91);
}

TEST_F(ModelOfAMill, AnIndexedPropertyNeedsItsIndexAndItsValue) {
  const auto client = root.NuevoReferente(1);
  EXPECT_EQ(ErrorOf([&] { Call(*client, "Info", Access::kCall, {}); }), 450);
  EXPECT_EQ(ErrorOf([&] { Call(*client, "Info", Access::kLet, {Variant("dos")}); }), 450);
  EXPECT_EQ(ErrorOf([&] {
              Call(*client, "Info", Access::kLet, {std::nullopt, Variant("dos")});
            }),
            449);
  EXPECT_EQ(ErrorOf([&] { Call(*client, "Info", Access::kCall, {Variant(40000.0)}); }), 6);
}

TEST_F(ModelOfAMill, WhetherThereIsAReadingIsALong) {
  EXPECT_EQ(Call(root, "hayLecturaNivel", Access::kCall, {Variant(1.0)}).result,
            Variant(int32_t{0}));
  EXPECT_EQ(Call(root, "LecturaNivel", Access::kCall, {Variant(1.0)}).result, Variant::Null());
  EXPECT_EQ(Call(root, "LecturaNivel", Access::kCall, {Variant(7.0)}).result, Variant());
}

TEST_F(ModelOfAMill, HistoriesMayBeAskedForAnything) {
  Execute("insert into Niveles (Deposito, Item, Momento, Litros) values (2, 1, #3/10/2026#, 5)");
  const auto count = [this](Arguments arguments) {
    const Variant rows = Call(root, "HistoriaNiveles", Access::kCall, std::move(arguments)).result;
    return rows.is_empty() ? size_t{0} : rows.array().size();
  };
  EXPECT_EQ(count({}), 1U);
  EXPECT_EQ(count({std::nullopt, std::nullopt, Variant(2.0)}), 1U);
  EXPECT_EQ(count({std::nullopt, std::nullopt, Variant(3.0)}), 0U);
  EXPECT_EQ(count({Variant("3/11/2026")}), 0U);
  EXPECT_EQ(Call(root, "HistoriaDescargas", Access::kCall, {}).result, Variant());
  EXPECT_EQ(Call(root, "HistoriaVaciados", Access::kCall, {}).result, Variant());
  EXPECT_EQ(Call(root, "iniciarcampaÑa", Access::kCall, {}).result, Variant(true));
  EXPECT_EQ(count({}), 0U);
}

TEST_F(ModelOfAMill, EveryObjectCarriesTheNameOfItsClass) {
  Execute("insert into Descargas (Tolva, Descarga, Deposito, Fraccion) values (1, 1, 1, 1)");
  Execute("insert into Vaciados (Deposito, Vaciado, Cantidad) values (1, 1, 5)");
  Execute("insert into Niveles (Deposito, Item, Litros) values (1, 1, 5)");
  const std::map<std::string, std::string> factories = {
      {"Trazabilidad", "Tolva"}, {"trazabilidad", "TvaInter"}, {"TRAZABILIDAD", "Deposito"},
      {"Tolva", "Descarga"},     {"Deposito", "Nivel"},        {"deposito", "Vaciado"}};
  const auto hand_out = [this](const std::string& owner, const std::string& member) {
    Object* object = &root;
    Variant holder;
    if (!SameName(owner, "Trazabilidad")) {
      holder = Call(root, owner, Access::kCall, {Variant(1.0)}).result;
      object = holder.object().get();
    }
    return Call(*object, member, Access::kCall, {Variant(1.0)}).result;
  };
  for (const auto& [owner, member] : factories) {
    const Variant object = hand_out(owner, member);
    ASSERT_NE(object.object(), nullptr) << member;
    EXPECT_EQ(object.object()->ClassName(),
              std::string(FindMember(*FindClass(owner), member, Access::kCall)->result_class));
  }
}

TEST_F(ModelOfAMill, AnUnknownMemberIs438) {
  EXPECT_EQ(ErrorOf([this] { Call(root, "Nada", Access::kCall, {}); }), 438);
}

TEST_F(ModelOfAMill, SettingAReadOnlyPropertyIs438) {
  const auto hopper = root.Tolva(1);
  EXPECT_EQ(ErrorOf([&] { Call(*hopper, "MomentoInicio", Access::kLet, {Variant(1.0)}); }), 438);
}

TEST_F(ModelOfAMill, AFactoryOutOfRangeGivesNothing) {
  EXPECT_EQ(Call(root, "Tolva", Access::kCall, {Variant(5.0)}).result, Variant::Nothing());
}

TEST_F(ModelOfAMill, TheShareOfADischargeIsWrittenBack) {
  const auto hopper = root.Tolva(1);
  const CallResult call = Call(*hopper, "Descargar", Access::kCall,
                               {Variant(int32_t{3}), Variant(int32_t{1}), Variant(2.5)});
  EXPECT_EQ(call.result, Variant(true));
  EXPECT_THAT(call.changed, ElementsAre(false, false, true));
  EXPECT_EQ(call.arguments[2], Variant(1.0));
}

TEST_F(ModelOfAMill, TheShareOfADischargeMayBeLeftOut) {
  const auto hopper = root.Tolva(1);
  const CallResult call =
      Call(*hopper, "descargar", Access::kCall, {Variant(int32_t{3}), Variant(int32_t{1})});
  EXPECT_EQ(call.result, Variant(true));
  EXPECT_FALSE(call.AnyChanged());
}

TEST_F(ModelOfAMill, TheLastMovementFillsItsOutputs) {
  const auto tank = root.Deposito(2);
  root.Tolva(1)->Descargar(2, 1);
  const CallResult call =
      Call(*tank, "UltimoMovimiento", Access::kCall, {Variant(), Variant(), Variant(OleDate())});
  EXPECT_EQ(call.result, Variant(int16_t{1}));
  EXPECT_THAT(call.changed, testing::Each(true));
  EXPECT_EQ(call.arguments[0], Variant::Null());
  EXPECT_EQ(call.arguments[2], Variant(clock.Now()));
}

TEST_F(ModelOfAMill, OnlyAMissingReferentListRefusesASaleWithoutUse) {
  const auto tank = root.Deposito(2);
  root.Tolva(1)->Descargar(2, 1);
  clock.Set(test::At("2026-11-15 09:00:00"));
  tank->EntradaNivel({}, -1, 100);
  clock.Set(test::At("2026-11-15 10:00:00"));
  const Arguments without = {Variant(int32_t{0}), Variant(40.0)};
  EXPECT_EQ(Call(*tank, "NuevoVaciado", Access::kCall, without).result, Variant(int32_t{0}));
  const Arguments with = {Variant(int32_t{0}), Variant(40.0), std::nullopt,
                          Variant(Variant::Array{Variant(int32_t{1}), Variant("L-1")})};
  EXPECT_EQ(Call(*tank, "NuevoVaciado", Access::kCall, with).result, Variant(int32_t{1}));
}

}  // namespace
}  // namespace ambrelio::automation
