"""The two libraries: found, loaded, and compared with what this package knows of them."""
from __future__ import annotations

import ctypes
import ctypes.util
import os
import sys
from typing import Any, Optional

from . import _description
from ._description import Kind, NfkField


class Error(RuntimeError):
    """What the kit refused, in its words: the function, the value and the remedy."""


class LayoutError(ImportError):
    """The libraries are not those that this package was made for."""


# What Python code that the library called has raised, until the library has returned.
raised: list[BaseException] = []


def settle() -> None:
    """Raises what waits."""
    if raised:
        exception = raised[0]
        raised.clear()
        raise exception


_scalars: dict[tuple[int, int], Any] = {(Kind.SIGNED, 1): ctypes.c_int8, (Kind.SIGNED, 2): ctypes.c_int16, (Kind.SIGNED, 4): ctypes.c_int32,
            (Kind.UNSIGNED, 1): ctypes.c_uint8, (Kind.UNSIGNED, 2): ctypes.c_uint16, (Kind.UNSIGNED, 4): ctypes.c_uint32}


def _file_names(stem: str) -> list[str]:
    major = _description.__version__.split(".")[0]
    if sys.platform == "win32":
        return [f"{stem}.dll", f"lib{stem}.dll"]
    if sys.platform == "darwin":
        return [f"lib{stem}.{major}.dylib", f"lib{stem}.dylib"]
    return [f"lib{stem}.so.{major}", f"lib{stem}.so"]


def _load(stem: str, variable: str) -> ctypes.PyDLL:
    """By the path in the environment variable, else beside the package, else by the system's loader. The functions keep the
    interpreter's lock: the library has one state, and is used from one thread at a time."""
    named = os.environ.get(variable)
    here = os.path.dirname(os.path.abspath(__file__))
    beside = [path for path in (os.path.join(here, name) for name in _file_names(stem)) if os.path.exists(path)]
    reasons = []
    for path in [named] if named else beside or _file_names(stem):
        try:
            return ctypes.PyDLL(path, mode=ctypes.RTLD_GLOBAL)
        except OSError as reason:
            reasons.append(str(reason))
    raise ImportError(f"cannot load {stem}: {'; '.join(reasons)}; install it, or name its file in {variable}")


def _declare(library: ctypes.PyDLL, path: str, functions: dict[str, tuple[Any, list[Any]]]) -> None:
    for name, (result, parameters) in functions.items():
        try:
            function = getattr(library, name)
        except AttributeError:
            raise LayoutError(f"{path} has no function {name}; ninefold {_description.__version__} for Python needs it") from None
        function.restype = result
        function.argtypes = parameters


library = _load("ninefold", "NINEFOLD_LIBRARY")
kit = _load("ninefold-kit", "NINEFOLD_KIT")
_declare(library, "libninefold", _description.LIBRARY)
_declare(kit, "libninefold-kit", _description.KIT)


def companion(export: str, calls: dict[str, tuple[Any, list[Any]]]) -> dict[str, Any]:
    """The calls of a companion, a library that stands in the place of the plain one; empty where that was loaded."""
    try:
        get = getattr(library, export)
    except AttributeError:
        return {}
    get.restype = ctypes.c_void_p
    address = get()
    size = ctypes.c_size_t.from_address(address).value
    word = ctypes.sizeof(ctypes.c_void_p)
    if size < word * (1 + len(calls)):
        raise LayoutError(f"the library that was loaded is older than this package: what {export} gives has {size} bytes")
    addresses = (ctypes.c_void_p * len(calls)).from_address(address + word)
    return {name: ctypes.PYFUNCTYPE(result, *taken)(addresses[i] or 0) for i, (name, (result, taken)) in enumerate(calls.items())}


def failure() -> Error:
    """The kit's last error, to be raised."""
    return Error(kit.nfkError().decode("utf-8", "replace"))


def fields(record: str) -> list[NfkField]:
    """The kit's description of a record of the library."""
    count = ctypes.c_uint32()
    address = kit.nfkFields(record.encode(), ctypes.byref(count))
    if not address:
        raise LayoutError(f"the kit does not describe the record {record}")
    return list((NfkField * count.value).from_address(address))


_records: dict[str, type[ctypes.Structure]] = {}


def record(name: str) -> type[ctypes.Structure]:
    """A record of the library as the kit describes it. Raises LayoutError where ctypes would lay it out in another way."""
    if name in _records:
        return _records[name]
    described = fields(name)
    members: list[tuple[str, Any]] = []
    if described[0].offset == ctypes.sizeof(ctypes.c_void_p):  # a virtual table comes first
        members.append(("_vtable", ctypes.c_void_p))
    for field in described:
        if field.kind == Kind.RECORD:
            kind: Any = record(field.type.decode())
        elif field.kind in (Kind.POINTER, Kind.FUNCTION):
            kind = ctypes.c_void_p
        else:
            kind = _scalars[(field.kind, field.size)]
        members.append((field.name.decode(), kind * field.count if field.count > 1 else kind))
    made = type(name, (ctypes.Structure,), {"_fields_": members})
    compare(name, made, described, kit.nfkRecordSize(name.encode()))
    _records[name] = made
    return made


def compare(name: str, made: type[ctypes.Structure], described: list[NfkField], size: int) -> None:
    """Raises LayoutError where a record is not laid out as described."""
    for field in described:
        member = getattr(made, field.name.decode())
        if (member.offset, member.size) != (field.offset, field.size * field.count):
            raise LayoutError(f"{name}.{field.name.decode()} has {member.size} bytes at {member.offset} here, and "
                              f"{field.size * field.count} at {field.offset} in the library")
    if ctypes.sizeof(made) != size:
        raise LayoutError(f"{name} has {ctypes.sizeof(made)} bytes here and {size} in the library")


TextureRecord = record("Texture")
Vertex = record("Vertex")
TexCoord = record("TexCoord")
LineTableRecord = record("LineTableRecord")
RenderState = record("RenderState")

if ctypes.addressof(ctypes.c_char.in_dll(library, "rs")) != kit.nfkState():
    raise LayoutError("the kit works with another libninefold than the one that was loaded; NINEFOLD_LIBRARY and NINEFOLD_KIT "
                      "must name files of one installation")
if not kit.nfkStart():
    raise LayoutError(str(failure()))

# The render state itself.
rs: Any = RenderState.from_address(kit.nfkState())


def encoded(text: str, what: str) -> bytes:
    """UTF-8 for a function that reads up to a NUL."""
    if "\0" in text:
        raise ValueError(f"{what} has a NUL character in it")
    return text.encode()


def path_of(path: "str | os.PathLike[str]") -> bytes:
    """A path for a function that reads up to a NUL."""
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError(f"{path!r}: no path has a NUL character in it")
    return name


def text_from(function: Any, *arguments: Any) -> Optional[str]:
    """What a function writes into a buffer and its size; None where that is nothing."""
    length = function(*arguments, None, 0)
    if not length:
        return None
    buffer = ctypes.create_string_buffer(length + 1)
    function(*arguments, buffer, length + 1)
    return buffer.value.decode()
