"""Written by scripts/bindings from the headers of the library, of the kit and of the companions."""
import ctypes
from ctypes import c_char_p, c_float, c_int, c_int32, c_long, c_size_t, c_uint, c_uint32, c_ulong, c_ulonglong, c_void_p
from typing import Any

from ._names import Names

__version__ = "1.0.0"


class Shape(Names):
    "SetShapeMode"

    LINE = 0, "line", "a line of single pixels"
    RECTANGLE = 1, "rect", "a rectangle between two corners"
    TRIANGLE = 2, "tri", "a triangle"


class Perspective(Names):
    "SetPersMode"

    OFF = 0, "", "texture positions linear on the screen"
    ON = 1, "pers", "perspective, by vertex[].z (triangles)"


class Rule(Names):
    "SetRuleAlphaMode"

    OFF = 0, "", "drawn whole"
    ON = 1, "rule", "wiped in by tex2 (rectangles, triangles)"


class Prescale(Names):
    "SetPrescaleMode"

    OFF = 0, "", "the source as it is"
    ON = 1, "prescale", "the source scaled by rs.prescale: its alpha under blends 1, 2, 4, else its colour"


class Filter(Names):
    "SetFilterMode"

    POINT = 0, "point", "the nearest texel"
    BILINEAR = 1, "bilinear", "four texels mixed"
    MIP = 2, "mip", "the nearest texels of two mip levels"
    LINE_POINT = 3, "linepoint", "the nearest texel of a mip level for each line"
    LINE_BILINEAR = 4, "linebilinear", "four texels of a mip level for each line"
    MIP_BILINEAR = 5, "mipbilinear", "four texels of each of two mip levels"
    FLAT = 6, "flat", "color[0]"
    GOURAUD = 7, "gouraud", "the colours of the vertices, running"
    MOSAIC = 8, "mosaic", "blocks of one texel each"


class RectOpt(Names):
    "SetRectOptMode. NINEFOLD_RECT_NONE is that of lines, triangles and colours."

    UNIT = 0, "unit", "one texel a pixel"
    STRETCH = 1, "stretch", "stretched between two corners"
    CORNERS = 2, "corners", "a texture position at each of four corners"
    TABLE = 3, "table", "a texture segment for each row, from a line table"
    RUNS = 5, "runs", "one texel a pixel, by the run-length map"
    PLANE_RUNS = 6, "planeruns", "one texel a pixel, by the zero-pixel map and the Shahei plane"
    NONE = 7, "", "no texture, or no rectangle"


class Shahei(Names):
    "SetShaheiMode. Shahei means occlusion: the plane's bits and the priorities say which pixels are taken."

    NONE = 0, "", "every pixel"
    PLANE = 1, "plane", "where plane and stipple are clear; drawn pixels are marked"
    PLANE_PRIORITY = 2, "plane+z", "where plane and stipple are clear; drawn pixels are marked, zRef goes to zBuffer"
    PRIORITY = 3, "z", "where the priority is not below zRef"
    STIPPLE = 4, "mask", "where the stipple is clear"
    PRIORITY_STIPPLE = 5, "z+mask", "where the stipple is clear and the priority is not below zRef"


class Blend(Names):
    "SetBlendMode; its comment has the formulas."

    COPY = 0, "copy", "the source"
    ALPHA = 1, "alpha", "weighed by the source's alpha"
    CONST_ALPHA = 2, "constalpha", "weighed by blendAlpha"
    ALPHA_FAST = 4, "alphafast", "weighed by the source's alpha, exact where it is 0 or 255"
    ADD = 5, "add", "the sum, up to 255"
    SUB = 6, "sub", "the difference, down to 0"
    MUL = 7, "mul", "the product"
    MUL2 = 8, "mul2", "twice the product, up to 255"
    SCREEN = 9, "screen", "the product of the complements, complemented"
    OVERLAY = 10, "overlay", "product or screen, as the destination is dark or light"
    MERGE = 11, "merge", "bits chosen by writeMask"
    CUSTOM = 12, "custom", "blendFunc"


class BlendOperator(Names):
    "What else SetBlendMode takes: blend 12 with an operator of the library in blendFunc."

    LUMA_SRC = 14, "lumasrc", "luma of the source"
    LUMA_DST = 15, "lumadst", "luma of the destination"
    XOR = 16, "xor", "exclusive or"
    AND = 17, "and", "and"
    OR = 18, "or", "or"
    DST = 19, "dst", "the destination"


