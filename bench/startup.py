#!/usr/bin/env python3
"""Prints what the program's start costs until its first frame has been shown.

    xvfb-run -a bench/startup.py build/release/Vexa [RUNS]

CPU seconds of all threads of the program, and seconds of the clock, for each run and their medians. Every
run starts in the same scratch copy of the folder, on the welcome scene; the first one fills the caches and
does not count.

In that copy the program shows one frame per second, so after the first one it sleeps: the start is over when
it has entered its loop and its CPU time stands still.
"""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

STILL = 0.2  # seconds without work; less than the frame's sleep
LIMIT = 60  # seconds for one start
LEFT_BY_A_RUN = ["config.cfg", "config.autosave.cfg", "Logfile.txt", "Unlogged.txt", "Scenes/_AUTOSAVE.vxa",
                 "Scenes/_ONEXITSAVE.vxa"]


def cpu_time(pid):
    """Seconds of a whole process, to the nanosecond; /proc counts in hundredths."""
    clock = (~pid << 3) | 2  # the kernel's name for the CPU clock of a process
    return time.clock_gettime(clock)


def is_asleep(pid):
    with open(f"/proc/{pid}/stat", encoding="latin-1") as file:
        return file.read().rpartition(")")[2].split()[0] == "S"


def clean(folder):
    for name in LEFT_BY_A_RUN:
        if os.path.exists(os.path.join(folder, name)):
            os.remove(os.path.join(folder, name))


def wait_for_first_frame(process, output):
    """CPU seconds then, and the clock when that figure was reached."""
    used, since = 0.0, time.monotonic()
    end = since + LIMIT
    while time.monotonic() < end:
        if process.poll() is not None:
            raise RuntimeError(f"the program ended with status {process.returncode}")
        now = cpu_time(process.pid)
        if now != used or not is_asleep(process.pid):
            used, since = now, time.monotonic()
        elif time.monotonic() - since > STILL:
            with open(output, encoding="latin-1") as file:
                if "Running program..." in file.read():
                    return used, since
        time.sleep(0.005)
    raise RuntimeError(f"no first frame within {LIMIT} s")


def measure(folder, output):
    clean(folder)
    start = time.monotonic()
    with open(output, "wb") as log:
        process = subprocess.Popen([os.path.join(folder, "Vexa")], cwd=folder, stdout=log,
                                   stderr=subprocess.STDOUT)
    try:
        used, at = wait_for_first_frame(process, output)
    finally:
        process.kill()
        process.wait()
    return used, at - start


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    if not (os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY")):
        sys.exit("startup: needs a display; run it under xvfb-run -a")
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    with tempfile.TemporaryDirectory(prefix="vexa-start-") as top:
        folder = os.path.join(top, "Vexa")
        shutil.copytree(sys.argv[1], folder)
        with open(os.path.join(folder, "autoexec.cfg"), "a", encoding="latin-1") as file:
            file.write("\nSystem.maxFPS = 1;\n")
        output = os.path.join(top, "output.txt")
        measure(folder, output)
        results = [measure(folder, output) for _ in range(runs)]
    for cpu, wall in results:
        print(f"start to first frame  {cpu * 1e3:7.0f} ms CPU  {wall * 1e3:7.0f} ms")
    medians = [statistics.median(column) * 1e3 for column in zip(*results)]
    print(f"median                {medians[0]:7.0f} ms CPU  {medians[1]:7.0f} ms")


if __name__ == "__main__":
    try:
        main()
    except RuntimeError as error:
        sys.exit(f"startup: {error}")
