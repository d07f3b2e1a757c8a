#!/usr/bin/env python3
"""Takes the pictures of the documentation from the running program, with the sample document.

Usage: pictures.py QUILLET SAMPLE PICTURES
  QUILLET   the program
  SAMPLE    the folder of the sample document (script/make-sample)
  PICTURES  the folder for the pictures (docs/pictures)

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import os
import sys

from driver import stable_screen, click, drag, press, run, write
from session import ITEM_WIDGETS, PAGE_WIDGETS, SETTINGS, WORKING_SIZE, Session

FACADE = 1
TITLE_BAR = 20


class Tour(Session):
    """A session that takes pictures."""

    def __init__(self, quillet, sample, pictures):
        super().__init__(quillet, pictures, [])
        self.sample = sample

    def take(self, name, box=None):
        """Takes a picture of a window with its frame, the main window by default.

        The picture has few colours, which makes it small.
        """
        stable_screen()
        box = box or self.program.box
        frame = (f"{box.width + 2}x{box.height + TITLE_BAR + 2}"
                 f"+{box.left - 1}+{box.top - TITLE_BAR}")
        path = os.path.join(self.results, name + ".png")
        run("import", "-silent", "-window", "root", path)
        run("convert", path, "-crop", frame, "+repage", "+dither", "-colors", "256", "-strip",
            "PNG8:" + path)

    def take_dialog(self, name, title):
        box = self.program.box_of_window(self.program.dialog(title))
        # Moves the focus off the text editor: a blinking cursor would make pictures differ.
        press("Tab")
        self.take(name, box)


def first_start(tour):
    tour.start()
    tour.take("first-start")
    tour.program.resize(*WORKING_SIZE)
    boxes = tour.program.walk(["page", "pages", "page_add", *SETTINGS, "zoom"])
    tour.boxes = {"name": boxes["format"], **boxes}


def open_sample(tour):
    """Opens the sample document at a zoom that shows nearly the whole page."""
    press("ctrl+o")
    tour.file_name("Select a Quillet file to open", os.path.join(tour.sample, "sample.quillet"))
    tour.set_slider("zoom", *["Prior"] * 6)
    tour.page_row(FACADE)
    tour.take("sample")


def learn_boxes(tour):
    """Selects the page's first label, so that its editors can be reached with the Tab key."""
    click(tour.view())
    press("Tab", "End", "Home", "shift+Tab")
    stable_screen()
    tour.boxes = tour.program.walk(["page", *ITEM_WIDGETS, *PAGE_WIDGETS, *SETTINGS, "zoom"])


def select_labels(tour):
    click(tour.selected_rows("items"))
    press("Home", "Down", "Down", "Down", "shift+Down", "shift+Down")
    tour.take("several-selected")


def arrange_pages(tour):
    click(tour.boxes["page_add"])
    stable_screen()
    tour.page_row(5)
    tour.retype("name", "Photographs", "Return")
    first = tour.page_row(0)
    moved = tour.page_row(4)
    drag((moved.left + 30, moved.centre[1]), (first.left + 30, first.bottom))
    tour.take("pages-in-order")


def open_dialogs(tour):
    tour.page_row(0)
    tour.from_menu("Right", "Down", "Return")
    tour.take_dialog("reindex-dialog", "Reindex Items")
    tour.program.answer("Escape")
    click(tour.program.icon(tour.resource("menu/file_export_pdf.png")))
    tour.program.dialog("Report Header")
    write("The Old Mill, Ardenbruck")
    press("Tab")
    write("Inspection of the building, spring 2026")
    tour.take_dialog("header-dialog", "Report Header")
    tour.program.answer("Escape")


def main():
    quillet, sample, pictures = (os.path.abspath(path) for path in sys.argv[1:])
    tour = Tour(quillet, sample, pictures)
    try:
        for part in (first_start, open_sample, learn_boxes, select_labels, arrange_pages,
                        open_dialogs):
            part(tour)
    finally:
        if tour.program and tour.program.process.poll() is None:
            tour.program.process.kill()
            tour.program.process.wait()


if __name__ == "__main__":
    main()
