#!/bin/sh
# Installs the Debian 12 packages that the parts of the project need.
# Usage: scripts/install_packages.sh [PART...]   (default: all but the last three)
#   build         the library
#   host          the program
#   tests         the tests and the packaging
#   lint          the checks of format and code
#   docs          the API reference
#   python        the scripts that draw and measure
#   windows       the Windows DLL; needs build and host as well
#   release       scripts/release.sh; needs build, host and windows as well
#   newer-opencv  scripts/newer_opencv.sh; needs build, host and tests as well
set -eu

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

packages_of() {
  case "$1" in
    # libopenblas0-serial: the lens solves ten times as fast as with the reference LAPACK. Unlike
    # OpenBLAS with threads, it keeps that speed beside busy programs. It has no locks, so the tests
    # show that the library needs none.
    build) echo cmake g++ git ninja-build libopencv-dev libeigen3-dev libopenblas0-serial ;;
    host)
      echo libcli11-dev nlohmann-json3-dev libboost-dev libtomlplusplus-dev libkainjow-mustache-dev
      echo libcairo2-dev pkgconf lowdown libjs-three libjs-chart.js zlib1g-dev
      ;;
    # opencv-doc: photographs of a real chessboard that a test calibrates.
    # dpkg-dev, file: packaging finds the dependencies. poppler-utils, librsvg2-bin: a test renders
    # the printed chart. chromium, python3-selenium: a test opens the report in a browser.
    # locales: a test runs the library in a program with a decimal comma.
    tests)
      echo python3 libgtest-dev libgmock-dev opencv-doc dpkg-dev file lowdown pkgconf
      echo poppler-utils librsvg2-bin chromium chromium-driver python3-selenium locales gcovr
      # Sanitizers and fuzzers.
      echo clang libclang-rt-14-dev
      # The Python package and its wheel; a C# program and a C# recorder.
      echo python3-numpy python3-matplotlib python3-pytest python3-build python3-hatchling mypy
      echo mono-mcs mono-runtime
      # The programs for which lens files are written, and their schema; a compiler of shaders.
      echo camera-calibration-parsers-tools colmap python3-openimageio python3-opencv
      echo python3-jsonschema python3-yaml glslang-tools
      # Cuts a film into frames, as the documentation shows.
      echo ffmpeg
      ;;
    lint) echo clang clang-format clang-tidy shellcheck git ;;
    docs) echo doxygen lowdown ;;
    python) echo python3 python3-matplotlib ;;
    release)
      echo dpkg-dev file lowdown python3-build python3-hatchling python3-venv python3-numpy
      ;;
    newer-opencv)
      echo dpkg-dev libjpeg-dev libpng-dev libtiff-dev libwebp-dev libopenblas-serial-dev liblapacke-dev
      ;;
    windows)
      echo g++-mingw-w64-x86-64-posix gfortran-mingw-w64-x86-64-posix libz-mingw-w64-dev nasm
      # lld, llvm: a test links the C library into a program by another compiler.
      echo dpkg-dev python3 googletest wine wine64 clang lld llvm
      ;;
    *)
      echo "scripts/install_packages.sh: there is no part $1" >&2
      return 2
      ;;
  esac
}

[ $# -gt 0 ] || set -- build host tests lint docs python
packages=""
for part in "$@"; do
  packages="$packages $(packages_of "$part")"
done

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

case " $* " in
  *" tests "*)
    if ! locale -a | grep -qx 'de_DE.utf8'; then
      as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8
    fi
    ;;
esac
