#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the help pages from the user guide.

    make_help.py GUIDE STYLE FOLDER [LANGUAGE]

Each GUIDE/*.md becomes FOLDER/*.htm with a list of contents beside it, in the order of the links of
index.md. Pictures are copied to FOLDER/pictures. A link that leads nowhere ends it with a message.

With a LANGUAGE ("de") only pages are made, those that GUIDE/LANGUAGE has from there. They take the places of the
English ones, and use their pictures.
"""

import os
import re
import shutil
import sys

import markdown

PAGE = """<!DOCTYPE html>
<html lang="{language}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title} – ORVEN</title>
<link rel="stylesheet" href="help.css">
</head>
<body>
<nav aria-label="{contents_word}">
<p class="program">ORVEN</p>
<ul>
{contents}
</ul>
</nav>
<main>
<div lang="{body_language}">
{body}
</div>
{turn}
</main>
</body>
</html>
"""
# "Contents", and what is before the title of the next page
WORDS = {"en": ("Contents", "Next"), "de": ("Inhalt", "Weiter")}
PICTURE = re.compile(r'<img [^>]*src="([^"]+)"[^>]*>')
ADDRESS = re.compile(r'(href|src)="([^":]+)"')  # those within the guide: no scheme


def title_of(text):
    return re.search(r"^# (.+)$", text, re.MULTILINE)[1]


def texts_in(guide):
    return {name[:-3]: open(os.path.join(guide, name), encoding="utf-8").read()
            for name in os.listdir(guide) if name.endswith(".md")}


def pages_of(guide, translated):
    """Names without extension, index first, and every page's text."""
    texts = texts_in(guide)
    order = ["index"] + re.findall(r"\]\((\w+)\.md\)", texts["index"])
    if sorted(set(order)) != sorted(texts):
        sys.exit(f"{guide}/index.md must link to every page: {sorted(set(order) ^ set(texts))}")
    return list(dict.fromkeys(order)), texts | translated


def in_folder(guide, folder, match):
    """An address of the guide as the help has it; a picture is brought along."""
    address, mark, anchor = match[2].partition("#")
    if address.endswith(".md"):
        address = address[:-3] + ".htm"
    elif address:
        source = os.path.join(guide, address)
        if not os.path.exists(source):
            sys.exit(f"{guide}: there is no {address}")
        address = "pictures/" + os.path.basename(source)
        if os.path.isdir(os.path.join(folder, "pictures")):
            shutil.copyfile(source, os.path.join(folder, address))
    return f'{match[1]}="{address}{mark}{anchor}"'


def contents(order, texts, current):
    for name in order:
        here = ' aria-current="page"' if name == current else ""
        yield f'<li><a href="{name}.htm"{here}>{title_of(texts[name])}</a></li>'


def turn(order, texts, current, word):
    following = order[order.index(current) + 1:][:1]
    return "".join(f'<p class="next">{word}: <a href="{name}.htm">{title_of(texts[name])}</a></p>' for name in following)


def main(guide, style, folder, language="en"):
    os.makedirs(folder, exist_ok=True)
    translated = {}
    if language == "en":
        os.makedirs(os.path.join(folder, "pictures"), exist_ok=True)
        shutil.copyfile(style, os.path.join(folder, "help.css"))
    else:
        translated = texts_in(os.path.join(guide, language))
    contents_word, next_word = WORDS.get(language, WORDS["en"])
    order, texts = pages_of(guide, translated)
    for name in order:
        body = markdown.markdown(texts[name], extensions=["tables", "toc", "fenced_code", "sane_lists"])
        own = os.path.join(guide, language) if name in translated else guide
        body = ADDRESS.sub(lambda match, own=own: in_folder(own, folder, match), body)
        body = PICTURE.sub(r'<a href="\1">\g<0></a>', body)  # a wide one can be read at its own size
        page = PAGE.format(title=title_of(texts[name]), body=body, turn=turn(order, texts, name, next_word),
                           contents="\n".join(contents(order, texts, name)), contents_word=contents_word,
                           language=language, body_language=language if name in translated else "en")
        with open(os.path.join(folder, name + ".htm"), "w", encoding="utf-8") as file:
            file.write(page)


if __name__ == "__main__":
    if len(sys.argv) not in (4, 5):
        sys.exit(__doc__)
    main(*sys.argv[1:])
