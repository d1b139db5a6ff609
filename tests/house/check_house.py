#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks what keeps the house in order: what each floor includes, and the licence line of each file.

    check_house.py ROOT

Prints one line a fault and ends with 1 when there is any.
"""

import os
import re
import sys

# The floors, from the ground up: a file includes its own floor and those below. Adapters stand
# beside the engine: they see the ports and each other, and only programs see them.
FLOORS = {
    "platform": 1,
    "core": 2,
    "records": 3,
    "greetings": 3,
    "telephony": 4,
    "actions": 4,
    "log": 4,
    "options": 5,
    "notify": 5,
    "shell": 6,
    "programs": 7,
}

STANDARD_HEADERS = set(
    """
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono
    cinttypes climits clocale cmath codecvt compare complex concepts condition_variable coroutine
    csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque
    exception execution filesystem format forward_list fstream functional future initializer_list
    iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource
    mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf
    string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo
    unordered_map unordered_set utility valarray variant vector version
    """.split()
)

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
LICENSED = re.compile(r"(\.(cpp|h|py|sh|cmake)|/CMakeLists\.txt|/run)$")
LICENCE_LINE = "SPDX-License-Identifier: GPL-3.0-or-later"
CHECKED_FOLDERS = ("src", "tests", "bench", "cmake", "assets", ".ci")


def files_below(root):
    """Paths relative to `root`, with slashes, of every file that belongs to the house."""
    yield from (name for name in ("CMakeLists.txt", "run") if os.path.exists(os.path.join(root, name)))
    for folder in CHECKED_FOLDERS:
        for where, folders, names in os.walk(os.path.join(root, folder)):
            folders[:] = sorted(name for name in folders if name != "__pycache__")
            for name in sorted(names):
                yield os.path.relpath(os.path.join(where, name), root).replace(os.sep, "/")


def is_window(path):
    return os.path.basename(path).startswith("frm")


def is_engine(path):
    return path.split("/")[0] not in ("adapters", "programs") and not is_window(path)


def include_fault(source, bracket, header, headers):
    """What is wrong with `source` (a path below src) including `header`, or None."""
    if bracket == "<":
        if is_engine(source) and header not in STANDARD_HEADERS:
            return f"the engine includes only the standard library and itself, not <{header}>"
        return None
    if header not in headers:
        return f'"{header}" is no header of src/ (write the path from there)'
    own, other = source.split("/")[0], header.split("/")[0]
    if other == "adapters":
        if own not in ("adapters", "programs"):
            return f'"{header}" is an adapter; only programs know adapters'
        return None
    if own == "adapters":
        return None if other == "platform" else f'"{header}" is not a port; adapters know only the ports'
    if is_engine(source) and is_window(header):
        return f'"{header}" is a window; the engine knows no windows'
    if FLOORS[other] > FLOORS[own]:
        return f'"{header}" is on floor {FLOORS[other]}, above {own}/ on floor {FLOORS[own]}'
    return None


def faults_of(root):
    paths = list(files_below(root))
    sources = {path[len("src/"):] for path in paths if re.match(r"src/.*\.(cpp|h)$", path)}
    headers = {source for source in sources if source.endswith(".h")}
    faults = []
    for source in sorted(sources):
        folder = source.split("/")[0]
        if folder != "adapters" and folder not in FLOORS:
            faults.append(f"src/{source}:1: the folder {folder}/ is on no floor; add it to the table")
            sources.discard(source)
            headers.discard(source)
    for path in paths:
        if not LICENSED.search("/" + path):
            continue
        with open(os.path.join(root, path), encoding="utf-8") as file:
            text = file.read()
        if not any(LICENCE_LINE in line for line in text.split("\n")[:3]):
            faults.append(f"{path}:1: the line \"{LICENCE_LINE}\" is missing at the top")
        source = path[len("src/"):]
        if path.startswith("src/") and source in sources:
            for match in INCLUDE.finditer(text):
                fault = include_fault(source, match[1], match[2], headers)
                if fault:
                    line = text.count("\n", 0, match.start(1)) + 1
                    faults.append(f"{path}:{line}: {fault}")
    if not sources:
        faults.append("src: no source files found")
    return faults


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    faults = faults_of(sys.argv[1])
    print("\n".join(faults) if faults else "The house is in order.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
