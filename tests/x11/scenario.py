#!/usr/bin/env python3
"""A working day with the program, driven from outside: a report is imported, labelled, exported and
saved, the program is closed and started again, and what it left on the disk is checked.

Usage: scenario.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots, the exported pages, the PDF and the project; emptied first

To be run in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import filecmp
import glob
import math
import os
import re
import shutil
import sys
import tempfile
import time

from driver import (HIGHLIGHT, Box, Failure, Picture, Program, calm_screen, click, cursor, drag,
                    point_at, press, run, turn_wheel, wait_until, write)
from results import Project, pixels_of_png, report_pages

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
FIRST_PAGE, LAST_PAGE = 15, 19
WORKING_SIZE = (1160, 800)
# The program's own label colour, and the one that is chosen in the course of the day.
COLOUR, NEW_COLOUR = (0xf7, 0x97, 0x41), (0xc2, 0x18, 0x5b)
SIZE, NEW_SIZE, SMALLEST_SIZE = 32, 40, 16
HEADERS = ["Debian Policy Manual", "Review of the binary packages chapter"]
# What the program waits before it shows that it is at work, and a little more.
PROGRESS_DELAY_SECONDS = 0.6
NO_BORDER, SQUARE, ELLIPSE, TRIANGLE, DIAMOND = 0, 1, 2, 4, 8
# The borders as the combo box lists them.
BORDERS = [NO_BORDER, ELLIPSE, SQUARE, TRIANGLE, DIAMOND]

ITEM_WIDGETS = ["items", "item_add", "item_remove", "value", "text", "border"]
PAGE_WIDGETS = ["pages", "name", "page_add", "page_remove"]
SETTINGS = ["format", "colour", "size", "orientation", "resolution", "track"]


def check(what, found, expected):
    if found != expected:
        raise Failure(f"{what}: found {found!r}, expected {expected!r}")


def check_near(what, found, expected, tolerance):
    if any(abs(a - b) > tolerance for a, b in zip(found, expected)):
        raise Failure(f"{what}: found {found!r}, expected about {expected!r}")


def label_at(position, border, text="", tolerance=0.01):
    """What is expected of a label; the tolerance is that of its position, in pixels."""
    return {"text": text, "border": border, "position": position, "tolerance": tolerance}


class Day:
    """The state of the day: the program, where its widgets are, and what has been done so far.

    `images` are the paths of the page images that are worked with.
    """

    def __init__(self, quillet, results, images):
        self.quillet = quillet
        self.results = results
        self.images = images
        self.pages = [Picture.load(path) for path in self.images]
        self.project_path = os.path.join(results, "report.quillet")
        self.program = None
        self.boxes = {}
        self.shots = 0

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        """Keeps what was on the screen when something failed, and leaves no program behind."""
        try:
            if kind is not None:
                run("import", "-silent", "-window", "root",
                    os.path.join(self.results, "failure.png"))
        finally:
            if self.program and self.program.process.poll() is None:
                self.program.process.kill()
                self.program.process.wait()

    # --- seeing --------------------------------------------------------------------------------

    def start(self):
        self.program = Program(self.quillet, "Quillet")
        calm_screen()

    def shoot(self, name):
        """Keeps a screenshot for a person to look at."""
        self.shots += 1
        path = os.path.join(self.results, f"{self.shots:02}-{name}.png")
        calm_screen()
        run("import", "-silent", "-window", "root", path)

    def resource(self, name):
        return os.path.join(SOURCES, "resources", name)

    def view(self):
        """A part of the page view that surely shows the page and nothing else."""
        box = self.program.box
        return Box(box.centre[0] - 170, box.top + 90, box.centre[0] + 170, box.bottom - 90)

    def origin(self, page):
        """Where the top left corner of a page image is on the screen, shown in its own size.

        Found by looking for pieces of the screen in the image.
        """
        screen, area = calm_screen(), self.view()
        width = 60
        for y in range(area.top, area.bottom, 3):
            for x in range(area.left, area.right - width, width):
                piece = screen.row(y, x, x + width)
                if len(set(piece)) < 20:
                    continue
                places = list(page.positions(piece))
                if len(places) == 1:
                    return x - places[0][0], y - places[0][1]
        raise Failure("the page is not to be seen")

    def rows(self, panel):
        """The selected rows of a list, as one box."""
        below = self.boxes["item_add" if panel == "items" else "page_add"]
        left, right = ((self.program.box.left, below.right) if panel == "items"
                       else (self.boxes["name"].left, self.program.box.right))
        area = Box(left, self.program.box.top + 90, right, below.top - 4)
        return wait_until("a selected row", lambda: Picture.of_screen().box_of(HIGHLIGHT, area))

    def page_row(self, place):
        """Chooses a page by its place in the list, with the keyboard; where its row is."""
        below = self.boxes["page_add"]
        click((below.centre[0], below.top - 16))
        press("Home", *["Down"] * place)
        calm_screen()
        return self.rows("pages")

    # --- doing ---------------------------------------------------------------------------------

    def file_name(self, title, path):
        """Answers a file dialog by typing a path."""
        self.program.dialog(title)
        write(path)
        self.program.answer("Return")

    def from_menu(self, *keys):
        """Chooses from the menus with the keyboard."""
        press("alt")
        press(*keys)

    def click_page(self, page, spot, button=1):
        """Clicks a point of a page image, wherever it is on the screen at the moment."""
        left, top = self.origin(page)
        click((spot[0] + left, spot[1] + top), button)
        calm_screen()

    def spots(self, page, *offsets):
        """Points of a page image, given by where they lie from the middle of the view."""
        left, top = self.origin(page)
        x, y = self.view().centre
        return [(x + right - left, y + down - top) for right, down in offsets]

    def retype(self, editor, text, *keys):
        """Types something else into an editor."""
        click(self.boxes[editor])
        press("ctrl+a")
        write(text)
        press(*keys)
        calm_screen()

    def choose_border(self, border):
        click(self.boxes["border"])
        calm_screen()
        press("Home", *["Down"] * BORDERS.index(border), "Return")
        calm_screen()

    def set_slider(self, name, *keys):
        """Sets a slider with keys, from its lower end on."""
        click(self.boxes[name])
        press("Home", *keys)
        calm_screen()


# --- the day, chapter by chapter -------------------------------------------------------------------


def first_look(day):
    """A new user's first sight of the window."""
    day.start()
    day.shoot("first-start")
    box = day.program.box
    check("size of the window", (box.width, box.height), (800, 600))
    # Nothing in the window but the page view is so wide and wholly white anywhere.
    screen = calm_screen()
    widest = max(len(white) // 3 for y in range(box.top, box.bottom)
                 for white in re.findall(rb"(?:\xff\xff\xff)+", screen.row(y, box.left, box.right)))
    if widest < 0.45 * box.width:
        raise Failure(f"the page view is only {widest} pixels wide")
    day.program.resize(*WORKING_SIZE)


