"""Draws against the kernels called by hand, options, operators, and what is refused."""
import gc
import timeit

import ninefold as nf
import numpy as np
import pytest


@pytest.fixture
def picture():
    generator = np.random.default_rng(1)
    return nf.Texture.from_array(generator.integers(0, 1 << 32, (16, 16), np.uint32))


def drawn(screen, draw, color=0xFF336699):
    screen.clear(color)
    draw()
    return screen.pixels.copy()


def test_a_stretch_is_its_kernel(screen, picture):
    def by_hand():
        state = nf.state
        state.tex0 = picture
        for i, (x, y, u, v) in enumerate([(3, 4, 2, 1), (43, 35, 14, 15)]):
            state.vertex[i].x, state.vertex[i].y = x, y
            state.uv0[i].u, state.uv0[i].v = u << 16, v << 16
        nf.Kernel("rect.stretch.bilinear.alpha")()
        state.tex0 = None

    expected = drawn(screen, by_hand)
    assert len(np.unique(expected)) > 500
    assert (drawn(screen, lambda: nf.stretch(picture, (3, 4, 40, 31), (2, 1, 12, 14), filter="bilinear", blend="alpha")) == expected).all()


def test_many_are_the_same_as_one_by_one(screen, picture):
    generator = np.random.default_rng(2)
    positions = generator.integers(-10, 60, (50, 2))
    sources = np.stack([*generator.integers(0, 8, (2, 50)), *generator.integers(1, 9, (2, 50))], axis=1)
    rows = np.concatenate([positions, generator.integers(-20, 20, (50, 2))], axis=1)
    for blend in ("alphafast", "add"):
        assert (drawn(screen, lambda: nf.draw_many(picture, positions, sources, blend=blend)) ==
                drawn(screen, lambda: [nf.sprite(picture, x, y, source, blend=blend) for (x, y), source in zip(positions, sources)])).all()
        assert (drawn(screen, lambda: nf.draw_many(picture, rows, blend=blend)) ==
                drawn(screen, lambda: [nf.stretch(picture, row, blend=blend) for row in rows])).all()
    half = drawn(screen, lambda: nf.draw_many(picture, positions, colors=np.full(50, 0x80FFFFFF)))
    assert (half != drawn(screen, lambda: nf.draw_many(picture, positions))).any()
    colors = generator.integers(0, 1 << 32, 50)
    assert (drawn(screen, lambda: nf.draw_rectangles(rows, colors)) ==
            drawn(screen, lambda: [nf.rectangle(row, color) for row, color in zip(rows, colors)])).all()
    assert (drawn(screen, lambda: nf.draw_lines(rows, colors)) ==
            drawn(screen, lambda: [nf.line(*row, color) for row, color in zip(rows, colors)])).all()


def test_arrays_of_the_wrong_kind(screen, picture):
    for places, error in ((np.zeros((4, 3), int), ValueError), (np.zeros((4, 2)), TypeError), ([[1 << 40, 0]], ValueError), ([1, 2], ValueError)):
        with pytest.raises(error, match="places"):
            nf.draw_many(picture, places)
    with pytest.raises(ValueError, match="2 sources for 3 draws"):
        nf.draw_many(picture, np.zeros((3, 2), int), np.zeros((2, 4), int))
    with pytest.raises(nf.Error, match="position 1"):
        nf.draw_many(picture, [[0, 0], [1 << 30, 0]])
    nf.draw_many(picture, np.zeros((0, 2), int))


