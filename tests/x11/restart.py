#!/usr/bin/env python3
"""Closes the program with each answer to the question about unsaved work, and starts it again.

A new start restores the window, a floating dock and the settings, and recovers the work of a killed
program.

Usage: restart.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import filecmp
import glob
import os
import re
import shutil

from driver import Box, Failure, Picture, stable_screen, click, drag, press, wait_until
from results import Project
from session import (ELLIPSE, NEW_COLOUR, NEW_SIZE, WORKING_SIZE, change_appearance, check,
                     check_label_colour, check_labels, close_discarding, close_unchanged,
                     import_pages, label_at, noise_page, run_parts, save_as)

# The page to work with. A new start selects the first one.
PAGE = 1


def first_look(session):
    """The page view takes most of the window at the first start."""
    session.start()
    session.shoot("first-start")
    box = session.program.box
    check("size of the window", (box.width, box.height), (800, 600))
    # Only the page view has such a long run of one shade, which surrounds the page.
    screen = stable_screen()
    widest = max(len(shade) // 3 for y in range(box.top, box.bottom)
                 for shade in re.findall(rb"(?:\xb8\xb8\xb8)+", screen.row(y, box.left, box.right)))
    if widest < 0.4 * box.width:
        raise Failure(f"the page view is only {widest} pixels wide")
    session.program.resize(*WORKING_SIZE)


def label_page(session):
    page = session.pages[PAGE]
    session.page_row(PAGE)
    session.labels = [label_at(session.spots(page, (-60, -60))[0], ELLIPSE)]
    session.click_page(page, session.labels[0]["position"], button=3)
    save_as(session, session.project_path)


def close_with_cancel_then_yes(session):
    """Cancel keeps the program open and the file as it was; Yes saves."""
    kept = os.path.join(session.results, "before.quillet")
    shutil.copy(session.project_path, kept)
    page = session.pages[PAGE]
    spot = session.spots(page, (-120, 120))[0]
    session.click_page(page, spot, button=3)
    session.labels.append(label_at(spot, ELLIPSE))

    session.program.close()
    session.program.dialog()
    session.shoot("close-question")
    session.program.answer("Escape")
    check("unchanged after Cancel", filecmp.cmp(session.project_path, kept, False), True)
    session.program.close()
    session.program.dialog()
    press("alt+y")
    check("exit code", session.program.ended(), 0)
    check_labels(Project(session.project_path).pages[PAGE]["labels"], session.labels, "the page")


def open_again(session):
    """A new start shows the saved document in a window of the same size; No discards changes."""
    session.start()
    box = session.program.box
    check("size of the window", (box.width, box.height), WORKING_SIZE)
    press("ctrl+o")
    session.file_name("Select a Quillet file to open", session.project_path)
    session.page_row(PAGE)
    session.shoot("opened-again")
    left, top = session.origin(session.pages[PAGE])
    x, y = session.labels[-1]["position"]
    check_label_colour(stable_screen(), (x + left, y + top), NEW_COLOUR, "on the screen")

    again = os.path.join(session.results, "again.quillet")
    save_as(session, again)
    check("saved again", filecmp.cmp(again, session.project_path, False), True)

    page = session.pages[PAGE]
    session.click_page(page, session.spots(page, (-60, 60))[0], button=3)
    close_discarding(session)
    check("unchanged after No", filecmp.cmp(again, session.project_path, False), True)


def recover_after_a_kill(session):
    """The next start after SIGKILL announces the unsaved work; "Open" and Save bring it back."""
    session.start()
    press("ctrl+o")
    session.file_name("Select a Quillet file to open", session.project_path)
    session.page_row(PAGE)
    page = session.pages[PAGE]
    spot = session.spots(page, (-60, 60))[0]
    session.click_page(page, spot, button=3)
    session.labels.append(label_at(spot, ELLIPSE))
    saved = Project(session.project_path).pages[PAGE]["labels"]
    session.program.process.kill()
    session.program.process.wait()

    session.start()
    session.shoot("recovered-work")
    # Only the zoom comes after the buttons of the notice.
    press("shift+Tab", "shift+Tab", "shift+Tab", "space")
    stable_screen()
    session.shoot("recovered-work-opened")
    check("unchanged before saving", Project(session.project_path).pages[PAGE]["labels"], saved)
    press("ctrl+s")
    wait_until("the end of the recovered work", lambda: not recovery_files())
    check_labels(Project(session.project_path).pages[PAGE]["labels"], session.labels, "the page")
    close_unchanged(session)


def recovery_files():
    return glob.glob(os.path.expanduser("~/.quillet/recovery/*"))


def float_a_dock(session):
    """A floating dock is visible where it was after a restart."""
    session.start()
    box = session.program.box
    icon_y = session.program.icon(session.resource("menu/file_new.png"))[1]
    click((box.left + 40, icon_y + 33), times=2)
    dock = wait_until("the floating dock", session.program.windows_but_main)[0]
    stable_screen()
    docked = session.program.box_of_window(dock)
    drag((docked.left + 40, docked.top + 10), (box.left + 240, box.top + 140))
    stable_screen()
    left = session.program.box_of_window(dock)
    check("the dock was dragged", (left.left, left.top) != (docked.left, docked.top), True)
    seen = Picture.of_screen().cut(left.shrunk(2))
    session.shoot("floating-dock")
    close_unchanged(session)

    session.start()
    dock = wait_until("the floating dock", session.program.windows_but_main)[0]
    session.shoot("dock-again")
    found = session.program.box_of_window(dock)
    check("position of the dock", (found.left, found.top), (left.left, left.top))
    # Its title at least; its size is not restored.
    title = Box(8, 4, 100, 20)
    now = stable_screen().cut(found.shrunk(2))
    title_now, title_before = now.cut(title), seen.cut(title)
    check("difference of the dock's title", title_now.changes(title_before, title_now.box), None)
    close_unchanged(session)


def check_home(_session):
    """The settings file has the settings, and no recovery copy is left."""
    with open(os.path.expanduser("~/.quillet/Settings.ini"), encoding="utf-8") as file:
        settings = file.read()
    for line in (f"Label_Size={NEW_SIZE}", "Label_Floating=true", "Page_Floating=false",
                 "Label_Color=#%02x%02x%02x" % NEW_COLOUR):
        check(f"{line} in the settings", line in settings, True)
    check("recovered work", recovery_files(), [])


def make_images(folder):
    return [noise_page(folder, seed) for seed in (1, 2)]


if __name__ == "__main__":
    run_parts(make_images,
              (first_look, import_pages, change_appearance, label_page, close_with_cancel_then_yes,
               open_again, recover_after_a_kill, float_a_dock, check_home))