def import_pages(day):
    """Five pages of a report, through the file dialog."""
    boxes = day.program.walk(["page", "pages", "page_add", *SETTINGS, "zoom"])
    day.boxes = {"name": Box(boxes["format"].left - 112, 0, 0, 0), **boxes}
    click(day.program.icon(day.resource("menu/file_import.png")))
    day.program.dialog("Import one or more supported image files")
    write(os.path.dirname(day.images[0]))
    press("Return")
    calm_screen()
    write(" ".join(f'"{os.path.basename(path)}"' for path in day.images))
    day.shoot("import-dialog")
    day.program.answer("Return")
    day.shoot("imported")


def learn_places(day):
    """Chooses the first page, gives it a label, and walks through all widgets of the window."""
    day.page_row(0)
    spot = day.spots(day.pages[0], (-120, -160))[0]
    day.click_page(day.pages[0], spot, button=3)
    day.first_page = [label_at(spot, ELLIPSE)]
    day.click_page(day.pages[0], spot)
    day.boxes = day.program.walk(["page", *ITEM_WIDGETS, *PAGE_WIDGETS, *SETTINGS, "zoom"])
    for name in ITEM_WIDGETS[1:] + PAGE_WIDGETS[1:] + SETTINGS + ["zoom"]:
        if not day.boxes[name]:
            raise Failure(f"the tabulator key does not reach {name}")
    for name in ("item_add", "item_remove", "page_add", "page_remove"):
        check(f"size of {name}", (day.boxes[name].width, day.boxes[name].height), (22, 22))
    day.shoot("first-label")


