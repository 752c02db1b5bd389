"""Text in any language: fonts by name, texts laid out, measured and drawn."""
from __future__ import annotations

import ctypes
from typing import Any, NamedTuple, Optional, Union

from ._description import NfkFontInfo, NfkRect, NfkTextLine, NfkTextSize, NfkTextStyle, TextAlignment
from ._library import Error, encoded, failure, kit, path_of, settle
from ._names import number, signed, whole
from .textures import Path, color_of

_close, _delete = kit.nfkCloseFont, kit.nfkDeleteText


class FontInfo(NamedTuple):
    """Of the face that was really found. Sizes are pixels."""
    family: str
    style: str
    file: str
    face: int
    found: bool  # False: it stands in for the family that was asked for
    ascent: int
    descent: int
    line_height: int


class TextSize(NamedTuple):
    """Pixels; `ink` (x, y, width, height) is what drawing can change, `missing` how many characters no font has."""
    width: int
    height: int
    lines: int
    glyphs: int
    missing: int
    ink: tuple[int, int, int, int]


class TextLine(NamedTuple):
    """A line: its part of the text, as UTF-8 bytes; its left edge, width and base line in pixels."""
    begin: int
    end: int
    x: int
    width: int
    baseline: int
    right_to_left: bool


def _four(rect: Any) -> tuple[int, int, int, int]:
    return rect.x, rect.y, rect.width, rect.height


def _style(color: int, rim_color: int, rim: int, align: Union[str, int], width: int, line_height: int) -> NfkTextStyle:
    return NfkTextStyle(color_of(color), color_of(rim_color), signed(rim, "rim"),
                        signed(number((TextAlignment,), align, "align"), "align"), signed(width, "width"),
                        signed(line_height, "line_height"))


class Font:
    """A face of a family, `pixels` high: Font("DejaVu Sans:bold", 24). Other fonts help out where it lacks a character. A file of
    a font instead: Font(file="face.ttf", pixels=24)."""

    def __init__(self, name: Optional[str] = None, pixels: int = 16, file: Optional[Path] = None, face: int = 0) -> None:
        size = signed(pixels, "pixels")
        if file is not None:
            self._pointer: Optional[int] = kit.nfkOpenFontFile(path_of(file), signed(face, "face"), size)
        else:
            self._pointer = kit.nfkOpenFont(encoded(name or "", "the font's name"), size)
        if not self._pointer:
            raise failure()

    def _open(self) -> int:
        if self._pointer is None:
            raise Error("the font is closed")
        return self._pointer

    def close(self) -> None:
        """Closes it; texts in it live on."""
        if self._pointer is not None:
            pointer, self._pointer = self._pointer, None
            _close(pointer)

    def __del__(self, close: Any = _close) -> None:
        if getattr(self, "_pointer", None) is not None:
            close(self._pointer)

    @property
    def info(self) -> FontInfo:
        info = NfkFontInfo()
        if not kit.nfkGetFontInfo(self._open(), ctypes.byref(info)):
            raise failure()
        family, style, file = ((name or b"").decode("utf-8", "replace") for name in (info.family, info.style, info.file))
        return FontInfo(family, style, file, info.face, bool(info.found), info.ascent, info.descent, info.lineHeight)

    def write(self, text: str, x: int, y: int, color: int = 0xFFFFFFFF, rim_color: int = 0xFF000000, rim: int = 0,
              align: Union[str, int] = "start", width: int = 0, line_height: int = 0) -> None:
        """Writes a text with its top left at x, y onto the selected screen. See Text."""
        Text(self, text, color, rim_color, rim, align, width, line_height).draw(x, y)


class Text:
    """A text laid out: wrapped to `width` pixels (0: only where it says so), aligned by TextAlignment, with a rim of `rim` pixels
    around its glyphs. Lines are `line_height` pixels apart (0: as the font has it)."""

    def __init__(self, font: Font, text: str, color: int = 0xFFFFFFFF, rim_color: int = 0xFF000000, rim: int = 0,
                 align: Union[str, int] = "start", width: int = 0, line_height: int = 0) -> None:
        self._pointer: Optional[int] = None
        style = _style(color, rim_color, rim, align, width, line_height)
        self._bytes = encoded(text, "the text")
        self._pointer = kit.nfkMakeText(font._open(), self._bytes, ctypes.byref(style))
        if not self._pointer:
            raise failure()

    def __del__(self, delete: Any = _delete) -> None:
        if getattr(self, "_pointer", None) is not None:
            delete(self._pointer)

    @property
    def size(self) -> TextSize:
        size = NfkTextSize()
        if not kit.nfkMeasureText(self._pointer, ctypes.byref(size)):
            raise failure()
        return TextSize(size.width, size.height, size.lines, size.glyphs, size.missing, _four(size.ink))

    @property
    def lines(self) -> list[TextLine]:
        lines = []
        for i in range(self.size.lines):
            line = NfkTextLine()
            if not kit.nfkGetTextLine(self._pointer, i, ctypes.byref(line)):
                raise failure()
            lines.append(TextLine(line.begin, line.end, line.x, line.width, line.baseline, bool(line.rightToLeft)))
        return lines

    def caret(self, characters: int) -> tuple[int, int, int, int]:
        """Where a caret stands after so many characters: x, y, 0, height, from the text's top left."""
        at = NfkRect()
        if not kit.nfkGetTextCaret(self._pointer, self._length(characters), ctypes.byref(at)):
            raise failure()
        return _four(at)

    def _length(self, characters: int) -> int:
        return len(self._bytes.decode()[:whole(characters, "characters")].encode())

    def draw(self, x: int, y: int, alpha: int = 255, characters: Optional[int] = None) -> None:
        """Draws it with its top left at x, y, faded by alpha, 0 to 255; the first `characters` of it, for text that writes itself."""
        numbers = (signed(x, "x"), signed(y, "y"), signed(alpha, "alpha"))
        if not kit.nfkDrawText(self._pointer, *numbers, -1 if characters is None else self._length(characters)):
            raise failure()
        settle()
