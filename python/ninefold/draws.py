"""The draws. What stays the same for many of them is set by `with modes(...)`; any option may also be given to a single draw.

Positions and sizes are pixels and below 2^29 in size, rectangles (x, y, width, height). Textures and operators are kept alive as
long as an option names them."""
from __future__ import annotations

import ctypes
from typing import Any, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from ._description import OPTIONS, Blend, NfkMeshVertex, NfkOptions, NfkTurn
from ._library import failure, kit, raised, rs, settle
from ._memory import Array, Hold
from ._names import number, signed, whole
from .state import Operator, operator_of
from .textures import Texture, color_of, rect

Rect = Union[tuple[int, int, int, int], Sequence[int], ctypes.Structure]
_far = 1 << 29
_sprite, _picture, _turned, _transition = kit.nfkSprite, kit.nfkPicture, kit.nfkTurned, kit.nfkTransition
_line, _fill = kit.nfkLine, kit.nfkFill
_ArgumentError = ctypes.ArgumentError
_byref = ctypes.byref

_unsigned = {name for name, kind in NfkOptions._fields_ if kind is ctypes.c_uint32}
_current = kit.nfkOptions()
_reference = _byref(_current)
_kept: dict[str, Any] = {}


class modes:
    """with modes(filter="bilinear", blend="alpha"): sets options for the draws inside; those not named stay as they are around.
    Values are words or members of the lists of names (Blend, Filter, ...), or numbers. `blend` and `multi_op` also take a
    function of two words (see Operator)."""

    def __init__(self, **options: Any) -> None:
        self._fields: dict[str, Any] = {}
        self._keep: dict[str, Any] = {}
        self._operator: Optional[Operator] = None
        self._before: list[Any] = []
        self._base: Any = None  # the options around when it was last entered, and what they became
        self._made: Any = None
        for name, value in options.items():
            if name not in OPTIONS:
                raise TypeError(f"there is no option {name}; there are {', '.join(OPTIONS)}")
            self._set(name, value)

    def _set(self, name: str, value: Any) -> None:
        field, lists, _ = OPTIONS[name]
        if name == "tex1":
            self._fields[field] = None if value is None else value._open()
            self._keep[field] = None if value is None else Hold(value, "option tex1")
        elif name == "source1":
            self._fields[field] = rect(value, name)
        elif name == "color":
            values = value if np.iterable(value) else (value,) * 4
            self._fields[field] = (ctypes.c_uint32 * 4)(*(color_of(each) for each in values))
        elif name == "blend_func" or name == "blend" and (callable(value) or isinstance(value, Operator)):
            operator = None if value is None else operator_of(value)
            self._fields["blendFunc"] = operator and operator.address
            self._keep["blendFunc"] = operator
            if name == "blend":
                self._fields["blend"] = int(Blend.CUSTOM)
        elif name == "multi_op" and (callable(value) or isinstance(value, Operator)):
            self._keep["multiFunc"] = self._operator = operator_of(value)
            self._fields[field] = -1
        else:
            value = number(lists, value, name)
            low, high = (0, 0xFFFFFFFF) if field in _unsigned else (-(1 << 31), (1 << 31) - 1)
            if not low <= value <= high:
                raise ValueError(f"{name} is {value}; it goes from {low} to {high}")
            self._fields[field] = value

    def __enter__(self) -> modes:
        global _current, _reference, _kept
        self._before.append((_current, _reference, _kept, rs.multiFunc))
        if self._base is not _current:
            options = NfkOptions.from_buffer_copy(_current)
            for field, value in self._fields.items():
                setattr(options, field, value)
            self._base, self._made = _current, (options, _byref(options))
        _current, _reference = self._made
        if self._keep:
            _kept = {**_kept, **self._keep}
        if self._operator:
            rs.multiFunc = self._operator.address
        return self

    def __exit__(self, *_: object) -> None:
        global _current, _reference, _kept
        _current, _reference, _kept, multi = self._before.pop()
        if self._operator:
            rs.multiFunc = multi


modes.__doc__ = f"{modes.__doc__}\n\n    " + "\n    ".join(f"{name}: {meaning}" for name, (_, _, meaning) in OPTIONS.items())


_plain = (str, int, *{each for _, lists, _ in OPTIONS.values() for each in lists})
_known: dict[tuple[tuple[str, Any], ...], modes] = {}


def _with(options: dict[str, Any]) -> modes:
    """The modes for the options of a single draw; those of words and numbers are kept for the next."""
    for value in options.values():
        if type(value) not in _plain:
            return modes(**options)
    key = tuple(options.items())
    found = _known.get(key)
    if found is None:
        found = modes(**options)
        if len(_known) < 256:
            _known[key] = found
    return found


def _failed() -> BaseException:
    settle()
    return failure()


