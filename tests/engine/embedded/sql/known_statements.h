// Statements as the library writes them, and others of every form of the dialect: what must parse,
// what must keep its shape, and what is cut and shuffled to look for crashes.
#pragma once

#include <string_view>
#include <vector>

namespace ambrelio::embedded::sql {

// Long statements go over several lines, which looks like forgotten commas.
// NOLINTBEGIN(bugprone-suspicious-missing-comma)
inline const std::vector<std::string_view>& LibraryStatements() {
  static const std::vector<std::string_view> kStatements = {
      // Schema steps.
      "select PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, PESADA.MEDIANA as "
      "mediana, PESADA.CODPRO as codpro, PESADA.CODSOC as codsoc, PESADA.CODMUN as codmun, "
      "PESADA.PARAJE as paraje, PESADA.POLIGONO as poligono, PESADA.PARCELA as parcela, "
      "PESADA.H_INICIO as h_inicio, IIf(IsNull(splitDescar.tolva), PESADA.tolva, "
      "splitDescar.tolva) as tolva, IIf(IsNull(splitDescar.descarga), PESADA.descarga, "
      "splitDescar.descarga) as descarga, PESADA.PARCIALPESO * IIf(IsNull(fraccion), 1, fraccion) "
      "as parcialpeso from PESADA left join splitDescar on (PESADA.COOPERATIVA = "
      "splitDescar.cooperativa) and (PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = "
      "splitDescar.mediana) and (PESADA.CODPRO = splitDescar.codpro) ",
      "update Descargas set Deposito=0 where isnull(Deposito)",
      "update Descargas set Molino=1 where Deposito>0",
      "update Descargas set Molino=0 where Deposito=0",
      "update detVaciados set Molino=1 ",
      "update Niveles set Alerta=False ",
      // Histories and the season's reset.
      "select MomentoHasta as mmto, Descargas.Descarga as cod, Descargas.Tolva as tva, "
      "Descargas.Deposito as dto, sum(PARCIALPESO) as pes from ExtPesada left join Descargas on "
      "(ExtPesada.tolva= Descargas.Tolva) and (ExtPesada.descarga= Descargas.Descarga) where "
      "(Descargas.Deposito > 0) and (MomentoHasta >= #3/5/2003 8:4:9#) and (MomentoHasta <= "
      "#11/15/2026 17:30:0#) and (Descargas.Tolva = 2) group by MomentoHasta, Descargas.Descarga, "
      "Descargas.Tolva, Descargas.Deposito order by MomentoHasta ",
      "select Momento as mmto, Item as cod, Deposito as dto, Litros as can from Niveles where "
      "(Momento >= #1/1/2004 0:0:0#) and (Deposito = 4) order by Momento ",
      "select mmto, Vaciado as cod, Deposito as dto, Cantidad as can, Destino as dno, Lote as lot, "
      "Uso, Cliente as cli, Transportista as trp, DestinoVenta as dvt from Vaciados order by mmto ",
      "select DestinoVenta from Vaciados where DestinoVenta>'' group by DestinoVenta ",
      "delete from split",
      "delete from Descargas",
      // Hoppers.
      "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
      "values (3, 1, #3/5/2003 8:4:9#, Null, 0, Null) ",
      "select * from Descargas where (Tolva=3) order by Descarga ",
      "select sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=3) and (DESCARGA=17) ",
      "select NOMSOC from SOCIO where CODSOC=12",
      "select max(Descarga) from Descargas where Tolva=2 ",
      "select MomentoDesde from Descargas where (Tolva=2) and (Descarga=8) ",
      "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
      "Fraccion) values (2, 9, #11/15/2026 17:30:0#, Null, 0, 0, Null) ",
      "update Descargas set Deposito= 4, MomentoHasta= #11/15/2026 17:30:0#, Molino= 1, Fraccion= "
      "0.60000000 where (TOLVA=2) and (DESCARGA=8)  and (Deposito=0) ",
      "delete from Descargas where (TOLVA=2) and (DESCARGA=9) ",
      "select max(mmto) from Vaciados where Deposito=4",
      "update Descargas set MomentoHasta= Null, Molino= 0, Deposito=0, Fraccion=Null where "
      "(TOLVA=2) and (DESCARGA=8) ",
      "select count(partida) as cnt from ExtPesada where (tolva=2) and (descarga=9) ",
      "update PESADA set TOLVA=2, DESCARGA=9 where (TOLVA=-1) and (DESCARGA=0) ",
      // Re-assignment.
      "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) select "
      "cooperativa, partida, mediana, codpro, 3 as tolva, 5 as descarga, fraccion * 0.25000000 as "
      "frac from splitDescar where (tolva=1) and (descarga=17) ",
      "update (select * from splitDescar as split1, splitDescar as split2 where "
      "(split1.cooperativa=split2.cooperativa) and (split1.partida=split2.partida) and "
      "(split1.mediana=split2.mediana) and (split1.codpro=split2.codpro) and (split1.tolva= 1) and "
      "(split1.descarga= 17) and (split2.tolva= 3) and (split2.descarga= 5) ) set "
      "split2.fraccion= split2.fraccion + split1.fraccion * 0.25000000 ",
      "update splitDescar set fraccion= fraccion - fraccion * 0.25000000 where (tolva= 1) and "
      "(descarga= 17) ",
      "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) select "
      "PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, PESADA.MEDIANA as mediana, "
      "PESADA.CODPRO as codpro, 1 as tolva, 17 as descarga, (1-0.25000000) as fraccion from PESADA "
      "left join splitDescar on (PESADA.COOPERATIVA = splitDescar.cooperativa) and "
      "(PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) and "
      "(PESADA.CODPRO = splitDescar.codpro) where (PESADA.TOLVA=1) and (PESADA.DESCARGA=17) and "
      "isnull(splitDescar.tolva) ",
      "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
      "select * from split ",
      "update (select * from PESADA left join splitDescar on (PESADA.COOPERATIVA = "
      "splitDescar.cooperativa) and (PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = "
      "splitDescar.mediana) and (PESADA.CODPRO = splitDescar.codpro) where fraccion>=0.999 )set "
      "PESADA.TOLVA=splitDescar.tolva, PESADA.DESCARGA=splitDescar.descarga ",
      "delete from splitDescar where (fraccion >= 0.999) or (fraccion < 0.001) ",
      // Tanks.
      "select Nombre from Depositos where Codigo=5",
      "update Depositos set Nombre='Bodega´s' where Codigo=5",
      "insert into Depositos (Codigo, Nombre) values (5, 'Bodega') ",
      "select * from Capacidad where (Deposito=5) order by nivel ",
      "insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (5, 100, 0.5, 1E-05, -2.25, "
      "3) ",
      "select * from Capacidad where (Deposito=5) and (10*nivel>=85) order by nivel ",
      "update Niveles set Densidad= 0.91600000 where (Deposito=5) and (Item=12) ",
      "insert into Niveles (Deposito, Item, Momento, Nivel, Litros, Densidad) values (5, 13, "
      "#11/15/2026 17:30:0#, 85, 1234.57, Null) ",
      "select sum(Cantidad) from Vaciados where (Deposito=5) and (mmto>#11/15/2026 17:30:0#) ",
      "update Descargas set Fraccion= Fraccion * 0.75000000 where (Deposito=5) ",
      "update Descargas set Fraccion=0 where (Fraccion<0.0001) ",
      "update Descargas set Fraccion= Fraccion-0.25000000 where (TOLVA=2) and (DESCARGA=8)  and "
      "(Deposito=5) ",
      "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
      "select Tolva, Descarga, MomentoDesde, MomentoHasta, 6, 0.25000000 from Descargas where "
      "(TOLVA=2) and (DESCARGA=8)  and (Deposito=5) ",
      "insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Uso, Lote, Cliente, "
      "Transportista, DestinoVenta) values (5, 2, #11/15/2026 17:30:0#, 1000.00000000, 0, 2, "
      "'L-07', 11, 4, 'Génova') ",
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) select 5 as "
      "Deposito, 2 as Vaciado, Tolva, Descarga, Molino, Fraccion from Descargas where "
      "(Deposito=5) and (Fraccion>0) ",
      "select Tolva from Descargas where Deposito=5 order by MomentoHasta, Tolva ",
      "delete from Niveles where (Deposito=5) and (Momento>#11/15/2026 17:30:0#) ",
      "select Uso, Cliente, Transportista, DestinoVenta, Lote from Vaciados where (Deposito=5) and "
      "(Vaciado=2) ",
      "select sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join detVaciados on "
      "(ExtPesada.tolva=DetVaciados.Tolva) and (ExtPesada.descarga=detVaciados.Descarga) where "
      "(Deposito=5) and (Vaciado=2) ",
      "(select MomentoHasta as mmto, 1 as tpo, Tolva as dto, Descarga as cod from Descargas where "
      "Deposito=5) union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod from Vaciados "
      "where Deposito=5) union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod from "
      "Vaciados where Destino=5) union (select Momento as mmto, 3 as tpo, Deposito as dto, Item as "
      "cod from Niveles where Deposito=5) order by mmto ",
      // Composition.
      "select codsoc as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join (select "
      "Tolva, Descarga, Molino, Fraccion from Descargas where (Deposito=5) and (Fraccion>0)) as "
      "dgas on (ExtPesada.Tolva=dgas.Tolva) and (ExtPesada.Descarga=dgas.Descarga) where not "
      "isnull(Fraccion) group by codsoc order by codsoc ",
      "select paraje as campo, sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=3) and "
      "(DESCARGA=17)  group by paraje order by paraje ",
      // Referents.
      "select max(Codigo) from Clientes",
      "select * from Transportistas where Codigo=3",
      "insert into Clientes (Codigo, Nombre, NIF, Info1, Info2, Info3) values (3, 'Peña e hijos', "
      "Null, 'a \"b\" c', 'x|y', Null) ",
      "update Clientes set Nombre= 'Peña', NIF= Null, Info1= Null, Info2= 'b', Info3= 'c' where "
      "Codigo=3 ",
      "delete from Clientes where Codigo=3",
      "select Codigo, Nombre, NIF from Transportistas order by Nombre",
  };
  return kStatements;
}

