"""Takes the screenshots of the report page in docs/images/. Needs Chromium (python3-selenium, chromium-driver).

Usage: photograph_report.py REPORT.html

report-answer.png is the first screen of the page, report-scene.png the scene below it. The page is the report of

    trackedcam simulate shoot --photographs 40 --image 1280x720 --mounting-error-mm 27 \\
        --mounting-error-degrees 1 --tracker-noise-mm 0.3 --tracker-noise-degrees 0.05
    trackedcam calibrate --config shoot/shoot.toml --report report.html
"""

import pathlib
import shutil
import sys
import time

from selenium import webdriver
from selenium.webdriver.common.by import By

images = pathlib.Path(__file__).resolve().parent.parent / "images"

options = webdriver.ChromeOptions()
options.binary_location = shutil.which("chromium")
for argument in ["--headless=new", "--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
                 "--disable-background-networking", "--disable-dev-shm-usage", "--hide-scrollbars",
                 "--window-size=1100,790"]:
    options.add_argument(argument)
service = webdriver.chrome.service.Service(shutil.which("chromedriver"))
with webdriver.Chrome(service=service, options=options) as browser:
    browser.get(pathlib.Path(sys.argv[1]).resolve().as_uri())
    time.sleep(5)  # the scene is rendered in software, which takes time
    browser.save_screenshot(str(images / "report-answer.png"))
    scene = browser.find_element(By.ID, "scene")
    browser.execute_script("arguments[0].scrollIntoView()", scene)
    time.sleep(3)
    scene.screenshot(str(images / "report-scene.png"))

for name in ("report-answer.png", "report-scene.png"):
    print(name, (images / name).stat().st_size)
