#!/bin/sh
# Installs all that the build, the tests and the checks need, on Debian 12.
# Usage: scripts/install_packages.sh [windows]   (with what the Windows build needs)
set -eu

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# libopenblas0-pthread: the lens solves ten times as fast as with the reference LAPACK.
# opencv-doc: the photographs of a real chessboard that a test calibrates.
# dpkg-dev, file: packaging finds the dependencies; lowdown: the man page.
# poppler-utils, librsvg2-bin: a test renders the printed chart.
# libjs-three, libjs-chart.js: the pictures of the report page, embedded by the build.
# chromium, chromium-driver, python3-selenium: a test looks at that page.
# locales: a test runs the library in a host with a decimal comma.
packages="
  cmake g++ git ninja-build python3
  libopencv-dev libeigen3-dev libopenblas0-pthread
  libcli11-dev nlohmann-json3-dev
  libcairo2-dev poppler-utils librsvg2-bin
  libjs-three libjs-chart.js
  libgtest-dev libgmock-dev opencv-doc locales
  chromium chromium-driver python3-selenium
  dpkg-dev file lowdown pkgconf
  clang clang-format clang-tidy shellcheck doxygen
"
if [ "${1:-}" = windows ]; then
  packages="$packages
    g++-mingw-w64-x86-64-posix gfortran-mingw-w64-x86-64-posix libz-mingw-w64-dev nasm
    googletest wine wine64
  "
fi

missing=""
for package in $packages; do
  if ! dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed'; then
    missing="$missing $package"
  fi
done
if [ -n "$missing" ]; then
  as_root apt-get update
  # shellcheck disable=SC2086  # one word for each package
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --no-install-recommends $missing
fi

if ! locale -a | grep -qx 'de_DE.utf8'; then
  as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi
