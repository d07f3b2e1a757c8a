#!/usr/bin/env python3
"""Unpacks a project file (.quillet) into a folder.

Usage: unpack_project.py FILE FOLDER

FOLDER, which is made if need be, gets header.json (label size, colour, header lines, page count)
and for each page, numbered from 1, page_0001.json (name and labels) and page_0001.png (its picture,
as it is in the file; left out when there is none). Written from docs/file-formats.md; needs nothing
but Python's standard library.
"""

import json
import pathlib
import struct
import sys
import xml.etree.ElementTree

MAGIC = 90210


class ProjectError(Exception):
    """A defect of the file."""


class Reader:
    """Takes the fields of a project file one after the other."""

    def __init__(self, content):
        self.content = content
        self.position = 0

    def integer(self):
        if self.position + 4 > len(self.content):
            raise ProjectError("The file ends within an integer.")
        (value,) = struct.unpack_from("<i", self.content, self.position)
        self.position += 4
        return value

    def blob(self):
        length = self.integer()
        if length < 0:
            raise ProjectError("Invalid file.")
        content = self.content[self.position:self.position + length]
        self.position += length
        return content

    def text(self):
        return self.blob().split(b"\0", 1)[0].decode("latin-1")


def to_integer(text):
    try:
        return int(text)
    except ValueError:
        return 0


def to_number(text):
    try:
        return float(text)
    except ValueError:
        return 0.0


def required(item, name):
    text = item.findtext(name)
    if not text:
        raise ProjectError("A label has no " + name + ".")
    return text


def read_label(item):
    parts = required(item, "Position").split(",")
    if len(parts) != 2:
        raise ProjectError("XML Item position invalid")
    return {
        "id": to_integer(required(item, "Id")),
        "value": to_integer(required(item, "Value")),
        "text": item.findtext("Text") or "",
        "border_type": to_integer(required(item, "Border_Type")),
        "position": [to_number(part) for part in parts],
    }


def read_document(document):
    root = xml.etree.ElementTree.fromstring(document)
    if root.tag != "Quillet_Data" or root.get("File_Version") != "1":
        raise ProjectError("XML Version not recognized")
    return root


def read_labels(root):
    labels = {}
    for item in root.findall("Item"):
        label = read_label(item)
        labels.setdefault(label["id"], label)
    return list(labels.values())


def full_text(text, root, attribute):
    """The text in an attribute of the root, if it is the field's apart from replaced characters."""
    full = root.get(attribute, "")
    units = full.encode("utf-16-le", "surrogatepass")
    replaced = "".join(chr(low) if high == 0 else "?" for low, high in zip(units[::2], units[1::2]))
    return full if replaced == text else text


def write_json(path, value):
    path.write_text(json.dumps(value, ensure_ascii=False, indent=4) + "\n", encoding="utf-8")


def unpack(content, folder):
    if len(content) < 8 or struct.unpack_from("<i", content)[0] != MAGIC:
        raise ProjectError("Invalid file.")
    reader = Reader(content)
    reader.integer()
    header = {
        "label_size": reader.integer(),
        "label_color": reader.text(),
        "header_1": reader.text(),
        "header_2": reader.text(),
        "page_count": max(0, reader.integer()),
    }
    folder.mkdir(parents=True, exist_ok=True)
    for number in range(1, header["page_count"] + 1):
        name = reader.text()
        image = reader.blob()
        root = read_document(reader.blob())
        if number == 1:
            header["header_1"] = full_text(header["header_1"], root, "Header_1")
            header["header_2"] = full_text(header["header_2"], root, "Header_2")
        name = full_text(name, root, "Page_Name")
        stem = folder / "page_{:04}".format(number)
        write_json(stem.with_suffix(".json"), {"name": name, "labels": read_labels(root)})
        if image:
            stem.with_suffix(".png").write_bytes(image)
    write_json(folder / "header.json", header)


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    try:
        unpack(pathlib.Path(arguments[0]).read_bytes(), pathlib.Path(arguments[1]))
    except (ProjectError, OSError, xml.etree.ElementTree.ParseError) as error:
        sys.exit("{}: {}".format(arguments[0], error))


if __name__ == "__main__":
    main(sys.argv[1:])
