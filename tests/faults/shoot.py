"""A simulated shoot, and the program run on it under adverse conditions."""

import contextlib
import ctypes
import fcntl
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["TRACKEDCAM_PROGRAM"]
SANITIZED = os.environ.get("TRACKEDCAM_SANITIZED", "")  # a sanitizer reserves terabytes of addresses
SECONDS = 1800  # a longer run hangs, even on a busy machine
GIGABYTE = 1 << 30
COUNTERS = tempfile.TemporaryDirectory(prefix="trackedcam_counters_")


def own_counters():
    """The environment of a process that may end while it writes the counters of the lines that it covered.
    They go into a folder of their own: other processes could not add to files that are cut."""
    return {**os.environ, "GCOV_PREFIX": tempfile.mkdtemp(dir=COUNTERS.name)}


def run(*arguments, limits=(), **options):
    """Runs the program; limits are pairs of arguments for setrlimit."""
    def limit():
        for which, value in limits:
            resource.setrlimit(which, (value, value))
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "env": own_counters() if limits else None,
               **options}
    return subprocess.run([PROGRAM, *map(str, arguments)], preexec_fn=limit, timeout=SECONDS,
                          encoding="utf-8", errors="surrogateescape", check=False, **options)


@contextlib.contextmanager
def full_disk(folder, size):
    """Mounts a disk of this size at a folder; skips the test if that is not possible."""
    folder.mkdir(parents=True, exist_ok=True)
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.mount(b"none", os.fsencode(folder), b"tmpfs", 0, f"size={size}".encode()) != 0:
        raise unittest.SkipTest(f"no file system can be mounted here: {os.strerror(ctypes.get_errno())}")
    try:
        yield
    finally:
        libc.umount2(os.fsencode(folder), 2)


class Shoot(unittest.TestCase):
    """Each test has its own copy of one shoot."""

    photographs = 16

    @classmethod
    def setUpClass(cls):
        cls.origin = pathlib.Path(tempfile.mkdtemp(prefix="trackedcam_fault_"))
        cls.addClassCleanup(shutil.rmtree, cls.origin, ignore_errors=True)
        done = run("simulate", cls.origin / "shoot", "--photographs", cls.photographs, "--image", "640x360")
        assert done.returncode == 0, done.stderr

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(dir=self.origin))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.folder = self.home / "shoot"
        shutil.copytree(self.origin / "shoot", self.folder)
        self.result = self.folder / "result.json"
        self.log_folder = self.folder / "log"

    def calibrate(self, *more, **options):
        return run("calibrate", "--config", self.folder / "shoot.toml", *more, **options)

    def read_result(self, path=None):
        """The result file, which must be complete."""
        return json.loads((path or self.result).read_text(encoding="utf-8"))

    def write_data(self, rows):
        """Replaces the data file. rows are texts without line ends."""
        (self.folder / "tracker_data.csv").write_text("Time,Image\n" + "".join(f"{row}\n" for row in rows))

    def rows(self):
        return (self.folder / "tracker_data.csv").read_text().splitlines()[1:]

    def assert_same_values(self, result):
        """The result must have the values of an undisturbed run."""
        calm = self.home / "calm"
        shutil.copytree(self.origin / "shoot", calm)
        self.assertEqual(run("calibrate", "--config", calm / "shoot.toml").returncode, 0)
        expected = self.read_result(calm / "result.json")
        for key in ["code", "normFocal", "normCenter", "distortion", "transformCamTc"]:
            self.assertEqual(result[key], expected[key], key)

    def calibrate_with_intrusion(self, line, intrude, *more):
        """Calls intrude when the library prints the line. The program waits while the pipe holds a page of
        unread output, so it cannot be finished by then."""
        reading, writing = os.pipe()
        fcntl.fcntl(writing, fcntl.F_SETPIPE_SZ, 4096)
        with tempfile.TemporaryFile() as errors:
            process = subprocess.Popen(
                [PROGRAM, "calibrate", "--config", self.folder / "shoot.toml", "--verbose", *more],
                stdout=writing, stderr=errors)
            os.close(writing)
            seen = False
            with os.fdopen(reading, encoding="utf-8", errors="replace") as output:
                text = ""
                for read in output:
                    text += read
                    if not seen and line in read:
                        seen = True
                        intrude()
            status = process.wait(timeout=SECONDS)
            errors.seek(0)
            error = errors.read().decode("utf-8", "replace")
        self.assertTrue(seen, f"no line with {line}")
        return subprocess.CompletedProcess([], status, text, error)


def ended_by_signal(status):
    return status < 0 and signal.Signals(-status).name
