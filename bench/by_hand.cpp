#include "by_hand.h"

#include <cstdio>
#include <cstdlib>

namespace ambrelio::bench {

namespace {

void Bind(sqlite3_stmt* statement, int place, int value) {
  sqlite3_bind_int(statement, place, value);
}
void Bind(sqlite3_stmt* statement, int place, double value) {
  sqlite3_bind_double(statement, place, value);
}

void Check(sqlite3_stmt* statement, int code) {
  if (code == SQLITE_ROW || code == SQLITE_DONE) return;
  std::fprintf(stderr, "by hand: %s: %s\n", sqlite3_sql(statement),
               sqlite3_errmsg(sqlite3_db_handle(statement)));
  std::exit(1);
}

bool Step(sqlite3_stmt* statement) {
  const int code = sqlite3_step(statement);
  Check(statement, code);
  return code == SQLITE_ROW;
}

std::string_view Text(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return {text, static_cast<size_t>(sqlite3_column_bytes(statement, column))};
}

void ReadValue(sqlite3_stmt* statement, int column, Answer& answer) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return answer.AddNull();
    case SQLITE_TEXT:
      return answer.Add(Text(statement, column));
    default:
      return answer.Add(sqlite3_column_double(statement, column));
  }
}

// What several statements are read in: the locks are taken once.
class Reading {
 public:
  explicit Reading(ByHand& by_hand)
      : by_hand_(by_hand), open_(sqlite3_get_autocommit(by_hand.raw()) != 0) {
    if (open_) End("begin");
  }
  ~Reading() {
    if (open_) End("commit");
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  void End(const char* sql) {
    sqlite3_stmt* statement = by_hand_.Prepare(sql);
    Step(statement);
    sqlite3_reset(statement);
  }
  ByHand& by_hand_;
  bool open_;
};

constexpr const char* kEverUsed =
    "select exists (select 1 from Descargas where Deposito=?1) or "
    "exists (select 1 from Vaciados where Destino=?1)";
constexpr const char* kLastReading =
    "select Momento, Litros, Nivel from Niveles where Deposito=?1 order by Momento desc limit 1";
// Driven by the moment: only what is later than the last reading is looked at, whatever the tank
// has had before.
constexpr const char* kDischargeSince =
    "select max(MomentoHasta) from Descargas where MomentoHasta>?2 and +Deposito=?1";
constexpr const char* kLastInflow = "select max(mmto) from Vaciados where Destino=?1";
constexpr const char* kTakenSince =
    "select sum(Cantidad) from Vaciados where mmto>?2 and +Deposito=?1";
constexpr const char* kBroughtSince =
    "select sum(Cantidad) from Vaciados where mmto>?2 and +Destino=?1";

constexpr const char* kCurrentDischarge =
    "select Descarga, MomentoDesde from Descargas where Tolva=?1 "
    "order by Descarga desc, Deposito desc limit 1";

constexpr const char* kClearDust = "update Descargas set Fraccion=0 where Fraccion<0.0001";

}  // namespace

ByHand::ByHand(const std::string& path)
    : storage_(embedded::Storage::Open(path, embedded::Storage::Access::kShared)) {}

sqlite3_stmt* ByHand::Prepare(const std::string& sql) {
  auto at = prepared_.find(sql);
  if (at == prepared_.end()) {
    at = prepared_.emplace(sql, embedded::StorageStatement(raw(), sql)).first;
  }
  return at->second.raw();
}

void ByHand::Ask(sqlite3_stmt* query, const std::vector<Variant>& parameters, Answer& answer) {
  for (size_t i = 0; i < parameters.size(); ++i) {
    const auto place = static_cast<int>(i) + 1;
    if (parameters[i].type() == VariantType::kDouble) {
      bench::Bind(query, place, parameters[i].as<double>());
    } else {
      bench::Bind(query, place, static_cast<int>(ToLong(parameters[i])));
    }
  }
  const int columns = sqlite3_column_count(query);
  while (Step(query)) {
    for (int i = 0; i < columns; ++i) ReadValue(query, i, answer);
    answer.EndRow();
  }
  sqlite3_reset(query);
}

template <class... Values>
sqlite3_stmt* ByHand::Bound(const char* sql, const Values&... values) {
  sqlite3_stmt*& statement = own_[sql];
  if (statement == nullptr) statement = Prepare(sql);
  int place = 0;
  (bench::Bind(statement, ++place, values), ...);
  return statement;
}

template <class... Values>
void ByHand::Do(const char* sql, const Values&... values) {
  sqlite3_stmt* statement = Bound(sql, values...);
  Step(statement);
  sqlite3_reset(statement);
}

template <class... Values>
double ByHand::Number(const char* sql, const Values&... values) {
  sqlite3_stmt* statement = Bound(sql, values...);
  const double number = Step(statement) ? sqlite3_column_double(statement, 0) : 0;
  sqlite3_reset(statement);
  return number;
}

