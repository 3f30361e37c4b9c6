"""Draws each engine's axes beside those of the camera and of its tracker.

Usage: draw_axes.py PROGRAM [FOLDER]   (the folder of this file by default)

The axes come from the program itself, so that the pictures cannot drift from the values.
"""

import json
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).parent
ENGINES = ["ue4", "ue5", "ue5-xn", "aximmetry", "unity"]

# On the page, as seen from behind the camera, a little from the right and from above.
ON_PAGE = {"right": (0.96, 0.28), "up": (0.0, -1.0), "forward": (0.62, -0.52)}
ON_PAGE.update({opposite: tuple(-v for v in ON_PAGE[word])
                for opposite, word in [("left", "right"), ("down", "up"), ("backward", "forward")]})
# The tracker stands so that the rotation is zero: x to the left, y up, z forward.
OF_TRACKER = {"x": "left", "y": "up", "z": "forward", "-x": "right", "-y": "down", "-z": "backward"}
COLOURS = {"X": "#c8321e", "Y": "#2c8a3c", "Z": "#2456b4"}
GREY = "#777777"


def minus(axis):
    return axis.replace("-", "\N{MINUS SIGN}")


def along(origin, word, length):
    return tuple(origin[i] + length * ON_PAGE[word][i] for i in range(2))


def arrow(origin, word, length, colour, width):
    x, y = along(origin, word, length)
    return (f'  <line x1="{origin[0]}" y1="{origin[1]}" x2="{x:.1f}" y2="{y:.1f}" stroke="{colour}" '
            f'stroke-width="{width}" marker-end="url(#tip-{colour[1:]})"/>\n')


def engine_axis(origin, axis, word, name):
    x, y = along(origin, word, 112)
    anchor = {"right": "start", "forward": "start", "left": "end"}.get(word, "middle")
    return (arrow(origin, word, 88, COLOURS[axis], 3)
            + f'  <text x="{x:.1f}" y="{y + 5:.1f}" text-anchor="{anchor}" fill="{COLOURS[axis]}">'
              f'<tspan font-weight="bold">{axis}</tspan> {minus(name)}</text>\n')


def own_axis(origin, name, word):
    x, y = along(origin, word, 36)
    right, down = (8, 4) if word in ("up", "down") else (2, 17)
    return (arrow(origin, word, 44, GREY, 1.5)
            + f'  <text x="{x + right:.1f}" y="{y + down:.1f}" fill="{GREY}" '
              f'font-style="italic">{name}</text>\n')


def frame(origin, title, words, names, own):
    """The engine's axes in colour, and in grey the frame's own."""
    return (f'  <text x="{origin[0]}" y="24" text-anchor="middle" font-weight="bold">{title}</text>\n'
            + "".join(engine_axis(origin, *axis) for axis in zip("XYZ", words, names))
            + "".join(own_axis(origin, *axis) for axis in own.items())
            + f'  <circle cx="{origin[0]}" cy="{origin[1]}" r="4" fill="#333"/>\n')


def markers():
    return "".join(
        f'    <marker id="tip-{colour[1:]}" viewBox="0 0 10 10" refX="8" refY="5" markerWidth="11" '
        f'markerHeight="11" markerUnits="userSpaceOnUse" orient="auto">'
        f'<path d="M0 0 10 5 0 10z" fill="{colour}"/></marker>\n'
        for colour in [*COLOURS.values(), GREY])


def translation_note(engine):
    if engine["translationAxes"] == engine["trackerAxes"]:
        return ""
    axes = ", ".join(minus(axis) for axis in engine["translationAxes"])
    return ('  <text x="530" y="292" text-anchor="middle" font-size="13">'
            f'the translation counts along {axes}</text>\n')


def picture(engine):
    on_tracker = [OF_TRACKER[axis] for axis in engine["trackerAxes"]]
    return (
        '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 720 310" width="720" height="310"\n'
        '     font-family="DejaVu Sans, Arial, sans-serif" font-size="14">\n'
        f'  <title>The axes of {engine["title"]} at the camera and at its tracker</title>\n'
        f'  <defs>\n{markers()}  </defs>\n  <rect width="720" height="310" fill="#fff"/>\n'
        + frame((180, 160), "Camera, seen from behind", engine["cameraAxes"], engine["cameraAxes"],
                {"x": "right", "y": "down", "z": "forward"})
        + frame((530, 160), "Its tracker, at rotation zero", on_tracker, engine["trackerAxes"],
                {"x": "left", "y": "up", "z": "forward"})
        + translation_note(engine) + "</svg>\n")


def main(program, folder):
    for name in ENGINES:
        with tempfile.TemporaryDirectory() as logs:
            output = subprocess.run([program, "export", name, "--result", HERE / "example.json",
                                     "--log-folder", logs, "--json"], check=True, capture_output=True)
        (folder / f"{name}.svg").write_text(picture(json.loads(output.stdout)), encoding="utf-8")


main(sys.argv[1], pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else HERE)
