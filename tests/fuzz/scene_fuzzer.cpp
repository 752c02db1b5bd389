// Scenes from arbitrary bytes: the library and the reference must leave the same behind. Bytes say what is drawn (two), the kind
// of scene (one) and then every choice that the scene builder makes, for as long as they last; so scenes stay where drawing is
// defined.
//
//     make fuzz                                      searches for ten minutes
//     build-fuzz/tests/fuzz/scene_fuzzer FILE        draws what was found once more, and shows it
#include "support/check.h"

#include <cstdio>
#include <cstdlib>

using namespace support;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Comparer comparer;
    if (size < 3)
        return 0;
    static const std::vector<Subject> subjects = [] {
        std::vector<Subject> all = catalogueSubjects();
        all.insert(all.end(), namedSubjects().begin(), namedSubjects().end());
        return all;
    }();
    static constexpr Kind kinds[] = {Kind::plain, Kind::plain, Kind::plain, Kind::overlap, Kind::guard, Kind::offset, Kind::big};
    const Subject &subject = subjects[(data[0] << 8 | data[1]) % subjects.size()];
    const Kind kind = kinds[data[2] % std::size(kinds)];
    const SceneId id{kind, 1, data[2] / uint32_t{std::size(kinds)}, {data + 3, size - 3}};
    if (comparer.check(subject, id)) {
        std::fputs(comparer.check(subject, id, -1, true)->c_str(), stderr);
        std::abort();
    }
    return 0;
}