class Multi(Names):
    "SetMultiMode"

    TEXTURE = 0, "tex1", "tex1 through multiFunc"
    CORNERS = 1, "corners", "the corner colours through multiFunc"
    COLOUR = 2, "colour", "color[0] through multiFunc"
    NONE = 3, "", "the source alone"


class MultiOp(Names):
    "SetBlendModeMulti; its comment says more."

    SECOND = 0, "second", "the second operand"
    ALPHA = 1, "alpha", "weighed by the second operand's alpha"
    CONST_ALPHA = 2, "constalpha", "weighed by blendAlpha"
    CONST_ALPHA_RGB = 3, "constalphargb", "weighed by blendAlphaRgb"
    ALPHA_FAST = 4, "alphafast", "weighed by the second operand's alpha, exact where it is 0 or 255"
    ADD = 5, "add", "the sum, up to 255"
    SUB = 6, "sub", "the difference, down to 0"
    MUL = 7, "mul", "the product"
    MUL2 = 8, "mul2", "twice the product, up to 255"
    SCREEN = 9, "screen", "the product of the complements, complemented"
    OVERLAY = 10, "overlay", "product or screen, as the first operand is dark or light"
    MERGE = 11, "merge", "bits chosen by writeMask"
    LUMA_SECOND = 14, "lumasecond", "luma of the second operand"
    LUMA_FIRST = 15, "lumafirst", "luma of the first operand"
    XOR = 16, "xor", "exclusive or"
    AND = 17, "and", "and"
    OR = 18, "or", "or"
    FIRST = 19, "first", "the first operand"


class MultiBank(Names):
    "SetPrescaleMultiMode"

    PLAIN = 0, "plain", "the second operand as it is"
    SCALED = 1, "scaled", "the second operand scaled by prescaleMulti"


class Stipple(Names):
    "SetPresetDrawMask. Between the first two lies a fade: n draws n + 1 pixels of each 16 by 16 cell."

    NOTHING = 0, "nothing", "no pixel"
    FADE_LAST = 255, "fadelast", "the last step of the fade: every pixel"
    ALL = 256, "all", "every pixel"
    CHESSBOARD = 257, "chessboard", "alternate pixels"
    ODD_COLUMNS = 258, "oddcolumns", "odd columns"
    EVEN_ROWS = 259, "evenrows", "even rows"
    ODD_COLUMNS_EVEN_ROWS = 260, "oddcolumnsofevenrows", "odd columns of even rows"
    ODD_COLUMNS_AND_ROWS = 261, "oddcolumnsandrows", "all odd rows, and odd columns"


class Curve(Names):
    "rs.ruleCurve"

    LINEAR = 0, "linear", "even"
    FAST = 1, "fast", "rises fast"
    SLOW = 2, "slow", "rises slowly"


class Quality(Names):
    "rs.fontQuality"

    MONO = 0, "mono", "black and white"
    GREY4 = 1, "grey4", "4 grey levels"
    GREY16 = 2, "grey16", "16 grey levels"
    GREY64 = 3, "grey64", "64 grey levels"


class Alignment(Names):
    "LoadTextureAdjust, for either direction"

    START = 0, "start", "left or top"
    CENTRE = 1, "centre", "the middle"
    END = 2, "end", "right or bottom"


class TextureFlag(Names):
    "Texture::flags, bits"

    HOST_PIXELS = 1, "hostpixels", "the pixels belong to the host: DeleteTexture leaves them alone"


class PictureExtra(Names):
    "What a loaded picture gets besides its pixels, bits that may be added up."

    EDGE = 1, "edge", "its outermost pixels, repeated all around"
    MIP_CHAIN = 2, "mip", "its mip chain, as by CreateMipmapTexture"
    RUN_MAP = 4, "runs", "its run-length map, as by CreateRunlengthMap"
    ZERO_MAP = 8, "zeros", "its zero-pixel map, as by CreateZeroPixelMap"


class TextAlignment(Names):
    "Where the lines of a text stand in its width."

    START = 0, "start", "left, in paragraphs of right-to-left writing right"
    LEFT = 1, "left", "left"
    CENTRE = 2, "centre", "the middle"
    RIGHT = 3, "right", "right"


