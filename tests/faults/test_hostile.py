"""A run with any input ends soon, uses little memory, and reports the row that is at fault."""

import os
import resource
import struct
import unittest
import zlib

from shoot import GIGABYTE, SANITIZED, Shoot, run

# Seconds of processor time, which does not depend on other work on the machine.
MINUTE = 60
LIMITS = [] if SANITIZED else [(resource.RLIMIT_AS, 2 * GIGABYTE), (resource.RLIMIT_CPU, MINUTE)]


def png(width, height):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    header = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    packer = zlib.compressobj()
    row = bytes(1 + 3 * min(width, 1 << 16))
    data = b"".join(packer.compress(row) for _ in range(min(height, 2000))) + packer.flush()
    return b"\x89PNG\r\n\x1a\n" + header + chunk(b"IDAT", data) + chunk(b"IEND", b"")


def jpeg(width, height):
    frame = struct.pack(">BHHB", 8, height, width, 3) + b"\1\x11\0\2\x11\0\3\x11\0"
    scan = b"\xff\xda\0\x0c\3\1\0\2\0\3\0\0\x3f\0"
    return b"\xff\xd8\xff\xc0" + struct.pack(">H", 2 + len(frame)) + frame + scan + bytes(1000)


def bmp(width, height):
    return b"BM" + struct.pack("<IHHIIiiHHIIiiII", 1000, 0, 0, 54, 40, width, height, 1, 24, 0, 0, 0, 0, 0,
                               0) + bytes(1000)


def tiff(width, height, before=0):
    """before: the number of meaningless entries before the size."""
    entries = [(254, 4, 0)] * before + [(256, 4, width), (257, 4, height), (258, 3, 8), (259, 3, 1),
                                        (262, 3, 1), (273, 4, 8), (277, 3, 1), (278, 4, height), (279, 4, 100)]
    directory = struct.pack("<H", len(entries))
    for tag, kind, value in entries:
        directory += struct.pack("<HHII", tag, kind, 1, value)
    return b"II*\0" + struct.pack("<I", 8) + directory + bytes(200)


def webp(width, height):
    canvas = struct.pack("<I", width - 1)[:3] + struct.pack("<I", height - 1)[:3]
    chunk = b"VP8X" + struct.pack("<I", 10) + bytes(4) + canvas
    return b"RIFF" + struct.pack("<I", 4 + len(chunk)) + b"WEBP" + chunk


