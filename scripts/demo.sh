#!/bin/sh
# Installs the packages, builds a release, simulates a shoot, calibrates it and exports the result to
# each engine. The last line names the report page.
# Usage: scripts/demo.sh [FOLDER]   (default: build/demo)
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host
cmake --preset release -D TRACKEDCAM_BUILD_TESTS=OFF
cmake --build --preset release --target trackedcam_program

folder="${1:-build/demo}"
trackedcam=build/release/app/trackedcam
"$trackedcam" simulate "$folder"
"$trackedcam" calibrate --config "$folder/shoot.toml" --report "$folder/report.html"
for engine in unreal unity aximmetry ue4 ue5 ue5-xn; do
  echo
  "$trackedcam" export "$engine" --result "$folder/result.json"
done
echo
echo "Open the report page in a browser: $folder/report.html"
