# The warnings every target of the project is built with.
add_library(ambrelio_warnings INTERFACE)
target_compile_options(ambrelio_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wnull-dereference
  $<$<BOOL:${AMBRELIO_WERROR}>:-Werror>)
