#!/usr/bin/env python3
"""Writes Data/Compose: of the X library's table for UTF-8 what makes letters of ISO 8859-1.

    art/compose.py [/usr/share/X11/locale/en_US.UTF-8/Compose]
"""

import pathlib
import re
import sys

LINE = re.compile(r'((?:<\w+>\s*)+):\s*"(\\?.)"\s*(\w*)')
OUTPUT = pathlib.Path(__file__).parent.parent / "Data" / "Compose"


def shorten(line):
    """The line without its comment; empty when it makes another letter."""
    match = LINE.match(line)
    if not match or ord(match[2][-1]) > 255:
        return ""
    keys = " ".join(match[1].split())
    return f'{keys} : "{match[2]}" {match[3]}'.rstrip() + "\n"


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/X11/locale/en_US.UTF-8/Compose"
    lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    OUTPUT.write_text("".join(map(shorten, lines)), encoding="utf-8")


if __name__ == "__main__":
    main()
