#include "ambrelio/frame/trazabilidad.h"

#include <limits>
#include <optional>

#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/hoppers/tva_inter.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/deposito.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TrazabilidadTest : public test::MillTest {
 protected:
  std::string ReadSetting(const std::string& key) {
    return kestro::IniFile(folder.File("Vardex.ini"), "SENSORES").Read(key);
  }
  void WriteSensorSetting(const std::string& key, const std::string& value) {
    WriteSetting("Vardex.ini", "SENSORES", key, value);
  }
};

// --- Constructor, RecargaValores, Cerrar

TEST_F(TrazabilidadTest, IsClosedBeforeItsConstructor) {
  Session other;
  Trazabilidad fresh(other);
  EXPECT_FALSE(fresh.BaseAbierta());
  EXPECT_EQ(fresh.MaximoTolvas(), 0);
  EXPECT_EQ(fresh.Deposito(1), nullptr);
}

TEST_F(TrazabilidadTest, ConstructorGivesEmptyWhetherOrNotItOpens) {
  EXPECT_TRUE(root.Constructor(folder.path(), false, Variant("anything")).is_empty());
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_TRUE(root.Constructor(folder.File("nowhere"), false).is_empty());
  EXPECT_FALSE(root.BaseAbierta());
}

TEST_F(TrazabilidadTest, ConstructorTellsTheCounts) {
  EXPECT_EQ(root.MaximoTolvas(), 4);
  EXPECT_EQ(session.intermediate_hopper_count, 2);
  EXPECT_EQ(session.tank_count, 6);
}

TEST_F(TrazabilidadTest, ConstructorOpensWithTheStoredPassword) {
  host::CreateMillDatabase(session.Engine(), folder.File("kept.mdb"), "Secreto");
  WriteSetting("Vardex.ini", "GENERAL", "BaseDatos", "kept.mdb");
  WriteSetting("Vardex.ini", "GENERAL", "PassworDB", "<" + kestro::Tools::Encode("Secreto") + ">");
  root.Constructor(folder.path(), false);
  EXPECT_TRUE(root.BaseAbierta());
  WriteSetting("Vardex.ini", "GENERAL", "PassworDB", "<" + kestro::Tools::Encode("otro") + ">");
  root.Constructor(folder.path(), false);
  EXPECT_FALSE(root.BaseAbierta());
}

TEST_F(TrazabilidadTest, ConstructorKeepsTheEditionOfTheHost) {
  const std::string net = folder.Folder("net");
  const std::string database = (std::filesystem::path(net) / "oliva.mdb").string();
  WriteSetting("CLIEN.INI", "GENERAL", "NetPath", net);
  host::CreateMillDatabase(session.Engine(), database, "");
  root.Constructor(folder.path(), true);
  EXPECT_EQ(session.Database().Name(), database);
  EXPECT_TRUE(session.vardex3);
  root.RecargaValores();
  EXPECT_EQ(session.Database().Name(), database);
  root.Constructor(folder.path(), false);
  EXPECT_EQ(session.Database().Name(), folder.File("oliva.mdb"));
}

TEST_F(TrazabilidadTest, ConstructorPassesASettingsErrorOn) {
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "99999");
  EXPECT_EQ(ErrorOf([&] { root.Constructor(folder.path(), false); }), 6);
}

TEST_F(TrazabilidadTest, RecargaValoresReadsTheSettingsAgain) {
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "7");
  WriteSensorSetting("TimeOut", "300");
  EXPECT_EQ(root.MaximoTolvas(), 4);
  root.RecargaValores();
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_EQ(root.MaximoTolvas(), 7);
  EXPECT_EQ(root.TimeOutUDP(), 300);
}

TEST_F(TrazabilidadTest, RecargaValoresOpensAfterAFailure) {
  root.Constructor(folder.Folder("later"), false);
  ASSERT_FALSE(root.BaseAbierta());
  host::CreateMillDatabase(session.Engine(), folder.File("later/oliva.mdb"), "");
  root.RecargaValores();
  EXPECT_TRUE(root.BaseAbierta());
}

TEST_F(TrazabilidadTest, CerrarClosesForEveryFactory) {
  root.Cerrar();
  EXPECT_FALSE(root.BaseAbierta());
  EXPECT_EQ(root.Tolva(1), nullptr);
  EXPECT_EQ(root.TvaInter(1), nullptr);
  EXPECT_EQ(root.Deposito(1), nullptr);
}

TEST_F(TrazabilidadTest, CerrarTwiceIsNoError) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { root.Cerrar(); }), 0);
}

