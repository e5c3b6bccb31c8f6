#!/usr/bin/env python3
"""Runs every shipped scene in several builds of vexa-scene, several times each: all must end in the same bits.

    tests/endurance/same_bits.py [--steps N] [--runs N] [--scenes A,B] [--build PRESET,PRESET] [--other PRESET] [VEXA_SCENE...]

--build configures and builds the runner of those presets (release, debug, checked, clang) and takes them along;
--other takes that of a preset where it is built.
"""

import argparse
import collections
import glob
import os
import subprocess
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, os.pardir)
RUNNER = "build/%s/tools/vexa-scene"


def build(preset):
    for command in (["cmake", "--preset", preset], ["cmake", "--build", "--preset", preset, "--target", "vexa-scene"]):
        done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
        if done.returncode != 0:
            sys.exit("same_bits: failed: %s\n%s" % (" ".join(command), (done.stdout + done.stderr)[-4000:]))
    return os.path.join(ROOT, RUNNER % preset)


def run(runner, scene, steps):
    done = subprocess.run([runner, scene, "--steps", str(steps), "--hash"], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit("same_bits: %s on %s ended with status %d\n%s" % (runner, scene, done.returncode, done.stderr[-2000:]))
    return done.stdout.strip()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("runners", nargs="*", metavar="VEXA_SCENE")
    parser.add_argument("--build", default="", help="presets to build first, with commas")
    parser.add_argument("--other", default="", help="presets to take where they are built, with commas")
    parser.add_argument("--steps", type=int, default=1000)
    parser.add_argument("--runs", type=int, default=1, help="of each scene in each build")
    parser.add_argument("--scenes", help="with commas; all that ship when not given")
    options = parser.parse_args()
    runners = [os.path.abspath(runner) for runner in options.runners]
    runners += [build(preset) for preset in options.build.split(",") if preset]
    others = [os.path.join(ROOT, RUNNER % preset) for preset in options.other.split(",") if preset]
    runners += [runner for runner in others if os.path.exists(runner)]
    if not runners:
        parser.error("no runner")
    names = options.scenes.split(",") if options.scenes else sorted(
        os.path.basename(path)[:-4] for path in glob.glob(os.path.join(ROOT, "Scenes", "[!_]*.vxa")))
    differing = 0
    for name in names:
        scene = os.path.join(ROOT, "Scenes", name + ".vxa")
        hashes = collections.defaultdict(list)
        for runner in runners:
            for _ in range(options.runs):
                hashes[run(runner, scene, options.steps)].append(os.path.relpath(runner, ROOT))
        differing += len(hashes) > 1
        print("%-12s %s" % (name, " ".join(hashes)), flush=True)
        if len(hashes) > 1:
            for value, who in hashes.items():
                print("    %s: %s" % (value, ", ".join("%dx %s" % (n, w) for w, n in collections.Counter(who).items())))
    print("%d scenes, %d builds, %d runs each, %d steps: %d differ" % (
        len(names), len(runners), options.runs, options.steps, differing))
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
