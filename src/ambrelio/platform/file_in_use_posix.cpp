#include "ambrelio/platform/file_in_use.h"

namespace ambrelio {

bool IsHeldByAnother(const std::string&) { return false; }

}  // namespace ambrelio