TEST_F(TrazabilidadTest, ObjectsFromBeforeWorkAgainAfterReopening) {
  const auto hopper = root.Tolva(1);
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { hopper->DescargaEnCurso(); }), 3420);
  root.RecargaValores();
  EXPECT_EQ(hopper->DescargaEnCurso(), 1);
}

TEST_F(TrazabilidadTest, ObjectsFromBeforeHaveNoDatabaseAfterAFailedReopening) {
  const auto hopper = root.Tolva(1);
  root.Constructor(folder.File("nowhere"), false);
  EXPECT_EQ(ErrorOf([&] { hopper->DescargaEnCurso(); }), 91);
}

TEST_F(TrazabilidadTest, TerminatingOneInstanceClosesForTheOther) {
  {
    const Trazabilidad other(session);
    EXPECT_TRUE(other.BaseAbierta());
  }
  EXPECT_FALSE(root.BaseAbierta());
}

TEST_F(TrazabilidadTest, TerminatingSwallowsAFailedClosing) {
  std::optional<Trazabilidad> other(session);
  probe->FailAt(1, 3218);
  EXPECT_NO_THROW(other.reset());
  EXPECT_FALSE(root.BaseAbierta());
}

TEST_F(TrazabilidadTest, InstancesShareTheCounts) {
  Trazabilidad other(session);
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "9");
  other.Constructor(folder.path(), false);
  EXPECT_EQ(root.MaximoTolvas(), 9);
}

// --- factories

TEST_F(TrazabilidadTest, HandsOutHoppersUpToTheirCount) {
  EXPECT_NE(root.Tolva(1), nullptr);
  EXPECT_NE(root.Tolva(4), nullptr);
  EXPECT_EQ(root.Tolva(0), nullptr);
  EXPECT_EQ(root.Tolva(-1), nullptr);
  EXPECT_EQ(root.Tolva(5), nullptr);
}

TEST_F(TrazabilidadTest, HandsOutIntermediateHoppersUpToTheirCount) {
  EXPECT_NE(root.TvaInter(1), nullptr);
  EXPECT_NE(root.TvaInter(2), nullptr);
  EXPECT_EQ(root.TvaInter(0), nullptr);
  EXPECT_EQ(root.TvaInter(-1), nullptr);
  EXPECT_EQ(root.TvaInter(3), nullptr);
}

TEST_F(TrazabilidadTest, HandsOutTanksUpToTheirCount) {
  EXPECT_NE(root.Deposito(1), nullptr);
  EXPECT_NE(root.Deposito(6), nullptr);
  EXPECT_EQ(root.Deposito(0), nullptr);
  EXPECT_EQ(root.Deposito(-1), nullptr);
  EXPECT_EQ(root.Deposito(7), nullptr);
}

TEST_F(TrazabilidadTest, HandsOutOneTankOnlyWithoutCounts) {
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "");
  root.RecargaValores();
  EXPECT_EQ(root.Tolva(1), nullptr);
  EXPECT_EQ(root.TvaInter(1), nullptr);
  EXPECT_NE(root.Deposito(1), nullptr);
  EXPECT_EQ(root.Deposito(2), nullptr);
}

TEST_F(TrazabilidadTest, HandsOutNothingForNegativeCounts) {
  WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "-4,-2,-6");
  root.RecargaValores();
  EXPECT_EQ(root.Tolva(1), nullptr);
  EXPECT_EQ(root.Tolva(-4), nullptr);
  EXPECT_EQ(root.Deposito(1), nullptr);
}

TEST_F(TrazabilidadTest, HandsOutANewObjectEachTimeWithoutAskingTheDatabase) {
  EXPECT_THAT(Sent([&] {
                EXPECT_NE(root.Tolva(1), root.Tolva(1));
                EXPECT_NE(root.TvaInter(1), root.TvaInter(1));
                EXPECT_NE(root.Deposito(1), root.Deposito(1));
              }),
              IsEmpty());
}

TEST_F(TrazabilidadTest, HandsOutTheObjectOfTheNumber) {
  root.Tolva(3)->DescargaEnCurso();
  EXPECT_THAT(Rows("select Tolva from Descargas"), ElementsAre("3"));
}

// --- sensor settings

TEST_F(TrazabilidadTest, SensorSettingsHaveDefaults) {
  EXPECT_EQ(root.ObjetoActiveX(), "");
  EXPECT_EQ(root.PuertoUDP(), "");
  EXPECT_EQ(root.TimeOutUDP(), 0);
  EXPECT_EQ(root.IntervaloPolling(), 0);
  EXPECT_EQ(root.TiempoControlNivel(), 24);
  EXPECT_EQ(root.MargenControlNivel(), 5);
}

