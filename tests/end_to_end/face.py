"""The interface by mouse and keys: dialogs, the menu on shapes, keys, languages."""

import os

from boxes import VIEW, is_at, polygons, start_boxes
from harness import Failure, box, check, ground, scene, wait_for


def case_save_asks_before_it_replaces(session):
    """Ctrl+s asks for a name, an ending is added once, another scene is replaced only at a second press."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)

    def save_as(name):
        session.chord("ctrl", "s")
        wait_for("the dialog", lambda: session.find_widget("EnterName"))
        session.xdo("key", "--repeat", "12", "BackSpace")
        session.xdo("type", name)
        session.key("Return")

    save_as("mine.vxa")
    wait_for("the saved scene", lambda: session.read("Scenes/mine.vxa"))
    check(not os.path.exists(session.path("Scenes/mine.vxa.vxa")), "the ending was added twice")
    session.write("Scenes/other.vxa", "version = 1\n")
    save_as("other")
    wait_for("the question", lambda: any(row[2] == "Replace" for row in session.widgets()))
    check(session.read("Scenes/other.vxa") == "version = 1\n", "it was replaced without a question")
    session.key("Escape")
    wait_for("the dialog gone", lambda: not session.find_widget("EnterName"))
    check(session.read("Scenes/other.vxa") == "version = 1\n", "escape saved it")


def case_popup_by_key(session):
    """The menu on shapes opens by a key, and what it does can be undone by one."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)
    session.click(VIEW(-4.5, 0.5))
    session.chord("ctrl", "e")
    wait_for("the menu", lambda: session.find_widget("Clone"))
    session.console('GUI.press "Clone"')
    session.wait_scene("a copy", lambda e: len(polygons(e)) == 3)
    session.chord("ctrl", "z")
    session.wait_scene("none", lambda e: len(polygons(e)) == 2)


def case_keyboard_only(session):
    """Without a mouse: the toolbar's menu and the save dialog, the menu on shapes and its slider, help."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)

    def go_to(key, step, most):
        for _ in range(most):
            if session.focused() == key:
                return
            session.key(step)
        raise Failure("%s leads to %s, not to %s" % (step, session.focused(), key))

    session.xdo("key", "--repeat", "14", "Tab")
    go_to("FileButton", "Tab", 4)
    session.xdo("key", "Return", "Down")
    check(session.focused() == "SaveScene", "the menu did not take the focus")
    session.key("Return")
    wait_for("the name's field", lambda: session.focused() == "EnterName")
    session.xdo("key", "--repeat", "12", "BackSpace")
    session.xdo("type", "typed")
    session.xdo("key", "Down", "Return")
    wait_for("the saved scene", lambda: session.read("Scenes/typed.vxa"))
    check(session.focused() == "SaveScene", "the dialog did not give the focus back")
    session.key("Escape")
    check(not session.find_widget("SaveScene") and session.focused() == "FileButton", "escape left the menu open")
    session.key("Escape")

    session.chord("ctrl", "a")
    session.chord("ctrl", "e")
    check(session.focused() == "Erase", "the popup did not take the focus")
    session.xdo("key", "--repeat", "9", "Down")
    go_to("GeomMenuButton", "Down", 3)
    session.key("Return")
    check(session.focused() == "Friction", "the menu of the material did not take the focus")
    session.xdo("key", "Right", "Right", "Left", "Right")
    session.wait_scene("more friction", lambda e: all(abs(p["friction"] - 0.54) < 1e-3 for p in polygons(e)))
    session.xdo("key", "Escape", "Escape")
    check(session.focused() is None, "the popup is still open")
    session.key("F1")
    check(session.find_widget("HelpTitle"), "no help")
    session.xdo("key", "Escape", "space")
    wait_for("the running world", lambda: session.console("Sim.running") == "true")


def case_language_keeps_windows(session):
    """Another language rebuilds the interface at once, with its windows and its tool."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)
    session.click_widget("OptionsButton")
    session.key("x")
    session.console('App.language = "French"')
    wait_for("the options in French", lambda: session.find_widget("DrawClouds")[2] == "Nuages")
    check(session.console("App.AppGUI.tool") == "box", "the tool was lost")


def case_keys_are_changed(session):
    """A row of the list of keys is pressed, then the key that shall do it; it stays over a restart."""
    session.append_autoexec("GUI.Console.scroll = false")
    start_boxes(session)
    session.console('GUI.press "OptionsButton"')
    session.console('GUI.press "KeysTitle"')
    wait_for("the list", lambda: session.find_widget("ToolBox"))
    session.click_widget("ToolBox")
    session.key("k")
    wait_for("the new key", lambda: session.find_widget("ToolBox")[2] == "k")
    session.quit()
    check('ToolBox k' in session.read("config.cfg"), "the key was not kept")