def test_shapes(screen, picture):
    pixels = drawn(screen, lambda: nf.line(2, 3, 7, 3, 0xFFFFFFFF))
    assert (np.argwhere(pixels == 0xFFFFFFFF) == [[3, x] for x in range(2, 7)]).all()
    pixels = drawn(screen, lambda: nf.rectangle((2, 3, 4, 5), 0xFFFFFFFF))
    assert (pixels == 0xFFFFFFFF).sum() == 20 and pixels[3, 2] == pixels[7, 5] == 0xFFFFFFFF
    pixels = drawn(screen, lambda: nf.gradient((0, 0, 64, 48), [0xFF000000, 0xFFFF0000, 0xFF000000, 0xFFFF0000], blend="copy"))
    red = pixels[10] >> 16 & 255
    assert red[0] < 8 and red[63] > 240 and (np.diff(red.astype(int)) >= 0).all()
    assert (drawn(screen, lambda: nf.turned(picture, 20, 20, 0, pivot=(0, 0), blend="copy"))[20:36, 20:36] ==
            np.where(picture.pixels == 0, 0xFF336699, picture.pixels)).all()
    corners = [[0, 0], [16, 0], [16, 16], [0, 16]]
    pixels = drawn(screen, lambda: nf.mesh(picture, corners, np.array(corners, float), indices=[[0, 1, 2], [0, 2, 3]], blend="copy"))
    assert (pixels[:16, :16] == picture.pixels).mean() > 0.9 and (pixels[17:] == 0xFF336699).all()
    pixels = drawn(screen, lambda: nf.mesh(None, [[0, 0], [40, 0], [0, 40]], colors=[0xFFFFFFFF] * 3, blend="copy"))
    assert (pixels != 0xFF336699).sum() == pytest.approx(800, rel=0.1)
    for wrong in (lambda: nf.mesh(None, [[0, 0]], [[1e9, 0]]), lambda: nf.mesh(None, [[0, 0, 0, 0]]), lambda: nf.gradient((0, 0, 1, 1), [1])):
        with pytest.raises(ValueError):
            wrong()
    with pytest.raises(nf.Error, match="nfkMesh"):
        nf.mesh(None, [[0, 0], [1, 0], [0, 1]], indices=[0, 1, 7])


def test_a_transition(screen, red):
    rule = nf.Texture(4, 4)
    rule.pixels[...] = np.array([0, 80, 160, 240], np.uint32) + 0xFF000000
    counts = [(drawn(screen, lambda: nf.transition(red, rule, t, target=(0, 0, 64, 48), blend="copy")) == 0xFFFF0000).mean()
              for t in (0, 0.3, 0.6, 1)]
    assert counts[0] == 0 and counts[-1] == 1 and counts == sorted(counts) and 0 < counts[1] < counts[2] < 1


def test_modes_nest_and_end(screen, red):
    def color(**options):
        return drawn(screen, lambda: nf.sprite(red, 0, 0, **options), 0xFF0000FF)[0, 0] & 0xFFFFFF

    assert color() == 0xFF0000
    twice = nf.modes(blend="add")
    with twice:
        both = color()
        assert both & 0xFF and both >> 16
        with nf.modes(stipple="nothing", shahei="mask"):
            assert color() == 0x0000FF
            assert color(shahei="none") == both
        with twice, pytest.raises(ZeroDivisionError), nf.modes(blend=nf.Blend.COPY):
            assert color() == 0xFF0000
            1 / 0
        assert color() == both
        assert color(blend="COPY") == 0xFF0000
    assert color() == 0xFF0000


def test_words_that_are_none():
    with pytest.raises(ValueError, match="blend 'alfa' is none; there are copy, alpha, .*xor"):
        nf.modes(blend="alfa")
    with pytest.raises(TypeError, match="no option blent"):
        nf.modes(blent="alpha")
    with pytest.raises(TypeError, match="z_ref"):
        nf.modes(z_ref=1.5)
    with pytest.raises(ValueError, match="z_ref"):
        nf.modes(z_ref=-1)
    assert "bilinear" not in nf.modes.__doc__.split("\n\n")[-1] and "write_mask:" in nf.modes.__doc__


def test_what_the_kit_refuses(screen, red):
    with pytest.raises(nf.Error, match="there is no kernel.*nfkExplainCode"):
        nf.sprite(red, 0, 0, blend="copy", shahei="z")
    with pytest.raises(nf.Error, match="zRef 300"):
        nf.sprite(red, 0, 0, z_ref=300)
    with pytest.raises(nf.Error, match="mip chain"):
        nf.stretch(red, (0, 0, 8, 8), filter="mip")
    for x in (1 << 29, -(1 << 40)):
        with pytest.raises(ValueError, match="2\\^29"):
            nf.sprite(red, x, 0)
        with pytest.raises(ValueError, match="2\\^29"):
            nf.stretch(red, (0, x, 8, 8))
    for wrong in (lambda: nf.sprite(red, 1.5, 0), lambda: nf.line(0, 0, 2.5, 0, 0), lambda: nf.rectangle((0, 0, 1, 1), "red")):
        with pytest.raises(TypeError):
            wrong()
    with pytest.raises(ValueError, match="x, y, width, height"):
        nf.stretch(red, (1, 2, 3))
    with pytest.raises(ValueError, match="color"):
        nf.rectangle((0, 0, 1, 1), 1 << 32)
    nf.sprite(red, np.int16(3), np.uint8(4), tuple(np.array([0, 0, 2, 2])))
    assert screen.pixels[4, 3] == 0xFFFF0000


