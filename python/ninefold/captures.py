"""Captures: files of what a program drew, recorded by the debug twin, drawn again. A thin layer over the program ninefold-replay,
which is looked for in PATH, or named by NINEFOLD_REPLAY.

    NINEFOLD_DEBUG=capture=game.nfc NINEFOLD_LIBRARY=.../ninefold/debug/libninefold.so.1 python3 game.py

    for frame in nf.captures.frames("game.nfc"):
        frame  # a Texture: frame.pixels, frame.save("frame.png")
    nf.captures.verify("game.nfc")  # raises Difference where a draw gives other pixels than it did"""
from __future__ import annotations

import os
import pathlib
import shutil
import subprocess
import tempfile
from typing import Iterator, Optional

from ._library import Error
from .textures import Path, Texture, load


class Difference(Error):
    """The first draw of a capture that gives something else than was recorded, in words."""


def _run(command: str, capture: Path, *options: str, library: Optional[Path] = None) -> str:
    program = os.environ.get("NINEFOLD_REPLAY") or shutil.which("ninefold-replay")
    if not program:
        raise Error("ninefold-replay is not in PATH; install it (ninefold-tools), or name it in NINEFOLD_REPLAY")
    if library is not None:
        options += ("--lib", os.fspath(library))
    done = subprocess.run([program, command, os.fspath(capture), *options], capture_output=True, text=True)
    if done.returncode == 1:
        raise Difference((done.stdout + done.stderr).strip())
    if done.returncode:
        raise Error((done.stderr or done.stdout or f"{program} ended with {done.returncode}").strip())
    return done.stdout


def info(capture: Path) -> str:
    """What is in it: frames, draws by kernel with their pixels and times, textures."""
    return _run("info", capture)


def verify(capture: Path, library: Optional[Path] = None) -> None:
    """Draws it again, with the library in that file or the one that ninefold-replay was built with. Raises Difference."""
    _run("verify", capture, library=library)


def frames(capture: Path, library: Optional[Path] = None) -> Iterator[Texture]:
    """The frame buffer at the end of each frame, drawn again. Where a program only wrote by itself, it is black."""
    with tempfile.TemporaryDirectory() as folder:
        _run("frames", capture, "--png", folder, library=library)
        for name in sorted(pathlib.Path(folder).glob("*.png")):
            yield load(name)
