#!/bin/sh
# Installs the built project into a fresh prefix, then builds and runs a tiny
# host against it twice: once with find_package(vektkk), once with pkg-config.
set -eu
cmake=$1 build=$2 hostsrc=$3 work=$4 cxx=$5
rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >/dev/null

"$cmake" -S "$hostsrc" -B "$work/host-build" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
"$cmake" --build "$work/host-build" >/dev/null
"$work/host-build/vektkk_host"

pcdir=$(dirname "$(find "$work/prefix" -name vektkk.pc | head -n 1)")
flags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs vektkk)
# shellcheck disable=SC2086
"$cxx" -std=c++11 -o "$work/vektkk_host_pc" "$hostsrc/main.cpp" $flags
libdir=$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir vektkk)
LD_LIBRARY_PATH="$libdir" "$work/vektkk_host_pc"
