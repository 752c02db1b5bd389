"""Draws on every core. Bands are a library in the place of the plain one, with the same pixels, that records draws and makes them
together: NINEFOLD_LIBRARY names its file, lib/ninefold/bands/libninefold.so.1 where Ninefold is installed.

    with nf.threads(4):
        for sprite in sprites:
            nf.sprite(sprite.picture, sprite.x, sprite.y)
    screen.save("out.png")

Within, a draw is recorded, and made when the block ends, at flush(), or before this package hands out, saves or shows pixels. An
array that was taken before shows the draws, and may be written to, only after flush()."""
from __future__ import annotations

from contextlib import contextmanager
from typing import Any, Iterable, Iterator

from ._description import BANDS
from ._library import Error, companion, settle

_calls = companion("ninefoldBandsCalls", BANDS)
_blocks = 0  # that are open


def present() -> bool:
    """Whether bands are the library that was loaded."""
    return bool(_calls)


def flush() -> None:
    """Makes the draws that are recorded."""
    if _blocks:
        _calls["flush"]()


@contextmanager
def threads(count: int = 0, pure: Iterable[Any] = ()) -> Iterator[int]:
    """Within, draws are recorded and made by `count` threads, 0: as many as there are processors that the program may use, which
    is the most; gives their number. `pure` are operators, compiled ones, that depend on their two words alone and may run on any
    thread; draws with others are not cut, nor are those with Python functions. Within another such block it changes nothing. Raises Error under the plain library."""
    global _blocks
    from .state import operator_of

    if not _calls:
        raise Error("threads: the library that was loaded draws on one thread; start Python with NINEFOLD_LIBRARY naming that of "
                    "bands, lib/ninefold/bands/libninefold.so.1")
    if not isinstance(count, int) or count < 0:
        raise ValueError(f"threads {count!r} is no number of threads; 0 takes as many as there are processors")
    operators = [operator_of(each) for each in pure]
    for operator in operators:
        if callable(operator.function) and not hasattr(operator.function, "argtypes"):
            raise TypeError("threads: a Python function runs on one thread only; pure operators are compiled ones")
    for operator in operators:
        _calls["declarePure"](operator.address)
    started = _calls["start"](count) if _blocks == 0 else 0
    _blocks += 1
    try:
        yield started
    finally:
        _blocks -= 1
        if _blocks == 0:
            _calls["stop"]()
            settle()
