#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Brings the translations up to date with the texts of the sources.

    translate.py ROOT LUPDATE [--check]

Each ROOT/assets/translations/orven_*.ts gets the texts that are new, unfinished, and loses those that are gone.
--check changes nothing and prints what is missing or wrong. Exits with 1 if there is anything.
"""

import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

# In the engine a text for people is Words("…"), or Tr("…") in a table (src/base/words.h).
UPDATE = ("-silent", "-no-obsolete", "-locations", "none", "-tr-function-alias", "QT_TR_NOOP+=Words,QT_TR_NOOP+=Tr")


# It warns of each class that is not Qt's: those of the engine, whose texts are found without their class.
ENGINE = re.compile(r"Class '(.+)' lacks Q_OBJECT macro|unknown namespace/class ::(\w+)")


def update(root, lupdate, files):
    """Returns the contexts that do not matter: which class of the engine a text is in."""
    done = subprocess.run([lupdate, *UPDATE, os.path.join(root, "src"), "-ts", *files], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(done.stderr)
    return {class_of(name) for names in ENGINE.findall(done.stderr) for name in names if name}


def class_of(context):
    """Some versions of lupdate name a class with its namespace, some without it."""
    return context.split("::")[-1]


def texts_of(file, engine):
    """Each text with its translation; None where it is unfinished."""
    texts = {}
    for context in xml.parse(file).getroot().iter("context"):
        name = class_of(context.findtext("name"))
        for message in context.iter("message"):
            english = "".join(message.find("source").itertext())
            translation = message.find("translation")
            done = translation.get("type") is None
            texts["" if name in engine else name, english] = "".join(translation.itertext()) if done else None
    return texts


def signs(text):
    """What a translation must keep: its places and whether it has an access key."""
    return sorted(re.findall(r"%\d|%n", text)), len(re.findall(r"&\w", text))


def faults_in(present, wanted):
    for context, english in wanted:
        translation = present.get((context, english))
        if not translation:
            yield f'{context}: "{english}" is not translated'
        elif signs(translation) != signs(english):
            yield f'{context}: "{translation}" has other places or access keys than "{english}"'
    yield from (f'{context}: "{english}" is in the sources no more' for context, english in present.keys() - wanted)


def check(root, lupdate, files):
    """Yields the faults of all files."""
    with tempfile.TemporaryDirectory() as folder:
        for file in files:
            copy = shutil.copy(file, folder)
            engine = update(root, lupdate, [copy])
            found = faults_in(texts_of(file, engine), texts_of(copy, engine).keys())
            yield from (f"{os.path.basename(file)}: {fault}" for fault in found)


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4) or sys.argv[3:] not in ([], ["--check"]):
        sys.exit(__doc__)
    ROOT, LUPDATE = sys.argv[1:3]
    translations = sorted(glob.glob(os.path.join(ROOT, "assets/translations/orven_*.ts")))
    if not translations:
        sys.exit("there is no translation in assets/translations")
    if len(sys.argv) == 3:
        update(ROOT, LUPDATE, translations)
    found = list(check(ROOT, LUPDATE, translations))
    print("\n".join(found) if found else "Every text is translated.")
    sys.exit(1 if found else 0)
