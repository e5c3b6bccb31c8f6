#!/usr/bin/env python3
"""Runs one end-to-end case, or all: run.py PROGRAM_FOLDER [CASE]."""

import math
import os
import signal
import subprocess
import sys
import time
import traceback

import face
import hand
from boxes import circle, is_at, line, polygons, start_boxes
from harness import AUTOSAVE, Failure, Session, check, of_type, wait_for

def place_at_rest(session):
    """Of the newest polygon, once it has not moved from one autosave to another."""
    def probe():
        before = polygons(session.present())[-1]["pos"]
        session.wait_frames()
        after = polygons(session.present())[-1]["pos"]
        return after if math.dist(before, after) < 1e-3 else None
    return wait_for("the shape at rest", probe)


def case_draw_and_fall(session):
    """A closed stroke becomes a polygon, which falls and comes to rest on the ground."""
    start_boxes(session)
    corners = [(-0.5, 1.5), (0.5, 1.5), (0.5, 2.5), (-0.5, 2.5), (-0.5, 1.55)]
    session.stroke([pixel for a, b in zip(corners, corners[1:]) for pixel in line(a, b)])
    drawn = session.wait_scene("a third polygon", lambda e: len(polygons(e)) == 3)
    new = polygons(drawn)[-1]
    check(math.dist(new["pos"], (0, 2)) < 0.05, "drawn at %s" % new["pos"])
    check(12 <= len(new["vecs"]) <= 200, "%d vertices" % len(new["vecs"]))
    extents = [max(abs(x - new["pos"][0]), abs(y - new["pos"][1])) for x, y in new["vecs"]]
    check(0.4 < min(extents) and max(extents) < 0.6, "extents %f to %f" % (min(extents), max(extents)))
    session.key("space")
    session.wait_scene("the shape falling", lambda e: polygons(e)[-1]["pos"][1] < 1.5)
    place = place_at_rest(session)
    check(math.dist(place, (0, 0.5)) < 0.1, "rests at %s" % place)
    session.key("space")
    saved = session.quit()
    check(math.dist(polygons(saved)[-1]["pos"], place) < 0.01, "saved at %s" % polygons(saved)[-1]["pos"])
    check(len(polygons(saved)) == 3 and len(of_type(saved, "plane")) == 1, "the saved scene differs")


def case_erase_and_undo(session):
    """A straight stroke erases the box that it crosses and not the ground; undo and redo walk over that."""
    start_boxes(session)
    session.stroke(line((-5.3, 0.6), (-3.5, 0.5)))
    left = session.wait_scene("one box", lambda e: len(polygons(e)) == 1)
    check(polygons(left)[0]["pos"][0] > 4, "the wrong box was erased")
    check(len(of_type(left, "plane")) == 1, "the ground was erased")
    session.chord("ctrl", "z")
    session.wait_scene("both boxes after undo", lambda e: len(polygons(e)) == 2)
    session.chord("ctrl", "y")
    session.wait_scene("one box after redo", lambda e: len(polygons(e)) == 1)
    session.stroke(line((0, 1), (0.2, -1)))
    session.wait_scene("no ground, crossed alone", lambda e: not of_type(e, "plane"))


def case_lasso_and_delete(session):
    """A loop round a box selects it and draws nothing; delete erases the selection."""
    start_boxes(session)
    session.stroke(circle(-4.5, 0.5, 0.95))
    session.key("Delete")
    left = session.wait_scene("one box", lambda e: len(polygons(e)) == 1)
    check(polygons(left)[0]["pos"][0] > 4, "the wrong box was erased")
    session.chord("ctrl", "z")
    session.wait_scene("both boxes", lambda e: len(polygons(e)) == 2)
    session.chord("ctrl", "a")
    session.key("Delete")
    session.wait_scene("nothing", lambda e: not e)


def case_move_and_clone(session):
    """A drag on a box moves it by just that way, with ctrl a copy of it; escape puts it back."""
    start_boxes(session)
    session.stroke(line((-4.5, 0.5), (-2.5, 1.5)))
    moved = session.wait_scene("a moved box", lambda e: is_at(e, (-2.5, 1.5)))
    check(len(polygons(moved)) == 2, "a move made a shape")
    with session.holding("ctrl"):
        session.stroke(line((-2.5, 1.5), (0.5, 1.5)))
    cloned = session.wait_scene("a copy", lambda e: is_at(e, (0.5, 1.5)))
    check(len(polygons(cloned)) == 3 and is_at(cloned, (-2.5, 1.5)), "the original is not in its place")
    session.chord("ctrl", "z")
    session.wait_scene("no copy", lambda e: len(polygons(e)) == 2)
    session.chord("ctrl", "z")
    session.wait_scene("the first place", lambda e: is_at(e, (-4.5, 0.5)))
    session.press_and_move(line((4.5, 0.5), (4.5, 2)))
    session.wait_scene("a box under way", lambda e: is_at(e, (4.5, 2)))
    session.key("Escape")
    session.wait_scene("the box back", lambda e: is_at(e, (4.5, 0.5)))
    session.xdo("mouseup", 1)


