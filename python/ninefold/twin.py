"""The debug twin's findings as Python warnings. The twin is a library in place of the plain one, with the same pixels, that says
what a host does wrong: `ninefold-debug python3 program.py`, or NINEFOLD_LIBRARY names the twin's file.

    import warnings
    import ninefold as nf

    nf.twin.warn()  # findings are warnings, at the line that called Ninefold
    warnings.simplefilter("error", nf.twin.Finding)  # or, as with any warning, exceptions

Under the plain library nothing here has an effect, and present() is False."""
from __future__ import annotations

import ctypes
import os
import sys
import warnings
import weakref
from typing import Any, Union

import numpy as np

from ._description import TWIN, DebugAction, DebugSeverity, NinefoldFinding
from ._library import companion, encoded, raised
from ._memory import Array
from ._names import number
from .textures import Texture

_callback_type = ctypes.PYFUNCTYPE(None, ctypes.c_void_p, ctypes.c_void_p)
_package = os.path.dirname(os.path.abspath(__file__)) + os.sep


class Finding(UserWarning):
    """What the twin found: rule (a number that never changes its meaning), name, severity, call, code, draw, count, text, advice."""

    def __init__(self, finding: Any) -> None:
        self.severity = DebugSeverity(finding.severity)  # type: ignore[call-arg]
        self.rule = int(finding.rule)
        self.code = int(finding.code)
        self.draw = int(finding.draw)
        self.count = int(finding.count)
        self.name, self.call, self.text, self.advice = (
            (each or b"").decode("utf-8", "replace") for each in (finding.name, finding.call, finding.text, finding.advice))
        super().__init__(f"NF-{self.rule:04} {self.name} ({self.severity.word}): {self.call}: {self.text} {self.advice}")


_calls = companion("ninefoldDebugCalls", TWIN)


def present() -> bool:
    """Whether the twin is the library that was loaded."""
    return bool(_calls)


def _see(address: int, context: object) -> None:
    # An exception cannot leave through the library: it waits for the call's return.
    try:
        frame = sys._getframe(1)
        while frame.f_back and frame.f_code.co_filename.startswith(_package):
            frame = frame.f_back
        warnings.warn_explicit(Finding(NinefoldFinding.from_address(address)), Finding, frame.f_code.co_filename, frame.f_lineno,
                               registry=frame.f_globals.setdefault("__warningregistry__", {}))
    except BaseException as exception:
        if not raised:
            raised.append(exception)


_callback = _callback_type(_see)


def warn(severity: Union[str, int] = "hint", action: Union[str, int] = "draw") -> None:
    """From now on findings of at least that severity are warnings (Finding), besides what the twin prints. `action` is what
    becomes of a call with an error in it: "draw", "skip" it, or "abort" the program. Where the warning is an exception, by
    Python's filters, the call raises it when it returns."""
    least, then = number((DebugSeverity,), severity, "severity"), number((DebugAction,), action, "action")
    if _calls:
        _calls["setSeverity"](least)
        _calls["setAction"](then)
        _calls["setCallback"](ctypes.cast(_callback, ctypes.c_void_p), None)


def label(what: Union[Texture, Array], name: str) -> None:
    """Names a texture, or an array that the state is given, in messages; draws are held to the array's size."""
    text = encoded(name, "the name")
    if isinstance(what, Texture):
        pointer = what._open()
        if _calls:
            _calls["labelTexture"](pointer, text)
    elif isinstance(what, np.ndarray) and what.flags.c_contiguous:
        if _calls:
            address = what.ctypes.data
            _calls["labelMemory"](address, what.nbytes, text)
            weakref.finalize(what, _calls["forgetMemory"], address).atexit = False
    else:
        raise TypeError("a label is for a Texture or a contiguous array")


def frame() -> None:
    """Marks the end of a frame: rules that read whole pictures look once a frame."""
    if _calls:
        _calls["frame"]()


def findings(severity: Union[str, int] = "error") -> int:
    """How many findings of exactly that severity there were."""
    wanted = number((DebugSeverity,), severity, "severity")
    return int(_calls["findings"](wanted)) if _calls else 0
