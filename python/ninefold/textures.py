"""Textures and screens: pixels and planes as NumPy arrays over the same memory.

An array, and every view of it, keeps its texture or screen alive, so that dropping one's last reference is always safe. What
would end the memory of a living array (close, resize, making a map or chain again) raises BufferError instead."""
from __future__ import annotations

import ctypes
import os
import tempfile
from typing import Any, Optional, Union

import numpy as np
import numpy.typing as npt

from ._description import Format, NfkRect, NfkScreen, PictureExtra
from ._library import Error, TextureRecord, encoded, failure, kit, library, path_of, raised, settle
from ._memory import Array, Hold, Owner
from ._names import number, signed, whole
from .bands import flush

Path = Union[str, "os.PathLike[str]"]
_delete = library.DeleteTexture
_release = kit.nfkReleaseScreen
_largest = 1 << 15


def color_of(value: Any) -> int:
    """A word 0xAARRGGBB."""
    color = whole(value, "color")
    if not 0 <= color <= 0xFFFFFFFF:
        raise ValueError(f"color {color:#x} is no word 0xAARRGGBB")
    return color


def _png(texture: int, alpha: bool) -> bytes:
    # The kit writes files.
    with tempfile.TemporaryDirectory(prefix="ninefold-") as directory:
        path = os.path.join(directory, "picture.png")
        _save(texture, path, alpha)
        with open(path, "rb") as file:
            return file.read()


def _save(texture: Optional[int], path: Path, alpha: bool) -> None:
    flush()
    if not kit.nfkSavePicture(texture, path_of(path), alpha):
        raise failure()


def extras_of(extras: Union[int, str]) -> int:
    """A sum of PictureExtra: a number, or words joined by +."""
    if not isinstance(extras, str):
        return signed(extras, "extras")
    return sum({number((PictureExtra,), word.strip(), "extra") for word in extras.split("+") if word.strip()})