def case_taps_and_held_keys(session):
    """Taps shorter than a frame count once each and leave nothing pressed; a held space starts the world once."""
    session.append_autoexec("GUI.Console.scroll = false; App.lineWidth = 1.0")
    for name in ("left", "delete", "f6"):
        session.append_autoexec('Keys.bind("alt+%s", { App.lineWidth = App.lineWidth + 1.0 })' % name)
    start_boxes(session)
    with session.holding("alt"):
        session.xdo("key", "--delay", "1", *(["Left", "Delete", "F6"] * 6))
    wait_for("18 presses", lambda: session.console("App.lineWidth") == "19")
    session.wait_frames()
    check(session.console("App.lineWidth") == "19", "a key goes on by itself")
    session.xdo("keydown", "space")
    for _ in range(3):
        session.wait_frames()
    session.xdo("keyup", "space")
    check(session.console("Sim.running") == "true", "a held space stopped the world again")


def case_resize_keeps_windows_and_wishes(session):
    """A smaller window keeps every title bar in view, and does not throw away what the user wished for the next."""
    session.append_autoexec("GUI.Console.scroll = false; System.antiAlias = 4; System.maxFPS = 50.0")
    start_boxes(session)
    session.console('GUI.press "OptionsButton"')
    session.xdo("windowsize", "--sync", session.window, 700, 520)
    wait_for("the new size", lambda: session.console("System.resolution") == "[700, 520]")
    windows = [row for row in session.widgets() if row[0] == "Window"]
    check(len(windows) == 3, "%d windows" % len(windows))
    for _, key, _, (x, y), (width, _), _ in windows:
        check(0 <= x and x + width <= 701 and 0 <= y < 500, "%s stands at %s, %s" % (key, x, y))
    check(session.console("System.antiAlias") == "4", "the wished smoothing went")
    session.quit()
    check("System.antiAlias = 4" in session.read("config.cfg"), "the wish was not saved")


def case_load_and_import(session):
    """A scene of a long list is opened by a click, another one is added to it; each is one step of the history."""
    session.append_autoexec("GUI.Console.scroll = false")
    for i in range(30):
        session.write("Scenes/list-%02d.vxa" % i, scene(ground(0), box(i, 3, 1)))
    start_boxes(session)
    session.chord("ctrl", "o")
    session.console('GUI.press "list-20.vxa"')
    session.wait_scene("the scene", lambda e: len(polygons(e)) == 1 and is_at(e, (20, 3)))
    check(session.title().startswith("list-20.vxa - "), session.title())
    session.chord("ctrl", "i")
    session.click_widget("dam.vxa")
    session.wait_scene("another one in it", lambda e: len(polygons(e)) > 3 and is_at(e, (20, 3)))
    check(session.title().startswith("list-20.vxa - "), session.title())
    session.chord("ctrl", "z")
    session.wait_scene("the scene alone", lambda e: len(polygons(e)) == 1)
    session.chord("ctrl", "z")
    session.wait_scene("the boxes", lambda e: len(polygons(e)) == 2)


def case_sliders_and_tips(session):
    """A slider follows the mouse, its middle click brings the default; a tip shows when the mouse rests."""
    session.append_autoexec("GUI.Console.scroll = false; GUI.Console.screenSize = 0.2")  # it covers no button
    start_boxes(session)
    session.console('GUI.press "OptionsButton"')
    _, _, _, (x, y), (width, height), _ = session.widget("Gravity")
    track = [(x + 5 + part * (width - 10), y + height / 2) for part in (0.3, 0.4, 0.5)]
    session.stroke(track)
    check(abs(session.widget("Gravity")[5] - 15) < 0.3, "dragged to %s" % session.widget("Gravity")[5])
    check(session.console("Sim.gravity").startswith("[0, -1"), "gravity is " + session.console("Sim.gravity"))
    session.click(track[0], button=2)
    check(abs(session.widget("Gravity")[5] - 9.8) < 1e-3, "a middle click brings no default")

    def has_tip():
        return any(row[2].startswith("Help (f1)") for row in session.widgets())
    _, _, _, (x, y), (width, height), _ = session.widget("ShowHelp")
    check(not has_tip(), "a tip before the mouse came")
    session.xdo(*session.mouse((x + width / 2, y + height / 2)))
    wait_for("the tip", has_tip)
    session.xdo("click", 1)
    check(session.find_widget("HelpTitle") and not has_tip(), "a press did not end the tip")
