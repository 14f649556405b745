"""The check of a site's links, and Doxygen's XML as pages."""

import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

import comments
import headers
import links
import pages


class Links(unittest.TestCase):
    def test_finds_dead_links_and_what_is_loaded_from_elsewhere(self):
        with tempfile.TemporaryDirectory() as folder:
            here = Path(folder)
            (here / "b.html").write_text("<h1 id='there'></h1><a href='https://example.org/'>fine</a>")
            (here / "a.html").write_text("<a href='b.html#there'></a><a href='b.html?x#gone'></a><a href='c.html'></a>"
                                         "<img src='d.png'><script src='https://example.org/x.js'></script>")
            (here / "s.css").write_text("@import url(/javascript/n.css); @font-face { src: url('//example.org/f.woff') } a { background: url(d.png) }")
            faults = sorted(fault.replace(folder, "") for fault in links.faults_of(here))
        self.assertEqual(faults, ["/a.html: link to no place on the page: b.html?x#gone", "/a.html: link to nothing: c.html",
                                  "/a.html: link to nothing: d.png",
                                  "/a.html: loads https://example.org/x.js from the network",
                                  "/s.css: loads //example.org/f.woff from elsewhere",
                                  "/s.css: loads /javascript/n.css from elsewhere"])


class Reference(unittest.TestCase):
    def test_comments_become_markdown(self):
        node = ElementTree.fromstring(
            "<detaileddescription><para>A * b of <ref refid='x'>fooBar()</ref> and <computeroutput>c</computeroutput>."
            "<parameterlist kind='param'><parameteritem><parameternamelist><parametername direction='out'>p"
            "</parametername></parameternamelist><parameterdescription><para>made</para></parameterdescription>"
            "</parameteritem></parameterlist><simplesect kind='pre'><para>none</para></simplesect></para>"
            "</detaileddescription>")
        self.assertEqual(comments.Comments({"x"}).blocks(node),
                         "A \\* b of [fooBar()](x) and `c`.\n\n| argument |  |  |\n| --- | --- | --- |\n"
                         "| `p` | out | made |\n\n**Precondition**: none\n\n")

    def test_declarations_read_as_in_a_header(self):
        member = ElementTree.fromstring(
            "<memberdef kind='function' static='yes'><templateparamlist><param><type>class T</type></param>"
            "</templateparamlist><type>const Array&lt; T &gt; &amp;</type><name>f</name>"
            "<argsstring>(const T *p, int n=3) const</argsstring></memberdef>")
        self.assertEqual(headers.declaration(member),
                         "template <class T>\nstatic const Array<T>& f(const T* p, int n=3) const;")


class Guides(unittest.TestCase):
    def test_links_of_a_checkout_lead_to_pages_of_the_site(self):
        root = Path(__file__).resolve().parents[2]
        with tempfile.TemporaryDirectory() as folder:
            gathered = pages.Pages(root, Path(folder))
            page = root / "docs/index.md"
            for target, found in (("../include/Tessary/Topology.h", "cpp/Tessary-Topology.md"),
                                  ("../CHANGELOG.md", "changes.md"), ("start.md#install", "start.md#install"),
                                  ("../examples/operators/main.cpp", "examples/operators.md")):
                self.assertEqual(gathered.link(page, "x", target), f"[x]({found})")
            with self.assertRaises(pages.Faults):
                gathered.link(page, "x", "nowhere.md")


if __name__ == "__main__":
    unittest.main()
