// Whether the glyph functions find the face that the host names.
#pragma once

#include <string>

namespace debug {

struct Face {
    bool exists; // also where the system's configuration knows another name for it, and where the system is not asked
    std::string name; // as asked for, UTF-8
    std::string instead; // the family that is taken where there is none of that name; empty: none
};

// The face of rs.fontName. Asked of fontconfig, once for each name; of no other system.
const Face &wantedFace();

} // namespace debug
