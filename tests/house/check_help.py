#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the help pages: every link has a target, and every picture exists and has an alternative text.

    check_help.py FOLDER [TRANSLATED]

TRANSLATED has pages that take the places of those in FOLDER.
"""

import os
import sys
from html.parser import HTMLParser


class Page(HTMLParser):
    def __init__(self):
        super().__init__()
        self.addresses, self.anchors, self.faults = [], set(), []

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.anchors.add(values.get("id"))
        self.addresses += [values[name] for name in ("href", "src") if name in values]
        if tag == "img" and not values.get("alt"):
            self.faults.append(f"the picture {values.get('src')} says nothing to those who cannot see it")


def faults_of(folder, *translated):
    pages = {}
    for place in (folder, *translated):
        for name in os.listdir(place):
            if name.endswith(".htm"):
                pages[name] = Page()
                with open(os.path.join(place, name), encoding="utf-8") as file:
                    pages[name].feed(file.read())
    if "index.htm" not in pages:
        yield "there is no index.htm"
    reached = set()
    for name, page in pages.items():
        yield from (f"{name}: {fault}" for fault in page.faults)
        for address in page.addresses:
            if "://" in address:
                yield f"{name}: {address} leads out of the help"
                continue
            target, _, anchor = address.partition("#")
            target = target or name
            reached.add(target)
            if not os.path.isfile(os.path.join(folder, target)):
                yield f"{name}: there is no {target}"
            elif anchor and anchor not in pages[target].anchors:
                yield f"{name}: {target} has no place {anchor}"
    yield from (f"nothing leads to {name}" for name in sorted(set(pages) - reached))


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    found = list(faults_of(*sys.argv[1:]))
    print("\n".join(found) if found else "Every link leads somewhere.")
    sys.exit(1 if found else 0)
