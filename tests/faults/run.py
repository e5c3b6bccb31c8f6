#!/usr/bin/env python3
"""Lets calls to the system fail, one in each run of the real program, and looks at what is left on the disk.

    tests/faults/run.py PROGRAM_FOLDER FAULTS_LIBRARY [--most N] [--kind KIND]

A run starts on a scene, autosaves all the time, takes a screenshot, saves and ends. In each run another call fails:
every one of its kind, or with --most N of them from the first to the last. Afterwards every file that was on the disk must be there, as it
was or whole and new; the program must have ended by itself, and told a failure at most a few times.
"""

import argparse
import collections
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "end_to_end"))
import harness  # noqa: E402
from harness import Failure, Session, box, check, ground, parse_scene, scene, wait_for  # noqa: E402

KINDS = ["open", "read", "write", "fsync", "rename", "mkdir", "remove", "malloc"]
MOST_REPEATS = 4  # of one line about a failure in a run of a few seconds
PATIENCE = 120  # seconds after which a run hangs, however busy the machine is
AUTOSAVE_SECONDS = 15  # until the first one, at most
RUN_SECONDS = 0.8  # some autosaves long
USER_SCENE = scene(ground(0), box(0, 0.5, 1), box(0, 1.5, 1))
SETTINGS = "App.autosaveTime = 0.15;\nKeys.bind(\"f12\", { System.screenshot })"


class FaultyRun(Session):
    """A session in which one call fails."""

    def __init__(self, folder, library, fault):
        super().__init__(folder)
        self.library, self.fault = library, fault
        self.status = None

    def environment(self):
        environment = super().environment()
        if self.library:
            environment.update(LD_PRELOAD=self.library, VEXA_FAULT=self.fault, VEXA_FAULT_FOLDER=self.folder,
                               VEXA_FAULT_COUNTS=os.path.join(self.top, "counts"))
        return environment

    def xdo(self, *words):
        kept, self.library = self.library, None
        try:
            super().xdo(*words)
        finally:
            self.library = kept

    def play(self):
        """Start, some autosaves, a screenshot, the end; a program that ends by itself is taken as it is."""
        try:
            self.start("test.vxa")
            self.key("F12")
            self.await_autosaves()
            self.process.send_signal(signal.SIGTERM)
        except (Failure, subprocess.CalledProcessError):
            pass
        try:
            self.status = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            raise Failure("hangs")
        self.process = None
        with open(os.path.join(self.top, "output.txt"), encoding="latin-1") as file:
            self.output = file.read()

    def await_autosaves(self):
        """Some of them, or a while in vain where a fault keeps them from being made."""
        end = time.monotonic() + AUTOSAVE_SECONDS
        saved = ["Scenes/" + harness.AUTOSAVE, harness.AUTOSAVED_SETTINGS]
        while self.process.poll() is None and time.monotonic() < end:
            if all(os.path.exists(self.path(name)) for name in saved):
                break
            time.sleep(0.05)
        time.sleep(RUN_SECONDS)

    def counts(self):
        with open(os.path.join(self.top, "counts"), "rb") as file:
            return dict(zip(KINDS, struct.unpack("<%dI" % len(KINDS), file.read(4 * len(KINDS)))))


def names_of(configuration):
    """The left sides of a printed configuration."""
    return re.findall(r"^\s*([\w.]+) =", configuration, re.M)


def prepare(session):
    session.append_autoexec(SETTINGS)
    shutil.rmtree(session.path("Screenshots"))  # to be made
    session.write("Scenes/test.vxa", USER_SCENE)
    session.write("Scenes/" + "_ONEXITSAVE.vxa", USER_SCENE)


def examine(session, config):
    check(session.status in (0, 1), "ended with %s" % session.status)
    check(session.read("Scenes/test.vxa") == USER_SCENE, "the user's scene has changed")
    check(len(parse_scene(session.read("Scenes/_ONEXITSAVE.vxa") or "")) == 3, "the last scene is torn or lost")
    check(names_of(session.read("config.cfg") or "") == names_of(config), "the settings are torn or lost")
    autosave = session.read("Scenes/_AUTOSAVE.vxa")
    check(autosave is None or len(parse_scene(autosave)) == 3, "the autosave is torn")
    lines = collections.Counter(line for line in session.output.splitlines() if "ERROR" in line or "Warning" in line)
    for line, count in lines.items():
        check(count <= MOST_REPEATS, "said %d times: %s" % (count, line))


def faulty_run(folder, library, fault, config):
    session = FaultyRun(folder, library, fault)
    try:
        prepare(session)
        if config:
            session.write("config.cfg", config)
        session.play()
        if config:
            examine(session, config)
        return session.read("config.cfg"), session.counts()
    except Failure as failure:
        print("%s: %s\n%s" % (fault, failure, session.output[-1500:]), flush=True)
        return None, None
    finally:
        session.close()


def calls_to_fail(count, most):
    """All from 1 to count, or so many of them, evenly spread; more of the last ones, where a run saves and ends."""
    if not most or count <= most:
        return range(1, count + 1)
    late = range(count - most // 2 + 1, count + 1)
    return sorted({1 + (count - 1) * i // most for i in range(most - len(late))} | set(late))


def main():
    harness.TIMEOUT = PATIENCE
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder")
    parser.add_argument("library")
    parser.add_argument("--most", type=int, help="runs for one kind of call")
    parser.add_argument("--kind", choices=KINDS, action="append")
    options = parser.parse_args()
    library = os.path.abspath(options.library)
    config, counts = faulty_run(options.folder, library, "open:0", None)
    check(config, "a run without a fault fails")
    passed = failed = 0
    for kind in options.kind or KINDS:
        for call in calls_to_fail(counts[kind], options.most):
            ended, _ = faulty_run(options.folder, library, "%s:%d" % (kind, call), config)
            passed, failed = passed + (ended is not None), failed + (ended is None)
        print("%s: %d calls" % (kind, counts[kind]), flush=True)
    print("%d passed, %d failed" % (passed, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
