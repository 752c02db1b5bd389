"""Arrays over native memory: what they show, and how long it lives."""
import gc
import resource

import ninefold as nf
import numpy as np
import pytest


def test_arrays_are_the_memory_itself(screen, red):
    red.pixels[0, 0] = 0xFF00FF00
    nf.sprite(red, 10, 20)
    assert screen.pixels[20, 10] == 0xFF00FF00 and screen.pixels[21, 10] == 0xFFFF0000
    assert (screen.pixels == 0xFFFF0000).sum() == 15
    assert screen.pixels.shape == (48, 64) and red.padded.shape == (4, 4)
    screen.pixels[...] = 0xFF112233
    assert (screen.rgba == [0x11, 0x22, 0x33, 255]).all()


def test_pictures_from_and_to_arrays():
    rgba = np.arange(5 * 3 * 4, dtype=np.uint8).reshape(5, 3, 4)
    texture = nf.Texture.from_array(rgba)
    assert (texture.width, texture.height, texture.padded.shape) == (3, 5, (8, 4))
    assert (texture.rgba == rgba).all() and texture.pixels[0, 0] == 0x03000102
    assert (texture.padded[5:] == 0).all()
    rgba[0, 0, 3] = 0
    assert nf.Texture.from_array(rgba).pixels[0, 0] == 0
    assert nf.Texture.from_array(rgba[..., :3]).pixels[0, 1] == 0xFF040506
    for wrong in (np.zeros((2, 2)), np.zeros((2, 2, 5), np.uint8), [1, 2]):
        with pytest.raises(ValueError, match="shape"):
            nf.Texture.from_array(wrong)


def test_a_texture_over_an_array_keeps_it(screen):
    texture = nf.Texture.over(np.full((8, 16), 0xFF0000FF, np.uint32))
    gc.collect()
    nf.sprite(texture, 0, 0)
    assert (screen.pixels[:8, :16] == 0xFF0000FF).all()
    with pytest.raises(ValueError):
        nf.Texture.over(np.zeros((8, 16), np.int64))
    with pytest.raises(nf.Error, match="nfkTextureOver"):
        nf.Texture.over(np.zeros((8, 15), np.uint32))


def test_an_array_keeps_its_texture(red):
    view = nf.Texture(256, 256).pixels[10:20, 10:20]
    view[...] = 7
    gc.collect()
    others = [nf.Texture(256, 256) for _ in range(20)]
    for other in others:
        other.pixels[...] = 9
    assert (view == 7).all()


def test_closing_what_an_array_looks_at(red):
    view = red.pixels[1:, 1:].view(np.uint8)
    with pytest.raises(BufferError, match="pixels"):
        red.close()
    assert view[0, 0] == 0
    del view
    red.close()
    red.close()
    for use in (lambda: red.pixels, lambda: red.width, lambda: red.clear(), lambda: red.save("x.png"), lambda: nf.sprite(red, 0, 0)):
        with pytest.raises(nf.Error):
            use()
    assert "closed" in repr(red)


def test_textures_are_freed():
    # 4 MiB each; those with a view too.
    for turn in range(300):
        texture = nf.Texture(1024, 1024)
        texture.pixels[...] = turn
        if turn == 20:
            before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 64 * 1024  # KiB


def test_a_dropped_texture_does_not_change_the_screen():
    screen = nf.Screen(16, 16)
    pixels = screen.pixels
    del screen
    other = nf.Screen(16, 16)
    gc.collect()
    pixels[...] = 5
    assert (pixels == 5).all() and (other.pixels == 0xFF000000).all() and nf.selected() is other


def test_chain_and_maps(red):
    assert red.levels == [] and red.run_map is None and red.zero_map is None
    red.make_mips(), red.make_run_map(), red.make_zero_map()
    levels = red.levels
    assert [level.shape for level in levels] == [(4, 4), (2, 2), (1, 1)] and levels[2][0, 0] == 0xFFFF0000
    assert (red.run_map[:, 0] == 4).all() and red.zero_map[0] == 0
    with pytest.raises(BufferError, match="levels"):
        red.make_mips()
    runs = red.run_map
    with pytest.raises(BufferError, match="run map"):
        red.make_run_map()
    del levels, runs
    red.pixels[0, 0] = 0
    red.make_mips(), red.make_run_map(), red.make_zero_map()
    assert red.run_map[0, 0] == -1 and red.zero_map[0] == 0x8000


def test_screens(red):
    screen = nf.Screen(50, 30)
    assert (screen.width, screen.height) == (50, 30) and nf.selected() is screen
    assert screen.z_buffer.shape == (30, 50) and screen.shahei_plane.shape == (32, 4)
    nf.sprite(red, 8, 2, shahei="plane", blend="copy")
    assert screen.shahei_plane[2, 0] == 0x00F0 and screen.shahei_plane[1, 0] == 0
    screen.z_buffer[...] = 3
    nf.sprite(red, 20, 2, shahei="z", z_ref=4)
    assert screen.pixels[2, 20] == 0xFF000000
    kept = screen.z_buffer
    with pytest.raises(BufferError, match="priorities"):
        screen.resize(70, 70)
    del kept
    screen.resize(70, 70)
    assert screen.pixels.shape == (70, 70)
    texture = screen.texture
    assert texture.width == 70
    with pytest.raises(BufferError):
        texture.close()
    with pytest.raises(BufferError, match="texture"):
        screen.close()
    pixels = texture.pixels
    del texture
    with pytest.raises(BufferError):
        screen.close()
    del pixels
    other = nf.Screen(16, 16)
    screen.select()
    assert nf.selected() is screen
    screen.close()
    assert nf.selected() is None
    with pytest.raises(nf.Error, match="frame buffer"):
        nf.sprite(red, 0, 0)
    other.select()
    nf.sprite(red, 0, 0)
    assert other.pixels[0, 0] == 0xFFFF0000


def test_sizes_are_checked():
    for size in (0, -1, 1 << 40):
        with pytest.raises(ValueError, match="width"):
            nf.Texture(size, 4)
    with pytest.raises(TypeError):
        nf.Texture(1.5, 4)
    with pytest.raises(nf.Error, match="nfkCreateScreen"):
        nf.Screen(0, 10)
    with pytest.raises(ValueError, match="width"):
        nf.Screen((1 << 32) + 16, 10)


def test_colours_are_checked(screen, red):
    for use in (screen.clear, red.set_clear):
        with pytest.raises(ValueError, match="color"):
            use(-1)
    red.set_clear(0xFFFF0000)
    assert not red.pixels.any()


def test_blocks_are_copied(red):
    other = nf.Texture(8, 8)
    other.copy(2, 3, red, 0, 0, 2, 2)
    assert (other.pixels != 0).sum() == 4 and other.pixels[3, 2] == other.pixels[4, 3] == 0xFFFF0000
