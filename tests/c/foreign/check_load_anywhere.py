"""Loads the C library by its path, from a folder with no other file, and calibrates.

Usage: check_load_anywhere.py LANGUAGES LIBRARY HOST PROGRAM [EMULATOR]
"""

import json
import pathlib
import re
import shutil
import sys
import tempfile

sys.path.insert(0, sys.argv[1])
from same_result import calibrate_by_program, run, simulate  # noqa: E402

library, host, program, *emulator = sys.argv[2:]
with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    plugin = scratch / "folder of a plug-in"
    plugin.mkdir()
    alone = shutil.copy(library, plugin)
    shoot = simulate(program, scratch)
    expected = json.loads(calibrate_by_program(program, shoot, "log"))["transformCamTc"]
    printed = run(*emulator, host, alone, "tracker_data.csv", "log", cwd=shoot)
    found = re.search(r"^tracker at (\S+) (\S+) (\S+) m$", printed, re.MULTILINE)
    found = [float(number) for number in found.groups()]
    if found != [expected[3], expected[7], expected[11]]:
        sys.exit(f"the library alone finds {found}, the program {expected}")
print("the library works alone, from any folder, and a run outlives its unloading")
