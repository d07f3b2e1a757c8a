"""Mouse, keyboard and screenshots for driving the program in a real X server.

Only xdotool and screenshots are used; the program itself offers no interface for tests. A widget is
found by pressing Tab and comparing screenshots (Program.walk), by its icon, or by a piece of the page.
"""

import ctypes
import os
import re
import subprocess
import time

POLL_SECONDS = 0.03
TIMEOUT_SECONDS = 20
# How long the screen must not change to count as stable.
STABLE_SECONDS = 0.25

# The colour of selected rows in the program's style.
HIGHLIGHT = (48, 140, 198)


class Failure(Exception):
    """The screen or a file is not as expected."""


def run(*command):
    """Runs a command that has to succeed; returns its standard output."""
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def ask(*command):
    """Runs a command that may fail; returns its standard output as text."""
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode()


def wait_until(what, condition, seconds=TIMEOUT_SECONDS):
    """Polls until the condition returns something true; returns that."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise Failure(f"waited {seconds} seconds for {what}")
        time.sleep(POLL_SECONDS)


class Box:
    """A rectangle of screen pixels; right and bottom are exclusive."""

    def __init__(self, left, top, right, bottom):
        self.left, self.top, self.right, self.bottom = left, top, right, bottom

    width = property(lambda self: self.right - self.left)
    height = property(lambda self: self.bottom - self.top)
    centre = property(lambda self: ((self.left + self.right) // 2, (self.top + self.bottom) // 2))

    def shrunk(self, margin):
        return Box(self.left + margin, self.top + margin, self.right - margin, self.bottom - margin)

    def contains(self, x, y):
        return self.left <= x < self.right and self.top <= y < self.bottom

    def __repr__(self):
        return f"({self.left}, {self.top}) to ({self.right}, {self.bottom})"


class Picture:
    """An image with 8-bit red, green and blue values, row by row."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    @classmethod
    def from_ppm(cls, ppm):
        head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        return cls(int(head[1]), int(head[2]), ppm[head.end():])

    @classmethod
    def load(cls, path, *operations):
        """Reads an image file and applies ImageMagick operations, for example "-alpha", "off"."""
        return cls.from_ppm(run("convert", path, *operations, "-depth", "8", "ppm:-"))

    @classmethod
    def of_screen(cls):
        return cls.from_ppm(run("import", "-silent", "-window", "root", "-depth", "8", "ppm:-"))

    def pixel(self, x, y):
        start = 3 * (y * self.width + x)
        return tuple(self.data[start:start + 3])

    def row(self, y, left=0, right=None):
        """Part of a row, as bytes."""
        start = 3 * y * self.width
        return self.data[start + 3 * left:start + 3 * (self.width if right is None else right)]

    def cut(self, box):
        rows = (self.row(y, box.left, box.right) for y in range(box.top, box.bottom))
        return Picture(box.width, box.height, b"".join(rows))

    @property
    def box(self):
        return Box(0, 0, self.width, self.height)

    def with_box_of(self, other, box):
        """This picture with a box from another one of the same size."""
        data = bytearray(self.data)
        for y in range(max(box.top, 0), min(box.bottom, self.height)):
            left, right = max(box.left, 0), min(box.right, self.width)
            start = 3 * (y * self.width + left)
            data[start:start + 3 * (right - left)] = other.row(y, left, right)
        return Picture(self.width, self.height, bytes(data))

    def positions(self, piece):
        """Yields the positions of a piece of a row, as (x, y) of its first pixel."""
        start = self.data.find(piece)
        while start >= 0:
            y, x = divmod(start // 3, self.width)
            if start % 3 == 0 and x + len(piece) // 3 <= self.width:
                yield x, y
            start = self.data.find(piece, start + 1)

    def box_of(self, colour, area):
        """The smallest box around all pixels of a colour in an area; None when there are none."""
        piece = bytes(colour)
        found = []
        for y in range(area.top, area.bottom):
            row = self.row(y, area.left, area.right)
            if piece in row:
                xs = [x for x in range(area.width) if row[3 * x:3 * x + 3] == piece]
                found += [(area.left + xs[0], y, area.left + xs[-1] + 1, y + 1)] if xs else []
        return enclosing(found)

    def changes_from_both(self, other, another, area):
        """The smallest box around the pixels of an area that differ from both of two pictures."""
        found = []
        for y in range(area.top, area.bottom):
            rows = [picture.row(y, area.left, area.right) for picture in (self, other, another)]
            if rows[0] not in rows[1:]:
                xs = [x for x, (mine, *others) in enumerate(zip(*map(pixels_of, rows)))
                      if mine not in others]
                found += [(area.left + xs[0], y, area.left + xs[-1] + 1, y + 1)] if xs else []
        return enclosing(found)

    def changes(self, other, area):
        """The smallest box around the pixels of an area that differ; None when there are none."""
        found = []
        for y in range(area.top, area.bottom):
            mine, others = self.row(y, area.left, area.right), other.row(y, area.left, area.right)
            if mine != others:
                xs = [i // 3 for i in range(len(mine)) if mine[i] != others[i]]
                found.append((area.left + xs[0], y, area.left + xs[-1] + 1, y + 1))
        return enclosing(found)


def pixels_of(row):
    return [row[start:start + 3] for start in range(0, len(row), 3)]


def enclosing(boxes):
    if not boxes:
        return None
    lefts, tops, rights, bottoms = zip(*boxes)
    return Box(min(lefts), min(tops), max(rights), max(bottoms))


# --- mouse and keyboard ------------------------------------------------------------------------


def press(*keys):
    if keys:
        run("xdotool", "key", "--delay", "15", *keys)


def write(text):
    run("xdotool", "type", "--delay", "4", text)


def point_at(x, y):
    run("xdotool", "mousemove", str(x), str(y))


def click(target, button=1, times=1, holding=None):
    """Clicks a point, or the centre of a box; `holding` names a key to hold down."""
    point_at(*(target.centre if isinstance(target, Box) else target))
    if holding:
        run("xdotool", "keydown", holding)
    run("xdotool", "click", "--repeat", str(times), "--delay", "40", str(button))
    if holding:
        run("xdotool", "keyup", holding)


def drag(start, end, moves=8, holding=None):
    """Drags with the left button from one point to another, in small moves as a hand does.

    `holding` names a key to hold down.
    """
    point_at(*start)
    if holding:
        run("xdotool", "keydown", holding)
    run("xdotool", "mousedown", "1")
    for move in range(1, moves + 1):
        x = start[0] + (end[0] - start[0]) * move // moves
        y = start[1] + (end[1] - start[1]) * move // moves
        point_at(x, y)
        # A list needs separate moves to start a drag and to find its target.
        time.sleep(POLL_SECONDS)
    run("xdotool", "mouseup", "1")
    if holding:
        run("xdotool", "keyup", holding)


def turn_wheel(notches, holding):
    """Turns the wheel at the pointer, forward or, for negative numbers, backward."""
    run("xdotool", "keydown", holding)
    run("xdotool", "click", "--repeat", str(abs(notches)), "--delay", "40", "4" if notches > 0 else "5")
    run("xdotool", "keyup", holding)


class CursorImage(ctypes.Structure):
    """The pointer's image, as libXfixes returns it."""
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short), ("width", ctypes.c_ushort),
                ("height", ctypes.c_ushort), ("hot_x", ctypes.c_ushort), ("hot_y", ctypes.c_ushort),
                ("serial", ctypes.c_ulong), ("pixels", ctypes.POINTER(ctypes.c_ulong))]


