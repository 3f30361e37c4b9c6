"""The shader of the page on engines compiles."""

import pathlib
import re
import subprocess

from conftest import SOURCE

HERE = pathlib.Path(__file__).parent


def compiled(source, tmp_path):
    (tmp_path / "distort.hlsl").write_text(source)
    return subprocess.run(["glslangValidator", "-D", "-V", "-S", "frag", "-e", "Distort", f"-I{HERE}", "-o",
                           tmp_path / "distort.spv", tmp_path / "distort.hlsl"], capture_output=True, encoding="utf-8",
                          check=False)


def test_the_shader_for_unity_compiles(tmp_path):
    page = (SOURCE / "docs/engines.md").read_text(encoding="utf-8")
    (program,) = re.findall(r"HLSLPROGRAM\n(.*?)ENDHLSL", page, re.DOTALL)
    run = compiled(program, tmp_path)
    assert run.returncode == 0, run.stdout
    # The compiler sees a mistake.
    assert compiled(program.replace("pixel.uv", "pixel.vu"), tmp_path).returncode != 0
