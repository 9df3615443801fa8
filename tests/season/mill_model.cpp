#include "season/mill_model.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace ambrelio::season {
namespace {

const Json kEmpty = {{"empty", true}};
// A path led to Nothing and then on.
const Json kNotThere = {{"error", 91}};
const Moment kZeroDate = "1899-12-30 00:00:00";
constexpr double kDust = 0.0001;

// What is left of a number once it has been written with so many decimals.
double Rounded(double value, int decimals) {
  char text[40];
  std::snprintf(text, sizeof text, "%.15g", value);
  const long double unit = std::pow(10.0L, decimals);
  const long double scaled = std::strtold(text, nullptr) * unit;
  // A half that binary digits blur by a hair is still a half.
  return static_cast<double>(std::copysign(std::floor(std::fabs(scaled) + 0.5L + 1e-7L), scaled) /
                             unit);
}

double Rounded8(double value) { return Rounded(value, 8); }

template <class T>
Json OrNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

// "Tolva(2).Descargar" as object, number and member; a root member has no object.
struct Path {
  std::string object;
  int number = 0;
  std::string member;
  int inner = 0;        // of "Deposito(1).Vaciado(3).Composicion"
  std::string further;  // "Composicion" there
};

Path Split(const std::string& text) {
  Path path;
  const size_t dot = text.find('.');
  const std::string head = text.substr(0, dot);
  const size_t bracket = head.find('(');
  path.object = head.substr(0, bracket);
  if (bracket != std::string::npos) path.number = std::stoi(head.substr(bracket + 1));
  std::string rest = text.substr(dot + 1);
  const size_t inner_bracket = rest.find('(');
  if (inner_bracket != std::string::npos) {
    path.inner = std::stoi(rest.substr(inner_bracket + 1));
    path.further = rest.substr(rest.find('.') + 1);
    rest.resize(inner_bracket);
  }
  path.member = rest;
  return path;
}

bool Given(const Json& args, size_t i) { return i < args.size() && !args[i].is_null(); }
double Number(const Json& args, size_t i) { return Given(args, i) ? args[i].get<double>() : 0; }
int Whole(const Json& args, size_t i) { return static_cast<int>(std::nearbyint(Number(args, i))); }
std::optional<Moment> MomentAt(const Json& args, size_t i) {
  if (!Given(args, i)) return std::nullopt;
  return args[i].get<std::string>();
}

std::string WithAcutes(std::string text) {
  for (size_t at; (at = text.find('\'')) != std::string::npos;) text.replace(at, 1, "´");
  return text;
}

// The first `size` characters.
std::string Cut(std::string text, size_t size) {
  size_t characters = 0, end = 0;
  for (; end < text.size(); ++end) {
    const bool starts_character = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
    if (starts_character && ++characters > size) break;
  }
  return text.substr(0, end);
}

// A text as an emptying keeps it; none for "".
std::optional<std::string> StoredText(std::string text, size_t size) {
  if (text.empty()) return std::nullopt;
  text = WithAcutes(text);
  text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
  text.erase(text.find_last_not_of(' ') + 1);
  return Cut(text, size);
}

// A place without case, accents apart: what two spellings of one place have in common.
std::string Folded(std::string text) {
  static const std::vector<std::pair<std::string, std::string>> kCapitals = {
      {"Á", "á"}, {"É", "é"}, {"Í", "í"}, {"Ó", "ó"}, {"Ú", "ú"}, {"Ñ", "ñ"}};
  for (const auto& [upper, lower] : kCapitals) {
    for (size_t at; (at = text.find(upper)) != std::string::npos;) {
      text.replace(at, upper.size(), lower);
    }
  }
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return c < 0x80 ? std::tolower(c) : c; });
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

// Letters first, accents where the letters are equal.
std::pair<std::string, std::string> PlaceOrder(const std::string& folded) {
  static const std::vector<std::pair<std::string, std::string>> kBase = {
      {"á", "a"}, {"é", "e"}, {"í", "i"}, {"ó", "o"}, {"ú", "u"}, {"ñ", "n"}};
  std::string letters = folded;
  for (const auto& [accented, base] : kBase) {
    for (size_t at; (at = letters.find(accented)) != std::string::npos;) {
      letters.replace(at, accented.size(), base);
    }
  }
  return {letters, folded};
}

