"""Checks with clang, as far as possible, that Visual Studio can compile the sources.

Compiles for Visual Studio's target an object that calls all functions of the public header, with
replacements for the two standard headers that it includes. Compiles the *_windows.cpp files with Visual
Studio's language extensions, without GCC's, against the headers of mingw-w64.

Usage: check_visual_studio.py SOURCE_ROOT CLANG MINGW_COMPILER DEPENDENCIES
"""

import pathlib
import re
import subprocess
import sys
import tempfile

root, clang, mingw, dependencies = pathlib.Path(sys.argv[1]), *sys.argv[2:]
STANDARD_HEADERS = {
    "string": "namespace std { class string { public: string(const char*); string(const string&);"
              " ~string(); }; }\n",
    "vector": "namespace std { template <class T> class vector { public: vector(); vector(const vector&);"
              " ~vector(); }; }\n",
}
CALLS = """#include "trackedcam/trackedcam.h"
int main() {
  std::vector<double> v;
  return Calibration("", 1, 1, 9, 6, 1, v, v, v, v, v, v, v, v, v, "", false, 1) +
         CamAxisToUE4(v, v, v, "") + CamAxisToUE5(v, v, v, "") + CamAxisToUE5_ExportxN(v, v, v, "") +
         CamAxisToAximmetry(v, v, v, v, v, v, v, "");
}
"""
GCC_ONLY = re.compile(r"__attribute__|__builtin_|\b__typeof|__PRETTY_FUNCTION__|<bits/|<ext/|\(\{")
faults = []


def compile_with(what, *arguments):
    done = subprocess.run([clang, *map(str, arguments)], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        faults.append(f"{what}:\n{done.stderr}")


with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    (scratch / "std").mkdir()
    for header, text in STANDARD_HEADERS.items():
        (scratch / "std" / header).write_text(text, encoding="utf-8")
    (scratch / "calls.cpp").write_text(CALLS, encoding="utf-8")
    compile_with("the public header", "--target=x86_64-pc-windows-msvc", "-fms-compatibility-version=19.29",
                 "-std=c++14", "-nostdinc++", "-isystem", scratch / "std", "-I", root / "include", "-Wall",
                 "-Wextra", "-Wpedantic", "-Werror", "-c", scratch / "calls.cpp", "-o", scratch / "calls.obj")
    if not faults:
        imported = set(re.findall(rb"__imp_(\w+)", (scratch / "calls.obj").read_bytes()))
        if len(imported) != 5:
            faults.append(f"the public header imports {sorted(imported)}")

standard = subprocess.run([mingw, "-print-file-name=include/c++"], capture_output=True, text=True,
                          check=True).stdout.strip()
files = sorted(path for folder in ["src", "app", "host", "c", "examples", "tests"]
               for path in (root / folder).rglob("*_windows.cpp"))
for file in files:
    compile_with(file.relative_to(root), "--target=x86_64-w64-mingw32", "-fms-extensions", "-fmsc-version=0",
                 "-fdelayed-template-parsing", "-std=c++17", "-D_WIN32_WINNT=0x0601", "-Wall", "-Wextra",
                 "-Wpedantic", "-Wgnu", "-Werror", "-fsyntax-only", "-isystem", standard, "-isystem",
                 f"{standard}/x86_64-w64-mingw32", "-isystem", f"{dependencies}/include", "-I", root, "-I",
                 root / "src", "-I", root / "tests", "-I", root / "include", file)
    if found := GCC_ONLY.search(file.read_text(encoding="utf-8")):
        faults.append(f"{file.relative_to(root)} uses {found[0]}")

print("\n".join(faults) or f"the public header and {len(files)} *_windows.cpp files compile")
sys.exit(1 if faults or len(files) < 4 else 0)
