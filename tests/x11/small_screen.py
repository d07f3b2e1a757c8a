#!/usr/bin/env python3
"""Starts the program for the first time on a screen that is smaller than its default window.

Usage: small_screen.py QUILLET RESULTS
"""

import os
import sys

from driver import Failure, Program, run, wait_until

# The part of a window of 800 x 600 at (30, 30) that a screen of 640 x 480 shows.
EXPECTED = (610, 450)


def main():
    results = os.path.abspath(sys.argv[2])
    os.makedirs(results, exist_ok=True)
    program = Program(os.path.abspath(sys.argv[1]), "Quillet")
    try:
        wait_until("the window in its frame", lambda: program.box.top > 0)
        run("import", "-silent", "-window", "root", os.path.join(results, "small-screen.png"))
        found = (program.box.width, program.box.height)
        if found != EXPECTED:
            raise Failure(f"the window has the size {found}, expected {EXPECTED}")
        program.close()
        if program.ended() != 0:
            raise Failure("the program fails")
    finally:
        program.process.kill()
        program.process.wait()


if __name__ == "__main__":
    main()
