#!/usr/bin/env python3
"""Draws Traywell's icon (a terminal prompt on a blue tile) into an .ico file.

    scripts/draw-icon.py app/res/traywell.ico

Writes 16, 24, 32, 48 and 256 pixel images, 32-bit with alpha, antialiased by
supersampling. Uses only the standard library, so the icon can be redrawn on
any machine; the result is committed, and the build does not run this.
"""
import math
import struct
import sys
import zlib

SIZES = (16, 24, 32, 48, 256)
SAMPLES = 6  # per axis and pixel

TOP = (52, 120, 204)
BOTTOM = (22, 62, 128)
EDGE = (12, 36, 80)
PROMPT = (255, 255, 255)
CURSOR = (255, 188, 56)


def rounded_box_distance(x, y, half, radius):
    """Signed distance from (x, y) to a rounded square centred on 0.5, 0.5."""
    qx = abs(x - 0.5) - (half - radius)
    qy = abs(y - 0.5) - (half - radius)
    outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
    return outside + min(max(qx, qy), 0.0) - radius


def segment_distance(x, y, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    t = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy)))
    return math.hypot(x - ax - t * dx, y - ay - t * dy)


def shade(x, y, size):
    """The colour (r, g, b, a) at a point of the unit square."""
    # Small sizes get a thicker prompt and a tile that fills the square, so
    # the strokes stay whole pixels wide.
    small = size <= 24
    half = 0.5 if small else 0.47
    stroke = 0.075 if small else 0.06
    box = rounded_box_distance(x, y, half, 0.18)
    if box > 0:
        return (0, 0, 0, 0)
    chevron = min(segment_distance(x, y, 0.24, 0.28, 0.47, 0.50),
                  segment_distance(x, y, 0.47, 0.50, 0.24, 0.72))
    if chevron < stroke:
        return PROMPT + (255,)
    if segment_distance(x, y, 0.54, 0.70, 0.78, 0.70) < stroke:
        return CURSOR + (255,)
    edge = 1.2 / size if not small else 0.0
    if box > -edge:
        return EDGE + (255,)
    t = y
    return tuple(round(TOP[i] * (1 - t) + BOTTOM[i] * t) for i in range(3)) + (255,)


def render(size):
    """Rows of (r, g, b, a), top row first, premultiplied averaging of samples."""
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            acc = [0.0, 0.0, 0.0, 0.0]
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    x = (px + (sx + 0.5) / SAMPLES) / size
                    y = (py + (sy + 0.5) / SAMPLES) / size
                    r, g, b, a = shade(x, y, size)
                    acc[0] += r * a
                    acc[1] += g * a
                    acc[2] += b * a
                    acc[3] += a
            n = SAMPLES * SAMPLES
            alpha = acc[3] / n
            if alpha == 0:
                row.append((0, 0, 0, 0))
            else:
                row.append(tuple(round(acc[i] / acc[3]) for i in range(3)) + (round(alpha),))
        rows.append(row)
    return rows


def dib(rows):
    """A 32-bit icon image: BITMAPINFOHEADER, BGRA rows bottom-up, AND mask."""
    size = len(rows)
    header = struct.pack('<IiiHHIIiiII', 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b''.join(bytes((b, g, r, a)) for row in reversed(rows) for (r, g, b, a) in row)
    mask_stride = ((size + 31) // 32) * 4
    mask = bytearray()
    for row in reversed(rows):
        bits = bytearray(mask_stride)
        for x, (_, _, _, a) in enumerate(row):
            if a == 0:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bits
    return header + pixels + bytes(mask)


def png(rows):
    size = len(rows)
    raw = b''.join(b'\0' + b''.join(bytes(p) for p in row) for row in rows)

    def chunk(kind, data):
        return (struct.pack('>I', len(data)) + kind + data
                + struct.pack('>I', zlib.crc32(kind + data) & 0xffffffff))

    return (b'\x89PNG\r\n\x1a\n'
            + chunk(b'IHDR', struct.pack('>IIBBBBB', size, size, 8, 6, 0, 0, 0))
            + chunk(b'IDAT', zlib.compress(raw, 9))
            + chunk(b'IEND', b''))


def main():
    if len(sys.argv) != 2:
        sys.exit('usage: draw-icon.py OUTPUT.ico')
    images = [png(render(s)) if s == 256 else dib(render(s)) for s in SIZES]
    out = struct.pack('<HHH', 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for size, image in zip(SIZES, images):
        out += struct.pack('<BBBBHHII', size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    out += b''.join(images)
    with open(sys.argv[1], 'wb') as f:
        f.write(out)


if __name__ == '__main__':
    main()
