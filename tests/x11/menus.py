#!/usr/bin/env python3
"""Renumbers, inserts, rotates and duplicates with the context menus, copies and finds labels, and reads the
saved document.

Usage: menus.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

from driver import press, stable_screen, wait_until, write
from results import Project
from session import (NOISE_EDGE, WORKING_SIZE, check, check_near, close_unchanged, noise_page, run_parts,
                     save_as)

# How many times to press Tab from the page view to a list while a label is selected.
TO_ITEMS, TO_PAGES = 1, 7
TOLERANCE = 0.01  # in pixels; the file has few decimals


def begin(session):
    """Shows the first of two pages, and puts labels on it that are not in reading order."""
    session.start(*session.images)
    session.program.resize(*WORKING_SIZE)
    stable_screen()
    press("ctrl+Next")
    page = session.pages[0]
    session.places = session.spots(page, (60, 90), (-80, 60), (90, -50))
    for place in session.places:
        session.click_page(page, place, button=3)
    session.shoot("unsaved")
    save_as(session, session.project_path)
    wait_until("the file", lambda: values(session) == [[1, 2, 3], []])


def pages(session):
    try:
        return Project(session.project_path).pages
    except (AssertionError, OSError, ValueError):
        return []  # missing, or not completely written yet


def values(session):
    return [[label["value"] for label in page["labels"]] for page in pages(session)]


def expect(session, what, expected):
    """Saves, and waits until the labels of the file have these values, page by page."""
    press("ctrl+s")
    wait_until(what, lambda: values(session) == expected)


def choose(session, tabs, *keys):
    """Chooses an entry of a list's context menu with the keyboard, coming from the find bar."""
    press("ctrl+f", "Escape", *["Tab"] * tabs, "Menu")
    stable_screen()
    press(*keys)
    stable_screen()


def renumber(session):
    """The entries for the row order, the reading order and columns are the fourth to second from below."""
    session.click_page(session.pages[0], session.places[0])
    orders = {"reading order": (3, [3, 2, 1]), "columns": (2, [3, 1, 2])}
    for name, (entry, expected) in orders.items():
        choose(session, TO_ITEMS, *["Up"] * entry, "Return")
        expect(session, f"the labels in {name}", [expected, []])
        choose(session, TO_ITEMS, "Down", "Return")
        expect(session, "the labels after undo", [[1, 2, 3], []])
    press("ctrl+f", "Escape", "Tab", "alt+Down")
    choose(session, TO_ITEMS, *["Up"] * 4, "Return")
    expect(session, "the labels in the order of the rows", [[2, 1, 3], []])
    press("ctrl+z")
    expect(session, "the labels after undo", [[1, 2, 3], []])


def duplicate_and_cut(session):
    """The copy of a label is cut, and pasted on the other page."""
    session.click_page(session.pages[0], session.places[2])
    press("ctrl+d")
    expect(session, "a copy of the label", [[1, 2, 3, 4], []])
    press("ctrl+x")
    expect(session, "the labels without the copy", [[1, 2, 3], []])
    press("ctrl+Next", "ctrl+v")
    stable_screen()
    session.shoot("pasted")
    expect(session, "a label on the other page", [[1, 2, 3], [5]])
    press("ctrl+z", "ctrl+Prior")
    expect(session, "the other page without label", [[1, 2, 3], []])


def find(session):
    """Finds a label of the first page while the second one is shown."""
    press("ctrl+Next")
    stable_screen()
    press("ctrl+f")
    write("2")
    press("Return")
    stable_screen()
    session.shoot("found")
    # The keys move the label that was found.
    press("Escape", "ctrl+Right")
    press("ctrl+s")
    moved = (session.places[1][0] + 1, session.places[1][1])
    wait_until("the label that was found to move",
               lambda: [label["position"] for page in pages(session)[:1]
                        for label in page["labels"]][1:2] == [moved])


def rotate_and_duplicate(session):
    """Rotates the page to the right, and duplicates it."""
    choose(session, TO_PAGES, *["Up"] * 3, "Return")
    choose(session, TO_PAGES, *["Up"] * 2, "Return")
    session.shoot("rotated")
    expect(session, "a copy of the page", [[1, 2, 3], [1, 2, 3], []])
    found = pages(session)
    check("names", [page["name"] for page in found], ["Page 1", "Page 1 copy", "Page 2"])
    x, y = session.places[0]
    for page in found[:2]:
        check_near("the rotated label", page["labels"][0]["position"], (NOISE_EDGE - y, x), TOLERANCE)


def insert_images(session):
    """The sixth entry from below inserts an image after the selected page."""
    choose(session, TO_PAGES, *["Up"] * 6, "Return")
    session.file_name("Insert images", session.images[1])
    session.shoot("inserted")
    expect(session, "a page between the two copies", [[1, 2, 3], [], [1, 2, 3], []])


def make_images(folder):
    return [noise_page(folder, seed) for seed in (1, 2)]


if __name__ == "__main__":
    run_parts(make_images, (begin, renumber, duplicate_and_cut, find, rotate_and_duplicate, insert_images,
                            close_unchanged))
