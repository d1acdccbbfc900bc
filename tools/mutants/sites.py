"""Places in C++ sources where one operator, constant or condition can be changed.

The sources are formatted by clang-format, which is what tells a product from a pointer and
a comparison from a template's bracket: a binary operator has a blank on both sides.
"""

import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Mutant:
    """One change: `new` instead of the `old` at `offset` of the file."""

    path: str
    offset: int
    old: str
    new: str

    def apply(self, text):
        end = self.offset + len(self.old)
        return text[: self.offset] + self.new + text[end:]

    def describe(self, text):
        line = text.count("\n", 0, self.offset) + 1
        begin = text.rfind("\n", 0, self.offset) + 1
        end = text.find("\n", self.offset)
        shown = text[begin:end].strip()
        return f"{self.path}:{line}: `{self.old.strip()}` -> `{self.new.strip()}` in: {shown}"


OPERATORS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "|=": ["&="], "&=": ["|="],
}

BINARY = re.compile(r" (<=|>=|==|!=|&&|\|\||<<|>>|\+=|-=|\*=|\|=|&=|[-<>+*/%&|^]) ")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F']+|\d[\d']*)([uUlL]*)(?![\w.'])")
TRUTH = re.compile(r"\b(true|false)\b")
NOT = re.compile(r"(?<=[( ])!(?=[\w(])")
CONDITION = re.compile(r"\b(if|while) \(")

# What is no code to change: comments, texts, preprocessor lines, promises to the compiler.
SKIPPED = re.compile(
    r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])\''
    r"|^[ \t]*#(?:[^\n\\]|\\\n|\\.)*|\bstatic_assert\([^;]*;|\btemplate <[^\n]*|\[\[[^\]]*\]\]"
    r"|\boperator\W+\(|\bstd::array<[^;{(]*>|= (?:delete|default);|\b(?:enum|using) [^;{]*[;{]",
    re.S | re.M,
)


def blanked(text):
    """The text with everything that is no code made blank, so that offsets stay."""
    return SKIPPED.sub(lambda part: re.sub(r"[^\n]", " ", part.group()), text)


def neighbours(digits):
    """Other constants: one more, one less, nothing at all."""
    digits = digits.replace("'", "")
    value = int(digits, 8 if digits.isdigit() and digits.startswith("0") else 0)
    return sorted({value + 1, max(value - 1, 0), 0} - {value})


def closing(code, opening):
    """The offset of the bracket that closes the one at `opening`, or -1."""
    depth = 0
    for offset in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[offset], 0)
        if depth == 0:
            return offset
    return -1


def mutants_of(path, text):
    """All mutants of a source."""
    code = blanked(text)
    for match in BINARY.finditer(code):
        for new in OPERATORS[match[1]]:
            yield Mutant(path, match.start(1), match[1], new)
    for match in STEP.finditer(code):
        yield Mutant(path, match.start(), match[0], "--" if match[0] == "++" else "++")
    for match in NUMBER.finditer(code):
        for value in neighbours(match[1]):
            yield Mutant(path, match.start(), match[0], f"{value}{match[2]}")
    for match in TRUTH.finditer(code):
        yield Mutant(path, match.start(), match[0], "false" if match[0] == "true" else "true")
    for match in NOT.finditer(code):
        yield Mutant(path, match.start(), "!", "")
    yield from conditions_of(path, text, code)


def conditions_of(path, text, code):
    """An `if` or `while` that is always taken, or never."""
    for match in CONDITION.finditer(code):
        begin = match.end()
        end = closing(code, begin - 1)
        condition = text[begin:end]
        if end < 0 or ";" in condition or re.match(r"(const )?[\w:<>*&]+ \w+ =|const auto", condition):
            continue
        lines = "\n" * condition.count("\n")  # log lines carry the numbers of theirs
        for new in ("true", "false"):
            if not (match[1] == "while" and new == "true"):
                yield Mutant(path, begin, condition, new + lines)
