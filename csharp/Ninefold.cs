// Written by scripts/bindings from the headers of the library and of the kit.
using System;
using System.Runtime.InteropServices;

namespace Ninefold
{
    /// <summary>SetShapeMode</summary>
    public enum Shape
    {
        /// <summary>a line of single pixels</summary>
        Line = 0,
        /// <summary>a rectangle between two corners</summary>
        Rectangle = 1,
        /// <summary>a triangle</summary>
        Triangle = 2,
    }

    /// <summary>SetPersMode</summary>
    public enum Perspective
    {
        /// <summary>texture positions linear on the screen</summary>
        Off = 0,
        /// <summary>perspective, by vertex[].z (triangles)</summary>
        On = 1,
    }

    /// <summary>SetRuleAlphaMode</summary>
    public enum Rule
    {
        /// <summary>drawn whole</summary>
        Off = 0,
        /// <summary>wiped in by tex2 (rectangles, triangles)</summary>
        On = 1,
    }

    /// <summary>SetPrescaleMode</summary>
    public enum Prescale
    {
        /// <summary>the source as it is</summary>
        Off = 0,
        /// <summary>the source scaled by rs.prescale: its alpha under blends 1, 2, 4, else its colour</summary>
        On = 1,
    }

    /// <summary>SetFilterMode</summary>
    public enum Filter
    {
        /// <summary>the nearest texel</summary>
        Point = 0,
        /// <summary>four texels mixed</summary>
        Bilinear = 1,
        /// <summary>the nearest texels of two mip levels</summary>
        Mip = 2,
        /// <summary>the nearest texel of a mip level for each line</summary>
        LinePoint = 3,
        /// <summary>four texels of a mip level for each line</summary>
        LineBilinear = 4,
        /// <summary>four texels of each of two mip levels</summary>
        MipBilinear = 5,
        /// <summary>color[0]</summary>
        Flat = 6,
        /// <summary>the colours of the vertices, running</summary>
        Gouraud = 7,
        /// <summary>blocks of one texel each</summary>
        Mosaic = 8,
    }

    /// <summary>SetRectOptMode. NINEFOLD_RECT_NONE is that of lines, triangles and colours.</summary>
    public enum RectOpt
    {
        /// <summary>one texel a pixel</summary>
        Unit = 0,
        /// <summary>stretched between two corners</summary>
        Stretch = 1,
        /// <summary>a texture position at each of four corners</summary>
        Corners = 2,
        /// <summary>a texture segment for each row, from a line table</summary>
        Table = 3,
        /// <summary>one texel a pixel, by the run-length map</summary>
        Runs = 5,
        /// <summary>one texel a pixel, by the zero-pixel map and the Shahei plane</summary>
        PlaneRuns = 6,
        /// <summary>no texture, or no rectangle</summary>
        None = 7,
    }

    /// <summary>SetShaheiMode. Shahei means occlusion: the plane's bits and the priorities say which pixels are taken.</summary>
    public enum Shahei
    {
        /// <summary>every pixel</summary>
        None = 0,
        /// <summary>where plane and stipple are clear; drawn pixels are marked</summary>
        Plane = 1,
        /// <summary>where plane and stipple are clear; drawn pixels are marked, zRef goes to zBuffer</summary>
        PlanePriority = 2,
        /// <summary>where the priority is not below zRef</summary>
        Priority = 3,
        /// <summary>where the stipple is clear</summary>
        Stipple = 4,
        /// <summary>where the stipple is clear and the priority is not below zRef</summary>
        PriorityStipple = 5,
    }

    /// <summary>SetBlendMode; its comment has the formulas.</summary>
    public enum Blend
    {
        /// <summary>the source</summary>
        Copy = 0,
        /// <summary>weighed by the source's alpha</summary>
        Alpha = 1,
        /// <summary>weighed by blendAlpha</summary>
        ConstAlpha = 2,
        /// <summary>weighed by the source's alpha, exact where it is 0 or 255</summary>
        AlphaFast = 4,
        /// <summary>the sum, up to 255</summary>
        Add = 5,
        /// <summary>the difference, down to 0</summary>
        Sub = 6,
        /// <summary>the product</summary>
        Mul = 7,
        /// <summary>twice the product, up to 255</summary>
        Mul2 = 8,
        /// <summary>the product of the complements, complemented</summary>
        Screen = 9,
        /// <summary>product or screen, as the destination is dark or light</summary>
        Overlay = 10,
        /// <summary>bits chosen by writeMask</summary>
        Merge = 11,
        /// <summary>blendFunc</summary>
        Custom = 12,
    }

    /// <summary>What else SetBlendMode takes: blend 12 with an operator of the library in blendFunc.</summary>
    public enum BlendOperator
    {
        /// <summary>luma of the source</summary>
        LumaSrc = 14,
        /// <summary>luma of the destination</summary>
        LumaDst = 15,
        /// <summary>exclusive or</summary>
        Xor = 16,
        /// <summary>and</summary>
        And = 17,
        /// <summary>or</summary>
        Or = 18,
        /// <summary>the destination</summary>
        Dst = 19,
    }