// Weights gathered by a group's key; Null sorts before everything.
class Groups {
 public:
  void Add(const Json& key, double kilos) {
    const auto order = key.is_null()     ? Order{0, 0, {}}
                       : key.is_string() ? Order{1, 0, PlaceOrder(Folded(key.get<std::string>()))}
                                         : Order{1, key.get<int>(), {}};
    auto [at, fresh] = groups_.try_emplace(order, key, 0.0);
    at->second.second += kilos;
  }

  bool empty() const { return groups_.empty(); }

  // Rows (key, name, percentage, quantity).
  Json Rows(double total, double quantity, const std::map<int, std::string>* names) const {
    Json rows = Json::array();
    for (const auto& [order, group] : groups_) {
      const auto& [key, kilos] = group;
      std::string name;
      if (names != nullptr) {
        const auto found = names->find(key.is_null() ? 0 : key.get<int>());
        if (found != names->end()) name = found->second;
      } else if (key.is_string()) {
        name = key.get<std::string>();
      } else if (!key.is_null()) {
        name = std::to_string(key.get<int>());
      }
      rows.push_back({key, name, kilos / total * 100, kilos / total * quantity});
    }
    return rows;
  }

 private:
  using Order = std::tuple<int, int, std::pair<std::string, std::string>>;
  std::map<Order, std::pair<Json, double>> groups_;
};

Json KeyOf(const WeighingKey& key, const Weighing& weighing, int mill, int kind) {
  switch (kind) {
    case 1:
      return weighing.member;
    case 2:
      return key.product;
    case 3:
      return weighing.municipality;
    case 4:
      return OrNull(weighing.place);
    default:
      return mill;
  }
}

}  // namespace

Json MillModel::Play(const Json& line) {
  if (line.contains("m")) now_ = line["m"].get<std::string>();
  if (line.contains("pesada")) return Store(line["pesada"]);
  if (line.contains("let")) {
    Let(line["let"], line["value"]);
    return {{"result", kEmpty}};
  }
  const Json given = line.value("args", Json::array());
  Json args = given;
  const Path path = Split(line["call"]);
  if (!Exists(path.object, path.number, path.inner)) return kNotThere;
  Json answer;
  if (path.object == "Tolva") {
    answer["result"] = CallHopper(path.number, path.member, args);
  } else if (path.object == "TvaInter") {
    answer["result"] = CallIntermediate(path.number, path.member, args);
  } else if (path.object == "Trazabilidad") {
    answer["result"] = Trasegar(Whole(args, 0), Whole(args, 1), Number(args, 2));
  } else if (path.inner > 0) {
    answer["result"] = CallEmptying({path.number, path.inner}, path.further, args);
  } else {
    answer["result"] = CallTank(path.number, path.member, args);
  }
  if (args != given) answer["args"] = args;
  return answer;
}

bool MillModel::Exists(const std::string& object, int number, int inner) const {
  if (object == "Trazabilidad") return true;
  const int most = object == "Tolva" ? hoppers_ : object == "TvaInter" ? intermediate_ : tanks_;
  if (number < 1 || number > most) return false;
  return inner == 0 || state_.emptyings.count({number, inner}) > 0;
}

Json MillModel::Store(const Json& row) {
  const WeighingKey key{row["COOPERATIVA"], row["PARTIDA"], row["MEDIANA"], row["CODPRO"]};
  Weighing weighing;
  weighing.member = row["CODSOC"];
  weighing.municipality = row["CODMUN"];
  if (!row["PARAJE"].is_null()) weighing.place = row["PARAJE"].get<std::string>();
  weighing.hopper = row["TOLVA"];
  weighing.kilos = row["PARCIALPESO"];
  weighing.moment = now_;
  if (weighing.hopper > 0) weighing.discharge = CurrentDischarge(weighing.hopper).number;
  state_.weighings.emplace(key, weighing);
  return {{"result", true}};
}

