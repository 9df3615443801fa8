#include "layouts.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace ambrelio::cli {
namespace {

using Columns = std::vector<ReportColumn>;

constexpr std::string_view kRoot = "Trazabilidad";

struct Layout {
  std::string_view class_name;
  std::string_view member;
  Columns columns;
};

Columns Composition(const ReportColumn& quantity) {
  return {{"clave", "Clave"},
          {"nombre", "Nombre"},
          {"porcentaje", "%", CellForm::kTwoDecimals},
          quantity};
}

// The histories of the whole mill share their first columns; emptyings have more.
Columns History() {
  return {{"momento", "Momento"},
          {"numero", "Número"},
          {"tolva", "Tolva"},
          {"deposito", "Depósito"},
          {"kilos", "Kilos", CellForm::kTwoDecimals},
          {"litros", "Litros", CellForm::kTwoDecimals},
          {"destino", "Destino"}};
}

Columns EmptyingHistory() {
  Columns columns = History();
  columns.insert(columns.end(), {{"lote", "Lote"},
                                 {"uso", "Uso"},
                                 {"cliente", "Cliente"},
                                 {"nombre_cliente", "Nombre del cliente"},
                                 {"transportista", "Transportista"},
                                 {"nombre_transportista", "Nombre del transportista"},
                                 {"destino_venta", "Destino de venta"}});
  return columns;
}

const std::vector<Layout>& Layouts() {
  static const Columns litres = Composition({"litros", "Litros", CellForm::kTwoDecimals});
  static const Columns kilos = Composition({"kilos", "Kilos", CellForm::kTwoDecimals});
  static const std::vector<Layout> layouts = {
      {"Deposito", "Composicion", litres},
      {"Vaciado", "Composicion", litres},
      {"Tolva", "Composicion", kilos},
      {"Descarga", "Composicion", kilos},
      {"Deposito",
       "Historial",
       {{"momento", "Momento"},
        {"tipo", "Tipo", CellForm::kMovement},
        {"deposito_tolva", "Depósito/Tolva"},
        {"numero", "Número"}}},
      {"Deposito",
       "Formula",
       {{"nivel", "Nivel"}, {"a0", "A0"}, {"a1", "A1"}, {"a2", "A2"}, {"a3", "A3"}}},
      {kRoot, "HistoriaDescargas", History()},
      {kRoot, "HistoriaNiveles", History()},
      {kRoot, "HistoriaVaciados", EmptyingHistory()},
      {kRoot, "ListaDestinoVenta", {{"destino_venta", "Destino de venta"}}},
      {kRoot, "ListaReferentes", {{"codigo", "Código"}, {"nombre", "Nombre"}, {"nif", "NIF"}}},
  };
  return layouts;
}

// The columns of `report` at those places.
Report Select(const Report& report, std::initializer_list<size_t> places) {
  Report selected;
  for (const size_t place : places) selected.columns.push_back(report.columns[place]);
  for (const std::vector<Variant>& row : report.rows) {
    std::vector<Variant> values;
    for (const size_t place : places) values.push_back(row[place]);
    selected.rows.push_back(std::move(values));
  }
  return selected;
}

}  // namespace

const Columns& ColumnsOf(std::string_view class_name, std::string_view member) {
  static const Columns none;
  const auto& layouts = Layouts();
  const auto found = std::find_if(layouts.begin(), layouts.end(), [&](const Layout& layout) {
    return layout.class_name == class_name && layout.member == member;
  });
  return found == layouts.end() ? none : found->columns;
}

Report ListReport(std::string_view class_name, std::string_view member, const Variant& list) {
  Report report{ColumnsOf(class_name, member), {}};
  if (!list.is_array()) return report;
  for (const Variant& row : list.array()) {
    report.rows.push_back(row.is_array() ? row.array() : Variant::Array{row});
    while (report.columns.size() < report.rows.back().size()) {
      const std::string number = std::to_string(report.columns.size() + 1);
      report.columns.push_back({number, number});
    }
  }
  for (Variant::Array& row : report.rows) row.resize(report.columns.size());
  return report;
}

Report HistoryReport(std::string_view member, const Variant& list) {
  if (member == "HistoriaDescargas") {
    return Select(ListReport(kRoot, member, list), {0, 1, 2, 3, 4});
  }
  if (member == "HistoriaNiveles") return Select(ListReport(kRoot, member, list), {0, 1, 3, 5});
  return Select(ListReport(kRoot, member, list), {0, 1, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13});
}

}  // namespace ambrelio::cli
