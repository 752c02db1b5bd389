// Read ahead of everything else in those of the library's sources that are compiled a second time for bands: in that copy each
// thread has a render state of its own, and all names stand in the namespace `banded`.
//
// __thread, not thread_local, which may be reached through a function where it is defined elsewhere. By the initial-exec model a
// field costs what it costs in a global; 544 bytes go of what the system keeps for libraries that are loaded later.
//
// Windows' thread-local variables are reached through a function, which took 16 ns where it was measured. There a register that
// functions preserve and nothing else in this copy uses has the address of the thread's own. Draws of 1 to 32 pixels in Wine took
// 0.90 to 1.01 of the plain library's time on x64, at most 1.13 on i686. drawRows sets it and gives its caller back what was in it.
#pragma once

#define ninefold banded
#include <ninefold/ninefold.h> // the exported rs, before its name is taken

#if defined(_WIN32)
#if defined(__x86_64__)
register RenderState *ninefoldThreadState __asm__("r15");
#else
register RenderState *ninefoldThreadState __asm__("ebx");
#endif
#define rs (*ninefoldThreadState)
#else
extern __thread __attribute__((tls_model("initial-exec"), visibility("hidden"))) RenderState ninefoldThreadState;
#define rs ninefoldThreadState
#endif
