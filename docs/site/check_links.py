#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that every link inside the built site leads to a file, and its anchor to an element of that file.

check_links.py FOLDER
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors = set()
        self.links = []
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id":
                self.anchors.add(value)
            elif name in ("href", "src") and value:
                self.links.append(value)


def problems(folder):
    pages = {path.resolve(): Page(path) for path in sorted(folder.rglob("*.html"))}
    if not pages:
        yield f"{folder} holds no page"
    for path, page in pages.items():
        for link in page.links:
            parts = urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            target = (path.parent / unquote(parts.path)).resolve() if parts.path else path
            if not target.is_file():
                yield f"{path.relative_to(folder)}: {link}: no such file"
            elif parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].anchors:
                yield f"{path.relative_to(folder)}: {link}: no such anchor"


def main():
    found = sorted(set(problems(Path(sys.argv[1]).resolve())))
    if found:
        sys.exit("\n".join(found))


if __name__ == "__main__":
    main()