Json MillModel::CallHopper(int hopper, const std::string& member, Json& args) {
  if (member == "Descargar") {
    double share = Number(args, 2);
    const bool done = Descargar(hopper, Whole(args, 0), Whole(args, 1), share);
    if (Given(args, 2)) args[2] = share;
    return done;
  }
  if (member == "RestaurarCarga") return RestaurarCarga(hopper);
  const Current current = CurrentDischarge(hopper);
  const DischargeKey discharge{hopper, current.number};
  if (member == "DescargaEnCurso") return current.number;
  if (member == "MomentoInicio") return current.start;
  if (member == "Acumulado") return Kilos(discharge);
  if (member == "Composicion") return HopperComposition(discharge, Whole(args, 0));
  if (member == "Partidas") {
    const auto pieces = Pieces();
    return std::count_if(pieces.begin(), pieces.end(),
                         [&](const Piece& piece) { return piece.discharge == discharge; });
  }
  throw std::logic_error("unknown member " + member);
}

Json MillModel::CallIntermediate(int number, const std::string& member, const Json& args) {
  double kilos = 0;
  int lines = 0;
  for (const auto& [key, weighing] : state_.weighings) {
    if (weighing.hopper != -number) continue;
    kilos += weighing.kilos;
    ++lines;
  }
  if (member == "Partidas") return lines;
  if (member == "Acumulado") return std::nearbyint(kilos);
  const int target = Whole(args, 0);
  if (target < 1 || target > hoppers_) return false;
  const int discharge = CurrentDischarge(target).number;
  for (auto& [key, weighing] : state_.weighings) {
    if (weighing.hopper != -number) continue;
    weighing.hopper = target;
    weighing.discharge = discharge;
  }
  return true;
}

Json MillModel::CallEmptying(const TankItem& item, const std::string& member, const Json& args) {
  const Emptying& emptying = state_.emptyings.at(item);
  if (member == "Composicion") return EmptyingComposition(item, Whole(args, 0));
  if (member == "Litros") return emptying.litres;
  if (member == "Momento") return emptying.moment;
  if (member == "Destino") return emptying.destination;
  if (member == "Uso") return emptying.use;
  if (member == "Lote") return emptying.lot.value_or("");
  if (member == "Cliente") return emptying.use < 2 ? 0 : emptying.client.value_or(0);
  if (member == "DestinoVenta")
    return emptying.use < 2 ? "" : emptying.sale_destination.value_or("");
  throw std::logic_error("unknown member " + member);
}

Json MillModel::CallTank(int tank, const std::string& member, Json& args) {
  if (member == "EntradaNivel") {
    return EnterReading(tank, MomentAt(args, 0), Whole(args, 1), Number(args, 2));
  }
  if (member == "EntradaDensidad") {
    const int item = Whole(args, 1) == 0 ? LastItem(tank) : Whole(args, 1);
    const auto found = state_.readings.find({tank, item});
    if (found == state_.readings.end()) return false;
    found->second.density = Rounded8(Number(args, 0));
    return true;
  }
  if (member == "EliminarUltimoNivel") return state_.readings.erase({tank, LastItem(tank)}) > 0;
  if (member == "NuevoVaciado") {
    double litres = Number(args, 1);
    std::optional<Json> referents;
    if (Given(args, 3)) referents = args[3];
    const int number = Empty(tank, Whole(args, 0), litres, MomentAt(args, 2), referents);
    args[1] = litres;
    return number;
  }
  if (member == "DeshacerVaciado") return UndoEmptying(tank);
  if (member == "UltimoVaciado") return LastEmptying(tank);
  if (member == "Historial") return History(tank);
  if (member == "Composicion") return TankComposition(tank, Whole(args, 0));
  if (member == "Capacidad") return Capacity(tank, Whole(args, 0));
  if (member == "Nombre") return state_.names.count(tank) > 0 ? state_.names.at(tank) : "";
  const Content content = StateOf(tank);
  if (member == "LitrosActual") return content.code == 0 ? Json(nullptr) : Json(content.litres);
  if (member == "NivelActual") {
    return content.code == 0 || content.level == 0 ? Json(nullptr) : Json(content.level);
  }
  if (member == "KilosActual") {
    double kilos = 0;
    for (const Piece& piece : Pieces()) {
      const auto row =
          state_.discharges.find({piece.discharge.hopper, piece.discharge.number, tank});
      if (row != state_.discharges.end()) kilos += piece.kilos * row->second.fraction.value_or(0);
    }
    return kilos;
  }
  throw std::logic_error("unknown member " + member);
}

