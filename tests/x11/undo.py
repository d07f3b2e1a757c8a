#!/usr/bin/env python3
"""Undoes and redoes steps of all kinds with the keys, and reads the saved document after each.

Usage: undo.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

from driver import (HIGHLIGHT, Box, Failure, Picture, stable_screen, click, drag, press,
                    wait_until, write)
from results import Project
from session import check, close_unchanged, noise_page, run_parts, save_as, start_working

# How many times to press Tab from the page view to a widget while a label is selected.
TO_VALUE, TO_TEXT, TO_NAME, TO_ADD_PAGE = 4, 5, 8, 9
DRAG = (70, 40)
# In pixels. A drag starts only after the pointer has moved a few pixels.
TOLERANCE = 2


class Document:
    """An expected document: the names of its pages, and the labels of all pages."""

    def __init__(self, names, *labels):
        self.names, self.labels = names, labels

    def is_in(self, path):
        try:
            pages = Project(path).pages
        except (AssertionError, OSError, ValueError):
            return False  # missing, or not completely written yet
        found = [label for page in pages for label in page["labels"]]
        return ([page["name"] for page in pages] == self.names and
                len(found) == len(self.labels) and all(map(self.is_label, found, self.labels)))

    @staticmethod
    def is_label(found, expected):
        value, text, position = expected
        return ((found["value"], found["text"]) == (value, text) and
                all(abs(a - b) <= TOLERANCE for a, b in zip(found["position"], position)))


def expect(session, what, document):
    """Saves, and waits until the file has the expected document."""
    press("ctrl+s")
    wait_until(what, lambda: document.is_in(session.project_path), seconds=5)


def shown(session):
    return stable_screen().cut(session.view())


def begin(session):
    """Imports the page and shows it."""
    session.empty = shown(session)
    click(session.program.icon(session.resource("menu/file_import.png")))
    session.file_name("Import one or more supported image files", session.images[0])
    # Selects the only row of the page list.
    press("Tab", "Home", "space")
    wait_until("the page", lambda: shown(session).data != session.empty.data)


def go_to(session, tabs, position):
    """Selects the label at a position, then moves the focus to an editor."""
    session.click_page(session.pages[0], position)
    press(*["Tab"] * tabs)


def work(session):
    """Takes steps of several kinds; records the document at first and after each step."""
    page = session.pages[0]
    first, second = session.spots(page, (-120, -60), (40, 80))
    moved = (first[0] + DRAG[0], first[1] + DRAG[1])
    states = [Document(["Page 1"]),
              Document(["Page 1"], (1, "", first)),
              Document(["Page 1"], (1, "", first), (2, "", second)),
              Document(["Page 1"], (1, "", moved), (2, "", second)),
              Document(["Page 1"], (57, "", moved), (2, "", second)),
              Document(["Plan"], (57, "", moved), (2, "", second))]

    save_as(session, session.project_path)
    wait_until("the first file", lambda: states[0].is_in(session.project_path))
    session.click_page(page, first, button=3)
    expect(session, "a label", states[1])
    session.click_page(page, second, button=3)
    expect(session, "another label", states[2])
    left, top = session.origin(page)
    drag((first[0] + left, first[1] + top), (moved[0] + left, moved[1] + top))
    expect(session, "the label dragged", states[3])
    go_to(session, TO_VALUE, moved)
    press("ctrl+a")
    write("57")
    expect(session, "the value typed", states[4])
    press(*["Tab"] * (TO_NAME - TO_VALUE), "ctrl+a")
    write("Plan")
    expect(session, "the name typed", states[5])
    session.states = states


def go_back_and_forth(session):
    """Undoes everything, the import too, and redoes it with both keys."""
    states, last = session.states, shown(session)
    session.shoot("worked")
    with open(session.project_path, "rb") as file:
        saved = file.read()
    press("ctrl+z")
    stable_screen()
    with open(session.project_path, "rb") as file:
        check("the file after undo", file.read() == saved, True)
    expect(session, "step 5 undone", states[4])
    for index in range(3, -1, -1):
        press("ctrl+z")
        expect(session, f"step {index + 1} undone", states[index])
    press("ctrl+z")
    check("what is shown without a page", shown(session).data == session.empty.data, True)
    session.shoot("undone")

    # The first redo is the import. The redo after the last step is a no-op.
    press("ctrl+y")
    for index, key in enumerate(["ctrl+shift+z", "ctrl+y"] * 3):
        expect(session, f"redone up to {index}", states[index])
        press(key)
    check("what is shown in the end", shown(session).data == last.data, True)
    session.shoot("redone")


def type_a_text(session):
    """Undo in an editor changes its text until the text is committed, then the document."""
    states = session.states
    plan, position = states[-1], states[-1].labels[0][2]
    go_to(session, TO_TEXT, position)
    write("draft")
    before = stable_screen()
    press("ctrl+z")
    if not before.changes(stable_screen(), session.program.box):
        raise Failure("the editor does not undo what was typed")
    expect(session, "the document as it was", plan)
    # Return must not record a step, since that step would be undone below.
    press("Return")
    expect(session, "no text", plan)

    press("F2")
    write("Kept")
    press("Return")
    value, _, _ = plan.labels[0]
    expect(session, "a text", Document(["Plan"], (value, "Kept", position), plan.labels[1]))
    press("ctrl+z")
    expect(session, "the text undone", plan)
    press("ctrl+z")
    expect(session, "the name undone", states[-2])


def drag_a_page(session):
    """Dragging a row of the page list is one step."""
    state = session.states[-2]

    def two_pages(*names):
        return Document(list(names), *state.labels)

    go_to(session, TO_ADD_PAGE, state.labels[0][2])
    press("space")
    expect(session, "another page", two_pages("Page 1", "Page 2"))
    box = session.program.box
    first = Picture.of_screen().box_of(HIGHLIGHT, Box(session.view().right, box.top, box.right, box.bottom))
    left = first.left + 30
    drag((left, first.bottom + first.height // 2), (left, first.top + 1))
    expect(session, "the pages in another order", two_pages("Page 2", "Page 1"))
    session.shoot("page-dragged")
    for key, names in (("ctrl+z", ["Page 1", "Page 2"]), ("ctrl+z", ["Page 1"]),
                       ("ctrl+y", ["Page 1", "Page 2"]), ("ctrl+y", ["Page 2", "Page 1"])):
        press(key)
        expect(session, f"the pages after {key}", two_pages(*names))


def make_images(folder):
    return [noise_page(folder)]


if __name__ == "__main__":
    run_parts(make_images, (start_working, begin, work, go_back_and_forth, type_a_text, drag_a_page,
                            close_unchanged))
