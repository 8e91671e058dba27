#!/usr/bin/python3
"""make-images.py: draws the Windows program's pictures from the shapes in this file, so that
every image the build ships is made from a source in the repository.

Usage: make-images.py OUT_DIR
Writes OrvexSentry.ico (16 to 256 pixels) and OrvexSentry.png, the same icon at 256 pixels
for a person to look at.
"""
import sys
from pathlib import Path

from PIL import Image, ImageDraw

ICON_SIZES = [16, 24, 32, 48, 64, 128, 256]
SCALE = 4  # drawn this many times larger, then reduced, for smooth edges

NAVY = (18, 52, 102, 255)
BLUE_TOP = (58, 132, 214)
BLUE_BOTTOM = (22, 78, 160)
WHITE = (255, 255, 255, 255)


def shield_outline(size):
    """The shield's corners: a flat top with rounded shoulders that narrows to a point."""
    s = size / 256
    points = [(128, 14), (222, 44), (218, 132), (196, 184), (160, 222), (128, 244),
              (96, 222), (60, 184), (38, 132), (34, 44)]
    return [(x * s, y * s) for x, y in points]


def vertical_gradient(size, top, bottom):
    gradient = Image.new("RGBA", (size, size))
    draw = ImageDraw.Draw(gradient)
    for y in range(size):
        t = y / (size - 1)
        colour = tuple(round(a + (b - a) * t) for a, b in zip(top, bottom))
        draw.line([(0, y), (size, y)], fill=colour + (255,))
    return gradient


def icon(size):
    """The shield in blue with a white check mark, at `size` pixels."""
    big = size * SCALE
    mask = Image.new("L", (big, big), 0)
    ImageDraw.Draw(mask).polygon(shield_outline(big), fill=255)
    picture = Image.new("RGBA", (big, big), (0, 0, 0, 0))
    picture.paste(vertical_gradient(big, BLUE_TOP, BLUE_BOTTOM), (0, 0), mask)

    draw = ImageDraw.Draw(picture)
    draw.line(shield_outline(big) + [shield_outline(big)[0]], fill=NAVY,
              width=max(SCALE, big // 40), joint="curve")
    s = big / 256
    check = [(78 * s, 132 * s), (114 * s, 168 * s), (180 * s, 90 * s)]
    draw.line(check, fill=WHITE, width=round(26 * s), joint="curve")
    return picture.resize((size, size), Image.LANCZOS)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    out = Path(sys.argv[1])
    out.mkdir(parents=True, exist_ok=True)
    largest = icon(ICON_SIZES[-1])
    largest.save(out / "OrvexSentry.png")
    # Each size drawn on its own: a reduction of the largest would blur the small ones.
    frames = [icon(size) for size in ICON_SIZES]
    frames[-1].save(out / "OrvexSentry.ico", sizes=[(s, s) for s in ICON_SIZES],
                    append_images=frames[:-1])


if __name__ == "__main__":
    main()