inline const std::vector<std::string_view>& OtherStatements() {
  static const std::vector<std::string_view> kStatements = {
      "select 1",
      "select all a, t.*, [order by], `group`, peso_año from t as x where x!a like 'a*' and not b;",
      "select distinct top 10 percent a + 1 as b from (t) order by 1 desc, 2, a asc",
      "select distinctrow top 5 * from a, b as c, (d inner join e on d.x = e.x) where 1 = 1",
      "select a from t order by (1), a + 1, iif(a > 2, 3, 4)",
      "select a from (b left outer join c on b.x=c.x) right join (select 1 as x) on b.x=x",
      "select a, count(*), count(distinct b) from t group by a having count(*) > 1 and a <> 'x'",
      "select a from t union all select b from u union (select 2 from v order by 1) order by 1",
      "select a from t where a in (1, 2.5, 'x', #1/2/2003#) and b not in (select c from u)",
      "select a from t where exists (select * from u where u.k = t.k) or not exists (select 1)",
      "select (select max(b) from u where c = 5) + 1 as m from t where a between 1 and 2 + 3",
      "select -a ^ 2 * 3 \\ 4 mod 5 & 'x' from t where a not between 1 and 2 xor b eqv c imp d",
      "select left(a, 2), right('abc', 1), mid(a, 2) from t where a is null or b is not null",
      "select * from ((select a from t where b = 1) union (select a from u)) as x where a > 2",
      "insert into t values (1, 'it''s', \"say \"\"hi\"\"\", #12:30#, True, -.5)",
      "insert into t (a, b) (select top 3 a, 5 from u order by 2)",
      "update a inner join b on a.x = b.x set a.y = b.y + 1, z = 'q' where b.w > 1E3",
      "update a, b set a.y = 1 where a.x = b.x",
      "delete * from t where a = 1",
      "delete t.* from t inner join u on t.a = u.a where u.b = 2",
      "create table t (a counter primary key, b text(40) not null default 'x', c long default -1 "
      "not null, d currency constraint u unique, constraint k primary key (a, b), unique (c))",
      "create unique index i on t (a, b desc, c asc) with ignore null",
      "create index [my index] on t (a) with disallow null",
      "alter table t add column a text(20) not null",
      "alter table t add b double",
      "alter table t add constraint k primary key (a)",
      "alter table t drop column a",
      "alter table t drop constraint k",
      "drop table t",
      "drop index i on t",
  };
  return kStatements;
}

// NOLINTEND(bugprone-suspicious-missing-comma)

inline std::vector<std::string_view> KnownStatements() {
  std::vector<std::string_view> all = LibraryStatements();
  all.insert(all.end(), OtherStatements().begin(), OtherStatements().end());
  return all;
}

}  // namespace ambrelio::embedded::sql