class Texture(Owner):
    """A picture in memory: 32-bit words 0xAARRGGBB, sizes padded to powers of two. The word 0 is no pixel and is never drawn.

    Texture(width, height) is a cleared one; others come from load, from_array and over. close(), or the end of the last
    reference, frees it."""

    def __init__(self, width: int, height: int) -> None:
        for side, what in ((width, "width"), (height, "height")):
            if not 1 <= whole(side, what) <= _largest:
                raise ValueError(f"{what} {side} is no size for a texture; sizes are 1 to {_largest} pixels")
        self._take(library.CreateTexture(width, height))
        if not self._record.pixels:
            self.close()
            raise MemoryError(f"no memory for a texture of {width} x {height}")
        library.ClearTexture(self._pointer)
        settle()

    def _take(self, pointer: int, owner: Optional[object] = None) -> None:
        super().__init__()
        self._pointer: Optional[int] = pointer
        self._owner = owner  # who frees the texture, or owns its pixels
        self._borrowed = False
        self._record: Any = TextureRecord.from_address(pointer)

    @classmethod
    def _of(cls, pointer: Optional[int], owner: Optional[object] = None) -> Texture:
        if not pointer:
            raise failure()
        texture = cls.__new__(cls)
        texture._take(pointer, owner)
        settle()
        return texture

    @classmethod
    def from_array(cls, pixels: npt.ArrayLike) -> Texture:
        """A texture with a copy of `pixels`: rows of words 0xAARRGGBB, or rows of (red, green, blue) or (red, green, blue, alpha)
        bytes, where pixels with alpha 0 become the word 0."""
        given = np.asarray(pixels)
        if given.ndim == 3 and given.shape[2] in (3, 4) and given.dtype == np.uint8:
            given = words_of(given)
        if given.ndim != 2 or given.dtype.kind not in "iu":
            raise ValueError(f"pixels are rows of words or rows of 3 or 4 bytes (uint8), not {given.dtype} of shape {given.shape}")
        texture = cls(given.shape[1], given.shape[0])
        texture.pixels[...] = given.astype(np.uint32, copy=False)
        return texture

    @classmethod
    def over(cls, pixels: Array) -> Texture:
        """A texture whose pixels are those of an array, which it keeps: uint32, contiguous, both sizes powers of two."""
        if not isinstance(pixels, np.ndarray) or pixels.dtype != np.uint32 or pixels.ndim != 2 or not pixels.flags.carray:
            raise ValueError("the array must be writeable and contiguous, of two dimensions and of type uint32")
        return cls._of(kit.nfkTextureOver(pixels.ctypes.data, pixels.shape[1], pixels.shape[0]), pixels)

    def close(self) -> None:
        """Frees it. Raises BufferError while an array, an option or the state looks at it. Again does nothing."""
        if self._pointer is None:
            return
        if self._borrowed:
            raise BufferError("a screen's texture closes with its screen")
        self._must_be_free("close")
        pointer, self._pointer = self._pointer, None
        _delete(pointer)
        settle()

    def __del__(self, delete: Any = _delete, waiting: list[BaseException] = raised) -> None:
        pointer = getattr(self, "_pointer", None)
        if pointer is not None and not self._borrowed:
            before = len(waiting)
            delete(pointer)
            del waiting[before:]  # it may happen anywhere: nobody expects an exception

    def __enter__(self) -> Texture:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    @property
    def record(self) -> Any:
        """The library's record of it, read only: a copy of its fields."""
        self._open()
        return TextureRecord.from_buffer_copy(self._record)

    def _open(self) -> int:
        if self._pointer is None:
            raise Error("the texture is closed")
        return self._pointer

    @property
    def width(self) -> int:
        """Of the picture, without the padding."""
        self._open()
        return int(self._record.origWidth)

    @property
    def height(self) -> int:
        self._open()
        return int(self._record.origHeight)

    @property
    def padded(self) -> Array:
        """All pixels, padding included: height by width words."""
        self._open()
        record = self._record
        return self._array("pixels", record.pixels, (record.height, record.width), np.uint32)

    @property
    def pixels(self) -> Array:
        """The picture's pixels: height by width words 0xAARRGGBB."""
        return self.padded[:self.height, :self.width]

    @property
    def rgba(self) -> Array:
        """A copy of the picture as height by width by 4 bytes: red, green, blue, alpha."""
        return rgba_of(self.pixels)

    def clear(self) -> None:
        """Makes every word 0."""
        library.ClearTexture(self._open())
        settle()

    def set_clear(self, color: int) -> None:
        """Makes every word `color` 0: a colour key. Loaded pictures have alpha 255."""
        library.SetClearPixel(self._open(), color_of(color))
        settle()

    def copy(self, x: int, y: int, source: Texture, source_x: int, source_y: int, width: int, height: int) -> None:
        """Copies a block of `source` to x, y, clipped to both textures."""
        library.CopyTexture(self._open(), source._open(), x, y, source_x, source_y, width, height)
        settle()

    def make_mips(self) -> None:
        """Makes the chain of half-size levels from the pixels of now, which the mip filters read."""
        pointer = self._open()
        self._must_be_free("make_mips", "levels")
        library.DeleteMipmapTexture(pointer)
        library.CreateMipmapTexture(pointer)
        settle()

    @property
    def levels(self) -> list[Array]:
        """The pixels of each level of the chain, the texture's own first; empty without a chain."""
        self._open()
        levels = [TextureRecord.from_address(self._record.mip[i]) for i in range(self._record.mipCount)]
        return [self._array("levels", level.pixels, (level.height, level.width), np.uint32) for level in levels]

    def make_run_map(self) -> None:
        """Makes the map of runs from the pixels of now (rect option runs)."""
        pointer = self._open()
        self._must_be_free("make_run_map", "run map")
        library.CreateRunlengthMap(pointer)
        settle()

    @property
    def run_map(self) -> Optional[Array]:
        """A signed byte a pixel; None without a map."""
        self._open()
        record = self._record
        return self._array("run map", record.runlengthMap, (record.height, record.width), np.int8) if record.runlengthMap else None

    def make_zero_map(self) -> None:
        """Makes the map of zero pixels from the pixels of now (rect option planeruns)."""
        pointer = self._open()
        self._must_be_free("make_zero_map", "zero map")
        library.CreateZeroPixelMap(pointer)
        settle()

    @property
    def zero_map(self) -> Optional[Array]:
        """A bit a pixel in words of 16, bit 15 leftmost; None without a map."""
        self._open()
        record = self._record
        if not record.zeroPixelMap:
            return None
        return self._array("zero map", record.zeroPixelMap, (max(record.height * record.width // 16, 1),), np.uint16)

    def save(self, path: Path, alpha: bool = True) -> None:
        """Writes the picture as a PNG file."""
        _save(self._open(), path, alpha)

    def _repr_png_(self) -> bytes:
        return _png(self._open(), not self._borrowed)

    def __repr__(self) -> str:
        return "<ninefold.Texture, closed>" if self._pointer is None else f"<ninefold.Texture {self.width} x {self.height}>"


class _ScreenTexture(Texture, Hold):
    """A screen's frame buffer as a texture. It holds the screen, and so do its arrays."""

    def __init__(self, screen: Screen) -> None:
        self._take(screen._record.texture, screen)
        self._borrowed = True
        Hold.__init__(self, screen, "texture")


_selected: Optional[Screen] = None


class Screen(Owner):
    """A frame buffer with its planes, width by height pixels, cleared to opaque black and selected: what is drawn goes there.
    The selected screen lives at least until another is selected or it is closed."""

    def __init__(self, width: int, height: int) -> None:
        super().__init__()
        self._pointer: Optional[int] = kit.nfkCreateScreen(signed(width, "width"), signed(height, "height"))
        if not self._pointer:
            raise failure()
        self._record: Any = NfkScreen.from_address(self._pointer)
        self._mark()

    def _mark(self) -> None:
        global _selected
        _selected = self
        settle()

    def _open(self) -> int:
        if self._pointer is None:
            raise Error("the screen is closed")
        flush()  # most of what follows looks at its pixels or planes, or frees them
        return self._pointer

    def select(self) -> None:
        """Makes it what is drawn on: frame buffer, clip rectangle and planes of the state."""
        if not kit.nfkSelectScreen(self._open()):
            raise failure()
        self._mark()

    def close(self) -> None:
        """Frees it. Raises BufferError while an array or texture looks at it. Again does nothing."""
        global _selected
        if self._pointer is None:
            return
        self._must_be_free("close")
        pointer, self._pointer = self._open(), None
        if _selected is self:
            _selected = None
        _release(pointer)
        settle()

    def __del__(self, release: Any = _release, waiting: list[BaseException] = raised, flush: Any = flush) -> None:
        if getattr(self, "_pointer", None) is not None:
            before = len(waiting)
            flush()
            release(self._pointer)
            del waiting[before:]

    def __enter__(self) -> Screen:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def resize(self, width: int, height: int) -> None:
        """Gives it another size; it is cleared. Raises BufferError while an array or texture looks at it."""
        pointer = self._open()
        self._must_be_free("resize")
        if not kit.nfkResizeScreen(pointer, signed(width, "width"), signed(height, "height")):
            raise failure()
        settle()

    def clear(self, color: int = 0xFF000000) -> None:
        """Fills it with a colour, and frees every pixel of both planes."""
        if not kit.nfkClearScreen(self._open(), color_of(color)):
            raise failure()
        settle()

    @property
    def width(self) -> int:
        self._open()
        return int(self._record.width)

    @property
    def height(self) -> int:
        self._open()
        return int(self._record.height)

    @property
    def texture(self) -> Texture:
        """The frame buffer, to draw from; not while it is drawn on, unless that is meant."""
        self._open()
        return _ScreenTexture(self)

    def _padded(self) -> tuple[int, int]:
        self._open()
        record = TextureRecord.from_address(self._record.texture)
        return int(record.height), int(record.width)

    @property
    def pixels(self) -> Array:
        """The visible pixels: height by width words. Their alpha means nothing after a blend."""
        shape = self._padded()
        pixels = TextureRecord.from_address(self._record.texture).pixels
        return self._array("pixels", pixels, shape, np.uint32)[:self.height, :self.width]

    @property
    def rgba(self) -> Array:
        """A copy of the visible pixels as height by width by 4 bytes: red, green, blue, 255."""
        bytes_ = np.empty((self.height, self.width, 4), np.uint8)
        shown = kit.nfkShow(self._open(), bytes_.ctypes.data, self.width * 4, self.width, self.height,
                            Format.ABGR8888 if np.little_endian else Format.RGBA8888)
        if not shown:
            raise failure()
        return bytes_

    @property
    def shahei_plane(self) -> Array:
        """The occlusion plane: a bit a pixel of the padded frame buffer in words of 16, bit 15 leftmost; set: taken."""
        height, width = self._padded()
        return self._array("Shahei plane", self._record.shaheiPlane, (height, width // 16), np.uint16)

    @property
    def z_buffer(self) -> Array:
        """The priorities, a byte for each visible pixel."""
        return self._array("priorities", self._record.zBuffer, self._padded(), np.uint8)[:self.height, :self.width]

    def save(self, path: Path) -> None:
        """Writes the visible part as a PNG file, without alpha."""
        self._open()
        _save(self._record.texture, path, False)

    def _repr_png_(self) -> bytes:
        self._open()
        return _png(self._record.texture, False)

    def __repr__(self) -> str:
        return "<ninefold.Screen, closed>" if self._pointer is None else f"<ninefold.Screen {self.width} x {self.height}>"


def selected() -> Optional[Screen]:
    """The screen that is drawn on."""
    return _selected


def load(picture: Union[Path, bytes], extras: Union[int, str] = 0, name: Optional[str] = None) -> Texture:
    """A picture (PNG, JPEG, WebP, BMP) from a file, or from the bytes of one, for which `name` stands in error texts. `extras` are
    words of PictureExtra joined by +: "edge+mip"."""
    if isinstance(picture, (bytes, bytearray, memoryview)):
        data = bytes(picture)
        address = ctypes.cast(ctypes.c_char_p(data), ctypes.c_void_p)
        shown = None if name is None else encoded(name, "the name")
        return Texture._of(kit.nfkLoadPictureMemory(address, len(data), shown, extras_of(extras)))
    return Texture._of(kit.nfkLoadPicture(path_of(picture), extras_of(extras)))


def words_of(rgba: Array) -> Array:
    """Rows of words from rows of 3 or 4 bytes. Pixels with alpha 0 become the word 0."""
    channels = rgba.astype(np.uint32)
    words: Array = channels[..., 0] << 16 | channels[..., 1] << 8 | channels[..., 2]
    if rgba.shape[2] == 3:
        return words | np.uint32(0xFF000000)
    words |= channels[..., 3] << 24
    words[rgba[..., 3] == 0] = 0
    return words


def rgba_of(words: Array) -> Array:
    """Rows of 4 bytes from rows of words."""
    channels: Array = np.stack([words >> shift & 255 for shift in (16, 8, 0, 24)], axis=-1).astype(np.uint8)
    return channels


def rect(values: Any, what: str) -> NfkRect:
    """x, y, width, height as the kit takes them."""
    if isinstance(values, NfkRect):
        return values
    try:
        x, y, width, height = values
    except (TypeError, ValueError):
        raise ValueError(f"{what} is {values!r}, not (x, y, width, height)") from None
    if not (-_far < x < _far and -_far < y < _far and -_far < width < _far and -_far < height < _far):
        raise ValueError(f"{what} {values} is out of range; positions and sizes are below 2^29")
    try:
        return NfkRect(x, y, width, height)
    except TypeError:
        return NfkRect(*(whole(value, what) for value in (x, y, width, height)))


_far = 1 << 29
