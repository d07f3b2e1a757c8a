"""Tests the manual pages and the completion in three shells, and that they agree with the tool's help."""
import os
import pty
import re
import tempfile
import unittest

import installed
from installed import run, run_with

TOOL = installed.installed("bin/quillet-cli")
COMMON_OPTIONS = {"--help", "--quiet", "--verbose"}
IMAGES = ("bmp", "gif", "jpeg", "jpg", "pbm", "pgm", "png", "ppm", "tif", "tiff", "webp", "xbm", "xpm")


def subcommands():
    """Returns the subcommands in the tool's help."""
    return re.findall(r"^  ([a-z][a-z-]*)  ", run(TOOL, "--help"), re.MULTILINE)


def options_in_help(subcommand):
    """Returns the options in a subcommand's help, without those that every subcommand has."""
    names = re.findall(r"^\s+(?:-\w, )*(--[a-z0-9-]+)", run(TOOL, subcommand, "--help"), re.MULTILINE)
    assert COMMON_OPTIONS <= set(names), subcommand
    return set(names) - COMMON_OPTIONS


class TestManualPages(unittest.TestCase):

    def test_man_prints_no_warnings(self):
        for name in ("quillet.1", "quillet-cli.1"):
            self.assertEqual(installed.man_page(name)[1], "", name)

    def test_whatis_can_index_them(self):
        for name in ("quillet", "quillet-cli"):
            text = run("lexgrog", installed.installed("share/man/man1", name + ".1"))
            self.assertIn(f'"{name} - ', text)

    def test_the_programs_page_names_all_inputs_and_exports(self):
        text = " ".join(installed.man_page("quillet.1")[0].split())
        self.assertRegex(text, r"image.* becomes a page, and so does each page of a PDF or TIFF")
        self.assertRegex(text, r"exports one image for each page, a PDF report .*, or a web page")

    def sections(self):
        """Returns the section of each subcommand in the tool's page."""
        text = installed.man_page("quillet-cli.1")[0]
        parts = re.split(r"^ {3}(\S.*)\n", re.search(
            r"^SUBCOMMANDS\n(.*?)^EXIT STATUS\n", text, re.DOTALL | re.MULTILINE)[1],
            flags=re.MULTILINE)
        return dict(zip(parts[1::2], parts[2::2]))

    def test_each_subcommand_has_a_section(self):
        self.assertEqual(list(self.sections()), subcommands())

    def test_the_options_of_all_subcommands_are_listed_once(self):
        text = installed.man_page("quillet-cli.1")[0]
        common = re.search(r"^SUBCOMMANDS\n(.*?)^ {3}create\n", text, re.DOTALL | re.MULTILINE)[1]
        self.assertEqual(set(re.findall(r"^ {7}-\w, (--[a-z0-9-]+)", common, re.MULTILINE)),
                         COMMON_OPTIONS)

    def test_each_section_lists_the_options_in_the_help(self):
        for subcommand, text in self.sections().items():
            with self.subTest(subcommand):
                synopsis, rest = text.split("\n\n", 1)
                expected = options_in_help(subcommand)
                self.assertEqual(set(re.findall(r"--[a-z0-9-]+", synopsis)), expected)
                self.assertEqual(set(re.findall(r"^ {7}(?:-\w, )?(--[a-z0-9-]+)", rest, re.MULTILINE)),
                                 expected)


class Completion:
    """What each shell has to offer. The classes below run the shells."""

    @classmethod
    def setUpClass(cls):
        room = tempfile.TemporaryDirectory()
        cls.addClassCleanup(room.cleanup)
        cls.folder = room.name
        os.mkdir(os.path.join(cls.folder, "folder"))
        for name in (*(f"page.{kind}" for kind in IMAGES), "a.quillet", "old.qld", "work.log", "report.pdf",
                     "items.csv", "notes.txt"):
            with open(os.path.join(cls.folder, name), "w", encoding="utf-8"):
                pass

    def test_subcommands(self):
        self.assertEqual(self.complete(""), sorted(subcommands()))
        self.assertEqual(self.complete("export-p"), ["export-pdf"])

    def test_options_are_those_in_the_help(self):
        for subcommand in subcommands():
            with self.subTest(subcommand):
                offered = {name.rstrip("=") for name in self.complete(subcommand, "--")}
                self.assertEqual(offered, options_in_help(subcommand) | COMMON_OPTIONS)

    def test_options_of_the_tool_itself(self):
        self.assertEqual(self.complete("--vers"), ["--version"])

    def test_documents_for_the_subcommands_that_read_one(self):
        for subcommand in subcommands():
            if subcommand not in ("create", "kept", "recover"):
                self.assertEqual(self.complete(subcommand, ""),
                                 ["a.quillet", "folder", "old.qld"])
        # Work logs can be recovered, too, but not files of earlier generations.
        self.assertEqual(self.complete("recover", ""), ["a.quillet", "folder", "work.log"])
        self.assertEqual(self.complete("kept", ""), [])

    def test_images_pdfs_and_folders_for_a_new_document(self):
        self.assertEqual(self.complete("create", ""),
                         ["folder"] + [f"page.{kind}" for kind in IMAGES] + ["report.pdf"])

    def test_values_are_those_in_the_help(self):
        for subcommand, option in (("reindex", "over-page"), ("export-pdf", "orientation"),
                                   ("export-pdf", "resolution")):
            description = re.search(rf"--{option} .*?(?=\n +--|\Z)", run(TOOL, subcommand, "--help"),
                                    re.DOTALL)[0]
            values = self.complete(subcommand, "a.quillet", f"--{option}", "")
            self.assertGreater(len(values), 1)
            self.assertLessEqual(set(values), set(re.findall(r"\w+", description)), option)

    def test_values_of_options(self):
        for words, expected in (
                (("export-pdf", "a.quillet", "--output", ""), ["folder", "report.pdf"]),
                (("reindex", "a.quillet", "--output", ""), ["a.quillet", "folder"]),
                (("thumbnail", "a.quillet", "--output", ""), ["folder", "page.png"]),
                (("import-items", "a.quillet", "--csv", ""), ["folder", "items.csv"]),
                (("export-images", "a.quillet", "--folder", ""), ["folder"]),
                (("reindex", "a.quillet", "--over-page", "10"), ["10", "100", "1000"]),
                (("export-pdf", "a.quillet", "--orientation", "l"), ["landscape"]),
                (("export-pdf", "a.quillet", "--resolution=1"), ["180"]),
                (("reindex", "a.quillet", "--first", ""), []),
                (("pages", "a.quillet", "--rename", ""), [])):
            with self.subTest(words):
                self.assertEqual(self.complete(*words), expected)



