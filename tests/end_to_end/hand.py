"""Cases of the hand: every tool by the mouse, joints, what is built from them, and scenes that go through files."""

import math
import os
import time

from boxes import VIEW, is_at, line, polygons, start_boxes
from harness import box, check, ground, of_type, wait_for

LEFT_BOX, RIGHT_BOX = (-4.5, 0.5), (4.5, 0.5)
BACKGROUND = 0  # the geom that stands for the world behind all shapes


def pick(session, letter):
    """Selects a tool by its letter; the key counts when it comes up."""
    session.key(letter)
    session.wait_frames()


def undo(session, what, condition):
    session.chord("ctrl", "z")
    session.wait_scene(what, condition)


def bodies(entities):
    return {entity["id"]: entity["body"] for entity in entities if "body" in entity}


def size_of(polygon):
    xs, ys = zip(*polygon["vecs"])
    return max(xs) - min(xs), max(ys) - min(ys)


def case_drawing_tools(session):
    """Box, circle and plane are drawn by drags, each by its letter; what was drawn goes by undo."""
    start_boxes(session)
    pick(session, "x")
    session.stroke(line((-1, 1), (0, 1.6)))
    drawn = polygons(session.wait_scene("a square", lambda e: len(polygons(e)) == 3))[-1]
    check(all(abs(side - 1) < 0.03 for side in size_of(drawn)), "no square: %s by %s" % size_of(drawn))
    with session.holding("shift"):
        session.stroke(line((1, 1), (3, 1.5)))
    drawn = polygons(session.wait_scene("a rectangle", lambda e: len(polygons(e)) == 4))[-1]
    check(abs(size_of(drawn)[1] - 0.5) < 0.03, "with shift it is %s by %s" % size_of(drawn))
    pick(session, "c")
    session.stroke(line((-2, 2), (-2, 2.5)))
    disc = of_type(session.wait_scene("a circle", lambda e: of_type(e, "circle")), "circle")[0]
    check(abs(disc["radius"] - 0.5) < 0.03 and math.dist(disc["pos"], (-2, 2)) < 0.03, "circle: %s" % disc)
    pick(session, "p")
    session.stroke(line((0, 3), (1, 2)))
    plane = of_type(session.wait_scene("a second plane", lambda e: len(of_type(e, "plane")) == 2), "plane")[-1]
    check(math.dist(plane["normal"], (0.7071, -0.7071)) < 0.03, "the plane faces %s" % plane["normal"])
    undo(session, "no second plane", lambda e: len(of_type(e, "plane")) == 1)
    undo(session, "no circle", lambda e: not of_type(e, "circle"))


def case_joint_tools(session):
    """Hinge and fix joint by clicks, spring and chain by drags; each goes by undo."""
    start_boxes(session)
    pick(session, "h")
    session.click(VIEW(*LEFT_BOX))
    hinge = of_type(session.wait_scene("a hinge", lambda e: of_type(e, "hinge")), "hinge")[0]
    check(hinge["geom1"] == BACKGROUND, "the hinge pins the box to %s" % hinge["geom1"])
    undo(session, "no hinge", lambda e: not of_type(e, "hinge"))
    pick(session, "f")
    session.click(VIEW(*RIGHT_BOX))
    fixed = session.wait_scene("a fix joint", lambda e: of_type(e, "fixjoint"))
    check(list(bodies(fixed).values()).count(0) == 2, "the fixed box is not the world's: %s" % bodies(fixed))
    undo(session, "a free box", lambda e: list(bodies(e).values()).count(0) == 1)
    pick(session, "s")
    session.stroke(line(LEFT_BOX, RIGHT_BOX))
    spring = of_type(session.wait_scene("a spring", lambda e: of_type(e, "spring")), "spring")[0]
    check(abs(spring["length"] - 9) < 0.05, "its length is %s" % spring["length"])
    undo(session, "no spring", lambda e: not of_type(e, "spring"))
    pick(session, "n")
    session.stroke(line((-4.1, 0.9), (-2, 2.2)))
    hung = session.wait_scene("a chain", lambda e: of_type(e, "circle"))
    links, hinges = of_type(hung, "circle"), of_type(hung, "hinge")
    check(len(hinges) == len(links) + 1 >= 10, "%d hinges, %d links" % (len(hinges), len(links)))
    check({member["chain"] for member in links + hinges} == {0}, "not one chain")
    undo(session, "no chain", lambda e: not of_type(e, "circle"))


def case_turn_pan_and_pull(session):
    """A right drag turns a box, on empty space it moves the view; the drag tool pulls while the world runs."""
    start_boxes(session)
    x, y = LEFT_BOX
    ring = [VIEW(x + 1.5 * math.cos(a), y + 1.5 * math.sin(a)) for a in [i * math.pi / 32 for i in range(9)]]
    session.stroke([VIEW(*LEFT_BOX)] + ring, button=3)
    session.wait_scene("a turned box", lambda e: any(abs(p["angle"]) > 0.3 for p in polygons(e)))
    undo(session, "the box as it was", lambda e: all(p["angle"] == 0 for p in polygons(e)))
    pick(session, "d")
    session.key("space")
    session.press_and_move(line(RIGHT_BOX, (1, 2)))
    session.wait_scene("a box that hangs from the mouse", lambda e: any(
        math.dist(p["pos"], (1, 2)) < 0.3 for p in polygons(e)))
    session.xdo("mouseup", 1)
    session.wait_scene("the box let go", lambda e: not any(p["pos"][1] > 1.2 for p in polygons(e)))
    session.key("space")
    undo(session, "the box where it stood", lambda e: is_at(e, RIGHT_BOX))
    pick(session, "b")
    session.stroke(line((0, 2), (1, 2)), button=3)
    session.wait_frames()
    session.stroke(line((x + 1, y), (x + 1, y + 1)))  # the view has gone one metre to the right with the mouse
    session.wait_scene("the box moved in the new view", lambda e: is_at(e, (x, y + 1)))


