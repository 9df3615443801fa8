// Paths through the object model, as text: `Deposito(3).Nivel(4).Litros`.
//
//   path     = ["Trazabilidad" "."] step {"." step}
//   step     = name ["(" [argument {"," argument}] ")"]
//   argument = number | "text" | #YYYY-MM-DD HH:MM:SS# | True | False | nothing: left out
//
// Numbers have a point as decimal sign; a quote inside text is doubled; blanks may stand between.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/automation/call.h"

namespace ambrelio::automation {

struct PathStep {
  std::string name;
  bool has_arguments = false;  // it is followed by parentheses
  Arguments arguments;
};

// Never empty.
using Path = std::vector<PathStep>;

// A text that is no path. what() names the position.
class PathError : public std::runtime_error {
 public:
  // `position` counts characters from 1.
  PathError(size_t position, const std::string& problem);
  size_t position() const { return position_; }

 private:
  size_t position_;
};

Path ParsePath(std::string_view text);

// The object whose member the last step names, reached from `root` (a Trazabilidad). Raises 91 for
// a step on Nothing, 424 for a step on a value that is no object, and what Call raises.
std::shared_ptr<Object> Owner(const std::shared_ptr<Object>& root, const Path& path);

// Calls (or sets) the member at the end of the path with `arguments`.
CallResult CallPath(const std::shared_ptr<Object>& root, const Path& path, Access access,
                    Arguments arguments);

}  // namespace ambrelio::automation
