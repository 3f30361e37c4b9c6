#!/bin/sh
# Builds the libraries that the Windows DLL needs from Debian's source packages, and links
# build/windows-dependencies to the result.
# Usage: scripts/build_windows_dependencies.sh
#
# The result is cached outside the tree, so a second run takes seconds: in $TRACKEDCAM_CACHE if it is
# set, otherwise in the user's cache folder.
set -eu
cd "$(dirname "$0")/.."
root=$PWD
toolchain=$root/cmake/mingw-w64.cmake

# The cache has one folder for each version of this script and of the toolchain file, without their
# comments, and of these packages.
made_with="g++-mingw-w64-x86-64-posix gfortran-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64
  mingw-w64-x86-64-dev nasm cmake libz-mingw-w64-dev libeigen3-dev libcli11-dev nlohmann-json3-dev
  libtomlplusplus-dev libkainjow-mustache-dev libboost-dev"
# shellcheck disable=SC2086  # one word for each package
key=$({
  sed '/^ *# /d' "$0" "$toolchain"
  dpkg-query -W $made_with
} | sha256sum | cut -c1-16)
cache=${TRACKEDCAM_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/trackedcam}
prefix=$cache/windows-$key
stamp=$prefix/complete
work=$prefix/work

# Separate package lists, made from this machine's, which may lack source packages.
update_source_lists() {
  mkdir -p sources lists/partial
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list \
    /etc/apt/sources.list.d/*.sources; do
    if [ -e "$file" ]; then
      sed -e 's/^Types:.*/Types: deb-src/' -e 's/^deb /deb-src /' "$file" \
        >"sources/${file##*/}"
    fi
  done
  cat >apt.conf <<END
Dir::Etc::SourceList "/dev/null";
Dir::Etc::SourceParts "$work/sources";
Dir::State::Lists "$work/lists";
Dir::Cache "$work/apt";
APT::Sandbox::User "$(id -un)";
END
  export APT_CONFIG="$work/apt.conf"
  mkdir -p apt/archives/partial
  apt-get update --quiet=2
}

# fetch PACKAGE: unpacks the newest version that can be fetched (a mirror's list can be ahead of its
# files) and copies its licence to where a binary package has it.
fetch() {
  for version in $(apt-cache showsrc "$1" | sed -n 's/^Version: //p' | sort --reverse --version-sort); do
    if apt-get source --quiet=2 --only-source "$1=$version"; then
      mv "$1"-*/ "$1"
      install -D --mode=644 "$1/debian/copyright" "$prefix/share/doc/$1/copyright"
      echo "$1 $version" >>"$prefix/sources.txt"
      return
    fi
  done
  echo "$1: no version of the source package could be fetched." >&2
  exit 1
}

# build PACKAGE OPTION...
build() {
  package=$1
  shift
  cmake -S "$package" -B "build-$package" -G Ninja --log-level=WARNING \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DTRACKEDCAM_WINDOWS_DEPENDENCIES="$prefix" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" "$@"
  cmake --build "build-$package" --target install -- -v >"build-$package.log" ||
    { tail -n 50 "build-$package.log" >&2; exit 1; }
}

