"""Shared by the tests of the running program: one session of work, and checks of its results.

A session is a Program with a set of page images, the boxes of its widgets and a results folder.
"""

import functools
import os
import random
import shutil
import sys
import tempfile
import time

from driver import (HIGHLIGHT, Box, Failure, Picture, Program, stable_screen, click, press, run,
                    wait_until, write)

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
WORKING_SIZE = (1160, 800)
# The default label colour, and the one that the tests choose.
COLOUR, NEW_COLOUR = (0xf7, 0x97, 0x41), (0xc2, 0x18, 0x5b)
NEW_SIZE, SMALLEST_SIZE = 40, 16
NO_BORDER, SQUARE, ELLIPSE, TRIANGLE, DIAMOND = 0, 1, 2, 4, 8
# The borders in the order of the combo box.
BORDERS = [NO_BORDER, ELLIPSE, SQUARE, TRIANGLE, DIAMOND]

ITEM_WIDGETS = ["items", "item_add", "item_remove", "value", "text", "border"]
PAGE_WIDGETS = ["pages", "name", "page_add", "page_remove"]
SETTINGS = ["format", "colour", "size", "orientation", "resolution", "track"]

NOISE_EDGE = 500


def check(what, found, expected):
    if found != expected:
        raise Failure(f"{what}: found {found!r}, expected {expected!r}")


def check_near(what, found, expected, tolerance):
    if any(abs(a - b) > tolerance for a, b in zip(found, expected)):
        raise Failure(f"{what}: found {found!r}, expected about {expected!r}")


def label_at(position, border, text="", tolerance=0.01):
    """An expected label; the tolerance of its position is in pixels."""
    return {"text": text, "border": border, "position": position, "tolerance": tolerance}


def check_labels(found, expected, name):
    check(f"number of labels of {name}", len(found), len(expected))
    for label, wanted in zip(found, expected):
        check(f"text of a label of {name}", label["text"], wanted["text"])
        check(f"border of a label of {name}", label["border"], wanted["border"])
        check_near(f"position of a label of {name}", label["position"], wanted["position"],
                   wanted["tolerance"])


def check_label_colour(picture, centre, colour, where):
    """Fails when no pixel near a label's centre has the colour of its border."""
    x, y = centre
    reach = NEW_SIZE // 2 + 4
    if not picture.box_of(colour, Box(x - reach, y - reach, x + reach, y + reach)):
        raise Failure(f"no label of colour {colour} at ({x}, {y}) {where}")


def noise_page(folder, seed=1):
    """Writes an image in which every piece is unique; returns its path."""
    path = os.path.join(folder, f"noise-{seed}.ppm")
    with open(path, "wb") as file:
        file.write(b"P6 %d %d 255\n" % (NOISE_EDGE, NOISE_EDGE) +
                   random.Random(seed).randbytes(3 * NOISE_EDGE**2))
    return path


class Session:
    """The running program, the boxes of its widgets, and the page images that a test works with.

    `images` are the paths of the page images. Tests add attributes for the expected document.
    """

    def __init__(self, quillet, results, images):
        self.quillet = quillet
        self.results = results
        self.images = images
        self.project_path = os.path.join(results, "report.quillet")
        self.program = None
        self.boxes = {}
        self.shots = 0

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        """Takes a screenshot after a failure, and ends the program."""
        try:
            if kind is not None:
                run("import", "-silent", "-window", "root",
                    os.path.join(self.results, "failure.png"))
        finally:
            if self.program and self.program.process.poll() is None:
                self.program.process.kill()
                self.program.process.wait()

    @functools.cached_property
    def pages(self):
        """The page images, in memory."""
        return [Picture.load(path) for path in self.images]

    # --- looking at the screen -----------------------------------------------------------------

    def start(self, *arguments):
        self.program = Program(self.quillet, "Quillet", *arguments)
        stable_screen()

    def shoot(self, name):
        """Takes a screenshot for a person to look at."""
        self.shots += 1
        path = os.path.join(self.results, f"{self.shots:02}-{name}.png")
        stable_screen()
        run("import", "-silent", "-window", "root", path)

    def resource(self, name):
        return os.path.join(SOURCES, "resources", name)

    def view(self):
        """A part of the page view that shows nothing but the page."""
        box = self.program.box
        return Box(box.centre[0] - 170, box.top + 90, box.centre[0] + 170, box.bottom - 90)

    def origin(self, page):
        """The screen position of the top left corner of a page image that is shown at zoom 1.

        Looks for pieces of the screen in the image.
        """
        screen, area = stable_screen(), self.view()
        width = 60
        for y in range(area.top, area.bottom, 3):
            for x in range(area.left, area.right - width, width):
                piece = screen.row(y, x, x + width)
                if len(set(piece)) < 20:
                    continue
                positions = list(page.positions(piece))
                if len(positions) == 1:
                    return x - positions[0][0], y - positions[0][1]
        raise Failure("the page is not visible")

    def selected_rows(self, panel):
        """The selected rows of a list, as one box."""
        below = self.boxes["item_add" if panel == "items" else "page_add"]
        left, right = ((self.program.box.left, below.right) if panel == "items"
                       else (self.boxes["name"].left, self.program.box.right))
        area = Box(left, self.program.box.top + 90, right, below.top - 4)
        return wait_until("a selected row", lambda: Picture.of_screen().box_of(HIGHLIGHT, area))

    def page_row(self, index):
        """Selects a page by its index in the list, with the keyboard; returns the box of its row."""
        below = self.boxes["page_add"]
        click((below.centre[0], below.top - 16))
        press("Home", *["Down"] * index)
        stable_screen()
        return self.selected_rows("pages")

    # --- operating the program -----------------------------------------------------------------

    def file_name(self, title, path):
        """Types a path into a file dialog and accepts it."""
        self.program.dialog(title)
        write(path)
        self.program.answer("Return")

    def from_menu(self, *keys):
        """Chooses a menu item with the keyboard."""
        press("alt")
        press(*keys)

    def click_page(self, page, spot, button=1):
        """Clicks a point of a page image, wherever the view shows it."""
        left, top = self.origin(page)
        click((spot[0] + left, spot[1] + top), button)
        stable_screen()

    def spots(self, page, *offsets):
        """Points of a page image, given as offsets from the middle of the view."""
        left, top = self.origin(page)
        x, y = self.view().centre
        return [(x + right - left, y + down - top) for right, down in offsets]

    def retype(self, editor, text, *keys):
        """Replaces the text of an editor."""
        click(self.boxes[editor])
        press("ctrl+a")
        write(text)
        press(*keys)
        stable_screen()

    def choose_border(self, border):
        click(self.boxes["border"])
        stable_screen()
        press("Home", *["Down"] * BORDERS.index(border), "Return")
        stable_screen()

    def set_slider(self, name, *keys):
        """Moves a slider to its lower end, then presses keys."""
        click(self.boxes[name])
        press("Home", *keys)
        stable_screen()