void MillModel::Let(const std::string& text, const Json& value) {
  const Path path = Split(text);
  if (path.member == "Nombre") {
    const std::string name = value;
    if (name.empty()) {
      state_.names.erase(path.number);
    } else {
      state_.names[path.number] = Cut(WithAcutes(name), 40);
    }
  } else if (path.member == "Formula") {
    auto& bands = state_.capacity[path.number];
    bands.clear();
    for (const Json& row : value) {
      std::vector<double> band(5, 0.0);
      for (size_t i = 0; i < row.size(); ++i) {
        band[i] = i == 0 ? row[i].get<double>() : Rounded8(row[i].get<double>());
      }
      bands.push_back(band);
    }
    std::sort(bands.begin(), bands.end());
  } else {
    throw std::logic_error("unknown property " + text);
  }
}

// --- hoppers

MillModel::Current MillModel::CurrentDischarge(int hopper) {
  auto after = state_.discharges.lower_bound({hopper + 1, 0, 0});
  const bool none = after == state_.discharges.begin() || std::prev(after)->first.hopper != hopper;
  if (none) {
    after = std::next(state_.discharges.insert({{hopper, 1, 0}, {now_, {}, 0, {}}}).first);
  }
  const auto& [key, row] = *std::prev(after);
  return {key.number, row.from, key.tank};
}

bool MillModel::Descargar(int hopper, int tank, int mill, double& share) {
  if (!(share >= 0)) return false;
  if (share == 0 || share > 1) share = 1;
  const State before = state_;
  const Current current = CurrentDischarge(hopper);
  if (current.tank >= 1) {
    state_ = before;
    return false;
  }
  auto open = state_.discharges.extract({hopper, current.number, 0});
  open.key().tank = tank;
  open.mapped().to = now_;
  open.mapped().mill = mill;
  open.mapped().fraction = 1;
  state_.discharges.insert(std::move(open));
  state_.discharges[{hopper, current.number + 1, 0}] = {now_, {}, 0, {}};
  if (share < 1) Reassign({hopper, current.number}, {hopper, current.number + 1}, 1 - share);
  return true;
}

bool MillModel::RestaurarCarga(int hopper) {
  const State before = state_;
  const Current last = CurrentDischarge(hopper);
  std::erase_if(state_.discharges, [&](const auto& entry) {
    return entry.first.discharge() == DischargeKey{hopper, last.number};
  });
  const Current reopened = CurrentDischarge(hopper);
  for (const auto& [item, emptying] : state_.emptyings) {
    if (item.tank == reopened.tank && emptying.moment > last.start) {
      state_ = before;
      return false;
    }
  }
  // Of several rows only the first fits on tank 0.
  const auto first = state_.discharges.lower_bound({hopper, reopened.number, -40000});
  const bool spread = std::next(first) != state_.discharges.end() &&
                      std::next(first)->first.discharge() == first->first.discharge();
  if (spread || LeftTheMill(first->first.discharge()) > 0) {
    reopened_in_part_.insert(first->first.discharge());
  }
  auto row = state_.discharges.extract(first);
  row.key().tank = 0;
  row.mapped().to.reset();
  row.mapped().mill = 0;
  row.mapped().fraction.reset();
  state_.discharges.insert(std::move(row));
  Reassign({hopper, last.number}, {hopper, reopened.number}, 1);
  return true;
}

bool MillModel::Trasegar(int from, int to, double share) {
  const auto known = [&](int hopper) { return hopper >= 1 && hopper <= hoppers_; };
  if (!(share >= 0) || from == to || !known(from) || !known(to)) return false;
  const int origin = CurrentDischarge(from).number;
  const int target = CurrentDischarge(to).number;
  if (share == 0 || share > 1) share = 1;
  Reassign({from, origin}, {to, target}, share);
  return true;
}