TEST_F(TrazabilidadTest, SensorSettingsAreRead) {
  WriteSensorSetting("ActiveX", "Nivelador.Sonda");
  WriteSensorSetting("PortUDP", "192.168.1.9:5001");
  WriteSensorSetting("TimeOut", "1500");
  WriteSensorSetting("Periodo", "60 segundos");
  WriteSensorSetting("TiempoControl", "12");
  WriteSensorSetting("MargenControl", "3");
  root.RecargaValores();
  EXPECT_EQ(root.ObjetoActiveX(), "Nivelador.Sonda");
  EXPECT_EQ(root.PuertoUDP(), "192.168.1.9:5001");
  EXPECT_EQ(root.TimeOutUDP(), 1500);
  EXPECT_EQ(root.IntervaloPolling(), 60);
  EXPECT_EQ(root.TiempoControlNivel(), 12);
  EXPECT_EQ(root.MargenControlNivel(), 3);
}

TEST_F(TrazabilidadTest, AMarginCountsOnlyBesideATime) {
  WriteSensorSetting("MargenControl", "9");
  root.RecargaValores();
  EXPECT_EQ(root.TiempoControlNivel(), 24);
  EXPECT_EQ(root.MargenControlNivel(), 5);
  WriteSensorSetting("TiempoControl", "12");
  WriteSensorSetting("MargenControl", "");
  root.RecargaValores();
  EXPECT_EQ(root.TiempoControlNivel(), 12);
  EXPECT_EQ(root.MargenControlNivel(), 0);
}

TEST_F(TrazabilidadTest, SensorNumbersHave32Bits) {
  WriteSensorSetting("TimeOut", "2147483647");
  root.RecargaValores();
  EXPECT_EQ(root.TimeOutUDP(), std::numeric_limits<int32_t>::max());
  WriteSensorSetting("TimeOut", "2147483648");
  EXPECT_EQ(ErrorOf([&] { root.RecargaValores(); }), 6);
}

TEST_F(TrazabilidadTest, SensorSettingsAreNotReadWithoutADatabase) {
  WriteSensorSetting("TimeOut", "1500");
  WriteSetting("Vardex.ini", "GENERAL", "BaseDatos", "nowhere.mdb");
  root.RecargaValores();
  EXPECT_EQ(root.TimeOutUDP(), 0);
}

TEST_F(TrazabilidadTest, SettingAPropertyDoesNotWriteTheFile) {
  root.SetTimeOutUDP(250);
  EXPECT_EQ(root.TimeOutUDP(), 250);
  EXPECT_EQ(ReadSetting("TimeOut"), "");
  root.RecargaValores();
  EXPECT_EQ(root.TimeOutUDP(), 0);
}

TEST_F(TrazabilidadTest, SalvarValoresWritesTheSixSettings) {
  root.SetObjetoActiveX("Nivelador.Sonda");
  root.SetPuertoUDP("5001");
  root.SetTimeOutUDP(250);
  root.SetIntervaloPolling(-60);
  root.SetTiempoControlNivel(48);
  root.SetMargenControlNivel(7);
  root.SalvarValores();
  EXPECT_EQ(ReadSetting("ActiveX"), "Nivelador.Sonda");
  EXPECT_EQ(ReadSetting("PortUDP"), "5001");
  EXPECT_EQ(ReadSetting("TimeOut"), "250");
  EXPECT_EQ(ReadSetting("Periodo"), "-60");
  EXPECT_EQ(ReadSetting("TiempoControl"), "48");
  EXPECT_EQ(ReadSetting("MargenControl"), "7");
  root.RecargaValores();
  EXPECT_EQ(root.IntervaloPolling(), -60);
}

TEST_F(TrazabilidadTest, SalvarValoresWritesWhereTheSettingsAreReadFrom) {
  const std::string net = folder.Folder("net");
  WriteSetting("CLIEN.INI", "GENERAL", "Esclavo", "si");
  WriteSetting("CLIEN.INI", "GENERAL", "NetPath", net);
  root.SetTimeOutUDP(250);
  root.SalvarValores();
  EXPECT_EQ(ReadSetting("TimeOut"), "");
  EXPECT_EQ(kestro::IniFile(folder.File("net/Vardex.ini"), "SENSORES").Read("TimeOut"), "250");
}

TEST_F(TrazabilidadTest, SalvarValoresNeedsNoDatabase) {
  root.Cerrar();
  root.SetTimeOutUDP(250);
  root.SalvarValores();
  EXPECT_EQ(ReadSetting("TimeOut"), "250");
}

}  // namespace
}  // namespace ambrelio