ENVIRONMENT = {"XDG_DATA_DIRS": installed.installed("share"), "TERM": "dumb",
               "PATH": installed.installed("bin") + ":" + os.environ["PATH"]}


class TestBash(Completion, unittest.TestCase):
    """Lets bash load the completion from its usual folder."""

    script = r"""
        . /usr/share/bash-completion/bash_completion
        _completion_loader quillet-cli || [ $? -eq 124 ]
        rule=$(complete -p quillet-cli)
        [[ $rule =~ -F\ ([^ ]+) ]] && complete=${BASH_REMATCH[1]}
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_TYPE=9 COMP_KEY=9
        COMP_POINT=${#COMP_LINE}
        "$complete" "$1" "${!#}" "${@: -2:1}"
        printf '%s\n' "${COMPREPLY[@]}"
    """

    def complete(self, *words):
        text = run_with(ENVIRONMENT, "bash", "--norc", "--noprofile", "-c", self.script, "bash",
                        "quillet-cli", *words, cwd=self.folder)
        return sorted(line.strip() for line in text.splitlines() if line.strip())


class TestFish(Completion, unittest.TestCase):
    """Lets fish load the completion from its usual folder."""

    def complete(self, *words):
        line = " ".join(("quillet-cli", *words))
        text = run_with({**ENVIRONMENT, "HOME": self.folder}, "fish", "--private", "--command",
                        f"complete --do-complete '{line}'", cwd=self.folder)
        offered = (line.split("\t")[0] for line in text.splitlines())
        return sorted(name.rstrip("/").removeprefix("--resolution=") for name in offered)


class TestZsh(Completion, unittest.TestCase):
    """Presses the Tab key in a zsh that records what the completion adds."""

    setup = r"""
        fpath=($QUILLET_FUNCTIONS $fpath)
        autoload -Uz compinit && compinit -u -D
        bindkey '^I' complete-word
        compadd() {
            if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
                builtin compadd "$@"
                return
            fi
            local -a hits
            builtin compadd -A hits "$@"
            print -rl -- $hits >>$QUILLET_OFFERED
            builtin compadd "$@"
        }
        comppostfuncs=(exit)
        PS1=ready
    """

    def complete(self, *words):
        with tempfile.TemporaryDirectory() as home:
            with open(os.path.join(home, ".zshrc"), "w", encoding="utf-8") as file:
                file.write(self.setup)
            offered = os.path.join(home, "offered")
            environment = {**os.environ, **ENVIRONMENT, "HOME": home, "ZDOTDIR": home,
                           "QUILLET_FUNCTIONS": installed.installed("share/zsh/site-functions"),
                           "QUILLET_OFFERED": offered}
            process, terminal = pty.fork()
            if process == 0:
                os.chdir(self.folder)
                os.execvpe("zsh", ["zsh", "-i"], environment)
            shown = b""
            while b"ready" not in shown:
                shown += os.read(terminal, 1024)
            os.write(terminal, " ".join(("quillet-cli", *words)).encode() + b"\t")
            try:
                while os.read(terminal, 1024):
                    pass
            except OSError:  # the shell has closed the terminal
                pass
            os.waitpid(process, 0)
            os.close(terminal)
            if not os.path.exists(offered):
                return []
            names = {line.rstrip("/") for line in installed.read(offered).splitlines()}
            return sorted(names - {""})


installed.main()
