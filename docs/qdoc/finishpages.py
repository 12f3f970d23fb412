"""Finishes the pages that QDoc made: finishpages.py FOLDER SCRIPT

Writes the SCRIPT of the search field and the list of entries that it searches to style/search.js. Removes the header
that QDoc gives to the namespace, which has none.
"""

import json
import re
import sys
import xml.etree.ElementTree as xml
from pathlib import Path

KINDS = {"page", "group", "module", "header", "namespace", "class", "struct", "enum", "function", "variable"}


def entries(parent, page="", scope=""):
    """Yields the entries of the search field: title and address."""
    for element in parent:
        if element.tag == "contents":
            yield f"{scope}: {element.get('title')}", f"{page}#{element.get('name')}"
        elif element.tag in KINDS and element.get("documented") == "true":
            title = element.get("title") or element.get("fullname") or element.get("name")
            suffix = "()" if element.tag == "function" and element.get("meta") != "macrowithoutparams" else ""
            yield title.removeprefix("ovelin::") + suffix, element.get("href")
            yield from entries(element, element.get("href"), title)
        else:
            yield from entries(element)


def write_search(folder, script):
    found = sorted(set(entries(xml.parse(folder / "ovelin.index").getroot())))
    if not found:
        sys.exit("ovelin.index: nothing to search")
    text = f"const entries = {json.dumps(found, ensure_ascii=False, indent=0)};\n\n"
    (folder / "style/search.js").write_text(text + script.read_text(encoding="utf-8"), encoding="utf-8")


def drop_made_up_header(page):
    text, count = re.subn(r"<tr><td[^>]*> Header:</td>.*?#include &lt;ovelin&gt;.*?</tr>\n", "",
                          page.read_text(encoding="utf-8"))
    if count != 1:
        sys.exit(f"{page.name}: {count} made-up headers, not one")
    page.write_text(text, encoding="utf-8")


folder = Path(sys.argv[1])
write_search(folder, Path(sys.argv[2]))
drop_made_up_header(folder / "ovelin.html")
