// The columns of the lists that members of the object model give.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "report.h"

namespace ambrelio::cli {

// In the order of the values in a row; none for a member whose lists are not known here.
const std::vector<ReportColumn>& ColumnsOf(std::string_view class_name, std::string_view member);

// The list that a member gave, Empty being a list without rows. An element that is no row is a row
// of one value. Values beyond the known columns stand in columns that are numbered from 1.
Report ListReport(std::string_view class_name, std::string_view member, const Variant& list);

// What HistoriaDescargas, HistoriaNiveles or HistoriaVaciados gave, without the columns that only
// the others fill.
Report HistoryReport(std::string_view member, const Variant& list);

}  // namespace ambrelio::cli
