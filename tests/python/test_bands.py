"""Draws on several threads, in a process of its own that loads bands, against those of the plain library."""
import os
import subprocess
import sys

import ninefold as nf
import pytest

bands = os.environ.get("NINEFOLD_BANDS", "")
needs_bands = pytest.mark.skipif(not os.path.exists(bands), reason="bands are not built (NINEFOLD_BANDS)")

program = """
import contextlib, mmap, os, sys
import numpy as np
import ninefold as nf

threads = int(sys.argv[1])
block = nf.threads(threads) if threads else contextlib.nullcontext(0)
random = np.random.default_rng(5)
picture = nf.Texture.from_array(random.integers(0, 1 << 32, (64, 64), dtype=np.uint32))
screen = nf.Screen(512, 512)
with block as started:
    assert started == min(threads, len(os.sched_getaffinity(0)))
    for x, y, side in random.integers(0, 400, (300, 3)):
        nf.stretch(picture, (x, y, side + 1, side // 2 + 1), blend="alpha", filter="bilinear")
        nf.sprite(picture, x, y, blend="add")
    first = screen.pixels.copy()  # flushes
    memory = mmap.mmap(-1, 512 * 512)
    plane = np.frombuffer(memory, np.uint8).reshape(512, 512)
    plane[:, 200:] = 128
    nf.state.zBuffer, nf.state.zRef = plane, 100
    nf.sprite(picture, 180, 20, shahei="z", blend="alpha")
    nf.state.zBuffer, plane = None, None
    memory.close()  # nothing is there any more
    nf.sprite(picture, 20, 20, blend=lambda dst, src: dst ^ src)
    nf.sprite(picture, 300, 300)
    screen.save(sys.argv[2] + ".png")
    nf.sprite(picture, 90, 90)
    picture.pixels[:32] = 0xFF00FF00
    nf.sprite(picture, 400, 90)
np.save(sys.argv[2], np.stack([first, screen.pixels]))
"""


def run(library, threads, path):
    done = subprocess.run([sys.executable, "-c", program, str(threads), str(path)], env={**os.environ, "NINEFOLD_LIBRARY": library},
                          capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return path.with_suffix(".npy").read_bytes(), path.with_suffix(".png").read_bytes()


@needs_bands
def test_threads_draw_the_same_pixels(tmp_path):
    plain = run(os.environ["NINEFOLD_LIBRARY"], 0, tmp_path / "plain")
    for threads in (1, 2, 3):
        assert run(bands, threads, tmp_path / f"{threads}") == plain


@needs_bands
def test_what_threads_refuse():
    done = subprocess.run([sys.executable, "-c", """
import os
import ninefold as nf
for wrong, error in ((lambda: nf.threads(-1), ValueError), (lambda: nf.threads(1, pure=[lambda a, b: a]), TypeError)):
    try:
        wrong().__enter__()
    except error:
        continue
    assert False
try:
    with nf.threads(2):
        assert nf.bands.present()
        raise KeyError
except KeyError:
    pass
with nf.threads(2) as outer, nf.threads(3) as inner:
    assert (outer, inner) == (min(2, len(os.sched_getaffinity(0))), 0)
"""], env={**os.environ, "NINEFOLD_LIBRARY": bands}, capture_output=True, text=True)
    assert done.returncode == 0, done.stderr


def test_the_plain_library_has_no_threads(screen):
    assert not nf.bands.present()
    nf.flush()
    with pytest.raises(nf.Error, match="NINEFOLD_LIBRARY naming that of bands"):
        with nf.threads(2):
            pass
