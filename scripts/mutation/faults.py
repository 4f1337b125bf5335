"""Where in C++ code a small fault can be planted; used by scripts/mutate."""

import re
from dataclasses import dataclass

SAME, UNCOMPILED, SURVIVED = "same code", "does not compile", "nobody"

TOKEN = re.compile(r"""
    (?P<blank>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*)
  | (?P<string>"(?:[^"\\\n]|\\.)*") | (?P<character>'(?:[^'\\\n]|\\.)+')
  | (?P<number>\d(?:[\w.']|(?<=[eE])[+-])*) | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|->|\+\+|--|&&|\|\||[<>=!+\-*/%&|^]=|<<|>>|::|[^\s\w])
    """, re.X | re.S | re.M)
# Operators that stand between two blanks; without, "<" and "&&" are parts of types.
TURNED = {"<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"], "==": ["!="],
          "!=": ["=="], "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"],
          "/": ["*"], "%": ["*"], "+=": ["-="], "-=": ["+="], "<<": [">>"], ">>": ["<<"],
          "&": ["|"], "|": ["&"]}
REPLACED = {"++": "--", "--": "++", "true": "false", "false": "true", "!": ""}
# The start of a statement that is no declaration.
EXPRESSION = re.compile(r"[*+(-]|(break|continue);|(?!(if|for|while|switch|return)\b)"
                        r"\w+((\.|->|::)\w+)*(\(|\[| [-+*/%&|]?= | << )")
CHECKED_BY_COMPILER = {"static_assert", "Q_ASSERT", "Q_DECLARE_TYPEINFO"}


def literal_changes(kind, text):
    if kind == "string":
        return [text[:-1] + 'X"']
    if kind == "character":
        return ["'q'" if len(text) > 3 else f"'{chr(ord(text[1]) ^ 1)}'"]
    digits, suffix = re.fullmatch(r"(0x[\da-fA-F']+|[\d.eE+\-']+)([uUlLfF]*)", text).groups()
    number = digits.replace("'", "")
    is_real = not number.startswith("0x") and re.search("[.eE]", number)
    more = str(float(number) + 1) if is_real else str(int(number, 0) + 1)
    return [more + suffix] + ([f"-{text}"] if number != "0" else [])


def closing(tokens, opening):
    """Index of the bracket that closes the one at the index `opening`."""
    depth = 0
    for index in range(opening, len(tokens)):
        depth += {"(": 1, ")": -1}.get(tokens[index].group(), 0)
        if depth == 0:
            return index
    return opening


def find_faults(code):
    """All (start, end, what stands there instead, kind) in a text of C++."""
    tokens = [match for match in TOKEN.finditer(code) if match.lastgroup != "blank"]
    texts = [token.group() for token in tokens] + [""]
    faults, begins_statement, skipped_to = [], True, 0
    heads = set()  # indexes of the brackets that close the head of an if or a loop
    for i, token in enumerate(tokens):
        text, kind, start, end = texts[i], token.lastgroup, token.start(), token.end()
        if text in CHECKED_BY_COMPILER:
            skipped_to = closing(tokens, i + 1)
        if i < skipped_to:
            continue
        if kind in ("string", "character", "number"):
            for change in literal_changes(kind, text):
                faults.append((start, end, change, f"{kind} changed"))
        elif code[start - 1].isspace() and code[end:end + 1].isspace() and text in TURNED:
            for change in TURNED[text]:
                faults.append((start, end, change, "operator turned"))
        elif text in REPLACED:
            faults.append((start, end, REPLACED[text], f"{text} replaced"))
        elif text in ("if", "while", "for", "switch") and texts[i + 1] == "(":
            last = closing(tokens, i + 1)
            heads.add(last)
            if text in ("if", "while"):
                condition = code[tokens[i + 1].end():tokens[last].start()]
                faults.append((tokens[i + 1].end(), tokens[last].start(), f"!({condition})",
                               "condition negated"))
        stop = texts.index(";", i) if ";" in texts[i:] else i
        if text == "return" and stop > i + 1 and "{" not in texts[i:stop]:
            faults.append((end, tokens[stop].start(), " {}", "return value changed"))
        elif begins_statement and "{" not in texts[i:stop] and EXPRESSION.match(code, start):
            faults.append((start, tokens[stop].start(), "", "statement dropped"))
        begins_statement = text in ("{", "}", ";", "else") or i in heads
    return [fault for fault in faults if code[fault[0]:fault[1]].strip() != fault[2].strip()]


@dataclass
class Fault:
    """A place, what stands there instead, and who noticed."""

    name: str  # of the file, from TREE on
    line: int
    lines: str  # the whole lines that it is in
    column: int  # where in these
    before: str
    after: str
    kind: str
    noticed_by: str = ""
    seconds: float = 0.0

    @property
    def place(self):
        return (self.name, self.line, self.column, self.after)

    @property
    def faulty_lines(self):
        end = self.column + len(self.before)
        return self.lines[:self.column] + self.after + self.lines[end:]

    def planted_in(self, code):
        """The file's text with the fault; None when its place is no longer there. It may have
        moved."""
        start = sum(len(line) + 1 for line in code.split("\n")[:self.line - 1])
        if not code.startswith(self.lines + "\n", start):
            start = code.find(self.lines + "\n")
        end = start + len(self.lines)
        return code[:start] + self.faulty_lines + code[end:] if start >= 0 else None

    @property
    def is_replaced_by_next(self):
        return self.noticed_by in (SAME, UNCOMPILED)


def faults_of(tree, path):
    """All that can be planted in the file."""
    code = path.read_text()
    for start, end, after, kind in find_faults(code):
        begin = code.rfind("\n", 0, start) + 1
        lines = code[begin:code.index("\n", end)]
        yield Fault(str(path.relative_to(tree)), code.count("\n", 0, start) + 1, lines,
                    start - begin, code[start:end], after, kind)
