"""Compiles the C# example, compares its structs with the header's, and its result with the program's.

Usage: check_csharp.py SOURCE_ROOT MCS MONO LIBRARY PRINT_LAYOUT PROGRAM
"""

import os
import pathlib
import sys
import tempfile

from same_result import calibrate_by_program, require_same, run, simulate

root, library = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[4])
mcs, mono, print_layout, program = sys.argv[2], sys.argv[3], sys.argv[5], sys.argv[6]

with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    os.environ["LD_LIBRARY_PATH"] = str(library.parent)
    example = scratch / "Calibrate.exe"
    run(mcs, "-warnaserror", f"-out:{example}", root / "examples/05_csharp/Calibrate.cs")
    found = run(mono, example, "--layout")
    declared = {line.split()[0].split(".")[0] for line in found.splitlines()}
    expected = "".join(line for line in run(print_layout).splitlines(keepends=True)
                       if line.split()[0].split(".")[0] in declared)
    if found != expected:
        sys.exit(f"the layout of the structs in C# is\n{found}and in the header\n{expected}")

    shoot = simulate(program, scratch)
    by_program = calibrate_by_program(program, shoot, scratch / "log")
    printed = run(mono, example, "tracker_data.csv", scratch / "log", scratch / "csharp.json", cwd=shoot)
    require_same(scratch / "csharp.json", by_program)
    print(printed.strip().splitlines()[-1])
