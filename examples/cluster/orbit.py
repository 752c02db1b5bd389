"""A film for frames.py: discs on their orbits over a picture that turns, without any file."""
import math

import ninefold as nf
import numpy as np

_kept = {}


def textures():
    """Made once for a worker, always the same."""
    if not _kept:
        y, x = np.mgrid[0:256, 0:256]
        weave = np.stack([x ^ y, (x * 3) & 255, (y * 5) & 255, np.full_like(x, 255)], axis=-1).astype(np.uint8)
        _kept["weave"] = nf.Texture.from_array(weave)
        y, x = np.mgrid[-32:32, -32:32]
        soft = np.clip((32 - np.hypot(x + 0.5, y + 0.5)) * 40, 0, 255)
        _kept["disc"] = nf.Texture.from_array(np.stack([255 - (x + 32) * 2, 255 - (y + 32) * 2, soft * 0 + 255, soft], axis=-1).astype(np.uint8))
    return _kept["weave"], _kept["disc"]


def draw(screen, number, folder):
    weave, disc = textures()
    middle = screen.width / 2, screen.height / 2
    scale = 1.5 * max(screen.width, screen.height) / 256
    nf.turned(weave, *middle, angle=number * 0.5, scale=scale, pivot=(128, 128), filter="bilinear", blend="copy")
    angles = np.arange(60) * (math.tau / 60) + number * 0.02
    reach = 0.42 + 0.05 * np.sin(angles * 5)
    places = np.stack([middle[0] + np.cos(angles) * reach * screen.width, middle[1] + np.sin(angles) * reach * screen.height], axis=-1)
    nf.draw_many(disc, np.round(places).astype(np.int32) - 32)
