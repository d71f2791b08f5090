#!/usr/bin/env python3
"""Draws the module's three icons (16 and 32 pixels, 32-bit colour) and writes
them as .ico files beside this script. Run it again after changing a drawing;
the .ico files are committed so that the build needs no Python."""
import os
import struct


def terminal(x, y, n):
    # A dark screen in a grey frame with a green prompt line.
    if x == 0 or y == 0 or x == n - 1 or y == n - 1:
        return (96, 96, 96, 255)
    if y >= n - 3:
        return (160, 160, 160, 255)
    row = n // 4
    if y == row and n // 8 <= x < n // 8 + n // 3:
        return (64, 224, 64, 255)
    if y == row * 2 and n // 8 <= x < n // 8 + n // 5:
        return (64, 224, 64, 255)
    return (16, 24, 16, 255)


def filemanager(x, y, n):
    # A yellow folder with a tab.
    tab = n // 5
    if y < tab // 2 + 1:
        return (0, 0, 0, 0)
    if y < tab + 1:
        return (200, 150, 30, 255) if x < n // 2 else (0, 0, 0, 0)
    if y == tab + 1 or y == n - 1 or x == 0 or x == n - 1:
        return (150, 100, 20, 255)
    return (250, 205, 70, 255)


def scriptprocessor(x, y, n):
    # A white page with blue lines and a folded corner.
    fold = n // 4
    margin = n // 8
    if x < margin or x >= n - margin:
        return (0, 0, 0, 0)
    if x >= n - margin - fold and y < fold and (x - (n - margin - fold)) > y:
        return (0, 0, 0, 0)
    if x == margin or x == n - margin - 1 or y == 0 or y == n - 1:
        return (70, 70, 70, 255)
    if y % 3 == 0 and y > fold and margin + 2 <= x < n - margin - 2:
        return (40, 80, 200, 255)
    return (255, 255, 255, 255)


def image(draw, n):
    """One icon image: BITMAPINFOHEADER, BGRA rows bottom-up, AND mask."""
    header = struct.pack("<IiiHHIIiiII", 40, n, 2 * n, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    for y in range(n - 1, -1, -1):
        for x in range(n):
            r, g, b, a = draw(x, y, n)
            pixels += bytes((b, g, r, a))
    stride = ((n + 31) // 32) * 4
    mask = bytearray()
    for y in range(n - 1, -1, -1):
        row = bytearray(stride)
        for x in range(n):
            if draw(x, y, n)[3] == 0:
                row[x // 8] |= 0x80 >> (x % 8)
        mask += row
    return header + bytes(pixels) + bytes(mask)


def icon(draw):
    sizes = (16, 32)
    images = [image(draw, n) for n in sizes]
    out = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for n, data in zip(sizes, images):
        out += struct.pack("<BBBBHHII", n, n, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return out + b"".join(images)


here = os.path.dirname(os.path.abspath(__file__))
for name, draw in (("Terminal", terminal), ("FileManager", filemanager),
                   ("ScriptProcessor", scriptprocessor)):
    with open(os.path.join(here, name + ".ico"), "wb") as f:
        f.write(icon(draw))