def cursor():
    """The size and pixels of the pointer's current image."""
    x11, fixes = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXfixes.so.3")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    fixes.XFixesGetCursorImage.restype = ctypes.POINTER(CursorImage)
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    image = fixes.XFixesGetCursorImage(display)[0]
    shown = image.width, image.height, image.pixels[:image.width * image.height]
    x11.XCloseDisplay(display)
    return shown


def stable_screen():
    """Waits until the screen has not changed for a moment; returns it."""
    last = Picture.of_screen()
    deadline = time.monotonic() + TIMEOUT_SECONDS
    while time.monotonic() < deadline:
        time.sleep(STABLE_SECONDS / 2)
        now = Picture.of_screen()
        if now.data == last.data:
            return now
        last = now
    raise Failure("the screen keeps changing")


# --- the program -------------------------------------------------------------------------------


class Program:
    """A running program with one main window."""

    def __init__(self, path, title, *arguments):
        self.title = title
        self.process = subprocess.Popen([path, *arguments])
        pattern = f"^{re.escape(title)}$"
        self.window = wait_until(f"window {title!r}", lambda: self.windows(pattern))[0]
        wait_until("the window to be the active one", lambda: self.active_window() == self.window)

    def windows(self, title="."):
        """The ids of the program's visible windows whose titles match a pattern."""
        return ask("xdotool", "search", "--onlyvisible", "--all", "--pid", str(self.process.pid),
                   "--name", title).split()

    def windows_but_main(self):
        return [window for window in self.windows() if window != self.window]

    @staticmethod
    def active_window():
        return ask("xdotool", "getactivewindow").strip()

    @staticmethod
    def box_of_window(window):
        """The box of a window on the screen, without its frame."""
        text = ask("xwininfo", "-id", window)
        left, top, width, height = (
            int(re.search(rf"{name}: +(-?\d+)", text)[1])
            for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        return Box(left, top, left + width, top + height)

    @property
    def box(self):
        return self.box_of_window(self.window)

    def resize(self, width, height):
        run("xdotool", "windowsize", "--sync", self.window, str(width), str(height))
        stable_screen()

    def dialog(self, title=None):
        """Waits until a dialog of the program is active; returns its id."""

        def its_window():
            active = self.active_window()
            owner = ask("xdotool", "getwindowpid", active).strip() if active else None
            if active == self.window or owner != str(self.process.pid):
                return None
            name = ask("xdotool", "getwindowname", active).strip()
            return active if title in (None, name) else None

        def in_its_frame():
            return "(the root window)\n  " not in ask("xwininfo", "-id", window, "-tree")

        window = wait_until(f"dialog {title or ''}", its_window)
        wait_until("the dialog's frame", in_its_frame)
        stable_screen()
        return window

    def back(self):
        """Waits until the main window is active again."""
        wait_until("the main window to come back", lambda: self.active_window() == self.window)
        return stable_screen()

    def answer(self, *keys):
        """Presses keys that close the open dialog, and waits for the main window."""
        press(*keys)
        return self.back()

    def close(self):
        """Closes the window as the window manager's close button does."""
        run("wmctrl", "-i", "-c", hex(int(self.window)))

    def ended(self):
        """Waits for the end of the program; returns its exit code."""
        wait_until("the program to end", lambda: self.process.poll() is not None)
        return self.process.returncode

    def icon(self, path):
        """The centre of an icon file that the window shows in its original size."""
        solid = Picture.load(path, "-alpha", "extract")
        colours = Picture.load(path, "-alpha", "off")
        screen = Picture.of_screen()
        for y, left, right in sorted(solid_runs(solid), key=lambda run: run[1] - run[2]):
            piece = colours.row(y, left, right)
            if len(set(piece)) < 6:
                continue
            for x_found, y_found in screen.positions(piece):
                return (x_found - left + solid.width // 2, y_found - y + solid.height // 2)
        raise Failure(f"{os.path.basename(path)} is not visible")

    def walk(self, names):
        """Walks the window with the Tab key; returns the boxes of the widgets that get the focus.

        `names` are at least three widgets in the order of the walk; the first one has the focus
        already. The box of a widget that does not show its focus is None.
        """
        shots = [stable_screen()]
        for _ in names[1:]:
            press("Tab")
            time.sleep(STABLE_SECONDS)
            shots.append(Picture.of_screen())
        # Each Tab changes two widgets. A widget differs from both other shots only where it has the
        # focus.
        boxes = {names[0]: shots[0].changes_from_both(shots[1], shots[2], self.box),
                 names[1]: shots[1].changes_from_both(shots[0], shots[2], self.box)}
        # For each further widget, the box of the previous one is known.
        for last, name, before, after in zip(names[1:], names[2:], shots[1:], shots[2:]):
            shown = after.with_box_of(before, boxes[last]) if boxes[last] else after
            boxes[name] = before.changes(shown, self.box)
        return boxes


def solid_runs(solid):
    """Yields the runs of opaque pixels of an extracted alpha channel as (y, left, right)."""
    for y in range(solid.height):
        row = solid.row(y)[::3]
        for run_found in re.finditer(b"\xff{6,}", row):
            yield y, run_found.start(), run_found.end()
