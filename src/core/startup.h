// The tables that only the library touches. Like rs they lie in zeroed storage until the start-up functions fill them.
#pragma once

#include <cstdint>

namespace ninefold {

// How far left the low seven bits of an index can go until bit 6 is set, 7 if they are all clear. By MakeUVLShiftTable.
extern int32_t uvlShift[256];

// The preset draw masks 0 to 255, 16 rows each. By MakeDrawMaskTable.
extern uint16_t stipples[256][16];

// For column x of the stippled choice of texels: how many of the presets, from 0 on, have bit x & 15 of row x & 15 set. Twice
// over, so that a vector can start anywhere in the first half. By MakeDrawMaskTable.
extern uint32_t stippleSteps[32];

// The run lists of all 16-bit words back to back, and where the list of each word starts. By MakeShaheiRunlengthTbl.
extern int8_t runBytes[557056];
extern int8_t *runLists[65536];

} // namespace ninefold