void MillModel::Reassign(DischargeKey from, DischargeKey to, double share) {
  share = Rounded8(share);
  for (auto& [key, weighing] : state_.weighings) {
    auto found = state_.shares.find(key);
    if (found == state_.shares.end()) {
      if (weighing.hopper != from.hopper || weighing.discharge != from.number) continue;
      auto& fresh = state_.shares[key];
      fresh.emplace(from, 1 - share);
      fresh.emplace(to, share);
      continue;
    }
    auto& parts = found->second;
    const auto origin = parts.find(from);
    if (origin == parts.end()) continue;
    const double moved = origin->second * share;
    const auto [target, fresh] = parts.emplace(to, moved);
    if (!fresh) target->second += moved;
    origin->second -= origin->second * share;
  }
  // Whole shares go back into the weighing itself, rests are dropped.
  for (auto entry = state_.shares.begin(); entry != state_.shares.end();) {
    auto& [key, parts] = *entry;
    for (const auto& [discharge, fraction] : parts) {
      if (fraction < 0.999) continue;
      state_.weighings[key].hopper = discharge.hopper;
      state_.weighings[key].discharge = discharge.number;
    }
    std::erase_if(parts,
                  [](const auto& part) { return part.second >= 0.999 || part.second < 0.001; });
    entry = parts.empty() ? state_.shares.erase(entry) : std::next(entry);
  }
}

std::vector<MillModel::Piece> MillModel::Pieces() const {
  std::vector<Piece> pieces;
  for (const auto& [key, weighing] : state_.weighings) {
    const auto shares = state_.shares.find(key);
    if (shares == state_.shares.end()) {
      pieces.push_back({&weighing, &key, {weighing.hopper, weighing.discharge}, weighing.kilos});
      continue;
    }
    for (const auto& [discharge, fraction] : shares->second) {
      pieces.push_back({&weighing, &key, discharge, weighing.kilos * fraction});
    }
  }
  return pieces;
}

double MillModel::Kilos(const DischargeKey& discharge) const {
  double kilos = 0;
  for (const Piece& piece : Pieces()) {
    if (piece.discharge == discharge) kilos += piece.kilos;
  }
  return kilos;
}

// --- tanks

double MillModel::Capacity(int tank, int level) const {
  const auto bands = state_.capacity.find(tank);
  if (bands == state_.capacity.end()) return 0;
  for (const auto& band : bands->second) {
    if (10 * band[0] < level) continue;
    const double x = level / 10.0;
    return band[1] + x * (band[2] + x * (band[3] + x * band[4]));
  }
  return 0;
}

int MillModel::LastItem(int tank) const {
  int last = 0;
  for (const auto& [item, reading] : state_.readings) {
    if (item.tank == tank) last = std::max(last, item.number);
  }
  return last;
}

bool MillModel::EnterReading(int tank, const std::optional<Moment>& moment, int level,
                             double litres) {
  if (!(litres > 0)) {
    if (level < 0) return false;
    litres = Capacity(tank, level);
    if (litres < 0) return false;
  }
  const bool received =
      std::any_of(state_.discharges.begin(), state_.discharges.end(),
                  [&](const auto& entry) { return entry.first.tank == tank; }) ||
      std::any_of(state_.emptyings.begin(), state_.emptyings.end(),
                  [&](const auto& entry) { return entry.second.destination == tank; });
  if (!received) return false;
  Reading reading{moment.value_or(now_), {}, Rounded(litres, 2), {}};
  if (level > 0) reading.level = level;
  state_.readings[{tank, LastItem(tank) + 1}] = reading;
  return true;
}

MillModel::Content MillModel::StateOf(int tank) const {
  std::optional<Moment> discharged, received, moved;
  for (const auto& [key, row] : state_.discharges) {
    if (key.tank == tank) discharged = std::max(discharged, row.to);
  }
  for (const auto& [item, emptying] : state_.emptyings) {
    if (emptying.destination == tank) received = std::max(received, std::optional(emptying.moment));
    if (emptying.destination == tank || item.tank == tank) {
      moved = std::max(moved, std::optional(emptying.moment));
    }
  }
  Content content;
  if (!discharged && !received) return content;
  content.code = discharged && (!received || *received <= *discharged) ? 1 : 2;
  content.moment = content.code == 1 ? discharged : received;

  const Reading* last = nullptr;
  for (const auto& [item, reading] : state_.readings) {
    if (item.tank == tank && (last == nullptr || reading.moment >= last->moment)) last = &reading;
  }
  if (last == nullptr || (content.code == 1 && last->moment < *discharged)) return content;

  content.code = 3;
  content.litres = last->litres;
  content.level = last->level.value_or(0);
  content.moment = moved && *moved > last->moment ? *moved : last->moment;
  for (const bool out : {true, false}) {
    for (const auto& [item, emptying] : state_.emptyings) {
      const int touched = out ? item.tank : emptying.destination;
      if (touched != tank || emptying.moment <= last->moment) continue;
      content.litres += out ? -emptying.litres : emptying.litres;
      content.level = 0;
      content.code = 2;
    }
  }
  return content;
}

