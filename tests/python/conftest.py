import pathlib

import ninefold as nf
import pytest

root = pathlib.Path(__file__).resolve().parents[2]


@pytest.fixture
def screen():
    """A screen of 64 x 48, selected."""
    with nf.Screen(64, 48) as made:
        yield made


@pytest.fixture
def red():
    """A texture of 4 x 4 opaque red pixels."""
    made = nf.Texture(4, 4)
    made.pixels[...] = 0xFFFF0000
    return made
