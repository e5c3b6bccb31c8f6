#!/usr/bin/env python3
"""Every language in Data/Language has the keys of English, no more and no fewer, and its help text.

Also: all files are ISO 8859-1 as the font is, no key stands twice, every key that the sources name is there,
and every shipped scene has a title. Ends with 1 and a list of what is wrong.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDER = ROOT / "Data" / "Language"
STATEMENT = re.compile(r'(\w+) = "((?:[^"\\]|\\.)*)";')
USED = re.compile(r'\bTranslate\("(\w+)"')
UTF8 = re.compile(rb"[\xc2-\xf4][\x80-\xbf]")  # no word of these languages has such a pair
CONTROL = re.compile(rb"[\x00-\x08\x0b-\x1f\x7f-\x9f]")  # what the font cannot show


def check_bytes(path, problems):
    data = path.read_bytes()
    if UTF8.search(data):
        problems.append(f"{path.name} is UTF-8: save it as ISO 8859-1")
    elif CONTROL.search(data):
        problems.append(f"{path.name} has characters that ISO 8859-1 cannot show")
    return data.decode("iso-8859-1")


def read_texts(path, problems):
    texts = {}
    for number, line in enumerate(check_bytes(path, problems).split("\n"), 1):
        if not line.strip() or line.startswith("//"):
            continue
        match = STATEMENT.fullmatch(line)
        if not match:
            problems.append(f'{path.name}:{number} is not of the form Key = "Text";')
            continue
        key, text = match.groups()
        if key in texts:
            problems.append(f"{path.name}:{number} has {key} twice")
        if not text.strip():
            problems.append(f"{path.name}:{number} has no text for {key}")
        texts[key] = text
    return texts


def check_language(path, english, problems):
    texts = read_texts(path, problems)
    problems += [f"{path.name} lacks {key}" for key in english if key not in texts]
    problems += [f"{path.name} has {key}, which English has not" for key in texts if key not in english]
    help_text = path.with_name(path.stem + "_help.txt")
    if not help_text.is_file():
        problems.append(f"{help_text.name} is missing")
    else:
        check_bytes(help_text, problems)


def find_needed_keys():
    for path in sorted((ROOT / "src").rglob("*.cpp")):
        for key in USED.findall(path.read_text(encoding="utf-8")):
            yield key, path.relative_to(ROOT)
    for path in sorted((ROOT / "Scenes").glob("[!_]*.vxa")):
        yield "Scene_" + path.stem, path.relative_to(ROOT)


def main():
    problems = []
    english = read_texts(FOLDER / "English.cfg", [])
    languages = sorted(FOLDER.glob("*.cfg"))
    for path in languages:
        check_language(path, english, problems)
    problems += [f"{where} needs {key}" for key, where in find_needed_keys() if key not in english]
    for problem in problems:
        print(problem)
    print(f"{len(languages)} languages of {len(english)} texts, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
