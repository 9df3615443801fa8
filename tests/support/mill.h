// A mill for tests: an application folder with its settings and a new database, the root object at
// work on them, a clock that the test sets, and a probe that sees every request to the engine.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/data/session.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/host/create_database.h"
#include "ambrelio/kestro/ini_file.h"
#include "ambrelio/platform/clock.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/made_once.h"
#include "support/mill_engine.h"
#include "support/probe_engine.h"
#include "support/temp_folder.h"

namespace ambrelio::test {

// "YYYY-MM-DD HH:MM:SS" as a moment; the text must be one.
inline OleDate At(std::string_view iso) { return OleDate::FromIso(iso).value(); }

// A value as a reader of a table wants to see it: Null, dates as in At, the rest as text.
inline std::string Show(const Variant& value) {
  if (value.is_null()) return "Null";
  if (value.is_empty()) return "Empty";
  if (value.is_date()) return value.as<OleDate>().Iso();
  if (value.is_array()) {
    std::string text = "[";
    for (const Variant& element : value.array()) {
      if (text.size() > 1) text += ", ";
      text += Show(element);
    }
    return text + "]";
  }
  return ToText(value);
}

// A weighing as the host stores it. The lot makes its key; the rest has defaults.
struct Weighing {
  int lot = 1;
  int hopper = 1;
  int discharge = 1;
  double kilos = 1000;
  int member = 1;
  int product = 1;
  int municipality = 1;
  std::string place = "LOMA";
  int cooperative = 1;
  int half = 0;
};

class MillTest : public ::testing::Test {
 public:
  // The number of the AutomationError that `action` raises; 0 when it raises none.
  static int ErrorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return error.number();
    }
    return 0;
  }

  // The rows of a query or table, each as its values joined by "|".
  static std::vector<std::string> RowsOf(dao::Database& database, const std::string& source) {
    std::vector<std::string> rows;
    auto recordset = database.OpenRecordset(source);
    for (; !recordset->AtEnd(); recordset->MoveNext()) {
      std::string row;
      for (int i = 0; i < recordset->Fields().Count(); ++i) {
        if (i > 0) row += '|';
        row += Show(recordset->Value(i));
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }

  // Every row of every table, as one text that two moments can be compared by.
  static std::string DumpOf(dao::Database& database) {
    std::string dump;
    auto& tables = database.TableDefs();
    for (int i = 0; i < tables.Count(); ++i) {
      const std::string name = tables.Item(i)->Name();
      if (name.starts_with("MSys")) continue;
      std::vector<std::string> rows = RowsOf(database, "select * from [" + name + "]");
      std::sort(rows.begin(), rows.end());
      dump += name + "\n";
      for (const std::string& row : rows) dump += "  " + row + "\n";
    }
    return dump;
  }

 protected:
  // 4 hoppers, 2 intermediate hoppers, 6 tanks, no password, open.
  void SetUp() override {
    session.UseEngine(std::make_shared<ProbeEngine>(MakeMillEngine(), probe));
    static MadeOnce database;
    const std::string path = folder.File("oliva.mdb");
    database.PutAt(path, [&] { host::CreateMillDatabase(session.Engine(), path, ""); });
    WriteSetting("Vardex.ini", "GENERAL", "MaxTolvas", "4,2,6");
    root.Constructor(folder.path(), false);
    ASSERT_TRUE(root.BaseAbierta());
    probe->events.clear();
  }

  void WriteSetting(const std::string& file, const std::string& section, const std::string& key,
                    const std::string& value) {
    kestro::IniFile(folder.File(file), section).Write(key, value);
  }

  void Execute(const std::string& sql) { session.Database().Execute(sql); }

  void Weigh(const Weighing& w) {
    Execute(
        "insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, "
        "H_INICIO, TOLVA, DESCARGA, PARCIALPESO) values (" +
        std::to_string(w.cooperative) + ", " + std::to_string(w.lot) + ", " +
        std::to_string(w.half) + ", " + std::to_string(w.product) + ", " +
        std::to_string(w.member) + ", " + std::to_string(w.municipality) + ", " +
        data::SqlText(w.place) + ", " + data::SqlDate(clock.Now()) + ", " +
        std::to_string(w.hopper) + ", " + std::to_string(w.discharge) + ", " +
        data::SqlNum8(w.kilos) + ")");
    ASSERT_EQ(session.Database().RecordsAffected(), 1);
  }

  // Hopper and discharge of every weighing, and what splitDescar says of it.
  std::vector<std::string> Weighings() {
    return Rows("select PARTIDA, TOLVA, DESCARGA from PESADA order by PARTIDA");
  }
  std::vector<std::string> Shares() {
    return Rows(
        "select partida, tolva, descarga, fraccion from splitDescar "
        "order by partida, tolva, descarga");
  }

  std::vector<std::string> Rows(const std::string& source) {
    return RowsOf(session.Database(), source);
  }

  // The first value of the first row; Empty without rows.
  Variant Scalar(const std::string& sql) {
    auto recordset = session.Database().OpenRecordset(sql);
    return recordset->AtEnd() ? Variant() : recordset->Value(0);
  }

  std::string Dump() { return DumpOf(session.Database()); }

  // What `action` asks of the engine, in order: SQL texts, "begin", "commit" and "rollback".
  std::vector<std::string> Sent(const std::function<void()>& action) {
    probe->events.clear();
    action();
    return std::exchange(probe->events, {});
  }

  // Closes the database and opens it again: what was not committed is gone.
  void Reopen() {
    root.RecargaValores();
    ASSERT_TRUE(root.BaseAbierta());
  }

  // Fails `action` at its first request, its second, and so on until it gets through. Every failure
  // must come out with its number and leave exactly the levels open that were begun; closing the
  // database must bring back what was there before. Returns the number of requests of the whole.
  int FailAtEveryRequest(const std::function<void()>& action) {
    constexpr int kNumber = 3218;
    const std::string before = Dump();
    for (int k = 1;; ++k) {
      probe->events.clear();
      probe->FailAt(k, kNumber);
      const int error = ErrorOf(action);
      probe->Disarm();
      const std::vector<std::string> asked = std::exchange(probe->events, {});
      if (error == 0) return k - 1;
      EXPECT_EQ(error, kNumber) << "at request " << k;
      EXPECT_EQ(probe->level, OpenLevels(asked)) << "at request " << k << ": " << asked.back();
      Reopen();
      EXPECT_EQ(Dump(), before) << "at request " << k << ": " << asked.back();
    }
  }

  TempFolder folder;
  ManualClock clock{At("2026-11-15 08:00:00")};
  ScopedClock scoped_clock{clock};
  ScopedLocale scoped_locale{Locale{}};
  std::shared_ptr<Probe> probe = std::make_shared<Probe>();
  Session session;
  Trazabilidad root{session};

 private:
  // Begins without their end; the last request is the one that failed and counts for nothing.
  static int OpenLevels(const std::vector<std::string>& asked) {
    int level = 0;
    for (size_t i = 0; i + 1 < asked.size(); ++i) {
      if (asked[i] == "begin") ++level;
      if (asked[i] == "commit" || asked[i] == "rollback") --level;
    }
    return level;
  }
};

}  // namespace ambrelio::test
