#!/bin/sh
# Installs the built project into a fresh prefix, then builds and runs a tiny
# host against it twice: once with find_package(vektkk), once with pkg-config.
# A cross build gives its toolchain file, the command that runs what it
# builds and its linker flags in VEKTKK_TOOLCHAIN, VEKTKK_RUN, VEKTKK_LDFLAGS.
set -eu
cmake=$1 build=$2 hostsrc=$3 work=$4 cxx=$5
run=${VEKTKK_RUN:-}
rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >/dev/null

# vektkk_DIR as well: a cross build looks for packages in its sysroot only.
config=$(dirname "$(find "$work/prefix" -name vektkkConfig.cmake | head -n 1)")
"$cmake" -S "$hostsrc" -B "$work/host-build" -DCMAKE_PREFIX_PATH="$work/prefix" -Dvektkk_DIR="$config" \
  ${VEKTKK_TOOLCHAIN:+--toolchain "$VEKTKK_TOOLCHAIN"} >/dev/null
"$cmake" --build "$work/host-build" >/dev/null
$run "$work/host-build/vektkk_host"

pcdir=$(dirname "$(find "$work/prefix" -name vektkk.pc | head -n 1)")
flags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs vektkk)
# shellcheck disable=SC2086
"$cxx" -std=c++11 -o "$work/vektkk_host_pc" "$hostsrc/main.cpp" $flags ${VEKTKK_LDFLAGS:-}
libdir=$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir vektkk)
LD_LIBRARY_PATH="$libdir" $run "$work/vektkk_host_pc"
