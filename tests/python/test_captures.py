"""Captures from Python: recorded under the twin in a process of its own, then drawn again."""
import os
import subprocess
import sys

import ninefold as nf
import numpy as np
import pytest

twin, replay = (os.environ.get(name, "") for name in ("NINEFOLD_TWIN", "NINEFOLD_REPLAY"))
needs_replay = pytest.mark.skipif(not (os.path.exists(twin) and os.path.exists(replay)),
                                  reason="the debug twin or ninefold-replay is not built (NINEFOLD_TWIN, NINEFOLD_REPLAY)")

program = """
import sys
import numpy as np
import ninefold as nf
screen = nf.Screen(64, 32)
picture = nf.Texture.from_array(np.random.default_rng(3).integers(0, 1 << 32, (16, 16), dtype=np.uint32))
for frame in range(3):
    screen.select()
    nf.rectangle((0, 0, 64, 32), 0xFF000000 | frame)
    nf.sprite(picture, 10 * frame, 4, blend="alpha")
    nf.stretch(picture, (30, 3, 20, 25), filter="bilinear", blend=lambda first, second: first ^ second | 0xFF000000)
    np.save(f"{sys.argv[1]}/{frame}.npy", screen.pixels)
"""


@pytest.fixture(scope="module")
def captured(tmp_path_factory):
    folder = tmp_path_factory.mktemp("capture")
    done = subprocess.run([sys.executable, "-c", program, str(folder)], capture_output=True, text=True,
                          env={**os.environ, "NINEFOLD_LIBRARY": twin, "NINEFOLD_DEBUG": f"capture={folder}/it.nfc"})
    assert done.returncode == 0, done.stderr
    return folder


@needs_replay
def test_frames_are_those_that_were_drawn(captured):
    drawn = [np.load(captured / f"{frame}.npy") for frame in range(3)]
    again = [frame.pixels.copy() for frame in nf.captures.frames(captured / "it.nfc")]
    assert len(again) == 3
    for one, other in zip(again, drawn):
        assert (one & 0xFFFFFF == other & 0xFFFFFF).all()


@needs_replay
def test_verify_and_info(captured, tmp_path):
    nf.captures.verify(captured / "it.nfc")
    assert "3 frames, 9 draws" in nf.captures.info(captured / "it.nfc")
    nothing = tmp_path / "nothing.nfc"
    nothing.write_bytes(b"no capture")
    with pytest.raises(nf.Error, match="nothing.nfc"):
        nf.captures.verify(nothing)
    with pytest.raises(nf.Error, match="no-such-library"):
        nf.captures.verify(captured / "it.nfc", library="/no-such-library.so")


def test_without_the_program(monkeypatch):
    monkeypatch.delenv("NINEFOLD_REPLAY", raising=False)
    monkeypatch.setenv("PATH", "")
    with pytest.raises(nf.Error, match="ninefold-replay is not in PATH"):
        nf.captures.info("any.nfc")
