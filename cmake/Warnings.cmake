# The warnings every target of the project is built with.
add_library(ambrelio_warnings INTERFACE)
target_compile_options(ambrelio_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  -Wold-style-cast -Woverloaded-virtual
  # The interfaces of automation have no destructors.
  $<$<NOT:$<PLATFORM_ID:Windows>>:-Wnon-virtual-dtor>
  # GCC 12 sees overlapping copies in ordinary std::string concatenations when it optimises.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${AMBRELIO_WERROR}>:-Werror>)