class Format(Names):
    "Pixel formats of windows. The alpha of a frame buffer means nothing: where a format has room for alpha it becomes 255, so that also windows that look at it show the picture. Words are in the processor's byte order."

    ARGB8888 = 0, "argb8888", "32-bit words 0xFFRRGGBB, also for XRGB8888 and the bitmaps of Windows"
    ABGR8888 = 1, "abgr8888", "32-bit words 0xFFBBGGRR: bytes red, green, blue, 255"
    RGBA8888 = 2, "rgba8888", "32-bit words 0xRRGGBBFF"
    BGRA8888 = 3, "bgra8888", "32-bit words 0xBBGGRRFF"
    RGB565 = 4, "rgb565", "16-bit words, red in the top 5 bits, green in 6, blue in 5"
    RGB555 = 5, "rgb555", "16-bit words, the top bit clear, then 5 bits each"
    RGB24 = 6, "rgb24", "bytes red, green, blue"
    BGR24 = 7, "bgr24", "bytes blue, green, red"


class Kind(Names):
    "What a field holds."

    SIGNED = 0, "signed", "a signed integer"
    UNSIGNED = 1, "unsigned", "an unsigned integer"
    POINTER = 2, "pointer", "an address of data"
    FUNCTION = 3, "function", "an address of a function"
    RECORD = 4, "record", "another of these records, named by type"


class DebugSeverity(Names):
    "How grave a finding is. Error: what the call does is undefined. Warning: surely not meant. Hint: slow, or perhaps not meant."

    HINT = 0, "hint", "slow, or perhaps not meant"
    WARNING = 1, "warning", "surely not meant"
    ERROR = 2, "error", "what the call does is undefined"


class DebugAction(Names):
    "What becomes of a call with an error in it."

    DRAW = 0, "draw", "made all the same"
    SKIP = 1, "skip", "left out, with 0 for its result"
    ABORT = 2, "abort", "the program is aborted there"


class NfkPoint(ctypes.Structure):
    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
    ]


class NfkRect(ctypes.Structure):
    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
        ("width", c_int32),
        ("height", c_int32),
    ]


class NfkScreen(ctypes.Structure):
    _fields_ = [
        ("width", c_int32),
        ("height", c_int32),
        ("texture", c_void_p),
        ("shaheiPlane", c_void_p),
        ("zBuffer", c_void_p),
    ]


class NfkOptions(ctypes.Structure):
    _fields_ = [
        ("blend", c_int32),
        ("filter", c_int32),
        ("shahei", c_int32),
        ("multi", c_int32),
        ("multiOp", c_int32),
        ("stipple", c_int32),
        ("perspective", c_int32),
        ("ruleCurve", c_int32),
        ("blendAlpha", c_uint32),
        ("blendAlphaRgb", c_uint32),
        ("prescale", c_uint32),
        ("prescaleMulti", c_uint32),
        ("zRef", c_uint32),
        ("writeMask", c_uint32),
        ("color", c_uint32 * 4),
        ("mosaicSize1", c_int32),
        ("mosaicSize", c_int32),
        ("tex1", c_void_p),
        ("source1", NfkRect),
        ("blendFunc", c_void_p),
    ]


class NfkTurn(ctypes.Structure):
    _fields_ = [
        ("x", c_float),
        ("y", c_float),
        ("pivotX", c_float),
        ("pivotY", c_float),
        ("angle", c_float),
        ("scaleX", c_float),
        ("scaleY", c_float),
    ]


class NfkMeshVertex(ctypes.Structure):
    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
        ("z", c_int32),
        ("u", c_int32),
        ("v", c_int32),
        ("color", c_uint32),
    ]


class NfkFontInfo(ctypes.Structure):
    _fields_ = [
        ("family", c_char_p),
        ("style", c_char_p),
        ("file", c_char_p),
        ("face", c_int32),
        ("found", c_int32),
        ("ascent", c_int32),
        ("descent", c_int32),
        ("lineHeight", c_int32),
    ]


class NfkTextStyle(ctypes.Structure):
    _fields_ = [
        ("color", c_uint32),
        ("rimColor", c_uint32),
        ("rim", c_int32),
        ("align", c_int32),
        ("width", c_int32),
        ("lineHeight", c_int32),
    ]


class NfkTextSize(ctypes.Structure):
    _fields_ = [
        ("width", c_int32),
        ("height", c_int32),
        ("lines", c_int32),
        ("glyphs", c_int32),
        ("missing", c_int32),
        ("ink", NfkRect),
    ]


