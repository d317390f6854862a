#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Usage: members.py NATVIS SOURCE. Each type that the file tells of, or casts to, is defined below SOURCE/foundation,
in the namespace that its name says, and each member that it shows is one of that type's."""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

CAST = r"\(([\w:]+)\*+\)"
NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"


def definition(source, name):
    """The text of the class, from the header of its name or of the class that it stands in, or from the source."""
    parts = name.split("::")
    scopes = [part for part in parts if part[0].islower()]
    classes = [part for part in parts if part[0].isupper()]
    header = source.joinpath(*scopes, classes[0] + ".hpp")
    text = header.read_text()
    assert f"namespace {'::'.join(scopes)} {{" in text, f"{header} does not open the namespace of {name}"
    if f"struct {classes[-1]};" in text:
        classes = ["::".join(classes)]
        text = header.with_suffix(".cpp").read_text()
    for simple in classes:
        start = re.search(rf"(?:class|struct)(?: FOUNDATION_EXPORT)? {simple}\b[^;{{]*{{", text)
        assert start, f"{header} does not define {name}"
        text = text[start.end() :]
    return text


def expressions(type_element):
    for element in type_element.iter():
        if element.tag == NAMESPACE + "DisplayString":
            yield from (found.split(",")[0] for found in re.findall(r"{([^}]*)}", element.text))
            yield element.get("Condition", "")
        elif element.tag in (NAMESPACE + "Item", NAMESPACE + "ExpandedItem"):
            yield element.text


def main(natvis, source):
    count = 0
    for type_element in ElementTree.parse(natvis).getroot().iter(NAMESPACE + "Type"):
        name = type_element.get("Name")
        text = definition(pathlib.Path(source), name)
        for expression in expressions(type_element):
            for cast in re.findall(CAST, expression):
                definition(pathlib.Path(source), cast)
            expression = re.sub(CAST, "", expression)
            for member in re.findall(r"(?<![.\w])[A-Za-z_]\w*", expression):
                assert re.search(rf"\b{member}\b\s*(?:;|=|{{|\(|,)", text), f"{name} has no member {member}"
                count += 1
    assert count > 20, "hardly anything was looked at"


main(*sys.argv[1:])
