// GlobTraza: the small queries that several classes share. They trap nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::data {

// A hopper's row with the highest discharge number.
struct Discharge {
  int32_t number = 0;
  OleDate start;
  int16_t tank = 0;  // 0 while the discharge is open
};

// Inserts discharge 1 of a hopper, started now, in no tank. False when no row was written.
bool InsertFirstDischarge(Session& session, int16_t hopper);
// The hopper's current discharge; makes discharge 1 for a hopper without any. Nothing when that
// fails or the number is below 1.
std::optional<Discharge> CurrentDischarge(Session& session, int16_t hopper);
// Kilograms of olives in a discharge, re-assigned shares included; 0 without weighings.
double DischargeWeight(Session& session, int16_t hopper, int32_t discharge);

// Fills #QTO, #ORG, #DGA1, #DNO and #DGA2. Discharge numbers pass through 16 bits: above 32767
// they raise 6 (overflow).
std::string FillSplitPlaceholders(std::string sql, double share, int16_t origin,
                                  int32_t origin_discharge, int16_t target,
                                  int32_t target_discharge);

// Names by code, "" when the code does not exist.
std::string MemberName(Session& session, int32_t code);
std::string ProductName(Session& session, int32_t code);
std::string MunicipalityName(Session& session, int32_t code);

}  // namespace ambrelio::data
