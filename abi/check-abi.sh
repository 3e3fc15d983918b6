#!/bin/sh
# Checks the built library against the recorded binary interface:
#   check-abi.sh symbols <lib> <abi-dir>   exported symbols equal the allowlist
#   check-abi.sh compat  <lib> <abi-dir>   abidiff against the baseline: fails
#                                          on an incompatible change and on
#                                          any change not recorded
#   check-abi.sh update  <lib> <abi-dir> <include-dir>
#                                          records the current interface as
#                                          intended (commit the result)
set -eu
what=$1 lib=$2 abidir=$3 incdir=${4:-}

# One baseline per data model: a 32-bit build (armhf) has another interface
# by nature (pointers of 4 bytes, constructors that return this in the ARM
# EABI), so it is compared with a 32-bit recording.
baseline_of() {
  if readelf -h "$lib" | grep -q 'Class:[[:space:]]*ELF32'; then
    echo "$abidir/libvektkk.ilp32.abi"
  else
    echo "$abidir/libvektkk.abi"
  fi
}

symbols() {
  nm -D --defined-only "$lib" | awk '{print $3}' | LC_ALL=C sort
}

case "$what" in
  symbols)
    if ! symbols | diff -u "$abidir/libvektkk.symbols" -; then
      echo "exported symbols differ from $abidir/libvektkk.symbols" >&2
      exit 1
    fi
    ;;
  compat)
    # A build for another processor of the same data model must have the
    # same interface but for the name of the architecture.
    baseline=$(baseline_of)
    arch=$(abidw --no-show-locs "$lib" | sed -n "1s/.*architecture='\([^']*\)'.*/\1/p")
    if ! head -n 1 "$baseline" | grep -q "architecture='$arch'"; then
      tmp=$(mktemp)
      trap 'rm -f "$tmp"' EXIT
      sed "1s/architecture='[^']*'/architecture='$arch'/" "$baseline" >"$tmp"
      baseline=$tmp
    fi
    rc=0
    abidiff "$baseline" "$lib" || rc=$?
    if [ $((rc & 8)) -ne 0 ]; then
      echo "INCOMPATIBLE change of the binary interface" >&2
      exit 1
    fi
    if [ "$rc" -ne 0 ]; then
      echo "the binary interface changed (abidiff exit $rc); if intended, record it" \
           "with: cmake --build build --target abi-baseline" >&2
      exit 1
    fi
    ;;
  update)
    abidw --headers-dir "$incdir" --drop-private-types --drop-undefined-syms \
      --no-show-locs --no-corpus-path --out-file "$(baseline_of)" "$lib"
    symbols > "$abidir/libvektkk.symbols"
    ;;
  *)
    echo "usage: $0 symbols|compat|update <lib> <abi-dir> [include-dir]" >&2
    exit 2
    ;;
esac
