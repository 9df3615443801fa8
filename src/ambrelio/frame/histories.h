// The histories of the whole mill, and the start of a new season. They trap nothing.
#pragma once

#include <cstdint>

#include "ambrelio/data/session.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::frame {

// What a history is limited to. `from` and `to` count only when they hold a date, or text that
// reads as one: from that moment on, and up to the midnight at the end of that day, which is still
// in it. 0 is no limit.
struct HistoryRange {
  Variant from;
  Variant to;
  int16_t hopper = 0;
  int16_t tank = 0;
};

// Rows by time, Empty without any:
//
//   0 moment  1 number  2 hopper  3 tank  4 kilograms  5 litres  6 destination tank
//
// and of emptyings also 7 lot, 8 use, 9 client, 10 its name, 11 carrier, 12 its name, 13 sale
// destination. What a kind does not have is Empty.

// Every discharge in a tank, once for each of its tanks, always with its whole weight.
Variant DischargeHistory(Session& session, const HistoryRange& range);
Variant ReadingHistory(Session& session, const HistoryRange& range);
// Raises 91 for a client or carrier that does not exist any more.
Variant EmptyingHistory(Session& session, const HistoryRange& range);
// The destinations of sales typed so far, each once.
Variant SaleDestinations(Session& session);

// Deletes shares, discharges, emptyings and readings, in no transaction. Emptying details, tanks,
// referents and weighings stay.
void StartSeason(Session& session);

}  // namespace ambrelio::frame
