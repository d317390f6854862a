# SPDX-License-Identifier: Apache-2.0
"""Finds the mutants of a C++ source and rewrites it so that it holds them all (see tests/mutation/mutant.hpp).

The places come from clang's syntax tree, the texts from the source itself. Line numbers stay as they are.
"""
import json
import re
import subprocess

COMPARISONS = {"<": ("Less", "<=", ">="), ">": ("Greater", ">=", "<="), "<=": ("LessEqual", "<", ">"),
               ">=": ("GreaterEqual", ">", "<"), "==": ("Equal", "!="), "!=": ("NotEqual", "==")}
ARITHMETIC = {"+": ("Plus", "-"), "-": ("Minus", "+"), "*": ("Times", "/"), "/": ("Divide", "*"), "%": ("Modulo", "*"),
              "<<": ("ShiftLeft", ">>"), ">>": ("ShiftRight", "<<"), "&": ("BitAnd", "|"), "|": ("BitOr", "&"),
              "^": ("BitXor", "&")}
ASSIGNMENTS = {"+=": ("PlusAssign", "-="), "-=": ("MinusAssign", "+="), "*=": ("TimesAssign", "/="),
               "/=": ("DivideAssign", "*="), "<<=": ("ShiftLeftAssign", ">>="), ">>=": ("ShiftRightAssign", "<<="),
               "&=": ("BitAndAssign", "|="), "|=": ("BitOrAssign", "&=")}

# What needs constants, or is not evaluated: there is no choosing at run time.
NOT_EVALUATED = {"ConstantExpr", "StaticAssertDecl", "UnaryExprOrTypeTraitExpr", "CXXNoexceptExpr", "EnumDecl",
                 "PredefinedExpr", "CXXDefaultArgExpr", "CXXDefaultInitExpr", "RequiresExpr", "ConceptDecl"}
STATEMENTS = {"CallExpr", "CXXMemberCallExpr", "CXXOperatorCallExpr", "BinaryOperator", "CompoundAssignOperator",
              "UnaryOperator", "ExprWithCleanups", "CXXThrowExpr", "CXXDeleteExpr", "BreakStmt", "ContinueStmt",
              "ReturnStmt", "CXXRewrittenBinaryOperator"}


class Source:
    """The mutants of one file."""

    def __init__(self, path, text):
        self.path = path
        self.text = text  # bytes, for offsets are counted in them
        self.mutants = []  # dicts: line, old, new, first and last byte
        self.edits = []  # (offset, rank, text to insert), with the mutant's place in the list to be filled in
        self.replaced = {}  # first byte: (last, function of the identifiers to a text)
        self.seen = set()

    def code(self, begin, end):
        return self.text[begin:end].decode()

    def line(self, offset):
        return self.text.count(b"\n", 0, offset) + 1

    def add(self, begin, end, old, news):
        """New mutants of the bytes from `begin` to `end`; returns the place of the first one, or None if known."""
        key = (begin, end, old, news)
        if key in self.seen:
            return None
        self.seen.add(key)
        for new in news:
            self.mutants.append({"file": self.path, "line": self.line(begin), "begin": begin, "end": end,
                                 "old": " ".join(old.split()), "new": " ".join(new.split())})
        return len(self.mutants) - len(news)

    def wrap(self, begin, end, place, prefix, suffix, count=1):
        """Puts the two texts around the bytes; #0#, #1# in them stand for the mutants' numbers."""
        self.edits.append({"begin": begin, "end": end, "first": place, "count": count, "prefix": prefix,
                           "suffix": suffix})

    def rewritten(self, numbers, without=frozenset()):
        """The text with all mutants but those at the places `without`; `numbers` are the mutants' numbers."""
        opening, closing, gaps = {}, {}, {}
        for order, edit in enumerate(self.edits):
            places = range(edit["first"], edit["first"] + edit["count"])
            if any(place in without for place in places):
                continue
            ids = [numbers[place] for place in places]
            if "gap" in edit:
                gaps[edit["gap"][0]] = (edit["gap"][1], numbered(edit["between"], ids))
            size = edit["end"] - edit["begin"]
            opening.setdefault(edit["begin"], []).append((-size, order, numbered(edit["prefix"], ids)))
            closing.setdefault(edit["end"], []).append((size, -order, numbered(edit["suffix"], ids)))
        out, at = [], 0
        for offset in sorted(set(opening) | set(closing) | set(gaps)):
            if offset < at:
                continue
            out.append(self.text[at:offset].decode())
            out += [text for *_, text in sorted(closing.get(offset, []))]
            out += [text for *_, text in sorted(opening.get(offset, []))]
            at = offset
            if offset in gaps:
                at, between = gaps[offset]
                out.append(between + "\n" * self.text.count(b"\n", offset, at))
        return "".join(out) + self.text[at:].decode()