template <class... Values>
std::vector<ByHand::Part> ByHand::Parts(const char* sql, const Values&... values) {
  sqlite3_stmt* statement = Bound(sql, values...);
  std::vector<Part> parts;
  while (Step(statement)) {
    parts.push_back({sqlite3_column_int(statement, 0), sqlite3_column_int(statement, 1),
                     sqlite3_column_double(statement, 2)});
  }
  sqlite3_reset(statement);
  return parts;
}

// For a tank that has a reading, as all have here.
ByHand::State ByHand::StateOf(int tank) {
  State state;
  if (Number(kEverUsed, tank) == 0) return state;
  state.used = true;
  sqlite3_stmt* reading = Bound(kLastReading, tank);
  if (!Step(reading)) Check(reading, SQLITE_MISUSE);
  const double moment = sqlite3_column_double(reading, 0);
  state.litres = sqlite3_column_double(reading, 1);
  state.level = sqlite3_column_int(reading, 2);
  sqlite3_reset(reading);

  const double discharge = Number(kDischargeSince, tank, moment);
  if (discharge > 0 && discharge >= Number(kLastInflow, tank))
    return {.used = true, .level = 0, .litres = 0};
  for (const auto& [sql, sign] : {std::pair{kTakenSince, -1}, std::pair{kBroughtSince, 1}}) {
    sqlite3_stmt* sum = Bound(sql, tank, moment);
    Step(sum);
    if (sqlite3_column_type(sum, 0) != SQLITE_NULL) {
      state.litres += sign * sqlite3_column_double(sum, 0);
      state.level = 0;
    }
    sqlite3_reset(sum);
  }
  return state;
}

void ByHand::AskStates(int tanks, Answer& answer) {
  const Reading reading(*this);
  for (int tank = 1; tank <= tanks; ++tank) {
    const State level = StateOf(tank);
    if (level.level == 0) {
      answer.AddNull();
    } else {
      answer.Add(level.level);
    }
    const State litres = StateOf(tank);
    if (litres.used) {
      answer.Add(litres.litres);
    } else {
      answer.AddNull();
    }
    answer.EndRow();
  }
}

void ByHand::AskComposition(double litres, sqlite3_stmt* composition, Answer& answer) {
  struct Row {
    Variant key;
    std::string name;
    double kilos;
  };
  std::vector<Row> rows;
  double total = 0;
  while (Step(composition)) {
    Row row;
    row.key = sqlite3_column_type(composition, 0) == SQLITE_TEXT
                  ? Variant(Text(composition, 0))
                  : Variant(static_cast<int32_t>(sqlite3_column_int(composition, 0)));
    row.name = Text(composition, 1);
    row.kilos = sqlite3_column_double(composition, 2);
    total += row.kilos;
    rows.push_back(std::move(row));
  }
  sqlite3_reset(composition);
  for (const Row& row : rows) {
    const double share = row.kilos / total;
    answer.Add(row.key);
    answer.Add(std::string_view(row.name));
    answer.Add(share * 100);
    answer.Add(share * litres);
    answer.EndRow();
  }
}

void ByHand::AskTankComposition(int tank, sqlite3_stmt* composition, Answer& answer) {
  const Reading reading(*this);
  sqlite3_bind_int(composition, 1, tank);
  AskComposition(StateOf(tank).litres, composition, answer);
}

void ByHand::AskEmptyingComposition(int tank, int number, sqlite3_stmt* composition,
                                    Answer& answer) {
  const Reading reading(*this);
  sqlite3_bind_int(composition, 1, tank);
  sqlite3_bind_int(composition, 2, number);
  AskComposition(
      Number("select Cantidad from Vaciados where Deposito=?1 and Vaciado=?2", tank, number),
      composition, answer);
}

ByHand::Current ByHand::CurrentDischarge(int hopper) {
  sqlite3_stmt* statement = Bound(kCurrentDischarge, hopper);
  Current current;
  if (Step(statement)) {
    current = {sqlite3_column_int(statement, 0), sqlite3_column_double(statement, 1)};
  }
  sqlite3_reset(statement);
  return current;
}

void ByHand::AskCurrentDischarge(int hopper, Answer& answer) {
  static const std::string kWeight = sql::Weight();
  const Reading reading(*this);
  const Current current = CurrentDischarge(hopper);
  answer.Add(current.number);
  answer.Add(current.start);
  answer.Add(Number(kWeight.c_str(), hopper, current.number));
  answer.EndRow();
}

void ByHand::Discharge(int hopper, int tank, int mill_line, double share, OleDate now) {
  Do("savepoint outer");
  const Current current = CurrentDischarge(hopper);
  Do("update Descargas set Deposito=?3, MomentoHasta=?5, Molino=?4, Fraccion=1 "
     "where Tolva=?1 and Descarga=?2 and Deposito=0",
     hopper, current.number, tank, mill_line, now.days());
  Do("insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
     "Fraccion) values (?1, ?2, ?3, null, 0, 0, null)",
     hopper, current.number + 1, now.days());
  Reassign(hopper, current.number, hopper, current.number + 1, 1 - share);
  Do("release outer");
}

