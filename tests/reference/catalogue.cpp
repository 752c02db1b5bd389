// Which draw codes exist, and what they say.
#include "modes.h"
#include "reference.h"

namespace reference {

Modes Modes::of(uint32_t code)
{
    Modes modes;
    modes.shape = static_cast<int>(code & 3);
    modes.multi = static_cast<int>(code >> 8 & 3);
    modes.blend = static_cast<int>(code >> 10 & 31);
    modes.shahei = static_cast<int>(code >> 15 & 7);
    modes.option = static_cast<int>(code >> 18 & 7);
    modes.filter = static_cast<int>(code >> 21 & 15);
    modes.prescale = (code >> 25 & 1) != 0;
    modes.rule = (code >> 26 & 1) != 0;
    modes.pers = (code >> 27 & 1) != 0;
    return modes;
}

uint32_t Modes::code() const
{
    const int low = shape | 0x68 | multi << 8 | blend << 10 | shahei << 15 | option << 18 | filter << 21;
    return static_cast<uint32_t>(low) | (prescale ? 1u << 25 : 0) | (rule ? 1u << 26 : 0) | (pers ? 1u << 27 : 0);
}

static bool pairExists(int shahei, int blend)
{
    if (blend == 3 || blend > 12)
        return false;
    switch (shahei) {
    case 0:
    case 4: return true;
    case 1:
    case 2: return blend == 0;
    case 3:
    case 5: return blend != 0;
    default: return false;
    }
}

static bool rectangleExists(const Modes &modes)
{
    switch (modes.option) {
    case 0: return modes.filter == 0 || modes.filter == 1 || modes.filter == 8;
    case 1:
    case 2:
    case 3: return modes.filter <= 5 || modes.filter == 8;
    case 5: return modes.filter == 0 && !modes.plane();
    case 6: return modes.filter == 0 && modes.plane();
    case 7: return !modes.textured() && modes.multi == 3;
    default: return false;
    }
}

bool exists(uint32_t code)
{
    const Modes modes = Modes::of(code);
    if (modes.code() != code || !pairExists(modes.shahei, modes.blend))
        return false;
    switch (modes.shape) {
    case line: return !modes.textured() && modes.option == 7 && modes.multi == 3 && !modes.rule && !modes.pers;
    case rectangle: return rectangleExists(modes) && !modes.pers;
    case triangle:
        if (modes.option != 7 || modes.filter > 8)
            return false;
        return modes.textured() || (modes.multi == 3 && !modes.prescale);
    default: return false;
    }
}

std::vector<uint32_t> catalogue()
{
    std::vector<uint32_t> codes;
    Modes modes;
    for (int shape : {triangle, rectangle, line})
        for (int bits = 0; bits < 8; ++bits)
            for (int filter : {0, 8, 1, 3, 4, 2, 5, 6, 7})
                for (int option : {0, 5, 6, 1, 2, 3, 7})
                    for (int shahei : {0, 4, 1, 2, 3, 5})
                        for (int blend = 0; blend <= 12; ++blend)
                            for (int multi = 0; multi <= 3; ++multi) {
                                modes.shape = shape;
                                modes.pers = (bits & 4) != 0;
                                modes.rule = (bits & 2) != 0;
                                modes.prescale = (bits & 1) != 0;
                                modes.filter = filter;
                                modes.option = option;
                                modes.shahei = shahei;
                                modes.blend = blend;
                                modes.multi = multi;
                                if (exists(modes.code()))
                                    codes.push_back(modes.code());
                            }
    return codes;
}

} // namespace reference
