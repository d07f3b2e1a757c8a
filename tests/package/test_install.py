"""Tests cmake --install and the target uninstall under different prefixes."""
import os
import shutil
import tempfile
import unittest

import installed
from installed import run, run_with


def tree(folder):
    """Returns all files and folders below a folder."""
    return sorted(os.path.relpath(os.path.join(path, name), folder)
                  for path, folders, files in os.walk(folder) for name in folders + files)


class TestInstallation(unittest.TestCase):
    """Uses a new build folder, in which nothing but the programs is built."""

    def setUp(self):
        room = tempfile.TemporaryDirectory()
        self.addCleanup(room.cleanup)
        self.build, self.root = (os.path.join(room.name, name) for name in ("build", "root"))
        os.mkdir(self.root)
        run("cmake", "-S", installed.SOURCE, "-B", self.build, "-G", "Ninja", "-D", "QUILLET_TESTS=OFF")
        installed.copy_programs(self.build)

    def install(self, prefix, stage=""):
        run_with({"DESTDIR": stage}, "cmake", "--install", self.build, "--prefix", prefix)

    def uninstall(self, stage=""):
        run_with({"DESTDIR": stage}, "cmake", "--build", self.build, "--target", "uninstall")

    def check_files(self, folder, **folders):
        self.assertEqual(installed.files_below(folder), installed.expected_files(**folders))

    def test_it_needs_only_the_programs(self):
        self.install(self.root)
        self.check_files(self.root)

    def test_uninstall_removes_exactly_what_was_installed_under_usr_local(self):
        local = os.path.join(self.root, "usr/local")
        # As in a new Debian: folders without files.
        for folder in ("bin", "share/man", "etc"):
            os.makedirs(os.path.join(local, folder))
        before = tree(self.root)
        self.install("/usr/local", self.root)
        self.check_files(local)
        self.uninstall(self.root)
        self.assertEqual(tree(self.root), before)

    def test_uninstall_leaves_nothing_under_usr(self):
        self.install("/usr", self.root)
        self.check_files(os.path.join(self.root, "usr"), zsh_folder="vendor-completions")
        self.uninstall(self.root)
        self.assertEqual(tree(self.root), [])

    def test_uninstall_refuses_a_relative_staging_root(self):
        self.install("/usr", self.root)
        with self.assertRaisesRegex(AssertionError, "DESTDIR must be an absolute path"):
            self.uninstall("root")
        self.check_files(os.path.join(self.root, "usr"), zsh_folder="vendor-completions")

    def test_building_the_window_and_the_tool_builds_all_programs(self):
        for program in ("bin/quillet", "bin/quillet-cli"):
            commands = run("ninja", "-C", self.build, "-t", "commands", program)
            self.assertIn("-o libexec/quillet/quillet-encode ", commands)

    def test_uninstall_keeps_the_files_of_others_in_a_home_folder(self):
        local = os.path.join(self.root, ".local")
        self.install(local)
        self.check_files(local)
        foreign = os.path.join(local, "share/icons/hicolor/48x48/apps/other.png")
        shutil.copy(os.path.join(local, "share/icons/hicolor/48x48/apps", installed.ID + ".png"), foreign)
        self.uninstall()
        self.assertEqual(installed.files_below(local), [os.path.relpath(foreign, local)])
        self.assertEqual(len(tree(local)), len("share/icons/hicolor/48x48/apps/other.png".split("/")))

    def test_uninstall_after_a_second_installation_leaves_nothing(self):
        self.install("/opt/quillet", self.root)
        self.install("/opt/quillet", self.root)
        self.uninstall(self.root)
        self.assertEqual(tree(self.root), [])

    def test_uninstall_without_an_installation_fails(self):
        with self.assertRaisesRegex(AssertionError, "Nothing is installed"):
            self.uninstall()


installed.main()
