#!/bin/sh
# Installs, with apt, whatever the project needs that is not there yet.
# Idempotent: when everything is present it only checks and returns.
# With --arm, also Debian's cross compilers for 32- and 64-bit ARM, qemu-user,
# and each target's own packages unpacked into a sysroot under .cache/arm/
# (install-arm-sysroot.sh), for `make test-arm`.
set -eu
arm=false
[ "${1:-}" = --arm ] && arm=true

packages="
  g++
  make
  cmake
  pkg-config
  binutils
  locales
  googletest
  libgtest-dev
  libbenchmark-dev
  zlib1g-dev
  libglib2.0-dev
  syslog-ng-core
  syslog-ng-dev
  abigail-tools
  clang
  libclang-rt-14-dev
  libcli11-dev
  nlohmann-json3-dev
  libpugixml-dev
  gdal-bin
  chromium
"
$arm && packages="$packages g++-arm-linux-gnueabihf g++-aarch64-linux-gnu qemu-user"

missing=""
for p in $packages; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  case "$status" in
    "install ok installed") ;;
    *) missing="$missing $p" ;;
  esac
done

sysroots() { if $arm; then "$(dirname "$0")/install-arm-sysroot.sh"; fi; }
[ -z "$missing" ] && { sysroots; exit 0; }

if [ "$(id -u)" -eq 0 ]; then
  as_root=""
elif command -v sudo >/dev/null 2>&1; then
  as_root="sudo"
else
  echo "install-deps: need root (or sudo) to install:$missing" >&2
  exit 1
fi

echo "install-deps: installing$missing"
$as_root apt-get update -q
# shellcheck disable=SC2086
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -q --no-install-recommends $missing
sysroots