void ByHand::RestoreDischarge(int hopper) {
  Do("savepoint outer");
  const Current undone = CurrentDischarge(hopper);
  Do("delete from Descargas where Tolva=?1 and Descarga=?2", hopper, undone.number);
  const Current restored = CurrentDischarge(hopper);
  Number(
      "select max(v.mmto) from Descargas d join Vaciados v on v.Deposito=d.Deposito "
      "where d.Tolva=?1 and d.Descarga=?2 and v.mmto>?3",
      hopper, restored.number, undone.start);
  Do("update Descargas set MomentoHasta=null, Molino=0, Deposito=0, Fraccion=null "
     "where Tolva=?1 and Descarga=?2",
     hopper, restored.number);
  Reassign(hopper, undone.number, hopper, restored.number, 1);
  Do("release outer");
}

void ByHand::Reassign(int origin, int origin_discharge, int target, int target_discharge,
                      double share) {
  const auto move = [&](const char* sql) {
    Do(sql, origin, origin_discharge, target, target_discharge, share);
  };
  Do("savepoint inner");
  Do("delete from split");
  move(
      "insert or ignore into split select cooperativa, partida, mediana, codpro, ?3, ?4, "
      "fraccion*?5 from splitDescar where tolva=?1 and descarga=?2");
  move(
      "update splitDescar as t set fraccion=t.fraccion+o.fraccion*?5 from splitDescar as o "
      "where t.cooperativa=o.cooperativa and t.partida=o.partida and t.mediana=o.mediana and "
      "t.codpro=o.codpro and o.tolva=?1 and o.descarga=?2 and t.tolva=?3 and t.descarga=?4");
  Do("update splitDescar set fraccion=fraccion-fraccion*?3 where tolva=?1 and descarga=?2", origin,
     origin_discharge, share);
  constexpr const char* kDivide =
      "insert or ignore into split select p.COOPERATIVA, p.PARTIDA, p.MEDIANA, p.CODPRO, ?3, ?4, "
      "?5 from PESADA p where p.TOLVA=?1 and p.DESCARGA=?2 and not exists (select 1 from "
      "splitDescar s where s.cooperativa=p.COOPERATIVA and s.partida=p.PARTIDA and "
      "s.mediana=p.MEDIANA and s.codpro=p.CODPRO)";
  Do(kDivide, origin, origin_discharge, origin, origin_discharge, 1 - share);
  Do(kDivide, origin, origin_discharge, target, target_discharge, share);
  Do("insert or ignore into splitDescar select * from split");
  Do("update PESADA set TOLVA=s.tolva, DESCARGA=s.descarga from splitDescar as s where "
     "PESADA.COOPERATIVA=s.cooperativa and PESADA.PARTIDA=s.partida and "
     "PESADA.MEDIANA=s.mediana and PESADA.CODPRO=s.codpro and s.fraccion>=0.999");
  Do("delete from splitDescar where fraccion>=0.999 or fraccion<0.001");
  Do("delete from split");
  Do("release inner");
}

int ByHand::Sell(int tank, double litres, OleDate now) {
  const double share = litres / StateOf(tank).litres;
  Do("savepoint outer");
  const int number =
      static_cast<int>(Number("select max(Vaciado) from Vaciados where Deposito=?1", tank)) + 1;
  Do("insert into Vaciados values (?1, ?2, ?3, ?4, 0, 2, 'L1', 1, 1, 'MERCADO')", tank, number,
     now.days(), litres);
  Do("insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) "
     "select ?1, ?2, Tolva, Descarga, Molino, Fraccion from Descargas "
     "where Deposito=?1 and Fraccion>0",
     tank, number);
  for (const Part& part :
       Parts("select Tolva, Descarga, Fraccion from Descargas where Deposito=?1 and Fraccion>0",
             tank)) {
    Do("update Descargas set Fraccion=Fraccion-?4 where Tolva=?1 and Descarga=?2 and Deposito=?3",
       part.hopper, part.discharge, tank, part.fraction * share);
    Do(kClearDust);
  }
  Do("release outer");
  return number;
}

void ByHand::UndoEmptying(int tank) {
  const double moment = Number("select max(mmto) from Vaciados where Deposito=?1", tank);
  const int number = static_cast<int>(
      Number("select Vaciado from Vaciados where Deposito=?1 and mmto=?2", tank, moment));
  const int hopper = static_cast<int>(
      Number("select Tolva from Descargas where Deposito=?1 order by MomentoHasta desc, Tolva desc "
             "limit 1",
             tank));
  if (CurrentDischarge(hopper).start > moment) return;
  Do("savepoint outer");
  Do("delete from Niveles where Deposito=?1 and Momento>?2", tank, moment);
  for (const Part& part :
       Parts("select Tolva, Descarga, Fraccion from detVaciados where Deposito=?1 and Vaciado=?2",
             tank, number)) {
    Do("update Descargas set Fraccion=?4 where Tolva=?1 and Descarga=?2 and Deposito=?3",
       part.hopper, part.discharge, tank, part.fraction);
  }
  Do("delete from detVaciados where Deposito=?1 and Vaciado=?2", tank, number);
  Do("delete from Vaciados where Deposito=?1 and Vaciado=?2", tank, number);
  Do("release outer");
}

}  // namespace ambrelio::bench
