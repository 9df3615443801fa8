#include "ambrelio/referents/catalogue.h"

#include <limits>

#include "support/mill.h"

namespace ambrelio::referents {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int32_t kLastCode = std::numeric_limits<int32_t>::max();

class CatalogueTest : public test::MillTest {
 protected:
  static Referente Party(int32_t code, const std::string& name) {
    Referente party;
    party.SetCodigo(code);
    party.SetNombre(name);
    return party;
  }
  static Referente FullParty() {
    Referente party = Party(5, "Aceites Mora");
    party.SetNIF("B14000000");
    party.SetInfo(1, "uno");
    party.SetInfo(2, "dos");
    party.SetInfo(3, "tres");
    return party;
  }
  bool Save(int16_t pfx, const Referente& party) { return SaveReferent(session, pfx, party); }
  std::vector<std::string> Clients() { return Rows("select * from Clientes order by Codigo"); }
  std::vector<std::string> Carriers() {
    return Rows("select * from Transportistas order by Codigo");
  }
};

class NewReferentTest : public CatalogueTest {};
class FindReferentTest : public CatalogueTest {};
class SaveReferentTest : public CatalogueTest {};
class DeleteReferentTest : public CatalogueTest {};
class ListReferentsTest : public CatalogueTest {};

// --- NuevoReferente

TEST_F(NewReferentTest, HasCode1InAnEmptyCatalogue) {
  const auto client = root.NuevoReferente(kClients);
  EXPECT_EQ(client->Codigo(), 1);
  EXPECT_TRUE(client->EsNuevo());
  EXPECT_EQ(client->Nombre(), "");
}

TEST_F(NewReferentTest, HasTheCodeBehindTheLast) {
  Save(kClients, Party(3, "a"));
  Save(kClients, Party(40000, "b"));
  EXPECT_EQ(root.NuevoReferente(kClients)->Codigo(), 40001);
  EXPECT_EQ(root.NuevoReferente(kCarriers)->Codigo(), 1);
}

TEST_F(NewReferentTest, IsNotInTheCatalogue) {
  root.NuevoReferente(kClients);
  EXPECT_EQ(root.NuevoReferente(kClients)->Codigo(), 1);
  EXPECT_THAT(Clients(), IsEmpty());
}

TEST_F(NewReferentTest, OverflowsBehindTheLastCodeOf32Bits) {
  Save(kClients, Party(kLastCode - 1, "a"));
  EXPECT_EQ(root.NuevoReferente(kClients)->Codigo(), kLastCode);
  Save(kClients, Party(kLastCode, "b"));
  EXPECT_EQ(ErrorOf([&] { root.NuevoReferente(kClients); }), 6);
}

TEST_F(NewReferentTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.NuevoReferente(kClients); }),
              ElementsAre("select max(Codigo) from Clientes"));
  EXPECT_THAT(Sent([&] { root.NuevoReferente(kCarriers); }),
              ElementsAre("select max(Codigo) from Transportistas"));
}

// --- UnReferente

TEST_F(FindReferentTest, IsNothingForAMissingCode) {
  Save(kCarriers, Party(1, "a"));
  EXPECT_EQ(root.UnReferente(kClients, 1), nullptr);
  EXPECT_EQ(root.UnReferente(kCarriers, 2), nullptr);
  EXPECT_EQ(root.UnReferente(kCarriers, 0), nullptr);
}

TEST_F(FindReferentTest, LoadsTheRecordWithLines2And3Crossed) {
  ASSERT_TRUE(Save(kClients, FullParty()));
  const auto client = root.UnReferente(kClients, 5);
  ASSERT_NE(client, nullptr);
  EXPECT_FALSE(client->EsNuevo());
  EXPECT_TRUE(client->DatosValidos());
  EXPECT_EQ(client->loaded_code(), 5);
  EXPECT_EQ(client->Codigo(), 5);
  EXPECT_EQ(client->Nombre(), "Aceites Mora");
  EXPECT_EQ(client->NIF(), "B14000000");
  EXPECT_EQ(client->Info(1), "uno");
  EXPECT_EQ(client->Info(2), "tres");
  EXPECT_EQ(client->Info(3), "dos");
}

TEST_F(FindReferentTest, ReadsNullAsNoText) {
  Execute("insert into Clientes (Codigo) values (8)");
  const auto client = root.UnReferente(kClients, 8);
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(client->Nombre(), "");
  EXPECT_EQ(client->NIF(), "");
  EXPECT_EQ(client->Info(1) + client->Info(2) + client->Info(3), "");
  EXPECT_FALSE(client->EsNuevo());
  EXPECT_FALSE(client->DatosValidos());
}

TEST_F(FindReferentTest, TakesARecordOfCode0ForANewOne) {
  Execute("insert into Clientes (Codigo, Nombre) values (0, 'a')");
  EXPECT_TRUE(root.UnReferente(kClients, 0)->EsNuevo());
}