def _checked(x: Any, y: Any) -> None:
    if not (-_far < x < _far and -_far < y < _far):
        raise ValueError(f"the position is {x}, {y}; positions are below 2^29")


def sprite(texture: Texture, x: int, y: int, source: Optional[Rect] = None, **options: Any) -> None:
    """A texel a pixel, the top left of the source (None: the whole picture) at x, y."""
    if options:
        with _with(options):
            return sprite(texture, x, y, source)
    if not (-_far < x < _far and -_far < y < _far):
        _checked(x, y)
    part = None if source is None else _byref(rect(source, "source"))
    try:
        drawn = _sprite(texture._pointer, x, y, part, _reference)
    except _ArgumentError:
        drawn = _sprite(texture._open(), whole(x, "x"), whole(y, "y"), part, _reference)
    if not drawn or raised:
        raise _failed()


def stretch(texture: Texture, target: Rect, source: Optional[Rect] = None, **options: Any) -> None:
    """The source, stretched over the target. A negative width or height mirrors."""
    if options:
        with _with(options):
            return stretch(texture, target, source)
    if not _picture(texture._pointer, _byref(rect(target, "target")), None if source is None else _byref(rect(source, "source")),
                    _reference) or raised:
        raise _failed()


def turned(texture: Texture, x: float, y: float, angle: float = 0, scale: Union[float, tuple[float, float]] = 1,
           pivot: Optional[tuple[float, float]] = None, source: Optional[Rect] = None, **options: Any) -> None:
    """Turned clockwise by `angle` degrees and scaled, with `pivot` (texels from the source's top left; None: its middle) at x, y."""
    if options:
        with _with(options):
            return turned(texture, x, y, angle, scale, pivot, source)
    part = None if source is None else rect(source, "source")
    if pivot is None:
        pivot = (part.width / 2, part.height / 2) if part else (texture.width / 2, texture.height / 2)
    scale_x, scale_y = scale if isinstance(scale, tuple) else (scale, scale)
    turn = NfkTurn(x, y, *pivot, angle, scale_x, scale_y)
    if not _turned(texture._pointer, _byref(turn), part and _byref(part), _reference) or raised:
        raise _failed()


def transition(texture: Texture, rule: Texture, t: float, width: int = 0, target: Optional[Rect] = None,
               source: Optional[Rect] = None, **options: Any) -> None:
    """Wiped in along `rule`, whose dark texels (by their low byte) come last: t from 0 (nothing) to 1 (all of it), `width` that
    of the soft edge, 0 to 255. A target None is the source's size at 0, 0."""
    if options:
        with _with(options):
            return transition(texture, rule, t, width, target, source)
    if not _transition(texture._pointer, None if target is None else _byref(rect(target, "target")),
                       None if source is None else _byref(rect(source, "source")), rule._pointer, t,
                       signed(width, "width"), _reference) or raised:
        raise _failed()


def line(x0: int, y0: int, x1: int, y1: int, color: int, **options: Any) -> None:
    """A line of single pixels, the last of which is not drawn."""
    if options:
        with _with(options):
            return line(x0, y0, x1, y1, color)
    _checked(x0, y0)
    _checked(x1, y1)
    ends = (whole(x0, "x0"), whole(y0, "y0"), whole(x1, "x1"), whole(y1, "y1"))
    if not _line(*ends, color_of(color), _reference) or raised:
        raise _failed()


def rectangle(target: Rect, color: int, **options: Any) -> None:
    """A rectangle of one colour."""
    if options:
        with _with(options):
            return rectangle(target, color)
    if not _fill(_byref(rect(target, "target")), color_of(color), _reference) or raised:
        raise _failed()


def gradient(target: Rect, colors: Sequence[int], **options: Any) -> None:
    """A rectangle of four colours that run into each other: top left, top right, bottom left, bottom right."""
    if options:
        with _with(options):
            return gradient(target, colors)
    if len(colors) != 4:
        raise ValueError(f"a gradient has 4 colours, not {len(colors)}")
    four = (ctypes.c_uint32 * 4)(*(color_of(each) for each in colors))
    if not kit.nfkGradient(_byref(rect(target, "target")), four, _reference) or raised:
        raise _failed()


def _table(values: npt.ArrayLike, dtype: Any, columns: Optional[int], what: str, count: Optional[int] = None) -> Array:
    """Contiguous rows of 32-bit numbers. Values that do not fit raise."""
    given = np.asarray(values)
    if given.dtype != dtype:
        if given.size == 0:
            given = given.astype(dtype)
        elif given.dtype.kind not in "iu":
            raise TypeError(f"{what} are whole numbers, not {given.dtype}")
        limits = np.iinfo(dtype)
        if given.size and (given.min() < limits.min or given.max() > limits.max):
            raise ValueError(f"{what} do not all fit into {np.dtype(dtype)}")
    shape = (-1,) if columns is None else (-1, columns)
    if given.ndim != len(shape) or (columns is not None and given.shape[1] != columns):
        raise ValueError(f"{what} are an array of shape {given.shape}, not {('n',) if columns is None else ('n', columns)}")
    if count is not None and len(given) != count:
        raise ValueError(f"there are {len(given)} {what} for {count} draws")
    return np.ascontiguousarray(given, dtype)


