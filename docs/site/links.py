"""What is wrong with the links of a site that was made, and with what its pages load."""

import re
from html.parser import HTMLParser
from urllib.parse import unquote, urldefrag

LOADS = {("link", "href"), ("script", "src"), ("img", "src"), ("iframe", "src"), ("source", "src")}
OUTSIDE_STYLE = re.compile(r"url\(\s*['\"]?((?:https?:/)?/[^)'\"]+)|@import\s+['\"](http[^'\"]+)")
IS_OUTSIDE = re.compile(r"(https?:)?//")


class Page(HTMLParser):
    """The names that can be linked to, the links, and what is loaded with the page."""

    def __init__(self, path):
        super().__init__()
        self.names, self.links, self.loaded = set(), set(), set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for key, value in attributes:
            if key in ("id", "name"):
                self.names.add(value)
            elif (tag, key) in LOADS:
                self.loaded.add(value)
            elif (tag, key) == ("a", "href"):
                self.links.add(value)


def faults_of_style(folder):
    for path in folder.rglob("*.css"):
        for found in OUTSIDE_STYLE.findall(path.read_text()):
            yield f"{path}: loads {''.join(found)} from elsewhere"


def faults_of(folder):
    pages = {path.resolve(): Page(path) for path in folder.rglob("*.html")}
    faults = list(faults_of_style(folder))
    for path, page in pages.items():
        faults += [f"{path}: loads {each} from the network" for each in page.loaded if IS_OUTSIDE.match(each)]
        for link in page.links | page.loaded:
            target, name = urldefrag(link)
            if re.match(r"[a-z]+:|//", link):
                continue
            found = (path.parent / unquote(target.partition("?")[0])).resolve() if target else path
            if not found.exists():
                faults.append(f"{path}: link to nothing: {link}")
            elif name and found in pages and unquote(name) not in pages[found].names:
                faults.append(f"{path}: link to no place on the page: {link}")
    return faults
