// The reference: everything that Ninefold draws, done again by one plain pixel loop with all modes looked at while it runs, one
// pixel at a time, left to right. It shares the public headers with the library and nothing else.
//
// It draws from the state that it is given, not from the global `rs`, and writes what the library would write: the frame buffer,
// the planes and the scratch fields of the mip filters.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <ninefold/render_state.h>
#include <ninefold/texture.h>

namespace reference {

// Whether a kernel exists for this draw code.
bool exists(uint32_t code);

// All codes that exist, in the order of the kernel table.
std::vector<uint32_t> catalogue();

// Draws with the kernel of `code`, which must exist.
void draw(uint32_t code, RenderState &state);

// Draws with an exported function of this name: an occlusion fill, a rule rectangle, or one of the three kernels that have a
// name. False if there is none.
bool drawNamed(const char *exportName, RenderState &state);

// The operator that SetBlendMode(mode) puts in blendFunc; null where it leaves blendFunc alone.
PixelOperator blendOperator(long mode);

// The operator that SetBlendModeMulti(value) puts in multiFunc.
PixelOperator multiOperator(long value, bool secondBank);

// The pixel that is being drawn, as an index into the frame buffer: for operators that want to look around themselves.
extern int32_t pixelInHand;

// The operators read their factors from the state of the last draw, or from this one.
void setOperatorState(const RenderState *state);

// The rows that SetPresetDrawMask(index) puts in drawMask; index 0 to 261.
std::array<uint16_t, 16> stipple(int index);

// Fills `level`, half as wide and half as high as `source` (but at least 1), as CreateMipmapTexture does.
void fillMipLevel(const Texture &source, Texture &level);

// The maps of CreateRunlengthMap (a byte a pixel) and CreateZeroPixelMap (width * height words).
std::vector<int8_t> runLengthMap(const Texture &texture);
std::vector<uint16_t> zeroPixelMap(const Texture &texture);

// The run list of a plane word, as GetShaheiTable gives it.
std::vector<int8_t> runList(uint16_t word);

} // namespace reference
