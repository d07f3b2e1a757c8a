#!/usr/bin/env python3
"""What a screen reader is told: reads the running program's accessible tree over AT-SPI, and fails
on a control without a name or without a description.

Usage: accessible_tree.py QUILLET RESULTS
  RESULTS  a folder for the trees as text

To be run in an X server with a window manager and an empty home folder (tests/support/with-x-server).
The D-Bus session and the accessibility bus are the test's own.
"""

import os
import subprocess
import sys

from driver import Failure, Program, click, press, wait_until

IMPORT_ICON = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "resources", "menu",
                           "file_import.png")
BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"

# What is used by hand. Each of them needs a name and a description.
CONTROLS = {"push button", "toggle button", "check box", "radio button", "text", "slider",
            "spin button", "combo box", "list"}
# What needs a name alone: it says what it is for by that.
ENTRIES = {"menu item", "check menu item", "list item"}

# How many of each there are at the least, by window; with fewer the tree was not read as a whole.
MAIN_WINDOW = {"push button": 17, "text": 4, "slider": 2, "combo box": 3, "check box": 1, "list": 2,
               "menu item": 17}
REINDEX_DIALOG = {"push button": 2, "text": 1, "combo box": 1, "radio button": 3}
HEADER_DIALOG = {"push button": 2, "text": 2}


class Node:
    """A piece of the tree, as it was when it was read."""

    def __init__(self, role, name="", description="", captions=(), focusable=False, children=()):
        self.role, self.name, self.description = role, name, description
        self.captions, self.focusable, self.children = captions, focusable, children

    def walk(self, path=()):
        """This node and all below it, each with the nodes above it."""
        yield self, path
        for child in self.children:
            yield from child.walk(path + (self,))

    def lines(self):
        for node, path in self.walk():
            captions = f" under {', '.join(node.captions)!r}" if node.captions else ""
            yield (f"{'  ' * len(path)}{node.role} {node.name!r}{captions}: {node.description}"
                   f"{' (focus)' if node.focusable else ''}")


def faults(tree):
    """What a person who cannot see the screen would miss, a line for each."""
    found = []
    for node, path in tree.walk():
        # The list that a combo box opens goes by the combo box's name.
        if node.role == "list" and path and path[-1].role == "combo box":
            continue
        place = " > ".join(f"{above.role} {above.name!r}" for above in path + (node,))
        is_control = node.role in CONTROLS or (node.focusable and node.role not in ENTRIES)
        # A combo box is called like the entry that it shows; what it is, its caption tells.
        name = " ".join(node.captions) if node.role == "combo box" else node.name
        if (is_control or node.role in ENTRIES) and not name.strip():
            found.append(f"no name: {place}")
        if is_control and not node.description.strip():
            found.append(f"no description: {place}")
    return found


def shortfalls(tree, least):
    """Of which roles there are fewer than there have to be."""
    roles = [node.role for node, _ in tree.walk()]
    return [f"{roles.count(role)} of role {role}, expected {count} at least"
            for role, count in least.items() if roles.count(role) < count]


def try_the_checks():
    """Sees that the checks find what they are for."""

    def expect(what, found, expected):
        if found != expected:
            raise Failure(f"the check of {what} found {found}, expected {expected}")

    for role in sorted(CONTROLS):
        captions = ("Caption:",) if role == "combo box" else ()
        whole = Node("frame", children=[Node(role, "Name", "Description", captions)])
        expect("a whole " + role, faults(whole), [])
        nameless = Node("frame", children=[Node(role, "", "Description")])
        expect("a nameless " + role, faults(nameless), [f"no name: frame '' > {role} ''"])
        mute = Node("frame", children=[Node(role, "Name", " ", captions)])
        expect("a mute " + role, faults(mute), [f"no description: frame '' > {role} 'Name'"])
    expect("a combo box without a caption", faults(Node("combo box", "Entry", "Description")),
           ["no name: combo box 'Entry'"])
    expect("a menu item", faults(Node("menu item", "")), ["no name: menu item ''"])
    expect("what takes the focus", len(faults(Node("filler", focusable=True))), 2)
    expect("a layout", faults(Node("filler")), [])
    expect("a count", shortfalls(Node("list", children=[Node("list item")]), {"list": 2}),
           ["1 of role list, expected 2 at least"])


class AccessibilityBus:
    """A D-Bus session with an accessibility bus; gone with the block that it is used in."""

    def __enter__(self):
        self.helpers = []
        session = self.start("dbus-daemon", "--session", "--nofork", "--print-address=1")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = session.stdout.readline().decode().strip()
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.start(BUS_LAUNCHER, "--launch-immediately", "--a11y=1")
        return self

    def start(self, *command):
        # A helper goes with this script, in whatever way that ends.
        helper = subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *command],
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.helpers.append(helper)
        return helper

    def __exit__(self, *_):
        for helper in reversed(self.helpers):
            helper.terminate()
            helper.wait()


class Reader:
    """Reads the windows of one program."""

    def __init__(self, process_id):
        # Looks for its bus at once, and so not before there is one.
        import pyatspi
        from gi.repository import GLib
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

    def find(self, title):
        try:
            return next((window for window in self.windows() if window.name == title), None)
        except self.error:
            # It changed while it was read.
            return None

    def window(self, title):
        """Waits for a window; its node."""
        return wait_until(f"window {title!r} in the accessible tree", lambda: self.find(title))

    def read(self, node):
        """The tree below a node."""
        captions = [relation.getTarget(i).name for relation in node.getRelationSet()
                    if relation.getRelationType() == self.pyatspi.RELATION_LABELLED_BY
                    for i in range(relation.getNTargets())]
        focusable = node.getState().contains(self.pyatspi.STATE_FOCUSABLE)
        return Node(node.getRoleName(), node.name, node.description, captions, focusable,
                    [self.read(child) for child in self.children(node)])

    def press(self, node, name):
        """Presses the button with a name somewhere below a node."""
        for child in self.children(node):
            if child.name == name and child.getRoleName() == "push button":
                return child.queryAction().doAction(0)
            if self.press(child, name):
                return True
        return False


def check(reader, title, least, results):
    tree = reader.read(reader.window(title))
    with open(os.path.join(results, title + ".txt"), "w", encoding="utf-8") as file:
        file.write("\n".join(tree.lines()) + "\n")
    found = faults(tree) + shortfalls(tree, least)
    if found:
        raise Failure(f"{title}:\n  " + "\n  ".join(found))


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
            if not reader.press(reader.window("Quillet"), "Add Page"):
                raise Failure("there is no button to add a page")
            # The commands find out that there is one when an import ends.
            click(program.icon(IMPORT_ICON))
            program.dialog()
            program.answer("Escape")
            for title, keys, least in (("Reindex Items", ["Right", "Down"], REINDEX_DIALOG),
                                       ("Report Header", ["Down"] * 7, HEADER_DIALOG)):
                press("alt")
                press(*keys, "Return")
                program.dialog(title)
                check(reader, title, least, results)
                program.answer("Escape")
        finally:
            program.process.kill()
            program.process.wait()


if __name__ == "__main__":
    main()
