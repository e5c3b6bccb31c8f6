"""Drives the real program in a window on a virtual display.

A Session owns a display, a scratch copy of the program's folder and one running program at a time. What the
program did is read from the scene texts that it saves; waiting is always for such a condition, never for a
time, so that the cases hold on a slow machine.
"""

import contextlib
import itertools
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time

TIMEOUT = 40  # seconds for any single condition
SCREEN = (1280, 1024)
WINDOW = (1024, 768)  # of a first run on a greater screen
DEFAULT_ZOOM = 150  # pixels per metre in the view of an empty scene
AUTOSAVE = "_AUTOSAVE.vxa"
ONEXIT = "_ONEXITSAVE.vxa"
AUTOSAVED_SETTINGS = "config.autosave.cfg"
TOOLS_ROOM = 120  # pixels at the left that a scene keeps clear of
MOST_BELOW = 0.22  # of the window's height, left free below a scene that has been loaded
RUN_TIME_FILES = ["config.cfg", "config.autosave.cfg", "Logfile.txt", "Unlogged.txt", "Scenes/" + AUTOSAVE,
                  "Scenes/" + ONEXIT]


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


def wait_for(what, probe, timeout=None):
    """The first true answer of `probe`."""
    timeout = timeout or TIMEOUT
    end = time.monotonic() + timeout
    while True:
        answer = probe()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Failure("waited %d s in vain for: %s" % (timeout, what))
        time.sleep(0.05)


# ---- scene texts


def parse_scene(text):
    """The entities of a saved scene as dictionaries, in order."""
    check(text.lstrip().startswith("version = 1"), "not a scene: " + text[:60])
    entities = []
    for block in re.findall(r"\{(.*?)\n?\}", text, re.S):
        pairs = re.findall(r"^\s*(\w+) = (.*?);?\s*$", block, re.M)
        entities.append({key: to_value(code) for key, code in pairs})
    return entities


def to_value(code):
    try:
        return json.loads(code)
    except ValueError:
        return code  # an infinity, a function


def of_type(entities, kind):
    return [entity for entity in entities if entity.get("type") == kind]


def to_list(answer):
    """Of a script list as source text; lines of the log may follow it."""
    return json.JSONDecoder(strict=False).raw_decode(answer)[0]


def box(x, y, side):
    """Scene text of a square around a place."""
    h = side / 2
    corners = [(x - h, y - h), (x + h, y - h), (x + h, y + h), (x - h, y + h)]
    vecs = ", ".join("[%f, %f]" % corner for corner in corners)
    return "{\nangle = 0.0;\ncolor = [0.8, 0.5, 0.2];\npos = [%f, %f];\ntype = \"polygon\";\n" \
           "vecs = [%s];\nid = %d\n}" % (x, y, vecs, box.next_id())


def _ids():
    n = 100
    while True:
        n += 1
        yield n


box.next_id = _ids().__next__


def ground(y):
    """Scene text of a ground whose surface lies at that height."""
    return "{\nangle = 0.0;\nbody = 0;\ncolor = [0.4, 0.6, 0.4];\ndist = 0.0;\nnormal = [0.0, 1.0];\n" \
           "pos = [0.0, %f];\ntype = \"plane\";\nid = 99\n}" % y


def scene(*entities):
    return ";\n".join(("version = 1",) + entities) + "\n"


_CONSOLE_MARKS = itertools.count(7001)


# ---- the program


class Display:
    def __init__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "%dx%dx24" % SCREEN, "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as pipe:
            self.name = ":" + pipe.readline().strip()
        check(self.name != ":", "the virtual display did not start")

    def close(self):
        self.server.terminate()
        self.server.wait()


