// Random rows for a mill's tables: weighings of a few discharges, shares with and without their
// weighing, discharges and emptyings with and without the other. The codes are those that the
// library's statements in known_statements.h ask for.
#pragma once

#include <string>
#include <vector>

#include "chance.h"
#include "every_plan.h"

namespace ambrelio::test {

class RandomMill {
 public:
  RandomMill(Chance& chance, EveryPlan& plans) : chance_(chance), plans_(plans) {}

  void Fill() {
    for (const char* table : {"PESADA", "splitDescar", "split", "Descargas", "Vaciados",
                              "detVaciados", "Niveles", "SOCIO", "Depositos"}) {
      plans_.Execute(std::string("delete from ") + table);
    }
    Many(12, [&] {
      Insert("PESADA", {Code(1), Code(4), Code(1), Code(1), OrNull(Code(3)), OrNull(Code(2)),
                        OrNull(Place()), Code(1), "Null", OrNull(Moment()), OrNull(Hopper()),
                        OrNull(Discharge()), OrNull(Kilos())});
    });
    Many(10, [&] { Insert("splitDescar", Share()); });
    Many(4, [&] { Insert("split", Share()); });
    Many(8, [&] {
      Insert("Descargas", {Hopper(), Discharge(), OrNull(Moment()), OrNull(Moment()),
                           OrNull(Code(1)), Tank(), OrNull(Eighths())});
    });
    Many(6, [&] {
      Insert("Vaciados",
             {Tank(), Code(2), OrNull(Moment()), OrNull(Kilos()), OrNull(Tank()), OrNull(Code(2)),
              OrNull(Place()), OrNull(Code(3)), "Null", OrNull(Place())});
    });
    Many(8, [&] {
      Insert("detVaciados",
             {Tank(), Code(2), Hopper(), Discharge(), OrNull(Code(1)), OrNull(Eighths())});
    });
    Many(5, [&] {
      Insert("Niveles",
             {Tank(), Code(12), OrNull(Moment()), Code(3), OrNull(Kilos()), "Null", "False"});
    });
    Many(3, [&] { Insert("SOCIO", {Code(3), OrNull(Place())}); });
    Many(3, [&] { Insert("Depositos", {Code(5), OrNull(Place())}); });
  }

 private:
  using Values = std::vector<std::string>;

  template <class Action>
  void Many(int most, Action action) {
    for (int i = chance_.Below(most + 1); i > 0; --i) action();
  }
  // A row that breaks a key stays out.
  void Insert(const std::string& table, const Values& values) {
    std::string list;
    for (const std::string& value : values) list += (list.empty() ? "" : ", ") + value;
    plans_.Execute("insert into " + table + " values (" + list + ")");
  }

  std::string OrNull(std::string value) { return chance_.Odds(12) ? "Null" : std::move(value); }
  std::string Code(int highest) { return std::to_string(chance_.Below(highest + 1)); }
  std::string Hopper() { return chance_.Of(Values{"1", "1", "2", "2", "3", "-1"}); }
  std::string Discharge() { return chance_.Of(Values{"17", "17", "8", "9", "5", "0"}); }
  std::string Tank() { return chance_.Of(Values{"5", "5", "4", "6", "0"}); }
  std::string Kilos() { return chance_.Of(Values{"0", "128", "512.5", "1000", "96.25"}); }
  std::string Eighths() { return std::to_string((chance_.Below(8) + 1) * 0.125); }
  std::string Place() {
    return chance_.Of(Values{"'Loma'", "'LOMA'", "'loma '", "'Prado'", "'Ñora'", "'ñora '"});
  }
  std::string Moment() {
    return chance_.Of(Values{"#11/15/2026 17:30:0#", "#11/1/2026#", "#1/1/2002#", "#12/1/2026#"});
  }
  Values Share() {
    return {Code(1),     Code(4),          Code(1), Code(1), chance_.Odds(80) ? "1" : Hopper(),
            Discharge(), OrNull(Eighths())};
  }

  Chance& chance_;
  EveryPlan& plans_;
};

}  // namespace ambrelio::test
