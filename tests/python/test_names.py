"""Names, records and signatures against the libraries and the C compiler."""
import ctypes
import os
import re
import shutil
import subprocess
import sys

import ninefold as nf
import pytest
from ninefold import _description, _library

from conftest import root

compiler = os.environ.get("CC", "cc")


def test_the_description_is_what_its_script_writes():
    subprocess.run([sys.executable, root / "scripts" / "bindings", "--check"], check=True)


# The parameter of CreateDrawCodeSub that each axis is.
axes = [nf.Perspective, nf.Rule, nf.Prescale, nf.Filter, nf.RectOpt, nf.Shahei, nf.Blend, nf.Multi, nf.Shape]
plain = [0, 0, 0, nf.Filter.POINT, nf.RectOpt.STRETCH, 0, 0, nf.Multi.NONE, nf.Shape.RECTANGLE]


@pytest.mark.parametrize("at", range(9))
def test_the_kit_says_the_same_of_each_value(at):
    for member in axes[at]:
        values = list(plain)
        values[at] = member
        if axes[at] is nf.Perspective:
            values[8] = nf.Shape.TRIANGLE
        if axes[at] is nf.Filter and member in (nf.Filter.FLAT, nf.Filter.GOURAUD):
            values[7] = nf.Multi.NONE
        code = nf.library.CreateDrawCodeSub(*values)
        assert re.search(rf"^  .* {member.value} {member.word or '.*'}: {re.escape(member.meaning)}$|"
                         rf"^  .* {member.value} \w*{member.name}: {re.escape(member.meaning)}$", nf.explain(code), re.M), nf.explain(code)
        assert not member.word or member.word in nf.name_of(code).split(".")


def test_names_of_codes():
    name = "rect.stretch.bilinear.alpha.z"
    assert nf.name_of(nf.code_of(name)) == name and nf.code_exists(nf.code_of(name))
    with pytest.raises(nf.Error, match="blurry"):
        nf.code_of("rect.blurry")
    with pytest.raises(nf.Error, match="nearest"):
        nf.Kernel("rect.stretch.point.copy.z")


@pytest.mark.skipif(not shutil.which(compiler), reason="no C compiler")
def test_records_lie_as_the_compiler_has_them(tmp_path):
    records = {name: kind for name, kind in vars(_description).items()
               if isinstance(kind, type) and issubclass(kind, ctypes.Structure)}
    assert len(records) > 8
    lines = ["#include <ninefold/debug.h>", "#include <ninefold/kit.h>", "#include <stddef.h>", "#include <stdio.h>", "int main(void)", "{"]
    wanted = []
    for name, kind in records.items():
        lines.append(f'    printf("%d\\n", (int)sizeof({name}));')
        wanted.append(ctypes.sizeof(kind))
        for field, *_ in kind._fields_:
            lines.append(f'    printf("%d\\n%d\\n", (int)offsetof({name}, {field}), (int)sizeof((({name} *)0)->{field}));')
            wanted += [getattr(kind, field).offset, getattr(kind, field).size]
    for i, name in enumerate(_description.TWIN, 1):
        lines.append(f'    printf("%d\\n", (int)offsetof(NinefoldDebugCalls, {name}));')
        wanted.append(i * ctypes.sizeof(ctypes.c_void_p))
    (tmp_path / "records.c").write_text("\n".join([*lines, "    return 0;", "}", ""]))
    subprocess.run([compiler, f"-I{root / 'include'}", f"-I{root / 'kit/include'}", f"-I{root / 'debug/include'}", "records.c", "-o", "records"], check=True, cwd=tmp_path)
    shown = subprocess.run([tmp_path / "records"], check=True, capture_output=True, text=True).stdout
    assert [int(number) for number in shown.split()] == wanted


def test_another_layout_is_refused():
    described = _library.fields("Vertex")

    class Wrong(ctypes.Structure):
        _fields_ = [("x", ctypes.c_int32), ("y", ctypes.c_int64), ("z", ctypes.c_int32)]

    with pytest.raises(nf.LayoutError, match="Vertex.y"):
        _library.compare("Vertex", Wrong, described, 12)
    with pytest.raises(nf.LayoutError, match="Vertex has 12 bytes here and 16"):
        _library.compare("Vertex", _library.Vertex, described, 16)


def test_options_start_with_the_words_in_their_comments():
    defaults = nf.kit.nfkOptions()
    for field, lists, meaning in _description.OPTIONS.values():
        stated = re.search(r"\[(-?\w+)\]$", meaning)
        if not stated or field == "color":
            continue
        values = {f"{prefix}{member.name}": member.value for names in lists for member in names
                  for prefix in re.findall(r"N\w+_(?=\.\.\.)", meaning)}
        value = values.get(stated.group(1), None)
        if value is None:
            value = {"null": None}.get(stated.group(1), None) if stated.group(1) == "null" else int(stated.group(1), 0)
        assert getattr(defaults, field) == value, field
