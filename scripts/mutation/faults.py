"""Where in C++ code a small fault can be planted; used by scripts/mutate."""

import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<blank>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*
      |\b(?:static_assert|Q_ASSERT|Q_DECLARE_TYPEINFO)\(.*?\);)
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


@dataclass
class Fault:
    name: str  # of the file
    line: int
    right: str  # the whole lines
    wrong: str  # what is there instead
    kind: str
    noticed_by: str = ""  # empty if there is nothing to notice

    folder = property(lambda self: self.name.split("/")[0])
    place = property(lambda self: (self.name, self.line))


def literal_changes(kind, text):
    if kind == "string":
        return [text[:-1] + 'X"']
    if kind == "character":
        return ["'q'" if len(text) > 3 else f"'{chr(ord(text[1]) ^ 1)}'"]
    return [f"({text} + 1)"] + ([f"-{text}"] if text.strip("uUlL") != "0" else [])


def changes_of(code):
    """All (start, end, replacement, kind) in a text of C++."""
    tokens = [match for match in TOKEN.finditer(code) if match.lastgroup != "blank"]
    texts = [token.group() for token in tokens] + [""]
    closing, opened = {}, []
    for i, text in enumerate(texts):
        if text == "(":
            opened.append(i)
        elif text == ")" and opened:  # a raw string may have more
            closing[opened.pop()] = i
    begins_statement = True
    heads = set()  # indexes of the brackets that close the head of an if or a loop
    for i, token in enumerate(tokens):
        text, kind, (start, end) = texts[i], token.lastgroup, token.span()
        if kind in ("string", "character", "number"):
            for change in literal_changes(kind, text):
                yield start, end, change, f"{kind} changed"
        elif code[start - 1].isspace() and code[end:end + 1].isspace() and text in TURNED:
            for change in TURNED[text]:
                yield start, end, change, "operator turned"
        elif text in REPLACED:
            yield start, end, REPLACED[text], f"{text} replaced"
        elif text in ("if", "while", "for", "switch") and texts[i + 1] == "(":
            last = closing.get(i + 1, i + 1)
            heads.add(last)
            if text in ("if", "while"):
                inner = slice(tokens[i + 1].end(), tokens[last].start())
                yield inner.start, inner.stop, f"!({code[inner]})", "condition negated"
        stop = texts.index(";", i) if ";" in texts[i:] else i
        if text == "return" and stop > i + 1 and "{" not in texts[i:stop]:
            yield end, tokens[stop].start(), " {}", "return value changed"
        elif begins_statement and "{" not in texts[i:stop] and EXPRESSION.match(code, start):
            yield start, tokens[stop].start(), "", "statement dropped"
        begins_statement = text in ("{", "}", ";", "else") or i in heads


def faults_of(name, code):
    """All that can be planted in a file."""
    for start, end, change, kind in changes_of(code):
        first, last = code.rfind("\n", 0, start) + 1, code.index("\n", end)
        if code[start:end].strip() != change.strip():
            yield Fault(name, code.count("\n", 0, start) + 1, code[first:last],
                        code[first:start] + change + code[end:last], kind)
