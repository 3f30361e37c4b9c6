"""Whenever the program is stopped, its files are complete: either the old ones or the new ones."""

import os
import random
import resource
import signal
import subprocess
import time
import unittest

from shoot import GIGABYTE, PROGRAM, SANITIZED, SECONDS, Shoot, ended_by_signal

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
        for trial in range(times):
            process = subprocess.Popen([PROGRAM, "calibrate", "--config", self.folder / "shoot.toml"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
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

    def test_kill(self):
        self.interrupt(signal.SIGKILL, 50)

    def test_term(self):
        self.interrupt(signal.SIGTERM, 8)

    def test_hangup(self):
        self.interrupt(signal.SIGHUP, 8)

    def test_leftovers_of_a_kill_do_no_harm(self):
        for number in range(3):
            (self.folder / f".trackedcam-{number}.part").write_text("half")
        self.assertEqual(self.calibrate().returncode, 0)
        self.assertEqual(self.read_result()["code"], 0)


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
