# Warning set shared by every target of the project. Warnings become errors
# with VEKTKK_WERROR, which the project's own builds set; a release built by
# a host or a distribution, perhaps with a newer compiler, only warns.
# GCC's -Wcast-align=strict flags a cast to a more aligned type on every
# processor, not only on those where it may fault (32-bit ARM), so that an
# x86 build catches it as well; clang's -Wcast-align always does.
add_library(vektkk_warnings INTERFACE)
target_compile_options(vektkk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  $<IF:$<CXX_COMPILER_ID:GNU>,-Wcast-align=strict,-Wcast-align>
  $<$<BOOL:${VEKTKK_WERROR}>:-Werror>)
