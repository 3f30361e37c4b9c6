#!/usr/bin/env python3
"""Removes one statement of the library at a time (a mutant) and prints the mutants that no test catches.

Works in copies of the last commit, one for each processor, and keeps them for the next run. A mutant
that does not compile, or that the compiler warns about, counts as caught by the build.

Usage: scripts/mutate.py COPIES [COUNT] [SEED]    (e.g. scripts/mutate.py ~/mutants 200 1)
"""

import collections
import concurrent.futures
import os
import pathlib
import queue
import random
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["handeye", "calib", "geometry", "api"]
# An assignment, a call or a jump, on one line or more. Not declarations: without them nothing compiles.
STATEMENT = re.compile(r"^ +(?=[A-Za-z_*+-])[^;{}]*?;[ \t]*(?://.*)?\n", re.MULTILINE)
DECLARATION = re.compile(r" *(?!return\b)(const |auto |constexpr |using |[\w:<>, ]+[\w>&*] \w+ *[=;({])")

# Statements whose removal changes no result, with the reason.
EQUIVALENT = {
    "reserve(": "a list grows without it too",
}


def mutants(tree):
    for folder in FOLDERS:
        for path in sorted((tree / "src" / folder).glob("*.cpp")):
            text = path.read_text(encoding="utf-8")
            body = text.index("namespace trackedcam")
            for match in STATEMENT.finditer(text, body):
                before = re.sub(r"//.*", "", text[:match.start()]).rstrip()
                if before[-1] in ";{}" and not DECLARATION.match(match[0]):
                    yield folder, path.relative_to(tree), match.span()


def run(*command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False,
                          **options).returncode == 0


def build(copy, *folders):
    return run("cmake", "--build", "--preset", "dev", "-j1", "--target", *(f"{folder}_tests" for folder in folders),
               cwd=copy)


def prepare(copy):
    copy.mkdir(parents=True, exist_ok=True)
    archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, stdout=subprocess.PIPE, check=True)
    subprocess.run(["tar", "x", "-C", copy], input=archive.stdout, check=True)
    for _, path, _ in mutants(copy):
        (copy / path).touch()  # an interrupted run may have built another text
    if not run("cmake", "--preset", "dev", "-D", "TRACKEDCAM_TEST_OPTIONS=-O0", cwd=copy) or not build(
            copy, *FOLDERS, "shoots"):
        sys.exit("the tree does not build without a mutant")
    for tests in [*FOLDERS, "shoots"]:
        if not passes(copy, tests):
            sys.exit(f"{tests}_tests fails without a mutant")


def passes(copy, tests):
    return run(copy / f"build/dev/tests/{tests}_tests", "--gtest_fail_fast",
               "--gtest_filter=-Threads.*:RealPhotographs.*", cwd=copy, timeout=300,
               env=os.environ | {"OPENBLAS_NUM_THREADS": "1", "TMPDIR": str(copy)})


def caught_by(copy, folder):
    """The tests of its folder, the whole runs, the build or the time limit; None if nothing catches it."""
    for tests in (folder, "shoots"):
        if not build(copy, tests):
            return "build"
        try:
            if not passes(copy, tests):
                return tests
        except subprocess.TimeoutExpired:
            return "time"
    return None


def main():
    if not 2 <= len(sys.argv) <= 4:
        sys.exit(__doc__)
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 200
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    copies = [pathlib.Path(sys.argv[1]).resolve() / str(number) for number in range(os.cpu_count())]
    everything = list(mutants(ROOT))
    chosen = random.Random(seed).sample(everything, min(count, len(everything)))
    free = queue.SimpleQueue()

    def judge(mutant):
        folder, path, (start, end) = mutant
        copy = free.get()
        text = (ROOT / path).read_text(encoding="utf-8")
        (copy / path).write_text(text[:start] + text[end:], encoding="utf-8")
        by = caught_by(copy, folder)
        (copy / path).write_text(text, encoding="utf-8")
        free.put(copy)
        statement = " ".join(text[start:end].split())
        reason = next((why for part, why in EQUIVALENT.items() if part in statement), None)
        return by or reason or "SURVIVES", f"{path}:{text.count(chr(10), 0, start) + 1}: {statement}"

    with concurrent.futures.ThreadPoolExecutor(len(copies)) as workers:
        for copy in workers.map(lambda copy: prepare(copy) or copy, copies):
            free.put(copy)
        verdicts = collections.Counter()
        for number, (verdict, place) in enumerate(workers.map(judge, chosen), 1):
            verdicts[verdict] += 1
            print(f"{number}/{len(chosen)} {verdict}: {place}", flush=True)
    print(f"seed {seed}: {len(chosen)} of {len(everything)} mutants: {dict(verdicts)}")
    sys.exit(1 if verdicts["SURVIVES"] else 0)


main()