void MillModel::ClearDust() {
  for (auto& [key, row] : state_.discharges) {
    if (row.fraction && *row.fraction < kDust) row.fraction = 0;
  }
}

void MillModel::MoveFraction(int source, const DischargeKey& discharge, int tank, double amount) {
  const auto row = state_.discharges.find({discharge.hopper, discharge.number, tank});
  if (row != state_.discharges.end()) {
    if (row->second.fraction) *row->second.fraction += Rounded8(amount);
    ClearDust();
    return;
  }
  const auto origin = state_.discharges.find({discharge.hopper, discharge.number, source});
  if (origin == state_.discharges.end()) return;
  DischargeRow copy = origin->second;
  copy.mill = 0;
  copy.fraction = Rounded8(amount);
  state_.discharges[{discharge.hopper, discharge.number, tank}] = copy;
}

int MillModel::Empty(int tank, int destination, double& litres, const std::optional<Moment>& moment,
                     const std::optional<Json>& referents) {
  if (destination < 0 || destination > tanks_) return 0;
  if (!referents && destination == 0) return 0;
  const Content content = StateOf(tank);
  if (content.code == 0 || content.litres == 0) return 0;
  if (litres > content.litres) litres = content.litres;
  if (litres == 0) return 0;
  if (moment && *moment <= *content.moment) return 0;
  const double part = litres / content.litres;

  const State before = state_;
  int number = 1;
  for (const auto& [item, emptying] : state_.emptyings) {
    if (item.tank == tank) number = std::max(number, item.number + 1);
  }
  Emptying emptying{moment.value_or(now_), Rounded8(litres), destination, 0, {}, {}, {}, {}};
  if (referents) {
    emptying.use = (*referents)[0];
    emptying.lot = StoredText((*referents)[1], 20);
    if (emptying.use == 2) {
      emptying.client = (*referents)[2];
      emptying.carrier = (*referents)[3];
      emptying.sale_destination = StoredText((*referents)[4], 50);
    }
  }
  state_.emptyings[{tank, number}] = emptying;

  std::vector<DischargeKey> held;
  auto& snapshot = state_.snapshots[{tank, number}];
  for (const auto& [key, row] : state_.discharges) {
    if (key.tank != tank) continue;
    held.push_back(key.discharge());
    if (row.fraction.value_or(0) > 0) snapshot[key.discharge()] = {row.mill, *row.fraction};
  }
  if (snapshot.empty()) {
    state_ = before;
    return 0;
  }
  for (const DischargeKey& discharge : held) {
    const double fraction =
        state_.discharges[{discharge.hopper, discharge.number, tank}].fraction.value_or(0);
    if (!(fraction > 0)) continue;
    MoveFraction(tank, discharge, tank, -fraction * part);
    if (destination > 0) {
      MoveFraction(tank, discharge, destination, fraction * part);
    } else {
      left_[discharge] += fraction * part;
    }
  }
  return number;
}

int MillModel::LastEmptying(int tank) const {
  int last = 0;
  Moment latest;
  for (const auto& [item, emptying] : state_.emptyings) {
    if (item.tank == tank && emptying.moment >= latest) {
      last = item.number;
      latest = emptying.moment;
    }
  }
  return last;
}

bool MillModel::UndoEmptying(int tank) {
  const int number = LastEmptying(tank);
  if (number == 0) return false;
  const Emptying emptying = state_.emptyings[{tank, number}];

  std::optional<std::pair<Moment, int>> latest;
  for (const auto& [key, row] : state_.discharges) {
    if (key.tank == tank) latest = std::max(latest, {{row.to.value_or(""), key.hopper}});
  }
  if (latest && CurrentDischarge(latest->second).start > emptying.moment) return false;

  const State before = state_;
  std::erase_if(state_.readings, [&](const auto& entry) {
    return entry.first.tank == tank && entry.second.moment > emptying.moment;
  });
  const auto snapshot = state_.snapshots[{tank, number}];
  const auto left_before = left_;
  for (const auto& [discharge, share] : snapshot) {
    const auto row = state_.discharges.find({discharge.hopper, discharge.number, tank});
    const bool there = row != state_.discharges.end();
    const double held = there ? row->second.fraction.value_or(0) : 0;
    if (emptying.destination > 0) {
      MoveFraction(tank, discharge, emptying.destination, held - share.fraction);
    } else {
      left_[discharge] += held - share.fraction;
    }
    if (!there) {
      state_ = before;
      left_ = left_before;
      return false;
    }
    state_.discharges[{discharge.hopper, discharge.number, tank}].fraction =
        Rounded8(share.fraction);
  }
  if (state_.snapshots.erase({tank, number}) == 0 || snapshot.empty()) {
    state_ = before;
    left_ = left_before;
    return false;
  }
  state_.emptyings.erase({tank, number});
  return true;
}

