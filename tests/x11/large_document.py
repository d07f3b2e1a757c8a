#!/usr/bin/env python3
"""Imports many photographs of 12 megapixels, saves, opens, labels and saves them again, exports two of
them, and measures the memory of the program.

Usage: large_document.py QUILLET RESULTS PAGES
  QUILLET   the program
  RESULTS   a folder for the screenshots and the exported pages; emptied first
  PAGES     number of photographs; each of them takes 36 MB in four files

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
script/large-document does that.
"""

import os
import sys
import time

from driver import Box, Failure, Picture, click, press, stable_screen, wait_until
from results import Project, labels, pixels_of_png
from session import (WORKING_SIZE, check, close_discarding, close_unchanged, export_images, run_parts,
                     save_as)

WIDTH, HEIGHT = 4000, 3000
LIMIT_MEBIBYTES = 600
MINUTES = 60
PAGES = int(sys.argv.pop())
# Pixels from the centre of a label that it may cover.
LABEL_REACH = 60


def make_photographs(folder):
    """Pictures of noise, which no encoder makes smaller. The first two bytes of pixels are the number."""
    paths = []
    for number in range(PAGES):
        paths.append(os.path.join(folder, f"photo{number:03}.ppm"))
        with open(paths[-1], "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (WIDTH, HEIGHT) + number.to_bytes(2, "big"))
            file.write(os.urandom(3 * WIDTH * HEIGHT - 2))
    return paths


def pixels_of_ppm(path):
    with open(path, "rb") as file:
        return file.read()[-3 * WIDTH * HEIGHT:]


class LargeProject(Project):
    """Compares the images with the photographs instead of keeping them."""

    def __init__(self, path, photographs):
        self.photographs = list(photographs)
        super().__init__(path)

    def page(self):
        name = self.text()
        picture = pixels_of_png(self.blob())
        check(f"pixels of {name}", bytes(picture.data) == pixels_of_ppm(self.photographs.pop(0)),
              True)
        return {"name": name, "labels": labels(self.blob())}


def check_memory(session, what):
    with open(f"/proc/{session.program.process.pid}/status") as status:
        peak = next(int(line.split()[1]) for line in status if line.startswith("VmHWM")) / 1024
    print(f"{what}: peak memory {peak:.0f} MiB", flush=True)
    if peak > LIMIT_MEBIBYTES:
        raise Failure(f"{what}: {peak:.0f} MiB are more than {LIMIT_MEBIBYTES} MiB")


def is_idle(session):
    """Whether the program used no processor time for a second, and has no processes of its own."""
    folder = f"/proc/{session.program.process.pid}"

    def ticks():
        with open(f"{folder}/stat") as status:
            fields = status.read().rsplit(")", 1)[1].split()
        return sum(int(field) for field in fields[11:15])

    def processes():
        with open(f"{folder}/task/{session.program.process.pid}/children") as children:
            return children.read()

    before = ticks()
    time.sleep(1)
    return ticks() == before and not processes()


def wait_for_program(session, what):
    started = time.monotonic()
    wait_until(what, lambda: is_idle(session), MINUTES * 60)
    print(f"{what}: {time.monotonic() - started:.0f} s", flush=True)


def import_and_save(session):
    session.start(*session.images)
    wait_for_program(session, "the import")
    session.program.resize(*WORKING_SIZE)
    session.shoot("imported")
    check_memory(session, "import")
    save_as(session, session.project_path)
    wait_for_program(session, "the first save")
    session.shoot("saved")
    check_memory(session, "first save")
    close_unchanged(session)


def open_and_save(session):
    session.start(session.project_path)
    wait_for_program(session, "opening")
    session.program.resize(*WORKING_SIZE)
    click(session.program.box.centre, button=3)
    stable_screen()
    press("ctrl+s")
    wait_for_program(session, "the second save")
    session.shoot("labelled")
    check_memory(session, "second save")


def export_two_pages(session):
    """Exports the last two pages, one of which has the label. The others are removed before."""
    box = session.program.box
    click((box.right - 100, box.top + 160))
    press("End", "Up", "Up", "shift+Home", "Delete")
    session.program.dialog()
    press("alt+y")
    stable_screen()
    export_images(session)
    wait_for_program(session, "the export")
    session.shoot("exported")
    check_memory(session, "export")
    close_discarding(session)


def check_document(session):
    project = LargeProject(session.project_path, session.images)
    check("pages", len(project.pages), PAGES)
    check("labels", [len(page["labels"]) for page in project.pages], [0] * (PAGES - 1) + [1])
    session.label = project.pages[-1]["labels"][0]["position"]


def check_exports(session):
    """The exported pages have the pixels of the photographs, except for the label."""
    folder = os.path.join(session.results, "pages")
    paths = [os.path.join(folder, name) for name in sorted(os.listdir(folder))]
    check("exported pages", len(paths), 2)
    plain, labelled = (Picture.load(path, "-alpha", "off") for path in paths)
    check("pixels of " + paths[0], bytes(plain.data) == pixels_of_ppm(session.images[-2]), True)
    page = Picture.load(session.images[-1])
    x, y = (round(coordinate) for coordinate in session.label)
    covered = page.changes(labelled, page.box)
    check("the label is on " + paths[1], covered is not None, True)
    around = Box(x - LABEL_REACH, y - LABEL_REACH, x + LABEL_REACH, y + LABEL_REACH)
    check("pixels of " + paths[1], page.changes(labelled.with_box_of(page, around), page.box), None)


if __name__ == "__main__":
    run_parts(make_photographs, [import_and_save, open_and_save, export_two_pages, check_document,
                                 check_exports])