    /// <summary>SetMultiMode</summary>
    public enum Multi
    {
        /// <summary>tex1 through multiFunc</summary>
        Texture = 0,
        /// <summary>the corner colours through multiFunc</summary>
        Corners = 1,
        /// <summary>color[0] through multiFunc</summary>
        Colour = 2,
        /// <summary>the source alone</summary>
        None = 3,
    }

    /// <summary>SetBlendModeMulti; its comment says more.</summary>
    public enum MultiOp
    {
        /// <summary>the second operand</summary>
        Second = 0,
        /// <summary>weighed by the second operand's alpha</summary>
        Alpha = 1,
        /// <summary>weighed by blendAlpha</summary>
        ConstAlpha = 2,
        /// <summary>weighed by blendAlphaRgb</summary>
        ConstAlphaRgb = 3,
        /// <summary>weighed by the second operand's alpha, exact where it is 0 or 255</summary>
        AlphaFast = 4,
        /// <summary>the sum, up to 255</summary>
        Add = 5,
        /// <summary>the difference, down to 0</summary>
        Sub = 6,
        /// <summary>the product</summary>
        Mul = 7,
        /// <summary>twice the product, up to 255</summary>
        Mul2 = 8,
        /// <summary>the product of the complements, complemented</summary>
        Screen = 9,
        /// <summary>product or screen, as the first operand is dark or light</summary>
        Overlay = 10,
        /// <summary>bits chosen by writeMask</summary>
        Merge = 11,
        /// <summary>luma of the second operand</summary>
        LumaSecond = 14,
        /// <summary>luma of the first operand</summary>
        LumaFirst = 15,
        /// <summary>exclusive or</summary>
        Xor = 16,
        /// <summary>and</summary>
        And = 17,
        /// <summary>or</summary>
        Or = 18,
        /// <summary>the first operand</summary>
        First = 19,
    }

    /// <summary>SetPrescaleMultiMode</summary>
    public enum MultiBank
    {
        /// <summary>the second operand as it is</summary>
        Plain = 0,
        /// <summary>the second operand scaled by prescaleMulti</summary>
        Scaled = 1,
    }

    /// <summary>SetPresetDrawMask. Between the first two lies a fade: n draws n + 1 pixels of each 16 by 16 cell.</summary>
    public enum Stipple
    {
        /// <summary>no pixel</summary>
        Nothing = 0,
        /// <summary>the last step of the fade: every pixel</summary>
        FadeLast = 255,
        /// <summary>every pixel</summary>
        All = 256,
        /// <summary>alternate pixels</summary>
        Chessboard = 257,
        /// <summary>odd columns</summary>
        OddColumns = 258,
        /// <summary>even rows</summary>
        EvenRows = 259,
        /// <summary>odd columns of even rows</summary>
        OddColumnsEvenRows = 260,
        /// <summary>all odd rows, and odd columns</summary>
        OddColumnsAndRows = 261,
    }

    /// <summary>rs.ruleCurve</summary>
    public enum Curve
    {
        /// <summary>even</summary>
        Linear = 0,
        /// <summary>rises fast</summary>
        Fast = 1,
        /// <summary>rises slowly</summary>
        Slow = 2,
    }

    /// <summary>rs.fontQuality</summary>
    public enum Quality
    {
        /// <summary>black and white</summary>
        Mono = 0,
        /// <summary>4 grey levels</summary>
        Grey4 = 1,
        /// <summary>16 grey levels</summary>
        Grey16 = 2,
        /// <summary>64 grey levels</summary>
        Grey64 = 3,
    }

    /// <summary>LoadTextureAdjust, for either direction</summary>
    public enum Alignment
    {
        /// <summary>left or top</summary>
        Start = 0,
        /// <summary>the middle</summary>
        Centre = 1,
        /// <summary>right or bottom</summary>
        End = 2,
    }

    /// <summary>Texture::flags, bits</summary>
    public enum TextureFlag
    {
        /// <summary>the pixels belong to the host: DeleteTexture leaves them alone</summary>
        HostPixels = 1,
    }

    /// <summary>What a loaded picture gets besides its pixels, bits that may be added up.</summary>
    public enum PictureExtra
    {
        /// <summary>its outermost pixels, repeated all around</summary>
        Edge = 1,
        /// <summary>its mip chain, as by CreateMipmapTexture</summary>
        MipChain = 2,
        /// <summary>its run-length map, as by CreateRunlengthMap</summary>
        RunMap = 4,
        /// <summary>its zero-pixel map, as by CreateZeroPixelMap</summary>
        ZeroMap = 8,
    }

    /// <summary>Where the lines of a text stand in its width.</summary>
    public enum TextAlignment
    {
        /// <summary>left, in paragraphs of right-to-left writing right</summary>
        Start = 0,
        /// <summary>left</summary>
        Left = 1,
        /// <summary>the middle</summary>
        Centre = 2,
        /// <summary>right</summary>
        Right = 3,
    }