def test_operators(screen, picture):
    expected = drawn(screen, lambda: nf.sprite(picture, 1, 2, blend="xor"))
    assert (drawn(screen, lambda: nf.sprite(picture, 1, 2, blend=lambda old, new: old ^ new)) == expected).all()
    assert (expected[2:18, 1:17] == np.where(picture.pixels == 0, 0, picture.pixels) ^ 0xFF336699).all()
    expected = drawn(screen, lambda: nf.sprite(picture, 1, 2, multi="colour", multi_op="xor", color=0x00FFFFFF, blend="copy"))
    own = dict(multi="colour", multi_op=lambda first, second: first ^ (second & 0xFFFFFF), color=0x00FFFFFF, blend="copy")
    assert (drawn(screen, lambda: nf.sprite(picture, 1, 2, **own)) == expected).all()
    assert not nf.state.multiFunc
    # With nobody else who keeps the function.
    with nf.modes(blend=lambda old, new: 0xFF123456):
        gc.collect()
        assert drawn(screen, lambda: nf.sprite(picture, 0, 0))[0, 0] == 0xFF123456


def test_what_an_operator_raises(screen, red):
    calls = []

    def operator(old, new):
        calls.append(new)
        if len(calls) == 3:
            raise KeyError("third")
        return new

    with pytest.raises(KeyError, match="third"):
        nf.sprite(red, 0, 0, blend=operator)
    assert len(calls) == 3 and (screen.pixels == 0xFFFF0000).sum() == 2
    nf.sprite(red, 0, 0)
    with pytest.raises(TypeError, match="operator's result"):
        nf.sprite(red, 0, 0, blend=lambda old, new: 1.5)
    with pytest.raises(TypeError):
        nf.Operator("alpha")


def test_options_and_state_hold_textures(screen, red):
    second = nf.Texture(4, 4)
    second.pixels[...] = 0xFF00FF00
    with nf.modes(multi="tex1", tex1=second, multi_op="second", blend="copy"):
        with pytest.raises(BufferError, match="option tex1"):
            second.close()
        second = None
        gc.collect()
        assert drawn(screen, lambda: nf.sprite(red, 0, 0))[0, 0] == 0xFF00FF00
    nf.state.tex2 = red
    with pytest.raises(BufferError, match="state.tex2"):
        red.close()
    nf.state.tex2 = None
    red.close()


def test_the_state(screen):
    nf.state.originX = 5
    nf.rectangle((0, 0, 2, 2), 0xFFFFFFFF)
    nf.state.originX = 0
    assert screen.pixels[0, 4] == 0xFF000000 and screen.pixels[0, 5] == 0xFFFFFFFF
    nf.state.color = (1, 2, 3, 4)
    assert list(nf.state.color) == [1, 2, 3, 4] and "zRef" in dir(nf.state)
    nf.state.scanShift = np.zeros(48, np.int32)
    assert nf.state.scanShift
    nf.state.scanShift = None
    for name, value, error in (("originX", 1 << 31, ValueError), ("zRef", -1, ValueError), ("tex0", 1.5, TypeError),
                               ("scanShift", np.zeros(4), TypeError), ("dstPixels", 0, AttributeError), ("nothing", 0, AttributeError)):
        with pytest.raises(error):
            setattr(nf.state, name, value)


def test_what_a_draw_costs(screen):
    """Of sprites of one pixel, the kernel's share included. Budgets are 3 us for a draw and 100 ns for one of many where an empty
    call of Python's takes 30 ns; a machine that is busy is slow at both, so they are counted in such calls."""
    dot = nf.Texture(1, 1)
    dot.pixels[...] = 0xFFFFFFFF
    places = np.random.default_rng(3).integers(0, 48, (2000, 2))
    jobs = {"empty": (lambda: None, 1000, 1), "one": (lambda: nf.sprite(dot, 3, 4), 200, 1),
            "option": (lambda: nf.sprite(dot, 3, 4, blend="add"), 200, 1), "many": (lambda: nf.draw_many(dot, places), 4, 2000)}
    best = dict.fromkeys(jobs, float("inf"))
    for _ in range(60):
        for name, (job, number, draws) in jobs.items():
            best[name] = min(best[name], timeit.timeit(job, number=number) / number / draws)
    print(", ".join(f"{name} {seconds * 1e9:.0f} ns" for name, seconds in best.items()))
    assert best["one"] < 100 * best["empty"]
    assert best["option"] < 100 * best["empty"]
    assert best["many"] < 100 / 30 * best["empty"]
