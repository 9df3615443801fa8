// What a gateway of level sensors answers, tank by tank, in lines of JSON:
//
//   {"tank":3,"answer":"12.5"}         text in single-byte characters; "NO": there is no sensor
//   {"tank":3,"bytes":"c3ff00"}        any bytes, in hexadecimal
//   {"tank":3,"silence":true}          no answer
//
// Beside an answer may stand "delay", in milliseconds, and "copies", of the same datagram. The
// lines of a journal are taken too: the level of each Deposito(n).EntradaNivel is an answer of tank
// n, so that a gateway follows a season; other lines of a journal are passed over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "ambrelio/platform/event_loop.h"
#include "json_value.h"

namespace ambrelio::cli {

struct GatewayAnswer {
  std::string bytes;  // of the datagram
  Milliseconds delay{0};
  int32_t copies = 1;  // 0: silence
};

class GatewayScript {
 public:
  void Add(int16_t tank, GatewayAnswer answer);
  // The tank's next answer in the order of their lines, at the end its last again and again; "NO"
  // for a tank without.
  const GatewayAnswer& Next(int16_t tank);

 private:
  struct Tank {
    std::vector<GatewayAnswer> answers;
    size_t given = 0;
  };
  std::map<int16_t, Tank> tanks_;
};

// Raises Failure (wrong input), with the input's name and the number of the line, for a line that
// is neither.
GatewayScript ReadGatewayScript(std::istream& input, const std::string& name);

// The answer as a line of a script.
Json ScriptLine(int16_t tank, const GatewayAnswer& answer);
// The same for people: "12.5 (after 300 ms, 2 copies)".
std::string DescribeAnswer(const GatewayAnswer& answer);

}  // namespace ambrelio::cli
