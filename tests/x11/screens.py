#!/usr/bin/env python3
"""Takes pictures of the window, its menus and its dialogs, for a person to look at.

Usage: screens.py QUILLET SAMPLE PICTURES THEME
  QUILLET   the program
  SAMPLE    the folder of the sample document (script/make-sample)
  PICTURES  the folder for the pictures; emptied first
  THEME     light, dark or contrast: the colours that the desktop sets

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
SCREEN selects the size, QT_SCALE_FACTOR the scale.
"""

import os
import shutil
import sys
import time

from driver import Program, click, point_at, press, run, stable_screen, write

HIGHLIGHTS = {"light": (48, 140, 198), "dark": (0x12, 0x60, 0x8a), "contrast": (0xff, 0xff, 0)}
COLOUR_ROLES = ("text", "button", "light", "midlight", "dark", "mid", "text", "bright", "text", "base",
                "window", "shadow", "highlight", "highlighted", "link", "link", "alternate", "text",
                "tip", "text", "placeholder")
# Black and white, and yellow for what is selected.
CONTRAST = {"text": "ffffff", "button": "000000", "light": "ffffff", "midlight": "c0c0c0",
            "dark": "808080", "mid": "a0a0a0", "bright": "ffffff", "base": "000000", "window": "000000",
            "shadow": "ffffff", "highlight": "ffff00", "highlighted": "000000", "link": "00ffff",
            "alternate": "202020", "tip": "000000", "placeholder": "c0c0c0"}
TOOL_TIP_SECONDS = 1.5


def set_theme(theme):
    """Sets the colours as a desktop does, with the platform theme qt5ct."""
    if theme == "light":
        return
    folder = os.path.expanduser("~/.config/qt5ct")
    os.makedirs(folder)
    scheme = "/usr/share/qt5ct/colors/darker.conf"
    if theme == "contrast":
        scheme = os.path.join(folder, "contrast.conf")
        colours = [CONTRAST[role] for role in COLOUR_ROLES]
        greyed = ["a0a0a0" if role == "text" else colour
                  for role, colour in zip(COLOUR_ROLES, colours)]
        with open(scheme, "w", encoding="ascii") as file:
            file.write("[ColorScheme]\n")
            for group, values in (("active", colours), ("disabled", greyed), ("inactive", colours)):
                file.write(f"{group}_colors={', '.join('#ff' + value for value in values)}\n")
    with open(os.path.join(folder, "qt5ct.conf"), "w", encoding="utf-8") as file:
        file.write(f"[Appearance]\ncustom_palette=true\ncolor_scheme_path={scheme}\nstyle=Fusion\n"
                   '[Fonts]\ngeneral="Sans,9,-1,5,50,0,0,0,0,0"\n')
    os.environ["QT_QPA_PLATFORMTHEME"] = "qt5ct"


class Tour:
    """The running program and the folder of its pictures."""

    def __init__(self, quillet, sample, pictures, theme):
        self.theme = theme
        self.pictures = pictures
        shutil.rmtree(pictures, ignore_errors=True)
        os.makedirs(pictures)
        self.document = os.path.join(pictures, "sample.quillet")
        shutil.copy(os.path.join(sample, "sample.quillet"), self.document)
        self.program = Program(quillet, "Quillet", self.document)

    def take(self, name):
        stable_screen()
        run("import", "-silent", "-window", "root", os.path.join(self.pictures, name + ".png"))

    def fill_screen(self):
        run("wmctrl", "-i", "-r", hex(int(self.program.window)), "-b",
            "add,maximized_vert,maximized_horz")
        stable_screen()

    def selected_row(self, on_the_left):
        """The selected row of the list on one side of the window."""
        box = self.program.box
        screen = stable_screen()
        half = screen.box
        half.left, half.right = (box.left, box.centre[0]) if on_the_left else (box.centre[0], box.right)
        return screen.box_of(HIGHLIGHTS[self.theme], half)


def window(tour):
    tour.take("opened")
    tour.fill_screen()
    press("ctrl+0")
    tour.take("fitted")


def find(tour):
    press("ctrl+f")
    write("mortar")
    press("Return")
    stable_screen()
    tour.take("found")
    press("ctrl+a")
    write("no such text")
    press("Return")
    time.sleep(0.3)
    tour.take("not-found")
    press("Escape")


def lists(tour):
    row = tour.selected_row(True)
    if row:
        click(row, button=3)
        tour.take("items-menu")
        press("Escape")
    row = tour.selected_row(False)
    if row:
        click(row, button=3)
        tour.take("pages-menu")
        press("Escape")
        point_at(row.left + 5, row.top + 5)
        point_at(*row.centre)
        time.sleep(TOOL_TIP_SECONDS)
        tour.take("thumbnail")


def rubber_band(tour):
    """Selects labels with a rubber band, which shows while the button is down."""
    x, y = tour.program.box.centre
    run("xdotool", "keydown", "shift")
    point_at(x - 120, y - 100)
    run("xdotool", "mousedown", "1")
    for step in range(1, 6):
        point_at(x - 120 + 48 * step, y - 100 + 36 * step)
        time.sleep(0.03)
    tour.take("rubber-band")
    run("xdotool", "mouseup", "1", "keyup", "shift")
    tour.take("selected")


def dialogs(tour):
    press("alt", "Right", "Down", "Return")
    tour.program.dialog("Reindex Items")
    tour.take("reindex")
    tour.program.answer("Escape")
    press("ctrl+o")
    tour.program.dialog("Select a Quillet file to open")
    tour.take("open")
    tour.program.answer("Escape")


def unsaved_work(tour):
    """Changes the document, and asks to close the window."""
    click(tour.program.box.centre, button=3)
    tour.take("unsaved")
    tour.program.close()
    tour.program.dialog()
    tour.take("question")
    tour.program.answer("Escape")


def recovered_work(tour, quillet):
    """Kills the program; the next start shows a notice."""
    time.sleep(1)
    tour.program.process.kill()
    tour.program.process.wait()
    tour.program = Program(quillet, "Quillet")
    tour.fill_screen()
    tour.take("recovered")


def main():
    quillet, sample, pictures = (os.path.abspath(path) for path in sys.argv[1:4])
    set_theme(sys.argv[4])
    tour = Tour(quillet, sample, pictures, sys.argv[4])
    try:
        for part in (window, find, rubber_band, lists, dialogs, unsaved_work):
            part(tour)
        recovered_work(tour, quillet)
    finally:
        tour.program.process.kill()
        tour.program.process.wait()


if __name__ == "__main__":
    main()