def draw_many(texture: Texture, places: npt.ArrayLike, sources: Optional[npt.ArrayLike] = None,
              colors: Optional[npt.ArrayLike] = None, **options: Any) -> None:
    """Sprites or stretched pictures of one texture, in order. `places` are rows of x, y, or rows of x, y, width, height; `sources`
    rows of x, y, width, height. A colour tints and fades its sprite: 0xFFFFFFFF leaves it nearly as it is."""
    if options:
        with _with(options):
            return draw_many(texture, places, sources, colors)
    given = np.asarray(places)
    if given.ndim != 2 or given.shape[1] not in (2, 4):
        raise ValueError(f"places are an array of shape {given.shape}, not ('n', 2) or ('n', 4)")
    targets = _table(given, np.int32, given.shape[1], "places")
    count = len(targets)
    parts = None if sources is None else _table(sources, np.int32, 4, "sources", count)
    tints = None if colors is None else _table(colors, np.uint32, None, "colors", count)
    draw = kit.nfkSprites if targets.shape[1] == 2 else kit.nfkPictures
    if not draw(texture._pointer, count, targets.ctypes.data, None if parts is None else parts.ctypes.data,
                None if tints is None else tints.ctypes.data, _reference) or raised:
        raise _failed()


def draw_lines(ends: npt.ArrayLike, colors: npt.ArrayLike, **options: Any) -> None:
    """Lines: rows of x0, y0, x1, y1, and a colour for each."""
    if options:
        with _with(options):
            return draw_lines(ends, colors)
    rows = _table(ends, np.int32, 4, "ends")
    tints = _table(colors, np.uint32, None, "colors", len(rows))
    if not kit.nfkLines(len(rows), rows.ctypes.data, tints.ctypes.data, _reference) or raised:
        raise _failed()


def draw_rectangles(targets: npt.ArrayLike, colors: npt.ArrayLike, **options: Any) -> None:
    """Rectangles: rows of x, y, width, height, and a colour for each."""
    if options:
        with _with(options):
            return draw_rectangles(targets, colors)
    rows = _table(targets, np.int32, 4, "targets")
    tints = _table(colors, np.uint32, None, "colors", len(rows))
    if not kit.nfkFills(len(rows), rows.ctypes.data, tints.ctypes.data, _reference) or raised:
        raise _failed()


def mesh(texture: Optional[Texture], positions: npt.ArrayLike, texels: Optional[npt.ArrayLike] = None,
         colors: Optional[npt.ArrayLike] = None, indices: Optional[npt.ArrayLike] = None, **options: Any) -> None:
    """Triangles. `positions` are rows of x, y or x, y, z (pixels, depth), `texels` rows of u, v (texels, fractions allowed),
    `colors` a word for each vertex, for meshes without a texture and multi="corners". `indices` are three a triangle; None: the
    vertices as they come."""
    if options:
        with _with(options):
            return mesh(texture, positions, texels, colors, indices)
    given = np.asarray(positions)
    if given.ndim != 2 or given.shape[1] not in (2, 3):
        raise ValueError(f"positions are an array of shape {given.shape}, not ('n', 2) or ('n', 3)")
    rows = _table(given, np.int32, given.shape[1], "positions")
    vertices = np.zeros(len(rows), np.dtype(NfkMeshVertex))
    vertices["color"] = 0xFFFFFFFF
    for column, field in enumerate(("x", "y", "z")[:rows.shape[1]]):
        vertices[field] = rows[:, column]
    if texels is not None:
        fixed = np.round(np.asarray(texels, np.float64) * 65536)
        if fixed.shape != (len(rows), 2) or not (np.abs(fixed) < 1 << 31).all():
            raise ValueError(f"texels are rows of u, v below 32768, one for each of {len(rows)} vertices")
        vertices["u"], vertices["v"] = fixed[:, 0], fixed[:, 1]
    if colors is not None:
        vertices["color"] = _table(colors, np.uint32, None, "colors", len(rows))
    order = None if indices is None else np.ascontiguousarray(_table(np.ravel(indices), np.uint32, None, "indices"))
    count = len(rows) if order is None else len(order)
    if not kit.nfkMesh(None if texture is None else texture._open(), len(rows), vertices.ctypes.data, count,
                       None if order is None else order.ctypes.data, _reference) or raised:
        raise _failed()
