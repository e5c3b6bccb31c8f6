#!/usr/bin/env python3
"""Kills the program at random moments while it saves all the time, and looks at what is left on the disk.

    tests/faults/kill.py PROGRAM_FOLDER [--times N] [--seed S]

After each kill every file must be whole, and the scene at most one autosave old: an attribute of the scene's text
counts on with time, and the next start must bring it back.
"""

import argparse
import os
import random
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "end_to_end"))
import harness  # noqa: E402
from harness import AUTOSAVE, Failure, Session, box, check, ground, of_type, parse_scene, scene  # noqa: E402

INTERVAL = 0.05  # seconds between two autosaves
GRACE = 10.0  # seconds that an autosave may be older than its interval, on a busy machine
PROGRESS = 50  # runs between two lines that tell how far it is
SETTINGS = "App.autosaveTime = %g" % INTERVAL


def killed_run(session, moment):
    """One run, killed `moment` seconds after it began to draw."""
    session.start("test.vxa")
    session.key("space")  # a world that stands still is saved only once
    time.sleep(moment)
    session.kill()
    now = time.time()
    text = session.read("Scenes/" + AUTOSAVE)
    if text is None:
        check(moment < INTERVAL + GRACE, "no autosave after %.2f s" % moment)
        return
    check(len(of_type(parse_scene(text), "polygon")) == 12, "the autosave is torn")
    age = now - os.stat(session.path("Scenes/" + AUTOSAVE)).st_mtime
    check(age < INTERVAL + GRACE, "the autosave is %.1f s old" % age)
    config = session.read("config.autosave.cfg")
    check(config is None or "autosaveTime" in config, "the autosaved settings are torn")


def main():
    harness.TIMEOUT = 120  # a busy machine is no fault
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder")
    parser.add_argument("--times", type=int, default=20)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    moments = random.Random(options.seed)
    session = Session(options.folder)
    failed = 0
    try:
        session.append_autoexec(SETTINGS)
        session.write("Scenes/test.vxa", scene(ground(0), *[box(i - 6, 0.5, 0.8) for i in range(12)]))
        for run in range(options.times):
            try:
                killed_run(session, moments.uniform(0, 1.5))
            except Failure as failure:
                failed += 1
                print("run %d: %s" % (run, failure), flush=True)
            if (run + 1) % PROGRESS == 0:
                print("%d of %d, %d failed" % (run + 1, options.times, failed), flush=True)
        session.start("test.vxa")
        session.quit()
        left = [name for name in os.listdir(session.path("Scenes")) + os.listdir(session.folder) if name.endswith(".tmp")]
        if left:
            failed += 1
            print("left behind: %s" % left)
    finally:
        session.close()
    print("%d passed, %d failed" % (options.times - failed, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
