// From a draw code to the shape that it draws.
#include "occlusion.h"
#include "reference.h"
#include "rule_rectangles.h"
#include "shapes.h"

namespace reference {

int32_t pixelInHand = 0;

void draw(uint32_t code, RenderState &state)
{
    setOperatorState(&state);
    const Modes modes = Modes::of(code);
    const bool perLine = modes.shape == rectangle && modes.option == 3;
    const bool byLevel = (modes.filter == 2 || modes.filter == 5) && !perLine;
    if ((modes.filter == 3 || modes.filter == 4) && !perLine)
        return; // a level for each line, without lines
    switch (modes.shape) {
    case line: drawLine(modes, state); break;
    case rectangle:
        if (!byLevel)
            drawRectangle(modes, state);
        else if (modes.option == 1)
            drawStretchedByLevel(modes, state);
        else
            drawCornersByLevel(modes, state);
        break;
    default: (byLevel ? drawTriangleByLevel : drawTriangle)(modes, state); break;
    }
}

bool drawNamed(const char *exportName, RenderState &state)
{
    setOperatorState(&state);
    const std::string_view name = exportName;
    if (name == "DrawRectTexRunlen_TEST")
        draw(0x188369, state);
    else if (name == "DrawLineTest")
        draw(0xFDA768, state);
    else if (name == "DrawPolygon_PERS_TEST")
        draw(0x81C036A, state);
    else
        return drawOcclusion(name, state) || drawRuleRectangle(name, state);
    return true;
}

} // namespace reference
