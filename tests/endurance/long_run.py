#!/usr/bin/env python3
"""Lets scenes run for hours of their own time without a window, and looks at memory, numbers and speed.

    tests/endurance/long_run.py VEXA_SCENE [--hours H] [--scenes A,B]

After a first part, in which things settle, memory may grow by MOST_GROWTH an hour; no shape and no drop may get lost
or reach a speed that is no number; and a step of the last part may not take longer than one of the first.
"""

import argparse
import glob
import os
import subprocess
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, os.pardir)
STEPS_PER_SECOND = 200  # Sim.timeDelta as it ships
PARTS = 24  # reports in a run; the first sixth is left to settle
MOST_GROWTH = 1024  # kB in an hour of the scene's time
GRAIN = 256  # kB by which memory may differ from report to report in any run
MOST_DRIFT = 1.3  # of the time of a step
MOST_SPEED = 1000  # m/s, of anything in a shipped scene

# Besides the scenes: functions that are called all the time and leave rings of closures behind.
BOUND = {"bound-local": "Sim.gravity = {g = { 1 }; h = { g + g }; [0.0, 0.0 - 9.8 * g]}"}


def watch(runner, scene, steps, statement):
    command = [runner, scene, "--steps", str(steps), "--watch", str(max(steps // PARTS, 1))]
    if statement:
        command += ["--run", statement]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        return None, "ended with status %d: %s" % (done.returncode, done.stderr[-500:])
    return [tuple(float(word) for word in line.split()) for line in done.stdout.splitlines()], done.stderr[:500]


def middle(values):
    return sorted(values)[len(values) // 2]


def judge(rows, hours):
    """What is wrong, and the figures: kB an hour, milliseconds a step early and late."""
    rows = rows[PARTS // 6:]
    third = max(len(rows) // 3, 1)
    early, late = rows[:third], rows[-third:]
    growth = middle([row[2] for row in late]) - middle([row[2] for row in early])
    spent = hours * (late[len(late) // 2][0] - early[len(early) // 2][0]) / rows[-1][0]
    speeds = middle([row[1] for row in early]), middle([row[1] for row in late])
    faults = []
    if growth > GRAIN and growth / spent > MOST_GROWTH:
        faults.append("memory grows")
    if {row[3:5] for row in rows} != {rows[0][3:5]}:
        faults.append("shapes or drops are lost")
    if any(not row[5] <= MOST_SPEED for row in rows):
        faults.append("something is too fast or no number")
    if speeds[1] > MOST_DRIFT * speeds[0] and speeds[1] - speeds[0] > 0.01:
        faults.append("steps get slower")
    return faults, "%+6.0f kB in %.2f h (%.1f MB), %.3f -> %.3f ms a step, fastest %.3g m/s" % (
        growth, spent, rows[-1][2] / 1024, speeds[0], speeds[1], rows[-1][5])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("runner")
    parser.add_argument("--hours", type=float, default=24)
    parser.add_argument("--scenes", help="with commas; all that ship when not given, and " + " ".join(BOUND))
    options = parser.parse_args()
    names = options.scenes.split(",") if options.scenes else sorted(
        os.path.basename(path)[:-4] for path in glob.glob(os.path.join(ROOT, "Scenes", "[!_]*.vxa"))) + list(BOUND)
    failed = 0
    for name in names:
        scene = os.path.join(ROOT, "Scenes", ("newton" if name in BOUND else name) + ".vxa")
        steps = max(int(options.hours * 3600 * STEPS_PER_SECOND), 2 * PARTS)
        rows, said = watch(os.path.abspath(options.runner), scene, steps, BOUND.get(name))
        faults, figures = judge(rows, options.hours) if rows else ([said], "")
        failed += bool(faults)
        print("%-12s %s  %s" % (name, figures, ", ".join(faults)), flush=True)
    print("%d scenes, %g hours each: %d failed" % (len(names), options.hours, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
