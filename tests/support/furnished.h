// A canvas on which every kernel of the catalogue can draw: textures with chains and maps, tables, planes and factors are all
// set.
#pragma once

#include "support/canvas.h"

#include "core/catalogue.h"

#include <random>

namespace canvas {

class Furnished : public Canvas {
protected:
    void SetUp() override
    {
        Canvas::SetUp();
        std::mt19937 random(1);
        const auto pixel = [&](uint32_t, uint32_t) { return random() % 5 ? static_cast<uint32_t>(random()) : 0; };
        // As large as the frame buffer, whose words the zero-pixel map is read by.
        rs.tex0 = texture(width, height, pixel);
        rs.tex1 = texture(32, 64, pixel);
        rs.tex2 = texture(16, 16, pixel);
        CreateMipmapTexture(rs.tex0);
        CreateMipmapTexture(rs.tex1);
        CreateRunlengthMap(rs.tex0);
        CreateZeroPixelMap(rs.tex0);
        rs.mipTex = rs.tex0->mip[1];
        rs.mipTex1 = rs.tex1->mip[1];
        rs.mipFrac = 200;
        rs.mipFrac1 = 77;

        const TexCoord uv0[] = {{0x3A123, 0x24567}, {0xC54321, 0x34567}, {0x5A123, 0x83210}, {0xA54321, 0x7ABCD}};
        const TexCoord uv1[] = {{0x18123, 0x14567}, {0x64321, 0xD4567}, {0x2A123, 0x93210}, {0x94321, 0xFABCD}};
        const TexCoord uv2[] = {{0x08123, 0x04567}, {0xE4321, 0xF4567}, {0x2A123, 0x93210}, {0, 0}};
        for (int k = 0; k < 4; ++k) {
            rs.uv0[k] = uv0[k], rs.uv1[k] = uv1[k], rs.uv2[k] = uv2[k];
            rs.color[k] = static_cast<uint32_t>(random());
        }
        for (std::vector<LineTableRecord> *table : {&table0, &table1}) {
            table->resize(height);
            for (LineTableRecord &line : *table) {
                const auto texel = [&] { return static_cast<int32_t>(random() % 0xA00000); };
                line = {texel(), texel(), texel(), texel()};
            }
        }
        table0[14].startU = NINEFOLD_SKIP_ROW;
        rs.lineTable0 = table0.data();
        rs.lineTable1 = table1.data();
        shifts.resize(height);
        for (int32_t &shift : shifts)
            shift = static_cast<int32_t>(random() % 7) - 3;
        rs.scanShift = shifts.data();

        rs.blendAlpha = 100;
        rs.blendAlphaRgb = 50;
        rs.prescale = 200;
        rs.prescaleMulti = 180;
        rs.writeMask = 0xF0CC33AA;
        rs.blendFunc = [](uint32_t destination, uint32_t source) { return destination * 3 + (source ^ 0x5A5A5A5A); };
        SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL2);
        rs.mosaicSize = 3;
        rs.mosaicSize1 = 5;
        rs.ruleThreshold = 60;
        rs.ruleWidth = 100;
        for (uint16_t &row : rs.drawMask)
            row = static_cast<uint16_t>(random() & random());
        for (uint16_t &word : plane)
            word = static_cast<uint16_t>(random() & random() & random());
        for (uint8_t &byte : z)
            byte = static_cast<uint8_t>(random());
        rs.zRef = 0x350;
        for (uint32_t k = 0; k < width * height; ++k)
            frame->pixels[k] = static_cast<uint32_t>(random());
    }

    // Nothing that a kernel reads: the modes, and what the last look-up was.
    static void scrambleModes()
    {
        rs.prescaleMode = rs.prescaleMultiMode = rs.filterMode = rs.rectOptMode = rs.shaheiMode = rs.blendMode =
            rs.blendModeMulti = rs.multiMode = rs.shapeMode = rs.ruleAlphaMode = rs.persMode = 77;
        SearchDrawFunc(0x40769);
    }

    // What mip filters leave behind.
    static void clearScratch(RenderState &s)
    {
        s.mipFrac = s.mipFrac1 = s.mipRatio = 0;
        s.mipTex = s.mipTex1 = nullptr;
    }

    // Visits every code of the catalogue, or a share of them where that is slow.
    template <class Visitor>
    static void forEachKernel(Visitor &&visit)
    {
        constexpr int share = thin == 1 ? 1 : 7;
        int n = 0;
        ninefold::forEachCombination([&](const ninefold::Axes &a) {
            if (!HasFatalFailure() && n++ % share == 0)
                visit(a, SearchDrawFunc(ninefold::codeOf(a)));
        });
        EXPECT_TRUE(HasFatalFailure() || n == 30912);
    }

    static void placeLargely(int shape, bool flippedX = false, bool flippedY = false)
    {
        if (shape == NINEFOLD_SHAPE_TRIANGLE) {
            triangle(1, 9, 62, 1, 30, 31);
            rs.vertex[1].z = 3, rs.vertex[2].z = 2;
            if (flippedX)
                std::swap(rs.vertex[0], rs.vertex[1]);
            if (flippedY)
                std::swap(rs.vertex[1], rs.vertex[2]);
        } else {
            corners(flippedX ? 60 : 3, flippedY ? 30 : 2, flippedX ? 3 : 60, flippedY ? 2 : 30);
        }
    }

    std::vector<LineTableRecord> table0, table1;
    std::vector<int32_t> shifts;
};

} // namespace canvas
