"""Shared by the tests of the installed files: their paths, and tools to inspect them."""
import os
import re
import shutil
import subprocess
import unittest

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ID = "org.example.quillet"
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)


# Relative to the prefix, and to the build folder.
PROGRAMS = ("bin/quillet", "bin/quillet-cli", "libexec/quillet/quillet-encode")


def setting(name):
    """Returns a setting of the build, which CMake passes in the environment."""
    return os.environ["QUILLET_" + name]


def prefix():
    """Returns the folder in which the build is installed."""
    return os.path.join(setting("STAGE"), setting("PREFIX").lstrip("/"))


def installed(*parts):
    return os.path.join(prefix(), *parts)


def source(*parts):
    return os.path.join(SOURCE, *parts)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def files_below(folder):
    return sorted(os.path.relpath(os.path.join(folder_path, name), folder)
                  for folder_path, _, names in os.walk(folder) for name in names)


def run(*command, **options):
    """Runs a command, which must succeed, and returns its output."""
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            stdin=subprocess.DEVNULL, encoding="utf-8", check=False, **options)
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(command)} ended with {result.returncode}:\n{result.stdout}")
    return result.stdout


def run_with(environment, *command, **options):
    return run(*command, env={**os.environ, **environment}, **options)


def png_size(path):
    """Returns width and height from a PNG's header."""
    with open(path, "rb") as file:
        header = file.read(24)
    assert header[:8] == b"\x89PNG\r\n\x1a\n", path
    return int.from_bytes(header[16:20], "big"), int.from_bytes(header[20:24], "big")


def packaged_files():
    """Returns all files of the Debian package, relative to /usr."""
    return sorted([*expected_files(zsh_folder="vendor-completions"), "share/lintian/overrides/quillet"])


def expected_files(zsh_folder="site-functions"):
    """Returns all installed files, relative to the prefix."""
    icons = [f"share/icons/hicolor/{size}x{size}/{name}.png" for size in ICON_SIZES
             for name in (f"apps/{ID}", "mimetypes/application-x-quillet")]
    pictures = [f"share/doc/quillet/pictures/{name}" for name in os.listdir(source("docs/pictures"))]
    return sorted(icons + pictures + [
        *PROGRAMS,
        f"share/applications/{ID}.desktop",
        "share/bash-completion/completions/quillet-cli",
        "share/doc/quillet/changelog",
        "share/doc/quillet/copyright",
        "share/doc/quillet/file-formats.md",
        "share/doc/quillet/guide.md",
        "share/doc/quillet/sample/findings.csv",
        "share/fish/vendor_completions.d/quillet-cli.fish",
        f"share/icons/hicolor/scalable/apps/{ID}.svg",
        "share/icons/hicolor/scalable/mimetypes/application-x-quillet.svg",
        "share/man/man1/quillet-cli.1",
        "share/man/man1/quillet.1",
        f"share/metainfo/{ID}.metainfo.xml",
        f"share/mime/packages/{ID}.xml",
        f"share/thumbnailers/{ID}.thumbnailer",
        f"share/zsh/{zsh_folder}/_quillet-cli",
    ])


def copy_programs(folder):
    """Copies the installed programs to a build folder, as if they had been built there."""
    for path in PROGRAMS:
        target = os.path.join(folder, path)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copy2(installed(path), target)


def man_page(name):
    """Returns a manual page as plain text, and man's warnings about it."""
    result = subprocess.run(
        ["man", "--warnings", "-Tutf8", "-l", installed("share/man/man1", name)],
        capture_output=True, encoding="utf-8", check=True,
        env={**os.environ, "MANWIDTH": "200", "MAN_KEEP_FORMATTING": "", "LC_ALL": "C.UTF-8"})
    return re.sub(r".\x08|\x1b\[[0-9;]*m", "", result.stdout), result.stderr


def main():
    unittest.main(verbosity=2)