class NfkTextLine(ctypes.Structure):
    _fields_ = [
        ("begin", c_int32),
        ("end", c_int32),
        ("x", c_int32),
        ("width", c_int32),
        ("baseline", c_int32),
        ("rightToLeft", c_int32),
    ]


class NfkTextGlyph(ctypes.Structure):
    _fields_ = [
        ("glyph", c_uint32),
        ("family", c_char_p),
        ("line", c_int32),
        ("byte", c_int32),
        ("x", c_int32),
        ("y", c_int32),
    ]


class NfkField(ctypes.Structure):
    _fields_ = [
        ("name", c_char_p),
        ("type", c_char_p),
        ("kind", c_int32),
        ("offset", c_uint32),
        ("size", c_uint32),
        ("count", c_uint32),
        ("meaning", c_char_p),
    ]


class NinefoldFinding(ctypes.Structure):
    _fields_ = [
        ("severity", c_int),
        ("rule", c_uint),
        ("name", c_char_p),
        ("call", c_char_p),
        ("code", c_ulong),
        ("draw", c_ulonglong),
        ("count", c_ulonglong),
        ("text", c_char_p),
        ("advice", c_char_p),
    ]


# The options of draws: field of NfkOptions, the lists whose names it takes, meaning.
OPTIONS: dict[str, tuple[str, tuple[type[Names], ...], str]] = {
    "blend": ("blend", (Blend, BlendOperator), "NINEFOLD_BLEND_..., 14 to 19 included [NINEFOLD_BLEND_ALPHA_FAST]"),
    "filter": ("filter", (Filter,), "NINEFOLD_FILTER_..., of textures [NINEFOLD_FILTER_POINT]"),
    "shahei": ("shahei", (Shahei,), "NINEFOLD_SHAHEI_... [NINEFOLD_SHAHEI_NONE]"),
    "multi": ("multi", (Multi,), "NINEFOLD_MULTI_... [NINEFOLD_MULTI_NONE]"),
    "multi_op": ("multiOp", (MultiOp,), "NINEFOLD_MULTI_OP_...; -1: multiFunc of rs [NINEFOLD_MULTI_OP_MUL]"),
    "stipple": ("stipple", (Stipple,), "NINEFOLD_STIPPLE_..., 0 to 261; -1: drawMask of rs [-1]"),
    "perspective": ("perspective", (), "of meshes: not 0 for perspective by their z [0]"),
    "rule_curve": ("ruleCurve", (Curve,), "NINEFOLD_CURVE_..., of transitions [NINEFOLD_CURVE_LINEAR]"),
    "blend_alpha": ("blendAlpha", (), "0 to 255, NINEFOLD_BLEND_CONST_ALPHA and that multi operator [255]"),
    "blend_alpha_rgb": ("blendAlphaRgb", (), "0 to 255, NINEFOLD_MULTI_OP_CONST_ALPHA_RGB [255]"),
    "prescale": ("prescale", (), "0 to 256: scales the source's alpha under blends 1, 2 and 4, else its colour; 256: without [256]"),
    "prescale_multi": ("prescaleMulti", (), "0 to 256: scales the second operand of the multi stage; 256: without [256]"),
    "z_ref": ("zRef", (), "priority, 0 to 255 [0]"),
    "write_mask": ("writeMask", (), "NINEFOLD_BLEND_MERGE and NINEFOLD_MULTI_OP_MERGE [0xFFFFFFFF]"),
    "color": ("color", (), "NINEFOLD_MULTI_COLOUR reads [0], NINEFOLD_MULTI_CORNERS all four; meshes bring their own [0xFFFFFFFF]"),
    "mosaic_size1": ("mosaicSize1", (), "NINEFOLD_FILTER_MOSAIC, at least 1 [1, 1]"),
    "mosaic_size": ("mosaicSize", (), "NINEFOLD_FILTER_MOSAIC, at least 1 [1, 1]"),
    "tex1": ("tex1", (), "NINEFOLD_MULTI_TEXTURE [null]"),
    "source1": ("source1", (), "the part of tex1; width 0: the whole picture [0, 0, 0, 0]"),
    "blend_func": ("blendFunc", (), "NINEFOLD_BLEND_CUSTOM [null]"),
}

