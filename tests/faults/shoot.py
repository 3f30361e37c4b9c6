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
SANITIZED = os.environ.get("TRACKEDCAM_SANITIZED", "")  # such a program reserves terabytes
SECONDS = 1800  # a run that takes longer hangs, however busy the machine is
GIGABYTE = 1 << 30


def run(*arguments, limits=(), **options):
    """Runs the program; limits are pairs for setrlimit."""
    def limit():
        for which, value in limits:
            resource.setrlimit(which, (value, value))
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
    return subprocess.run([PROGRAM, *map(str, arguments)], preexec_fn=limit, timeout=SECONDS,
                          encoding="utf-8", errors="surrogateescape", check=False, **options)


@contextlib.contextmanager
def full_disk(folder, size):
    """A disk of so many bytes at a folder; skips the test where none can be mounted."""
    folder.mkdir(parents=True, exist_ok=True)
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.mount(b"none", os.fsencode(folder), b"tmpfs", 0, f"size={size}".encode()) != 0:
        raise unittest.SkipTest(f"no file system can be mounted here: {os.strerror(ctypes.get_errno())}")
    try:
        yield
    finally:
        libc.umount2(os.fsencode(folder), 2)


class Shoot(unittest.TestCase):
    """Each test has a copy of one shoot, in a folder of its own."""

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
        """The result, which must be whole."""
        return json.loads((path or self.result).read_text(encoding="utf-8"))

    def write_data(self, rows):
        """rows: of text, without the line's end."""
        (self.folder / "tracker_data.csv").write_text("Time,Image\n" + "".join(f"{row}\n" for row in rows))

    def rows(self):
        return (self.folder / "tracker_data.csv").read_text().splitlines()[1:]

    def assert_same_figures(self, result):
        """What a run that nothing disturbs finds."""
        calm = self.home / "calm"
        shutil.copytree(self.origin / "shoot", calm)
        self.assertEqual(run("calibrate", "--config", calm / "shoot.toml").returncode, 0)
        expected = self.read_result(calm / "result.json")
        for key in ["code", "normFocal", "normCenter", "distortion", "transformCamTc"]:
            self.assertEqual(result[key], expected[key], key)

    def calibrate_with_intrusion(self, line, intrude, *more):
        """Calls intrude when the library's line appears. The program can be at most a page ahead of
        what is read of its output, so that it is not done by then."""
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
