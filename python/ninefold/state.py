"""The render state, operators of the host's, and kernels called by hand: what the draws do not cover. Nothing here is checked by
the library; see ninefold/render_state.h."""
from __future__ import annotations

import ctypes
from typing import Any, Callable, Union

import numpy as np

from ._description import Kind
from ._library import Error, fields, kit, library, raised, rs, settle, text_from
from ._memory import Hold
from ._names import whole
from .bands import flush
from .textures import Texture

_operator_type = ctypes.PYFUNCTYPE(ctypes.c_uint32, ctypes.c_uint32, ctypes.c_uint32)
_FunctionPointer: Any = _operator_type.__mro__[1]  # the base of all functions of ctypes
_kernel_type = ctypes.PYFUNCTYPE(None)

PixelFunction = Callable[[int, int], int]


class Operator:
    """A pixel operator: a Python function of two words that gives a word, called for each pixel (a microsecond or so each), or
    the address of a compiled one, as an int or a ctypes function. It draws nothing and changes no texture. What a Python
    function raises ends its part in the draw, whose later pixels stay as their first operand, and is raised by the draw."""

    def __init__(self, function: Union[PixelFunction, int]) -> None:
        self.function: Any = function
        if isinstance(function, int):
            self.address = function
            return
        if isinstance(function, _FunctionPointer):
            self._callback: Any = function
        elif callable(function):
            python: Any = function

            def call(first: int, second: int) -> int:
                if not raised:
                    try:
                        return whole(python(first, second), "the operator's result") & 0xFFFFFFFF
                    except BaseException as exception:
                        raised.append(exception)
                return first

            self._callback = _operator_type(call)
        else:
            raise TypeError(f"{function!r} is no function of two words")
        self.address = ctypes.cast(self._callback, ctypes.c_void_p).value or 0


def operator_of(function: Any) -> Operator:
    return function if isinstance(function, Operator) else Operator(function)


_described = {field.name.decode(): field for field in fields("RenderState")}
_pointed = {b"uint8_t *": np.uint8, b"uint16_t *": np.uint16, b"uint32_t *": np.uint32, b"int32_t *": np.int32,
            b"LineTableRecord *": np.int32}


class State:
    """The fields of the render state, by the names of the library: state.originX = 10, state.vertex[0].x = 3. Textures, arrays
    and operators that are stored are kept alive until something else is stored, and textures cannot be closed meanwhile."""

    def __init__(self) -> None:
        object.__setattr__(self, "_kept", {})

    def __dir__(self) -> list[str]:
        return list(_described)

    def __getattr__(self, name: str) -> Any:
        if name not in _described:
            raise AttributeError(f"the state has no field {name}")
        return getattr(rs, name)

    def __setattr__(self, name: str, value: Any) -> None:
        field = _described.get(name)
        if field is None:
            raise AttributeError(f"the state has no field {name}")
        if name.startswith("dst") or name == "frameBuffer":
            raise AttributeError(f"{name} belongs to the selected screen; call Screen.select")
        kept: Any = None
        if field.kind == Kind.FUNCTION:
            if value is not None:
                kept = operator_of(value)
                value = kept.address
        elif field.kind == Kind.POINTER:
            flush()  # what the state has kept alive so far may be free below
            kept, value = self._pointer(name, field.type, value)
        elif field.count == 1 and field.kind != Kind.RECORD:
            value = whole(value, name)
            bits = 8 * field.size
            low, high = (-(1 << bits - 1), (1 << bits - 1) - 1) if field.kind == Kind.SIGNED else (0, (1 << bits) - 1)
            if not low <= value <= high:
                raise ValueError(f"{name} is {value}; it goes from {low} to {high}")
        else:
            value = tuple(value)
        setattr(rs, name, value)
        self._kept[name] = kept

    def _pointer(self, name: str, kind: bytes, value: Any) -> tuple[Any, Any]:
        if value is None or isinstance(value, int):
            return None, value
        if isinstance(value, Texture) and kind == b"Texture *":
            return (Hold(value, f"state.{name}"), value._open())
        if isinstance(value, bytes) and kind == b"char *":
            buffer = ctypes.create_string_buffer(value)
            return buffer, ctypes.addressof(buffer)
        wanted = _pointed.get(kind)
        if wanted is None or not isinstance(value, np.ndarray) or value.dtype != wanted or not value.flags.carray:
            of = "a Texture" if wanted is None else f"a contiguous, writeable array of {np.dtype(wanted)}"
            raise TypeError(f"{name} takes None, an address or {'bytes' if kind == b'char *' else of}")
        return value, value.ctypes.data


state = State()


def code_of(name: str) -> int:
    """The draw code of a name such as rect.stretch.bilinear.alpha.z."""
    code = kit.nfkCodeOfName(name.encode())
    if not code:
        raise Error(kit.nfkError().decode())
    return int(code)


def name_of(code: int) -> str:
    """The name of a draw code."""
    name = text_from(kit.nfkCodeName, whole(code, "code"))
    if name is None:
        raise Error(kit.nfkError().decode())
    return name


def code_exists(code: int) -> bool:
    """Whether a kernel has exactly this code."""
    return bool(kit.nfkCodeExists(whole(code, "code")))


def explain(code: Union[int, str]) -> str:
    """Some lines on a code or name: each axis, and where no kernel has it, why not and what is near."""
    return text_from(kit.nfkExplainCode, code_of(code) if isinstance(code, str) else whole(code, "code")) or ""


class Kernel:
    """The kernel of a draw code or name. Calling it draws what the state says, unchecked."""

    def __init__(self, code: Union[int, str]) -> None:
        self.code = code_of(code) if isinstance(code, str) else whole(code, "code")
        if not code_exists(self.code):
            raise Error(f"there is no such kernel\n{explain(self.code)}")
        self._call: Any = _kernel_type(library.SearchDrawFunc(self.code))

    def __call__(self) -> None:
        if not rs.dstPixels:
            raise Error("the state has no frame buffer; make or select a Screen first")
        self._call()
        settle()

    def __repr__(self) -> str:
        return f"<ninefold.Kernel {name_of(self.code)}>"
