"""Picture files, pictures in notebooks, text."""
import ninefold as nf
import numpy as np
import pytest


def test_saved_pictures_come_back(tmp_path, screen):
    texture = nf.Texture.from_array(np.random.default_rng(4).integers(0, 256, (7, 5, 4), np.uint8) | 1)
    texture.save(tmp_path / "picture.png")
    assert (nf.load(tmp_path / "picture.png").pixels == texture.pixels).all()
    assert (nf.load(texture._repr_png_()).pixels == texture.pixels).all()
    assert (nf.load((tmp_path / "picture.png").read_bytes()).rgba == texture.rgba).all()
    nf.sprite(texture, 3, 3, blend="alpha")
    screen.save(str(tmp_path / "screen.png"))
    for again in (nf.load(tmp_path / "screen.png"), nf.load(screen._repr_png_()), nf.load(screen.texture._repr_png_())):
        assert (again.width, again.height) == (64, 48) and (again.rgba[..., :3] == screen.rgba[..., :3]).all()
        assert (again.rgba[..., 3] == 255).all()


def test_extras(tmp_path):
    nf.Texture.from_array(np.full((6, 6), 0xFF00FF00)).save(tmp_path / "green.png")
    texture = nf.load(tmp_path / "green.png", extras="edge+mip")
    assert len(texture.levels) == 4 and (texture.padded == 0xFF00FF00).all() and texture.run_map is None
    assert nf.load(tmp_path / "green.png", extras=nf.PictureExtra.RUN_MAP).run_map is not None
    with pytest.raises(ValueError, match="extra 'shiny' is none; there are edge, mip"):
        nf.load(tmp_path / "green.png", extras="shiny")


def test_files_that_are_none(tmp_path, screen):
    with pytest.raises(nf.Error, match="absent.png"):
        nf.load(tmp_path / "absent.png")
    with pytest.raises(nf.Error, match="a note"):
        nf.load(b"no picture", name="a note")
    with pytest.raises(nf.Error, match="nowhere"):
        screen.save(tmp_path / "nowhere" / "x.png")
    with pytest.raises(ValueError, match="NUL"):
        nf.load("a\0b")


def test_text(screen):
    font = nf.Font("DejaVu Sans", 14)
    info = font.info
    assert info.file and info.ascent > 0 and info.line_height >= info.ascent
    text = nf.Text(font, "Ninefold äöü", width=60, align="centre")
    size, lines = text.size, text.lines
    assert size.missing == 0 and size.lines == len(lines) == 2 and lines[0].begin == 0 and lines[1].end == 15
    assert text.caret(0)[0] < text.caret(8)[0]
    text.draw(2, 3)
    changed = np.argwhere(screen.pixels != 0xFF000000)
    x, y, width, height = size.ink
    assert len(changed) and (changed.min(0) >= [3 + y, 2 + x]).all() and (changed.max(0) < [3 + y + height, 2 + x + width]).all()
    screen.clear()
    text.draw(2, 3, characters=0)
    assert (screen.pixels == 0xFF000000).all()
    font.close()
    text.draw(2, 3)
    assert (screen.pixels != 0xFF000000).sum() == len(changed)
    for wrong in (lambda: font.info, lambda: nf.Font("DejaVu Sans", 0), lambda: nf.Text(font, "x"), lambda: text.draw(0, 0, 256)):
        with pytest.raises(nf.Error):
            wrong()
    with pytest.raises(ValueError, match="align 'middle' is none; there are start, left, centre, right"):
        nf.Text(nf.Font(), "x", align="middle")
    with pytest.raises(ValueError, match="NUL"):
        nf.Text(nf.Font(), "x\0")


def test_written_text_has_colour_and_rim(screen):
    nf.Font("DejaVu Sans", 30).write("I", 10, 5, color=0xFF00FF00, rim=2, rim_color=0xFFFF0000)
    colors = set(np.unique(screen.pixels & 0xFFFFFF))
    assert {0x00FF00, 0xFF0000, 0} <= colors
