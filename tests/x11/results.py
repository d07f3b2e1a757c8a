"""Readers for the program's files, written from docs/file-formats.md alone."""

import gzip
import os
import struct
import tempfile
import xml.etree.ElementTree as ElementTree

from driver import Picture, run

MAGIC = 90210


def report_pages(folder, first, last):
    """Renders pages of Debian's policy manual at 150 dots per inch; returns the images' paths."""
    pdf = os.path.join(folder, "policy.pdf")
    with open(pdf, "wb") as file:
        file.write(gzip.decompress(manual()))
    run("pdftoppm", "-r", "150", "-png", "-f", str(first), "-l", str(last), pdf,
        os.path.join(folder, "report"))
    os.remove(pdf)
    return sorted(os.path.join(folder, name) for name in os.listdir(folder))


def manual():
    """The compressed manual, from its package when it is not installed."""
    path = "usr/share/doc/debian-policy/policy.pdf.gz"
    if os.path.exists("/" + path):
        with open("/" + path, "rb") as file:
            return file.read()
    with tempfile.TemporaryDirectory() as folder:
        run("sh", "-c", f"cd {folder} && apt-get download -qq debian-policy && dpkg-deb -x *.deb .")
        with open(os.path.join(folder, path), "rb") as file:
            return file.read()


class Project:
    """A project file: label_size, colour, headers, and pages as dictionaries."""

    def __init__(self, path):
        with open(path, "rb") as self.file:
            assert self.integer() == MAGIC
            self.label_size = self.integer()
            self.colour = self.text()
            self.headers = [self.text(), self.text()]
            self.pages = [self.page() for _ in range(self.integer())]
            assert not self.file.read(1), "bytes after the last page"

    def page(self):
        return {"name": self.text(), "image": self.blob(), "labels": labels(self.blob())}

    def take(self, size):
        taken = self.file.read(size)
        assert len(taken) == size, "the file is too short"
        return taken

    def integer(self):
        return struct.unpack("<i", self.take(4))[0]

    def blob(self):
        return self.take(self.integer())

    def text(self):
        return self.blob().decode("latin-1")


def labels(document):
    """The labels of a page's label document, in their order."""
    root = ElementTree.fromstring(document.decode("utf-8"))
    assert root.tag == "Quillet_Data" and root.get("File_Version") == "1"
    return [{"value": int(item.findtext("Value")),
             "text": item.findtext("Text") or "",
             "border": int(item.findtext("Border_Type")),
             "position": tuple(float(part) for part in item.findtext("Position").split(","))}
            for item in root.iter("Item")]


def pixels_of_png(data):
    """Decodes the bytes of a PNG file."""
    with tempfile.NamedTemporaryFile(suffix=".png") as file:
        file.write(data)
        file.flush()
        return Picture.load(file.name)
