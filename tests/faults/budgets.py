#!/usr/bin/env python3
"""Loads scenes that a stranger could have made to hurt, one run of vexa-scene each, and measures what they cost.

    tests/faults/budgets.py VEXA_SCENE [--seconds] [NAME...]

A file may cost at most MOST_MEMORY, and with --seconds at most MOST_SECONDS, of loading and of a few steps; a good
circle that stands in it first must be there in the end, at a place that is a number. What is more than the budget is
left out, and the user told.
"""

import argparse
import math
import os
import re
import resource
import subprocess
import sys
import tempfile

MOST_MEMORY = 512  # MB, on top of what an empty scene takes
MOST_SECONDS = 5.0
STEPS = 5
HANGS = 300  # seconds after which a run is given up
GOOD = '{type = "circle";radius=0.3;id=1;color=[0.5,0.5,0.5];pos=[0.0,300.0];angle=0.0}'
GOOD_RADIUS = "radius = 0.3"

CASES = {}


REFUSED = {"deep-lists"}  # a text that is not of the language is refused as a whole, with a message


def case(function):
    """The function's name is the case's; it gives the statements of the file, without version and good circle."""
    CASES[function.__name__.replace("_", "-")] = function
    return function


def circle(number, pos=(0, 0), radius=0.5, more=""):
    return '{type = "circle";radius=%s;id=%d;color=[1.0,0.5,0.5];pos=[%s,%s];angle=0.0;%s}' % (
        radius, number, pos[0], pos[1], more)


def polygon(number, vertices):
    vecs = ",".join("[%.6g,%.6g]" % v for v in vertices)
    x, y = (sum(v[i] for v in vertices) / len(vertices) for i in (0, 1))
    return '{type = "polygon";id=%d;color=[1.0,0.5,0.5];pos=[%g,%g];angle=0.0;vecs=[%s]}' % (number, x, y, vecs)


def water(places):
    return '{type = "water";vecs=[%s]}' % ",".join("[%g,%g]" % place for place in places)


@case
def strings():
    """Sixty strings of 16 MB, each made of a short one."""
    doublings = "".join("s=s+s;" for _ in range(14))
    return ('{type = "blob";s = "%s";%s}' % ("x" * 1024, doublings) for _ in range(60))


@case
def long_strings():
    """Thirty strings of 1 MB that stand in the file, which is as long as one may be."""
    return ('{type = "blob";s = "%s"}' % ("x" * (1 << 20)) for _ in range(30))


@case
def lists():
    """A million numbers in a list, eight times."""
    return ('{type = "blob";s=[%s1]}' % ("1," * 999999) for _ in range(8))


@case
def chains():
    """A thousand chains with one link each, at the last place that there is."""
    return [circle(10 + i, (3 * i, 0), more="chain=%d;chainNr=99999" % i) for i in range(1000)]


@case
def circles_in_one_place():
    return [circle(10 + i) for i in range(2000)]


@case
def drops_in_one_place():
    return [water([(0, 0)] * 10000)]


