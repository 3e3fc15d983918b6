# Warning set shared by every target of the project. Warnings are errors unless
# VEKTKK_WERROR is switched off (for example when trying a newer compiler).
add_library(vektkk_warnings INTERFACE)
target_compile_options(vektkk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  $<$<BOOL:${VEKTKK_WERROR}>:-Werror>)