TEST_F(FindReferentTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.UnReferente(kClients, 70000); }),
              ElementsAre("select * from Clientes where Codigo=70000"));
  EXPECT_THAT(Sent([&] { root.UnReferente(kCarriers, -1); }),
              ElementsAre("select * from Transportistas where Codigo=-1"));
}

// --- GuardarReferente: a new one

TEST_F(SaveReferentTest, InsertsANewOne) {
  EXPECT_TRUE(Save(kClients, FullParty()));
  EXPECT_TRUE(Save(kCarriers, Party(2, "Portes")));
  EXPECT_THAT(Clients(), ElementsAre("5|Aceites Mora|B14000000|uno|dos|tres"));
  EXPECT_THAT(Carriers(), ElementsAre("2|Portes|Null|Null|Null|Null"));
}

TEST_F(SaveReferentTest, SendsTheInsertAsOneText) {
  EXPECT_THAT(Sent([&] { Save(kClients, FullParty()); }),
              ElementsAre("insert into Clientes (Codigo, Nombre, NIF, Info1, Info2, Info3) "
                          "values (5, 'Aceites Mora', 'B14000000', 'uno', 'dos', 'tres') "));
  EXPECT_THAT(Sent([&] { Save(kCarriers, Party(7, " Portes ")); }),
              ElementsAre("insert into Transportistas (Codigo, Nombre, NIF, Info1, Info2, Info3) "
                          "values (7, 'Portes', Null, Null, Null, Null) "));
}

TEST_F(SaveReferentTest, RefusesInvalidDataWithoutAskingTheDatabase) {
  EXPECT_THAT(Sent([&] {
                EXPECT_FALSE(Save(kClients, Party(0, "a")));
                EXPECT_FALSE(Save(kClients, Party(-1, "a")));
                EXPECT_FALSE(Save(kClients, Party(1, "")));
              }),
              IsEmpty());
}

TEST_F(SaveReferentTest, ATakenCodeOrNameIs3022) {
  Save(kClients, Party(1, "Mora"));
  EXPECT_EQ(ErrorOf([&] { Save(kClients, Party(1, "Ruiz")); }), 3022);
  EXPECT_EQ(ErrorOf([&] { Save(kClients, Party(2, "Mora")); }), 3022);
  EXPECT_EQ(ErrorOf([&] { Save(kClients, Party(2, "MORA")); }), 3022);
  EXPECT_THAT(Clients(), ElementsAre("1|Mora|Null|Null|Null|Null"));
}

TEST_F(SaveReferentTest, CataloguesDoNotShareCodesOrNames) {
  EXPECT_TRUE(Save(kClients, Party(1, "Mora")));
  EXPECT_TRUE(Save(kCarriers, Party(1, "Mora")));
}

TEST_F(SaveReferentTest, ASavedOneStaysNew) {
  const auto client = root.NuevoReferente(kClients);
  client->SetNombre("Mora");
  EXPECT_TRUE(root.GuardarReferente(kClients, client));
  EXPECT_TRUE(client->EsNuevo());
  EXPECT_EQ(ErrorOf([&] { root.GuardarReferente(kClients, client); }), 3022);
}

TEST_F(SaveReferentTest, AnApostropheBecomesAnAccent) {
  Save(kClients, Party(1, "O'Neil"));
  EXPECT_EQ(root.UnReferente(kClients, 1)->Nombre(), "O´Neil");
}

TEST_F(SaveReferentTest, KeepsQuotesAndAtSigns) {
  Save(kClients, Party(1, "\"a\" @ord #b# [c]"));
  EXPECT_EQ(root.UnReferente(kClients, 1)->Nombre(), "\"a\" @ord #b# [c]");
}

TEST_F(SaveReferentTest, ReplacesTheWordTablaInsideValuesToo) {
  Referente carrier = Party(1, "Tablas y tablas");
  carrier.SetInfo(2, "Tabla");
  Save(kCarriers, carrier);
  EXPECT_THAT(Carriers(), ElementsAre("1|Transportistass y tablas|Null|Null|Transportistas|Null"));
}

TEST_F(SaveReferentTest, ATextLongerThanItsColumnIs3163) {
  Referente client = Party(1, std::string(50, 'a'));
  client.SetNIF(std::string(20, '9'));
  EXPECT_TRUE(Save(kClients, client));
  client = Party(2, std::string(51, 'b'));
  EXPECT_EQ(ErrorOf([&] { Save(kClients, client); }), 3163);
  client = Party(2, "b");
  client.SetInfo(3, std::string(51, 'b'));
  EXPECT_EQ(ErrorOf([&] { Save(kClients, client); }), 3163);
  EXPECT_EQ(Clients().size(), 1U);
}