# Ready files from Debian's packages: zlib without its import library, and headers for any system.
copy_packages() {
  mkdir -p "$prefix/lib" "$prefix/include" "$prefix/share/cmake/tomlplusplus"
  cp /usr/x86_64-w64-mingw32/lib/libz.a "$prefix/lib"
  cp /usr/x86_64-w64-mingw32/include/zlib.h /usr/x86_64-w64-mingw32/include/zconf.h \
    /usr/include/eigen3 /usr/include/CLI /usr/include/nlohmann /usr/include/toml++ \
    /usr/include/kainjow /usr/include/boost -R "$prefix/include"
  cp -R /usr/share/eigen3 "$prefix/share"
  cp -R /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$prefix/share/cmake"

  # Debian's CMake package of toml++ names a shared library. Here only its headers are used.
  cp "$(dpkg -L libtomlplusplus-dev | grep 'ConfigVersion\.cmake$')" "$prefix/share/cmake/tomlplusplus"
  cat >"$prefix/share/cmake/tomlplusplus/tomlplusplusConfig.cmake" <<'END'
get_filename_component(prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(NOT TARGET tomlplusplus::tomlplusplus)
  add_library(tomlplusplus::tomlplusplus INTERFACE IMPORTED)
  set_target_properties(tomlplusplus::tomlplusplus PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${prefix}/include"
    INTERFACE_COMPILE_FEATURES cxx_std_17)
endif()
END

  # The licences of these, and of the compilers' runtimes, which are linked into the DLL too.
  boost=$(dpkg -S /usr/include/boost/version.hpp)
  for package in libz-mingw-w64-dev libeigen3-dev libcli11-dev nlohmann-json3-dev \
    libtomlplusplus-dev libkainjow-mustache-dev "${boost%%:*}" gcc-mingw-w64-base mingw-w64-x86-64-dev; do
    install -D --mode=644 "/usr/share/doc/$package/copyright" "$prefix/share/doc/$package/copyright"
  done
}

build_image_formats() {
  build libpng1.6 -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DZLIB_LIBRARY="$prefix/lib/libz.a" \
    -DZLIB_INCLUDE_DIR="$prefix/include"
  build libjpeg-turbo -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DREQUIRE_SIMD=ON

  # Only the TIFF compressions that cameras and image programs write.
  options=""
  for option in BUILD_SHARED_LIBS tiff-tools tiff-tests tiff-contrib tiff-docs cxx jbig lerc \
    libdeflate lzma webp zstd; do
    options="$options -D$option=OFF"
  done
  # shellcheck disable=SC2086  # one word for each option
  build tiff $options -Dzlib=ON -Djpeg=ON -DZLIB_LIBRARY="$prefix/lib/libz.a" \
    -DZLIB_INCLUDE_DIR="$prefix/include" -DJPEG_LIBRARY="$prefix/lib/libjpeg.a" \
    -DJPEG_INCLUDE_DIR="$prefix/include"
  for part in ZIP JPEG LZW PACKBITS; do
    grep -q "^#define ${part}_SUPPORT 1" "$prefix/include/tiffconf.h" ||
      { echo "libtiff was built without $part." >&2; exit 1; }
  done

  options=""
  for option in BUILD_SHARED_LIBS WEBP_USE_THREAD WEBP_BUILD_ANIM_UTILS WEBP_BUILD_CWEBP \
    WEBP_BUILD_DWEBP WEBP_BUILD_GIF2WEBP WEBP_BUILD_IMG2WEBP WEBP_BUILD_VWEBP WEBP_BUILD_WEBPINFO \
    WEBP_BUILD_LIBWEBPMUX WEBP_BUILD_WEBPMUX WEBP_BUILD_EXTRAS; do
    options="$options -D$option=OFF"
  done
  # shellcheck disable=SC2086  # one word for each option
  build libwebp $options
}

# The kernels of OpenBLAS for real numbers: for every processor (PRESCOTT) and for those with AVX2
# (HASWELL). Without threads, because the library stays on its caller's thread; with locks, because a
# program may call it from several threads.
# Debian's compiler reports its version as "12-posix". OpenBLAS takes that for an old compiler unless
# NO_AVX2 and OLDGCC are cleared.
# Every C file includes windows.h, which takes most of its compile time: WIN32_LEAN_AND_MEAN leaves out a
# part of it, and a precompiled header for each set of options reads it once. Assembler files skip it.
build_openblas() {
  cc="x86_64-w64-mingw32-gcc-posix -DWIN32_LEAN_AND_MEAN"
  mkdir -p first/first.h.gch
  printf '#ifndef __ASSEMBLER__\n#include <windows.h>\n#endif\n' >first/first.h
  for options in "" "-msse3" "-msse3 -mssse3 -msse4.1 -mavx -mavx2"; do
    # shellcheck disable=SC2086  # one word for each option
    $cc -O2 -m64 $options -x c-header first/first.h -o "first/first.h.gch/options$options"
  done
  make -C openblas libs TARGET=PRESCOTT DYNAMIC_ARCH=1 DYNAMIC_LIST=HASWELL USE_THREAD=0 \
    USE_LOCKING=1 BUILD_SINGLE=1 BUILD_DOUBLE=1 NO_LAPACK=1 NO_LAPACKE=1 NOFORTRAN=1 NO_SHARED=1 \
    CROSS=1 BINARY=64 HOSTCC=gcc NO_AVX2= OLDGCC= MAKE_NB_JOBS="$(nproc)" \
    CC="$cc -include $work/first/first.h" AR=x86_64-w64-mingw32-gcc-ar-posix \
    RANLIB=x86_64-w64-mingw32-gcc-ranlib-posix >build-openblas.log 2>&1 ||
    { tail -n 50 build-openblas.log >&2; exit 1; }
  cp openblas/libopenblas-r*.a "$prefix/lib/libopenblas.a"
}

# Adds to libopenblas.a the LAPACK routines that OpenCV calls, with all that they call, and the complex
# matrix products of the reference BLAS, which OpenCV links and the library does not use.
add_lapack() {
  fortran="x86_64-w64-mingw32-gfortran-posix -O2 -frecursive -c"
  mkdir routines
  cp lapack/LAPACKE/include/*.h lapack/CBLAS/include/cblas.h "$prefix/include"
  cp lapack/LAPACKE/include/lapacke_mangling_with_flags.h.in "$prefix/include/lapacke_mangling.h"
  cp lapack/CBLAS/include/cblas_mangling_with_flags.h.in "$prefix/include/cblas_mangling.h"
  for file in cblas_cgemm cblas_zgemm cblas_globals cblas_xerbla; do
    x86_64-w64-mingw32-gcc-posix -O2 -DADD_ -I"$prefix/include" -Ilapack/CBLAS/include \
      -c "lapack/CBLAS/src/$file.c" -o "routines/$file.o"
  done
  # The only function of the Fortran runtime that these routines need; the runtime itself would add its
  # input and output.
  cat >concat_string.c <<'END'
#include <string.h>

void _gfortran_concat_string(size_t size, char* joined, size_t firstSize, const char* first,
                             size_t secondSize, const char* second) {
  const size_t begin = firstSize < size ? firstSize : size;
  const size_t rest = size - begin;
  const size_t middle = secondSize < rest ? secondSize : rest;
  memcpy(joined, first, begin);
  memcpy(joined + begin, second, middle);
  memset(joined + begin + middle, ' ', rest - middle);
}
END
  x86_64-w64-mingw32-gcc-posix -O2 -c concat_string.c -o routines/concat_string.o
  for module in la_constants.f90 la_xisnan.F90; do
    $fortran "lapack/SRC/$module" -o "routines/${module%.*}.o"
  done

  wanted="dgels dgesdd dgesv dposv dpotrf sgels sgesdd sgesv sposv spotrf cgemm zgemm"
  while [ -n "$wanted" ]; do
    for routine in $wanted; do
      $fortran "$(find lapack/SRC lapack/INSTALL lapack/BLAS/SRC -maxdepth 1 -name "$routine.[fF]*")" \
        -o "routines/$routine.o"
    done
    symbols="x86_64-w64-mingw32-nm --extern-only --portability"
    $symbols --defined-only routines/*.o "$prefix/lib/libopenblas.a" | awk 'NF > 1 { print $1 }' |
      sort -u >defined.txt
    wanted=$($symbols --undefined-only routines/*.o | awk 'NF > 1 { print $1 }' | sort -u |
      comm -23 - defined.txt | sed -n 's/_$//p')
  done
  x86_64-w64-mingw32-gcc-ar-posix qs "$prefix/lib/libopenblas.a" routines/*.o
}

# OpenCV without its optional parts. It finds no threads on mingw-w64, as intended: its own threads would
# outlive the DLL. Every 64-bit Windows machine has SSE3.
build_opencv() {
  options=""
  for option in BUILD_SHARED_LIBS BUILD_TESTS BUILD_PERF_TESTS BUILD_opencv_apps BUILD_JAVA \
    BUILD_JPEG BUILD_PNG BUILD_TIFF BUILD_WEBP BUILD_ZLIB BUILD_ITT BUILD_IPP_IW BUILD_PROTOBUF \
    ENABLE_PRECOMPILED_HEADERS WITH_IPP WITH_ITT WITH_OPENCL WITH_DIRECTX WITH_DIRECTML WITH_TBB \
    WITH_OPENMP WITH_FFMPEG WITH_GSTREAMER WITH_MSMF WITH_DSHOW WITH_WIN32UI WITH_OPENEXR \
    WITH_OPENJPEG WITH_JASPER WITH_VTK WITH_QUIRC WITH_PROTOBUF WITH_ADE WITH_IMGCODEC_HDR \
    WITH_IMGCODEC_SUNRASTER WITH_IMGCODEC_PXM WITH_IMGCODEC_PFM; do
    options="$options -D$option=OFF"
  done
  # shellcheck disable=SC2086  # one word for each option
  build opencv $options -DBUILD_LIST=core,imgproc,imgcodecs,calib3d,features2d,flann \
    -DCPU_BASELINE=SSE3 -DCPU_DISPATCH= -DWITH_EIGEN=ON \
    -DZLIB_LIBRARY="$prefix/lib/libz.a" -DZLIB_INCLUDE_DIR="$prefix/include" \
    -DPNG_LIBRARY="$prefix/lib/libpng.a" -DPNG_PNG_INCLUDE_DIR="$prefix/include" \
    -DJPEG_LIBRARY="$prefix/lib/libjpeg.a" -DJPEG_INCLUDE_DIR="$prefix/include" \
    -DTIFF_LIBRARY="$prefix/lib/libtiff.a;$prefix/lib/libjpeg.a;$prefix/lib/libz.a" \
    -DTIFF_INCLUDE_DIR="$prefix/include" \
    -DWEBP_LIBRARY="$prefix/lib/libwebp.a" -DWEBP_INCLUDE_DIR="$prefix/include" \
    -DLAPACK_IMPL=OpenBLAS -DLAPACK_LIBRARIES="$prefix/lib/libopenblas.a" \
    -DLAPACK_INCLUDE_DIR="$prefix/include" -DLAPACK_CBLAS_H="$prefix/include/cblas.h" \
    -DLAPACK_LAPACKE_H="$prefix/include/lapacke.h"
  # OpenCV only prints a line when a part is missing, and builds without it.
  for part in HAVE_EIGEN HAVE_LAPACK HAVE_JPEG HAVE_PNG HAVE_TIFF HAVE_WEBP; do
    grep -q -e "^#define $part" -e "-D$part\b" build-opencv/cvconfig.h build-opencv/build.ninja ||
      { echo "OpenCV was built without $part." >&2; exit 1; }
  done
}

mkdir -p "$cache" build
exec 9>"$cache/lock"
flock 9
if [ ! -e "$stamp" ]; then
  rm -rf "$prefix"
  mkdir -p "$work"
  (
    cd "$work"
    # Messages contain paths of source files; these make them the same on every machine.
    export CFLAGS="-ffile-prefix-map=$work=." CXXFLAGS="-ffile-prefix-map=$work=."
    update_source_lists
    for package in libpng1.6 libjpeg-turbo tiff libwebp openblas lapack opencv; do
      fetch "$package"
    done
    copy_packages
    build_image_formats
    build_openblas
    add_lapack
    build_opencv
  )
  rm -rf "$work"
  touch "$stamp"
fi
ln -sfn "$prefix" build/windows-dependencies
cat "$prefix/sources.txt"
