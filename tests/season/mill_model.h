// The mill's arithmetic once more, in plain maps: what every journal line must answer and what
// every table must hold, computed without SQL and without the library.
//
// Moments are texts "YYYY-MM-DD HH:MM:SS", whose order is that of time.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace ambrelio::season {

using Json = nlohmann::ordered_json;
using Moment = std::string;

struct WeighingKey {
  int cooperative, lot, half, product;
  auto operator<=>(const WeighingKey&) const = default;
};

struct Weighing {
  int member = 0, municipality = 0, hopper = 0, discharge = 0;
  std::optional<std::string> place;
  Moment moment;
  double kilos = 0;
};

struct DischargeKey {
  int hopper, number;
  auto operator<=>(const DischargeKey&) const = default;
};

// A discharge's row for one tank.
struct DischargeRowKey {
  int hopper, number, tank;
  DischargeKey discharge() const { return {hopper, number}; }
  auto operator<=>(const DischargeRowKey&) const = default;
};

struct DischargeRow {
  Moment from;
  std::optional<Moment> to;
  int mill = 0;
  std::optional<double> fraction;
};

struct TankItem {
  int tank, number;
  auto operator<=>(const TankItem&) const = default;
};

struct Emptying {
  Moment moment;
  double litres = 0;
  int destination = 0, use = 0;
  std::optional<std::string> lot, sale_destination;
  std::optional<int> client, carrier;
};

struct Share {
  int mill = 0;
  double fraction = 0;
};

struct Reading {
  Moment moment;
  std::optional<int> level;
  double litres = 0;
  std::optional<double> density;
};

class MillModel {
 public:
  MillModel(int hoppers, int intermediate_hoppers, int tanks)
      : hoppers_(hoppers), intermediate_(intermediate_hoppers), tanks_(tanks) {}

  // Names by code, for compositions by class 1 to 3.
  std::map<int, std::string> members, products, municipalities;

  // Carries out a journal line and gives what the line must print.
  Json Play(const Json& line);

  // The rows of a table, each as the array of its columns in the order of Columns(table), by key.
  Json Table(const std::string& table) const;
  static std::string Columns(const std::string& table);
  static const std::vector<std::string>& Tables();

  // Fractions of each discharge that left the mill, for the conservation of oil.
  double LeftTheMill(const DischargeKey& discharge) const;
  // Whether it was opened again while oil of it was elsewhere: from then on its fractions no longer
  // sum to 1.
  bool WasReopenedInPart(const DischargeKey& discharge) const {
    return reopened_in_part_.count(discharge) > 0;
  }

 private:
  struct State {
    std::map<WeighingKey, Weighing> weighings;
    std::map<WeighingKey, std::map<DischargeKey, double>> shares;
    std::map<DischargeRowKey, DischargeRow> discharges;
    std::map<TankItem, Emptying> emptyings;
    std::map<TankItem, std::map<DischargeKey, Share>> snapshots;
    std::map<TankItem, Reading> readings;
    std::map<int, std::vector<std::vector<double>>> capacity;
    std::map<int, std::string> names;
  };

  struct Current {
    int number;
    Moment start;
    int tank;
  };

  // What a tank holds by its records; see the codes of the tank's last movement.
  struct Content {
    int code = 0;
    double litres = 0;
    int level = 0;
    std::optional<Moment> moment;
  };

  // A weighing's part in a discharge.
  struct Piece {
    const Weighing* weighing;
    const WeighingKey* key;
    DischargeKey discharge;
    double kilos;
  };

  Json Store(const Json& weighing);
  Json Call(const std::string& path, Json args);
  Json CallHopper(int hopper, const std::string& member, Json& args);
  Json CallIntermediate(int number, const std::string& member, const Json& args);
  Json CallTank(int tank, const std::string& member, Json& args);
  Json CallEmptying(const TankItem& item, const std::string& member, const Json& args);
  bool Exists(const std::string& object, int number, int inner) const;
  void Let(const std::string& path, const Json& value);

  Current CurrentDischarge(int hopper);
  bool Descargar(int hopper, int tank, int mill, double& share);
  bool RestaurarCarga(int hopper);
  bool Trasegar(int from, int to, double share);
  void Reassign(DischargeKey from, DischargeKey to, double share);
  std::vector<Piece> Pieces() const;
  double Kilos(const DischargeKey& discharge) const;

  double Capacity(int tank, int level) const;
  bool EnterReading(int tank, const std::optional<Moment>& moment, int level, double litres);
  int LastItem(int tank) const;
  Content StateOf(int tank) const;
  void MoveFraction(int source, const DischargeKey& discharge, int tank, double amount);
  void ClearDust();
  int Empty(int tank, int destination, double& litres, const std::optional<Moment>& moment,
            const std::optional<Json>& referents);
  bool UndoEmptying(int tank);
  int LastEmptying(int tank) const;
  Json History(int tank) const;

  Json TankComposition(int tank, int kind) const;
  Json EmptyingComposition(const TankItem& item, int kind) const;
  Json HopperComposition(const DischargeKey& discharge, int kind) const;

  int hoppers_, intermediate_, tanks_;
  State state_;
  std::map<DischargeKey, double> left_;
  std::set<DischargeKey> reopened_in_part_;
  Moment now_;
};

// Whether a printed answer is the expected one: numbers to 1e-9 relative, all else exactly.
bool SameAnswer(const Json& expected, const Json& actual);

}  // namespace ambrelio::season