def label_first_page(day):
    """Labels by right click and by button, dragged, edited, removed."""
    page, view = day.pages[0], day.view()
    section, box, *superfluous = day.spots(page, (120, -150), (0, 30), (-150, 140), (40, 180))
    for spot in (section, box, *superfluous):
        day.click_page(page, spot, button=3)
    # The last two go again, but only after the question is answered with Yes.
    day.click_page(page, superfluous[0])
    row = day.rows("items")
    click((row.centre[0], row.bottom + row.height // 2), holding="ctrl")
    day.shoot("several-selected")
    for answer in ("alt+n", "alt+y"):
        click(day.boxes["item_remove"])
        day.program.dialog()
        if answer == "alt+y":
            day.shoot("remove-question")
        day.program.answer(answer)

    # A label by the button appears in the corner of what is seen, and is dragged from there.
    before, left = calm_screen(), day.boxes["value"].right
    click(day.boxes["item_add"])
    corner = wait_until("the new label", lambda: before.changes(
        Picture.of_screen(), Box(left, view.top - 20, left + 80, view.top + 60)))
    goal = day.spots(page, (150, 120))[0]
    left, top = day.origin(page)
    drag(corner.centre, (goal[0] + left, goal[1] + top))
    calm_screen()

    day.click_page(page, section)
    day.retype("text", "  See   5 ", "Return")
    day.click_page(page, box)
    day.choose_border(SQUARE)
    day.retype("value", "41")
    # Beside all labels, where a click selects nothing.
    day.click_page(page, day.spots(page, (20, -60))[0])
    day.shoot("labelled")
    day.first_page += [label_at(section, ELLIPSE, "See 5"), label_at(box, SQUARE),
                       label_at(goal, ELLIPSE, tolerance=2)]


def label_third_page(day):
    """Two labels with other borders, and a look at them from near and from afar."""
    page = day.pages[2]
    day.page_row(2)
    # The view zooms about its centre; coming from where all of the page is seen, about the page's.
    day.set_slider("zoom", *["Prior"] * 10)
    day.third_page = []
    for border, spot in zip((TRIANGLE, DIAMOND), day.spots(page, (-80, -40), (80, 40))):
        day.choose_border(border)
        day.click_page(page, spot, button=3)
        day.third_page.append(label_at(spot, border))

    widths = {}
    # Each step of the slider is a fiftieth in the exponent, a key moves it by ten steps.
    for name, keys in (("zoomed-in", 12), ("zoomed-out", 5), ("full-size", 10)):
        day.set_slider("zoom", *["Prior"] * keys)
        if name != "full-size":
            day.shoot(name)
        widths[name] = calm_screen().box_of(COLOUR, day.view()).width
    # Smooth scaling pales the outermost pixels, so that they are a little less apart.
    for name, exponent in (("zoomed-in", 0.4), ("zoomed-out", -1)):
        expected = widths["full-size"] * math.exp(exponent)
        check_near("width of what is " + name, [widths[name]], [expected], 0.1 * expected)


def use_wheel_and_keys(day):
    """The wheel zooms about the pointer; keys move a label, remove one, and move a page."""
    page, label = day.pages[2], day.third_page[1]
    left, top = day.origin(page)
    pointer = (label["position"][0] + left, label["position"][1] + top)

    def box():
        reach = 45
        x, y = pointer
        return calm_screen().box_of(COLOUR, Box(x - reach, y - reach, x + reach, y + reach))

    def width():
        return calm_screen().box_of(COLOUR, day.view()).width

    before, width_before = box(), width()
    point_at(*pointer)
    turn_wheel(3, holding="ctrl")
    day.shoot("zoomed-by-wheel")
    # A notch is five steps of the slider.
    expected = width_before * math.exp(15 / 50)
    check_near("width after three notches", [width()], [expected], 0.1 * expected)
    # Zooming about the middle of the view would have moved it by 28 pixels; scaling pales its edges.
    check_near("what is under the pointer", box().centre, pointer, 12)
    turn_wheel(-3, holding="ctrl")
    check_near("what is under the pointer again", box().centre, before.centre, 1)

    day.click_page(page, label["position"])
    before = box()
    press("ctrl+Right", "ctrl+Right", "ctrl+Right", "ctrl+shift+Down")
    check("moved label", (box().left, box().top), (before.left + 3, before.top + 10))
    label["position"] = (label["position"][0] + 3, label["position"][1] + 10)

    superfluous = day.spots(page, (-120, 150))[0]
    day.click_page(page, superfluous, button=3)
    day.click_page(page, superfluous)
    click(day.rows("items"))
    for answer in ("alt+n", "alt+y"):
        press("Delete")
        day.program.dialog()
        day.program.answer(answer)

    goal, start = day.page_row(3).top, day.page_row(2).top
    for key, expected in (("alt+Down", goal), ("alt+Up", start)):
        press(key)
        calm_screen()
        check("row of the page after " + key, day.rows("pages").top, expected)


def arrange_pages(day):
    """An empty page, names, and another order by dragging."""
    click(day.boxes["page_add"])
    calm_screen()
    day.page_row(len(day.pages))
    day.retype("name", "Appendix")
    first = day.page_row(0)
    day.retype("name", "Scope: 1/2")
    last_image = day.page_row(4)
    # Between the first and the second row.
    drag((last_image.left + 30, last_image.centre[1]), (first.left + 30, first.bottom))
    calm_screen()
    day.shoot("pages-in-order")
    day.names = ["Scope: 1/2", "Page 5", "Page 2", "Page 3", "Page 4", "Appendix"]
    day.order = [0, 4, 1, 2, 3]


def change_looks(day):
    """Size and colour for all labels."""
    day.page_row(0)
    day.set_slider("size", *["Right"] * (NEW_SIZE - SMALLEST_SIZE))
    click(day.boxes["colour"])
    day.program.dialog()
    press("alt+h")
    press("ctrl+a")
    write("#%02x%02x%02x" % NEW_COLOUR)
    day.shoot("colour-dialog")
    day.program.answer("Return")
    day.shoot("new-looks")


def export_images(day):
    folder = os.path.join(day.results, "pages")
    os.mkdir(folder)
    day.from_menu("Down", "e")
    day.file_name("Export image files", folder)


def reindex(day):
    day.from_menu("Right", "Down", "Return")
    dialog = day.program.dialog("Reindex Items")
    day.shoot("reindex-dialog")
    box = day.program.box_of_window(dialog)
    click((box.right - 50, box.bottom - 24))
    day.program.back()
    day.shoot("reindexed")


def export_pdf(day):
    click(day.program.icon(day.resource("menu/file_export_pdf.png")))
    day.program.dialog("Report Header")
    write(HEADERS[0])
    press("Tab")
    write(HEADERS[1])
    day.shoot("header-dialog")
    press("Return")
    day.file_name("Export PDF file", os.path.join(day.results, "report.pdf"))


def save_as(day, path):
    # Not every desktop has a shortcut for it.
    day.from_menu(*["Down"] * 4, "Return")
    day.file_name("Save quillet file", path)


def save(day):
    save_as(day, day.project_path)
    check_project(Project(day.project_path), day)


def close_with_cancel_then_yes(day):
    """Unsaved work, and the question about it."""
    kept = os.path.join(day.results, "before.quillet")
    shutil.copy(day.project_path, kept)
    page = day.pages[2]
    day.page_row(3)
    spot = day.spots(page, (-120, 120))[0]
    day.click_page(page, spot, button=3)
    day.third_page.append(label_at(spot, DIAMOND))

    day.program.close()
    day.program.dialog()
    day.shoot("close-question")
    day.program.answer("Escape")
    check("the file after Cancel", filecmp.cmp(day.project_path, kept, False), True)
    day.program.close()
    day.program.dialog()
    press("alt+y")
    check("exit code", day.program.ended(), 0)
    check_labels(Project(day.project_path).pages[3]["labels"], day.third_page, "the third page")
    os.remove(kept)


def open_again(day):
    """A new start, in which everything is as it was; unsaved work is let go."""
    day.start()
    check("size of the window", (day.program.box.width, day.program.box.height), WORKING_SIZE)
    press("ctrl+o")
    day.file_name("Select a Quillet file to open", day.project_path)
    day.page_row(3)
    day.shoot("opened-again")
    left, top = day.origin(day.pages[2])
    x, y = day.third_page[-1]["position"]
    check_label_colour(calm_screen(), (x + left, y + top), NEW_COLOUR, "on the screen")

    again = os.path.join(day.results, "again.quillet")
    save_as(day, again)
    check("saved again", filecmp.cmp(again, day.project_path, False), True)

    day.click_page(day.pages[2], day.spots(day.pages[2], (-60, 60))[0], button=3)
    day.program.close()
    day.program.dialog()
    press("alt+n")
    check("exit code", day.program.ended(), 0)
    check("the file after No", filecmp.cmp(again, day.project_path, False), True)
    os.remove(again)


def float_a_dock(day):
    """A dock that was taken out of the window is found where it was left, and is to be seen."""
    day.start()
    box = day.program.box
    icon_y = day.program.icon(day.resource("menu/file_new.png"))[1]
    click((box.left + 40, icon_y + 33), times=2)
    dock = wait_until("the floating dock", day.program.windows_but_main)[0]
    calm_screen()
    docked = day.program.box_of_window(dock)
    drag((docked.left + 40, docked.top + 10), (box.left + 240, box.top + 140))
    calm_screen()
    left = day.program.box_of_window(dock)
    check("the dock was dragged", (left.left, left.top) != (docked.left, docked.top), True)
    seen = Picture.of_screen().cut(left.shrunk(2))
    day.shoot("floating-dock")
    day.program.close()
    check("exit code", day.program.ended(), 0)

    day.start()
    dock = wait_until("the floating dock", day.program.windows_but_main)[0]
    day.shoot("dock-again")
    found = day.program.box_of_window(dock)
    check("place of the dock", (found.left, found.top), (left.left, left.top))
    # Its own part at least: title and list. What it is wide and high is not kept.
    title = Box(8, 4, 100, 20)
    now = calm_screen().cut(found.shrunk(2))
    check("what differs of the dock", now.cut(title).changes(seen.cut(title), seen.cut(title).box),
          None)
    day.program.close()
    check("exit code", day.program.ended(), 0)


def watch_long_work(day):
    """A busy pointer and a bar tell of an import that takes long, for as long as it does."""
    day.start()
    box = day.program.box
    status_bar = Box(box.left, box.bottom - 24, box.centre[0], box.bottom)
    point_at(*box.centre)
    before, pointer = calm_screen(), cursor()
    folder = tempfile.mkdtemp()
    # To read a pipe takes for as long as the one who writes to it likes.
    pipes = [os.path.join(folder, f"{number}.png") for number in (1, 2, 3)]
    for pipe in pipes:
        os.mkfifo(pipe)
    click(day.program.icon(day.resource("menu/file_import.png")))
    day.program.dialog("Import one or more supported image files")
    write(folder)
    press("Return")
    calm_screen()
    write(" ".join(f'"{os.path.basename(pipe)}"' for pipe in pipes))
    press("Return")

    first = wait_until("the first image to be read", lambda: writing_end(pipes[0]))
    point_at(*box.centre)
    time.sleep(PROGRESS_DELAY_SECONDS)
    second = let_go(first, pipes[0], lambda: writing_end(pipes[1]))
    day.shoot("long-work")
    if not before.changes(Picture.of_screen(), status_bar):
        raise Failure("no progress is to be seen")
    # On the left is the dock, which is not always on top.
    middle = Box(day.view().centre[0], day.view().top, day.view().right, day.view().bottom)
    check("what is left of the dialog", before.changes(Picture.of_screen(), middle), None)
    check("a busy pointer", cursor() != pointer, True)
    third = let_go(second, pipes[1], lambda: writing_end(pipes[2]))
    let_go(third, pipes[2], lambda: cursor() == pointer)
    check("what is left of the bar", before.changes(calm_screen(), status_bar), None)
    day.program.close()
    day.program.dialog()
    press("alt+n")
    check("exit code", day.program.ended(), 0)
    shutil.rmtree(folder)


def writing_end(pipe):
    """A pipe opened for writing, provided that the program reads from it; otherwise None."""
    try:
        return os.open(pipe, os.O_WRONLY | os.O_NONBLOCK)
    except OSError:
        return None


def let_go(end, pipe, goal):
    """Closes the writing end of a pipe, and again whenever the program comes back to it, until the
    goal is reached; what that gives."""
    os.close(end)

    def reached():
        again = writing_end(pipe)
        if again:
            os.close(again)
        return goal()

    return wait_until("the program to go on", reached)


# --- what is left on the disk ------------------------------------------------------------------


def check_label_colour(picture, centre, colour, where):
    """A label's border has its colour somewhere along its upper half."""
    x, y = centre
    reach = NEW_SIZE // 2 + 4
    if not picture.box_of(colour, Box(x - reach, y - reach, x + reach, y + reach)):
        raise Failure(f"no label of colour {colour} at ({x}, {y}) {where}")


def check_labels(found, expected, name):
    check(f"number of labels of {name}", len(found), len(expected))
    for label, wanted in zip(found, expected):
        check(f"text of a label of {name}", label["text"], wanted["text"])
        check(f"border of a label of {name}", label["border"], wanted["border"])
        check_near(f"position of a label of {name}", label["position"], wanted["position"],
                   wanted["tolerance"])


def check_project(project, day):
    check("label size", project.label_size, NEW_SIZE)
    check("label colour", project.colour, "#%02x%02x%02x" % NEW_COLOUR)
    check("header lines", project.headers, HEADERS)
    check("page names", [page["name"] for page in project.pages], day.names)
    for page, source in zip(project.pages, day.order):
        check(f"pixels of {page['name']}", pixels_of_png(page["image"]).data, day.pages[source].data)
    check("image of the empty page", project.pages[5]["image"], b"")
    check_labels(project.pages[0]["labels"], day.first_page, "the first page")
    check_labels(project.pages[3]["labels"], day.third_page, "the third page")
    for place in (1, 2, 4, 5):
        check(f"labels of page {place}", project.pages[place]["labels"], [])
    # Each page begins with the next round hundred, also one after a page that has no labels.
    check("values", [[label["value"] for label in page["labels"]] for page in project.pages],
          [[100, 101, 102, 103], [], [], [400, 401], [], []])


def check_images(day):
    """The exported pages: the report's own pixels wherever no label is, and labels where they are."""
    paths = sorted(glob.glob(os.path.join(day.results, "pages", "*.png")),
                   key=lambda path: int(re.search(r"-\d{14}(\d+)\.png$", path)[1]))
    names = [re.sub(r"-\d{15,}\.png$", "", os.path.basename(path)) for path in paths]
    check("exported pages", names, [re.sub("[/:]", "_", name) for name in day.names])
    drawn = {0: day.first_page, 2: day.third_page}
    for path, source in zip(paths, day.order):
        exported, page = Picture.load(path, "-alpha", "off"), day.pages[source]
        check("size of " + path, (exported.width, exported.height), (page.width, page.height))
        # Half of what is drawn, and what the position is uncertain by.
        reach = (NEW_SIZE + 5) // 2 + 2
        boxes = []
        for label in drawn.get(source, []):
            x, y = (round(value) for value in label["position"])
            boxes.append(Box(x - reach, y - reach, x + reach + 1, y + reach + 1))
            check_label_colour(exported, (x, y), NEW_COLOUR, "in " + path)
        for box in boxes:
            exported = exported.with_box_of(page, box)
        check(f"unlabelled areas of {path}", page.changes(exported, page.box), None)


def check_pdf(day):
    path = os.path.join(day.results, "report.pdf")
    run("qpdf", "--check", path)
    info = run("pdfinfo", path).decode()
    check("pages of the PDF", re.search(r"Pages: +(\d+)", info)[1], str(len(day.names)))
    pages = run("pdftotext", "-layout", path, "-").decode().split("\f")
    for number in range(1, len(day.names) + 1):
        for text in (*HEADERS, f"Page {number}", "The Quillet Project"):
            check(f"{text!r} on page {number}", text in pages[number - 1], True)


def check_home(_day):
    """The settings were kept, and nothing waits to be recovered."""
    with open(os.path.expanduser("~/.quillet/Settings.ini"), encoding="utf-8") as file:
        settings = file.read()
    for line in (f"Label_Size={NEW_SIZE}", "Label_Floating=true", "Page_Floating=false",
                 "Label_Color=#%02x%02x%02x" % NEW_COLOUR):
        check(f"{line} in the settings", line in settings, True)
    check("work to be recovered", glob.glob(os.path.expanduser("~/.quillet/recovery/*.quillet")), [])


def main():
    quillet, results = (os.path.abspath(path) for path in sys.argv[1:])
    shutil.rmtree(results, ignore_errors=True)
    os.makedirs(results)
    day = Day(quillet, results, report_pages(tempfile.mkdtemp(), FIRST_PAGE, LAST_PAGE))
    with day:
        for chapter in (first_look, import_pages, learn_places, label_first_page, label_third_page,
                        use_wheel_and_keys, arrange_pages, change_looks, export_images, reindex,
                        export_pdf, save, check_images, check_pdf, close_with_cancel_then_yes,
                        open_again, float_a_dock, watch_long_work, check_home):
            started = time.monotonic()
            chapter(day)
            print(f"{chapter.__name__}: {time.monotonic() - started:.1f} s", flush=True)


if __name__ == "__main__":
    main()
