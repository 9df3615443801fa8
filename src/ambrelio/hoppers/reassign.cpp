// The shares of divided weighings stand in splitDescar, one row per weighing and discharge; a
// weighing without rows there belongs wholly to the discharge named in PESADA. The work table
// `split` gathers the rows to be added.
//
// Both tables have a unique key over weighing, hopper and discharge, and statements run without
// fail-on-error: rows that would repeat a key are dropped silently, and the steps count on it.
#include "ambrelio/hoppers/reassign.h"

#include <string>

#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/data/transaction.h"

namespace ambrelio {

using data::PesadaKeyColumns;
using data::PesadaSplitJoin;

namespace {

const char kEmptyWorkTable[] = "delete from split";

const char kScaleOriginShares[] =
    "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
    "select "
    "cooperativa, partida, mediana, codpro, "
    "#DNO as tolva, "
    "#DGA2 as descarga, "
    "fraccion * #QTO as frac "
    "from "
    "splitDescar "
    "where "
    "(tolva=#ORG) and (descarga=#DGA1) ";

const char kRaiseTargetShares[] =
    "update "
    "("
    "select * "
    "from "
    "splitDescar as split1, splitDescar as split2 "
    "where "
    "(split1.cooperativa=split2.cooperativa) and "
    "(split1.partida=split2.partida) and "
    "(split1.mediana=split2.mediana) and "
    "(split1.codpro=split2.codpro) "
    "and "
    "(split1.tolva= #ORG) and (split1.descarga= #DGA1) "
    "and "
    "(split2.tolva= #DNO) and (split2.descarga= #DGA2) "
    ") "
    "set "
    "split2.fraccion= split2.fraccion + split1.fraccion * #QTO ";

const char kReduceOriginShares[] =
    "update "
    "splitDescar "
    "set "
    "fraccion= fraccion - fraccion * #QTO "
    "where "
    "(tolva= #ORG) and (descarga= #DGA1) ";

// One share of every weighing of the origin that had none; `share` is its discharge and size.
std::string DivideWhole(const std::string& share) {
  return "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
         "select " +
         PesadaKeyColumns() + share + "from " + PesadaSplitJoin() +
         "where "
         "(PESADA.TOLVA=#ORG) and (PESADA.DESCARGA=#DGA1) and isnull(splitDescar.tolva) ";
}

const char kAddShares[] =
    "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
    "select * from split ";

std::string MoveWholeWeighings() {
  return "update "
         "("
         "select * "
         "from " +
         PesadaSplitJoin() +
         "where "
         "fraccion>=0.999 "
         ")"
         "set "
         "PESADA.TOLVA=splitDescar.tolva, PESADA.DESCARGA=splitDescar.descarga ";
}

const char kDropWholeAndEmptyShares[] =
    "delete from splitDescar where (fraccion >= 0.999) or (fraccion < 0.001) ";

}  // namespace

bool ReassignDischarge(Session& session, int16_t origin, int32_t origin_discharge, int16_t target,
                       int32_t target_discharge, double quantity) {
  const auto run = [&](const std::string& text) {
    session.Database().Execute(data::FillSplitPlaceholders(text, quantity, origin, origin_discharge,
                                                           target, target_discharge));
  };
  return data::InTransaction(session, [&] {
    run(kEmptyWorkTable);
    run(kScaleOriginShares);
    run(kRaiseTargetShares);
    run(kReduceOriginShares);
    run(DivideWhole("#ORG as tolva, #DGA1 as descarga, (1-#QTO) as fraccion "));
    run(DivideWhole("#DNO as tolva, #DGA2 as descarga, #QTO as fraccion "));
    // The scaled shares whose weighing had a share at the target already, raised above, repeat a
    // key and stay out.
    run(kAddShares);
    run(MoveWholeWeighings());
    run(kDropWholeAndEmptyShares);
    run(kEmptyWorkTable);
    return true;
  });
}

}  // namespace ambrelio
