#!/usr/bin/env python3
"""Runs the program where files cannot be written as usual: on a full disk, in a folder that is only for reading, and
twice in one folder. Needs root, which mounts file systems of its own below a scratch folder; ends with 77 without.

    tests/faults/folders.py PROGRAM_FOLDER [CASE...]
"""

import argparse
import glob
import os
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "end_to_end"))
from harness import AUTOSAVE, Failure, Session, box, check, ground, of_type, parse_scene, scene, wait_for  # noqa: E402

ROOM = 4 << 20  # bytes beyond the program's own files
MOST_REPEATS = 4  # of one line about a failure
USER_SCENE = scene(ground(0), box(0, 0.5, 1), box(0, 1.5, 1))
SETTINGS = "App.autosaveTime = 0.2"
RUN_SECONDS = 3.0


class MountedSession(Session):
    """A session whose folder is a small file system of its own, and whose home is another scratch folder."""

    def __init__(self, folder):
        super().__init__(folder)
        self.mounted = False
        self.home = os.path.join(self.top, "home")
        os.mkdir(self.home)

    def mount(self):
        kept = self.folder + ".kept"
        os.rename(self.folder, kept)
        os.mkdir(self.folder)
        size = int(subprocess.check_output(["du", "-sb", kept]).split()[0]) + ROOM
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=%d" % size, "vexa", self.folder], check=True)
        self.mounted = True
        shutil.copytree(kept, self.folder, dirs_exist_ok=True)

    def remount(self, how):
        subprocess.run(["mount", "-o", "remount," + how, self.folder], check=True)

    def environment(self):
        environment = super().environment()
        environment.pop("XDG_DATA_HOME", None)
        environment["HOME"] = self.home
        return environment

    def fill(self):
        """Takes the last byte of the disk."""
        with open(self.path("filler"), "wb", buffering=0) as file:
            try:
                while file.write(b"\0" * 4096):
                    pass
            except OSError:
                pass

    def close(self, keep=False):
        if self.process:
            self.process.kill()
            self.process.wait()
            self.process = None
        if self.mounted:
            subprocess.run(["umount", self.folder], check=True)
        super().close(keep)


def count_failures(session):
    session.has_said("")
    lines = [line for line in session.output.splitlines() if "ERROR" in line or "Error" in line or "Warning" in line]
    for line in set(lines):
        check(lines.count(line) <= MOST_REPEATS, "said %d times: %s" % (lines.count(line), line))
    return len(lines)


def end(session):
    """Status of a program that is asked to end, whatever it is."""
    session.process.send_signal(signal.SIGTERM)
    try:
        status = session.process.wait(40)
    except subprocess.TimeoutExpired:
        raise Failure("does not end")
    session.process = None
    return status


def prepare(session):
    session.append_autoexec(SETTINGS)
    session.write("Scenes/test.vxa", USER_SCENE)


def case_full_disk(session):
    """What was on the disk stays; the user is told a few times; with room again all is saved."""
    session.mount()
    prepare(session)
    session.start("test.vxa")
    wait_for("an autosave", lambda: session.read("Scenes/" + AUTOSAVE))
    before = session.read("config.autosave.cfg")
    session.fill()
    session.key("space")
    time.sleep(RUN_SECONDS)
    check(session.process.poll() is None, "the program has ended")
    check(count_failures(session) > 0, "the user is not told")
    check(len(of_type(parse_scene(session.read("Scenes/" + AUTOSAVE)), "polygon")) == 2, "the autosave is torn")
    check(session.read("config.autosave.cfg") == before, "the autosaved settings are torn")
    check(session.read("Scenes/test.vxa") == USER_SCENE, "the user's scene has changed")
    check(end(session) in (0, 1), "does not end by itself")
    check(session.read("Scenes/" + AUTOSAVE), "the autosave is gone though nothing took its place")
    os.remove(session.path("filler"))
    session.start()
    check(session.has_said("Recovering config.autosave.cfg"), "the settings do not come back")
    check(len(of_type(session.quit(), "polygon")) == 2, "the scene does not come back")


def case_read_only_folder(session):
    """The user's files lie in the home folder then, and shipped scenes are read from the installation."""
    prepare(session)
    session.mount()
    session.remount("ro")
    session.start("test.vxa")
    data = os.path.join(session.home, ".local/share/vexa")
    wait_for("an autosave", lambda: os.path.exists(os.path.join(data, "Scenes", AUTOSAVE)))
    check(end(session) == 0, "does not end well")
    check(os.path.exists(os.path.join(data, "config.cfg")), "the settings are not in the home folder")
    session.remount("rw")


def case_nowhere_to_write(session):
    """Neither folder nor home: the program runs all the same, and says what it cannot save."""
    prepare(session)
    session.mount()
    session.remount("ro")
    os.rmdir(session.home)
    os.symlink("/proc/self", session.home)  # in which not even root makes a folder
    session.start("test.vxa")
    session.key("space")
    time.sleep(RUN_SECONDS)
    check(session.process.poll() is None, "the program has ended")
    check(count_failures(session) > 0, "the user is not told")
    check(end(session) in (0, 1), "does not end by itself")
    os.remove(session.home)
    session.remount("rw")


def case_two_programs(session):
    """Each autosaves by itself; the second says so and speaks of no crash; one that is killed is found."""
    prepare(session)
    session.start("test.vxa")
    first, window, log = session.process, session.window, session.output
    wait_for("an autosave", lambda: session.read("Scenes/" + AUTOSAVE))
    os.rename(os.path.join(session.top, "output.txt"), os.path.join(session.top, "first.txt"))
    session.start("stack.vxa")
    check(session.has_said("Another Vexa is running in this folder"), "the second does not say so")
    check("crash" not in session.output and "Recovering" not in session.output, "the second speaks of a crash")
    second = wait_for("the second's autosave", lambda: session.read("Scenes/_AUTOSAVE-2.vxa"))
    check(len(of_type(parse_scene(second), "polygon")) != 2, "the second saves the first's scene")
    session.key("space")
    time.sleep(RUN_SECONDS)
    check(len(of_type(parse_scene(session.read("Scenes/" + AUTOSAVE)), "polygon")) == 2, "the first's is overwritten")
    session.kill()
    session.start("test.vxa")  # a third, in the dead one's place
    kept = wait_for("the dead one's scene", lambda: glob.glob(session.path("Scenes/recovered-*.vxa")))
    check(parse_scene(session.read(kept[0])), "the dead one's scene is torn")
    check(end(session) == 0, "the third does not end well")
    session.process, session.window = first, window
    check(first.poll() is None, "the first has ended")
    session.output = log
    check(len(of_type(session.quit(), "polygon")) == 2, "the first's scene is lost")


CASES = {name[5:].replace("_", "-"): function for name, function in globals().items() if name.startswith("case_")}


def run(name, folder):
    session = MountedSession(folder)
    try:
        CASES[name](session)
        return True
    except Failure as failure:
        print("%s: %s\n%s" % (name, failure, session.output[-1500:]), flush=True)
        return False
    finally:
        if session.mounted:
            session.remount("rw")
        session.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder")
    parser.add_argument("cases", nargs="*", metavar="CASE", help="of: " + " ".join(CASES))
    options = parser.parse_args()
    if os.getuid() != 0:
        print("folders: skipped, not root")
        return 77
    held = [name for name in options.cases or CASES if run(name, options.folder)]
    print("%d of %d hold" % (len(held), len(options.cases or CASES)))
    return 0 if len(held) == len(options.cases or CASES) else 1


if __name__ == "__main__":
    sys.exit(main())
