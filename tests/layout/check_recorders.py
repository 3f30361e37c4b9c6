"""Runs the recorders of docs/record-a-shoot.md and checks that they write rows as the page describes.

Usage: check_recorders.py SOURCE_ROOT CXX [MCS MONO]

Without a C# compiler that recorder is skipped, and the last line says so. The recorders run in a locale
with decimal commas.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

CAMERA = (0.5123, 1.402, -0.221, 0.98769, 0.01234, -0.15432, 0.02101)
CHART = (1.1034, 0.912, 0.3321, 0.70711, 0.0, 0.70711, 0.00001)
TIME, IMAGE = 12.04, "photos/0001.jpg"
# For each number: half a unit of the last decimal that the page requires.
PRECISION = (0.00005,) * 3 + (0.000005,) * 4

root, compiler, *csharp = sys.argv[1:]
page = (pathlib.Path(root) / "docs/record-a-shoot.md").read_text(encoding="utf-8")


def block(language, word):
    found = [code for code in re.findall(rf"```{language}\n(.*?)```", page, re.DOTALL) if word in code]
    assert len(found) == 1, f"{len(found)} blocks of {language} hold {word}"
    return found[0]


def listed(numbers):
    return ", ".join(map(str, numbers))


def in_cpp(folder):
    source = folder / "recorder.cpp"
    source.write_text("#include <cstdio>\n" + block("cpp", "class Recorder") + f"""
int main(int, char** words) {{
  try {{
    std::locale::global(std::locale("de_DE.UTF-8"));
  }} catch (const std::runtime_error&) {{
    std::puts("C++: the locale de_DE.UTF-8 is missing, so the numbers had points anyway");
  }}
  Recorder recorder(words[1]);
  for (int i = 0; i < 2; ++i) {{
    recorder.Add({TIME}, "{IMAGE}", {{{listed(CAMERA)}}}, {{{listed(CHART)}}});
  }}
}}
""", encoding="utf-8")
    subprocess.run([compiler, "-std=c++11", "-Wall", "-Wextra", "-Werror", source, "-o", folder / "recorder"],
                   check=True)
    subprocess.run([folder / "recorder", folder / "data.csv"], check=True)


def in_csharp(folder):
    def pose(numbers):
        names = ("X", "Y", "Z", "Qw", "Qx", "Qy", "Qz")
        return "new Pose {" + ", ".join(f"{n} = {v}" for n, v in zip(names, numbers)) + "}"

    source = folder / "Recorder.cs"
    source.write_text(block("csharp", "public struct Pose") + f"""
public static class Program
{{
    public static void Main(string[] words)
    {{
        System.Threading.Thread.CurrentThread.CurrentCulture =
            new System.Globalization.CultureInfo("de-DE");
        var recorder = new Recorder(words[0]);
        for (int i = 0; i < 2; ++i)
            recorder.Add({TIME}, "{IMAGE}", {pose(CAMERA)}, {pose(CHART)});
    }}
}}
""", encoding="utf-8")
    compile_csharp, run = csharp
    subprocess.run([compile_csharp, "-warnaserror", f"-out:{folder / 'recorder.exe'}", source], check=True)
    subprocess.run([run, folder / "recorder.exe", folder / "data.csv"], check=True)


def in_python(folder):
    names = {}
    exec(block("python", "class Recorder"), names)
    recorder = names["Recorder"](folder / "data.csv")
    for _ in range(2):
        recorder.add(TIME, IMAGE, CAMERA, CHART)


def faults_of(text):
    """Differences from the page: it requires a header line, then rows of 16 fields."""
    if not text.endswith("\n") or "\r" in text:
        return ["the lines do not end with a line feed"]
    header, *rows = text[:-1].split("\n")
    faults = [] if header.startswith("Time,") else [f"the header is {header}"]
    if len(rows) != 2:
        faults.append(f"{len(rows)} rows instead of 2")
    for row in rows:
        time, image, *numbers = row.split(",")
        if image != IMAGE or abs(float(time) - TIME) > 0.0005 or len(numbers) != 14:
            faults.append(f"the row {row}")
        elif any(abs(float(n) - true) > limit
                 for n, true, limit in zip(numbers, CAMERA + CHART, PRECISION * 2, strict=True)):
            faults.append(f"the numbers of {row}")
    return faults


faults = []
recorders = [in_cpp, in_python, *([in_csharp] if csharp else [])]
for recorder in recorders:
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        recorder(folder)
        faults += [f"{recorder.__name__}: {fault}"
                   for fault in faults_of((folder / "data.csv").read_bytes().decode())]
print("\n".join(faults) or f"{len(recorders)} recorders write rows as the page describes"
      + ("" if csharp else "; C# was skipped, there is no compiler"))
sys.exit(1 if faults else 0)
