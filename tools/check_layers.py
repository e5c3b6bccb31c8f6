#!/usr/bin/env python3
"""Checks the includes of src/ against tools/layers.txt: units include only what lies below them, no include
holds "..", system headers of SDL and GL stay where they belong, no headers include each other in a circle,
and circles through .cpp files stay small. Prints each breach and exits with 1 when there is one."""

import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "src"
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
SYSTEM_PREFIXES = {"SDL": ("SDL/", "SDL."), "GL": ("GL/",)}


class Layers:
    def __init__(self, text):
        self.allowed, self.folders, self.files, self.system, self.knots = {}, {}, [], {}, {}
        for line in text.splitlines():
            line = line.split("#")[0].strip()
            if not line:
                continue
            head, _, tail = line.partition(":")
            kind, _, name = head.partition(" ")
            words, name = tail.split(), name.strip()
            if kind == "unit":
                self.allowed[name] = self.closure(words) | {name}
            elif kind == "folder":
                self.folders[name] = words[0]
            elif kind == "files":
                self.files += [(pattern, name) for pattern in words]
            elif kind == "system":
                self.system[name] = words
            elif kind == "knot":
                self.knots[name] = int(words[0])
            else:
                sys.exit(f"layers.txt: unknown row: {line}")

    def closure(self, words):
        return set().union(*(self.allowed[word[:-1]] if word.endswith("+") else {word} for word in words))

    def unit_of(self, path):
        for pattern, unit in self.files:
            if fnmatch.fnmatch(path, pattern):
                return unit
        folder = path
        while "/" in folder:
            folder = folder.rpartition("/")[0]
            if folder in self.folders:
                return self.folders[folder]
        sys.exit(f"layers.txt: no unit for src/{path}")

    def knot_limit(self, path):
        return self.knots.get(self.unit_of(path), self.knots[""])


def breaches_of_file(path, text, layers, known):
    unit = layers.unit_of(path)
    for quote, target in INCLUDE.findall(text):
        if ".." in target.split("/"):
            yield f"{path}: include of {target}: no \"..\" in an include"
        elif quote == '"':
            if target not in known:
                yield f"{path}: include of {target}: no such file in src/"
            elif layers.unit_of(target) not in layers.allowed[unit]:
                yield f"{path} ({unit}): may not include {target} ({layers.unit_of(target)})"
        else:
            for name, prefixes in SYSTEM_PREFIXES.items():
                if target.startswith(prefixes) and not any(
                    fnmatch.fnmatch(path, pattern) for pattern in layers.system[name]
                ):
                    yield f"{path}: may not include <{target}>"


def circles(graph):
    state, stack, found = {}, [], []

    def visit(node):
        state[node] = "open"
        stack.append(node)
        for target in graph.get(node, ()):
            if state.get(target) == "open":
                found.append(" -> ".join(stack[stack.index(target):] + [target]))
            elif target not in state:
                visit(target)
        stack.pop()
        state[node] = "done"

    for node in sorted(graph):
        if node not in state:
            visit(node)
    return found


def knots(graph):
    """The strongly connected components of more than one node (R. Tarjan, 1972)."""
    index, low, stack, found = {}, {}, [], []

    def visit(node):
        index[node] = low[node] = len(index)
        stack.append(node)
        for target in sorted(graph.get(node, ())):
            if target not in index:
                visit(target)
                low[node] = min(low[node], low[target])
            elif target in stack:
                low[node] = min(low[node], index[target])
        if low[node] == index[node]:
            component = stack[stack.index(node):]
            del stack[stack.index(node):]
            if len(component) > 1:
                found.append(sorted(component))

    for node in sorted(graph):
        if node not in index:
            visit(node)
    return found


def breaches_by_knots(includes, layers):
    pairs = {}
    for path, targets in includes.items():
        pair = pairs.setdefault(path.rpartition(".")[0], set())
        pair.update(target.rpartition(".")[0] for target in targets)
    for knot in knots(pairs):
        limit = layers.knot_limit(knot[0] + ".h")
        if len(knot) > limit:
            yield f"{len(knot)} pairs of files in a circle, at most {limit}: {' '.join(knot)}"


def main():
    layers = Layers((ROOT / "tools" / "layers.txt").read_text())
    texts = {
        str(path.relative_to(SOURCE)): path.read_text()
        for path in sorted(SOURCE.rglob("*"))
        if path.suffix in (".h", ".cpp")
    }
    includes = {path: [t for q, t in INCLUDE.findall(text) if q == '"' and t in texts] for path, text in texts.items()}
    headers = {path: targets for path, targets in includes.items() if path.endswith(".h")}
    breaches = [b for path, text in texts.items() for b in breaches_of_file(path, text, layers, texts)]
    breaches += [f"headers in a circle: {circle}" for circle in circles(headers)]
    breaches += breaches_by_knots(includes, layers)
    for breach in breaches:
        print(breach)
    print(f"{len(texts)} files, {len(breaches)} breaches")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
