// Recording: what is drawn goes into a capture file where the settings name one. Without the packages that captures need there is
// none, and the setting is refused.
#pragma once

#include "footprint.h"

#include <string>

namespace debug {

#if NINEFOLD_CAPTURE

// Starts a file as the settings name it; false, and a message, where it cannot be written. Ends the one before.
bool startRecording();
// The file is whole afterwards; false where it could not be written.
bool stopRecording();
bool isRecording();

void recordBefore(layer::Id id, const layer::Footprint &footprint);
void recordAfter();
void recordFrame(bool atSetFrameBuffer); // otherwise where the host marks one
void recordChange(const Texture *texture); // of its pixels, by a call of the library
void recordLabel(const void *address, const char *name);

#else

inline bool startRecording() { return false; }
inline bool stopRecording() { return true; }
inline bool isRecording() { return false; }
inline void recordBefore(layer::Id, const layer::Footprint &) {}
inline void recordAfter() {}
inline void recordFrame(bool) {}
inline void recordChange(const Texture *) {}
inline void recordLabel(const void *, const char *) {}

#endif

} // namespace debug
