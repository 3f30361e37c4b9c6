#!/usr/bin/env python3
"""Takes out one statement of the library at a time and says which the tests do not miss.

Works in a copy of the tree, so that nothing here changes; the copy is kept for the next time. A
mutant that does not compile, or of which the compiler warns, counts as caught by the build.

Usage: scripts/mutate.py COPY [COUNT] [SEED]    (e.g. scripts/mutate.py ~/mutants 200 1)
"""

import os
import pathlib
import random
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["handeye", "calib", "geometry", "api"]
# An assignment, a call or a jump, on one line or more. Declarations stay: without them nothing
# compiles.
STATEMENT = re.compile(r"^ +(?=[A-Za-z_*+-])[^;{}]*?;[ \t]*(?://.*)?\n", re.MULTILINE)
DECLARATION = re.compile(r" *(?!return\b)(const |auto |constexpr |using |[\w:<>, ]+[\w>&*] \w+ *[=;({])")

# Survivors that change nothing, each with the reason.
EQUIVALENT = {
    "reserve(": "a list grows without it",
}


def mutants(copy):
    for folder in FOLDERS:
        for path in sorted((copy / "src" / folder).glob("*.cpp")):
            text = path.read_text(encoding="utf-8")
            body = text.index("namespace trackedcam")
            for match in STATEMENT.finditer(text, body):
                before = re.sub(r"//.*", "", text[:match.start()]).rstrip()
                if before[-1] in ";{}" and not DECLARATION.match(match[0]):
                    yield folder, path.relative_to(copy), match.span()


def run(*command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False,
                          **options).returncode == 0


def is_caught(copy, folder):
    """By the tests of its folder, else by whole runs."""
    environment = os.environ | {"OPENBLAS_NUM_THREADS": "1"}
    for tests in (folder, "shoots"):
        if not run("cmake", "--build", "--preset", "dev", "--target", f"{tests}_tests", cwd=copy):
            return "build"
        try:
            if not run(copy / f"build/dev/tests/{tests}_tests", "--gtest_fail_fast",
                       "--gtest_filter=-Threads.*:RealPhotographs.*", cwd=copy, env=environment,
                       timeout=300):
                return tests
        except subprocess.TimeoutExpired:
            return "time"
    return None


def main():
    if not 2 <= len(sys.argv) <= 4:
        sys.exit(__doc__)
    copy = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 200
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    copy.mkdir(parents=True, exist_ok=True)
    archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, stdout=subprocess.PIPE, check=True)
    subprocess.run(["tar", "x", "-C", copy], input=archive.stdout, check=True)
    if not run("cmake", "--preset", "dev", cwd=copy) or not all(
            run("cmake", "--build", "--preset", "dev", "--target", f"{tests}_tests", cwd=copy)
            for tests in [*FOLDERS, "shoots"]):
        sys.exit("the tree itself does not build")

    everything = list(mutants(copy))
    chosen = random.Random(seed).sample(everything, min(count, len(everything)))
    caught, equivalent, survivors = {}, 0, []
    for number, (folder, path, (start, end)) in enumerate(chosen, 1):
        target = copy / path
        text = target.read_text(encoding="utf-8")
        statement = " ".join(text[start:end].split())
        target.write_text(text[:start] + text[end:], encoding="utf-8")
        by = is_caught(copy, folder)
        target.write_text(text, encoding="utf-8")
        caught[by] = caught.get(by, 0) + 1
        place = f"{path}:{text.count(chr(10), 0, start) + 1}: {statement}"
        if by is None:
            reason = next((why for part, why in EQUIVALENT.items() if part in statement), None)
            equivalent += reason is not None
            survivors += [] if reason else [place]
        print(f"{number}/{len(chosen)} {by or reason or 'SURVIVES'}: {place}", flush=True)
    survived = caught.pop(None, 0)
    print(f"seed {seed}: of {len(chosen)} mutants {len(chosen) - survived} caught {caught}, "
          f"{equivalent} change nothing, {len(survivors)} survive", *survivors, sep="\n  ")
    sys.exit(1 if survivors else 0)


main()
