"""The page of any result is HTML in which the result's texts are text only."""

import copy
import html.parser
import json
import os
import random
import re
import time
import unittest

from shoot import Shoot, run

SEED = int(os.environ.get("TRACKEDCAM_SEED", time.time_ns() % 2**32))
EMPTY = {"area", "base", "br", "col", "embed", "hr", "img", "input", "link", "meta", "source", "track", "wbr"}

# Each would be an element, an attribute, an address with a script, or the end of the JSON in the page.
HOSTILE = ["<script>alert(1)</script>", '"><img src=x onerror=alert(1)>', "' onload='alert(1)", "</script><b>",
           "javascript:alert(1)", "<!--", "]]>", "{{json}}", "{{{style}}}", "\u202e\u0000\u001b[2J", "&lt;b&gt;", "a\nb"]
NUMBERS = [0, -1, 1e308, -1e-308, 2**63, 0.5]
OTHERS = [None, True, [], {}, [[]], "text", 7]


class Structure(html.parser.HTMLParser):
    """The elements of a page with the names of their attributes; closes each that it opens."""

    def __init__(self, page):
        super().__init__(convert_charrefs=True)
        self.open, self.elements, self.addresses, self.faults = [], [], [], []
        self.feed(page)
        self.close()
        self.faults += [f"{tag} is not closed" for tag in self.open]

    def handle_starttag(self, tag, attrs):
        names = [name for name, _ in attrs]
        self.elements.append((tag, *names))
        self.faults += [f"{tag} has {name}" for name in names if name.startswith("on")]
        self.addresses += [value for name, value in attrs if name in ["href", "src"]]
        if tag not in EMPTY:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if tag in EMPTY:
            return
        if self.open and self.open[-1] == tag:
            self.open.pop()
        else:
            self.faults.append(f"</{tag}> inside {self.open[-3:]}")

    def handle_comment(self, data):
        self.faults.append(f"comment {data[:40]}")


def places(value, path=()):
    """The path of each value in a result."""
    yield path
    children = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else []
    for key, child in children:
        yield from places(child, (*path, key))


def replaced(result, path, value):
    place = result
    for key in path[:-1]:
        place = place[key]
    place[path[-1]] = value


def at(result, path):
    for key in path:
        result = result[key]
    return result


class Pages(Shoot):
    def setUp(self):
        super().setUp()
        done = self.calibrate("--export", "unreal,unity", "--chart-rotation=12,-8,5",
                              "--chart-translation=0.15,-0.05,0.02")
        self.assertTrue(self.result.exists(), done.stderr)
        self.original = self.read_result()
        for photograph in self.original["photographs"]:  # so that a page takes little time
            photograph["path"] = photograph["reprojectedImage"] = "a.jpg"

    def page(self, result):
        file, page = self.home / "changed.json", self.home / "page.html"
        file.write_text(json.dumps(result))
        done = run("report", "--result", file, "--out", page)
        self.assertEqual(done.returncode, 0, done.stderr)
        return page.read_text(encoding="utf-8")

    def checked(self, page):
        """Its elements. The page's own scripts and style are known by their hashes."""
        structure = Structure(page)
        self.assertEqual(structure.faults, [])
        for address in structure.addresses:
            self.assertRegex(address, r"^(\./|#|data:image/(jpeg|png|svg\+xml)[;,])")
        data = re.search(r'<script type="application/json" id="data">(.*?)</script>', page, re.DOTALL)
        self.assertIsInstance(json.loads(data[1]), dict)
        return structure.elements

    def test_texts_stay_text(self):
        random.seed(SEED)
        # The page chooses its parts by these.
        chosen = {"level", "state", "severity", "hand", "format"}
        texts = [path for path in places(self.original)
                 if isinstance(at(self.original, path), str) and at(self.original, path) and path[-1] not in chosen]
        for trial in range(40):
            plain, hostile = copy.deepcopy(self.original), copy.deepcopy(self.original)
            text = HOSTILE[trial % len(HOSTILE)]
            for path in random.sample(texts, len(texts) // 2):
                replaced(plain, path, "plain")
                replaced(hostile, path, text)
            with self.subTest(seed=SEED, trial=trial, text=text):
                self.assertEqual(self.checked(self.page(hostile)), self.checked(self.page(plain)))

    def test_values_of_any_kind_give_a_whole_page(self):
        random.seed(SEED)
        for trial in range(60):
            result = copy.deepcopy(self.original)
            for _ in range(random.choice([1, 3, 30])):
                path = random.choice([path for path in places(result) if path])
                replaced(result, path, random.choice(HOSTILE + NUMBERS + OTHERS))
            with self.subTest(seed=SEED, trial=trial):
                self.checked(self.page(result))


if __name__ == "__main__":
    unittest.main()
