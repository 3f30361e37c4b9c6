"""Checks the page on engines: its text, its example values and its pictures against the program.

Usage: check_engines.py SOURCE_ROOT PROGRAM
"""

import json
import math
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

root, program = pathlib.Path(sys.argv[1]), sys.argv[2]
engines = root / "docs/engines"
page = re.sub(r"\s+", " ", (root / "docs/engines.md").read_text(encoding="utf-8"))
examples = re.findall(r"(?:^    .*\n)+", (root / "docs/engines.md").read_text(encoding="utf-8"), re.MULTILINE)
examples = [textwrap.dedent(example) for example in examples]


def number(pattern):
    return float(re.search(pattern, page)[1])


forward, right, down = number(r"(\d+) cm in front"), number(r"(\d+) cm to its right"), number(r"(\d+) cm below")
pan, tilt, roll = number(r"panned (\d+)°"), number(r"tilted (\d+)°"), number(r"rolled (\d+)°")
focal, shift_right = number(r"lens is ([\d.]+) image widths"), number(r"lies ([\d.]+) image widths to the right")
shift_up = number(r"and ([\d.]+) image heights above")
k1, k2 = number(r"k1 is (-[\d.]+)"), number(r"k2 is ([\d.]+)\. ")
width, height = number(r"picture has (\d+)×"), number(r"picture has \d+×(\d+)")
sensor = [number(r"the sensor (\d+) by"), number(r"the sensor \d+ by ([\d.]+) mm")]
# One focal length in millimetres holds for both directions. The first pixel's centre is at half a pixel.
fx_fy = [focal, focal * sensor[0] / sensor[1]]
centre = [0.5 + shift_right + 0.5 / width, 0.5 - shift_up + 0.5 / height]


def quaternion(*rotations):
    """The product of rotations about an axis by degrees, as x, y, z, w."""
    x, y, z, w = 0.0, 0.0, 0.0, 1.0
    for axis, degrees in rotations:
        s, c = math.sin(math.radians(degrees) / 2), math.cos(math.radians(degrees) / 2)
        a, b, d = (s * component for component in axis)
        x, y, z, w = (w * a + x * c + y * d - z * b, w * b - x * d + y * c + z * a,
                      w * d + x * b - y * a + z * c, w * c - x * a - y * b - z * d)
    return [x, y, z, w]


# A pan to the right rotates about down, a tilt upwards about right, a clockwise roll about forward.
EXPECTED = {
    "ue4": {"translationCm": [forward, right, -down], "rotationDeg": [roll, tilt, pan]},
    "ue5": {"translationCm": [right, down, forward],
            "quaternionXyzw": quaternion(((0, 1, 0), pan), ((1, 0, 0), tilt), ((0, 0, 1), roll))},
    "ue5-xn": {"translationCm": [-down, forward, -right],
               "quaternionXyzw": quaternion(((-1, 0, 0), pan), ((0, 0, -1), tilt), ((0, 1, 0), roll))},
    "aximmetry": {"translationCm": [right, down, -forward], "rotationDeg": [-tilt, pan, -roll],
                  "fovX": [math.degrees(2 * math.atan(0.5 / focal))],
                  "lensCentre": [shift_right, shift_up]},
    "unreal": {"locationCm": [forward, right, -down], "rotationDeg": [roll, tilt, pan],
               "quaternionXyzw": quaternion(((0, 0, 1), pan), ((0, -1, 0), tilt), ((-1, 0, 0), roll)),
               "lens.filmbackMm": sensor, "lens.focalLengthMm": [focal * sensor[0]], "lens.fxFy": fx_fy,
               "lens.imageCenter": centre, "lens.imageSize": [width, height],
               "lens.distortion": [k1, k2, 0, 0, 0]},
    "unity": {"localPosition": [right / 100, -down / 100, forward / 100],
              "localEulerAngles": [-tilt, pan, -roll],
              "localRotationXyzw": quaternion(((0, 1, 0), pan), ((1, 0, 0), -tilt), ((0, 0, 1), -roll)),
              "lens.sensorSize": sensor, "lens.focalLength": [focal * sensor[0]],
              "lens.lensShift": [0.5 - centre[0], centre[1] - 0.5]},
}


def values_at(json_text, key):
    """The numbers at a dotted key: a list, the values of an object in its order, or one number."""
    value = json.loads(json_text)
    for part in key.split("."):
        value = value[part]
    return list(value.values()) if isinstance(value, dict) else value if isinstance(value, list) else [value]


faults = []
with tempfile.TemporaryDirectory() as scratch:
    for name, expected in EXPECTED.items():
        command = [program, "export", name, "--result", engines / "example.json", "--log-folder", scratch]
        text = subprocess.run(command, check=True, capture_output=True, encoding="utf-8").stdout
        if text not in examples:
            faults.append(f"{name}: the page does not show\n{text}")
        as_json = subprocess.run([*command, "--json"], check=True, capture_output=True).stdout
        for key, values in expected.items():
            exported = values_at(as_json, key)
            if len(exported) != len(values) or any(abs(a - b) > 1e-4 for a, b in zip(exported, values)):
                faults.append(f"{name}: {key} is {exported}, expected {values} from the page's text")
    subprocess.run([sys.executable, engines / "draw_axes.py", program, scratch], check=True)
    for picture in engines.glob("*.svg"):
        name = picture.stem
        if (pathlib.Path(scratch) / f"{name}.svg").read_bytes() != (engines / f"{name}.svg").read_bytes():
            faults.append(f"docs/engines/{name}.svg differs from the output of draw_axes.py")

print("\n".join(faults) or "the text, the example and the pictures agree with the program")
sys.exit(1 if faults else 0)
