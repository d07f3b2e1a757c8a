"""Tests the desktop integration files with the desktop's own validators and tools."""
import configparser
import os
import re
import shlex
import shutil
import struct
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

import installed
from installed import ICON_SIZES, ID, run, run_with

MAGIC = b"\x62\x60\x01\x00"


def write(path, content):
    with open(path, "wb") as file:
        file.write(content)


def write_png(path, width, height):
    """Writes a picture in one colour."""
    def chunk(kind, content):
        return (struct.pack(">I", len(content)) + kind + content
                + struct.pack(">I", zlib.crc32(kind + content)))
    rows = (b"\0" + b"\x40\x80\xc0" * width) * height
    write(path, b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2,
                                                                0, 0, 0))
          + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def read_entry(path, group):
    parser = configparser.ConfigParser(interpolation=None, comment_prefixes="#")
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return parser[group]


class TestDesktopEntry(unittest.TestCase):

    path = installed.installed("share/applications", ID + ".desktop")
    entry = read_entry(path, "Desktop Entry")

    def test_its_validator_finds_nothing(self):
        self.assertEqual(run("desktop-file-validate", self.path), "")

    def test_it_starts_an_installed_program(self):
        program, files = self.entry["Exec"].split()
        self.assertTrue(os.access(installed.installed("bin", program), os.X_OK))
        self.assertEqual(files, "%F")

    def test_it_opens_the_file_type(self):
        self.assertEqual(self.entry["MimeType"], "application/x-quillet;")
        with tempfile.TemporaryDirectory() as share:
            folder = shutil.copytree(os.path.dirname(self.path), os.path.join(share, "applications"))
            run("update-desktop-database", folder)
            # gio ignores an entry whose program it cannot find.
            environment = {"XDG_DATA_DIRS": share,
                           "PATH": installed.installed("bin") + ":" + os.environ["PATH"]}
            text = run_with(environment, "gio", "mime", "application/x-quillet")
            self.assertIn(f"Default application for \u201capplication/x-quillet\u201d: {ID}.desktop",
                          text)

    def test_its_icon_exists_in_all_sizes(self):
        self.assertEqual(self.entry["Icon"], ID)
        for size in ICON_SIZES:
            path = f"share/icons/hicolor/{size}x{size}/apps/{ID}.png"
            self.assertEqual(installed.png_size(installed.installed(path)), (size, size))

    def test_the_window_refers_to_it(self):
        self.assertIn(f'setDesktopFileName(QStringLiteral("{ID}"))',
                      installed.read(installed.source("src/main.cpp")))


class TestMetainfo(unittest.TestCase):

    path = installed.installed("share/metainfo", ID + ".metainfo.xml")
    component = ElementTree.parse(path)

    def test_its_validator_finds_nothing(self):
        text = run("appstreamcli", "validate", "--pedantic", "--no-net", "--no-color", self.path)
        self.assertEqual(re.findall(r"^[EWIP]: .*", text, re.MULTILINE), [])

    def test_it_belongs_to_the_desktop_entry(self):
        self.assertEqual(self.component.findtext("id"), ID)
        self.assertEqual(self.component.findtext("launchable"), ID + ".desktop")

    def test_its_programs_are_installed(self):
        for binary in self.component.iterfind("provides/binary"):
            self.assertTrue(os.access(installed.installed("bin", binary.text), os.X_OK))

    def test_its_screenshots_are_pictures_of_the_guide(self):
        images = self.component.findall("screenshots/screenshot/image")
        self.assertGreater(len(images), 0)
        for image in images:
            name = os.path.basename(image.text.strip())
            self.assertTrue(os.path.exists(installed.source("docs/pictures", name)), name)


class TestFileType(unittest.TestCase):
    """Uses a copy of the installed files, to which update-mime-database adds its output."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.share = os.path.join(cls.folder, "share")
        shutil.copytree(installed.installed("share"), cls.share)
        cls.complaints = run_with({"XDG_DATA_DIRS": cls.share}, "update-mime-database", "-V",
                                  os.path.join(cls.share, "mime"))

    def look(self, name, content):
        """Returns the content type and the icons, best first, that gio finds for a file."""
        path = os.path.join(self.folder, name)
        write(path, content)
        text = run_with({"XDG_DATA_DIRS": self.share, "GIO_USE_VFS": "local"}, "gio", "info",
                        "--attributes=standard::content-type,standard::icon", path)
        return (re.search(r"standard::content-type: (.*)", text)[1],
                re.search(r"standard::icon: (.*)", text)[1].split(", "))

    def test_the_database_is_built_without_warnings(self):
        self.assertNotRegex(self.complaints.lower(), "error|warning|unknown|invalid")
        self.assertIn(":application/x-quillet:*.quillet",
                      installed.read(os.path.join(self.share, "mime/globs2")))

    def test_its_source_is_well_formed(self):
        self.assertEqual(run("xmllint", "--noout", os.path.join(
            self.share, "mime/packages", ID + ".xml")), "")

    def test_a_file_is_recognized_by_its_extension(self):
        self.assertEqual(self.look("text.quillet", b"text")[0], "application/x-quillet")

    def test_a_file_is_recognized_by_its_first_bytes(self):
        self.assertEqual(self.look("project", MAGIC + bytes(16))[0], "application/x-quillet")

    def test_the_bytes_elsewhere_do_not_count(self):
        self.assertNotEqual(self.look("late", b"\0" + MAGIC + bytes(16))[0], "application/x-quillet")
        self.assertNotEqual(self.look("reversed", MAGIC[::-1] + bytes(16))[0],
                            "application/x-quillet")

    def test_its_icon_exists_in_all_sizes(self):
        icon = self.look("with-icon.quillet", MAGIC)[1][0]
        self.assertEqual(icon, "application-x-quillet")
        for size in ICON_SIZES:
            path = f"icons/hicolor/{size}x{size}/mimetypes/{icon}.png"
            self.assertEqual(installed.png_size(os.path.join(self.share, path)), (size, size))


class TestThumbnailer(unittest.TestCase):

    entry = read_entry(installed.installed("share/thumbnailers", ID + ".thumbnailer"),
                       "Thumbnailer Entry")

    def test_it_is_for_the_file_type(self):
        self.assertEqual(self.entry["MimeType"], "application/x-quillet;")

    def test_its_command_draws_a_thumbnail(self):
        with tempfile.TemporaryDirectory() as folder:
            page, project, thumbnail = (os.path.join(folder, name)
                                        for name in ("page.png", "a b.quillet", "thumbnail.png"))
            write_png(page, 400, 300)
            # File managers create the file before they run the program.
            write(thumbnail, b"")
            tool = installed.installed("bin", self.entry["TryExec"])
            run(tool, "create", page, "--output", project)
            values = {"%s": "128", "%o": thumbnail, "%i": project}
            command = [values.get(word, word) for word in shlex.split(self.entry["Exec"])]
            self.assertEqual(command[0], self.entry["TryExec"])
            run(tool, *command[1:])
            self.assertEqual(installed.png_size(thumbnail), (128, 96))


installed.main()
