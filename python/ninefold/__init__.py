"""Ninefold, a software rasteriser for 32-bit ARGB pixels: its library and its kit for Python and NumPy.

    import ninefold as nf

    screen = nf.Screen(320, 200)
    photo = nf.load("photo.jpg")
    with nf.modes(filter="bilinear", blend="alpha"):
        nf.stretch(photo, (0, 0, 320, 200))
    screen.pixels[100, :] = 0xFFFFFFFF  # a NumPy array over the same memory
    screen.save("out.png")

One thread draws at a time; there is one state for the whole process. What the kit refuses raises ninefold.Error with its text."""
from . import _description as names
from . import bands, captures, twin
from ._description import (Alignment, Blend, BlendOperator, Curve, DebugAction, DebugSeverity, Filter, Format, Kind, Multi, MultiBank, MultiOp, NfkRect,
                           Perspective, PictureExtra, Prescale, Quality, RectOpt, Rule, Shahei, Shape, Stipple, TextAlignment,
                           TextureFlag, __version__)
from ._library import Error, LayoutError, kit, library
from .bands import flush, threads
from .draws import (draw_lines, draw_many, draw_rectangles, gradient, line, mesh, modes, rectangle, sprite, stretch, transition,
                    turned)
from .state import Kernel, Operator, code_exists, code_of, explain, name_of, state
from .text import Font, FontInfo, Text, TextLine, TextSize
from .textures import Screen, Texture, load, selected

__all__ = [
    "Alignment", "Blend", "BlendOperator", "Curve", "DebugAction", "DebugSeverity", "Error", "Filter", "Font", "FontInfo", "Format", "Kernel", "Kind",
    "LayoutError", "Multi", "MultiBank", "MultiOp", "NfkRect", "Operator", "Perspective", "PictureExtra", "Prescale", "Quality",
    "RectOpt", "Rule", "Screen", "Shahei", "Shape", "Stipple", "Text", "TextAlignment", "TextLine", "TextSize", "Texture",
    "TextureFlag", "__version__", "bands", "captures", "code_exists", "code_of", "draw_lines", "draw_many", "draw_rectangles", "explain", "flush", "gradient",
    "kit", "library", "line", "load", "mesh", "modes", "name_of", "names", "rectangle", "selected", "sprite", "state", "stretch", "threads",
    "transition", "turned", "twin",
]