TEST_F(SaveReferentTest, ANameOfBlanksIsRefusedByTheColumn) {
  EXPECT_EQ(ErrorOf([&] { Save(kClients, Party(1, "  ")); }), 3315);
  EXPECT_THAT(Clients(), IsEmpty());
}

TEST_F(SaveReferentTest, NothingAsAReferentIs91) {
  EXPECT_EQ(ErrorOf([&] { root.GuardarReferente(kClients, nullptr); }), 91);
}

TEST_F(SaveReferentTest, FailsWithTheErrorOfTheEngineAndWritesNothing) {
  EXPECT_EQ(FailAtEveryRequest([&] { Save(kClients, Party(1, "Mora")); }), 1);
}

// --- GuardarReferente: one that was loaded

TEST_F(SaveReferentTest, UpdatesTheRowUnderItsOldCode) {
  Save(kClients, Party(5, "Mora"));
  const auto client = root.UnReferente(kClients, 5);
  client->SetCodigo(9);
  client->SetNombre("Mora e hijos");
  EXPECT_TRUE(root.GuardarReferente(kClients, client));
  EXPECT_EQ(client->loaded_code(), 5);
  EXPECT_THAT(Clients(), ElementsAre("5|Mora e hijos|Null|Null|Null|Null"));
}

TEST_F(SaveReferentTest, SendsTheUpdateAsOneText) {
  Save(kCarriers, FullParty());
  const auto carrier = root.UnReferente(kCarriers, 5);
  carrier->SetNIF("");
  EXPECT_THAT(Sent([&] { root.GuardarReferente(kCarriers, carrier); }),
              ElementsAre("update Transportistas set Nombre= 'Aceites Mora', NIF= Null, "
                          "Info1= 'uno', Info2= 'tres', Info3= 'dos' where Codigo=5 "));
}

TEST_F(SaveReferentTest, CrossesLines2And3EachTimeOneIsLoadedAndSaved) {
  Save(kClients, FullParty());
  root.GuardarReferente(kClients, root.UnReferente(kClients, 5));
  EXPECT_THAT(Clients(), ElementsAre("5|Aceites Mora|B14000000|uno|tres|dos"));
  root.GuardarReferente(kClients, root.UnReferente(kClients, 5));
  EXPECT_THAT(Clients(), ElementsAre("5|Aceites Mora|B14000000|uno|dos|tres"));
}

TEST_F(SaveReferentTest, IsFalseForARowThatIsGone) {
  Save(kClients, Party(5, "Mora"));
  const auto client = root.UnReferente(kClients, 5);
  root.EliminarReferente(kClients, 5);
  EXPECT_FALSE(root.GuardarReferente(kClients, client));
  EXPECT_THAT(Clients(), IsEmpty());
}

TEST_F(SaveReferentTest, AnUpdateToATakenNameIs3022) {
  Save(kClients, Party(1, "Mora"));
  Save(kClients, Party(2, "Ruiz"));
  const auto client = root.UnReferente(kClients, 2);
  client->SetNombre("mora");
  EXPECT_EQ(ErrorOf([&] { root.GuardarReferente(kClients, client); }), 3022);
  EXPECT_THAT(Clients(), ElementsAre("1|Mora|Null|Null|Null|Null", "2|Ruiz|Null|Null|Null|Null"));
}

TEST_F(SaveReferentTest, RefusesALoadedOneThatHasLostItsName) {
  Save(kClients, Party(1, "Mora"));
  const auto client = root.UnReferente(kClients, 1);
  client->SetNombre("");
  EXPECT_FALSE(root.GuardarReferente(kClients, client));
  EXPECT_EQ(root.UnReferente(kClients, 1)->Nombre(), "Mora");
}

TEST_F(SaveReferentTest, PutsOneOfTheOtherCatalogueUnderItsCodeThere) {
  Save(kClients, Party(1, "Mora"));
  Save(kCarriers, Party(1, "Portes"));
  EXPECT_TRUE(root.GuardarReferente(kCarriers, root.UnReferente(kClients, 1)));
  EXPECT_EQ(root.UnReferente(kCarriers, 1)->Nombre(), "Mora");
}

// --- EliminarReferente

TEST_F(DeleteReferentTest, DeletesTheRow) {
  Save(kClients, Party(1, "a"));
  Save(kClients, Party(2, "b"));
  Save(kCarriers, Party(1, "c"));
  EXPECT_TRUE(root.EliminarReferente(kClients, 1));
  EXPECT_THAT(Clients(), ElementsAre("2|b|Null|Null|Null|Null"));
  EXPECT_THAT(Carriers(), ElementsAre("1|c|Null|Null|Null|Null"));
}

