#!/bin/sh
# Builds the newest OpenCV 4 among Debian's source packages and runs the tests with it. Takes up to an
# hour. Not part of .ci/run.
# Usage: scripts/newer_opencv.sh [SUITE...]   (searches this machine's suites and those named)
set -eu
cd "$(dirname "$0")/.."
root=$PWD
work=$root/build/newer-opencv
installed=$(dpkg-query -W -f '${source:Upstream-Version}' libopencv-dev | sed 's/+.*//')

# Separate package lists, made from this machine's, which may lack source packages and other suites.
rm -rf "$work"
mkdir -p "$work/sources" "$work/lists/partial" "$work/apt/archives/partial"
cd "$work"
release=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
  if [ -e "$file" ]; then
    sed -e 's/^Types:.*/Types: deb-src/' -e 's/^deb /deb-src /' "$file" >"sources/${file##*/}"
    for suite in "$@"; do  # in addition to this machine's suite of the same archive
      sed -e "s/^\(Suites:.*\)\b$release /\1$suite $release /" \
        -e "s/^\(Suites: *\)$release\$/\1$suite $release/" \
        -e "s/^\(deb-src .*\) $release \(.*\)/&\n\1 $suite \2/" -i "sources/${file##*/}"
    done
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
apt-get update --quiet=2
# The newest version that can be fetched: a mirror's list can be ahead of its files.
offered=$installed
for version in $(apt-cache showsrc opencv | sed -n 's/^Version: \(4\..*\)/\1/p' |
  sort --reverse --version-sort); do
  newest=$(printf '%s\n' "$installed" "${version%%+*}" | sort --version-sort | tail -n 1)
  if [ "$newest" != "$installed" ] && apt-get source --quiet=2 --only-source "opencv=$version"; then
    offered=${version%%+*}
    break
  fi
done
if [ "$offered" = "$installed" ]; then
  echo "OpenCV $installed is installed. These suites offer no newer 4.x as a source package." \
    "Nothing was tested." >&2
  exit 1
fi
echo "Testing with OpenCV $offered; $installed is installed"
unset APT_CONFIG
"$root/scripts/install_packages.sh" build host tests newer-opencv

options=""
for option in BUILD_TESTS BUILD_PERF_TESTS BUILD_opencv_apps BUILD_JAVA BUILD_JPEG BUILD_PNG BUILD_TIFF \
  BUILD_WEBP BUILD_ZLIB BUILD_PROTOBUF WITH_PROTOBUF WITH_IPP WITH_ITT WITH_OPENCL WITH_FFMPEG \
  WITH_GSTREAMER WITH_GTK WITH_QT WITH_OPENEXR WITH_OPENJPEG WITH_JASPER WITH_VTK WITH_QUIRC WITH_ADE; do
  options="$options -D$option=OFF"
done
# shellcheck disable=SC2086  # one word for each option
cmake -S opencv-4.*/ -B opencv -G Ninja --log-level=WARNING $options -DCMAKE_BUILD_TYPE=Release \
  -DBUILD_LIST=core,imgproc,imgcodecs,calib3d,features2d,flann -DCMAKE_INSTALL_PREFIX="$work/prefix"
cmake --build opencv --target install -- --quiet

# Without the tests of the packages, which depend on Debian's OpenCV.
cd "$root"
cmake --preset release -B "$work/trackedcam" -D OpenCV_DIR="$(dirname "$(find "$work/prefix" -name OpenCVConfig.cmake)")"
cmake --build "$work/trackedcam"
ctest --test-dir "$work/trackedcam" --output-on-failure --exclude-regex '^install/' -j "$(nproc)"
echo "All tests pass with OpenCV $offered."
