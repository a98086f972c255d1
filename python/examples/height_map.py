#!/usr/bin/env python3
"""Renders a height map of a mesh with numpy and exports it: height_map.py MESH OUT.tif [PIXELS]

A point's height is its y, brought to 0.1 for the lowest and 1 for the highest point of the mesh.
Tiles are side by side on the map as in UV space, v upward, each PIXELS wide and high (256). Needs
numpy and tifffile.
"""

import sys
from pathlib import Path

import numpy as np
import tifffile

import quillon

VERTICES, FACES, FACE_UVS = 10001, 20001, 25001


def chunks(path):
    """The elements of a Vemo file's chunks, as bytes, by the chunk's id."""
    data, start, found = path.read_bytes(), 32, {}
    while True:
        number, length = np.frombuffer(data, "<u4", 2, start)
        if length == 0:
            return found
        found[number] = data[start + 16 : start + length]
        start += length


class Mesh:
    def __init__(self, path):
        parts = chunks(Path(path))
        height = np.frombuffer(parts[VERTICES], "<f4").reshape(-1, 3)[:, 1]
        self.height = 0.1 + 0.9 * (height - height.min()) / max(np.ptp(height), 1e-9)
        self.faces = np.frombuffer(parts[FACES], "<i4").reshape(-1, 4)
        self.uvs = np.frombuffer(parts[FACE_UVS], "<f4").reshape(-1, 4, 2)

    def triangles(self):
        """The UVs and heights of corners, for each triangle; a quad is two of them."""
        for corners, uvs in zip(self.faces, self.uvs):
            for these in ((0, 1, 2), (0, 2, 3))[: 1 if corners[3] < 0 else 2]:
                yield uvs[list(these)], self.height[corners[list(these)]]


def paint(cell, uvs, heights):
    """Paints a triangle on a tile's square of pixels, whose first row is the bottom one."""
    size = len(cell)
    a, b, c = uvs.astype(float) * size - 0.5  # pixel centres have whole numbers
    low = np.maximum(np.ceil(np.min((a, b, c), axis=0)), 0).astype(int)
    high = np.minimum(np.floor(np.max((a, b, c), axis=0)), size - 1).astype(int)
    area = np.cross(b - a, c - a)
    if area == 0 or (high < low).any():
        return
    x, y = np.meshgrid(*(np.arange(first, last + 1) for first, last in zip(low, high)))
    points = np.stack((x, y), axis=-1)
    second = np.cross(points - a, c - a) / area
    third = np.cross(b - a, points - a) / area
    inside = (second >= 0) & (third >= 0) & (second + third <= 1)
    values = heights @ np.stack((1 - second - third, second, third)).reshape(3, -1)
    cell[y[inside], x[inside]] = values.reshape(x.shape)[inside]


class Renderer:
    """Makes a map of all tiles' size with one tile on it, at the tile's place."""

    def __init__(self, mesh, size):
        corners = np.floor(Mesh(mesh).uvs[:, 0]).astype(int)  # a face's tile is its first corner's
        self.first = corners.min(axis=0)
        self.columns, self.rows = corners.max(axis=0) - self.first + 1
        self.size = size

    def __call__(self, tile, out):
        column, row = self.place(tile.stem[len("tile") :])
        sheet = np.zeros((self.rows * self.size, self.columns * self.size), np.float32)
        cell = sheet[row * self.size :, column * self.size :][: self.size, : self.size]
        for uvs, heights in Mesh(tile).triangles():
            if (uvs >= 0).all():  # corners of other tiles' faces are at -1, -1
                paint(cell, uvs, heights)
        sheet = sheet[::-1].copy()
        sheet[0, 0] = 0  # the colour of the background, which the merge takes from here
        tifffile.imwrite(
            out, sheet, photometric="minisblack", rowsperstrip=len(sheet), metadata=None
        )

    def place(self, name):
        """Column and row of a tile by its name in naming mode 0, such as _u0_v0."""
        column, row = (int(number) for number in name[2:].split("_v"))
        return column - self.first[0], row - self.first[1]


def main(mesh, out, size=256):
    made = quillon.export_maps(mesh, Renderer(mesh, int(size)), out, naming=0)
    pixels = tifffile.imread(made.path)
    painted = pixels[pixels > 0]
    height, width = pixels.shape
    print(f"{made.path}: {width} x {height} pixels, {len(made.tiles)} tiles")
    print(f"painted {painted.size / pixels.size:.1%}, {painted.min():.3f} to {painted.max():.3f}")
    print(f"displacement scale {made.scale:g}")


if __name__ == "__main__":
    main(*sys.argv[1:])
