#!/usr/bin/env python3
"""Prints the table of ratios of one run of vexa-bench.

    build/release/bench/vexa-bench --benchmark_format=json > run.json
    bench/ratios.py run.json

Times are medians where the run had repetitions. Exits with 1 when a bar is missed.
"""

import json
import sys
from collections import defaultdict

# scene/size: (peer, greatest ratio of our time to the peer's)
BARS = {
    "pile/1000": ("chipmunk", 0.40),
    "pile/4000": ("chipmunk", 0.33),
    "sparse/8000": ("chipmunk", 0.6),
    "pyramid/20": ("box2d", 0.60),
    "pyramid/40": ("box2d", 0.70),
    "stack/20": ("box2d", 1.0),
    "mixed/300": ("box2d", 0.5),
    "chain at rest/100": ("box2d", 1.2),
    "chain swinging/100": ("box2d", 1.2),
    "polygon/100": ("bruteforce", 0.5),
    "water/4000": ("reference", 0.85),
    "water/16000": ("reference", 0.85),
}
# Whole step per contact point and sweep, in nanoseconds.
PER_CONTACT_BAR = 20
# Greatest exponent of time over the number of bodies, from 1000 to 8000.
GROWTH_BAR = 1.1
PER_CONTACT_SCENES = ("pile/1000", "pile/4000", "pyramid/20", "pyramid/40")
UNITS = {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}


def load(path):
    """{scene/size: {engine: entry}} with each entry's time in milliseconds under "ms"."""
    with open(path, encoding="utf-8") as file:
        entries = json.load(file)["benchmarks"]
    has_medians = any(e.get("aggregate_name") == "median" for e in entries)
    scenes = defaultdict(dict)
    for entry in entries:
        if entry.get("error_occurred"):
            print(f"{entry['name']}: {entry['error_message']}")
            continue
        if has_medians and entry.get("aggregate_name") != "median":
            continue
        parts = entry["run_name"].split("/")
        parts = [p for p in parts if not p.startswith(("iterations:", "repeats:", "manual_time", "process_time"))]
        entry["ms"] = entry["cpu_time"] * UNITS[entry["time_unit"]]
        entry["real"] = entry["real_time"] * UNITS[entry["time_unit"]]
        scenes["/".join(parts[:2])][parts[2] if len(parts) > 2 else "vexa"] = entry
    return scenes


def main():
    scenes = load(sys.argv[1])
    missed = 0
    print(f"{'scene':<24}{'vexa ms':>10}{'contacts':>10}{'ns/c/s':>8}   ratios")
    for scene, engines in scenes.items():
        ours = engines.get("vexa")
        if ours is None:
            continue
        if scene.startswith("sweep per contact"):
            print(f"{scene:<24}{ours['real'] * 1e6:>10.2f} ns per contact")
            continue
        if scene.startswith("growth"):
            missed += ours["exponent"] > GROWTH_BAR
            exponents = "  ".join(f"{engine} N^{entry['exponent']:.2f}" for engine, entry in engines.items())
            print(f"{scene:<24}{exponents} (bar {GROWTH_BAR})")
            continue
        line = f"{scene:<24}{ours['ms']:>10.3f}"
        line += f"{ours['contacts']:>10.0f}" if "contacts" in ours else " " * 10
        per_contact = ours.get("perContactSweep", 0) * 1e9
        shown = scene in PER_CONTACT_SCENES and per_contact
        line += f"{per_contact:>8.1f}   " if shown else " " * 11
        if shown and per_contact > PER_CONTACT_BAR:
            line += f"MISSED {PER_CONTACT_BAR} ns  "
            missed += 1
        for engine, entry in engines.items():
            if engine == "vexa":
                continue
            ratio = ours["ms"] / entry["ms"]
            line += f"{engine} {ratio:.2f}"
            if scene in BARS and BARS[scene][0] == engine:
                good = ratio <= BARS[scene][1]
                missed += not good
                line += f" (bar {BARS[scene][1]}{'' if good else ' MISSED'})"
            line += "  "
        print(line.rstrip())
    if "water/4000" in scenes and "water/16000" in scenes:
        import math

        ratio = scenes["water/16000"]["vexa"]["ms"] / scenes["water/4000"]["vexa"]["ms"]
        print(f"water grows like N^{math.log(ratio, 4):.2f} (bar 1.3)")
        missed += ratio > 4**1.3
    if "boxes in water/200" in scenes and "boxes in water/0" in scenes:
        ratio = scenes["boxes in water/200"]["vexa"]["ms"] / scenes["boxes in water/0"]["vexa"]["ms"]
        print(f"200 boxes in water: {ratio:.2f} of the water alone (bar 1.5)")
        missed += ratio > 1.5
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
