"""Fails unless every link and every picture of the pages in a folder leads somewhere, and the help project
beside them names all that they consist of: checklinks.py FOLDER

Links to other sites are not followed.
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit


class Page(HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.targets = set()
        self.anchors = set()
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src"):
                self.targets.add(value)
            elif name in ("id", "name"):
                self.anchors.add(value)


def broken_links(folder):
    pages = {file.name: Page(file) for file in folder.glob("*.html")}
    for name, page in sorted(pages.items()):
        for target in sorted(page.targets):
            parts = urlsplit(target)
            if parts.scheme:
                continue
            file = unquote(parts.path) or name
            if not (folder / file).is_file():
                yield f"{name}: {target}: no such file"
            elif parts.fragment and file in pages and unquote(parts.fragment) not in pages[file].anchors:
                yield f"{name}: {target}: no such place in the page"
    if not pages:
        yield f"{folder}: no pages"


def files_missing_in_help(folder):
    project = (folder / "ovelin.qhp").read_text(encoding="utf-8")
    for file in sorted(folder.rglob("*")):
        name = file.relative_to(folder).as_posix()
        if file.suffix in (".html", ".png", ".css") and f"<file>{name}</file>" not in project:
            yield f"{name}: not in the help file"


folder = Path(sys.argv[1])
faults = [*broken_links(folder), *files_missing_in_help(folder)]
sys.exit("\n".join(faults) or 0)
