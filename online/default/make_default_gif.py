#!/usr/bin/env python3
"""Draws Default.gif, the banner the strip shows when the server's list
cannot be read: 469 by 61 pixels, the size of the strip on the full board.
Run from this folder; the result is kept in the repository."""
import struct

WIDTH, HEIGHT = 469, 61
PALETTE = [(0x0b, 0x3d, 0x1f), (0xf2, 0xe8, 0xc9), (0xc8, 0x1e, 0x1e), (0x14, 0x14, 0x14)]
FELT, INK, RED, EDGE = range(4)

# 5 by 7 letters, one string a row, "#" inked.
GLYPHS = {
    "F": ["#####", "#....", "#....", "####.", "#....", "#....", "#...."],
    "E": ["#####", "#....", "#....", "####.", "#....", "#....", "#####"],
    "L": ["#....", "#....", "#....", "#....", "#....", "#....", "#####"],
    "T": ["#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."],
    "H": ["#...#", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"],
    "A": [".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"],
    "W": ["#...#", "#...#", "#...#", "#.#.#", "#.#.#", "##.##", "#...#"],
    "K": ["#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"],
    " ": ["....."] * 7,
}


def draw():
    pixels = [[FELT] * WIDTH for _ in range(HEIGHT)]
    for x in range(WIDTH):
        for y in (0, 1, HEIGHT - 2, HEIGHT - 1):
            pixels[y][x] = EDGE
    for y in range(HEIGHT):
        for x in (0, 1, WIDTH - 2, WIDTH - 1):
            pixels[y][x] = EDGE
    text, scale = "FELTHAWK", 6
    left = (WIDTH - (len(text) * 6 - 1) * scale) // 2
    top = (HEIGHT - 7 * scale) // 2
    for i, letter in enumerate(text):
        for row, line in enumerate(GLYPHS[letter]):
            for col, mark in enumerate(line):
                if mark != "#":
                    continue
                colour = RED if letter in "HAWK" else INK
                for dy in range(scale):
                    for dx in range(scale):
                        pixels[top + row * scale + dy][left + (i * 6 + col) * scale + dx] = colour
    return pixels


def lzw_literal(indices):
    """Codes of width 9 only: every pixel a literal, a clear code before the
    table would grow past 9 bits. Larger than real LZW, but any reader takes it."""
    clear, end = 256, 257
    codes = [clear]
    for n, index in enumerate(indices):
        if n and n % 254 == 0:
            codes.append(clear)
        codes.append(index)
    codes.append(end)
    out, bits, nbits = bytearray(), 0, 0
    for code in codes:
        bits |= code << nbits
        nbits += 9
        while nbits >= 8:
            out.append(bits & 0xFF)
            bits >>= 8
            nbits -= 8
    if nbits:
        out.append(bits & 0xFF)
    return bytes(out)


def gif(pixels):
    palette = PALETTE + [(0, 0, 0)] * (256 - len(PALETTE))
    data = b"GIF89a" + struct.pack("<HHBBB", WIDTH, HEIGHT, 0xF7, 0, 0)
    data += b"".join(bytes(colour) for colour in palette)
    data += b"," + struct.pack("<HHHHB", 0, 0, WIDTH, HEIGHT, 0) + bytes([8])
    stream = lzw_literal([index for row in pixels for index in row])
    for start in range(0, len(stream), 255):
        block = stream[start:start + 255]
        data += bytes([len(block)]) + block
    return data + b"\x00;"


if __name__ == "__main__":
    with open("Default.gif", "wb") as out:
        out.write(gif(draw()))
