// The layer for C++: who owns what. That a handle cannot be deleted is headers.sh's to see.
#include <ninefold/kit.hpp>

#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

namespace {

static_assert(!std::is_copy_constructible_v<nfk::Texture> && std::is_nothrow_move_constructible_v<nfk::Texture>);
static_assert(!std::is_copy_constructible_v<nfk::Screen> && std::is_nothrow_move_assignable_v<nfk::Screen>);
static_assert(std::is_convertible_v<nfk::Texture &, Texture *>);

} // namespace

TEST(Handles, SizesDoNotNarrow)
{
    const nfk::Texture texture(100, 30);
    const int32_t w = texture.width(), h = texture.height();
    const TexCoord end = {w << 16, h << 16};
    EXPECT_EQ(end.u, 100 << 16);
    EXPECT_EQ(texture.end().v, 30 << 16);
    EXPECT_EQ(texture.paddedWidth(), 128);
    EXPECT_EQ(texture.paddedHeight(), 32);
    EXPECT_EQ(texture.row(2), texture.pixels() + 256);
    EXPECT_EQ(*texture.row(31), 0u);
}

TEST(Handles, OneOwner)
{
    nfk::Texture first(4, 4);
    Texture *const raw = first;
    AddRefTexture(raw);
    AddRefTexture(raw); // outlives its handle, so that it can be looked at
    nfk::Texture second = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(second->refCount, 2);
    first = std::move(second);
    EXPECT_EQ(raw->refCount, 2);
    first.reset();
    EXPECT_EQ(raw->refCount, 1);
    first = nfk::Texture(raw);
    EXPECT_EQ(first.release(), raw);
    EXPECT_EQ(raw->refCount, 1);
    DeleteTexture(raw);
}

TEST(Handles, FailuresThrowTheText)
{
    try {
        nfk::Texture(LoadTexture(const_cast<char *>("/no such file")));
        FAIL();
    } catch (const nfk::Error &) {
    }
    try {
        nfk::Screen(0, 5);
        FAIL();
    } catch (const nfk::Error &error) {
        EXPECT_NE(std::string(error.what()).find("0 x 5"), std::string::npos) << error.what();
    }
    EXPECT_THROW(nfk::Texture(0x8000, 0x8000), std::bad_alloc);
}

TEST(Handles, DrawAndShow)
{
    nfk::Screen screen(10, 10);
    screen.resize(20, 6);
    screen.clear(0xFF111111);
    const nfk::Texture texture(2, 2);
    std::fill_n(texture.pixels(), 4, 0xFF00FF00);
    nfk::checked(nfkSprite(texture, 3, 1, nullptr, nullptr));
    std::vector<uint32_t> window(20 * 6);
    screen.show(window.data(), 80, 20, 6, NFK_FORMAT_ARGB8888);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 20; ++x)
            EXPECT_EQ(window[size_t(y * 20 + x)], x >= 3 && x < 5 && y >= 1 && y < 3 ? 0xFF00FF00 : 0xFF111111);
    EXPECT_EQ(screen.texture().width(), 20);
    nfk::Screen other = std::move(screen);
    EXPECT_EQ(other.height(), 6);
}
