// A statement that several members send.
#pragma once

namespace ambrelio {

inline constexpr char kSelectLast[] = "select * from Descargas where (Tolva=3) order by Descarga ";

}  // namespace ambrelio
