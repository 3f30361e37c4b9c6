"""The program reports output that it cannot write, and keeps the result."""

import os
import re
import resource
import shutil
import unittest

from shoot import PROGRAM, Shoot, full_disk, run


class FullDisk(Shoot):
    def test_a_limit_that_cuts_the_log(self):
        done = self.calibrate(limits=[(resource.RLIMIT_FSIZE, 30000)])
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, "The log of the run is incomplete")
        self.assertRegex(done.stdout, r"focal length fx, px +\d")
        self.assert_same_values(self.read_result())

    def test_a_limit_that_cuts_the_images(self):
        # The log is shorter, the result with its cross-check longer.
        self.calibrate()
        before = self.result.read_bytes()
        done = self.calibrate(limits=[(resource.RLIMIT_FSIZE, 60000)])
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"error: cannot write \S*result\.json: File too large")
        self.assertEqual(self.result.read_bytes(), before)
        self.assertRegex(done.stderr, "warning: Reprojected images are missing or incomplete: ")
        self.assertRegex(done.stdout, "Success")

    def test_a_disk_that_becomes_full_during_the_run(self):
        with full_disk(self.log_folder, "200k"):
            done = self.calibrate()
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertRegex(done.stderr, "warning: Reprojected images are missing or incomplete: ")
            self.assertRegex(done.stderr, r"warning: cannot write \S*report\.html: No space left")
            result = self.read_result()
            self.assertIn("imagesMissing", [finding["id"] for finding in result["findings"]])
            self.assertEqual(result["verdict"]["level"], "good")
            for image in [p["reprojectedImage"] for p in result["photographs"] if p["reprojectedImage"]]:
                with open(image, "rb") as file:
                    self.assertEqual(file.read()[-2:], b"\xff\xd9", image)
            self.assert_same_values(result)

    def test_a_disk_on_which_the_log_is_cut(self):
        with full_disk(self.log_folder, "28k"):
            done = self.calibrate()
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertRegex(done.stderr, "The log of the run is incomplete, so the result cannot "
                                          "be cross-checked")
            result = self.read_result()
            self.assertEqual(result["verdict"]["level"], "doubt")
            self.assert_same_values(result)

    def test_a_full_disk_is_reported_before_the_run(self):
        with full_disk(self.log_folder, "4k"):
            (self.log_folder / "filler").write_bytes(b" " * 4096)
            done = self.calibrate()
            self.assertEqual(done.returncode, 2)
            self.assertRegex(done.stderr, "cannot write to the log folder")

    def test_a_full_disk_keeps_the_old_result(self):
        disk = self.home / "disk"
        self.calibrate()
        with full_disk(disk, self.result.stat().st_size * 3 // 2):  # room for one
            result = disk / "result.json"
            self.calibrate("--result", result)
            before = result.read_bytes()
            done = self.calibrate("--result", result)
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, r"error: cannot write \S*result\.json: No space left")
            self.assertEqual(result.read_bytes(), before)
            self.assertEqual([path.name for path in disk.iterdir()], ["result.json"])
            own = re.search(r"^Result: (.*)$", done.stdout, re.MULTILINE)[1]
            self.assertEqual(self.read_result(self.folder / own)["code"], 0)

    def test_an_incomplete_simulation_is_reported(self):
        disk = self.home / "disk"
        with full_disk(disk, "300k"):
            done = run("simulate", disk / "shoot", "--photographs", "16", "--image", "640x360")
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, "Cannot write ")


