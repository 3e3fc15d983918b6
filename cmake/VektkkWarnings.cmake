# Warning set shared by every target of the project. Warnings become errors
# with VEKTKK_WERROR, which the project's own builds set; a release built by
# a host or a distribution, perhaps with a newer compiler, only warns.
add_library(vektkk_warnings INTERFACE)
target_compile_options(vektkk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  $<$<BOOL:${VEKTKK_WERROR}>:-Werror>)
