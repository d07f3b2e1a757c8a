"""Reads the project files that a killed program or a power cut left."""

import os
import re
import struct

MAGIC = 90210


def pages_in(path):
    """The pages of a project file as pairs of the image's bytes and the labels' positions. None when a
    field is missing."""
    with open(path, "rb") as file:
        data = file.read()
    position = 8

    def number():
        nonlocal position
        position += 4
        return struct.unpack_from("<i", data, position - 4)[0]

    def field():
        nonlocal position
        length = number()
        position += length
        if length < 0 or position > len(data):
            raise ValueError
        return data[position - length:position]

    try:
        if data[:4] != struct.pack("<i", MAGIC):
            return None
        for _ in range(3):
            field()
        pages = []
        for _ in range(number()):
            field()
            image, items = field(), field()
            labels = re.findall(rb"<Position>(.*?),(.*?)</Position>", items)
            pages.append((image, [(float(x), float(y)) for x, y in labels]))
        return pages if position == len(data) else None
    except (struct.error, ValueError):
        return None


def images_of(document, photograph):
    """The images that a document may contain later: its own, and the encoded photograph."""
    with open(photograph + ".png", "rb") as file:
        return {file.read()} | {image for image, _ in pages_in(document)}


def whole_projects(document, home):
    """The pages of each complete file: the document, its backups and recovered work."""
    paths = [document] if os.path.exists(document) else []
    for name in ("recovery", "backup"):
        folder = os.path.join(home, ".quillet", name)
        if os.path.isdir(folder):
            paths += [os.path.join(folder, file) for file in sorted(os.listdir(folder))
                      if file.endswith(".quillet")]
    return [pages for pages in map(pages_in, paths) if pages is not None]