# Functions of the library: result, parameters.
LIBRARY: dict[str, tuple[Any, list[Any]]] = {
    "CreateTexture": (c_void_p, [c_ulong, c_ulong]),
    "AddRefTexture": (None, [c_void_p]),
    "DeleteTexture": (None, [c_void_p]),
    "ClearTexture": (None, [c_void_p]),
    "CopyTexture": (None, [c_void_p, c_void_p, c_long, c_long, c_long, c_long, c_long, c_long]),
    "SetClearPixel": (None, [c_void_p, c_ulong]),
    "ReplacePixel": (None, [c_void_p, c_ulong, c_ulong]),
    "LoadTexture": (c_void_p, [c_void_p]),
    "LoadTextureAdjust": (c_void_p, [c_void_p, c_ulong, c_ulong, c_void_p, c_void_p, c_void_p, c_void_p]),
    "CreateMipmapTexture": (None, [c_void_p]),
    "DeleteMipmapTexture": (None, [c_void_p]),
    "CreateRunlengthMap": (None, [c_void_p]),
    "CreateZeroPixelMap": (None, [c_void_p]),
    "MakeUVLShiftTable": (None, []),
    "MakeShaheiRunlengthTbl": (None, []),
    "MakeDrawFuncTable": (None, []),
    "MakeDrawMaskTable": (None, []),
    "SetFrameBuffer": (c_void_p, [c_void_p]),
    "SetShapeMode": (None, [c_long]),
    "SetPrescaleMode": (None, [c_long]),
    "SetRuleAlphaMode": (None, [c_long]),
    "SetFilterMode": (None, [c_long]),
    "SetRectOptMode": (None, [c_long]),
    "SetShaheiMode": (None, [c_long]),
    "SetMultiMode": (None, [c_long]),
    "SetPersMode": (None, [c_long]),
    "SetBlendMode": (None, [c_long]),
    "SetBlendModeMulti": (None, [c_long]),
    "SetPrescaleMultiMode": (None, [c_long]),
    "SetPresetDrawMask": (None, [c_long]),
    "GetShaheiTable": (c_void_p, []),
    "CreateDrawCodeSub": (c_ulong, [c_long, c_long, c_long, c_long, c_long, c_long, c_long, c_long, c_long]),
    "CreateDrawCode": (c_ulong, []),
    "SearchDrawFunc": (c_void_p, [c_ulong]),
    "DrawRectTexRunlen_TEST": (None, []),
    "DrawLineTest": (None, []),
    "DrawPolygon_PERS_TEST": (None, []),
    "DrawShaheiPolygonSet": (None, []),
    "DrawShaheiPolygonFlip": (None, []),
    "DrawShaheiPolygonReset": (None, []),
    "DrawZbufferPolygon": (None, []),
    "DrawZbufferPolygon0xff": (None, []),
    "DrawZbufferPolygonFlip": (None, []),
    "DrawZbufferPolygonClear": (None, []),
    "DrawShaheiZbufferPolygonMask": (None, []),
    "DrawShaheiZbufferPolygonUnmask": (None, []),
    "DrawShaheiZbufferPolygonFlip": (None, []),
    "DrawRectTexRule": (None, []),
    "DrawRectGradRule": (None, []),
    "DrawRectGradRule_GEN_RULE_TEST": (None, []),
    "DrawRectGradRule_GEN_RULE_MIPMAP_TEST": (None, []),
    "CreateFontTexture": (c_void_p, [c_void_p]),
    "CreateFontTextureFuchi": (c_void_p, [c_void_p]),
}

