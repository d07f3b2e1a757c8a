#!/usr/bin/env python3
"""Reads the running program's accessible tree over AT-SPI, as a screen reader does, and fails on a
control without a name or without a description.

Usage: accessible_tree.py QUILLET RESULTS
  RESULTS  a folder for the trees as text

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
The test starts its own D-Bus session and accessibility bus.
"""

import os
import re
import subprocess
import sys

from driver import Failure, Program, ask, click, press, wait_until

IMPORT_ICON = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "resources", "menu",
                           "file_import.png")
BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
# How long the program may take to answer one request.
ANSWER_MILLISECONDS = 20000

# Roles of widgets that users operate. Each needs a name and a description.
CONTROLS = {"push button", "toggle button", "check box", "radio button", "text", "slider",
            "spin button", "combo box", "list"}
# Roles that need only a name, since the name is description enough.
ENTRIES = {"menu item", "check menu item", "list item"}

# The minimum number of nodes of each role in a window. With fewer, the tree is incomplete.
MAIN_WINDOW = {"push button": 17, "text": 4, "slider": 2, "combo box": 3, "check box": 1, "list": 2,
               "menu item": 17}
REINDEX_DIALOG = {"push button": 2, "text": 1, "combo box": 1, "radio button": 3}
HEADER_DIALOG = {"push button": 2, "text": 2}


class Node:
    """A copy of a node of the tree."""

    def __init__(self, role, name="", description="", captions=(), focusable=False, children=()):
        self.role, self.name, self.description = role, name, description
        self.captions, self.focusable, self.children = captions, focusable, children

    def walk(self, path=()):
        """Yields this node and its descendants, each with its ancestors."""
        yield self, path
        for child in self.children:
            yield from child.walk(path + (self,))

    def lines(self):
        for node, path in self.walk():
            captions = f" under {', '.join(node.captions)!r}" if node.captions else ""
            yield (f"{'  ' * len(path)}{node.role} {node.name!r}{captions}: {node.description}"
                   f"{' (focus)' if node.focusable else ''}")


def faults(tree):
    """Missing names and descriptions, a line for each."""
    found = []
    for node, path in tree.walk():
        # The list of a combo box needs no name: the combo box has one.
        if node.role == "list" and path and path[-1].role == "combo box":
            continue
        path_text = " > ".join(f"{above.role} {above.name!r}" for above in path + (node,))
        is_control = node.role in CONTROLS or (node.focusable and node.role not in ENTRIES)
        # The name of a combo box is its current entry; its caption names the combo box.
        name = " ".join(node.captions) if node.role == "combo box" else node.name
        if (is_control or node.role in ENTRIES) and not name.strip():
            found.append(f"no name: {path_text}")
        if is_control and not node.description.strip():
            found.append(f"no description: {path_text}")
    return found


def shortfalls(tree, minimum):
    """Roles with fewer nodes than required, a line for each."""
    roles = [node.role for node, _ in tree.walk()]
    return [f"{roles.count(role)} of role {role}, expected at least {count}"
            for role, count in minimum.items() if roles.count(role) < count]


def try_the_checks():
    """Fails when a check misses a defect, or finds one in a flawless node."""

    def expect(what, found, expected):
        if found != expected:
            raise Failure(f"the check of {what} found {found}, expected {expected}")

    for role in sorted(CONTROLS):
        captions = ("Caption:",) if role == "combo box" else ()
        complete = Node("frame", children=[Node(role, "Name", "Description", captions)])
        expect("a complete " + role, faults(complete), [])
        nameless = Node("frame", children=[Node(role, "", "Description")])
        expect("a nameless " + role, faults(nameless), [f"no name: frame '' > {role} ''"])
        undescribed = Node("frame", children=[Node(role, "Name", " ", captions)])
        expect("an undescribed " + role, faults(undescribed),
               [f"no description: frame '' > {role} 'Name'"])
    expect("a combo box without a caption", faults(Node("combo box", "Entry", "Description")),
           ["no name: combo box 'Entry'"])
    expect("a menu item", faults(Node("menu item", "")), ["no name: menu item ''"])
    expect("a focusable node", len(faults(Node("filler", focusable=True))), 2)
    expect("a layout", faults(Node("filler")), [])
    expect("a count", shortfalls(Node("list", children=[Node("list item")]), {"list": 2}),
           ["1 of role list, expected at least 2"])