class PlacesThatCannotBeWritten(Shoot):
    def test_a_folder_in_which_nothing_can_be_created(self):
        # Not even the superuser can create anything in this file system.
        done = self.calibrate("--log-folder", "/proc/trackedcam")
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertRegex(done.stderr, "--log-folder: cannot create the folder")
        done = self.calibrate("--log-folder", "/proc")
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertRegex(done.stderr, "cannot write to the log folder /proc")

    def test_files_of_the_system_are_refused_before_the_run(self):
        for file in "/proc/result.json", "/dev/stdout", "/dev/fd/1":
            done = self.calibrate("--result", file)
            self.assertEqual(done.returncode, 2, done.stderr)
            self.assertRegex(done.stderr, f"cannot write {file}: it is a file of the system")
        self.assertFalse(self.log_folder.exists())

    def test_a_result_that_cannot_be_written_affects_nothing_else(self):
        out = self.home / "out"
        done = self.calibrate_with_intrusion("Camera calibration start.", lambda: shutil.rmtree(out),
                                             "--result", out / "result.json", "--report", out / "page.html")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"error: cannot write \S*/out/result\.json: ")
        self.assertRegex(done.stderr, r"error: cannot write \S*/out/page\.html: ")
        self.assertRegex(done.stdout, "Success")
        self.assert_same_values(self.read_result(self.log_folder / "run_001" / "result.json"))


class VanishingFiles(Shoot):
    def test_a_log_folder_that_vanishes(self):
        done = self.calibrate_with_intrusion("Camera calibration start.",
                                             lambda: shutil.rmtree(self.log_folder))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, "The log of the run is incomplete")
        self.assert_same_values(self.read_result())

    def test_a_log_folder_that_vanishes_before_the_second_run(self):
        done = self.calibrate_with_intrusion("Camera and Tracker Calibration successful.",
                                             lambda: shutil.rmtree(self.log_folder),
                                             "--refine-mounting")
        self.assertIn(done.returncode, [0, 3], done.stderr)
        self.assert_same_values(self.read_result())

    def test_photographs_that_are_emptied_after_the_search(self):
        def empty():
            for photograph in (self.folder / "photos").iterdir():
                photograph.write_bytes(b"")
        done = self.calibrate_with_intrusion("Camera calibration start.", empty)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, "warning: Reprojected images are missing or incomplete: ")
        self.assert_same_values(self.read_result())

    def test_photographs_that_are_removed_after_the_search(self):
        done = self.calibrate_with_intrusion("Camera calibration start.",
                                             lambda: shutil.rmtree(self.folder / "photos"))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assert_same_values(self.read_result())

    def test_photographs_that_vanish_during_the_search(self):
        done = self.calibrate_with_intrusion("img_003.jpg", lambda: shutil.rmtree(self.folder / "photos"))
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertEqual(self.read_result()["code"], 4)


class MissingOutput(Shoot):
    def commands(self):
        self.calibrate()
        log = next(self.log_folder.glob("run_001/log_*"))
        return [["--help"], ["--version"], ["--licenses"],
                ["calibrate", "--config", self.folder / "shoot.toml"],
                ["calibrate", "--config", self.folder / "shoot.toml", "--verbose"],
                ["crosscheck", "--log", log], ["crosscheck", "--log", log, "--json"],
                ["export", "ue5", "--result", self.result],
                ["export", "unreal", "--result", self.result, "--json"],
                ["report", "--result", self.result, "--out", self.home / "page.html"],
                ["simulate", self.home / "new", "--photographs", "1", "--image", "320x180"]]

    def assert_told(self, arguments, **options):
        done = run(*arguments, **options)
        self.assertEqual(done.returncode, 1, f"{arguments} {done.stderr}")
        self.assertRegex(done.stderr, "standard output could not be written")

    def test_on_a_full_device(self):
        for arguments in self.commands():
            with open("/dev/full", "w", encoding="utf-8") as full:
                self.assert_told(arguments, stdout=full)

    def test_into_a_pipe_without_a_reader(self):
        for arguments in self.commands():
            reading, writing = os.pipe()
            os.close(reading)
            self.assert_told(arguments, stdout=writing)
            os.close(writing)

    def test_with_standard_output_closed(self):
        for arguments in self.commands():
            words = " ".join(f"'{word}'" for word in [PROGRAM, *map(str, arguments)])
            status = os.system(f"{words} >&- 2>/dev/null")
            self.assertNotEqual(os.waitstatus_to_exitcode(status), 0, words)

    def test_keeps_the_result(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.calibrate("--verbose", stdout=full)
        self.assert_same_values(self.read_result())
        self.assertTrue((self.log_folder / "run_001" / "report.html").exists())


if __name__ == "__main__":
    unittest.main()
