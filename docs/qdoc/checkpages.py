"""Checks the pages that QDoc made: checkpages.py FOLDER NM LIBRARY

Fails if a link or picture inside the folder is broken, if the help project lacks a file, or if a function that the
shared library exports is not documented, which QDoc does not report.
"""

import re
import subprocess
import sys
import xml.etree.ElementTree as xml
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

# Exported functions that QDoc does not see: those of moc, and the destructor of Message, which only the library's
# own build declares.
GENERATED = {"metaObject", "qt_metacall", "qt_metacast", "~Message"}


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


def undocumented_functions(folder, nm, library):
    index = xml.parse(folder / "ovelin.index")
    # A free function on the page of a class or header has no class name before its own.
    documented = {element.get("fullname") or "ovelin::" + element.get("name")
                  for element in index.iter("function")}
    symbols = subprocess.run([nm, "--dynamic", "--defined-only", "--demangle", library],
                             check=True, capture_output=True, text=True).stdout
    exported = set(re.findall(r" T (ovelin::[\w:~]+)\(", symbols))
    if not exported:
        yield f"{library}: exports nothing"
    for name in sorted(exported - documented):
        if name.rpartition("::")[2] not in GENERATED:
            yield f"{name}(): not documented"


folder = Path(sys.argv[1])
faults = [
    *broken_links(folder),
    *files_missing_in_help(folder),
    *undocumented_functions(folder, *sys.argv[2:]),
]
sys.exit("\n".join(faults) or 0)
