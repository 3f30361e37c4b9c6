"""Includes the sources in another project, where only the library is built, and runs the examples.

Usage: check_subdirectory.py BUILD SOURCE
"""

import pathlib
import tempfile

from stranger import BUILD, SOURCE, check_examples, run

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(stranger LANGUAGES CXX)
{take_in}
foreach(name example_01_calibrate example_02_export_to_engine)
  string(REPLACE example_ "" source ${{name}})
  add_executable(stranger_${{name}} {source}/examples/${{source}}.cpp)
  set_target_properties(stranger_${{name}} PROPERTIES OUTPUT_NAME ${{name}})
  target_link_libraries(stranger_${{name}} PRIVATE trackedcam::trackedcam)
endforeach()
install(TARGETS stranger_example_01_calibrate)

function(tell folder)
  get_property(targets DIRECTORY ${{folder}} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(folders DIRECTORY ${{folder}} PROPERTY SUBDIRECTORIES)
  get_property(tests DIRECTORY ${{folder}} PROPERTY TESTS)
  message(STATUS "taken in: ${{targets}};${{tests}}")
  foreach(below IN LISTS folders)
    tell(${{below}})
  endforeach()
endfunction()
tell({source})
"""
SUBDIRECTORY = f"add_subdirectory({SOURCE} trackedcam)"
FETCHED = f"""include(FetchContent)
FetchContent_Declare(trackedcam SOURCE_DIR {SOURCE})
FetchContent_MakeAvailable(trackedcam)"""
LIBRARY = {"trackedcam", "trackedcam_compile_options"} | {
    f"trackedcam_{folder}" for folder in ["core", "geometry", "io", "calib", "handeye", "api"]}
PARTS = {"BUILD_HOST": "trackedcam_program", "BUILD_TESTS": "shoots_tests",
         "BUILD_EXAMPLES": "example_03_load_at_run_time", "BUILD_BENCHMARKS": "lens_benchmark",
         "BUILD_DOCS": "docs", "INSTALL": "trackedcam_notices"}


def taken_in(folder, take_in, *options):
    """Configures a project that includes the sources; returns its targets and tests."""
    folder.mkdir()
    (folder / "CMakeLists.txt").write_text(PROJECT.format(take_in=take_in, source=SOURCE), encoding="utf-8")
    printed = run("cmake", "-S", folder, "-B", folder / "build", "-G", "Ninja", *options)
    lines = [line.split("taken in: ")[1] for line in printed.splitlines() if "taken in: " in line]
    return {name for line in lines for name in line.split(";") if name}


with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    for how, take_in in [("fetched", FETCHED), ("subdirectory", SUBDIRECTORY)]:
        found = taken_in(scratch / how, take_in)
        assert found == LIBRARY, f"{how}: {sorted(found ^ LIBRARY)} is too much or missing"
    for part, target in PARTS.items():
        found = taken_in(scratch / part, SUBDIRECTORY, f"-DTRACKEDCAM_{part}=ON")
        assert found >= LIBRARY | {target}, f"{part} does not bring {target}"
        others = [other for other in PARTS if PARTS[other] in found and part != other]
        # The tests need the program and the examples; the program needs the notices, which it prints.
        needed = {"BUILD_TESTS": ["BUILD_HOST", "BUILD_EXAMPLES", "INSTALL"], "BUILD_HOST": ["INSTALL"]}
        assert set(others) == set(needed.get(part, [])), f"{part} brings {others}"

    build = scratch / "subdirectory/build"
    run("cmake", "--build", build)
    run("cmake", "--install", build, "--prefix", scratch / "prefix")
    installed = [str(path.relative_to(scratch / "prefix")) for path in (scratch / "prefix").rglob("*")
                 if path.is_file()]
    assert installed == ["bin/example_01_calibrate"], f"{installed} are installed"
    check_examples(build, BUILD / "app/trackedcam", scratch)
print("a project that includes the sources gets the library and the parts that it switches on")
