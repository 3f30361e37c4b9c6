"""Opens the pages of simulated shoots in a headless Chromium and looks at what a person would see.

Usage: check_page.py REPORT_PAGE [TEST...]

Ends with 77, which CTest counts as skipped, if there is no browser.
"""

import base64
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import make_results

REPORT_PAGE = sys.argv.pop(1)
BROWSER, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
try:
    from selenium import webdriver
    from selenium.common.exceptions import NoAlertPresentException
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    webdriver = None

SECTIONS = ["answer", "scene", "agreement", "coverage", "views", "comparison", "screen", "photographs", "record"]
WITHOUT_CROSS_CHECK = ["answer", "agreement", "photographs", "record"]


def start_browser(folder):
    options = webdriver.ChromeOptions()
    options.binary_location = BROWSER
    for argument in ["--headless=new", "--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
                     "--disable-background-networking", "--disable-component-update", "--disable-sync",
                     "--no-first-run", "--disable-dev-shm-usage", f"--user-data-dir={folder}"]:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=webdriver.chrome.service.Service(DRIVER), options=options)


def number(text):
    return float(text.replace("−", "-").replace("±", ""))


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        make_results.main(cls.folder)
        for name in make_results.SHOOTS:
            subprocess.run([REPORT_PAGE, cls.folder / f"{name}.json", cls.folder / f"{name}.thumbnails",
                            cls.folder / f"{name}.html"], check=True)
        cls.browser = start_browser(cls.folder / "profile")

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.temporary.cleanup()

    def open(self, name, width=1280, height=800, theme="light"):
        """Opens a page and returns the result that it was made from."""
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 500})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": theme}]})
        self.browser.get("about:blank")
        for log in ["browser", "performance"]:
            self.browser.get_log(log)  # of the page before
        self.browser.get((self.folder / f"{name}.html").as_uri())
        WebDriverWait(self.browser, 60).until(lambda b: b.execute_script("return document.body.dataset.drawn"))
        return json.loads((self.folder / f"{name}.json").read_text(encoding="utf-8"))

    def run_script(self, script, *arguments):
        return self.browser.execute_script("return " + script, *arguments)

    def texts(self, selector):
        # textContent, because the driver reports no text of closed details.
        return self.run_script("[...document.querySelectorAll(arguments[0])].map((e) => e.textContent.trim())", selector)

    def click_at(self, selector, place):
        element = self.browser.find_element(By.CSS_SELECTOR, selector)
        self.run_script("arguments[0].scrollIntoView({block: 'center', behavior: 'instant'})", element)
        # The driver measures from the middle.
        size = self.run_script("[arguments[0].clientWidth, arguments[0].clientHeight]", element)
        x, y = (round(p - s / 2) for p, s in zip(place, size))
        ActionChains(self.browser).move_to_element_with_offset(element, x, y).click().perform()

    def wait_for(self, condition):
        """The browser handles a click some time later."""
        WebDriverWait(self.browser, 20).until(lambda _: condition())

    def assert_selected(self, expected):
        self.wait_for(lambda: self.run_script("document.body.dataset.selected") == str(expected))
        self.assertEqual(self.run_script("trackedcamScene.selected()"), expected)
        self.assertEqual(self.run_script("[...document.querySelectorAll('.open[aria-pressed=true]')]"
                                         ".map((e) => e.closest('li').dataset.number)"), [str(expected)])
        self.assertEqual(self.texts("#selection-number"), [str(expected)])

    def test_pages_of_all_shoots_have_their_sections_and_no_errors(self):
        for name in make_results.SHOOTS:
            with self.subTest(name):
                result = self.open(name)
                expected = SECTIONS if result["crossCheck"] else WITHOUT_CROSS_CHECK
                self.assertEqual(self.run_script("[...document.querySelectorAll('main > section')].map((e) => e.id)"), expected)
                self.assertEqual(self.run_script("document.documentElement.lang"), "en")
                errors = [entry for entry in self.browser.get_log("browser")
                          if "GL Driver Message" not in entry["message"]]  # of the software renderer
                self.assertEqual(errors, [])

    def test_nothing_is_loaded_from_the_network(self):
        for name in make_results.SHOOTS:
            with self.subTest(name):
                self.open(name)
                messages = [json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance")]
                addresses = [m["params"]["request"]["url"] for m in messages if m["method"] == "Network.requestWillBeSent"]
                page = (self.folder / f"{name}.html").as_uri()
                self.assertIn(page, addresses)  # requests are logged
                self.assertEqual([a[:80] for a in addresses if a != page and not a.startswith(("data:", "about:"))], [])

    def test_every_picture_is_drawn(self):
        self.open("noisy")
        for canvas in ["agreement-chart", "roll-chart", "screen-chart", "scene-canvas"]:
            colours = self.run_script("""(() => {
                const canvas = document.getElementById(arguments[0]);
                const copy = document.createElement('canvas');
                [copy.width, copy.height] = [200, 200];
                copy.getContext('2d').drawImage(canvas, 0, 0, 200, 200);
                const bytes = copy.getContext('2d').getImageData(0, 0, 200, 200).data;
                return new Set(new Uint32Array(bytes.buffer)).size;
            })()""", canvas)
            self.assertGreater(colours, 10, canvas)
        for svg in ["coverage-map", "residual-map", "tilt-map"]:
            self.assertGreater(self.run_script("document.getElementById(arguments[0]).querySelectorAll('path').length", svg), 1, svg)

    def test_a_click_on_bar_7_selects_camera_7(self):
        result = self.open("noisy")
        self.click_at("#agreement-chart", self.run_script("trackedcamBars.place(7)"))
        self.assert_selected(7)
        self.assertEqual(self.texts("#selection-name"), [result["photographs"][6]["name"].split("/")[-1]])

    def test_a_click_on_a_camera_selects_its_photograph(self):
        self.open("perfect")
        places = {n: self.run_script("trackedcamScene.place(arguments[0])", n) for n in range(1, 21)}
        distance = lambda a, b: (a[0] - b[0]) ** 2 + (a[1] - b[1]) ** 2
        alone = max(places, key=lambda n: min(distance(places[n], places[m]) for m in places if m != n))
        self.click_at("#scene-canvas", places[alone])
        self.assert_selected(alone)

    def test_the_keyboard_selects_rotates_and_enlarges(self):
        self.open("noisy")
        bars = self.browser.find_element(By.ID, "agreement-chart")
        self.run_script("arguments[0].focus()", bars)
        bars.send_keys(Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
        self.assert_selected(3)
        bars.send_keys(Keys.ARROW_LEFT)
        self.assert_selected(2)
        scene = self.browser.find_element(By.ID, "scene-canvas")
        before = self.run_script("trackedcamScene.place(2)")
        self.run_script("arguments[0].focus()", scene)
        scene.send_keys(Keys.ARROW_RIGHT)
        self.wait_for(lambda: self.run_script("trackedcamScene.place(2)") != before)
        photograph = self.browser.find_element(By.CSS_SELECTOR, ".photograph[data-number='5'] .open")
        photograph.send_keys(Keys.ENTER)
        self.assert_selected(5)
        self.wait_for(lambda: self.run_script("document.getElementById('enlarged').open"))
        ActionChains(self.browser).send_keys(Keys.ESCAPE).perform()
        self.wait_for(lambda: not self.run_script("document.getElementById('enlarged').open"))

    def test_ticked_photographs_make_a_command(self):
        result = self.open("mounting-off")
        shown = lambda: self.run_script("!document.getElementById('leave-out').hidden")
        self.assertFalse(shown())
        boxes = self.browser.find_elements(By.CSS_SELECTOR, ".leave-out")
        names = self.run_script("[...document.querySelectorAll('.leave-out')]"
                                ".map((e) => e.closest('.photograph').dataset.name)")
        for box in boxes[1], boxes[3]:
            self.run_script("arguments[0].click()", box)
        self.assertTrue(shown())
        stems = [pathlib.PurePosixPath(names[i]).stem for i in (1, 3)]
        folder = result["log"].rsplit("/", 1)[0]
        command = f"trackedcam calibrate --config {folder}/calibrate.toml --exclude={','.join(stems)}"
        self.assertEqual(self.run_script("document.getElementById('leave-out-command').textContent"), command)
        self.assertEqual(self.run_script("document.getElementById('leave-out-copy').dataset.copy"), command)
        for box in boxes[1], boxes[3]:
            self.run_script("arguments[0].click()", box)
        self.assertFalse(shown())

    def enlarge(self, at):
        self.run_script("document.querySelectorAll('.photograph .open')[arguments[0]].click()", at)
        self.wait_for(lambda: self.run_script("document.getElementById('enlarged').open"))
        self.wait_for(lambda: self.run_script("document.getElementById('enlarged-source').textContent"))

    def test_enlarges_the_original_or_says_that_it_is_not_there(self):
        result = self.open("noisy")
        self.enlarge(0)
        self.assertIn("not where it was", self.texts("#enlarged-source")[0])
        self.assertIn("--page-photographs full", self.texts("#enlarged-source")[0])
        self.assertFalse(self.browser.find_element(By.ID, "enlarged-link").is_displayed())
        # The page beside its photographs.
        width, height = result["imageSize"]
        page = (self.folder / "noisy.html").read_text(encoding="utf-8")
        original = re.search(r'data-original="([^"]+)"', page)[1]
        (self.folder / "photo.svg").write_text(
            f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}"/>')
        (self.folder / "noisy.html").write_text(page.replace(f'"{original}"', '"photo.svg"'), encoding="utf-8")
        try:
            self.open("noisy")
            self.enlarge(0)
            self.assertEqual(self.texts("#enlarged-source"), [f"The original, {width:.0f} × {height:.0f} pixels."])
            self.assertTrue(self.browser.find_element(By.ID, "enlarged-link").is_displayed())
        finally:
            (self.folder / "noisy.html").write_text(page, encoding="utf-8")

    def test_zooms_into_a_photograph(self):
        self.open("noisy")
        self.enlarge(0)
        scale = lambda: self.run_script("new DOMMatrix(getComputedStyle(document.getElementById('enlarged-zoomed')).transform).a")
        frame = self.browser.find_element(By.ID, "enlarged-frame")
        self.assertEqual(scale(), 1)
        ActionChains(self.browser).double_click(frame).perform()
        self.wait_for(lambda: scale() >= 2)
        ActionChains(self.browser).double_click(frame).perform()
        self.wait_for(lambda: scale() == 1)
        box = self.run_script("(({left, top, width, height}) => [left + width / 4, top + height / 4])"
                              "(document.getElementById('enlarged-frame').getBoundingClientRect())")
        wheel = ("document.getElementById('enlarged-frame').dispatchEvent(new WheelEvent('wheel', "
                 "{deltaY: -400, clientX: arguments[0][0], clientY: arguments[0][1], cancelable: true}))")
        self.run_script(wheel, box)
        self.assertAlmostEqual(scale(), 2.718, delta=.01)
        # What was below the pointer still is.
        moved = self.run_script("(({left, top}) => [left, top])(document.getElementById('enlarged-zoomed').getBoundingClientRect())")
        frame_at = self.run_script("(({left, top}) => [left, top])(document.getElementById('enlarged-frame').getBoundingClientRect())")
        for at, corner, start in zip(box, moved, frame_at, strict=True):
            self.assertAlmostEqual((at - corner) / scale(), at - start, delta=1)
        ActionChains(self.browser).send_keys(Keys.ARROW_RIGHT).perform()
        self.wait_for(lambda: scale() == 1)  # another photograph is shown whole

    def test_numbers_are_those_of_the_result(self):
        result = self.open("mounting-off")
        transform = [1000 * result["transformCamTc"][i] for i in (3, 7, 11)]
        shown = [number(t) for t in self.texts("#fact-transform tr.main td:not(.unit)")]
        for a, b in zip(shown, transform, strict=True):
            self.assertAlmostEqual(a, b, delta=0.00501)
        comparison, library = result["crossCheck"]["comparison"], result["crossCheck"]["library"]
        for transform, name in [("camTc", "transform"), ("trChart", "mounting")]:
            for part, decimals in [("translation", 2), ("rotation", 3)]:
                axes = comparison[transform][part]
                for column, key in enumerate(["difference", "half"]):
                    cells = f"#{name}-{part} tbody td:nth-last-child({2 - column})"
                    shown = [number(t) for t in self.texts(cells)]
                    for a, b in zip(shown, axes, strict=True):
                        self.assertAlmostEqual(a, b[key], delta=0.501 * 10 ** -decimals)
        self.assertIn(f"{library['offMm']:.2f} mm and {library['offDegrees']:.3f}°", self.texts("#fact-transform")[0])
        self.assertEqual(self.texts("#fact-lens .big"), [f"{result['focalLengthMm'][0]:.3f} mm by height"])
        self.assertEqual(self.texts("#fact-agreement .big"), [f"{result['reprojectionErrorPixels']:.2f} px"])
        self.assertEqual(self.texts("#fact-photographs .big"), [f"{sum(p['state'] == 'used' for p in result['photographs'])} of 40 used"])
        self.assertEqual(self.texts("h1"), [result["verdict"]["message"]])
        self.assertEqual(self.texts(".finding-text"), [finding["text"] for finding in result["findings"]])
        self.assertEqual(self.run_script("[...document.querySelectorAll('.band .copy')].map((e) => e.dataset.copy)"), result["verdict"]["commands"])
        for key, bars in [("resultPixels", "values"), ("predictedPixels", "ofCheck")]:
            pixels = [p["crossCheck"] and p["crossCheck"][key] for p in result["photographs"]]
            self.assertIsNone(pixels[4])
            self.assertEqual(self.run_script(f"trackedcamBars.{bars}"), pixels)
        self.assertEqual(json.loads(self.run_script("document.getElementById('data').textContent")), result)

    def test_crosses_are_the_results_and_the_cross_checks_beside_them(self):
        result = self.open("mounting-off")
        checks = [p["crossCheck"] for p in result["photographs"] if p["crossCheck"]]
        apart = [abs(c["resultPixels"] - c["predictedPixels"]) > 0.25 for c in checks]
        self.assertIn(True, apart)
        dots = self.run_script("document.querySelectorAll('.gallery .by-check').length")
        drawn = self.run_script("document.querySelectorAll('.gallery svg').length")
        self.assertTrue(0 < dots <= drawn)
        first = checks[0]
        shown = self.texts(".photograph .small")[0]
        self.assertIn(f"{first['resultPixels']:.2f} px · ", shown)
        self.assertIn(f"cross-check: {first['predictedPixels']:.2f} px", shown)
        self.open("perfect")
        self.assertEqual(self.run_script("document.querySelectorAll('.gallery .by-check').length"), 0)

    def test_every_axis_has_two_numbers_besides_zero(self):
        for name in make_results.SHOOTS:
            if not self.open(name)["crossCheck"]:
                continue
            for canvas in ["agreement-chart", *self.run_script(
                    "[...document.querySelectorAll('[data-errors]')].map((e) => e.id = 'errors-' + e.dataset.errors.replace(' ', '-'))")]:
                axis = "y" if canvas == "agreement-chart" else "x"
                ticks = self.run_script(f"Chart.getChart(arguments[0]).scales.{axis}.ticks.map((t) => t.label)", canvas)
                self.assertGreaterEqual(len([t for t in ticks if t not in ("", "0")]), 2, f"{name}: {canvas}: {ticks}")

    def test_the_view_from_a_camera_shows_no_other_one(self):
        self.open("noisy")
        everything = self.run_script("trackedcamScene.shownCameras()")
        self.assertGreater(everything, 10)
        self.browser.find_element(By.CSS_SELECTOR, "[data-view='camera']").click()
        self.assertEqual(self.run_script("trackedcamScene.shownCameras()"), 0)
        self.browser.find_element(By.CSS_SELECTOR, "[data-view='all']").click()
        self.assertEqual(self.run_script("trackedcamScene.shownCameras()"), everything)

    def test_what_only_an_expert_reads_is_folded(self):
        self.open("noisy")
        shown = self.run_script("""(() => {
            const page = document.querySelector('main').cloneNode(true);
            page.querySelectorAll('details, script').forEach((e) => e.remove());
            return page.textContent;
        })()""")
        for word in ["mplification", "Rx", "axis fix", "towards"]:
            self.assertNotIn(word, shown)

    def test_a_map_shows_the_error_at_each_distance(self):
        result = self.open("noisy")
        hatched = "document.querySelectorAll('#screen-map rect[fill=\"url(#not-seen)\"]').length"
        self.assertEqual(self.run_script(hatched), result["crossCheck"]["imageCells"]["seen"].count(False))
        for index, at in enumerate(result["crossCheck"]["onScreen"]):
            self.browser.find_element(By.CSS_SELECTOR, f"[data-screen='{index}']").click()
            self.assertEqual(self.texts("#screen-map text"), [f"{p:.1f}" for p in at["cellPixels"]])
            self.assertIn(f"{at['distanceMetres']:.2f} m", self.texts("#screen-note")[0])
            self.assertEqual(self.texts("[data-screen][aria-pressed='true']"), [f"{at['distanceMetres']:.2f} m"])

    def test_engines_are_offered_unless_the_result_is_wrong(self):
        script = "[...document.querySelectorAll('.engine .copy')].map((e) => e.dataset.copy)"
        result = self.open("noisy")
        self.assertTrue(result["exports"])
        for engine in result["exports"].values():
            self.assertIn(" ".join(json.dumps(n) for n in engine["translationCm"]), self.run_script(script))
        self.assertTrue(self.open("mounting-off")["exports"])
        self.assertEqual(self.run_script(script), [])

    def test_a_failed_run_says_which_photographs_failed_and_why(self):
        result = self.open("failed")
        self.assertEqual(self.texts(".level"), ["Failed, code 4"])
        rows = list(zip(self.texts("#unusable td:nth-child(2)"), self.texts("#unusable td:nth-child(4)")))
        self.assertEqual(rows, [(p["name"], p["reason"]) for p in result["photographs"] if p["reason"]])
        self.assertEqual(self.run_script("document.querySelectorAll('.gallery img').length"), len(result["photographs"]))

    def test_only_photographs_without_reprojected_image_get_corners(self):
        result = self.open("noisy")
        drawn = self.run_script("[...document.querySelectorAll('.photograph')].map((e) => Boolean(e.querySelector('svg')))")
        expected = [p["crossCheck"] is not None and p["reprojectedImage"] is None for p in result["photographs"]]
        self.assertEqual(drawn, expected)
        self.assertIn(True, [d for d, p in zip(drawn, result["photographs"]) if p["state"] == "used"])

    def test_a_second_run_shows_what_it_left_out(self):
        result = self.open("refined")
        self.assertEqual(self.run_script("[...document.querySelectorAll('.photograph')].map((e) => e.dataset.number)"),
                         [str(n) for n in range(1, 41)])
        left, first = result["photographs"][29], result["firstRun"]["photographs"][29]["crossCheck"]
        cells = self.texts("#disagreeing tbody td")
        self.assertEqual(cells[:4], ["30", left["name"], str(left["row"]), f"{first['mm']:.2f}"])
        self.assertIn(left["reason"], cells[6])
        self.assertIsNone(self.run_script("trackedcamBars.values[29]"))

    def test_hostile_names_are_names(self):
        self.open("hostile")
        with self.assertRaises(NoAlertPresentException):
            self.browser.switch_to.alert
        self.assertEqual(self.run_script("document.scripts.length"), 5)
        self.assertEqual(self.run_script("document.querySelectorAll('img[src]:not([src^=\"data:\"]), [onload], [onerror]').length"), 0)
        clean = [re.sub("[\x00-\x08\x0b-\x1f]", "\ufffd", name) for name in make_results.HOSTILE]
        self.assertEqual(self.run_script("[...document.querySelectorAll('.photograph')].map((e) => e.dataset.name)"), clean)
        links = self.run_script("[...document.querySelectorAll('main a:not(nav a)')].map((e) => e.getAttribute('href'))")
        self.assertTrue(links and all(link.startswith("./") for link in links), links)

    def test_the_policy_is_in_force(self):
        self.open("perfect")
        self.browser.execute_script("""
            const script = document.createElement('script');
            script.textContent = 'window.hasRun = true';
            document.body.appendChild(script);
            const image = document.createElement('img');
            image.setAttribute('onerror', 'window.hasRun = true');
            image.src = 'data:image/png;base64,none';
            document.body.appendChild(image);""")
        self.assertIsNone(self.run_script("window.hasRun"))
        blocked = [entry for entry in self.browser.get_log("browser") if "Content Security Policy" in entry["message"]]
        self.assertTrue(blocked)

    def test_no_page_is_wider_than_a_telephone(self):
        for name in make_results.SHOOTS:
            with self.subTest(name):
                self.open(name, 390, 844)
                self.assertLessEqual(self.run_script("document.documentElement.scrollWidth"), 390)

    def test_light_and_dark_follow_the_system(self):
        background = "getComputedStyle(document.body).backgroundColor"
        self.open("failed", theme="light")
        light = self.run_script(background)
        self.open("failed", theme="dark")
        self.assertNotEqual(self.run_script(background), light)

    def test_prints_on_one_to_six_pages(self):
        for name in make_results.SHOOTS:
            with self.subTest(name):
                self.open(name, theme="dark")
                pdf = self.browser.execute_cdp_cmd("Page.printToPDF", {
                    "printBackground": True, "preferCSSPageSize": True, "paperWidth": 8.27, "paperHeight": 11.69})
                path = self.folder / f"{name}.pdf"
                path.write_bytes(base64.b64decode(pdf["data"]))
                info = subprocess.run(["pdfinfo", path], check=True, capture_output=True, text=True).stdout
                pages = int(re.search(r"^Pages: +(\d+)$", info, re.MULTILINE).group(1))
                self.assertTrue(1 <= pages <= 6, f"{pages} pages")
                self.assertIn("A4", info)

    def test_answer_comparison_and_record_need_no_script(self):
        result = self.open("mounting-off")
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.browser.get((self.folder / "mounting-off.html").as_uri())
            page = self.browser.find_element(By.TAG_NAME, "body")
            self.assertIsNone(page.get_attribute("data-drawn"))
            shown = page.text
            self.assertIn(result["verdict"]["message"], shown)
            self.assertIn(f"{result['crossCheck']['library']['offMm']:.2f} mm", shown)
            self.assertIn("JavaScript", self.browser.find_element(By.ID, "scene").text)
            table = self.browser.find_element(By.ID, "mounting-translation").text
            self.assertIn("118.00", table)
            self.assertIn(result["inputs"]["data"], self.browser.find_element(By.ID, "inputs").text)
            self.browser.find_element(By.CSS_SELECTOR, ".json summary").click()
            self.assertIn('"covarianceCamTcTwist"', self.browser.find_element(By.CLASS_NAME, "json-text").text)
        finally:
            self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})


if __name__ == "__main__":
    if not (webdriver and BROWSER and DRIVER):
        print("skipped: chromium, chromium-driver or python3-selenium is missing")
        sys.exit(77)
    unittest.main(verbosity=2)
