#!/usr/bin/env python3
"""Writes a report: imports pages, labels and arranges them, exports images and a PDF, and saves.

Then it checks the files.

Usage: report.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots, the exported pages, the PDF and the project; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import glob
import os
import re

from driver import Box, Picture, stable_screen, click, drag, press, run, wait_until, write
from results import Project, pixels_of_png, report_pages
from session import (DIAMOND, ELLIPSE, NEW_COLOUR, NEW_SIZE, SQUARE, TRIANGLE, change_appearance, check,
                     check_label_colour, check_labels, close_unchanged, export_images, import_pages,
                     label_at, learn_boxes, run_parts, save_as, start_working)

FIRST_PAGE, LAST_PAGE = 15, 19
HEADERS = ["Debian Policy Manual", "Review of the binary packages chapter"]


def label_first_page(session):
    """Adds labels by right click and by button; drags, edits and removes them."""
    page, view = session.pages[0], session.view()
    section, box, *superfluous = session.spots(page, (120, -150), (0, 30), (-150, 140), (40, 180))
    for spot in (section, box, *superfluous):
        session.click_page(page, spot, button=3)
    # The last two are removed, but only after the answer Yes.
    session.click_page(page, superfluous[0])
    row = session.selected_rows("items")
    click((row.centre[0], row.bottom + row.height // 2), holding="ctrl")
    session.shoot("several-selected")
    for answer in ("alt+n", "alt+y"):
        click(session.boxes["item_remove"])
        session.program.dialog()
        if answer == "alt+y":
            session.shoot("remove-question")
        session.program.answer(answer)

    # The button adds a label in the corner of the visible part.
    before, left = stable_screen(), session.boxes["value"].right
    click(session.boxes["item_add"])
    corner = wait_until("the new label", lambda: before.changes(
        Picture.of_screen(), Box(left, view.top - 20, left + 80, view.top + 60)))
    goal = session.spots(page, (150, 120))[0]
    left, top = session.origin(page)
    drag(corner.centre, (goal[0] + left, goal[1] + top))
    stable_screen()

    session.click_page(page, section)
    session.retype("text", "  See   5 ", "Return")
    session.click_page(page, box)
    session.choose_border(SQUARE)
    session.retype("value", "41")
    # A click outside all labels clears the selection.
    session.click_page(page, session.spots(page, (20, -60))[0])
    session.shoot("labelled")
    session.first_page += [label_at(section, ELLIPSE, "See 5"), label_at(box, SQUARE),
                       label_at(goal, ELLIPSE, tolerance=2)]


def label_third_page(session):
    """Adds two labels with other borders."""
    page = session.pages[2]
    session.page_row(2)
    session.third_page = []
    for border, spot in zip((TRIANGLE, DIAMOND), session.spots(page, (-80, -40), (80, 40))):
        session.choose_border(border)
        session.click_page(page, spot, button=3)
        session.third_page.append(label_at(spot, border))


def arrange_pages(session):
    """Adds an empty page, renames pages, and drags one to another position."""
    click(session.boxes["page_add"])
    stable_screen()
    session.page_row(len(session.pages))
    session.retype("name", "Appendix")
    first = session.page_row(0)
    session.retype("name", "Scope: 1/2")
    last_image = session.page_row(4)
    # Between the first and the second row.
    drag((last_image.left + 30, last_image.centre[1]), (first.left + 30, first.bottom))
    stable_screen()
    session.shoot("pages-in-order")
    session.names = ["Scope: 1/2", "Page 5", "Page 2", "Page 3", "Page 4", "Appendix"]
    session.order = [0, 4, 1, 2, 3]


def reindex(session):
    session.from_menu("Right", "Down", "Return")
    dialog = session.program.dialog("Reindex Items")
    session.shoot("reindex-dialog")
    box = session.program.box_of_window(dialog)
    click((box.right - 50, box.bottom - 24))
    session.program.back()
    session.shoot("reindexed")


def export_pdf(session):
    click(session.program.icon(session.resource("menu/file_export_pdf.png")))
    session.program.dialog("Report Header")
    write(HEADERS[0])
    press("Tab")
    write(HEADERS[1])
    session.shoot("header-dialog")
    press("Return")
    session.file_name("Export PDF file", os.path.join(session.results, "report.pdf"))


def save(session):
    save_as(session, session.project_path)
    close_unchanged(session)


def check_project(session):
    """The project file has everything that was entered."""
    project = Project(session.project_path)
    check("label size", project.label_size, NEW_SIZE)
    check("label colour", project.colour, "#%02x%02x%02x" % NEW_COLOUR)
    check("header lines", project.headers, HEADERS)
    check("page names", [page["name"] for page in project.pages], session.names)
    for page, source in zip(project.pages, session.order):
        check(f"pixels of {page['name']}", pixels_of_png(page["image"]).data, session.pages[source].data)
    check("image of the empty page", project.pages[5]["image"], b"")
    check_labels(project.pages[0]["labels"], session.first_page, "the first page")
    check_labels(project.pages[3]["labels"], session.third_page, "the third page")
    for index in (1, 2, 4, 5):
        check(f"labels of page {index}", project.pages[index]["labels"], [])
    # The first value of each page is the next multiple of 100, even after a page without labels.
    check("values", [[label["value"] for label in page["labels"]] for page in project.pages],
          [[100, 101, 102, 103], [], [], [400, 401], [], []])


def check_images(session):
    """Exported pages have the pixels of the page image wherever there is no label."""
    paths = sorted(glob.glob(os.path.join(session.results, "pages", "*.png")),
                   key=lambda path: int(re.search(r"-\d{14}(\d+)\.png$", path)[1]))
    names = [re.sub(r"-\d{15,}\.png$", "", os.path.basename(path)) for path in paths]
    check("exported pages", names, [re.sub("[/:]", "_", name) for name in session.names])
    drawn = {0: session.first_page, 2: session.third_page}
    for path, source in zip(paths, session.order):
        exported, page = Picture.load(path, "-alpha", "off"), session.pages[source]
        check("size of " + path, (exported.width, exported.height), (page.width, page.height))
        # Half of what is drawn, and the tolerance of the position.
        reach = (NEW_SIZE + 5) // 2 + 2
        boxes = []
        for label in drawn.get(source, []):
            x, y = (round(value) for value in label["position"])
            boxes.append(Box(x - reach, y - reach, x + reach + 1, y + reach + 1))
            check_label_colour(exported, (x, y), NEW_COLOUR, "in " + path)
        for box in boxes:
            exported = exported.with_box_of(page, box)
        check(f"unlabelled areas of {path}", page.changes(exported, page.box), None)


def check_pdf(session):
    path = os.path.join(session.results, "report.pdf")
    run("qpdf", "--check", path)
    info = run("pdfinfo", path).decode()
    check("pages of the PDF", re.search(r"Pages: +(\d+)", info)[1], str(len(session.names)))
    pages = run("pdftotext", "-layout", path, "-").decode().split("\f")
    for number in range(1, len(session.names) + 1):
        for text in (*HEADERS, f"Page {number}", "The Quillet Project"):
            check(f"{text!r} on page {number}", text in pages[number - 1], True)


def render_pages(folder):
    return report_pages(folder, FIRST_PAGE, LAST_PAGE)


if __name__ == "__main__":
    run_parts(render_pages,
              (start_working, import_pages, learn_boxes, label_first_page, label_third_page,
               arrange_pages, change_appearance, export_images, reindex, export_pdf, save,
               check_project, check_images, check_pdf))
