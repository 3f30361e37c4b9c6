"""Whenever the program is stopped, its files are complete: either the old ones or the new ones."""

import json
import os
import random
import resource
import signal
import subprocess
import time
import unittest

from shoot import GIGABYTE, PROGRAM, SANITIZED, SECONDS, Shoot, ended_by_signal, own_counters

SEED = int(os.environ.get("TRACKEDCAM_SEED", time.time_ns() % 2**32))


class Signals(Shoot):
    def interrupt(self, number, times):
        """Sends the signal at random moments, and reads the result after each."""
        random.seed(SEED)
        began = time.monotonic()
        self.calibrate()
        duration = time.monotonic() - began
        old = self.read_result()
        outcomes = {"old": 0, "new": 0}
        environment = own_counters()
        for trial in range(times):
            process = subprocess.Popen([PROGRAM, "calibrate", "--config", self.folder / "shoot.toml"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment)
            time.sleep(random.uniform(0, 1.2 * duration))
            process.send_signal(number)
            process.wait(timeout=SECONDS)
            with self.subTest(seed=SEED, trial=trial):
                new = self.read_result()
                self.assertEqual(new["transformCamTc"], old["transformCamTc"])
                self.assertIn("versions", new)
            outcomes["old" if new["log"] == old["log"] else "new"] += 1
            old = new
        print(f"{number.name} {times} times, seed {SEED}: {outcomes}")

    def test_term(self):
        self.interrupt(signal.SIGTERM, 8)

    def test_hangup(self):
        self.interrupt(signal.SIGHUP, 8)


class Kills(Shoot):
    """Many kills in a row, as of a host with a time limit. Each run has two runs of the library."""

    photographs = 12
    refined = ["--refine-mounting", "--chart-rotation=0,0,0", "--chart-translation=0.2,0.1,0.1"]

    def complete_files(self):
        """The content of each file that the program writes; none may be incomplete. The images are the library's."""
        contents = {}
        for path in self.folder.rglob("*"):
            if path.name.startswith(".trackedcam-") or not path.is_file() or "photos" in path.parts:
                continue
            content = path.read_bytes()
            if path.suffix == ".json":
                json.loads(content)
            elif path.suffix == ".html":
                self.assertTrue(content.rstrip().endswith(b"</html>"), path)
            elif path.name in ["tracker_data.csv", "calibrate.toml"]:
                self.assertTrue(content.endswith(b"\n"), path)
            else:
                continue
            contents[path] = content
        return contents

    def test_200_kills(self):
        random.seed(SEED)
        began = time.monotonic()
        done = self.calibrate(*self.refined)
        duration = time.monotonic() - began
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIsNotNone(self.read_result()["firstRun"])
        files = self.complete_files()
        command = [PROGRAM, "calibrate", "--config", self.folder / "shoot.toml", *self.refined]
        finished = 0
        environment = own_counters()
        for trial in range(200):
            process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment)
            # Half of them in the first tenth and in the last, where the files are written.
            moment = random.choice([random.uniform(0, 1.1), random.uniform(0, 0.1), random.uniform(0.9, 1.1)])
            time.sleep(moment * duration)
            process.kill()
            finished += process.wait(timeout=SECONDS) == 0
            with self.subTest(seed=SEED, trial=trial):
                now = self.complete_files()
                old_runs = [path for path in files if path.parent != self.folder]
                self.assertEqual([path for path in old_runs if now.get(path) != files[path]], [])
                self.assertIn(self.result, now)
                files = now
        print(f"200 kills, seed {SEED}: {finished} runs had finished")
        self.assert_no_leftovers()

    def assert_no_leftovers(self):
        """As a later run finds them, all is removed that the kills left incomplete."""
        for path in [*self.folder.rglob("*"), self.log_folder]:
            os.utime(path, (time.time() - 3600,) * 2)
        self.assertEqual(self.calibrate(*self.refined).returncode, 0)
        self.assertEqual([path for path in self.folder.rglob("*.part")], [])
        for run in self.log_folder.glob("run_*"):
            self.assertTrue(any(path.is_file() for path in run.rglob("*")), run)


@unittest.skipIf(SANITIZED, "a sanitizer reserves terabytes of addresses")
class Memory(Shoot):
    def test_too_little_memory_ends_with_a_message(self):
        self.calibrate()
        outcomes = set()
        for megabytes in [1200, 900, 700, 600, 500, 400]:
            before = self.read_result()
            done = self.calibrate(limits=[(resource.RLIMIT_AS, megabytes << 20)])
            if done.returncode == 127:  # not even the libraries could be loaded
                break
            self.assertFalse(ended_by_signal(done.returncode), f"{megabytes} MB: {done.stderr}")
            result = self.read_result()
            if done.returncode != 0:
                self.assertRegex(done.stderr, "trackedcam: ", f"{megabytes} MB")
            else:
                self.assertEqual(result["transformCamTc"], before["transformCamTc"])
            outcomes.add(done.returncode)
        self.assertIn(0, outcomes)

    def test_a_calibration_needs_little(self):
        self.assertEqual(self.calibrate(limits=[(resource.RLIMIT_AS, 2 * GIGABYTE)]).returncode, 0)


if __name__ == "__main__":
    unittest.main()
