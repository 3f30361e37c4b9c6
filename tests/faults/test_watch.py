"""A shoot is followed while it is photographed, and Ctrl-C ends with its calibration."""

import signal
import subprocess
import threading
import time

from shoot import PROGRAM, SECONDS, Shoot


class Watch(Shoot):
    def watch(self, rows, wait_for):
        """Appends the rows from a thread, and ends once the output holds the text."""
        data = self.folder / "tracker_data.csv"
        data.write_text("")
        process = subprocess.Popen([PROGRAM, "calibrate", "--config", self.folder / "shoot.toml", "--watch",
                                    "--until", "20mm,2deg"],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")

        def record():
            for row in rows:
                with open(data, "a", encoding="utf-8") as file:
                    file.write(row[:30])
                    file.flush()
                    time.sleep(0.05)
                    file.write(row[30:])
        recorder = threading.Thread(target=record)
        recorder.start()
        lines = []
        for line in process.stdout:
            lines.append(line)
            if wait_for in line:
                break
        recorder.join()
        page = (self.folder / "log/watch.html").read_text()
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=SECONDS)
        return process.returncode, "".join(lines) + out, err, page

    def test_calibrates_what_was_recorded(self):
        rows = (self.folder / "tracker_data.csv").read_text().splitlines(keepends=True)
        status, out, err, page = self.watch(rows, "Enough.")
        self.assertEqual(status, 0, err)
        self.assertIn("img_000.jpg: board found, sharp", out)
        self.assertIn("Calibrating.", out)
        self.assertIn("from 16 photographs" if "from 16 photographs" in out else "of 16 photographs", out)
        self.assertEqual(self.read_result()["code"], 0)
        self.assertIn("http-equiv=\"refresh\"", page)
        self.assertIn("img_000.jpg", page)
        self.assertNotIn("refresh", (self.folder / "log/watch.html").read_text())

    def test_ends_without_rows(self):
        status, out, err, _ = self.watch([], "Page:")
        self.assertEqual(status, 2)
        self.assertIn("has no rows", err)
