#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the structure of the source: what each floor includes, the length of each file, the share of tests,
the licence line of each file, and the guide's pages for the dialogs.

    check_house.py ROOT

Prints one line per fault. Exits with 1 if there is any.
"""

import os
import re
import sys

# The floors from the bottom up. A file may include its own floor and those below. Adapters are beside the engine:
# they may include base, the ports and each other, and only programs may include them. widgets/ has what several
# windows share; the engine must not include it.
FLOORS = (
    "base", "platform", "core", "widgets", "records greetings", "notify log", "telephony actions", "options",
    "setup checkup", "shell", "programs",
)
FLOOR_OF = {folder: floor for floor, folders in enumerate(FLOORS, 1) for folder in folders.split()}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
STANDARD_HEADER = re.compile(r"[a-z_]+")  # standard headers have no extension, folder or capital
LICENSED = re.compile(r"(\.(cpp|h|py|sh|cmake)|/CMakeLists\.txt|/run)$")
LICENCE_LINE = "SPDX-License-Identifier: GPL-3.0-or-later"
CHECKED_FOLDERS = ("src", "tests", "tools", "bench", "cmake", "assets", "demo", "packaging", ".ci")

# The dialogs' pages of the guide: {"frmName", "part", "page"}.
GUIDE_TABLE = "src/shell/frmGuideKey.cpp"
GUIDE_PAGE = re.compile(r'\{"frm\w+", "\w*", "(\w+)"\}')

# A longer file contains more than one idea.
LONGEST_FILE = 450
# Tests should be a quarter to a third of the code; a larger share is an error.
LARGEST_TEST_SHARE = 0.34
COUNTED = re.compile(r"\.(h|cpp|py|sh)$")
NO_CODE = re.compile(r"\s*(//.*|#( .*|!.*)?|/?\*.*)?")  # a blank line or a comment


def files_below(root):
    """Yields the path of every checked file, relative to `root` and with slashes."""
    yield from (name for name in ("CMakeLists.txt", "run") if os.path.exists(os.path.join(root, name)))
    for folder in CHECKED_FOLDERS:
        for where, _, names in os.walk(os.path.join(root, folder)):
            for name in sorted(names):
                yield os.path.relpath(os.path.join(where, name), root).replace(os.sep, "/")


def is_window(path):
    return path.startswith("widgets/") or os.path.basename(path).startswith("frm")


def is_engine(path):
    return path.split("/")[0] not in ("adapters", "programs") and not is_window(path)


def is_posix_user(path):
    """Returns whether a file may use POSIX: a source of base/, but no header, because the engine includes those."""
    return path.startswith("base/") and path.endswith(".cpp")


def include_fault(source, bracket, header):
    """Returns why `source` (a path below src) must not include `header`, or None."""
    own, other = source.split("/")[0], header.split("/")[0]
    if bracket == "<":
        if is_engine(source) and not is_posix_user(source) and not STANDARD_HEADER.fullmatch(header):
            return f"the engine includes only the standard library and itself, not <{header}>"
    elif other == "adapters":
        if own not in ("adapters", "programs"):
            return f'"{header}" is an adapter; only programs know adapters'
    elif other not in FLOOR_OF:
        return f'"{header}" is no header of src/ (write the path from there)'
    elif own == "adapters":
        if other not in ("base", "platform"):
            return f'"{header}" is not a port; adapters know only base and the ports'
    elif is_engine(source) and is_window(header):
        return f'"{header}" is a window; the engine knows no windows'
    elif FLOOR_OF[other] > FLOOR_OF[own]:
        return f'"{header}" is on floor {FLOOR_OF[other]}, above {own}/ on floor {FLOOR_OF[own]}'
    return None


def faults_in(path, text):
    if COUNTED.search(path) and text.count("\n") > LONGEST_FILE:
        yield f"{path}:{LONGEST_FILE}: the file goes on after {LONGEST_FILE} lines; split it"
    if LICENCE_LINE not in "\n".join(text.split("\n")[:3]):
        yield f'{path}:1: the line "{LICENCE_LINE}" is missing at the top'
    if not re.match(r"src/.*\.(cpp|h)$", path):
        return
    source = path[len("src/"):]
    folder = source.split("/")[0]
    if folder != "adapters" and folder not in FLOOR_OF:
        yield f"{path}:1: the folder {folder}/ is on no floor; add it to the table"
        return
    for match in INCLUDE.finditer(text):
        fault = include_fault(source, match[1], match[2])
        if fault:
            yield f"{path}:{text.count(chr(10), 0, match.start(1)) + 1}: {fault}"


def code_lines(texts, folders):
    return sum(
        not NO_CODE.fullmatch(line)
        for path, text in texts.items() if path.split("/")[0] in folders and COUNTED.search(path)
        for line in text.splitlines()
    )


def share_faults(texts):
    tests, code = code_lines(texts, ("tests",)), code_lines(texts, ("src", "tools", "demo", "bench"))
    if tests > LARGEST_TEST_SHARE * code:
        yield (f"tests: {tests} code lines for {code} of code, more than {LARGEST_TEST_SHARE:.0%}: which of them "
               "restate the code, a library or another test?")


def guide_faults(texts, root):
    """F1 in a dialog must not lead to a page that does not exist."""
    for page in sorted(set(GUIDE_PAGE.findall(texts.get(GUIDE_TABLE, "")))):
        if not os.path.exists(os.path.join(root, "docs", "guide", page + ".md")):
            yield f"{GUIDE_TABLE}: the guide has no page {page}.md"


def faults_of(root):
    texts = {}
    for path in files_below(root):
        if LICENSED.search("/" + path):
            with open(os.path.join(root, path), encoding="utf-8") as file:
                texts[path] = file.read()
    if not any(path.startswith("src/") for path in texts):
        return ["src: no source files found"]
    faults = [fault for path, text in texts.items() for fault in faults_in(path, text)]
    return [*faults, *share_faults(texts), *guide_faults(texts, root)]


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    found = faults_of(sys.argv[1])
    print("\n".join(found) if found else "The house is in order.")
    sys.exit(1 if found else 0)
