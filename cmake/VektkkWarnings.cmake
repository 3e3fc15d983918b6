# Warning set shared by every target of the project. Warnings become errors
# with VEKTKK_WERROR, which the project's own builds set; a release built by
# a host or a distribution, perhaps with a newer compiler, only warns.
# -Wcast-align=strict flags a cast to a more aligned type on every
# processor, not only on those where it may fault (32-bit ARM), so that an
# x86 build catches it as well.
add_library(vektkk_warnings INTERFACE)
target_compile_options(vektkk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  -Wcast-align=strict
  $<$<BOOL:${VEKTKK_WERROR}>:-Werror>)
