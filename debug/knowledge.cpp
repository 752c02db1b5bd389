#include "knowledge.h"

#include "memory.h"

#include <map>
#include <unordered_map>

namespace debug {

using layer::Call;
using layer::Function;

StartUp startUp;
uint64_t frame = 1;

namespace {

// Never destroyed: hosts delete textures in destructors of their own.
auto &textures()
{
    static auto *const all = new std::unordered_map<const Texture *, Known>;
    return *all;
}
auto &labels()
{
    static auto *const all = new std::map<const void *, Label>;
    return *all;
}

uint64_t sumOf(const Texture &texture)
{
    if (!texture.pixels)
        return 0;
    const size_t count = size_t(1) << (texture.log2Width + texture.log2Height);
    uint64_t sums[4] = {1, 2, 3, 4};
    size_t k = 0;
    for (; k + 4 <= count; k += 4)
        for (size_t lane = 0; lane < 4; ++lane)
            sums[lane] = (sums[lane] ^ texture.pixels[k + lane]) * 0x9E3779B97F4A7C15u;
    for (; k < count; ++k)
        sums[0] = (sums[0] ^ texture.pixels[k]) * 0x9E3779B97F4A7C15u;
    return sums[0] ^ sums[1] >> 7 ^ sums[2] >> 15 ^ sums[3] >> 23;
}

Known &add(const Texture *texture)
{
    Known &entry = textures()[texture] = {};
    entry.made = true;
    entry.pixels = texture->pixels;
    entry.log2Width = texture->log2Width, entry.log2Height = texture->log2Height;
    return entry;
}

void addLevels(const Texture *texture)
{
    const std::string label = textures()[texture].label;
    for (uint32_t level = 1; level < texture->mipCount && level < std::size(texture->mip); ++level)
        if (texture->mip[level]) {
            Known &entry = add(texture->mip[level]);
            if (!label.empty())
                entry.label = label + " level " + std::to_string(level);
        }
}

void endLevels(const Texture *texture)
{
    for (uint32_t level = 1; level < texture->mipCount && level < std::size(texture->mip); ++level)
        if (Known *const entry = known(texture->mip[level]))
            entry->alive = false;
}

// The host may have changed pixels by a call of the library: sums of this frame no longer hold.
void touch(const Texture *texture)
{
    if (Known *const entry = known(texture))
        entry->frame = 0;
}

} // namespace

Known *known(const Texture *texture)
{
    const auto found = textures().find(texture);
    return found == textures().end() ? nullptr : &found->second;
}

uint64_t currentSum(const Texture &texture, Known &entry)
{
    if (entry.frame != frame) {
        entry.frame = frame;
        entry.sum = sumOf(texture);
    }
    return entry.sum;
}

void nextFrame() { ++frame; }

void learnBefore(const Call &call)
{
    if (!call.is(Function::DeleteTexture) && !call.is(Function::DeleteMipmapTexture))
        return;
    const Texture *const texture = call.texture();
    Known *const entry = known(texture);
    if (!texture || (entry && !entry->alive) || !isReadable(texture, sizeof *texture))
        return;
    if (call.is(Function::DeleteMipmapTexture)) {
        endLevels(texture);
        if (entry)
            entry->hasChain = false;
    } else if (texture->refCount <= 1) {
        endLevels(texture);
        if (entry)
            entry->alive = false;
        else
            textures()[texture].alive = false;
        ageMemory(true);
    }
}

void learnAfter(const Call &call)
{
    if (call.id < layer::idOf(Function::MakeUVLShiftTable))
        return;
    switch (Function(call.id - layer::recordCount)) {
    case Function::MakeUVLShiftTable: startUp.shifts = true; break;
    case Function::MakeShaheiRunlengthTbl: startUp.runs = true; break;
    case Function::MakeDrawFuncTable: startUp.kernels = true; break;
    case Function::MakeDrawMaskTable: startUp.stipples = true; break;
    case Function::SetFrameBuffer: nextFrame(); break;
    case Function::CreateTexture:
    case Function::LoadTexture:
    case Function::LoadTextureAdjust:
        if (call.made())
            add(call.made());
        break;
    case Function::CreateMipmapTexture:
        addLevels(call.texture());
        if (Known *const entry = known(call.texture()))
            if (!entry->hasChain) {
                entry->frame = 0;
                entry->hasChain = true;
                entry->chainSum = currentSum(*call.texture(), *entry);
            }
        break;
    case Function::CreateRunlengthMap:
        if (Known *const entry = known(call.texture())) {
            entry->frame = 0;
            entry->runs = call.texture()->runlengthMap;
            entry->runsSum = currentSum(*call.texture(), *entry);
        }
        break;
    case Function::CreateZeroPixelMap:
        if (Known *const entry = known(call.texture())) {
            entry->frame = 0;
            entry->zeros = call.texture()->zeroPixelMap;
            entry->zerosSum = currentSum(*call.texture(), *entry);
            entry->zerosLog2Size = call.texture()->log2Width + call.texture()->log2Height;
        }
        break;
    case Function::ClearTexture:
    case Function::CopyTexture:
    case Function::SetClearPixel:
    case Function::ReplacePixel: touch(call.texture()); break;
    case Function::CreateFontTexture:
    case Function::CreateFontTextureFuchi:
        touch(rs.tex0);
        if (Known *const entry = known(rs.tex0))
            entry->lookedForAlpha = true; // the colours of a rim are below its alpha
        break;
    default: break;
    }
}

const Label *labelAt(const void *address)
{
    const auto behind = labels().upper_bound(address);
    if (!address || behind == labels().begin())
        return nullptr;
    const Label &label = std::prev(behind)->second;
    return uintptr_t(address) - uintptr_t(label.begin) < label.size ? &label : nullptr;
}
void forgetTexture(const Texture *texture) { textures().erase(texture); }
void labelTexture(const Texture *texture, const char *name) { textures()[texture].label = name ? name : ""; }
void labelMemory(const void *memory, size_t size, const char *name) { labels()[memory] = {memory, size, name ? name : ""}; }
void forgetMemory(const void *memory)
{
    labels().erase(memory);
    ageMemory(true);
}

void forEachLabel(void (*tell)(const void *address, const std::string &name))
{
    for (const auto &[texture, entry] : textures())
        if (!entry.label.empty())
            tell(texture, entry.label);
    for (const auto &[memory, label] : labels())
        tell(memory, label.name);
}

std::string wordsFor(const Texture *texture)
{
    if (!texture)
        return "null";
    const Known *const entry = known(texture);
    if (entry && !entry->label.empty())
        return "\"" + entry->label + "\"";
    char text[64];
    if (!isReadable(texture, sizeof *texture) || (entry && !entry->alive))
        std::snprintf(text, sizeof text, "%p", static_cast<const void *>(texture));
    else
        std::snprintf(text, sizeof text, "a texture of %ux%u at %p", texture->width, texture->height,
                      static_cast<const void *>(texture));
    return text;
}

} // namespace debug