# --- actions that several tests take ----------------------------------------------------------------


def start_working(session):
    """Starts the program in a window of the working size."""
    session.start()
    session.program.resize(*WORKING_SIZE)


def status_bar(session):
    """The box of the messages."""
    box = session.program.box
    return Box(box.left, box.bottom - 24, box.centre[0], box.bottom)


def wait_for_end_of_message(session, before):
    """Waits until the status bar looks as in a screenshot: messages disappear after some seconds.

    The mark of unsaved changes may have appeared meanwhile.
    """
    mark_width = 12

    def is_over():
        changes = before.changes(Picture.of_screen(), status_bar(session))
        return not changes or changes.width <= mark_width

    wait_until("the message in the status bar to disappear", is_over)


def import_pages(session):
    """Imports the page images through the file dialog."""
    boxes = session.program.walk(["page", "pages", "page_add", *SETTINGS, "zoom"])
    session.boxes = {"name": Box(boxes["format"].left - 112, 0, 0, 0), **boxes}
    before = stable_screen()
    click(session.program.icon(session.resource("menu/file_import.png")))
    session.program.dialog("Import one or more supported image files")
    write(os.path.dirname(session.images[0]))
    press("Return")
    stable_screen()
    write(" ".join(f'"{os.path.basename(path)}"' for path in session.images))
    session.shoot("import-dialog")
    session.program.answer("Return")
    session.shoot("imported")
    wait_for_end_of_message(session, before)


def learn_boxes(session):
    """Labels the first page, and walks through all widgets of the window with the Tab key.

    The editors of a label can be reached only while a label is selected.
    """
    session.page_row(0)
    spot = session.spots(session.pages[0], (-120, -160))[0]
    session.click_page(session.pages[0], spot, button=3)
    session.first_page = [label_at(spot, ELLIPSE)]
    session.click_page(session.pages[0], spot)
    session.boxes = session.program.walk(["page", *ITEM_WIDGETS, *PAGE_WIDGETS, *SETTINGS, "zoom"])
    for name in ITEM_WIDGETS[1:] + PAGE_WIDGETS[1:] + SETTINGS + ["zoom"]:
        if not session.boxes[name]:
            raise Failure(f"the Tab key does not reach {name}")
    for name in ("item_add", "item_remove", "page_add", "page_remove"):
        check(f"size of {name}", (session.boxes[name].width, session.boxes[name].height), (22, 22))
    session.shoot("first-label")


def change_appearance(session):
    """Sets the size and colour of all labels."""
    session.page_row(0)
    session.set_slider("size", *["Right"] * (NEW_SIZE - SMALLEST_SIZE))
    click(session.boxes["colour"])
    session.program.dialog()
    press("alt+h")
    press("ctrl+a")
    write("#%02x%02x%02x" % NEW_COLOUR)
    session.shoot("colour-dialog")
    session.program.answer("Return")
    session.shoot("new-appearance")


def save_as(session, path):
    # On some desktops, Save As has no shortcut.
    session.from_menu(*["Down"] * 4, "Return")
    session.file_name("Save quillet file", path)


def export_images(session):
    """Exports all pages to the folder "pages" of the results."""
    folder = os.path.join(session.results, "pages")
    os.mkdir(folder)
    session.from_menu("Down", "e")
    session.file_name("Export image files", folder)


def close_discarding(session):
    """Closes the program and answers No to the question about unsaved work."""
    session.program.close()
    session.program.dialog()
    press("alt+n")
    check("exit code", session.program.ended(), 0)


def close_unchanged(session):
    """Closes the program, which asks no question because nothing has changed."""
    session.program.close()
    check("exit code", session.program.ended(), 0)


def run_parts(make_images, parts):
    """Runs a test's parts, each with the session as its argument, and prints how long they take.

    Takes the program and the results folder from the command line. `make_images` writes the page
    images into a folder and returns their paths.
    """
    quillet, results = (os.path.abspath(path) for path in sys.argv[1:])
    shutil.rmtree(results, ignore_errors=True)
    os.makedirs(results)
    with Session(quillet, results, make_images(tempfile.mkdtemp())) as session:
        for part in parts:
            started = time.monotonic()
            part(session)
            print(f"{part.__name__}: {time.monotonic() - started:.1f} s", flush=True)