class AccessibilityBus:
    """A context manager that runs a D-Bus session with an accessibility bus."""

    def __enter__(self):
        self.processes = []
        session = self.start("dbus-daemon", "--session", "--nofork", "--print-address=1")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = session.stdout.readline().decode().strip()
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.start(BUS_LAUNCHER, "--launch-immediately", "--a11y=1")
        # A program that starts before the registry answers would not be in the tree.
        wait_until("the accessibility registry", self.is_ready)
        return self

    @staticmethod
    def is_ready():
        address = re.search("'(.+)'", ask(
            "gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
            "--method", "org.a11y.Bus.GetAddress"))
        return address and ask(
            "gdbus", "call", "--address", address[1], "--dest", "org.a11y.atspi.Registry",
            "--object-path", "/org/a11y/atspi/accessible/root",
            "--method", "org.freedesktop.DBus.Peer.Ping")

    def start(self, *command):
        # The signal ends the process, no matter how this script ends.
        process = subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *command],
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.processes.append(process)
        return process

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()


class Reader:
    """Reads the windows of one program."""

    def __init__(self, process_id):
        # The module connects to the bus on import, so the bus must exist.
        import pyatspi
        from gi.repository import Atspi, GLib
        Atspi.set_timeout(ANSWER_MILLISECONDS, ANSWER_MILLISECONDS)
        self.pyatspi, self.error, self.process_id = pyatspi, GLib.Error, process_id

    def children(self, node):
        node.clearCache()
        return [child for child in (node.getChildAtIndex(i) for i in range(node.childCount))
                if child]

    def windows(self):
        for program in self.children(self.pyatspi.Registry.getDesktop(0)):
            if program.get_process_id() == self.process_id:
                return self.children(program)
        return []

    def read_window(self, title, read):
        """Applies a function to a window's node.

        Returns None when there is no such window, or when the tree changes during the call.
        """
        try:
            window = next((window for window in self.windows() if window.name == title), None)
            return window and read(window)
        except self.error:
            return None

    def read(self, node):
        """Copies a node with its descendants."""
        captions = [relation.getTarget(i).name for relation in node.getRelationSet()
                    if relation.getRelationType() == self.pyatspi.RELATION_LABELLED_BY
                    for i in range(relation.getNTargets())]
        focusable = node.getState().contains(self.pyatspi.STATE_FOCUSABLE)
        return Node(node.getRoleName(), node.name, node.description, captions, focusable,
                    [self.read(child) for child in self.children(node)])

    def press(self, node, name):
        """Presses the first button with a name among the descendants of a node."""
        for child in self.children(node):
            if child.name == name and child.getRoleName() == "push button":
                return child.queryAction().doAction(0)
            if self.press(child, name):
                return True
        return False


def check(reader, title, minimum, results):
    """Waits until a window's tree is complete and has no faults."""
    last = [f"no window {title!r}"]

    def is_flawless():
        tree = reader.read_window(title, reader.read)
        if tree is None:
            return False
        with open(os.path.join(results, title + ".txt"), "w", encoding="utf-8") as file:
            file.write("\n".join(tree.lines()) + "\n")
        last[:] = faults(tree) + shortfalls(tree, minimum)
        return not last

    try:
        wait_until(f"a flawless tree of {title!r}", is_flawless)
    except Failure as failure:
        raise Failure(f"{title}:\n  " + "\n  ".join(last)) from failure


def main():
    quillet, results = (os.path.abspath(path) for path in sys.argv[1:])
    os.makedirs(results, exist_ok=True)
    try_the_checks()
    with AccessibilityBus():
        program = Program(quillet, "Quillet")
        try:
            reader = Reader(program.process.pid)
            check(reader, "Quillet", MAIN_WINDOW, results)
            # The dialogs need a page.
            if not reader.read_window("Quillet", lambda window: reader.press(window, "Add Page")):
                raise Failure("there is no button to add a page")
            # The end of an import updates the commands, even without a new page.
            click(program.icon(IMPORT_ICON))
            program.dialog()
            program.answer("Escape")
            for title, keys, minimum in (("Reindex Items", ["Right", "Down"], REINDEX_DIALOG),
                                       ("Report Header", ["Down"] * 7, HEADER_DIALOG)):
                press("alt")
                press(*keys, "Return")
                program.dialog(title)
                check(reader, title, minimum, results)
                program.answer("Escape")
        finally:
            program.process.kill()
            program.process.wait()


if __name__ == "__main__":
    main()
