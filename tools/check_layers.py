#!/usr/bin/env python3
"""Checks the includes of src/ against tools/layers.txt: units include only what lies below them, no include
holds "..", system headers of SDL and GL stay where they belong, and no headers include each other in a
circle. Prints each breach and exits with 1 when there is one."""

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
        self.allowed, self.folders, self.files, self.system = {}, {}, [], {}
        for line in text.splitlines():
            line = line.split("#")[0].strip()
            if not line:
                continue
            head, _, tail = line.partition(":")
            kind, name = head.split()
            words = tail.split()
            if kind == "unit":
                self.allowed[name] = set(words) | {name}
            elif kind == "folder":
                self.folders[name] = words[0]
            elif kind == "files":
                self.files += [(pattern, name) for pattern in words]
            elif kind == "system":
                self.system[name] = words
            else:
                sys.exit(f"layers.txt: unknown row: {line}")

    def unit_of(self, path):
        for pattern, unit in self.files:
            if fnmatch.fnmatch(path, pattern):
                return unit
        folder = path.split("/")[0]
        if folder not in self.folders:
            sys.exit(f"layers.txt: no unit for src/{path}")
        return self.folders[folder]


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


def main():
    layers = Layers((ROOT / "tools" / "layers.txt").read_text())
    texts = {
        str(path.relative_to(SOURCE)): path.read_text()
        for path in sorted(SOURCE.rglob("*"))
        if path.suffix in (".h", ".cpp")
    }
    breaches = [b for path, text in texts.items() for b in breaches_of_file(path, text, layers, texts)]
    headers = {
        path: [t for q, t in INCLUDE.findall(text) if q == '"' and t in texts]
        for path, text in texts.items()
        if path.endswith(".h")
    }
    breaches += [f"headers in a circle: {circle}" for circle in circles(headers)]
    for breach in breaches:
        print(breach)
    print(f"{len(texts)} files, {len(breaches)} breaches")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
