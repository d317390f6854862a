#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints a page of this repository as Doxygen wants it. Run by Doxygen in the root of the repository: page.py PAGE.

In the repository links are paths, and headings are linked to by the names that forges give them. On the site a page has
a label, and so has each of its headings; what is not on the site is no link there. The number of lines stays.
"""
import os
import pathlib
import re
import sys

LINK = re.compile(r"(?<!!)\[([^\]]+)\]\(([^)\s]+)\)")
IMAGE = re.compile(r"!\[([^\]]*)\]\(([^)\s]+)\)")
MENTION = re.compile(r"(?<!`)`((?:docs|examples)/[\w./-]+)`(?!`)")


def label_of(path):
    """The label of a page, or None if the path is none of a page on the site."""
    path = path.removesuffix("/")
    if os.path.isdir(path):
        path += "/README.md"
    if path == "README.md":
        return "index"
    on_site = re.fullmatch(r"docs/[\w-]+\.md|docs/negotiations/README\.md|examples/(\w+/)?README\.md|[A-Z]+\.md", path)
    if not on_site or not os.path.exists(path):
        return None
    return "page_" + path.removesuffix(".md").removesuffix("/README").removeprefix("docs/").replace("/", "_")


def slug_of(heading):
    return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def link(text, target, page):
    path, _, anchor = target.partition("#")
    if "://" in path:
        return None
    path = os.path.normpath(os.path.join(os.path.dirname(page), path)) if path else page
    label = label_of(path)
    if label is None:
        return f"`{os.path.relpath(path)}`" if text == os.path.basename(path) else text
    return f'\\ref {label + "-" + anchor if anchor else label} "{text}"'


def prose(line, page):
    line = LINK.sub(lambda match: link(match[1], match[2], page) or match[0], line)
    line = MENTION.sub(lambda match: link(match[1], os.path.relpath(match[1], os.path.dirname(page) or "."), page)
                       if label_of(match[1]) else match[0], line)
    return IMAGE.sub(lambda match: f'<img src="{os.path.basename(match[2])}" alt="{match[1]}"/>', line)


def heading(line, page, headings):
    marks, text = line.split(" ", 1)
    label = label_of(page)
    if marks != "#":
        label += "-" + slug_of(text)
        headings[label] = headings.get(label, 0) + 1
        if headings[label] > 1:  # as forges number them
            label += f"-{headings[label] - 1}"
    return f"{line} {{#{'mainpage' if label == 'index' else label}}}"


def converted(page):
    headings, fenced = {}, False
    for line in pathlib.Path(page).read_text().splitlines():
        if line.startswith("```"):
            fenced = not fenced
            yield line
        elif fenced or line.startswith("    "):
            yield line
        elif line.startswith("<!--"):
            yield ""
        elif line.startswith("#"):
            yield heading(line, page, headings)
        else:
            yield prose(line, page)


if __name__ == "__main__":
    print("\n".join(converted(os.path.relpath(sys.argv[1]))))
