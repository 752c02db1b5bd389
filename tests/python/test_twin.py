"""The debug twin's findings as warnings and exceptions, in a process of its own that loads the twin."""
import os
import subprocess
import sys

import ninefold as nf
import pytest

twin = os.environ.get("NINEFOLD_TWIN", "")
needs_twin = pytest.mark.skipif(not os.path.exists(twin), reason="the debug twin is not built (NINEFOLD_TWIN)")

start = """
import sys, warnings
import ninefold as nf
import numpy as np
assert nf.twin.present()
screen = nf.Screen(64, 64)
red = nf.Texture(4, 4)
red.pixels[...] = 0xFFFF0000
"""


def run(program, *options):
    return subprocess.run([sys.executable, *options, "-c", start + program], env={**os.environ, "NINEFOLD_LIBRARY": twin},
                          capture_output=True, text=True)


def test_the_plain_library_has_no_findings(screen, red):
    assert not nf.twin.present()
    nf.twin.warn()
    nf.twin.label(red, "red")
    nf.twin.frame()
    assert nf.twin.findings() == 0
    with pytest.raises(ValueError, match="severity 'grave' is none; there are hint, warning, error"):
        nf.twin.warn("grave")


@needs_twin
def test_findings_are_warnings_at_the_hosts_line():
    done = run("""
nf.twin.warn(action="skip")
with warnings.catch_warnings(record=True) as seen:
    warnings.simplefilter("always")
    nf.sprite(red, 0, 0)
    assert not seen, seen[0].message
    nf.state.clipRight = 65
    nf.sprite(red, 10, 10); line = sys._getframe().f_lineno
finding, = [each for each in seen if each.message.name == "clip-outside"]
assert finding.category is nf.twin.Finding and finding.filename == "<string>" and finding.lineno == line, (finding.filename, finding.lineno)
assert finding.message.rule == 107 and finding.message.severity == nf.DebugSeverity.ERROR and finding.message.draw == 2
assert screen.pixels[0, 0] == 0xFFFF0000 and screen.pixels[10, 10] == 0xFF000000  # the second was left out
assert nf.twin.findings("error") == 1
""")
    assert done.returncode == 0, done.stderr
    assert "NF-0107" in done.stderr  # printed too


@needs_twin
def test_findings_are_exceptions_where_the_filter_says_so():
    done = run("""
nf.twin.warn("error", action="skip")
warnings.simplefilter("error", nf.twin.Finding)
nf.state.clipRight = 65
for draw in (lambda: nf.sprite(red, 0, 0), lambda: nf.draw_many(red, [[1, 2]]), lambda: nf.Font("DejaVu Sans", 12).write("x", 0, 0)):
    try:
        draw()
    except nf.twin.Finding as finding:
        assert finding.name == "clip-outside"
    else:
        assert False
nf.state.clipRight = 64
nf.sprite(red, 0, 0)
assert screen.pixels[0, 0] == 0xFFFF0000
""")
    assert done.returncode == 0, done.stderr


@needs_twin
def test_labels():
    done = run("""
nf.twin.warn("error", action="skip")
warnings.simplefilter("error", nf.twin.Finding)
plane = np.zeros((65, 64), np.uint8)[:64]
nf.twin.label(plane, "half a plane")
nf.state.zBuffer = plane
nf.sprite(red, 0, 60, shahei="z")
small = np.zeros((32, 64), np.uint8)
nf.twin.label(small, "half a plane")
nf.state.zBuffer = small
try:
    nf.sprite(red, 0, 60, shahei="z")
except nf.twin.Finding as finding:
    assert finding.name == "memory-small" and "half a plane" in str(finding), finding
else:
    assert False
""")
    assert done.returncode == 0, done.stderr


@needs_twin
def test_the_end_of_the_last_reference_raises_nothing():
    done = run("""
nf.twin.warn("error", action="skip")
warnings.simplefilter("error", nf.twin.Finding)
for close in (False, True):
    texture = nf.Texture(4, 4)
    nf.library.DeleteTexture(texture._pointer)  # behind its back: the second deletion is a mistake
    before = nf.twin.findings()
    try:
        if close:
            texture.close()
        else:
            del texture
        assert not close
    except nf.twin.Finding:
        assert close
    assert nf.twin.findings() == before + 1
    nf.sprite(red, 0, 0)
""")
    assert done.returncode == 0, done.stderr
