#include "entries.h"

#include <utility>

namespace layer {
namespace {

template <Id record>
void entry()
{
    drawRecord(record);
}

template <class>
struct All;
template <Id... index>
struct All<std::integer_sequence<Id, index...>> {
    static constexpr DrawFunc entries[] = {entry<NINEFOLD_SHARE * shareSize + index>...};
};

} // namespace

template <>
constinit const DrawFunc *const Entries<NINEFOLD_SHARE>::first = All<std::make_integer_sequence<Id, shareSize>>::entries;

} // namespace layer
