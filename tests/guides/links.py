#!/usr/bin/env python3
"""links.py FOLDER: every link of the pages (*.md) below a folder leads to a file there or beside it, and one with an
anchor to a heading of that page. Links to other hosts aren't followed."""
import pathlib
import re
import sys

LINK = re.compile(r"!?\[[^][]*(?:\[[^][]*\])?[^][]*\]\(([^()\s]+)\)")


def prose(page):
    """The text without its blocks of code, whose brackets are no links."""
    return re.sub(r"^```.*?^```$", "", page.read_text(encoding="utf-8"), flags=re.M | re.S)


def anchors(page):
    """Headings as the usual viewers name them: small letters, digits, hyphens and underscores."""
    for heading in re.findall(r"^#+ (.*)$", prose(page), re.M):
        yield re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def faults(folder):
    pages = sorted(folder.rglob("*.md"))
    links = [(page, link) for page in pages for link in LINK.findall(prose(page)) if ":" not in link]
    for page, link in links:
        path, _, anchor = link.partition("#")
        target = page.parent / path if path else page
        if not target.exists():
            yield f"{page}: {link} is not there"
        elif anchor and anchor not in anchors(target):
            yield f"{page}: {link} has no such heading"
    if len(links) < 100:
        yield f"{folder} has {len(links)} links in {len(pages)} pages, which can't be all"


found = list(faults(pathlib.Path(sys.argv[1])))
print("\n".join(found))
sys.exit(bool(found))
