"""Tests the Debian packages: content, fields and lintian's findings."""
import glob
import os
import re
import shutil
import stat
import tempfile
import unittest

import installed
from installed import run


class TestPackage(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.path, = glob.glob(installed.source("build/package/quillet_*.deb"))
        cls.folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        run("dpkg-deb", "--raw-extract", cls.path, cls.folder)

    def field(self, name):
        return run("dpkg-deb", "--field", self.path, name).strip()

    def test_lintian_finds_nothing_in_package_and_source(self):
        changes, = glob.glob(installed.source("build/package/quillet_*.changes"))
        self.assertIn(".dsc", installed.read(changes))
        self.assertEqual(run("lintian", "--no-cfg", "--allow-root", "--display-info", "--pedantic",
                             "--fail-on", "error,warning,info,pedantic", changes), "")

    def test_it_contains_the_installed_files(self):
        files = [path for path in installed.files_below(self.folder)
                 if not path.startswith("DEBIAN/")]
        # Debian compresses manual pages and the changelog.
        self.assertEqual(files, sorted(f"usr/{path}" + (".gz" if re.search("/man1/|/changelog", path) else "")
                                       for path in installed.packaged_files()))

    def test_owners_and_modes(self):
        for line in run("dpkg-deb", "--contents", self.path).splitlines():
            mode, owner, *_, name = line.split()
            self.assertEqual(owner, "root/root", line)
            runs = name.startswith(("./usr/bin/", "./usr/libexec/")) or name.endswith("/")
            self.assertEqual(mode[1:], "rwxr-xr-x" if runs else "rw-r--r--", line)

    def test_every_file_has_a_valid_checksum(self):
        sums = os.path.join(self.folder, "DEBIAN/md5sums")
        self.assertEqual(stat.S_IMODE(os.stat(sums).st_mode), 0o644)
        self.assertEqual(len(installed.read(sums).splitlines()), len(installed.packaged_files()))
        run("md5sum", "--check", "--quiet", "DEBIAN/md5sums", cwd=self.folder)

    def test_it_has_no_maintainer_scripts(self):
        self.assertEqual(sorted(os.listdir(os.path.join(self.folder, "DEBIAN"))),
                         ["control", "md5sums"])

    def test_control_fields(self):
        self.assertEqual(self.field("Package"), "quillet")
        self.assertEqual(self.field("Version"), installed.setting("VERSION"))
        self.assertEqual(self.field("Maintainer"), "The Quillet Project <maintainers@quillet.example>")
        self.assertEqual(self.field("Section"), "graphics")
        self.assertEqual(self.field("Architecture"),
                         run("dpkg", "--print-architecture").strip())

    def test_it_depends_on_its_libraries_the_font_of_labels_and_the_readers_of_formats(self):
        names = {re.match(r"\S+", part)[0] for part in self.field("Depends").split(", ")}
        self.assertLessEqual({"libc6", "libqt5core5a", "libqt5gui5", "libqt5printsupport5",
                              "libqt5widgets5", "libqt5xml5", "libsqlite3-0", "libstdc++6",
                              "fonts-liberation", "poppler-utils",
                              "qt5-image-formats-plugins"}, names)

    def test_programs_are_stripped_and_hardened(self):
        for program in installed.PROGRAMS:
            path = os.path.join(self.folder, "usr", program)
            self.assertIn(", stripped", run("file", path))
            self.assertRegex(run("readelf", "-hW", path), r"Type: +DYN")
            self.assertRegex(run("readelf", "-dW", path), r"FLAGS_1.*NOW.*PIE")
            segments = run("readelf", "-lW", path)
            self.assertIn("GNU_RELRO", segments)
            self.assertRegex(segments, r"GNU_STACK .* RW ")
            self.assertIn("__stack_chk_fail", run("readelf", "--dyn-syms", "-W", path))

    def test_the_optimized_tool_makes_the_sample_and_exports_it(self):
        tool = os.path.join(self.folder, "usr/bin/quillet-cli")
        sample = os.path.join(self.folder, "sample")
        run(installed.source("script/make-sample"), tool, sample)
        document = os.path.join(sample, "sample.quillet")
        for command, result in (("export-html", "a.html"), ("export-pdf", "a.pdf")):
            path = os.path.join(sample, result)
            run(tool, command, document, "--output", path)
            self.assertGreater(os.path.getsize(path), 100_000)
        images = os.path.join(sample, "images")
        os.mkdir(images)
        run(tool, "export-images", document, "--folder", images)
        self.assertEqual(len(os.listdir(images)), len(os.listdir(os.path.join(sample, "drawings"))))

    def test_programs_contain_no_path_of_the_build(self):
        for program in installed.PROGRAMS:
            with open(os.path.join(self.folder, "usr", program), "rb") as file:
                content = file.read()
            # quillet-encode reads no XML.
            self.assertEqual(b"core/xmlfile.cpp" in content, program.startswith("bin/"))
            self.assertNotIn(b"/core/xmlfile.cpp", content)
            self.assertNotIn(b"build/package", content)


installed.main()
