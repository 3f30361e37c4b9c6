"""Compiles a host with another compiler, links it with the C library's import library, and compares its result.

Usage: check_freestanding_host.py SOURCE_ROOT CLANG LLD_LINK LLVM_DLLTOOL DLL IMPORT_LIBRARY EMULATOR PROGRAM
"""

import pathlib
import shutil
import sys
import tempfile

root = pathlib.Path(sys.argv[1])
clang, lld_link, dlltool, dll, import_library, emulator, program = sys.argv[2:]
sys.path.insert(0, str(root / "tests/languages"))
from same_result import calibrate_by_program, require_same, run, simulate  # noqa: E402

KERNEL = "LIBRARY kernel32.dll\nEXPORTS\n  GetStdHandle\n  WriteFile\n  ExitProcess\n"

with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    (scratch / "kernel32.def").write_text(KERNEL, encoding="utf-8")
    run(dlltool, "-m", "i386:x86-64", "-d", scratch / "kernel32.def", "-l", scratch / "kernel32.lib")
    run(clang, "--target=x86_64-pc-windows-msvc", "-std=c99", "-O1", "-Wall", "-Wextra", "-Werror", "-ffreestanding",
        "-fno-stack-protector", "-mno-stack-arg-probe", "-I", root / "include", "-c",
        root / "tests/c/foreign/freestanding_host.c", "-o", scratch / "host.obj")
    run(lld_link, "/entry:start", "/subsystem:console", "/nodefaultlib", f"/out:{scratch / 'host.exe'}",
        scratch / "host.obj", import_library, scratch / "kernel32.lib")
    shutil.copy(dll, scratch)

    shoot = simulate(program, scratch)
    by_program = calibrate_by_program(program, shoot, "log")
    run(emulator, scratch / "host.exe", cwd=shoot)
    require_same(shoot / "host.json", by_program)
print("a host from another compiler gets the result of the program")
