"""Native memory as NumPy arrays, and who keeps it alive."""
from __future__ import annotations

import weakref
from typing import Any, Optional

import numpy as np
import numpy.typing as npt

from .bands import flush

Array = npt.NDArray[Any]


class Hold:
    """A use of memory that a texture or screen owns. It keeps the owner alive, and the owner does not close while it lives."""

    def __init__(self, owner: Owner, part: str) -> None:
        self.owner = owner
        self.part = part
        owner._holds.add(self)


class _Block(Hold):
    """The base of an array, and so of every view of it."""

    def __init__(self, owner: Owner, part: str, address: int, shape: tuple[int, ...], dtype: Any) -> None:
        super().__init__(owner, part)
        self.__array_interface__ = {"version": 3, "shape": shape, "typestr": np.dtype(dtype).str, "data": (address, False)}


class Owner:
    """Owns native memory, of which arrays are made."""

    def __init__(self) -> None:
        self._holds: weakref.WeakSet[Hold] = weakref.WeakSet()

    def _array(self, part: str, address: Optional[int], shape: tuple[int, ...], dtype: Any) -> Array:
        assert address
        flush()
        return np.asarray(_Block(self, part, address, shape, dtype))

    def _must_be_free(self, doing: str, *parts: str) -> None:
        """Raises BufferError while someone looks at one of the parts; none named: at any."""
        held = sorted({hold.part for hold in self._holds if not parts or hold.part in parts})
        if held:
            raise BufferError(f"{doing}: still in use ({', '.join(held)}); drop the arrays and settings that look at it first")
