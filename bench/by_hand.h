// The rival that sets the bar: the questions on SQLite itself, over the same file with the same
// indexes, every statement written by hand and prepared once.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "answer.h"
#include "by_hand_sql.h"

namespace ambrelio::bench {

class ByHand {
 public:
  explicit ByHand(const std::string& path);
  ByHand(const ByHand&) = delete;
  ByHand& operator=(const ByHand&) = delete;

  sqlite3* raw() const { return storage_->raw(); }
  // The statement for the text, prepared the first time.
  sqlite3_stmt* Prepare(const std::string& sql);
  // All rows of a query.
  void Ask(sqlite3_stmt* query, const std::vector<Variant>& parameters, Answer& answer);

  // Level and litres of a tank, each asked for by itself.
  void AskStates(int tanks, Answer& answer);
  // Key, name, percentage and litres, as the library's members give them.
  void AskTankComposition(int tank, sqlite3_stmt* composition, Answer& answer);
  void AskEmptyingComposition(int tank, int number, sqlite3_stmt* composition, Answer& answer);
  // Number, beginning and kilograms of a hopper's current discharge.
  void AskCurrentDischarge(int hopper, Answer& answer);

  // Both do what the members do with the same writes, and take it back the same way.
  void Discharge(int hopper, int tank, int mill_line, double share, OleDate now);
  void RestoreDischarge(int hopper);
  int Sell(int tank, double litres, OleDate now);
  void UndoEmptying(int tank);

  void Run(const std::string& sql) { storage_->Run(sql); }

 private:
  struct Current {
    int number = 0;
    double start = 0;
  };
  struct State {
    bool used = false;
    int level = 0;
    double litres = 0;
  };
  struct Part {
    int hopper, discharge;
    double fraction;
  };

  template <class... Values>
  sqlite3_stmt* Bound(const char* sql, const Values&... values);
  template <class... Values>
  void Do(const char* sql, const Values&... values);
  template <class... Values>
  double Number(const char* sql, const Values&... values);
  template <class... Values>
  std::vector<Part> Parts(const char* sql, const Values&... values);

  Current CurrentDischarge(int hopper);
  State StateOf(int tank);
  void AskComposition(double litres, sqlite3_stmt* composition, Answer& answer);
  void Reassign(int origin, int origin_discharge, int target, int target_discharge, double share);

  std::unique_ptr<embedded::Storage> storage_;
  std::map<std::string, embedded::StorageStatement> prepared_;
  std::map<const char*, sqlite3_stmt*> own_;  // the texts of this class, by their place
};

}  // namespace ambrelio::bench