    /// <summary>Pixel formats of windows. The alpha of a frame buffer means nothing: where a format has room for alpha it becomes 255, so that also windows that look at it show the picture. Words are in the processor's byte order.</summary>
    public enum Format
    {
        /// <summary>32-bit words 0xFFRRGGBB, also for XRGB8888 and the bitmaps of Windows</summary>
        Argb8888 = 0,
        /// <summary>32-bit words 0xFFBBGGRR: bytes red, green, blue, 255</summary>
        Abgr8888 = 1,
        /// <summary>32-bit words 0xRRGGBBFF</summary>
        Rgba8888 = 2,
        /// <summary>32-bit words 0xBBGGRRFF</summary>
        Bgra8888 = 3,
        /// <summary>16-bit words, red in the top 5 bits, green in 6, blue in 5</summary>
        Rgb565 = 4,
        /// <summary>16-bit words, the top bit clear, then 5 bits each</summary>
        Rgb555 = 5,
        /// <summary>bytes red, green, blue</summary>
        Rgb24 = 6,
        /// <summary>bytes blue, green, red</summary>
        Bgr24 = 7,
    }

    /// <summary>What a field holds.</summary>
    public enum Kind
    {
        /// <summary>a signed integer</summary>
        Signed = 0,
        /// <summary>an unsigned integer</summary>
        Unsigned = 1,
        /// <summary>an address of data</summary>
        Pointer = 2,
        /// <summary>an address of a function</summary>
        Function = 3,
        /// <summary>another of these records, named by type</summary>
        Record = 4,
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct Texture
    {
        private IntPtr virtualTable;
        /// <summary>width * height words, row after row, 16-byte aligned</summary>
        public uint* pixels;
        /// <summary>pixels, a power of two, at least 1</summary>
        public uint width;
        /// <summary>rows, a power of two, at least 1</summary>
        public uint height;
        /// <summary>width == 1 &lt;&lt; log2Width</summary>
        public uint log2Width;
        /// <summary>height == 1 &lt;&lt; log2Height</summary>
        public uint log2Height;
        /// <summary>mip chain; mip[0] is the texture itself once a chain exists</summary>
        public Texture* mip0, mip1, mip2, mip3, mip4, mip5, mip6, mip7, mip8, mip9, mip10, mip11, mip12, mip13, mip14, mip15;
        /// <summary>entries of mip in use; 0: no chain</summary>
        public uint mipCount;
        /// <summary>see CreateRunlengthMap; null: none</summary>
        public sbyte* runlengthMap;
        /// <summary>see CreateZeroPixelMap; null: none</summary>
        public ushort* zeroPixelMap;
        /// <summary>NINEFOLD_TEXTURE_...; see DeleteTexture</summary>
        public uint flags;
        /// <summary>see DeleteTexture; 0 after creation</summary>
        public int refCount;
        /// <summary>width as asked for, before rounding; for the host only</summary>
        public uint origWidth;
        /// <summary>height as asked for; the same</summary>
        public uint origHeight;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct Vertex
    {
        /// <summary>Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.</summary>
        public int x;
        /// <summary>Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.</summary>
        public int y;
        /// <summary>Whole pixels relative to the origin. With the origin added, x and y must be below 2^30 in size: their differences are taken in 32 bits, and where those wrap a line may divide by 0 and a triangle leave the clip rectangle. z is the depth of a perspective triangle: above 0, larger is farther. Only the ratios of the three depths count; a coordinate divided by its depth keeps about 30 bits less those of the depth, so depths of some hundreds (below a few thousand) give smooth pictures.</summary>
        public int z;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct TexCoord
    {
        /// <summary>A texel position in signed 16.16 fixed point. It wraps around the texture in both directions; under perspective it must not be negative, and comes out the finer the smaller the three coordinates are (best below 256 texels).</summary>
        public int u;
        /// <summary>A texel position in signed 16.16 fixed point. It wraps around the texture in both directions; under perspective it must not be negative, and comes out the finer the smaller the three coordinates are (best below 256 texels).</summary>
        public int v;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct LineTableRecord
    {
        /// <summary>One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).</summary>
        public int startU;
        /// <summary>One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).</summary>
        public int startV;
        /// <summary>One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).</summary>
        public int endU;
        /// <summary>One row of a line table (NINEFOLD_RECT_TABLE): the source segment of the row in 16.16 texels, end exclusive. startU equal to NINEFOLD_SKIP_ROW leaves the row out (in lineTable0; lineTable1 has no say).</summary>
        public int endV;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct RenderState
    {
        /// <summary>its first pixel</summary>
        public uint* dstPixels;
        /// <summary>its log2Width: row y starts at y &lt;&lt; dstShift</summary>
        public uint dstShift;
        /// <summary>its width, pixels; rows of the planes have dstPitch &gt;&gt; 4 words, dstPitch bytes</summary>
        public uint dstPitch;
        /// <summary>its rows; no kernel reads it</summary>
        public uint dstHeight;
        /// <summary>neither read nor written</summary>
        public fixed uint reserved[4];
        /// <summary>added to every vertex, pixels</summary>
        public int originX;
        /// <summary>added to every vertex, pixels</summary>
        public int originY;
        /// <summary>clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.</summary>
        public int clipLeft;
        /// <summary>clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.</summary>
        public int clipTop;
        /// <summary>clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.</summary>
        public int clipRight;
        /// <summary>clip rectangle in frame-buffer pixels, left and top inclusive, right and bottom exclusive. It must lie inside the frame buffer (SetFrameBuffer leaves it alone) and must not be inside out.</summary>
        public int clipBottom;
        /// <summary>set by SetFrameBuffer</summary>
        public Texture* frameBuffer;
        /// <summary>one bit a pixel, bit 15 of a word leftmost; set: taken, not to be drawn</summary>
        public ushort* shaheiPlane;
        /// <summary>one priority byte a pixel; drawn where it is not below zRef</summary>
        public byte* zBuffer;
        /// <summary>the primitive's priority; kernels use its low byte</summary>
        public uint zRef;
        /// <summary>ARGB: [0] the flat colour and that of NINEFOLD_MULTI_COLOUR; all four the corner colours of NINEFOLD_FILTER_GOURAUD and NINEFOLD_MULTI_CORNERS</summary>
        public fixed uint color[4];
        /// <summary>A rectangle has opposite corners in [0], [1], a line its ends there, a triangle uses [0..2]; [3] is never read. Texture positions belong to their vertices: corners that are exchanged alone mirror a stretched or four-corner picture, together with their positions they leave it as it is.</summary>
        public Vertex vertex0, vertex1, vertex2, vertex3;
        /// <summary>Coordinates of tex0. Rectangles: unit scale reads [0] (whole texels only, except under the bilinear filter); stretched [0], [1]; four corners top left, top right, bottom left, bottom right. Triangles [0..2].</summary>
        public TexCoord uv00, uv01, uv02, uv03;
        /// <summary>main source; the atlas of the glyph functions</summary>
        public Texture* tex0;
        /// <summary>coordinates of tex1, in the same way</summary>
        public TexCoord uv10, uv11, uv12, uv13;
        /// <summary>Second source of NINEFOLD_MULTI_TEXTURE; its zeros leave the first as it is. NINEFOLD_FILTER_MIP and NINEFOLD_FILTER_MIP_BILINEAR (stretched and four-corner rectangles, triangles) choose its level whenever it is not null, also where the multi stage does not draw it. There one without a chain (mipCount 0) is as good as null, but one that was deleted is still read: set tex1 to null before its texture goes.</summary>
        public Texture* tex1;
        /// <summary>Coordinates of tex2, linear on the screen also under perspective. Rectangles read [0..1], triangles [0..2].</summary>
        public TexCoord uv20, uv21, uv22, uv23;
        /// <summary>rule texture: the low byte of a texel is the rule value</summary>
        public Texture* tex2;
        /// <summary>a record for each row of the unclipped rectangle from its top, for tex0</summary>
        public LineTableRecord* lineTable0;
        /// <summary>the same for tex1</summary>
        public LineTableRecord* lineTable1;
        /// <summary>0 to 255: constant alpha, blend and multi operator</summary>
        public uint blendAlpha;
        /// <summary>0 to 255: NINEFOLD_MULTI_OP_CONST_ALPHA_RGB</summary>
        public uint blendAlphaRgb;
        /// <summary>0 to 256, where 256 is one: the prescale axis</summary>
        public uint prescale;
        /// <summary>0 to 256: second bank of multi operators</summary>
        public uint prescaleMulti;
        /// <summary>by frame-buffer row (inside the clip): displacement of a triangle's span, pixels; null: none</summary>
        public int* scanShift;
        /// <summary>merge, blend and multi operator: set bits come from the source</summary>
        public uint writeMask;
        /// <summary>Operators; null until set, and called without a test by NINEFOLD_BLEND_CUSTOM and all multi modes but NINEFOLD_MULTI_NONE. blendFunc is set by SetBlendMode(NINEFOLD_BLEND_LUMA_SRC...) or by the host for NINEFOLD_BLEND_CUSTOM, multiFunc by SetBlendModeMulti or by the host. A new pointer takes effect at the next call of any kernel. A host's own operator is called once for each pixel that reaches its stage, left to right; where both are the host's own the calls alternate pixel by pixel. It may look at the frame buffer, zBuffer and rs, and finds the frame buffer as the pixels before left it: all stages of one pixel come before the next. The words of the Shahei plane of the row in flight are the library's own. It must change nothing that the draw works from: no texture, table or plane, not the frame buffer, and of rs nothing but the mode fields, font... and glyph..., which no kernel reads. It must not draw.</summary>
        public IntPtr blendFunc;
        /// <summary>Operators; null until set, and called without a test by NINEFOLD_BLEND_CUSTOM and all multi modes but NINEFOLD_MULTI_NONE. blendFunc is set by SetBlendMode(NINEFOLD_BLEND_LUMA_SRC...) or by the host for NINEFOLD_BLEND_CUSTOM, multiFunc by SetBlendModeMulti or by the host. A new pointer takes effect at the next call of any kernel. A host's own operator is called once for each pixel that reaches its stage, left to right; where both are the host's own the calls alternate pixel by pixel. It may look at the frame buffer, zBuffer and rs, and finds the frame buffer as the pixels before left it: all stages of one pixel come before the next. The words of the Shahei plane of the row in flight are the library's own. It must change nothing that the draw works from: no texture, table or plane, not the frame buffer, and of rs nothing but the mode fields, font... and glyph..., which no kernel reads. It must not draw.</summary>
        public IntPtr multiFunc;
        /// <summary>stipple: row y &amp; 15, bit 15 - (x &amp; 15) of the absolute position; set: not drawn</summary>
        public fixed ushort drawMask[16];
        /// <summary>The rule test of rule value m, 0 to 255: nothing is drawn where m &lt;= ruleThreshold, everything where m &gt;= ruleThreshold + ruleWidth. Between them old and new pixel are mixed by w = ((m - ruleThreshold) &lt;&lt; 8) / ruleWidth, which NINEFOLD_CURVE_FAST makes 255 - ((255 - w) * (255 - w) &gt;&gt; 8) and NINEFOLD_CURVE_SLOW w * w &gt;&gt; 8: (new * w + old * (255 - w)) &gt;&gt; 8, alpha 0. A threshold that goes from 255 down to -ruleWidth wipes a picture in.</summary>
        public int ruleThreshold;
        /// <summary>0 or less: a hard edge</summary>
        public int ruleWidth;
        /// <summary>NINEFOLD_CURVE_...; any other value is linear</summary>
        public int ruleCurve;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int prescaleMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int prescaleMultiMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int filterMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int rectOptMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int shaheiMode;
        /// <summary>as derived by SetBlendMode</summary>
        public int blendMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int blendModeMulti;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int multiMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int shapeMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int ruleAlphaMode;
        /// <summary>axes, each stored as given by the setter of its name</summary>
        public int persMode;
        /// <summary>weight of the chosen level of tex0 against mipTex; under a line table only the plane modes write it</summary>
        public int mipFrac;
        /// <summary>the same for tex1</summary>
        public int mipFrac1;
        /// <summary>the next smaller level after the chosen one of tex0</summary>
        public Texture* mipTex;
        /// <summary>the same for tex1</summary>
        public Texture* mipTex1;
        /// <summary>texel density of the last driven triangle, 16.16</summary>
        public int mipRatio;
        /// <summary>face name, code page 932; with its NUL at most 32 bytes; null or empty: any face</summary>
        public IntPtr fontName;
        /// <summary>cell height in pixels; negative: em height; 0: a height of the rasteriser's choice</summary>
        public int fontHeight;
        /// <summary>400 normal, 700 bold</summary>
        public int fontWeight;
        /// <summary>NINEFOLD_QUALITY_...; other values garble glyphs</summary>
        public int fontQuality;
        /// <summary>low byte</summary>
        public uint fontItalic;
        /// <summary>where the next glyph goes in the atlas, pixels; the host zeroes them for a new atlas</summary>
        public uint fontCursorX;
        /// <summary>where the next glyph goes in the atlas, pixels; the host zeroes them for a new atlas</summary>
        public uint fontCursorY;
        /// <summary>lowest edge so far of the atlas row; likewise</summary>
        public uint fontLineBottom;
        /// <summary>of the last glyph: its character code,</summary>
        public uint glyphCode;
        /// <summary>size of its bitmap, pixels,</summary>
        public int glyphWidth;
        /// <summary>size of its bitmap, pixels,</summary>
        public int glyphHeight;
        /// <summary>place in the atlas,</summary>
        public int glyphX;
        /// <summary>place in the atlas,</summary>
        public int glyphY;
        /// <summary>offset of the bitmap from the pen on the base line, y up,</summary>
        public int glyphOriginX;
        /// <summary>offset of the bitmap from the pen on the base line, y up,</summary>
        public int glyphOriginY;
        /// <summary>pen advance</summary>
        public int glyphAdvance;
        /// <summary>block width at unit scale; elsewhere the columns of tex1</summary>
        public int mosaicSize1;
        /// <summary>block height at unit scale; elsewhere both axes of tex0 and the rows of tex1</summary>
        public int mosaicSize;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkPoint
    {
        public int x;
        public int y;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkRect
    {
        public int x;
        public int y;
        public int width;
        public int height;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkScreen
    {
        /// <summary>the visible part, pixels: columns and rows from the top left of the texture</summary>
        public int width;
        /// <summary>the visible part, pixels: columns and rows from the top left of the texture</summary>
        public int height;
        /// <summary>frame buffer: sizes padded to powers of two, at least 16 wide; owned by the screen</summary>
        public Texture* texture;
        /// <summary>a bit for each pixel of `texture`</summary>
        public ushort* shaheiPlane;
        /// <summary>a byte for each pixel of `texture`</summary>
        public byte* zBuffer;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkOptions
    {
        /// <summary>NINEFOLD_BLEND_..., 14 to 19 included [NINEFOLD_BLEND_ALPHA_FAST]</summary>
        public int blend;
        /// <summary>NINEFOLD_FILTER_..., of textures [NINEFOLD_FILTER_POINT]</summary>
        public int filter;
        /// <summary>NINEFOLD_SHAHEI_... [NINEFOLD_SHAHEI_NONE]</summary>
        public int shahei;
        /// <summary>NINEFOLD_MULTI_... [NINEFOLD_MULTI_NONE]</summary>
        public int multi;
        /// <summary>NINEFOLD_MULTI_OP_...; -1: multiFunc of rs [NINEFOLD_MULTI_OP_MUL]</summary>
        public int multiOp;
        /// <summary>NINEFOLD_STIPPLE_..., 0 to 261; -1: drawMask of rs [-1]</summary>
        public int stipple;
        /// <summary>of meshes: not 0 for perspective by their z [0]</summary>
        public int perspective;
        /// <summary>NINEFOLD_CURVE_..., of transitions [NINEFOLD_CURVE_LINEAR]</summary>
        public int ruleCurve;
        /// <summary>0 to 255, NINEFOLD_BLEND_CONST_ALPHA and that multi operator [255]</summary>
        public uint blendAlpha;
        /// <summary>0 to 255, NINEFOLD_MULTI_OP_CONST_ALPHA_RGB [255]</summary>
        public uint blendAlphaRgb;
        /// <summary>0 to 256: scales the source's alpha under blends 1, 2 and 4, else its colour; 256: without [256]</summary>
        public uint prescale;
        /// <summary>0 to 256: scales the second operand of the multi stage; 256: without [256]</summary>
        public uint prescaleMulti;
        /// <summary>priority, 0 to 255 [0]</summary>
        public uint zRef;
        /// <summary>NINEFOLD_BLEND_MERGE and NINEFOLD_MULTI_OP_MERGE [0xFFFFFFFF]</summary>
        public uint writeMask;
        /// <summary>NINEFOLD_MULTI_COLOUR reads [0], NINEFOLD_MULTI_CORNERS all four; meshes bring their own [0xFFFFFFFF]</summary>
        public fixed uint color[4];
        /// <summary>NINEFOLD_FILTER_MOSAIC, at least 1 [1, 1]</summary>
        public int mosaicSize1;
        /// <summary>NINEFOLD_FILTER_MOSAIC, at least 1 [1, 1]</summary>
        public int mosaicSize;
        /// <summary>NINEFOLD_MULTI_TEXTURE [null]</summary>
        public Texture* tex1;
        /// <summary>the part of tex1; width 0: the whole picture [0, 0, 0, 0]</summary>
        public NfkRect source1;
        /// <summary>NINEFOLD_BLEND_CUSTOM [null]</summary>
        public IntPtr blendFunc;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkTurn
    {
        /// <summary>pixels</summary>
        public float x;
        /// <summary>pixels</summary>
        public float y;
        /// <summary>texels from the top left of the source</summary>
        public float pivotX;
        /// <summary>texels from the top left of the source</summary>
        public float pivotY;
        /// <summary>degrees, clockwise</summary>
        public float angle;
        /// <summary>1: a pixel for each texel; negative ones mirror</summary>
        public float scaleX;
        /// <summary>1: a pixel for each texel; negative ones mirror</summary>
        public float scaleY;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkMeshVertex
    {
        /// <summary>pixels</summary>
        public int x;
        /// <summary>pixels</summary>
        public int y;
        /// <summary>depth under perspective, at least 1; else not looked at</summary>
        public int z;
        /// <summary>texel position, 16.16</summary>
        public int u;
        /// <summary>texel position, 16.16</summary>
        public int v;
        /// <summary>without a texture, and NINEFOLD_MULTI_CORNERS</summary>
        public uint color;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkFontInfo
    {
        /// <summary>of the face that was really found, UTF-8; they live as long as the font</summary>
        public IntPtr family;
        /// <summary>of the face that was really found, UTF-8; they live as long as the font</summary>
        public IntPtr style;
        /// <summary>of the face that was really found, UTF-8; they live as long as the font</summary>
        public IntPtr file;
        /// <summary>its number in the file</summary>
        public int face;
        /// <summary>1: it has the family name that was asked for; 0: it stands in for it</summary>
        public int found;
        /// <summary>above and below the base line, pixels, both positive</summary>
        public int ascent;
        /// <summary>above and below the base line, pixels, both positive</summary>
        public int descent;
        /// <summary>from base line to base line, pixels</summary>
        public int lineHeight;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkTextStyle
    {
        /// <summary>0xAARRGGBB of the glyphs; alpha 255 is opaque, 0 leaves them out</summary>
        public uint color;
        /// <summary>the same of the rim, which lies under all glyphs</summary>
        public uint rimColor;
        /// <summary>how far the rim reaches out from the glyphs, pixels; 0: no rim</summary>
        public int rim;
        /// <summary>NFK_ALIGN_...</summary>
        public int align;
        /// <summary>lines are wrapped to fit it, pixels; 0: they end only where the text says so</summary>
        public int width;
        /// <summary>from base line to base line, pixels; 0: that of the font</summary>
        public int lineHeight;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkTextSize
    {
        /// <summary>of the widest line, by the advances of its glyphs; spaces at which a line was wrapped do not count</summary>
        public int width;
        /// <summary>all line heights together</summary>
        public int height;
        /// <summary>how many</summary>
        public int lines;
        /// <summary>how many</summary>
        public int glyphs;
        /// <summary>characters that no font of the system has: drawn as an empty box</summary>
        public int missing;
        /// <summary>what drawing the whole text can change: the box of all pixels of glyphs and rim. Empty: width and height 0</summary>
        public NfkRect ink;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkTextLine
    {
        /// <summary>its bytes in the text; the spaces or the line end that follow are outside</summary>
        public int begin;
        /// <summary>its bytes in the text; the spaces or the line end that follow are outside</summary>
        public int end;
        /// <summary>of its left edge, and of its advances rounded up, pixels</summary>
        public int x;
        /// <summary>of its left edge, and of its advances rounded up, pixels</summary>
        public int width;
        /// <summary>pixels below the text's top</summary>
        public int baseline;
        /// <summary>1: its paragraph runs from right to left</summary>
        public int rightToLeft;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkTextGlyph
    {
        /// <summary>number in its face; 0: the box of a missing character</summary>
        public uint glyph;
        /// <summary>of its face; lives as long as the text</summary>
        public IntPtr family;
        /// <summary>number of its line, from 0</summary>
        public int line;
        /// <summary>of the first character it stands for</summary>
        public int @byte;
        /// <summary>where its origin is, 1/64 pixel from the text's top left, y down</summary>
        public int x;
        /// <summary>where its origin is, 1/64 pixel from the text's top left, y down</summary>
        public int y;
    }

    [StructLayout(LayoutKind.Sequential)]
    public unsafe struct NfkField
    {
        public IntPtr name;
        /// <summary>of one element, as C writes it</summary>
        public IntPtr type;
        /// <summary>NFK_KIND_...</summary>
        public int kind;
        /// <summary>bytes from the record's start</summary>
        public uint offset;
        /// <summary>bytes of one element</summary>
        public uint size;
        /// <summary>elements: 1, or those of an array</summary>
        public uint count;
        /// <summary>the header's comment: units, range, who sets it</summary>
        public IntPtr meaning;
    }

    /// <summary>Every function. A long of C is an IntPtr, an unsigned long a UIntPtr, of which 32 bits count on Windows;
    /// strings are UTF-8. What the headers say holds here.</summary>
    public static unsafe class Native
    {
        public const string Library = "ninefold", Kit = "ninefold-kit";

        /// <summary>The records that the kit describes.</summary>
        public static readonly Type[] Records = { typeof(Texture), typeof(Vertex), typeof(TexCoord), typeof(LineTableRecord), typeof(RenderState) };

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* CreateTexture(UIntPtr width, UIntPtr height);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void AddRefTexture(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DeleteTexture(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void ClearTexture(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void CopyTexture(Texture* dst, Texture* src, IntPtr dstX, IntPtr dstY, IntPtr srcX, IntPtr srcY, IntPtr width, IntPtr height);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetClearPixel(Texture* texture, UIntPtr color);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void ReplacePixel(Texture* texture, UIntPtr newColor, UIntPtr oldColor);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* LoadTexture(IntPtr path);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* LoadTextureAdjust(IntPtr path, UIntPtr alignX, UIntPtr alignY, IntPtr outX, IntPtr outY, IntPtr outWidth, IntPtr outHeight);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void CreateMipmapTexture(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DeleteMipmapTexture(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void CreateRunlengthMap(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void CreateZeroPixelMap(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void MakeUVLShiftTable();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void MakeShaheiRunlengthTbl();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void MakeDrawFuncTable();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void MakeDrawMaskTable();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* SetFrameBuffer(Texture* texture);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetShapeMode(IntPtr shape);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetPrescaleMode(IntPtr prescale);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetRuleAlphaMode(IntPtr rule);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetFilterMode(IntPtr filter);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetRectOptMode(IntPtr rectOpt);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetShaheiMode(IntPtr shahei);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetMultiMode(IntPtr multi);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetPersMode(IntPtr pers);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetBlendMode(IntPtr mode);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetBlendModeMulti(IntPtr value);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetPrescaleMultiMode(IntPtr mode);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void SetPresetDrawMask(IntPtr index);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr GetShaheiTable();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern UIntPtr CreateDrawCodeSub(IntPtr pers, IntPtr rule, IntPtr prescale, IntPtr filter, IntPtr rectOpt, IntPtr shahei, IntPtr blend, IntPtr multi, IntPtr shape);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern UIntPtr CreateDrawCode();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr SearchDrawFunc(UIntPtr code);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawRectTexRunlen_TEST();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawLineTest();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawPolygon_PERS_TEST();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiPolygonSet();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiPolygonFlip();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiPolygonReset();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawZbufferPolygon();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawZbufferPolygon0xff();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawZbufferPolygonFlip();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawZbufferPolygonClear();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiZbufferPolygonMask();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiZbufferPolygonUnmask();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawShaheiZbufferPolygonFlip();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawRectTexRule();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawRectGradRule();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawRectGradRule_GEN_RULE_TEST();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DrawRectGradRule_GEN_RULE_MIPMAP_TEST();

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr CreateFontTexture(IntPtr text);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr CreateFontTextureFuchi(IntPtr text);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkError();

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkStart();

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern NfkScreen* nfkCreateScreen(int width, int height);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkResizeScreen(NfkScreen* screen, int width, int height);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkSelectScreen(NfkScreen* screen);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkClearScreen(NfkScreen* screen, uint color);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern void nfkReleaseScreen(NfkScreen* screen);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* nfkTextureOver(uint* pixels, int width, int height);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern NfkOptions nfkOptions();

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkSetCaller(IntPtr caller);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkSprite(Texture* texture, int x, int y, NfkRect* source, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkPicture(Texture* texture, NfkRect* target, NfkRect* source, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkTurned(Texture* texture, NfkTurn* turn, NfkRect* source, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkSprites(Texture* texture, uint count, NfkPoint* positions, NfkRect* sources, uint* colors, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkPictures(Texture* texture, uint count, NfkRect* targets, NfkRect* sources, uint* colors, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkTransition(Texture* texture, NfkRect* target, NfkRect* source, Texture* rule, float t, int width, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkLine(int x0, int y0, int x1, int y1, uint color, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkLines(uint count, NfkPoint* ends, uint* colors, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkFill(NfkRect* target, uint color, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkFills(uint count, NfkRect* targets, uint* colors, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkGradient(NfkRect* target, uint* colors, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkMesh(Texture* texture, uint vertexCount, NfkMeshVertex* vertices, uint indexCount, uint* indices, NfkOptions* options);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* nfkLoadPicture([MarshalAs(UnmanagedType.LPUTF8Str)] string path, uint extras);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* nfkLoadPictureMemory(IntPtr bytes, UIntPtr size, [MarshalAs(UnmanagedType.LPUTF8Str)] string name, uint extras);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkSavePicture(Texture* texture, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int alpha);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkOpenFont([MarshalAs(UnmanagedType.LPUTF8Str)] string name, int pixels);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkOpenFontFile([MarshalAs(UnmanagedType.LPUTF8Str)] string path, int face, int pixels);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern void nfkCloseFont(IntPtr font);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkGetFontInfo(IntPtr font, NfkFontInfo* info);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern Texture* nfkGetFontAtlas(IntPtr font);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkMakeText(IntPtr font, [MarshalAs(UnmanagedType.LPUTF8Str)] string utf8, NfkTextStyle* style);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern void nfkDeleteText(IntPtr text);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkMeasureText(IntPtr text, NfkTextSize* size);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkGetTextLine(IntPtr text, int line, NfkTextLine* @out);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkGetTextGlyph(IntPtr text, int glyph, NfkTextGlyph* @out);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkGetTextCaret(IntPtr text, int @byte, NfkRect* @out);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkDrawText(IntPtr text, int x, int y, int alpha, int bytes);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkWrite(IntPtr font, [MarshalAs(UnmanagedType.LPUTF8Str)] string utf8, int x, int y, NfkTextStyle* style);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkCreateFontTexture([MarshalAs(UnmanagedType.LPUTF8Str)] string utf8);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr nfkCreateFontTextureFuchi([MarshalAs(UnmanagedType.LPUTF8Str)] string utf8);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkEncodePage932([MarshalAs(UnmanagedType.LPUTF8Str)] string utf8, IntPtr @out, uint size);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkFormatBytes(int format);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkShow(NfkScreen* screen, IntPtr pixels, int pitch, int width, int height, int format);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkCopyOut(Texture* texture, NfkRect* part, IntPtr pixels, int pitch, int format);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern int nfkCodeExists(uint code);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkDrawnCode(uint code);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkCodeName(uint code, IntPtr buffer, uint size);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkCodeOfName([MarshalAs(UnmanagedType.LPUTF8Str)] string name);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkNearestCodes(uint code, uint* codes, uint count);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkExplainCode(uint code, IntPtr buffer, uint size);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern RenderState* nfkState();

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern NfkField* nfkFields([MarshalAs(UnmanagedType.LPUTF8Str)] string record, uint* count);

        [DllImport(Kit, CallingConvention = CallingConvention.Cdecl)]
        public static extern uint nfkRecordSize([MarshalAs(UnmanagedType.LPUTF8Str)] string record);
    }
}
