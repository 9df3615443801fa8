# The warnings every target of the project is built with.
add_library(ambrelio_warnings INTERFACE)
target_compile_options(ambrelio_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual
  # GCC 12 sees overlapping copies in ordinary std::string concatenations when it optimises, and
  # comparisons beyond the end of vectors where a size has 32 bits.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overread>
  $<$<BOOL:${AMBRELIO_WERROR}>:-Werror>)
