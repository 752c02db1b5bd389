// Read ahead of everything else in those of the library's sources that are compiled a second time for bands: in that copy each
// thread has a render state of its own, and all names stand in the namespace `banded`.
//
// __thread and not thread_local: of a variable that is defined elsewhere the latter may be reached through a function. With the
// initial-exec model a field costs what it costs in a global. That takes 544 bytes of what the system keeps for the libraries
// which are loaded later.
//
// Windows' thread-local variables are reached through a function, which took 16 ns where it was measured. There a register that
// nothing else in this copy uses has the address of the thread's own: drawRows puts it there and gives its caller back what was in it.
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
