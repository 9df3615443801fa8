// The trees of the library's more demanding statements.
#include "known_statements.h"
#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

TEST(LibraryText, ParsesWithoutException) {
  for (const std::string_view text : LibraryStatements()) {
    EXPECT_EQ(ErrorOf(text).description(), "") << text;
  }
}

TEST(LibraryText, JoinsWeighingsWithTheirShares) {
  EXPECT_EQ(
      Printed("select PESADA.COOPERATIVA AS cooperativa, IIf(IsNull(splitDescar.tolva), "
              "PESADA.tolva, splitDescar.tolva) as tolva, PESADA.PARCIALPESO * "
              "IIf(IsNull(fraccion), 1, fraccion) as parcialpeso from PESADA left join splitDescar "
              "on (PESADA.COOPERATIVA = splitDescar.cooperativa) and (PESADA.PARTIDA = "
              "splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) "),
      "select PESADA.COOPERATIVA as cooperativa, IIf(IsNull(splitDescar.tolva), PESADA.tolva, "
      "splitDescar.tolva) as tolva, (PESADA.PARCIALPESO * IIf(IsNull(fraccion), 1, fraccion)) as "
      "parcialpeso from (PESADA left join splitDescar on (((PESADA.COOPERATIVA = "
      "splitDescar.cooperativa) and (PESADA.PARTIDA = splitDescar.partida)) and (PESADA.MEDIANA = "
      "splitDescar.mediana)))");
}

TEST(LibraryText, AddsSharesThroughABracketedCommaJoin) {
  EXPECT_EQ(Printed("update (select * from splitDescar as split1, splitDescar as split2 where "
                    "(split1.partida=split2.partida) and (split1.tolva= 1) and (split2.tolva= 3) ) "
                    "set split2.fraccion= split2.fraccion + split1.fraccion * 0.25000000 "),
            "update {select * from splitDescar as split1, splitDescar as split2 where "
            "(((split1.partida = split2.partida) and (split1.tolva = 1)) and (split2.tolva = 3))} "
            "set split2.fraccion = (split2.fraccion + (split1.fraccion * 0.250000))");
}

TEST(LibraryText, MovesWeighingsThroughABracketedLeftJoin) {
  EXPECT_EQ(Printed("update (select * from PESADA left join splitDescar on (PESADA.PARTIDA = "
                    "splitDescar.partida) where fraccion>=0.999 )set "
                    "PESADA.TOLVA=splitDescar.tolva, PESADA.DESCARGA=splitDescar.descarga "),
            "update {select * from (PESADA left join splitDescar on (PESADA.PARTIDA = "
            "splitDescar.partida)) where (fraccion >= 0.999000)} set PESADA.TOLVA = "
            "splitDescar.tolva, PESADA.DESCARGA = splitDescar.descarga");
}

TEST(LibraryText, ComputesTheRestOfAShare) {
  EXPECT_EQ(Printed("insert into split (tolva, fraccion) select 1 as tolva, (1-0.25000000) as "
                    "fraccion from PESADA where isnull(PESADA.TOLVA) "),
            "insert into split (tolva, fraccion) {select 1 as tolva, (1 - 0.250000) as fraccion "
            "from PESADA where isnull(PESADA.TOLVA)}");
}

TEST(LibraryText, UnitesTheMovementsOfATank) {
  EXPECT_EQ(Printed("(select MomentoHasta as mmto, 1 as tpo from Descargas where Deposito=5) union "
                    "(select mmto, 2 as tpo from Vaciados where Deposito=5) union (select Momento "
                    "as mmto, 3 as tpo from Niveles where Deposito=5) order by mmto "),
            "{{select MomentoHasta as mmto, 1 as tpo from Descargas where (Deposito = 5)} union "
            "{select mmto, 2 as tpo from Vaciados where (Deposito = 5)}} union {select Momento as "
            "mmto, 3 as tpo from Niveles where (Deposito = 5)} order by mmto");
}

TEST(LibraryText, WeighsTheComposition) {
  EXPECT_EQ(
      Printed("select codsoc as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join "
              "(select Tolva, Fraccion from Descargas where (Deposito=5) and (Fraccion>0)) as dgas "
              "on (ExtPesada.Tolva=dgas.Tolva) and (ExtPesada.Descarga=dgas.Descarga) where not "
              "isnull(Fraccion) group by codsoc order by codsoc "),
      "select codsoc as campo, sum((PARCIALPESO * Fraccion)) as pes from (ExtPesada left join "
      "{select Tolva, Fraccion from Descargas where ((Deposito = 5) and (Fraccion > 0))} as dgas "
      "on ((ExtPesada.Tolva = dgas.Tolva) and (ExtPesada.Descarga = dgas.Descarga))) where (not "
      "isnull(Fraccion)) group by codsoc order by codsoc");
}

TEST(LibraryText, RefusesTemplatesWhosePlaceholdersWereNotFilled) {
  EXPECT_EQ(ErrorNumberOf("delete from splitDescar where (tolva=#ORG) and (descarga=#DGA1) "),
            3075);
  EXPECT_EQ(ErrorNumberOf("select @campo as campo from ExtPesada"), 3075);
}

}  // namespace
}  // namespace ambrelio::embedded::sql
