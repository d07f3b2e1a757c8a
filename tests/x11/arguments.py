#!/usr/bin/env python3
"""Starts the program with files on its command line, as a desktop does.

Usage: arguments.py QUILLET RESULTS
  QUILLET   the program, with quillet-cli beside it
  RESULTS   a folder for the screenshots and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import os

from driver import run
from session import close_discarding, close_unchanged, noise_page, run_parts


def open_project(session):
    """The page of the project is visible, and closing asks nothing."""
    tool = os.path.join(os.path.dirname(session.quillet), "quillet-cli")
    run(tool, "create", session.images[0], "--output", session.project_path)
    session.start("--ignored", session.project_path)
    session.shoot("project")
    session.origin(session.pages[0])
    close_unchanged(session)


def open_image(session):
    """The image is a page of a new document: closing asks about unsaved work."""
    session.start(session.images[0])
    session.shoot("image")
    close_discarding(session)


if __name__ == "__main__":
    run_parts(lambda folder: [noise_page(folder)], [open_project, open_image])
