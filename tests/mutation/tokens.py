"""Where a source can be changed by one token, and into what."""

import re

# Replaces a masked character of a literal: not an operator, a digit or a part of a name.
MASK = "\x00"

# The replacement has to differ in what it does for some operands; those that a compiler refuses
# cost a moment and are counted apart. Operators have a blank on both sides, so brackets of
# templates, references and pointers are none.
OPERATORS = {
    "==": ["!="], "!=": ["=="],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="],
    "^=": ["|="], "<<=": [">>="], ">>=": ["<<="],
}
OPERATOR = re.compile(r"(?<= )(<<=|>>=|[=!<>+\-*/|&^]=|&&|\|\||<<|>>|[<>+\-*/%&|^])(?= |$)")
# A shift of a stream is none of bits.
STREAM = re.compile(r'\b(os|\w*[sS]tream\w*|cout|cerr|out|in)\b.*(<<|>>)|(<<|>>) *["\x00]|\x00 *<<')
STEP = re.compile(r"\+\+|--")
NOT = re.compile(r"(?<![\w!])!(?![=!])")
NUMBER = re.compile(r"(?<![\w.\x00'])(0[xX][0-9a-fA-F]+|\d+\.\d*(?:[eE][+-]?\d+)?"
                    r"|\d+(?:'\d+)*)"
                    r"(?=[uUlLfF]*(?![\w.\x00']))")
TRUTH = re.compile(r"\b(true|false)\b")
EXTREME = re.compile(r"\bstd::(min|max)\b")
JUMP = re.compile(r"\b(break|continue);")
CONDITION = re.compile(r"\b(if|while) \(")
STATEMENT = re.compile(r"[\w:>.\-\[\]*&()]+(\(.*\)| [+\-*/|&^]?= .*);|(\+\+|--)[\w.>\-]+;")
NO_STATEMENT = re.compile(r"(return|using|case|default|typedef|break|continue|else|namespace"
                          r"|template|friend|static_assert|operator)\b")
# Lines that say something to the compiler alone.
UNCHANGED = re.compile(r"\s*(#|static_assert|template\b|using\b|friend\b|extern\b|typedef\b)|\[\["
                       r"|\boperator\b|= (delete|default|0);")


def maskLiterals(line):
    """The line with texts, characters and a comment masked; its length stays."""
    masked, position = [], 0
    while position < len(line):
        if line.startswith("//", position):
            break
        quote = line[position]
        isSeparator = quote == "'" and position and line[position - 1].isalnum()
        if quote not in "\"'" or isSeparator:
            masked.append(quote)
            position += 1
            continue
        end = position + 1
        while end < len(line) and line[end] != quote:
            end += 2 if line[end] == "\\" else 1
        masked.append(MASK * (min(end, len(line) - 1) + 1 - position))
        position = end + 1
    return "".join(masked).ljust(len(line), MASK)


def closing(code, opening):
    """Where the bracket at this place ends, or None if not on the line."""
    depth = 0
    for place in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return None


def otherNumbers(number):
    if number[:2].lower() == "0x":
        return [f"0x{int(number, 16) + 1:x}"]
    if "." in number:
        changed = float(number) + 1.0
        return [repr(changed)] if changed != float(number) else []
    if len(number) > 1 and number[0] == "0":
        return [number + "1"]
    value = int(number.replace("'", ""))
    return [str(value + 1)] + ([str(value - 1)] if value else [])


def edits(line):
    """All changes of one line, each as begin, end and the text that comes there."""
    code = maskLiterals(line)
    text = code.rstrip(MASK + " ")
    if UNCHANGED.search(code):
        return
    for found in OPERATOR.finditer(code):
        if found[0] in ("<<", ">>") and STREAM.search(code):
            continue
        for other in OPERATORS[found[0]]:
            yield found.start(), found.end(), other
    for found in STEP.finditer(code):
        yield found.start(), found.end(), "--" if found[0] == "++" else "++"
    for found in NOT.finditer(code):
        yield found.start(), found.end(), ""
    for found in NUMBER.finditer(code):
        for other in otherNumbers(found[1]):
            yield found.start(1), found.end(1), other
    for found in TRUTH.finditer(code):
        yield found.start(), found.end(), "false" if found[1] == "true" else "true"
    for found in EXTREME.finditer(code):
        yield found.start(), found.end(), "std::max" if found[1] == "min" else "std::min"
    for found in JUMP.finditer(code):
        yield found.start(), found.end() - 1, ""
    for found in CONDITION.finditer(code):
        end = closing(code, found.end() - 1)
        condition = line[found.end():end] if end else ""
        if condition and ";" not in condition and " = " not in condition:
            yield found.end(), end, f"!({condition})"
    stripped = text.strip()
    if STATEMENT.fullmatch(stripped) and not NO_STATEMENT.match(stripped) and \
            stripped.count("(") == stripped.count(")"):
        yield text.index(stripped), len(text) - 1, ""


def changes(line):
    """The line as each change leaves it."""
    return [line[:begin] + other + line[end:] for begin, end, other in edits(line)]


def changeableLines(text):
    """Number and changes of each line of a source that has some; what belongs to the
    preprocessor has none."""
    isDirective = False
    for number, line in enumerate(text.splitlines(), 1):
        begins = isDirective or line.lstrip().startswith("#")
        isDirective = begins and line.endswith("\\")
        if begins:
            continue
        possible = changes(line)
        if possible:
            yield number, possible
