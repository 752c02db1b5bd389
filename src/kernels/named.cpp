// The kernels of the table that are exported by name.
#include "kernels/kernel.h"
#include "kernels/line/line.h"
#include "kernels/polygon/triangle.h"
#include "kernels/rect/rect.h"

using namespace ninefold;

void DrawRectTexRunlen_TEST(void) { ownKernel<codeOf(namedRuns)>()(); }
void DrawLineTest(void) { ownKernel<codeOf(namedLine)>()(); }
void DrawPolygon_PERS_TEST(void) { ownKernel<codeOf(namedPers)>()(); }