def numbered(text, ids):
    for i, number in enumerate(ids):
        text = text.replace(f"#{i}#", str(number))
    return text


def tree_of(compile_command, filter_name="foundation"):
    """The declarations whose names contain `filter_name`, as clang understands them."""
    command = compile_command + ["-fsyntax-only", "-w", "-Xclang", "-ast-dump=json", "-Xclang",
                                 f"-ast-dump-filter={filter_name}"]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    decoder, at = json.JSONDecoder(), 0
    while at < len(text):
        if text[at] != "{":
            at += 1
            continue
        declaration, at = decoder.raw_decode(text, at)
        yield declaration


class Finder:
    def __init__(self, source, is_wanted):
        self.source = source
        self.is_wanted = is_wanted
        self.file = None  # clang names a file only where it changes

    # Where a node stands, or None if it is not in the file or comes out of a macro.
    def place(self, location):
        if "expansionLoc" in location:
            self.place(location["spellingLoc"])
            spelt = self.file
            self.place(location["expansionLoc"])
            if location["expansionLoc"].get("isMacroArgExpansion") and self.is_wanted(spelt):
                inner = location["spellingLoc"]
                return inner["offset"], inner["offset"] + inner["tokLen"]
            return None
        if "file" in location:
            self.file = location["file"]
        if "offset" not in location or not self.is_wanted(self.file):
            return None
        return location["offset"], location["offset"] + location["tokLen"]

    def mark(self, node):
        """Notes the ranges of all nodes, in the order in which clang has written them."""
        if "loc" in node:
            self.place(node["loc"])
        if "range" in node:
            begin, end = self.place(node["range"]["begin"]), self.place(node["range"]["end"])
            node["at"] = (begin[0], end[1]) if begin and end and begin[0] < end[1] else None
        for inner in node.get("inner", []):
            self.mark(inner)

    def visit(self, node, parent=None):
        kind = node.get("kind")
        if kind in NOT_EVALUATED or node.get("isImplicit"):
            return
        if kind == "VarDecl" and node.get("constexpr"):
            return
        inner = [child for child in node.get("inner", []) if child.get("kind")]
        if kind == "IfStmt" and node.get("isConstexpr"):
            inner = inner[1:]
        if kind == "CXXForRangeStmt":  # of what clang makes of it, the range and the body are written by us
            ranges = [child for child in inner if child["kind"] == "DeclStmt"]
            inner = ranges[0]["inner"][0].get("inner", []) + inner[-1:]
        handler = getattr(self, "on" + kind, None) if kind else None
        if handler and node.get("at"):
            handler(node, inner)
        if kind == "CompoundStmt":
            last = inner[-1] if inner else None
            is_body = parent is not None and (
                parent.get("kind", "").endswith("Decl") or parent["kind"] == "LambdaExpr")
            for child in inner:
                self.statement(child, is_body and child is last)
        elif kind in ("IfStmt", "ForStmt", "WhileStmt", "CXXForRangeStmt"):
            bodies = inner[-2:] if kind == "IfStmt" and node.get("hasElse") else inner[-1:]
            for child in bodies:
                self.statement(child, False)
        if kind == "CXXRewrittenBinaryOperator":  # written with another operator than the one that is called
            inner = self.call_of(inner)
        for child in inner:
            self.visit(child, node)

    def statement(self, node, is_end):
        if node.get("kind") not in STATEMENTS or not node.get("at") or (is_end and node["kind"] == "ReturnStmt"):
            return
        begin, end = node["at"]
        text = self.source.code(begin, end)
        semicolon = re.match(rb"\s*;", self.source.text[end:])
        if not semicolon or text.startswith("static_cast<void>"):
            return
        place = self.source.add(begin, end, text + ";", ("// removed",))
        if place is not None:
            self.source.wrap(begin, end + semicolon.end(), place, "{ if (!::mutant::on(#0#)) { ", " } }")

    def binary(self, node, inner, tables):
        operands = sorted(child["at"] for child in inner if child.get("at"))
        if len(operands) == 3:  # the operator's function stands between
            operands = [operands[0], operands[2]]
        if len(operands) != 2 or operands[0][1] > operands[1][0]:
            return
        begin, end = node["at"]
        gap = (operands[0][1], operands[1][0])
        operator = self.source.code(*gap).strip()
        if (begin, end) != (operands[0][0], operands[1][1]):
            return
        for table in tables:
            if operator not in table:
                continue
            name, *others = table[operator]
            old = self.source.code(begin, end)
            left, right = self.source.code(*operands[0]), self.source.code(*operands[1])
            place = self.source.add(begin, end, old, tuple(f"{left} {other} {right}" for other in others))
            if place is not None:
                self.source.wrap(begin, end, place, f"::mutant::{name}<#0#>::of(", ")", len(others))
                self.source.edits[-1]["gap"], self.source.edits[-1]["between"] = gap, ", "

    def logical(self, node, inner):
        begin, end = node["at"]
        operands = [child.get("at") for child in inner]
        if len(operands) != 2 or None in operands:
            return
        old = self.source.code(begin, end)
        left, right = self.source.code(*operands[0]), self.source.code(*operands[1])
        conjunction = node["opcode"] == "&&"
        place = self.source.add(begin, end, old, (f"{left} {'||' if conjunction else '&&'} {right}", right, left))
        if place is None:
            return
        operator = "&&" if conjunction else "||"
        self.source.wrap(begin, end, place, "(::mutant::on(#0#) != (", "))", 3)
        edit = self.source.edits[-1]
        edit["gap"] = (operands[0][1], operands[1][0])
        # With the first mutant alive all is turned round: a || b is !(!a && !b).
        force = "|| ::mutant::on(#%d#)" if conjunction else "&& !::mutant::on(#%d#)"
        edit["prefix"] += "((::mutant::on(#0#) != static_cast<bool>("
        edit["between"] = f")) {force % 1}) {operator} ((::mutant::on(#0#) != static_cast<bool>("
        edit["suffix"] = f")) {force % 2})" + edit["suffix"]

    def onBinaryOperator(self, node, inner):
        if node.get("opcode") in ("&&", "||"):
            self.logical(node, inner)
            return
        types = [child.get("type", {}) for child in inner]
        types = [name.get("desugaredQualType", name.get("qualType", "")) for name in types]
        dependent = any("dependent" in name for name in types)
        pointers = sum(name.endswith(("*", "*const")) for name in types)
        both = pointers == 2 or dependent
        self.binary(node, inner, [COMPARISONS] if both else [COMPARISONS, ARITHMETIC])

    def onCompoundAssignOperator(self, node, inner):
        self.binary(node, inner, [ASSIGNMENTS])

    def onCXXOperatorCallExpr(self, node, inner):
        self.binary(node, inner, [COMPARISONS])

    def call_of(self, inner):
        while inner and inner[0].get("kind") not in ("CXXOperatorCallExpr", "BinaryOperator"):
            inner = inner[0].get("inner", [])
        return inner[0].get("inner", []) if inner else []

    def onCXXRewrittenBinaryOperator(self, node, inner):
        self.binary(node, self.call_of(inner), [COMPARISONS])

    def onUnaryOperator(self, node, inner):
        begin, end = node["at"]
        operand = inner[0].get("at") if inner else None
        if operand is None:
            return
        operator, old, text = node["opcode"], self.source.code(begin, end), self.source.code(*operand)
        if operator in ("++", "--"):
            other = "--" if operator == "++" else "++"
            name = "Increment" if operator == "++" else "Decrement"
            after = node.get("isPostfix")
            place = self.source.add(begin, end, old, (text + other if after else other + text,))
            if place is not None:
                call = f"::mutant::{name}<#0#>::{'after' if after else 'before'}("
                self.source.wrap(begin, end, place, call, ")")
                edit = self.source.edits[-1]
                edit["gap"], edit["between"] = ((operand[1], end) if after else (begin, operand[0])), ""
        elif operator == "!":
            place = self.source.add(begin, end, old, (text,))
            if place is not None:
                self.source.wrap(begin, end, place, "(::mutant::on(#0#) != (", "))")

    def condition(self, node):
        """A condition that is no comparison, and so has no opposite yet."""
        at = node.get("at")
        while node.get("kind") in ("ImplicitCastExpr", "ParenExpr", "ExprWithCleanups") and node.get("inner"):
            node = node["inner"][0]
        known = node.get("kind") in ("UnaryOperator", "CXXRewrittenBinaryOperator", "CXXBoolLiteralExpr") or (
            node.get("kind") in ("BinaryOperator", "CXXOperatorCallExpr"))
        if at is None or known:
            return
        text = self.source.code(*at)
        place = self.source.add(*at, text, (f"!({text})",))
        if place is not None:
            self.source.wrap(*at, place, "(::mutant::on(#0#) != static_cast<bool>(", "))")

    def onIfStmt(self, node, inner):
        if node.get("isConstexpr"):
            return
        if not node.get("hasVar"):
            self.condition(inner[1 if node.get("hasInit") else 0])
            return
        declaration = inner[0]
        variable = next((child for child in declaration.get("inner", []) if child.get("kind") == "VarDecl"), None)
        if node.get("hasInit") or variable is None or not variable.get("at"):
            return
        begin, end = variable["at"]
        name, text = variable["name"], self.source.code(begin, end)
        place = self.source.add(begin, end, text, (f"{text}; !{name}",))
        if place is not None:
            self.source.wrap(begin, end, place, "", f"; ::mutant::on(#0#) != static_cast<bool>({name})")

    def onWhileStmt(self, node, inner):
        if not node.get("hasVar"):
            self.condition(inner[0])

    def onDoStmt(self, node, inner):
        self.condition(inner[1])

    def onConditionalOperator(self, node, inner):
        self.condition(inner[0])

    def onReturnStmt(self, node, inner):
        if inner and inner[0].get("type", {}).get("qualType") == "bool":
            self.condition(inner[0])

    def literal(self, node, news):
        begin, end = node["at"]
        old = self.source.code(begin, end)
        place = self.source.add(begin, end, old, tuple(news))
        if place is None:
            return
        prefix = "(" + "".join(f"::mutant::on(#{i}#) ? {new} : " for i, new in enumerate(news))
        self.source.wrap(begin, end, place, prefix, ")", len(news))

    def onIntegerLiteral(self, node, inner):
        text = self.source.code(*node["at"])
        if re.match(r"[0-9]", text):
            value = int(node["value"])
            self.literal(node, [f"({text} + 1)"] + ([f"({text} - 1)"] if value > 0 else []))

    def onCharacterLiteral(self, node, inner):
        text = self.source.code(*node["at"])
        if text.startswith("'"):
            self.literal(node, [f"static_cast<char>({text} + 1)"])

    def onFloatingLiteral(self, node, inner):
        text = self.source.code(*node["at"])
        if re.match(r"[0-9]", text):
            self.literal(node, [f"({text} + 1)"])

    def onCXXBoolLiteralExpr(self, node, inner):
        self.literal(node, ["false" if node["value"] else "true"])

    def onStringLiteral(self, node, inner):
        text = self.source.code(*node["at"])
        if re.match(r'R?"', text):
            self.literal(node, ['"mutant"'] if text == '""' else ['""'])


def find(path, text, compile_command, is_wanted):
    """The mutants of the file `path`, which holds `text`, in the unit that `compile_command` compiles."""
    source = Source(path, text)
    for declaration in tree_of(compile_command):
        finder = Finder(source, is_wanted)
        finder.mark(declaration)
        finder.visit(declaration)
    # A log statement is a macro; its removal is a matter of text.
    for match in re.finditer(rb"^[^\S\n]*(FOUNDATION_LOG\([^;]*?\"?[^;]*);", text, re.MULTILINE):
        place = source.add(match.start(1), match.end(1), match[1].decode() + ";", ("// removed",))
        if place is not None:
            source.wrap(match.start(1), match.end(), place, "{ if (!::mutant::on(#0#)) { ", " } }")
    return source
