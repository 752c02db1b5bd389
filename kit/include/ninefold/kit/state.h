/* The library's records for languages that cannot import data or read C headers. */
#ifndef NINEFOLD_KIT_STATE_H
#define NINEFOLD_KIT_STATE_H

#include <ninefold/kit/api.h>

/* clang-format off */

/* What a field holds. X(NAME, value, word, meaning) */
#define NFK_KINDS(X) \
    X(NFK_KIND_SIGNED,   0, "signed",   "a signed integer") \
    X(NFK_KIND_UNSIGNED, 1, "unsigned", "an unsigned integer") \
    X(NFK_KIND_POINTER,  2, "pointer",  "an address of data") \
    X(NFK_KIND_FUNCTION, 3, "function", "an address of a function") \
    X(NFK_KIND_RECORD,   4, "record",   "another of these records, named by type")

/* clang-format on */

enum { NFK_KINDS(NINEFOLD_ENUMERATOR) };

/* A field of a record, as the kit's own compiler laid it out. */
typedef struct NfkField {
    const char *name;
    const char *type; /* of one element, as C writes it */
    int32_t kind; /* NFK_KIND_... */
    uint32_t offset; /* bytes from the record's start */
    uint32_t size; /* bytes of one element */
    uint32_t count; /* elements: 1, or those of an array */
    const char *meaning; /* the header's comment: units, range, who sets it */
} NfkField;

#ifdef __cplusplus
extern "C" {
#endif

/* The address of rs, always the same. */
NINEFOLD_KIT_API RenderState *nfkState(void);

/* The fields of a record: "RenderState", "Texture", "Vertex", "TexCoord" or "LineTableRecord"; `count` receives their number and
 * may be null. Null for any other name. Texture starts with the address of its virtual table, which is no field. */
NINEFOLD_KIT_API const NfkField *nfkFields(const char *record, uint32_t *count);

/* The size of a record, bytes; 0 for any other name. */
NINEFOLD_KIT_API uint32_t nfkRecordSize(const char *record);

#ifdef __cplusplus
}
#endif

#endif
