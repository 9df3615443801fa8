// Random tables, and rows for them: with and without keys, Null wherever it is allowed, texts that
// are equal but for their spelling, numbers whose sums are exact in every order.
#pragma once

#include <string>
#include <vector>

#include "every_plan.h"
#include "random_queries.h"

namespace ambrelio::test {

inline std::string RandomValue(Chance& chance, Kind kind) {
  static const std::vector<std::string> kTexts = {"'a'",  "'A'", "'a '", "'b'",
                                                  "'B '", "'ñ'", "'Ñ'",  "'x'"};
  if (kind == Kind::kTruth) return chance.Odds(50) ? "True" : "False";
  if (chance.Odds(25)) return "Null";
  if (kind == Kind::kText) return chance.Of(kTexts);
  return chance.Odds(60) ? std::to_string(chance.Below(4))
                         : std::to_string(chance.Below(9) * 0.125);
}

class RandomTables {
 public:
  explicit RandomTables(Chance& chance) : chance_(chance) {}

  // Two to four tables, and up to three queries that are stored over them and over each other.
  void Create(EveryPlan& plans) {
    plans.storage().Begin();
    const int count = 2 + chance_.Below(3);
    for (int i = 1; i <= count; ++i) plans.Execute(Table("T" + std::to_string(i)));
    for (const NamedSource& table : tables) {
      if (!chance_.Odds(50)) continue;
      const std::string& column = chance_.Of(table.columns).name;
      plans.Execute("create index by_one on " + table.name + " (" + column + ")");
    }
    sources = tables;
    for (int i = chance_.Below(4); i > 0; --i) {
      NamedSource query;
      const std::string name = "Q" + std::to_string(i);
      const std::string text = RandomQueries(chance_, sources).Stored(name, query);
      plans.catalogue().CreateQuery({name, text});
      description += name + ": " + text + "\n";
      sources.push_back(std::move(query));
    }
    plans.storage().Commit();
  }

  // Empties the tables and puts other rows in.
  void Fill(EveryPlan& plans) {
    for (const NamedSource& table : tables) {
      plans.Execute("delete from " + table.name);
      for (int row = chance_.Below(6); row > 0; --row) {
        std::string values;
        for (const NamedColumn& column : table.columns) {
          values += (values.empty() ? "" : ", ") + RandomValue(chance_, column.kind);
        }
        // What breaks a key or a required value stays out.
        plans.Execute("insert into " + table.name + " values (" + values + ")");
      }
    }
  }

  std::vector<NamedSource> tables;
  std::vector<NamedSource> sources;  // with the stored queries
  std::string description;

 private:
  std::string Table(const std::string& name) {
    static const std::vector<std::string> kNumbers = {" long", " double", " short"};
    NamedSource table{name, {{"k", Kind::kNumber}, {"m", Kind::kNumber}, {"t", Kind::kText}}};
    std::string text = "create table " + name + " (k" + chance_.Of(kNumbers) + ", m" +
                       chance_.Of(kNumbers) + (chance_.Odds(20) ? " not null" : "") +
                       ", t text(10)" + (chance_.Odds(15) ? " not null" : "");
    if (chance_.Odds(50)) {
      table.columns.push_back({"b", Kind::kTruth});
      text += ", b yesno";
    }
    if (chance_.Odds(50)) {
      table.columns.push_back({"d", Kind::kNumber});
      text += ", d double";
    }
    static const std::vector<std::string> kKeys = {"k", "k, m", "t", "k, t", "m"};
    if (chance_.Odds(70)) text += ", constraint pk primary key (" + chance_.Of(kKeys) + ")";
    tables.push_back(std::move(table));
    description += text + ")\n";
    return text + ")";
  }

  Chance& chance_;
};

}  // namespace ambrelio::test