def case_console(session):
    """The console runs what is typed, says what fails, remembers it over a restart, and lists the controls."""
    start_boxes(session)
    check(session.console("1 + 2") == "3", "another answer than 3")
    check("noSuchName" in session.console("noSuchName"), "a failure was not told")
    check([row for row in session.widgets() if row[0] == "Console"], "GUI.widgets does not list the console")
    session.console("App.lineWidth = 7.0")
    session.quit()
    check("App.lineWidth = 7.0" in session.read("config.cfg"), "the setting was not made")
    session.start()
    session.key("F11")
    session.xdo("key", "Up", "Up", "Return")  # behind it stands the mark of its end
    session.key("F11")
    wait_for("the last line of the first run",
             lambda: session.read("Logfile.txt").count("> App.lineWidth = 7.0\n") == 2)


def case_widgets(session):
    """Controls are found by their keys and clicked where they stand; a script presses them too, in any language."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)
    session.click_widget("OptionsButton")
    clouds = wait_for("the options", lambda: session.find_widget("DrawClouds"))
    check(clouds[5] is True, "the clouds are off at first")
    session.click_widget("DrawClouds")
    check(session.widget("DrawClouds")[5] is False, "the check did not follow the click")
    session.console('App.language = "German"')
    session.console('GUI.press "DrawClouds"')
    check(session.widget("DrawClouds")[5] is True, "the press by script did nothing")
    check("no control" in session.console('GUI.press "Nonsense"').lower(), "a wrong key was not told")
    session.quit()
    check("App.drawClouds = true" in session.read("config.cfg"), "the setting did not follow")


def case_version(session):
    """The version is told without a display, and nothing else is done."""
    done = subprocess.run([session.path("Vexa"), "-version"], cwd=session.folder, capture_output=True,
                          text=True, env=session.environment(), timeout=20)
    check(done.returncode == 0, "exit status %d" % done.returncode)
    check("Vexa beta 3.5" in done.stdout.splitlines(), "output: " + done.stdout)
    check(not os.path.exists(session.path("Logfile.txt")), "a log file was made")


def case_crash_and_recover(session):
    """After a kill the next start brings back the autosaved scene and settings."""
    session.append_autoexec('Keys.bind("f7", { App.lineWidth = 7.0 })')
    start_boxes(session)
    session.stroke(circle(0, 2, 0.5))
    session.wait_scene("the drawn shape", lambda e: len(polygons(e)) == 3)
    session.key("F7")
    wait_for("the setting in the autosaved configuration",
             lambda: "App.lineWidth = 7.0" in (session.read("config.autosave.cfg") or ""))
    session.kill()
    check(not os.path.exists(session.path("config.cfg")), "a killed program saved its configuration")
    session.start()
    check(session.has_said("Recovering config.autosave.cfg from previous crash"), "no word of recovery")
    wait_for("the name of the recovered scene", lambda: session.title().startswith("test.vxa - "))
    saved = session.quit()
    check(len(polygons(saved)) == 3, "%d polygons came back" % len(polygons(saved)))
    check("App.lineWidth = 7.0" in session.read("config.cfg"), "the setting did not come back")


def case_clean_exit(session):
    """SIGTERM saves scene and configuration and takes the autosaves away; the next start goes on there.
    Ctrl+s and return save under the name of the scene. What is wrong with the user's files is told at the start."""
    start_boxes(session)
    session.chord("ctrl", "s")
    session.wait_frames()
    session.key("Return")
    wait_for("the picture of the saved scene", lambda: os.path.exists(session.path("Scenes/test.png")))
    wait_for("its name in the title", lambda: session.title().startswith("test.vxa - Vexa beta 3.5"))
    session.quit()
    for name in ["Scenes/" + AUTOSAVE, "config.autosave.cfg"]:
        check(not os.path.exists(session.path(name)), name + " was left behind")
    check(session.read("config.cfg"), "no configuration was saved")
    session.append_autoexec("Sim.gravity = 1")
    session.start("nowhere.vxa")
    notices = [row[2] for row in session.widgets() if row[0] == "Notices"]
    check(notices and "bad type" in notices[0] and "nowhere.vxa" in notices[0], "the notices are: %s" % notices)
    wait_for("its name again", lambda: session.title().startswith("test.vxa - "))
    check(len(polygons(session.quit(by=signal.SIGINT))) == 2, "the scene of the last exit did not come back")


CASES = {name[len("case_"):]: case for name, case in sorted({**globals(), **vars(face), **vars(hand)}.items())
         if name.startswith("case_")}


def run(program_folder, name):
    session = Session(program_folder)
    begin = time.monotonic()
    try:
        CASES[name](session)
        print("ok      %s (%.1f s)" % (name, time.monotonic() - begin))
        return True
    except Exception as failure:
        if not isinstance(failure, Failure):
            traceback.print_exc()
        print("FAILED  %s: %s" % (name, failure))
        print("--- output of the program\n" + session.output[-4000:])
        return False
    finally:
        session.close()


def main():
    names = sys.argv[2:] or list(CASES)
    results = [run(os.path.abspath(sys.argv[1]), name) for name in names]
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
