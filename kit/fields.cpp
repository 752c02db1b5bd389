// The fields of the library's records as data. Needs nothing but the headers, so that a test can compile it for other machines.
#include <ninefold/kit/state.h>

#include "fields_list.h"

#include <cstddef>
#include <cstring>

// Texture has a virtual table, which every compiler that builds this lays out first.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace {

// The size of an element of a field that is an array, or of the field.
template <class Field>
constexpr uint32_t elementSize(uint32_t count)
{
    return uint32_t(sizeof(Field) / count);
}

#define FIELD(record, name, type, kind, count, meaning)                                                                          \
    {#name, type, kind, uint32_t(offsetof(record, name)), elementSize<decltype(record::name)>(count), count, meaning},
#define FIELDS(record) constexpr NfkField fieldsOf##record[] = {NFK_FIELDS_##record(FIELD)};
NFK_RECORDS(FIELDS)
#undef FIELDS
#undef FIELD

struct Record {
    const char *name;
    const NfkField *fields;
    uint32_t count, size;
};
#define RECORD(record) {#record, fieldsOf##record, sizeof fieldsOf##record / sizeof(NfkField), sizeof(record)},
constexpr Record records[] = {NFK_RECORDS(RECORD)};
#undef RECORD

const Record *find(const char *name)
{
    for (const Record &record : records)
        if (name && std::strcmp(name, record.name) == 0)
            return &record;
    return nullptr;
}

} // namespace

const NfkField *nfkFields(const char *record, uint32_t *count)
{
    const Record *const found = find(record);
    if (count)
        *count = found ? found->count : 0;
    return found ? found->fields : nullptr;
}

uint32_t nfkRecordSize(const char *record)
{
    const Record *const found = find(record);
    return found ? found->size : 0;
}
