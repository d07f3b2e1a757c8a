#!/usr/bin/env python3
"""Watches the progress bar and the pointer during an import that takes long.

Usage: long_work.py QUILLET RESULTS
  QUILLET   the program
  RESULTS   a folder for the screenshots; emptied first

Run it in an X server with a window manager and an empty home folder (tests/support/with-x-server).
"""

import os
import shutil
import tempfile
import time

from driver import (Failure, Picture, stable_screen, click, cursor, point_at, press, wait_until,
                    write)
from session import (check, close_discarding, run_parts, start_working, status_bar,
                     wait_for_end_of_message)

# A little more than the time that the program waits before it shows progress.
PROGRESS_DELAY_SECONDS = 0.6


def watch_long_work(session):
    """The pointer is busy and a bar is visible as long as the import takes."""
    box = session.program.box
    point_at(*box.centre)
    before, pointer = stable_screen(), cursor()
    folder = tempfile.mkdtemp()
    # The program reads from a pipe until this test closes it.
    pipes = [os.path.join(folder, f"{number}.png") for number in (1, 2, 3)]
    for pipe in pipes:
        os.mkfifo(pipe)
    click(session.program.icon(session.resource("menu/file_import.png")))
    session.program.dialog("Import one or more supported image files")
    write(folder)
    press("Return")
    stable_screen()
    write(" ".join(f'"{os.path.basename(pipe)}"' for pipe in pipes))
    press("Return")

    first = wait_until("the first image to be read", lambda: writing_end(pipes[0]))
    point_at(*box.centre)
    time.sleep(PROGRESS_DELAY_SECONDS)
    second = close_pipe(first, pipes[0], lambda: writing_end(pipes[1]))
    session.shoot("long-work")
    if not before.changes(Picture.of_screen(), status_bar(session)):
        raise Failure("no progress is visible")
    check("remains of the dialog", before.changes(Picture.of_screen(), session.view()), None)
    check("a busy pointer", cursor() != pointer, True)
    third = close_pipe(second, pipes[1], lambda: writing_end(pipes[2]))
    close_pipe(third, pipes[2], lambda: cursor() == pointer)
    wait_for_end_of_message(session, before)
    close_discarding(session)
    shutil.rmtree(folder)


def writing_end(pipe):
    """Opens a pipe for writing; None while the program does not read from it."""
    try:
        return os.open(pipe, os.O_WRONLY | os.O_NONBLOCK)
    except OSError:
        return None


def close_pipe(end, pipe, goal):
    """Closes the writing end of a pipe until the goal is reached; returns the goal's result.

    The program may open the pipe more than once.
    """
    os.close(end)

    def reached():
        again = writing_end(pipe)
        if again:
            os.close(again)
        return goal()

    return wait_until("the program to go on", reached)


if __name__ == "__main__":
    run_parts(lambda _: [], (start_working, watch_long_work))
