#include "ambrelio/tanks/vaciado.h"

#include "ambrelio/composition/composition.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/history.h"
#include "ambrelio/tanks/lists.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using kestro::Tools;

constexpr int16_t kSale = 2;

std::optional<tanks::Neighbours> FindIn(const Variant& history, int16_t tank, int32_t number) {
  if (history.is_array()) tanks::RequireCountable(history.array());
  return tanks::FindNeighbours(history, tanks::kEmptying, tank, number);
}

}  // namespace

Vaciado::Vaciado(Session& session, int16_t tank, int32_t number)
    : session_(session),
      tank_(tank),
      number_(number),
      history_(tanks::ReadHistory(session, tank)) {}

int16_t Vaciado::Uso() { return Load() ? use_ : int16_t{0}; }

int32_t Vaciado::Cliente() { return Load() && use_ >= kSale ? client_ : 0; }

int32_t Vaciado::Transportista() { return Load() && use_ >= kSale ? carrier_ : 0; }

std::string Vaciado::DestinoVenta() { return Load() && use_ >= kSale ? sale_destination_ : ""; }

bool Vaciado::FijarUso(int16_t u, int32_t cli, int32_t trp, const std::string& dno) {
  if (u < 0 || u > kSale) return false;
  std::string referents;
  if (u == kSale) {
    // Only zero counts as missing.
    if (trp == 0 || cli == 0) return false;
    referents = "Cliente=" + Tools::LongText(cli) + ", Transportista=" + Tools::LongText(trp) +
                ", DestinoVenta=" + data::SqlText(dno) + " ";
  } else {
    if (cli >= 1 || trp >= 1) return false;
    referents = "Cliente=Null, Transportista=Null, DestinoVenta=Null ";
  }
  if (data::Execute(session_, "update Vaciados set Uso=" + Tools::IntegerText(u) + ", " +
                                  referents + Where()) <= 0) {
    return false;
  }
  // The row counts as read from here on, even when the lot never was.
  loaded_ = true;
  use_ = u;
  client_ = cli;
  carrier_ = trp;
  sale_destination_ = dno;
  return true;
}

std::string Vaciado::Lote() { return Load() ? lot_ : ""; }

void Vaciado::SetLote(const std::string& lot) {
  if (data::Execute(session_, "update Vaciados set Lote=" + data::SqlText(lot) + " " + Where()) >
      0) {
    lot_ = lot;
  }
}

double Vaciado::Litros() {
  const auto row = session_.Database().OpenRecordset("select Cantidad from Vaciados " + Where());
  return ToDouble(Tools::ValueOrZero(row->Value(0)));
}

OleDate Vaciado::Momento() {
  const auto moment = data::FirstValue(session_, "select mmto from Vaciados " + Where());
  return moment ? ToDate(Tools::ValueOrZero(*moment)) : OleDate();
}

void Vaciado::SetMomento(OleDate moment) {
  Variant before;
  Variant after;
  if (!GetCotasMomento(before, after) || !tanks::FitsBetween(moment, before, after)) return;
  session_.Database().Execute("update Vaciados set mmto=" + data::SqlDate(moment) + " " + Where());
}

bool Vaciado::GetCotasMomento(Variant& mmt1, Variant& mmt2) {
  mmt1 = Variant::Null();
  mmt2 = Variant::Null();
  const auto here = FindIn(history_, tank_, number_);
  if (!here) return false;
  mmt1 = here->before;
  mmt2 = here->after;
  const int16_t destination = Destino();
  if (destination <= 0) return true;

  const auto there = FindIn(tanks::ReadHistory(session_, destination), tank_, number_);
  if (!there) return false;
  // A bound that the emptied tank does not set is not set by the receiving one either.
  if (tanks::IsLater(there->before, mmt1)) mmt1 = there->before;
  if (tanks::IsLater(mmt2, there->after)) mmt2 = there->after;
  return true;
}

int16_t Vaciado::Destino() {
  const auto tank = data::FirstValue(session_, "select Destino from Vaciados " + Where());
  return tank ? Tools::ValueAsInteger(*tank) : int16_t{0};
}

Variant Vaciado::Composicion(int16_t clase) {
  const double litres = Litros();
  const double total = Kilos();
  return composition::Weighted(session_, clase, litres, total, "detVaciados ",
                               "(Deposito=" + Tools::IntegerText(tank_) + ") and (Vaciado=" +
                                   Tools::LongText(number_) + ") and (Fraccion>0)");
}

bool Vaciado::Load() {
  if (loaded_) return true;
  const auto row = session_.Database().OpenRecordset(
      "select Uso, Cliente, Transportista, DestinoVenta, Lote from Vaciados " + Where());
  if (row->AtEnd()) return false;
  use_ = Tools::ValueAsInteger(row->Value("Uso"));
  client_ = ToLong(Tools::ValueOrZero(row->Value("Cliente")));
  carrier_ = ToLong(Tools::ValueOrZero(row->Value("Transportista")));
  sale_destination_ = Tools::ValueAsText(row->Value("DestinoVenta"));
  lot_ = Tools::ValueAsText(row->Value("Lote"));
  loaded_ = true;
  return true;
}

std::string Vaciado::Where() const {
  return "where (Deposito=" + Tools::IntegerText(tank_) +
         ") and (Vaciado=" + Tools::LongText(number_) + ") ";
}

double Vaciado::Kilos() {
  return ToDouble(Tools::ValueOrZero(data::Aggregate(
      session_,
      "select sum(PARCIALPESO*Fraccion) as pes "
      "from ExtPesada left join detVaciados "
      "on (ExtPesada.tolva=DetVaciados.Tolva) and (ExtPesada.descarga=detVaciados.Descarga) "
      "where (Deposito=" +
          Tools::IntegerText(tank_) + ") and (Vaciado=" + Tools::LongText(number_) + ") ")));
}

}  // namespace ambrelio