double MillModel::LeftTheMill(const DischargeKey& discharge) const {
  const auto found = left_.find(discharge);
  return found == left_.end() ? 0 : found->second;
}

Json MillModel::History(int tank) const {
  std::set<std::tuple<Moment, int, int, int>> events;  // an open discharge has the moment ""
  for (const auto& [key, row] : state_.discharges) {
    if (key.tank == tank) events.insert({row.to.value_or(""), 1, key.hopper, key.number});
  }
  for (const auto& [item, emptying] : state_.emptyings) {
    if (item.tank == tank || emptying.destination == tank) {
      events.insert({emptying.moment, 2, item.tank, item.number});
    }
  }
  for (const auto& [item, reading] : state_.readings) {
    if (item.tank == tank) events.insert({reading.moment, 3, item.tank, item.number});
  }
  if (events.empty()) return kEmpty;
  Json rows = Json::array();
  for (const auto& [moment, kind, number, code] : events) {
    rows.push_back({moment.empty() ? Json(nullptr) : Json(moment), kind, number, code});
  }
  return rows;
}

// --- composition

namespace {

const std::map<int, std::string>* NamesOf(const MillModel& model, int kind) {
  if (kind == 1) return &model.members;
  if (kind == 2) return &model.products;
  if (kind == 3) return &model.municipalities;
  return nullptr;
}

}  // namespace

Json MillModel::TankComposition(int tank, int kind) const {
  const Content content = StateOf(tank);
  if (content.code == 0 || content.litres == 0 || kind < 1 || kind > 5) return kEmpty;
  Groups groups;
  double total = 0;
  for (const Piece& piece : Pieces()) {
    const auto row = state_.discharges.find({piece.discharge.hopper, piece.discharge.number, tank});
    if (row == state_.discharges.end() || !row->second.fraction) continue;
    const double kilos = piece.kilos * *row->second.fraction;
    total += kilos;
    if (*row->second.fraction > 0) {
      groups.Add(KeyOf(*piece.key, *piece.weighing, row->second.mill, kind), kilos);
    }
  }
  if (total == 0 || groups.empty()) return kEmpty;
  return groups.Rows(total, content.litres, NamesOf(*this, kind));
}

Json MillModel::EmptyingComposition(const TankItem& item, int kind) const {
  if (kind < 1 || kind > 5) return kEmpty;
  Groups groups;
  double total = 0;
  const auto snapshot = state_.snapshots.find(item);
  if (snapshot == state_.snapshots.end()) return kEmpty;
  for (const Piece& piece : Pieces()) {
    const auto share = snapshot->second.find(piece.discharge);
    if (share == snapshot->second.end()) continue;
    const double kilos = piece.kilos * share->second.fraction;
    total += kilos;
    groups.Add(KeyOf(*piece.key, *piece.weighing, share->second.mill, kind), kilos);
  }
  if (state_.emptyings.at(item).litres == 0 || total == 0) return kEmpty;
  return groups.Rows(total, state_.emptyings.at(item).litres, NamesOf(*this, kind));
}

Json MillModel::HopperComposition(const DischargeKey& discharge, int kind) const {
  if (kind < 1 || kind > 4) return kEmpty;
  Groups groups;
  double total = 0;
  for (const Piece& piece : Pieces()) {
    if (piece.discharge != discharge) continue;
    total += piece.kilos;
    groups.Add(KeyOf(*piece.key, *piece.weighing, 0, kind), piece.kilos);
  }
  if (groups.empty()) return kEmpty;
  return groups.Rows(total, total, NamesOf(*this, kind));
}

// --- tables