# Functions of the kit.
KIT: dict[str, tuple[Any, list[Any]]] = {
    "nfkError": (c_char_p, []),
    "nfkStart": (c_int, []),
    "nfkCreateScreen": (c_void_p, [c_int32, c_int32]),
    "nfkResizeScreen": (c_int, [c_void_p, c_int32, c_int32]),
    "nfkSelectScreen": (c_int, [c_void_p]),
    "nfkClearScreen": (c_int, [c_void_p, c_uint32]),
    "nfkReleaseScreen": (None, [c_void_p]),
    "nfkTextureOver": (c_void_p, [c_void_p, c_int32, c_int32]),
    "nfkOptions": (NfkOptions, []),
    "nfkSetCaller": (c_void_p, [c_void_p]),
    "nfkSprite": (c_int, [c_void_p, c_int32, c_int32, c_void_p, c_void_p]),
    "nfkPicture": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "nfkTurned": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "nfkSprites": (c_int, [c_void_p, c_uint32, c_void_p, c_void_p, c_void_p, c_void_p]),
    "nfkPictures": (c_int, [c_void_p, c_uint32, c_void_p, c_void_p, c_void_p, c_void_p]),
    "nfkTransition": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_float, c_int32, c_void_p]),
    "nfkLine": (c_int, [c_int32, c_int32, c_int32, c_int32, c_uint32, c_void_p]),
    "nfkLines": (c_int, [c_uint32, c_void_p, c_void_p, c_void_p]),
    "nfkFill": (c_int, [c_void_p, c_uint32, c_void_p]),
    "nfkFills": (c_int, [c_uint32, c_void_p, c_void_p, c_void_p]),
    "nfkGradient": (c_int, [c_void_p, c_void_p, c_void_p]),
    "nfkMesh": (c_int, [c_void_p, c_uint32, c_void_p, c_uint32, c_void_p, c_void_p]),
    "nfkLoadPicture": (c_void_p, [c_char_p, c_uint32]),
    "nfkLoadPictureMemory": (c_void_p, [c_void_p, c_size_t, c_char_p, c_uint32]),
    "nfkSavePicture": (c_int, [c_void_p, c_char_p, c_int]),
    "nfkOpenFont": (c_void_p, [c_char_p, c_int32]),
    "nfkOpenFontFile": (c_void_p, [c_char_p, c_int32, c_int32]),
    "nfkCloseFont": (None, [c_void_p]),
    "nfkGetFontInfo": (c_int, [c_void_p, c_void_p]),
    "nfkGetFontAtlas": (c_void_p, [c_void_p]),
    "nfkMakeText": (c_void_p, [c_void_p, c_char_p, c_void_p]),
    "nfkDeleteText": (None, [c_void_p]),
    "nfkMeasureText": (c_int, [c_void_p, c_void_p]),
    "nfkGetTextLine": (c_int, [c_void_p, c_int32, c_void_p]),
    "nfkGetTextGlyph": (c_int, [c_void_p, c_int32, c_void_p]),
    "nfkGetTextCaret": (c_int, [c_void_p, c_int32, c_void_p]),
    "nfkDrawText": (c_int, [c_void_p, c_int32, c_int32, c_int32, c_int32]),
    "nfkWrite": (c_int, [c_void_p, c_char_p, c_int32, c_int32, c_void_p]),
    "nfkCreateFontTexture": (c_char_p, [c_char_p]),
    "nfkCreateFontTextureFuchi": (c_char_p, [c_char_p]),
    "nfkEncodePage932": (c_int, [c_char_p, c_void_p, c_uint32]),
    "nfkFormatBytes": (c_int32, [c_int32]),
    "nfkShow": (c_int, [c_void_p, c_void_p, c_int32, c_int32, c_int32, c_int32]),
    "nfkCopyOut": (c_int, [c_void_p, c_void_p, c_void_p, c_int32, c_int32]),
    "nfkCodeExists": (c_int, [c_uint32]),
    "nfkDrawnCode": (c_uint32, [c_uint32]),
    "nfkCodeName": (c_uint32, [c_uint32, c_void_p, c_uint32]),
    "nfkCodeOfName": (c_uint32, [c_char_p]),
    "nfkNearestCodes": (c_uint32, [c_uint32, c_void_p, c_uint32]),
    "nfkExplainCode": (c_uint32, [c_uint32, c_void_p, c_uint32]),
    "nfkState": (c_void_p, []),
    "nfkFields": (c_void_p, [c_char_p, c_void_p]),
    "nfkRecordSize": (c_uint32, [c_char_p]),
}

# Calls of the debug twin, in the order of the record.
TWIN: dict[str, tuple[Any, list[Any]]] = {
    "setCallback": (None, [c_void_p, c_void_p]),
    "setSeverity": (None, [c_int]),
    "setAction": (None, [c_int]),
    "labelTexture": (None, [c_void_p, c_char_p]),
    "labelMemory": (None, [c_void_p, c_size_t, c_char_p]),
    "forgetMemory": (None, [c_void_p]),
    "frame": (None, []),
    "findings": (c_ulonglong, [c_int]),
    "printRules": (None, [c_void_p, c_int]),
}

# Calls of the bands, in the order of the record.
BANDS: dict[str, tuple[Any, list[Any]]] = {
    "start": (c_int, [c_int]),
    "flush": (None, []),
    "stop": (None, []),
    "declarePure": (None, [c_void_p]),
    "count": (c_ulonglong, [c_int]),
    "recordAll": (None, [c_int]),
}