def case_car(session):
    """The car of the shipped scene stands until an arrow key drives it, to the right and back."""
    session.append_autoexec("App.autosaveTime = 0.2")
    session.start("car.vxa")
    session.wait_scene("the car", lambda e: len(of_type(e, "hinge")) == 2)

    def place(entities):
        return of_type(entities, "circle")[-1]["pos"][0]
    start = place(session.present())
    session.key("space")
    session.xdo("keydown", "Right")
    session.wait_scene("the car on its way", lambda e: place(e) > start + 1)
    session.xdo("keyup", "Right")
    session.xdo("keydown", "Left")
    session.wait_scene("the car back", lambda e: place(e) < start + 0.5)
    session.xdo("keyup", "Left")


def icon_place(entities, joint):
    """Of a joint in the world, by its end on the first shape."""
    shape = [entity for entity in entities if entity.get("id") == joint["geom0"]][0]
    c, s = math.cos(shape["angle"]), math.sin(shape["angle"])
    x, y = joint["geom0pos"]
    return shape["pos"][0] + c * x - s * y, shape["pos"][1] + s * x + c * y


def case_split_fusion(session):
    """Two fused boxes are pulled off and fly as one; without their fix joint each half flies on by itself."""
    session.append_autoexec("Sim.gravitySwitch = false")
    session.start_scene(ground(0), box(-4.5, 0.5, 1), box(4.5, 0.5, 1), box(-1, 2, 0.6), box(-0.5, 2, 0.6))
    session.wait_scene("the loaded scene", lambda e: len(polygons(e)) == 4)
    start = polygons(session.present())[2:]
    pick(session, "f")
    session.click(VIEW(-0.75, 2))
    fused = session.wait_scene("a fix joint", lambda e: of_type(e, "fixjoint"))
    check(len(set(bodies(fused).values())) == 4, "the two are not one: %s" % bodies(fused))
    pick(session, "d")
    session.key("space")
    session.stroke(line((-1.1, 2.2), (-0.9, 2.5), steps=30))
    session.wait_scene("the pair on its way", lambda e: math.dist(
        polygons(e)[2]["pos"], start[0]["pos"]) > 0.1)
    session.key("space")
    time.sleep(0.5)
    session.wait_frames()
    session.wait_frames()
    there = session.present()
    pair = polygons(there)[2:]
    check(abs(math.dist(pair[0]["pos"], pair[1]["pos"]) - 0.5) < 1e-3, "the pair has come apart")
    session.click(VIEW(*icon_place(there, of_type(there, "fixjoint")[0])))
    session.key("Delete")
    split = session.wait_scene("no fix joint", lambda e: not of_type(e, "fixjoint"))
    check(len(set(bodies(split).values())) == 5, "still one: %s" % bodies(split))
    session.key("space")
    session.wait_scene("both halves flown on", lambda e: all(
        math.dist(a["pos"], b["pos"]) > 0.05 for a, b in zip(polygons(e)[2:], pair)))


def case_exact_save(session):
    """A scene saved, loaded and saved again by the program is the same to the byte."""
    session.append_autoexec("App.autosaveTime = 0.2")

    def save(name):
        picture = session.path("Scenes/" + name.replace(".vxa", ".png"))
        session.start(name)
        session.wait_scene("the loaded scene", lambda e: e)
        session.wait_frames()
        os.remove(picture)
        session.chord("ctrl", "s")
        session.wait_frames()
        session.key("Return")
        wait_for("the picture of the saved scene", lambda: os.path.exists(picture))
        session.quit()
        return session.read("Scenes/" + name)
    for name in ["wrecking.vxa", "piston.vxa", "dam.vxa"]:
        first = save(name)
        check(save(name) == first, name + " has changed by going through a file")


def case_scene_settings(session):
    """A scene's gravity holds while it is open and is saved with it; the saved settings are the user's own."""
    moon = "{\ntype = \"settings\";\ngravity = [0.0, -1.6]\n}"
    session.start_scene(moon, ground(0), box(0, 5, 1))
    session.wait_scene("the loaded scene", lambda e: len(polygons(e)) == 1)
    check(session.console("Sim.gravity") == "[0, -1.6]", "gravity is " + session.console("Sim.gravity"))
    session.wait_frames()
    check("Sim.gravity = [0.0, -9.8" in session.read("config.autosave.cfg"), "the autosaved settings have the moon's")
    saved = session.quit()
    check(of_type(saved, "settings"), "the settings were not saved with the scene")
    check("Sim.gravity = [0.0, -9.8" in session.read("config.cfg"), "the saved settings have the moon's")