class HostileInput(Shoot):
    def assert_named(self, words, status=None, *more):
        done = self.calibrate(*more, limits=LIMITS)
        self.assertGreaterEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout + done.stderr, words)
        if status is not None:
            self.assertEqual(done.returncode, status, done.stderr)
        return done

    def replace_first(self, content):
        (self.folder / "photos" / "img_000.jpg").write_bytes(content)

    def test_pictures_of_gigabytes_in_every_format(self):
        for name, content in [("png", png(30000, 30000)), ("jpeg", jpeg(65500, 65500)),
                              ("bmp", bmp(40000, 40000)), ("tiff", tiff(60000, 60000)),
                              ("webp", webp(1 << 14, 1 << 14)), ("long", bmp(1 << 21, 1)),
                              ("hidden", tiff(60000, 60000, before=5000))]:
            with self.subTest(name):
                self.replace_first(content)
                self.assert_named(r"left out: \S*img_000\.jpg \(\d+ x \d+\)", 0)

    def test_pictures_of_formats_without_a_bound(self):
        for content in [b"P6\n60000 60000\n255\n" + bytes(100), b"#?RADIANCE\n\n-Y 60000 +X 60000\n",
                        b"\x76\x2f\x31\x01\2\0\0\0" + bytes(100), b"GIF89a" + bytes(100),
                        b"SIMPLE  =                    T" + bytes(100), b"no picture"]:
            with self.subTest(content[:4]):
                self.replace_first(content)
                self.assert_named(r"are left out: \S*img_000\.jpg\.", 0)

    def test_what_is_no_file(self):
        photograph = self.folder / "photos" / "img_000.jpg"
        photograph.unlink()
        os.mkfifo(photograph)
        self.assert_named(r"left out: \S*img_000\.jpg", 0)
        self.assert_named("no file", 2, "--data", "/dev/zero")
        done = self.calibrate("--result", "/dev/null")
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertTrue(os.path.exists("/dev/null") and not os.path.isfile("/dev/null"))

    def report(self, result):
        """The time of the page of a stranger's result is proportional to the size of its file."""
        file = self.home / "stranger.json"
        file.write_text(result)
        return run("report", "--result", file, "--out", self.home / "page.html", limits=LIMITS)

    def test_a_result_with_very_many_photographs(self):
        done = self.report('{"photographs":[' + ",".join(['{"path":"a.jpg"}'] * 40000) + "]}")
        self.assertEqual(done.returncode, 0, done.stderr)
        page = (self.home / "page.html").read_text(encoding="utf-8")
        self.assertGreater(page.count("<li class=\"photograph "), 39999)

    def test_a_result_with_very_many_keys(self):
        done = self.report("{" + ",".join(f'"{key}":0' for key in range(1000000)) + "}")
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, "one of its objects has more than 1000 keys")

    def test_a_result_that_names_one_picture_very_often(self):
        picture = self.folder / "photos" / "img_000.jpg"
        (self.home / "a.jpg").write_bytes(picture.read_bytes())
        path = str(self.home / "a.jpg")
        done = self.report('{"photographs":[' + ",".join(['{"path":"%s"}' % path] * 6000) + "]}")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, "does not show pictures after the first 5000")
        page = (self.home / "page.html").read_text(encoding="utf-8")
        self.assertEqual(page.count("data:image/jpeg;base64,"), 5000)

    def test_paths_with_a_line_ending(self):
        place = self.home / "a\nb"
        (self.folder).rename(place)
        done = run("calibrate", "--config", place / "shoot.toml", limits=LIMITS)
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, "has a line ending or another control character")
        self.assertEqual(done.stderr.count("\n"), 1)

    def test_boards_that_nobody_can_search(self):
        self.assert_named("--board: 5000x5000 is too large", 2, "--board", "5000x5000")
        self.assert_named("--board: 101x6 is too large", 2, "--board", "101x6")
        self.assert_named("error 4", 1, "--board", "100x100")

    def test_a_million_rows(self):
        rows = self.rows()
        missing = [f"{i},photos/none_{i}.jpg,{','.join(rows[0].split(',')[2:])}" for i in range(1000000 - 17)]
        self.write_data(rows + missing)
        self.assert_named("Photographs cannot be found: photos/none_0.jpg")
        self.write_data([""] * 999000 + rows)
        self.assert_named("Blank lines count as rows without a photograph: rows 2, 3, 4")
        self.write_data([""] * 1000001)
        self.assert_named("has more than 1000000 rows", 2)

    def test_numbers_that_are_not_finite_or_too_large(self):
        rows = self.rows()
        for value in ["nan", "-inf", "1e400", "1e300"]:
            with self.subTest(value):
                fields = rows[6].split(",")
                fields[4] = value
                self.write_data(rows[:6] + [",".join(fields)] + rows[7:])
                self.assert_named(r"in row 8 \(field 5 of row 8, photos/img_006\.jpg\)", 0)
                # The row is left out, and the others give a result.
                state = self.read_result()["photographs"][6]["state"]
                self.assertEqual(state, "leftOutBeforeTheRun")

    def test_names_with_terminal_commands(self):
        rows = self.rows()
        fields = rows[0].split(",")
        fields[1] = "photos/\x1b[2J\x9b31m\u202egpj.\r.jpg"
        self.write_data([",".join(fields)] + rows[1:])
        done = self.assert_named(r"photos/\\u001b\[2J\\u009b31m\\u202egpj\.\\u000d\.jpg")
        for stream in [done.stdout, done.stderr]:
            self.assertNotRegex(stream, "[\x00-\x08\x0b\x0d-\x1f\x7f-\x9f\u202a-\u202e]")


if __name__ == "__main__":
    unittest.main()
