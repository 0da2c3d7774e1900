#!/usr/bin/env python3
"""filter.py HEADER: prints the header as Doxygen shall read it.

A comment before a block, `/// \\name ...` or plain text and then `/// @{`, is meant for every
declaration in the block, and any other comment for all that follow it without an empty line or
another comment. A topic (`\\ingroup`) is meant for a whole block or class. Doxygen knows none of
this, so here each declaration gets all of it. Left out are functions that are only defaulted or
deleted, which say all about themselves, the members of iterators, and what is for the library's use.
Constructors, and the members listed in plain_names, need no comment: they get one that is empty.
"""

import pathlib
import re
import sys


NAMES = pathlib.Path(__file__).with_name("plain_names").read_text(encoding="utf-8").splitlines()
PLAIN_NAMES = {name for name in NAMES if name and not name.startswith("#")}


def says_all(declaration, scope):
    """Whether the name of what is declared says all that there is to say."""
    head = declaration.split("(")[0].split("=")[0].split("{")[0].strip().rstrip(";")
    if head.endswith("operator bool"):
        return "operator bool" in PLAIN_NAMES
    name = re.split(r"[\s&*]+", head)[-1]
    return name in PLAIN_NAMES or (scope.kind == "class" and name == scope.name)


def plain(line):
    """The line without its string and character literals and its // comment."""
    return re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])\'', '""', line).split("//")[0]


def topic_of(comment):
    topics = [line.split()[1] for line in comment if line.startswith("\\ingroup")]
    return topics[0] if topics else None


class Scope:
    """A namespace, a class, or a body, whose contents are of no interest."""

    def __init__(self, kind, topic=None, shown=True):
        self.kind, self.topic, self.shown = kind, topic, shown
        self.hides = False  # its contents
        self.name = None  # of a class

    def inner(self, statement, comment):
        head = re.sub(r"^template <.*?> (?=class|struct)", "", statement)
        if self.kind != "body" and re.match(r"namespace\b", head):
            return Scope("namespace", None, self.shown and "internal" not in head)
        if self.kind != "body" and re.match(r"(class|struct)\b", head):
            topic = topic_of(comment) or self.topic
            scope = Scope("class", topic, self.shown and head.startswith("struct"))
            scope.hides = head.startswith("class Iterator")
            words = head.replace("VEQ_EXPORT", "").replace("[[nodiscard]]", "").split()
            scope.name = words[1] if len(words) > 1 else None
            return scope
        return Scope("body", None, False)


class Block:
    def __init__(self, comment):
        self.named = any(piece.startswith("\\name") for piece in comment)
        self.hides = "\\name For the library's use" in comment
        self.topic = topic_of(comment)
        self.text = [piece for piece in comment if not piece.startswith(("\\name", "\\ingroup"))]


class Filter:
    def __init__(self):
        self.scopes = [Scope("namespace")]
        self.blocks = []
        self.comment = []
        self.shared = []  # the comment before the last declaration, where this one follows at once
        self.statement = []
        self.brackets = 0

    def lines(self, source):
        for line in source:
            stripped = line.strip()
            if self.statement:
                yield from self.code(line)
            elif stripped.startswith("/// @{"):
                yield from self.open_block(line)
            elif stripped.startswith("/// @}"):
                yield from self.close_block(line)
            elif stripped.startswith("///"):
                self.shared = []
                self.comment.append(stripped[3:].removeprefix(" "))
            elif not stripped or stripped.startswith(("//", "#")):
                self.shared = []
                yield from self.flush_comment()
                yield line
            elif re.match(r"(public|protected|private):$", stripped):
                scope = self.scopes[-1]
                scope.shown = self.scopes[-2].shown and stripped != "private:"
                yield line
            else:
                yield from self.code(line)

    def flush_comment(self):
        yield from ("/// " + line for line in self.comment)
        self.comment = []

    def open_block(self, line):
        """Doxygen knows no blocks in blocks: those without a name leave nothing but their text."""
        block = Block(self.comment)
        self.blocks.append(block)
        if block.named:
            yield from ("/// " + piece for piece in self.comment if "\\ingroup" not in piece)
            yield line
        if block.hides:
            yield "/// \\cond"
        self.comment = []
        self.shared = []

    def close_block(self, line):
        block = self.blocks.pop()
        if block.hides:
            yield "/// \\endcond"
        if block.named:
            yield line
        self.shared = []

    def code(self, line):
        """Gathers a statement up to its end or to the brace that opens a scope."""
        code = plain(line)
        if re.match(r"\s*}", code) and not self.statement and self.brackets == 0:
            if self.scopes.pop().hides:
                yield "/// \\endcond"
            yield line
            return
        self.statement.append(line)
        self.brackets += code.count("(") - code.count(")")
        whole = " ".join(plain(piece).strip() for piece in self.statement)
        braces = whole.count("{") - whole.count("}")
        if self.brackets == 0 and braces == 0 and re.search(r"[;}]$", whole.strip()):
            yield from self.declaration(whole)
        elif self.brackets == 0 and braces == 1 and whole.strip().endswith("{"):
            inner = self.scopes[-1].inner(whole, self.comment)
            if inner.kind != "body":
                yield from self.declaration(whole)
                self.scopes.append(inner)
                self.shared = []
                if inner.hides:
                    yield "/// \\cond"

    def declaration(self, whole):
        scope = self.scopes[-1]
        needless = re.search(r"= (default|delete);$", whole) and not self.comment
        unnamed = re.match(r"((template <.*> )?(class|struct|enum class) \w+;|friend (class|struct)"
                           r"|namespace|using namespace|static_assert)", whole)
        if scope.shown and needless:
            self.statement = []
        elif scope.shown and not unnamed:
            block = next((b.text for b in self.blocks[::-1] if b.text), [])
            comment = self.comment or self.shared or block
            if not self.comment and self.shared and len(sys.argv) > 2:
                print(sys.argv[1], whole[:70], "<<", " ".join(self.shared)[:90], file=sys.stderr)
            self.shared = self.shared if comment is self.shared else self.comment
            topic = next((b.topic for b in self.blocks[::-1] if b.topic), scope.topic)
            if not comment and says_all(whole, scope):
                comment = ["&zwnj;"]
            if comment and topic and not topic_of(comment):
                comment = comment + ["", "\\ingroup " + topic]
            yield from ("/// " + line for line in comment)
        else:
            yield from ("/// " + line for line in self.comment)
        yield from self.statement
        self.comment, self.statement = [], []


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        for output in Filter().lines(header.read().splitlines()):
            print(output)
