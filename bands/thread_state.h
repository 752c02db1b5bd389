// Read ahead of everything else in those of the library's sources that are compiled a second time for bands: in that copy each
// thread has a render state of its own, and all names stand in the namespace `banded`.
//
// __thread and not thread_local: of a variable that is defined elsewhere the latter may be reached through a function. With the
// initial-exec model a field costs what it costs in a global. That takes 544 bytes of what the system keeps for the libraries
// which are loaded later.
#pragma once

#define ninefold banded
#include <ninefold/ninefold.h> // the exported rs, before its name is taken

extern __thread __attribute__((tls_model("initial-exec"), visibility("hidden"))) RenderState ninefoldThreadState;
#define rs ninefoldThreadState
