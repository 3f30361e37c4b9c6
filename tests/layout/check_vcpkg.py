"""Checks the format of vcpkg.json, and that it has a port for each package that the build looks for.

Usage: check_vcpkg.py SOURCE_ROOT
"""

import json
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
# The port of each package that CMake looks for, then packages that need none.
PORTS = {"OpenCV": "opencv4", "Eigen3": "eigen3", "CLI11": "cli11", "nlohmann_json": "nlohmann-json",
         "googletest": "gtest", "tomlplusplus": "tomlplusplus", "Boost": "boost-math", "ZLIB": "zlib"}
NONE = {"Threads", "Python3", "Doxygen", "Git", "PkgConfig", "trackedcam"}
NAME = r"[a-z0-9]+(-[a-z0-9]+)*"
FIELDS = {"$comment", "name", "version", "dependencies", "builtin-baseline", "overrides", "features"}
DEPENDENCY_FIELDS = {"name", "default-features", "features", "host", "platform", "version>="}
faults = []


def expect(condition, message):
    if not condition:
        faults.append(message)


manifest = json.loads((root / "vcpkg.json").read_text(encoding="utf-8"))
expect(manifest.keys() <= FIELDS, f"unknown fields {sorted(manifest.keys() - FIELDS)}")
expect(re.fullmatch(NAME, manifest.get("name", "")), "the name is not a valid port name")
expect(re.fullmatch(r"[0-9a-f]{40}", manifest.get("builtin-baseline", "")), "the baseline is not a commit")

ports = []
for dependency in manifest["dependencies"]:
    if isinstance(dependency, str):
        dependency = {"name": dependency}
    unknown = dependency.keys() - DEPENDENCY_FIELDS
    expect(not unknown, f"{dependency} has unknown fields")
    expect(isinstance(dependency.get("default-features", True), bool),
           f"{dependency}: default-features must be a boolean")
    for name in [dependency["name"], *dependency.get("features", [])]:
        expect(re.fullmatch(NAME, name), f"{name} is not a valid port name")
    ports.append(dependency["name"])
expect(ports == sorted(set(ports)), f"{ports} are not sorted, or one appears twice")
for override in manifest.get("overrides", []):
    expect(override.keys() == {"name", "version"}, f"{override} is not an override")
    expect(override["name"] in ports, f"{override['name']} is pinned but not needed")
    expect(re.fullmatch(r"\d+(\.\d+)*(#\d+)?", override["version"]), f"{override} pins an invalid version")

wanted = set()
tracked = [path for path in root.rglob("CMakeLists.txt") if "build" not in path.relative_to(root).parts]
for path in [*tracked, *(root / "cmake").glob("*.cmake")]:
    wanted |= set(re.findall(r"(?:find_package|FetchContent_Declare)\((\w+)", path.read_text(encoding="utf-8")))
expect(len(wanted) > 5, f"the build looks for only {sorted(wanted)}")
for package in sorted(wanted - NONE):
    expect(package in PORTS and PORTS[package] in ports, f"there is no port for {package}")
formats = next(d for d in manifest["dependencies"] if isinstance(d, dict) and d["name"] == "opencv4")["features"]
expect({"calib3d", "jpeg", "png", "tiff", "webp"} <= set(formats), f"OpenCV has only the features {formats}")

print("\n".join(faults) or f"vcpkg.json has the ports of {len(wanted - NONE)} packages")
sys.exit(1 if faults else 0)
