#!/usr/bin/env python3
"""Watches the processes that encode imported photographs in the background, and those of a save.

Usage: background.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import os
import threading
import time

from driver import wait_until
from results import Project, pixels_of_png
from session import check, close_unchanged, run_parts, save_as

WIDTH, HEIGHT = 2000, 1500
COUNT = 3
PATIENCE_SECONDS = 120  # on a busy machine


def make_photographs(folder):
    paths = []
    for number in range(COUNT):
        paths.append(os.path.join(folder, f"photograph-{number}.ppm"))
        with open(paths[-1], "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (WIDTH, HEIGHT) + os.urandom(3 * WIDTH * HEIGHT))
    return paths


def processes(session):
    """The processes that the program has started, as a set of ids."""
    process = session.program.process.pid
    with open(f"/proc/{process}/task/{process}/children") as children:
        return set(map(int, children.read().split()))


class Watch:
    """Collects the processes that the program starts while this object is used."""

    def __init__(self, session):
        self.session = session
        self.seen = set()
        self.is_over = False
        self.thread = threading.Thread(target=self.collect)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.is_over = True
        self.thread.join()

    def collect(self):
        while not self.is_over:
            self.seen |= processes(self.session)
            time.sleep(0.002)


def encode_in_background(session):
    session.start(*session.images)
    wait_until("processes", lambda: processes(session))
    limit = len(os.sched_getaffinity(0))
    check("too many processes", len(processes(session)) > limit, False)
    wait_until("the last result", lambda: not processes(session), PATIENCE_SECONDS)


def save_without_processes(session):
    with Watch(session) as watch:
        save_as(session, session.project_path)
        wait_until("the file", lambda: os.path.exists(session.project_path))
        wait_for_end_of_save(session)
    check("processes of the save", watch.seen, set())


def wait_for_end_of_save(session):
    """Waits until the file does not grow any more."""
    sizes = [-1, -2]
    while sizes[-1] != sizes[-2]:
        time.sleep(0.3)
        sizes.append(os.path.getsize(session.project_path))


def check_document(session):
    close_unchanged(session)
    project = Project(session.project_path)
    check("pages", len(project.pages), COUNT)
    for page, path in zip(project.pages, session.images):
        with open(path, "rb") as file:
            pixels = file.read()[-3 * WIDTH * HEIGHT:]
        check(f"pixels of {page['name']}", bytes(pixels_of_png(page["image"]).data) == pixels, True)


if __name__ == "__main__":
    run_parts(make_photographs, (encode_in_background, save_without_processes, check_document))
