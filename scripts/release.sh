#!/bin/sh
# Builds what a release consists of, for Linux and Windows, into build/release-VERSION, and installs and
# runs each file of it as a user would.
# Usage: scripts/release.sh [--untagged] [--check-reproducible] [VERSION]
#   VERSION               default: the version of the project
#   --untagged            also from a tree with changes or without the tag vVERSION, and with a changelog that
#                         calls the version unreleased: to try things, or to get the program before it is released
#   --check-reproducible  package everything again and compare the bytes
set -eu
cd "$(dirname "$0")/.."

fail() {
  echo "scripts/release.sh: $1" >&2
  exit 1
}

project=$(awk '$1 == "VERSION" { print $2; exit }' CMakeLists.txt)
version=$project
untagged=false
again=false
for argument in "$@"; do
  case "$argument" in
    --untagged) untagged=true ;;
    --check-reproducible) again=true ;;
    -*) fail "there is no option $argument; see the first lines of this script" ;;
    *) version=${argument#v} ;;
  esac
done

[ "$version" = "$project" ] ||
  fail "this is version $project, not $version: set VERSION in CMakeLists.txt, or check out v$version"
heading=$(grep "^## $version," CHANGELOG.md) || fail "CHANGELOG.md has no section '## $version, DATE': write it"
if ! $untagged; then
  [ -z "$(git status --porcelain)" ] ||
    fail "the tree has changes, and a release is built from a commit: commit them, or 'git stash -u'"
  [ "${heading#*, }" != unreleased ] ||
    fail "CHANGELOG.md calls $version unreleased: write the date there and commit, or pass --untagged"
  git tag --points-at HEAD | grep -qx "v$version" ||
    fail "this commit has no tag: 'git tag v$version', or pass --untagged"
fi

scripts/install_packages.sh build host windows release
scripts/build_windows_dependencies.sh

# The same dates in every package of this commit. UTC, because the zip holds local times.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
TZ=UTC
export SOURCE_DATE_EPOCH TZ
umask 022  # packages hold the modes of files

# package PRESET FOLDER SYSTEM: what the preset for a system contributes
package() {
  cmake --preset "$1" -D TRACKEDCAM_BUILD_TESTS=OFF
  cmake --build --preset "$1"
  rm -f "build/$1"/python/*.whl
  cmake --build --preset "$1" --target trackedcam_wheel
  rm -rf "build/$1/packages"
  cpack --preset "$1" -B "$PWD/build/$1/packages"
  find "build/$1/packages" -maxdepth 1 -type f -exec install -m 644 {} "$2" ';'
  install -m 644 "build/$1"/python/*.whl "$2"
  cp "build/$1/THIRD_PARTY_NOTICES" "$2/THIRD_PARTY_NOTICES-$3"
}

package_all() {
  rm -rf "$1"
  mkdir -p "$1"
  package release "$1" Linux
  package windows-mingw "$1" Windows
  # The section of this version, without its heading.
  awk -v version="$version," '/^## / { inside = $2 == version; next } inside' CHANGELOG.md |
    sed '/./,$!d' >"$1/RELEASE_NOTES.md"
  (cd "$1" && sha256sum ./*.deb ./*.tar.gz ./*.zip ./*.whl ./THIRD_PARTY_NOTICES-* RELEASE_NOTES.md |
    sed 's:  \./:  :' >SHA256SUMS)
}

folder=build/release-$version
package_all "$folder"
if $again; then
  for preset in release windows-mingw; do
    cmake --build --preset "$preset" --target clean
  done
  package_all "$folder-again"
  (cd "$folder" && sha256sum --check --quiet "../../$folder-again/SHA256SUMS") ||
    fail "a second build of the same commit gave other bytes; compare $folder and $folder-again"
  echo "Two builds gave the same bytes."
fi
(cd "$folder" && sha256sum --check --quiet SHA256SUMS)
scripts/check_release.py "$folder"/*.deb "$folder"/*.tar.gz "$folder"/*.zip "$folder"/*.whl
echo "The release is in $folder:"
ls -l "$folder"