class Session:
    def __init__(self, program_folder):
        self.top = tempfile.mkdtemp(prefix="vexa-")
        self.folder = os.path.join(self.top, "Vexa")
        shutil.copytree(program_folder, self.folder)
        for leftover in RUN_TIME_FILES:
            if os.path.exists(self.path(leftover)):
                os.remove(self.path(leftover))
        self.display = None
        self.process = None
        self.window = None
        self.output = ""

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        try:
            with open(self.path(name), encoding="latin-1") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def write(self, name, text):
        with open(self.path(name), "w", encoding="latin-1") as file:
            file.write(text)

    def append_autoexec(self, line):
        self.write("autoexec.cfg", (self.read("autoexec.cfg") or "").rstrip().rstrip(";") + ";\n" + line + "\n")

    def environment(self):
        environment = dict(os.environ, LIBGL_ALWAYS_SOFTWARE="1", SDL_AUDIODRIVER="dummy")
        environment.pop("DISPLAY", None)
        environment.pop("WAYLAND_DISPLAY", None)
        if self.display:
            environment["DISPLAY"] = self.display.name
        return environment

    def start(self, *arguments):
        """Starts the program and waits until it is drawing."""
        self.display = self.display or Display()
        log = open(os.path.join(self.top, "output.txt"), "wb")
        self.process = subprocess.Popen([self.path("Vexa")] + list(arguments), cwd=self.folder, stdout=log,
                                        stderr=subprocess.STDOUT, env=self.environment())
        wait_for("the main loop", lambda: self.has_said("Running program..."))
        self.window = wait_for("a window", self.find_window)
        self.xdo("windowfocus", self.window)
        return self

    def start_scene(self, *entities):
        """Starts on a scene of these entities, autosaving all the time."""
        self.append_autoexec("App.autosaveTime = 0.2")
        self.write("Scenes/test.vxa", scene(*entities))
        return self.start("test.vxa")

    def has_said(self, text):
        with open(os.path.join(self.top, "output.txt"), encoding="latin-1") as file:
            self.output = file.read()
        if self.process.poll() is not None and text not in self.output:
            raise Failure("the program ended with status %d" % self.process.returncode)
        return text in self.output

    def find_window(self):
        done = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid)],
                              env=self.environment(), capture_output=True, text=True)
        windows = done.stdout.split() or subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--name", "Vexa"], env=self.environment(),
            capture_output=True, text=True).stdout.split()
        return windows[-1] if windows else None

    def title(self):
        return subprocess.run(["xdotool", "getwindowname", self.window], env=self.environment(),
                              capture_output=True, text=True).stdout.strip()

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.process = None

    def quit(self, by=signal.SIGTERM):
        """Ends the program in the ordinary way and gives the scene that it saved."""
        self.process.send_signal(by)
        try:
            status = self.process.wait(TIMEOUT)
        except subprocess.TimeoutExpired:
            raise Failure("the program does not end")
        self.process = None
        check(status == 0, "exit status %d" % status)
        return parse_scene(self.read("Scenes/" + ONEXIT))

    def close(self, keep=False):
        if self.process:
            self.process.kill()
            self.process.wait()
        if self.display:
            self.display.close()
        if not keep:
            shutil.rmtree(self.top)

    # ---- what the user does; places are in metres, in the view of an empty scene, or in pixels

    def xdo(self, *words):
        subprocess.run(["xdotool"] + [str(word) for word in words], env=self.environment(), check=True,
                       stdout=subprocess.DEVNULL)

    def mouse(self, pixel):
        return ["mousemove", "--window", self.window, round(pixel[0]), round(pixel[1])]

    def press_and_move(self, pixels, button=1):
        """One drag along the pixels that is not released."""
        words = self.mouse(pixels[0]) + ["mousedown", button]
        for pixel in pixels[1:]:
            words += self.mouse(pixel) + ["sleep", "0.004"]
        self.xdo(*words)

    def stroke(self, pixels, button=1):
        self.press_and_move(pixels, button)
        self.xdo("mouseup", button)

    def click(self, pixel, button=1):
        self.xdo(*(self.mouse(pixel) + ["click", button]))

    def key(self, name):
        self.xdo("key", name)

    def console(self, command):
        """Types a line into the console; its answer, "" for none. Log and answers lie in the log file."""
        before = len(self.read("Logfile.txt"))
        end = str(next(_CONSOLE_MARKS))
        self.key("F11")
        for line in (command, end):
            self.xdo("type", "--delay", "15", line)
            self.key("Return")
        self.key("F11")
        said = re.compile(r"\d: > " + re.escape(command) + r"\n(.*?)^[\d:]+: > " + end + "$", re.S | re.M)
        answer = wait_for("the answer to " + command, lambda: said.search(self.read("Logfile.txt")[before:]))
        return re.sub(r"^[\d:]+: ", "", answer.group(1).rstrip("\n"), count=1)

    def widgets(self):
        """The controls on the screen, topmost first, each [kind, key, text, [x, y], [width, height], state]."""
        return to_list(self.console("System.code GUI.widgets"))

    def focused(self):
        """The key of the control that has the keyboard; None for none."""
        row = to_list(self.console("System.code GUI.focused"))
        return row[1] if row else None

    def find_widget(self, key):
        found = [row for row in self.widgets() if row[1] == key]
        return found[0] if found else None

    def widget(self, key):
        found = self.find_widget(key)
        check(found, "there is no control with the key " + key)
        return found

    def click_widget(self, key):
        _, _, _, place, size, _ = self.widget(key)
        self.click((place[0] + size[0] / 2, place[1] + size[1] / 2))

    @contextlib.contextmanager
    def holding(self, modifier):
        """Modifiers count as they are when a frame begins, so they have to stay for some."""
        self.xdo("keydown", modifier)
        self.wait_frames()
        yield
        self.wait_frames()
        self.xdo("keyup", modifier)

    def chord(self, modifier, name):
        with self.holding(modifier):
            self.key(name)

    def wait_frames(self):
        """Until the program has autosaved twice, so at least one whole frame has passed."""
        def stamp():
            return os.stat(self.path(AUTOSAVED_SETTINGS)).st_mtime_ns  # written whether the scene changes or not
        for _ in range(2):
            before = stamp()
            wait_for("a frame", lambda: stamp() != before)

    # ---- what came of it

    def present(self):
        """The scene as last autosaved; null while there is none."""
        text = self.read("Scenes/" + AUTOSAVE)
        return parse_scene(text) if text else None

    def wait_scene(self, what, condition):
        """The first autosaved scene that meets the condition."""
        def probe():
            check(self.process.poll() is None, "the program ended")
            entities = self.present()
            return (entities,) if entities is not None and condition(entities) else None
        try:
            return wait_for(what, probe)[0]
        except Failure as failure:
            raise Failure("%s\nlast scene:\n%s" % (failure, self.read("Scenes/" + AUTOSAVE)))

    def screenshot(self, path):
        subprocess.run(["import", "-window", "root", path], env=self.environment())


class View:
    """Where the world is on the screen after a scene has been loaded: its finite extent fills the window beside
    the tools with a tenth to spare, and stands low in it."""

    def __init__(self, min_x, min_y, max_x, max_y):
        self.center = ((min_x + max_x) / 2, (min_y + max_y) / 2)
        self.scale = 1 / (1.1 * max((max_x - min_x) / (WINDOW[0] - TOOLS_ROOM), (max_y - min_y) / WINDOW[1]))
        height = (max_y - min_y) * self.scale
        below = min((WINDOW[1] - height) / 2, MOST_BELOW * WINDOW[1])
        self.middle = WINDOW[1] - below - height / 2

    def __call__(self, x, y):
        return ((WINDOW[0] + TOOLS_ROOM) / 2 + (x - self.center[0]) * self.scale,
                self.middle - (y - self.center[1]) * self.scale)
