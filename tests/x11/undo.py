#!/usr/bin/env python3
"""Second thoughts, driven from outside: steps of all sorts are taken back and done again by the keys,
and the project file tells after each what the document is.

Usage: undo.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots and the project; emptied first

To be run in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import os
import random
import shutil
import sys

from driver import (HIGHLIGHT, Box, Failure, Picture, calm_screen, click, drag, press,
                    wait_until, write)
from results import Project
from scenario import WORKING_SIZE, Day, check, save_as

# Where the keyboard gets from the page view by so many tabulators, a label being selected.
TO_VALUE, TO_TEXT, TO_NAME, TO_ADD_PAGE = 4, 5, 8, 9
WAY = (70, 40)
EDGE = 500
# A drag begins late by what a hand trembles.
TOLERANCE = 2


class Document:
    """What the document is expected to be: the names of its pages, and the labels of all of them."""

    def __init__(self, names, *labels):
        self.names, self.labels = names, labels

    def is_in(self, path):
        try:
            pages = Project(path).pages
        except (AssertionError, OSError, ValueError):
            return False  # not there, or not written to its end yet
        found = [label for page in pages for label in page["labels"]]
        return ([page["name"] for page in pages] == self.names and
                len(found) == len(self.labels) and all(map(self.is_label, found, self.labels)))

    @staticmethod
    def is_label(found, expected):
        value, text, position = expected
        return ((found["value"], found["text"]) == (value, text) and
                all(abs(a - b) <= TOLERANCE for a, b in zip(found["position"], position)))


def noise(folder):
    """An image in which each piece is found at one place only."""
    path = os.path.join(folder, "noise.ppm")
    with open(path, "wb") as file:
        file.write(b"P6 %d %d 255\n" % (EDGE, EDGE) + random.Random(1).randbytes(3 * EDGE * EDGE))
    return path


def expect(day, what, document):
    """Saves, and waits until the file says so."""
    press("ctrl+s")
    wait_until(what, lambda: document.is_in(day.project_path), seconds=5)


def shown(day):
    return calm_screen().cut(day.view())


def begin(day):
    """Imports the page and shows it; what was shown before."""
    day.start()
    day.program.resize(*WORKING_SIZE)
    empty = shown(day)
    click(day.program.icon(day.resource("menu/file_import.png")))
    day.file_name("Import one or more supported image files", day.images[0])
    # The one row of the page list.
    press("Tab", "Home", "space")
    wait_until("the page", lambda: shown(day).data != empty.data)
    return empty


def go_to(day, tabs, position):
    """Selects the label at a position, and goes on from there to an editor."""
    day.click_page(day.pages[0], position)
    press(*["Tab"] * tabs)


def work(day):
    """Steps of several sorts; what the document is at first and after each."""
    page = day.pages[0]
    first, second = day.spots(page, (-120, -60), (40, 80))
    moved = (first[0] + WAY[0], first[1] + WAY[1])
    states = [Document(["Page 1"]),
              Document(["Page 1"], (1, "", first)),
              Document(["Page 1"], (1, "", first), (2, "", second)),
              Document(["Page 1"], (1, "", moved), (2, "", second)),
              Document(["Page 1"], (57, "", moved), (2, "", second)),
              Document(["Plan"], (57, "", moved), (2, "", second))]

    save_as(day, day.project_path)
    wait_until("the first file", lambda: states[0].is_in(day.project_path))
    day.click_page(page, first, button=3)
    expect(day, "a label", states[1])
    day.click_page(page, second, button=3)
    expect(day, "another label", states[2])
    left, top = day.origin(page)
    drag((first[0] + left, first[1] + top), (moved[0] + left, moved[1] + top))
    expect(day, "the label dragged", states[3])
    go_to(day, TO_VALUE, moved)
    press("ctrl+a")
    write("57")
    expect(day, "the value typed", states[4])
    press(*["Tab"] * (TO_NAME - TO_VALUE), "ctrl+a")
    write("Plan")
    expect(day, "the name typed", states[5])
    return states


def go_back_and_forth(day, states, empty):
    """All the way back, to where there is no page, and forth again by either key."""
    last = shown(day)
    day.shoot("worked")
    with open(day.project_path, "rb") as file:
        saved = file.read()
    press("ctrl+z")
    calm_screen()
    with open(day.project_path, "rb") as file:
        check("the file after undo", file.read() == saved, True)
    expect(day, "step 5 taken back", states[4])
    for place in range(3, -1, -1):
        press("ctrl+z")
        expect(day, f"step {place + 1} taken back", states[place])
    press("ctrl+z")
    check("what is shown without a page", shown(day).data == empty.data, True)
    day.shoot("taken-back")

    # The import comes first; there is nothing to be done again after the last step.
    press("ctrl+y")
    for place, key in enumerate(["ctrl+shift+z", "ctrl+y"] * 3):
        expect(day, f"done again up to {place}", states[place])
        press(key)
    check("what is shown in the end", shown(day).data == last.data, True)
    day.shoot("done-again")


def type_a_text(day, states):
    """What is typed and not taken over yet is the editor's to undo; then it is the document's."""
    plan, position = states[-1], states[-1].labels[0][2]
    go_to(day, TO_TEXT, position)
    write("draft")
    before = calm_screen()
    press("ctrl+z")
    if not before.changes(calm_screen(), day.program.box):
        raise Failure("the editor does not undo what was typed")
    expect(day, "the document as it was", plan)
    # Had the document been told of it, this would take the name back.
    press("Return")
    expect(day, "no text", plan)

    write("Kept")
    press("Return")
    value, _, _ = plan.labels[0]
    expect(day, "a text", Document(["Plan"], (value, "Kept", position), plan.labels[1]))
    press("ctrl+z")
    expect(day, "the text taken back", plan)
    press("ctrl+z")
    expect(day, "the name taken back", states[-2])


def drag_a_page(day, state):
    """The list takes a row that is dropped out and puts it in elsewhere: that is one step."""
    def two_pages(*names):
        return Document(list(names), *state.labels)

    go_to(day, TO_ADD_PAGE, state.labels[0][2])
    press("space")
    expect(day, "another page", two_pages("Page 1", "Page 2"))
    box = day.program.box
    first = Picture.of_screen().box_of(HIGHLIGHT, Box(day.view().right, box.top, box.right, box.bottom))
    left = first.left + 30
    drag((left, first.bottom + first.height // 2), (left, first.top + 1))
    expect(day, "the pages in another order", two_pages("Page 2", "Page 1"))
    day.shoot("page-dragged")
    for key, names in (("ctrl+z", ["Page 1", "Page 2"]), ("ctrl+z", ["Page 1"]),
                       ("ctrl+y", ["Page 1", "Page 2"]), ("ctrl+y", ["Page 2", "Page 1"])):
        press(key)
        expect(day, f"the pages after {key}", two_pages(*names))


def main():
    quillet, results = (os.path.abspath(path) for path in sys.argv[1:])
    shutil.rmtree(results, ignore_errors=True)
    os.makedirs(results)
    day = Day(quillet, results, [noise(results)])
    with day:
        empty = begin(day)
        states = work(day)
        go_back_and_forth(day, states, empty)
        type_a_text(day, states)
        drag_a_page(day, states[-2])
        day.program.close()
        check("exit code", day.program.ended(), 0)


if __name__ == "__main__":
    main()
