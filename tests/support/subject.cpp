#include "subject.h"

#include <cstring>

#include <ninefold/draw.h>

namespace support {

namespace {

struct Named {
    const char *name;
    DrawFunc function;
    ninefold::Axes axes; // shape, pers, rule, prescale, filter, rect option, Shahei, blend, multi
};

constexpr ninefold::Axes fill{2, 0, 0, 0, 6, 7, 2, 0, 3};
constexpr ninefold::Axes wipe{1, 0, 0, 0, 0, 1, 0, 0, 3};
constexpr ninefold::Axes test{1, 0, 1, 0, 5, 2, 1, 9, 3};

const Named named[] = {
    {"DrawShaheiPolygonSet", DrawShaheiPolygonSet, fill},
    {"DrawShaheiPolygonFlip", DrawShaheiPolygonFlip, fill},
    {"DrawShaheiPolygonReset", DrawShaheiPolygonReset, fill},
    {"DrawZbufferPolygon", DrawZbufferPolygon, fill},
    {"DrawZbufferPolygon0xff", DrawZbufferPolygon0xff, fill},
    {"DrawZbufferPolygonFlip", DrawZbufferPolygonFlip, fill},
    {"DrawZbufferPolygonClear", DrawZbufferPolygonClear, fill},
    {"DrawShaheiZbufferPolygonMask", DrawShaheiZbufferPolygonMask, fill},
    {"DrawShaheiZbufferPolygonUnmask", DrawShaheiZbufferPolygonUnmask, fill},
    {"DrawShaheiZbufferPolygonFlip", DrawShaheiZbufferPolygonFlip, fill},
    {"DrawRectTexRule", DrawRectTexRule, {1, 0, 0, 0, 0, 1, 0, 0, 0}},
    {"DrawRectGradRule", DrawRectGradRule, wipe},
    {"DrawRectGradRule_GEN_RULE_TEST", DrawRectGradRule_GEN_RULE_TEST, test},
    {"DrawRectGradRule_GEN_RULE_MIPMAP_TEST", DrawRectGradRule_GEN_RULE_MIPMAP_TEST, test},
    {"DrawRectTexRunlen_TEST", DrawRectTexRunlen_TEST, ninefold::axesOf(0x188369)},
    {"DrawLineTest", DrawLineTest, ninefold::axesOf(0xFDA768)},
    {"DrawPolygon_PERS_TEST", DrawPolygon_PERS_TEST, ninefold::axesOf(0x81C036A)},
};

} // namespace

ninefold::Axes Subject::axes() const
{
    for (const Named &one : named)
        if (is(one.name))
            return one.axes;
    return ninefold::axesOf(code);
}

std::string Subject::name() const { return exported != nullptr ? exported : ninefold::nameOf(ninefold::axesOf(code)); }

bool Subject::is(const char *exportName) const { return exported != nullptr && std::strcmp(exported, exportName) == 0; }

bool Subject::fillsPlanes() const { return exported != nullptr && axes() == fill; }

const std::vector<Subject> &catalogueSubjects()
{
    static const std::vector<Subject> subjects = [] {
        std::vector<Subject> all;
        for (const uint32_t code : ninefold::makeCodes())
            all.push_back({code});
        return all;
    }();
    return subjects;
}

const std::vector<Subject> &namedSubjects()
{
    static const std::vector<Subject> subjects = [] {
        std::vector<Subject> all;
        for (const Named &one : named)
            all.push_back({static_cast<uint32_t>(all.size()), one.name, one.function});
        return all;
    }();
    return subjects;
}

} // namespace support
