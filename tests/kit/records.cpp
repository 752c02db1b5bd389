// The records as data, against the compiler. Compiled for 32 bits too, without the library.
#include <ninefold/kit/state.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

#pragma GCC diagnostic ignored "-Winvalid-offsetof" // Texture has a virtual table, which lies first

static int failures;

static void expect(bool condition, const char *record, const char *field, const char *what)
{
    if (!condition) {
        std::printf("%s %s: %s\n", record, field, what);
        ++failures;
    }
}

// Each byte of a record belongs to one field, in order, but for padding before a field that is wider.
static void covers(const char *record, size_t size, size_t begin)
{
    uint32_t count = 0;
    const NfkField *const fields = nfkFields(record, &count);
    expect(fields && count > 0, record, "", "no fields");
    expect(nfkRecordSize(record) == size, record, "", "size");
    size_t at = begin, widest = begin;
    for (uint32_t i = 0; i < count; ++i) {
        const NfkField &field = fields[i];
        const size_t align = field.size == 8 && field.kind < NFK_KIND_RECORD ? 8 : field.size % 4 ? field.size : 4;
        widest = align > widest ? align : widest;
        expect(field.offset == (at + align - 1) / align * align, record, field.name, "does not follow the field before");
        expect(field.count >= 1 && field.size >= 1, record, field.name, "empty");
        expect(*field.meaning != 0, record, field.name, "without a meaning");
        at = field.offset + field.size * field.count;
    }
    expect(size == (at + widest - 1) / widest * widest, record, "", "fields are missing at the end");
}

static const NfkField &find(const char *record, const char *name)
{
    static const NfkField none = {"", "", -1, ~0u, 0, 0, ""};
    uint32_t count = 0;
    const NfkField *const fields = nfkFields(record, &count);
    for (uint32_t i = 0; i < count; ++i)
        if (std::strcmp(fields[i].name, name) == 0)
            return fields[i];
    expect(false, record, name, "is not there");
    return none;
}

#define FIELD(record, field, kind_, type_, elements)                                                                             \
    {                                                                                                                            \
        const NfkField &found = find(#record, #field);                                                                           \
        expect(found.offset == offsetof(record, field), #record, #field, "offset");                                              \
        expect(found.size *found.count == sizeof(record::field), #record, #field, "size");                                       \
        expect(found.count == (elements), #record, #field, "count");                                                             \
        expect(found.kind == NFK_KIND_##kind_, #record, #field, "kind");                                                         \
        expect(std::strcmp(found.type, type_) == 0, #record, #field, found.type);                                                \
    }

int main()
{
    covers("RenderState", sizeof(RenderState), 0);
    covers("Texture", sizeof(Texture), sizeof(void *));
    covers("Vertex", sizeof(Vertex), 0);
    covers("TexCoord", sizeof(TexCoord), 0);
    covers("LineTableRecord", sizeof(LineTableRecord), 0);

    FIELD(RenderState, dstPixels, POINTER, "uint32_t *", 1)
    FIELD(RenderState, dstShift, UNSIGNED, "uint32_t", 1)
    FIELD(RenderState, reserved, UNSIGNED, "uint32_t", 4)
    FIELD(RenderState, originY, SIGNED, "int32_t", 1)
    FIELD(RenderState, clipBottom, SIGNED, "int32_t", 1)
    FIELD(RenderState, shaheiPlane, POINTER, "uint16_t *", 1)
    FIELD(RenderState, zBuffer, POINTER, "uint8_t *", 1)
    FIELD(RenderState, color, UNSIGNED, "uint32_t", 4)
    FIELD(RenderState, vertex, RECORD, "Vertex", 4)
    FIELD(RenderState, uv0, RECORD, "TexCoord", 4)
    FIELD(RenderState, tex0, POINTER, "Texture *", 1)
    FIELD(RenderState, lineTable1, POINTER, "LineTableRecord *", 1)
    FIELD(RenderState, blendAlpha, UNSIGNED, "uint32_t", 1)
    FIELD(RenderState, scanShift, POINTER, "int32_t *", 1)
    FIELD(RenderState, blendFunc, FUNCTION, "PixelOperator", 1)
    FIELD(RenderState, drawMask, UNSIGNED, "uint16_t", 16)
    FIELD(RenderState, ruleCurve, SIGNED, "int32_t", 1)
    FIELD(RenderState, persMode, SIGNED, "int32_t", 1)
    FIELD(RenderState, mipTex1, POINTER, "Texture *", 1)
    FIELD(RenderState, fontName, POINTER, "char *", 1)
    FIELD(RenderState, fontCursorY, UNSIGNED, "uint32_t", 1)
    FIELD(RenderState, mosaicSize, SIGNED, "int32_t", 1)
    FIELD(Texture, pixels, POINTER, "uint32_t *", 1)
    FIELD(Texture, mip, POINTER, "Texture *", 16)
    FIELD(Texture, runlengthMap, POINTER, "int8_t *", 1)
    FIELD(Texture, refCount, SIGNED, "int32_t", 1)
    FIELD(Texture, origHeight, UNSIGNED, "uint32_t", 1)
    FIELD(Vertex, z, SIGNED, "int32_t", 1)
    FIELD(TexCoord, v, SIGNED, "int32_t", 1)
    FIELD(LineTableRecord, endV, SIGNED, "int32_t", 1)

    uint32_t count = 1;
    expect(!nfkFields("rs", &count) && count == 0 && !nfkFields(nullptr, nullptr), "rs", "", "is no record");
    expect(nfkRecordSize("rs") == 0, "rs", "", "has no size");
#ifdef WITH_LIBRARY
    expect(nfkState() == &rs, "rs", "", "address");
#endif
    if (failures == 0)
        std::printf("records agree at %d bits\n", int(8 * sizeof(void *)));
    return failures != 0;
}
