// Plain loops, one pixel at a time with everything inlined, for combinations that hosts use most. They read rs as kernels do and
// give the same bits.
#pragma once

#include <ninefold/ninefold.h>

namespace bench::scalar {

// unit scale, by blend
void unitCopy();
void unitAlpha();
void unitConstAlpha();
void unitAlphaFast();
void unitAdd();
void unitMul();
void unitScreen();
void unitOverlay();

// stretched
void pointCopy();
void pointAlpha();
void bilinearCopy();
void bilinearAlpha();

void triangleCopy();
void triangleAlpha();
void triangleBilinearCopy();
void triangleBilinearAlpha();
void gouraudTriangle();
void flatTriangle();
void flatRect();
void flatLine();

} // namespace bench::scalar
