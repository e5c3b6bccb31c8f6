"""The interface by mouse and keys: dialogs, the menu on shapes, keys, languages."""

import os

from boxes import VIEW, polygons, start_boxes
from harness import Failure, check, wait_for


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
