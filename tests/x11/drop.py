#!/usr/bin/env python3
"""Drops images and a project on the window, from another program, and reads the saved document.

Usage: drop.py QUILLET RESULTS
  QUILLET   the program, with ../tests/dragsource beside its folder
  RESULTS   a folder for the screenshots and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import contextlib
import os
import subprocess

from driver import Program, drag, press, run, stable_screen, wait_until
from results import Project, pixels_of_png
from session import (WORKING_SIZE, check, close_discarding, close_unchanged, noise_page, run_parts,
                     save_as)

SOURCE_PLACE = (1188, 600)  # to the right of the program's window


@contextlib.contextmanager
def drag_source(session, paths):
    """A window from which files can be dragged; yields its centre."""
    path = os.path.join(os.path.dirname(session.quillet), "..", "tests", "dragsource")
    process = subprocess.Popen([path, *paths])
    try:
        window = wait_until("the drag source", lambda: subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(process.pid), "--name", "Drag source"],
            stdout=subprocess.PIPE, check=False).stdout.decode().split())[0]
        run("xdotool", "windowmove", "--sync", window, *map(str, SOURCE_PLACE))
        stable_screen()
        yield Program.box_of_window(window).centre
    finally:
        process.kill()
        process.wait()


def drop(session, *paths):
    with drag_source(session, paths) as start:
        drag(start, session.view().centre, moves=20)
        stable_screen()


def begin(session):
    session.start()
    session.program.resize(*WORKING_SIZE)


def drop_images(session):
    """Images become new pages, sorted by name, below the page that was there."""
    drop(session, session.images[0])
    drop(session, session.images[2], session.images[1])
    session.shoot("images")
    save_as(session, session.project_path)
    wait_until("the file", lambda: os.path.exists(session.project_path))
    saved = Project(session.project_path).pages
    check("the pages", [pixels_of_png(page["image"]).data == picture.data
                        for page, picture in zip(saved, session.pages)], [True] * 3)
    close_unchanged(session)


def drop_project(session):
    """A project is opened after the question about unsaved work."""
    session.start(session.images[0])
    session.program.resize(*WORKING_SIZE)
    drop(session, session.project_path)
    session.program.dialog()
    session.shoot("question")
    session.program.answer("alt+n")
    # The document is still there, and still unsaved.
    drop(session, session.project_path)
    session.program.dialog()
    session.program.answer("alt+y")
    session.shoot("project")
    session.origin(session.pages[2])
    close_unchanged(session)


def unsaved_images(session):
    """Dropped images are unsaved work."""
    begin(session)
    drop(session, session.images[1])
    press("ctrl+Next")
    session.origin(session.pages[1])
    close_discarding(session)


if __name__ == "__main__":
    run_parts(lambda folder: [noise_page(folder, seed) for seed in (1, 2, 3)],
              (begin, drop_images, drop_project, unsaved_images))
