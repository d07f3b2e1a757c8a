"""Tests that two copies of the sources, in different folders and of different times, give the same files.

Builds what could differ: generated sources, resources, sources that contain their own path, and everything
installed that is not compiled. script/try-package compares whole packages.
"""
import os
import re
import tempfile
import unittest

import installed
from installed import run, run_with

# Resources, and a library whose assertions contain paths.
TARGETS = ("quillet_core", "quillet_resources", "quillet_webpage_resources")


def built_files(folder):
    """Returns moc's sources, the object files and the installed files in a build folder."""
    return [path for path in installed.files_below(folder)
            if path.startswith("stage/") or path.endswith(".o") or re.search(r"/moc_\w+\.cpp$", path)]


class TestTwoCopies(unittest.TestCase):

    def build(self, name, time):
        """Copies the sources, gives them a time and builds them. Returns the build folder."""
        folder = os.path.join(self.room, name)
        os.makedirs(folder)
        archive = os.path.join(self.room, "sources.tar")
        if not os.path.exists(archive):
            run("sh", "-c", f"git ls-files -z | tar --null --files-from=- --create --file={archive}",
                cwd=installed.SOURCE)
        run("tar", "--extract", "--touch", f"--file={archive}", cwd=folder)
        run("find", ".", "-exec", "touch", f"--date={time}", "{}", "+", cwd=folder)
        build = os.path.join(folder, "obj")
        # As debian/rules and debhelper do it.
        run_with({"CXXFLAGS": f"-g -O2 -fdebug-prefix-map={folder}=."}, "cmake", "-S", folder, "-B", build,
                 "-G", "Ninja", "-D", "CMAKE_BUILD_TYPE=None", "-D", "QUILLET_CCACHE=OFF",
                 "-D", "QUILLET_TESTS=OFF")
        run("cmake", "--build", build, "--target", *TARGETS)
        moc = [line.split(":")[0] for line in run("ninja", "-C", build, "-t", "targets", "all").splitlines()
               if line.split(":")[0].endswith("_autogen") and "/" in line and "CMakeFiles" not in line]
        run("ninja", "-C", build, *moc)
        installed.copy_programs(build)
        run_with({"DESTDIR": os.path.join(build, "stage")}, "cmake", "--install", build, "--prefix", "/usr")
        return build

    def test_two_copies_give_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as self.room:
            one = self.build("one", "2026-01-02 03:04")
            other = self.build("another/folder/of/another/length", "2026-11-12 13:14")
            files = built_files(one)
            self.assertEqual(built_files(other), files)
            for part in ("moc_quillet.cpp", "qrc_quillet.cpp.o", "safefile.cpp.o", "quillet.1"):
                self.assertTrue(any(path.endswith(part) for path in files), part)
            for path in files:
                with open(os.path.join(one, path), "rb") as left, \
                        open(os.path.join(other, path), "rb") as right:
                    self.assertEqual(left.read(), right.read(), path)


installed.main()