@case
def drops_in_a_hand():
    """Thirty thousand drops on ten centimetres."""
    return [water([(0.1 * (i % 173) / 173, 0.1 * (i // 173) / 173) for i in range(30000)])]


def wheel(vertices, at):
    return [(at + math.cos(2 * math.pi * i / vertices) * (1 + 0.2 * (i % 2)),
             math.sin(2 * math.pi * i / vertices) * (1 + 0.2 * (i % 2))) for i in range(vertices)]


@case
def outlines():
    """Twenty outlines of ten thousand vertices."""
    return (polygon(10 + i, wheel(10000, 4 * i)) for i in range(20))


@case
def combs():
    """Outlines whose edges lie side by side, so that each has to be held against all others."""
    def comb(at):
        teeth = [(at + 1e-4 * i + i % 2, 1.0 * (i % 2)) for i in range(9998)]
        return teeth + [(at + 3, 1), (at + 3, -1), (at - 1, -1)]
    return (polygon(10 + i, comb(10 * i)) for i in range(20))


@case
def many_circles():
    return ('{type = "circle";radius=0.4;id=%d;pos=[%d,%d]}' % (10 + i, i % 300, i // 300) for i in range(100000))


@case
def many_joints():
    return ('{type = "hinge";size=0.1;geom0=1;geom1=0;geom0pos=[0,0];geom1pos=[0,0]}' for i in range(40000))


@case
def many_triangles():
    """As many outlines, each of its own form, as a text may hold."""
    return (polygon(10 + i, [(4 * i, 0), (4 * i + 1, 0), (4 * i + 0.5, 1 + i * 1e-4)]) for i in range(30000))


@case
def triangles_in_a_heap():
    """A hand's breadth full of outlines that all touch each other."""
    return [polygon(10 + i, [(0, 0), (1, 0), (0.5, 1 + i * 1e-3)]) for i in range(500)]


@case
def great_polygon():
    """2,000 km across."""
    return [polygon(10, [(-1e6, -1e6), (1e6, -1e6), (1e6, -1), (-1e6, -1)])]


@case
def great_circles():
    """1,000 km across."""
    return [circle(10 + i, (0, -1e6 - i), 5e5) for i in range(10)]


@case
def great_integer():
    return ["a = 2147483647147483647", circle(2147483647147483647, (5, 0)), circle(12, (2147483647147483647, 0))]


@case
def deep_lists():
    return ["a = " + "[" * 100000 + "]" * 100000, '{type = "blob";a=%s}' % ("(" * 50000 + "1" + ")" * 50000)]


@case
def no_numbers():
    """Places, sizes and outlines that are no numbers."""
    bad = "(+inf - +inf)"
    return [circle(10, (bad, 0)), circle(11, (0, bad)), circle(12, (1, 1), bad),
            '{type = "polygon";id=13;color=[1.0,0.5,0.5];pos=[0.0,0.0];angle=0.0;vecs=[[0,0],[1,0],[%s,1]]}' % bad,
            '{type = "circle";radius=1.0;id=14;color=[1.0,0.5,0.5];pos=[0.0,0.0];angle=%s}' % bad,
            '{type = "hinge";geom0=1;geom1=0;geom0pos=[%s,0];geom1pos=[0,0];size=0.1}' % bad,
            water([(0, 0)]).replace("[0,0]", "[%s,0]" % bad)]


@case
def endless_formulas():
    """A thousand formulas that never end, on attributes that are read in each step."""
    loop = "friction={f=(n)=>{f(n+1)};f(1)}"
    return [circle(10 + i, (3 * i, 0), more=loop) for i in range(1000)]


def write_scene(path, statements):
    """One by one: what this script takes at the start of a run counts as memory of the run."""
    with open(path, "w", encoding="latin-1") as file:
        file.write("version = 1;\n" + GOOD)
        for statement in statements:
            file.write(";\n" + statement)


def run(program, scene, out):
    """Exit status, MB and seconds of the processor of one run, and what it said."""
    with tempfile.TemporaryFile("w+", errors="replace") as output:
        process = subprocess.Popen([program, scene, "--steps", str(STEPS), "--out", out], stdout=output,
                                   stderr=subprocess.STDOUT, preexec_fn=limit)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = status
        output.seek(0)
        text = output.read(4 << 20)
    return os.waitstatus_to_exitcode(status), usage.ru_maxrss / 1024, usage.ru_utime + usage.ru_stime, text


def limit():
    """A run that is far beyond its budget ends instead of taking the machine with it."""
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
    resource.setrlimit(resource.RLIMIT_CPU, (HANGS, HANGS))


def verdict(name, status, memory, seconds, limits, out):
    if memory > limits[0]:
        return "too much memory"
    if limits[1] and seconds > limits[1]:
        return "too slow"
    if name in REFUSED:
        return "" if status == 1 else "is not refused"
    if status != 0:
        return "ended with status %d" % status
    with open(out, encoding="latin-1") as file:
        saved = file.read()
    good = [block for block in re.findall(r"\{(.*?)\n\}", saved, re.S) if GOOD_RADIUS in block]
    if not good:
        return "the good circle is lost"
    if not re.search(r"pos = \[-?\d[^,a-z]*(e[-+]\d+)?, -?\d", good[0]):
        return "the good circle has no place"
    return ""


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("names", nargs = "*", metavar= "NAME", help= "of: " + " ".join(CASES))
    parser.add_argument("--seconds", action= "store_true", help= "hold the budget of time as well")
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    failed = 0
    with tempfile.TemporaryDirectory(prefix= "vexa-") as folder:
        scene, out = os.path.join(folder, "scene.vxa"), os.path.join(folder, "out.vxa")
        write_scene(scene, [])
        _, empty, _, _ = run(program, scene, out)
        print("%-22s %7.0f MB" % ("empty", empty), flush=True)
        for name in options.names or CASES:
            write_scene(scene, CASES[name]())
            if os.path.exists(out):
                os.remove(out)
            status, memory, seconds, text = run(program, scene, out)
            fault = verdict(name, status, memory - empty, seconds, (MOST_MEMORY, options.seconds and MOST_SECONDS), out)
            failed += bool(fault)
            print("%-22s %7.0f MB %7.2f s  %s" % (name, memory - empty, seconds, fault), flush=True)
            if fault:
                print("\n".join(line[:200] for line in text.splitlines()[-5:]))
    print("%d failed" % failed)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
