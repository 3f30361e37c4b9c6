"""Compares the third-party notices with the packages of which the build put something into library and program.

Names are those of source packages. A package is inside if the build included a header of it that does not
belong to a shared library, if the linker used one of its static libraries, or if the build reads another file of it.
"""

import functools
import pathlib
import re

from stranger import BUILD, SOURCE, run, run_program

SYSTEM = {"linux"}  # its headers only declare the kernel's interface
# Folders of program and library below BUILD.
OURS = re.compile(r"(src|simulator|app|host|crosscheck|report|c)/|CMakeFiles/")
# Files installed by scripts/build_windows_dependencies.sh, and their packages.
PREFIX_LIBRARIES = {
    "libz.a": {"libz-mingw-w64"}, "libpng16.a": {"libpng1.6"}, "libjpeg.a": {"libjpeg-turbo"},
    "libtiff.a": {"tiff"}, "libwebp.a": {"libwebp"}, "libopenblas.a": {"openblas", "lapack"},
}
PREFIX_HEADERS = {"eigen3": "/usr/include/eigen3", "CLI": "/usr/include/CLI", "boost": "/usr/include/boost",
                  "nlohmann": "/usr/include/nlohmann", "toml++": "/usr/include/toml++",
                  "kainjow": "/usr/include/kainjow",
                  **{name: f"/usr/x86_64-w64-mingw32/include/{name}" for name in ("zlib.h", "zconf.h")}}
PREFIX = (SOURCE / "build/windows-dependencies").resolve()


@functools.lru_cache(maxsize=None)
def source_package(package):
    return run("dpkg-query", "-W", "-f", "${source:Package}\n", package).split("\n", maxsplit=1)[0]


def owners(paths):
    """The binary packages to which the files belong."""
    found = run("dpkg", "-S", *sorted(paths)) if paths else ""
    packages = {line.split(":", maxsplit=1)[0].split(",")[0] for line in found.splitlines()}
    assert bool(paths) == bool(packages)
    return packages


@functools.lru_cache(maxsize=None)
def shared_libraries(package):
    files = run("dpkg", "-L", package).splitlines()
    return frozenset(pathlib.Path(file).name for file in files if file.endswith(".so"))


def loaded(programs):
    """Names of all shared libraries that the programs load, without versions."""
    text = "".join(run("ldd", program) for program in programs)
    return set(re.findall(r"^\t(\S+\.so)[.\d]* ", text, re.MULTILINE))


def headers():
    """The headers from other projects that program and library include."""
    text = run("ninja", "-t", "deps", cwd=BUILD)
    included = set()
    for entry in text.split("\n\n"):
        target, *files = entry.strip().splitlines() or [""]
        if OURS.match(target):
            included |= {file.strip() for file in files}
    paths = {(BUILD / file).resolve() for file in included}
    paths = {path for path in paths if SOURCE not in path.parents and BUILD not in path.parents}
    assert len(paths) > 200, f"only {len(paths)} headers"
    return paths


def in_prefix(paths):
    """The packages of headers that the build of the Windows dependencies installed or copied."""
    first = {path.relative_to(PREFIX / "include").parts[0] for path in paths}
    built = {name for name in first if name.startswith("opencv")}
    copied = owners({PREFIX_HEADERS[name] for name in first - built})
    return {source_package(package) for package in copied} | ({"opencv"} if built else set())


def other_inputs(target):
    """Files of packages that are neither headers nor libraries, such as scripts of the report page."""
    return {pathlib.Path(path).resolve() for path in
            run("ninja", "-t", "inputs", target, cwd=BUILD).splitlines()
            if re.match(r"/usr/share/(javascript|nodejs)/", path)}


def linked():
    """The packages of static libraries that the linker used, from its map files."""
    inside = set()
    for map_file in [BUILD / f"{target}.map" for target in ("trackedcam", "trackedcam_c", "trackedcam_program")]:
        members = re.findall(r"^(/\S+\.a)\(\S+\)$", map_file.read_text(encoding="utf-8"), re.MULTILINE)
        for archive in sorted({pathlib.Path(member).resolve() for member in members}):
            if BUILD in archive.parents:
                continue
            if PREFIX not in archive.parents:
                inside |= {source_package(package) for package in owners({archive})}
            elif archive.name.startswith("libopencv_"):
                inside.add("opencv")
            else:
                inside |= PREFIX_LIBRARIES[archive.name]
    return inside


def packages_inside(windows):
    names = ["bin/trackedcam.exe", "bin/trackedcam.dll", "bin/trackedcam_c.dll"] if windows else [
        "app/trackedcam", "src/libtrackedcam.so", "c/libtrackedcam_c.so"]
    libraries = set() if windows else loaded(BUILD / name for name in names)
    inside = linked() if windows else set()
    ours = {path for path in headers() if PREFIX in path.parents}
    inside |= in_prefix(ours)
    for package in owners(headers() - ours) | owners(other_inputs(names[0])):
        if windows or not shared_libraries(package) & libraries:
            inside.add(source_package(package))
    return inside - SYSTEM


def sections(notices):
    return re.findall(r"^=+\n(Package|Licence) (\S+)\n=+$", notices, re.MULTILINE)


def check_notices(folder, program, windows=False):
    """Checks the notices in the folder of an installed tree, and what the program prints."""
    notices = (folder / "THIRD_PARTY_NOTICES").read_text(encoding="utf-8")
    own = (SOURCE / "LICENSE").read_text(encoding="utf-8")
    built = (PREFIX / "sources.txt").read_text(encoding="utf-8").split()[::2] if windows else []
    told = {name if name in built else source_package(name)
            for kind, name in sections(notices) if kind == "Package"}
    inside = packages_inside(windows)
    assert not inside - told, f"{sorted(inside - told)} are inside and have no notice"
    assert not told - inside, f"{sorted(told - inside)} have a notice and are not inside"

    # If a notice refers to a licence by its path on Debian, the text must be included.
    texts = {name for kind, name in sections(notices) if kind == "Licence"}
    for path in re.findall(r"/usr/share/common-licenses/[\w.-]*\w", notices):
        if pathlib.Path(path).exists():
            assert pathlib.Path(path).resolve().name in texts, f"the text of {path} is missing"
    assert "Permission is hereby granted" in notices, "no licence is spelled out"

    printed = run_program(program, "--licenses").replace("\r\n", "\n")
    assert printed.startswith(own), "the program does not begin with its own licence"
    assert printed.endswith(notices), "the program prints other notices than the file holds"
    if not windows:
        copyright_text = (folder / "copyright").read_text(encoding="utf-8")
        assert copyright_text == printed, "the copyright file differs from what the program prints"