TEST_F(DeleteReferentTest, IsFalseForAMissingCode) {
  Save(kCarriers, Party(1, "c"));
  EXPECT_FALSE(root.EliminarReferente(kClients, 1));
  EXPECT_THAT(Carriers(), ElementsAre("1|c|Null|Null|Null|Null"));
}

TEST_F(DeleteReferentTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.EliminarReferente(kCarriers, 12); }),
              ElementsAre("delete from Transportistas where Codigo=12"));
}

TEST_F(DeleteReferentTest, FailsWithTheErrorOfTheEngineAndDeletesNothing) {
  Save(kClients, Party(1, "a"));
  EXPECT_EQ(FailAtEveryRequest([&] { root.EliminarReferente(kClients, 1); }), 1);
}

// --- ListaReferentes

TEST_F(ListReferentsTest, IsEmptyWithoutRows) {
  EXPECT_TRUE(root.ListaReferentes(kClients).is_empty());
}

TEST_F(ListReferentsTest, IsByCodeOrByName) {
  Save(kClients, Party(1, "Zafra"));
  Save(kClients, FullParty());
  Save(kCarriers, Party(9, "Portes"));
  const std::string by_code = "[[1, Zafra, ], [5, Aceites Mora, B14000000]]";
  EXPECT_EQ(test::Show(root.ListaReferentes(kClients)), by_code);
  EXPECT_EQ(test::Show(root.ListaReferentes(kClients, 1)),
            "[[5, Aceites Mora, B14000000], [1, Zafra, ]]");
  EXPECT_EQ(test::Show(root.ListaReferentes(kClients, 2)), by_code);
  EXPECT_EQ(test::Show(root.ListaReferentes(kClients, -1)), by_code);
  EXPECT_EQ(test::Show(root.ListaReferentes(kCarriers)), "[[9, Portes, ]]");
}

TEST_F(ListReferentsTest, GivesNumbersAndTexts) {
  Execute("insert into Clientes (Codigo) values (8)");
  const Variant list = root.ListaReferentes(kClients);
  ASSERT_EQ(list.array().size(), 1U);
  EXPECT_EQ(list.array()[0],
            Variant(Variant::Array{Variant(int32_t{8}), Variant(""), Variant("")}));
}

TEST_F(ListReferentsTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.ListaReferentes(kClients, 1); }),
              ElementsAre("select Codigo, Nombre, NIF from Clientes order by Nombre"));
  EXPECT_THAT(Sent([&] { root.ListaReferentes(kCarriers); }),
              ElementsAre("select Codigo, Nombre, NIF from Transportistas order by Codigo"));
}

// --- what all share

TEST_F(CatalogueTest, AnUnknownPrefixIsWhatTheEngineMakesOfNoTable) {
  Save(kClients, Party(1, "a"));
  const auto client = root.UnReferente(kClients, 1);
  const std::string before = Dump();
  for (const int16_t pfx : {int16_t{0}, int16_t{3}, int16_t{-1}}) {
    const std::vector<std::function<void()>> members = {
        [&] { root.NuevoReferente(pfx); },       [&] { root.UnReferente(pfx, 1); },
        [&] { Save(pfx, Party(7, "b")); },       [&] { root.GuardarReferente(pfx, client); },
        [&] { root.EliminarReferente(pfx, 1); }, [&] { root.ListaReferentes(pfx); },
    };
    for (size_t i = 0; i < members.size(); ++i) {
      EXPECT_GE(ErrorOf(members[i]), 3000) << "prefix " << pfx << ", member " << i;
    }
  }
  EXPECT_EQ(Dump(), before);
}

TEST_F(CatalogueTest, AnUnknownPrefixLeavesAGapInTheText) {
  EXPECT_THAT(Sent([&] { ErrorOf([&] { root.EliminarReferente(3, 1); }); }),
              ElementsAre("delete from  where Codigo=1"));
}

TEST_F(CatalogueTest, AClosedDatabaseIs3420) {
  root.Cerrar();
  const auto client = std::make_shared<Referente>(Party(1, "a"));
  const std::vector<std::function<void()>> members = {
      [&] { root.NuevoReferente(kClients); },
      [&] { root.UnReferente(kClients, 1); },
      [&] { root.GuardarReferente(kClients, client); },
      [&] { root.EliminarReferente(kClients, 1); },
      [&] { root.ListaReferentes(kClients); },
  };
  for (size_t i = 0; i < members.size(); ++i) EXPECT_EQ(ErrorOf(members[i]), 3420) << i;
}

TEST_F(CatalogueTest, ADatabaseNeverOpenedIs91) {
  Session other;
  Trazabilidad fresh(other);
  EXPECT_EQ(ErrorOf([&] { fresh.NuevoReferente(kClients); }), 91);
  EXPECT_EQ(ErrorOf([&] { fresh.ListaReferentes(kClients); }), 91);
}

}  // namespace
}  // namespace ambrelio::referents
