"""Tests which files are installed where, and that all of them state the same version and licence."""
import os
import re
import stat
import unittest
import xml.etree.ElementTree as ElementTree

import installed
from installed import ID, read, run, source


class TestFiles(unittest.TestCase):

    def test_every_file_is_installed_and_no_other(self):
        self.assertEqual(installed.files_below(installed.prefix()), installed.expected_files())

    def test_nothing_is_installed_outside_the_prefix(self):
        stage = installed.setting("STAGE")
        below = installed.setting("PREFIX").lstrip("/")
        self.assertEqual([path for path in installed.files_below(stage)
                          if not path.startswith(below + "/")], [])

    def test_installed_files_are_readable_by_all_users(self):
        # Modes of folders depend on the umask during the installation.
        for path in installed.files_below(installed.prefix()):
            mode = 0o755 if path in installed.PROGRAMS else 0o644
            self.assertEqual(stat.S_IMODE(os.stat(installed.installed(path)).st_mode), mode, path)

    def test_links_between_installed_documents_are_valid(self):
        folder = installed.installed("share/doc/quillet")
        for name in ("guide.md", "file-formats.md"):
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", read(os.path.join(folder, name))):
                self.assertTrue(os.path.exists(os.path.join(folder, link)), f"{name}: {link}")

    def test_installed_documents_name_no_file_of_the_sources(self):
        # Folders that are installed, too, are no sign of a source.
        folders = {path.split("/")[0] for path in
                   run("git", "ls-files", cwd=source()).splitlines() if "/" in path} | {"build"}
        pattern = re.compile(rf"(?<![\w/.-])(?:{'|'.join(sorted(folders - {'share'}))})/\w[\w./-]*")
        texts = {name: read(installed.installed("share/doc/quillet", name))
                 for name in ("guide.md", "file-formats.md", "changelog")}
        texts.update({name: installed.man_page(name)[0] for name in ("quillet.1", "quillet-cli.1")})
        for name, text in texts.items():
            self.assertEqual(pattern.findall(text), [], name)

    def test_files_below_the_prefix_that_manual_pages_name_are_installed(self):
        for name in ("quillet.1", "quillet-cli.1"):
            for path in re.findall(r"(?<![\w/])share/[\w./-]+\w", installed.man_page(name)[0]):
                self.assertTrue(os.path.exists(installed.installed(path)), f"{name}: {path}")


class TestVersion(unittest.TestCase):
    """The version is defined in CMakeLists.txt; every other place must repeat it."""

    version = installed.setting("VERSION")

    @staticmethod
    def changelog():
        return read(installed.installed("share/doc/quillet/changelog"))

    def test_latest_release_of_the_metainfo(self):
        metainfo = ElementTree.parse(installed.installed("share/metainfo", ID + ".metainfo.xml"))
        release = metainfo.find("releases/release")
        self.assertEqual(release.get("version"), self.version)
        date = installed.run("dpkg-parsechangelog", "-l", source("debian/changelog"), "-S", "Date")
        self.assertEqual(release.get("date"),
                         installed.run("date", "-u", "-d", date.strip(), "+%Y-%m-%d").strip())

    def test_latest_entry_of_the_changelog(self):
        self.assertRegex(self.changelog(), rf"\Aquillet \({re.escape(self.version)}\) ")

    def test_manual_pages(self):
        for name in ("quillet.1", "quillet-cli.1"):
            self.assertIn(f"Quillet {self.version} ", installed.man_page(name)[0])

    def test_about_box(self):
        self.assertIn(f'tr("Quillet - Version {self.version}")', read(source("src/quillet.cpp")))

    def test_command_line_tool(self):
        text = installed.run(installed.installed("bin/quillet-cli"), "--version")
        self.assertIn(self.version, text.split())


class TestLicence(unittest.TestCase):

    def test_the_licence_is_one_line(self):
        self.assertRegex(read(source("LICENSE")), r"\A[^\n]+\n\Z")

    def test_the_package_repeats_the_line(self):
        self.assertIn("\n " + read(source("LICENSE")),
                      read(installed.installed("share/doc/quillet/copyright")))

    def test_the_metainfo_claims_no_free_licence(self):
        metainfo = ElementTree.parse(installed.installed("share/metainfo", ID + ".metainfo.xml"))
        self.assertEqual(metainfo.findtext("project_license"), "LicenseRef-proprietary")

    def test_the_copyright_file_names_every_linked_library(self):
        permitted = re.compile(r"libQt5(Core|Gui|Widgets|Xml|PrintSupport)\.so\.5"
                               r"|libsqlite3\.so\.0|libpng16\.so\.16|lib(stdc\+\+|gcc_s|c|m)\.so\.\d|ld-linux\S*")
        for program in installed.PROGRAMS:
            dynamic = installed.run("readelf", "-dW", installed.installed(program))
            libraries = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
            self.assertIn("libQt5Core.so.5", libraries)
            self.assertEqual([name for name in libraries if not permitted.fullmatch(name)], [])


installed.main()