const std::vector<std::string>& MillModel::Tables() {
  static const std::vector<std::string> kTables = {"PESADA",    "splitDescar", "split",
                                                   "Descargas", "Vaciados",    "detVaciados",
                                                   "Niveles",   "Depositos",   "Capacidad"};
  return kTables;
}

std::string MillModel::Columns(const std::string& table) {
  static const std::map<std::string, std::string> kColumns = {
      {"PESADA",
       "COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, H_INICIO, TOLVA, DESCARGA, "
       "PARCIALPESO"},
      {"splitDescar", "cooperativa, partida, mediana, codpro, tolva, descarga, fraccion"},
      {"split", "cooperativa, partida, mediana, codpro, tolva, descarga, fraccion"},
      {"Descargas", "Tolva, Descarga, Deposito, MomentoDesde, MomentoHasta, Molino, Fraccion"},
      {"Vaciados",
       "Deposito, Vaciado, mmto, Cantidad, Destino, Uso, Lote, Cliente, Transportista, "
       "DestinoVenta"},
      {"detVaciados", "Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion"},
      {"Niveles", "Deposito, Item, Momento, Nivel, Litros, Densidad, Alerta"},
      {"Depositos", "Codigo, Nombre"},
      {"Capacidad", "Deposito, Nivel, A0, A1, A2, A3"}};
  return kColumns.at(table);
}

Json MillModel::Table(const std::string& table) const {
  Json rows = Json::array();
  if (table == "PESADA") {
    for (const auto& [key, w] : state_.weighings) {
      rows.push_back({key.cooperative, key.lot, key.half, key.product, w.member, w.municipality,
                      OrNull(w.place), w.moment, w.hopper, w.discharge, w.kilos});
    }
  } else if (table == "splitDescar") {
    for (const auto& [key, parts] : state_.shares) {
      for (const auto& [discharge, fraction] : parts) {
        rows.push_back({key.cooperative, key.lot, key.half, key.product, discharge.hopper,
                        discharge.number, fraction});
      }
    }
  } else if (table == "Descargas") {
    for (const auto& [key, row] : state_.discharges) {
      rows.push_back({key.hopper, key.number, key.tank, row.from, OrNull(row.to), row.mill,
                      OrNull(row.fraction)});
    }
  } else if (table == "Vaciados") {
    for (const auto& [item, e] : state_.emptyings) {
      rows.push_back({item.tank, item.number, e.moment, e.litres, e.destination, e.use,
                      OrNull(e.lot), OrNull(e.client), OrNull(e.carrier),
                      OrNull(e.sale_destination)});
    }
  } else if (table == "detVaciados") {
    for (const auto& [item, snapshot] : state_.snapshots) {
      for (const auto& [discharge, share] : snapshot) {
        rows.push_back({item.tank, item.number, discharge.hopper, discharge.number, share.mill,
                        share.fraction});
      }
    }
  } else if (table == "Niveles") {
    for (const auto& [item, r] : state_.readings) {
      rows.push_back(
          {item.tank, item.number, r.moment, OrNull(r.level), r.litres, OrNull(r.density), false});
    }
  } else if (table == "Depositos") {
    for (const auto& [tank, name] : state_.names) rows.push_back({tank, name});
  } else if (table == "Capacidad") {
    for (const auto& [tank, bands] : state_.capacity) {
      for (const auto& b : bands) rows.push_back({tank, b[0], b[1], b[2], b[3], b[4]});
    }
  }
  return rows;
}

bool SameAnswer(const Json& expected, const Json& actual) {
  if (expected.is_number() && actual.is_number()) {
    const double a = expected.get<double>(), b = actual.get<double>();
    return std::fabs(a - b) <= 1e-9 * std::max({std::fabs(a), std::fabs(b), 1e-3});
  }
  if (expected.is_array() && actual.is_array()) {
    return std::equal(expected.begin(), expected.end(), actual.begin(), actual.end(), SameAnswer);
  }
  if (expected.is_object() && actual.is_object()) {
    if (expected.size() != actual.size()) return false;
    return std::all_of(expected.items().begin(), expected.items().end(), [&](const auto& item) {
      return actual.contains(item.key()) && SameAnswer(item.value(), actual[item.key()]);
    });
  }
  return expected == actual;
}

}  // namespace ambrelio::season
