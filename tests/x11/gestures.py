#!/usr/bin/env python3
"""Zooms, moves and copies labels, and moves pages, with the wheel, the keys and the mouse.

Usage: gestures.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import math
import re

from driver import Box, click, drag, point_at, press, stable_screen, turn_wheel, write
from results import Project, report_pages
from session import (BORDERS, COLOUR, SQUARE, TRIANGLE, check, check_labels, check_near,
                     close_unchanged, import_pages, label_at, run_parts, save_as, start_working)

FIRST_PAGE, LAST_PAGE = 16, 18
# The page of this test, with one page before it and one after it.
PAGE = 1
# A piece of the view beside the page, in pixels of its colour.
SHADE = rb"(?:\xb8\xb8\xb8){20,}"
# How many times to press Tab from the page view to the border's box while a label is selected.
TO_BORDER = 6


def label_page(session):
    """Adds two labels with other borders. Their upright lines have pixels of the unmixed colour."""
    page = session.pages[PAGE]
    session.page_row(PAGE)
    # The view zooms about its centre. Coming from a zoom that shows the whole page, that is the
    # page's centre.
    session.set_slider("zoom", *["Prior"] * 10)
    session.labels = []
    for border, spot in zip((TRIANGLE, SQUARE), session.spots(page, (-80, -40), (80, 40))):
        session.click_page(page, spot, button=3)
        session.click_page(page, spot)
        press(*["Tab"] * TO_BORDER, "Home", *["Down"] * BORDERS.index(border))
        session.labels.append(label_at(spot, border))


def page_width(session):
    """The width of a page that is visible from its left to its right edge."""
    box = session.program.box
    row = stable_screen().row(box.centre[1], box.left, box.right)
    left, right = (shade.span() for shade in re.finditer(SHADE, row))
    return (right[0] - left[1]) // 3


def zoom_with_slider(session):
    """The slider scales what the view shows."""
    widths = {}
    # Each step of the slider adds 1/50 to the exponent; a key moves it by ten steps.
    session.set_slider("zoom", *["Prior"] * 5)
    session.shoot("zoomed-out")
    # At half the size and below, no pixel has the unmixed colour of the labels.
    expected = session.pages[PAGE].width * math.exp(-1)
    check_near("width of the page, zoomed-out", [page_width(session)], [expected], 4)
    for name, keys in (("zoomed-in", 12), ("full-size", 10)):
        session.set_slider("zoom", *["Prior"] * keys)
        if name != "full-size":
            session.shoot(name)
        widths[name] = stable_screen().box_of(COLOUR, session.view()).width
    # Smooth scaling pales the outermost pixels, which makes the distance a little smaller.
    expected = widths["full-size"] * math.exp(0.4)
    check_near("width, zoomed-in", [widths["zoomed-in"]], [expected], 0.1 * expected)


def label_box(session, centre):
    """The box of the label around a point of the screen."""
    reach = 45
    x, y = centre
    return stable_screen().box_of(COLOUR, Box(x - reach, y - reach, x + reach, y + reach))


def zoom_with_wheel(session):
    """The wheel zooms about the pointer."""
    left, top = session.origin(session.pages[PAGE])
    x, y = session.labels[1]["position"]
    pointer = x + left, y + top

    def width():
        return stable_screen().box_of(COLOUR, session.view()).width

    before, width_before = label_box(session, pointer), width()
    point_at(*pointer)
    turn_wheel(3, holding="ctrl")
    session.shoot("zoomed-by-wheel")
    # A notch is five steps of the slider.
    expected = width_before * math.exp(15 / 50)
    check_near("width after three notches", [width()], [expected], 0.1 * expected)
    # A zoom about the middle of the view would move the label by 28 pixels. Scaling pales its edges.
    check_near("label under the pointer", label_box(session, pointer).centre, pointer, 12)
    turn_wheel(-3, holding="ctrl")
    check_near("label under the pointer again", label_box(session, pointer).centre, before.centre, 1)


def move_label_with_keys(session):
    """Ctrl and an arrow key move a label by 1 pixel, with Shift by 10."""
    page, label = session.pages[PAGE], session.labels[1]
    left, top = session.origin(page)
    x, y = label["position"]
    session.click_page(page, (x, y))
    before = label_box(session, (x + left, y + top))
    press("ctrl+Right", "ctrl+Right", "ctrl+Right", "ctrl+shift+Down")
    after = label_box(session, (x + left, y + top))
    check("moved label", (after.left, after.top), (before.left + 3, before.top + 10))
    label["position"] = x + 3, y + 10


def remove_label_with_key(session):
    """Delete in the list removes a label, but only after the answer Yes."""
    page = session.pages[PAGE]
    superfluous = session.spots(page, (-120, 150))[0]
    session.click_page(page, superfluous, button=3)
    session.click_page(page, superfluous)
    # From the view to the list.
    press("Tab")
    for answer in ("alt+n", "alt+y"):
        press("Delete")
        session.program.dialog()
        session.program.answer(answer)


def copy_labels_with_keys(session):
    """Labels are copied to the next page, moved there together, and one of them gets a text."""
    def places(page, labels):
        left, top = session.origin(page)
        return [(label["position"][0] + left, label["position"][1] + top) for label in labels]

    first, second = places(session.pages[PAGE], session.labels)
    click(first)
    click(second, holding="ctrl")
    stable_screen()
    press("ctrl+c", "ctrl+Next", "ctrl+v", "ctrl+0", "ctrl+1")
    session.shoot("pasted")
    (x, y), _ = places(session.pages[PAGE + 1], session.labels)
    drag((x, y), (x + 30, y + 20), holding="ctrl")
    # The rectangle selects the second label only.
    (x, y) = places(session.pages[PAGE + 1], session.labels)[1]
    drag((x - 20, y - 20), (x + 70, y + 60), holding="shift")
    press("F2")
    write("Copied")
    press("Return", "ctrl+Prior")
    session.shoot("copied")
    session.copies = [label_at((label["position"][0] + 30, label["position"][1] + 20),
                               label["border"], text)
                      for label, text in zip(session.labels, ("", "Copied"))]


def move_page_with_keys(session):
    """Alt and an arrow key move a page in the list."""
    goal, start = session.page_row(PAGE + 1).top, session.page_row(PAGE).top
    for key, expected in (("alt+Down", goal), ("alt+Up", start)):
        press(key)
        stable_screen()
        check("row of the page after " + key, session.selected_rows("pages").top, expected)


def check_saved_labels(session):
    save_as(session, session.project_path)
    close_unchanged(session)
    pages = Project(session.project_path).pages
    check_labels(pages[PAGE]["labels"], session.labels, "the page")
    check_labels(pages[PAGE + 1]["labels"], session.copies, "the next page")


def render_pages(folder):
    return report_pages(folder, FIRST_PAGE, LAST_PAGE)


if __name__ == "__main__":
    run_parts(render_pages,
              (start_working, import_pages, label_page, zoom_with_slider, zoom_with_wheel,
               move_label_with_keys, remove_label_with_key, copy_labels_with_keys,
               move_page_with_keys, check_saved_labels))
