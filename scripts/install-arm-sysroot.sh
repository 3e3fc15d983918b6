#!/bin/sh
# Unpacks the target's own Debian packages of what the build links and the
# tests load (libevtlog, glib's and zlib's headers, GoogleTest, the C and C++
# runtimes, ...) into a sysroot for each ARM target:
#   CACHE/arm/TRIPLET/sysroot    what the toolchain files and qemu-user use
#   CACHE/arm/TRIPLET/apt        apt's own state for that architecture
# CACHE is $VEKTKK_CACHE or .cache/ in the source tree. apt works there on
# its own lists, so the host's dpkg (and its architectures) is left alone.
# Idempotent: a sysroot that holds the current list is left as it is.
set -eu
cache=${VEKTKK_CACHE:-$(cd "$(dirname "$0")/.." && pwd)/.cache}

# Runtime first (the loader, libc, libstdc++, libevtlog, pugixml), then
# what only the build needs. Taken one by one, without their dependencies:
# the cross compiler brings its own libc and libstdc++ to link against.
packages="
  libc6 libgcc-s1 libstdc++6 zlib1g libpugixml1v5 syslog-ng-core
  syslog-ng-dev libglib2.0-dev libpcre2-dev zlib1g-dev libgtest-dev
  libpugixml-dev libcli11-dev nlohmann-json3-dev
"

sysroot_for() {  # arch triplet
  arch=$1 triplet=$2
  root=$cache/arm/$triplet
  sysroot=$root/sysroot
  want=$(echo $packages)
  if [ -f "$sysroot/.packages" ] && [ "$(cat "$sysroot/.packages")" = "$want" ]; then
    return 0
  fi
  echo "install-deps: unpacking $arch packages into $sysroot"
  apt=$root/apt
  mkdir -p "$apt/etc/apt/sources.list.d" "$apt/etc/apt/preferences.d" \
    "$apt/var/lib/apt/lists/partial" "$apt/var/cache/apt/archives/partial" \
    "$apt/var/lib/dpkg" "$apt/debs"
  : >"$apt/var/lib/dpkg/status"
  cp /etc/apt/sources.list.d/*.sources "$apt/etc/apt/sources.list.d/" 2>/dev/null || true
  [ -f /etc/apt/sources.list ] && cp /etc/apt/sources.list "$apt/etc/apt/"
  set -- -q -o Dir::Etc="$apt/etc/apt" -o Dir::State="$apt/var/lib/apt" \
    -o Dir::State::status="$apt/var/lib/dpkg/status" -o Dir::Cache="$apt/var/cache/apt" \
    -o APT::Architecture="$arch" -o APT::Architectures="$arch" \
    -o Dir::Etc::TrustedParts=/etc/apt/trusted.gpg.d -o APT::Sandbox::User=root
  # An index that fails to load (a mirror in the middle of a sync) leaves
  # that suite out; the download below fails if a package is then missing.
  apt-get "$@" update >/dev/null 2>"$apt/update.log" ||
    echo "install-deps: some $arch indexes did not load (see $apt/update.log)"
  # shellcheck disable=SC2086
  (cd "$apt/debs" && rm -f ./*.deb && apt-get "$@" download $packages >/dev/null)
  rm -rf "$sysroot"
  mkdir -p "$sysroot"
  for deb in "$apt"/debs/*.deb; do dpkg-deb -x "$deb" "$sysroot"; done
  # Links that name an absolute path (libz.so) would lead out of the sysroot.
  find "$sysroot" -type l -lname '/*' | while read -r link; do
    ln -sfn "$sysroot$(readlink "$link")" "$link"
  done
  echo "$want" >"$sysroot/.packages"
}

sysroot_for armhf arm-linux-gnueabihf
sysroot_for arm64 aarch64-linux-gnu
