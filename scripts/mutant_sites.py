"""Finds places for code faults (mutants) in a C++ source, and finds them again in later versions.

Works on tokens, relying on clang-format's spacing: binary operators have blanks around them, template
brackets, references and pointers do not. The caller discards faults that do not compile."""

import glob
import os
import re
from dataclasses import asdict, dataclass

# Arguments of these are not changed and their calls not dropped: logging, assertions, and calls that
# affect only a window's looks.
LEFT_ALONE = set("""
    static_assert Q_ASSERT Q_ASSERT_X Q_UNUSED qDebug qInfo qWarning qCritical qCDebug qCWarning fprintf
    trace traceOdbc tracePrice traced reserve setContentsMargins setSpacing setHorizontalSpacing
    setVerticalSpacing setToolTip setWhatsThis setStatusTip setAccessibleName setAccessibleDescription
    setStyleSheet setWordWrap setAlignment setTextFormat setIcon setWindowIcon setCursor addStretch
    addSpacing setStretch setColumnStretch setRowStretch setMargin setRenderHint setPen setBrush setFont
    fillRect fillPath drawText drawLine drawRect drawPath drawPixmap drawRoundedRect
    setPointSize setPointSizeF setBold setWeight setAutoDefault setUniformRowHeights
""".split())
# String literals in these are user texts.
MESSAGES = set("setText setTitle setWindowTitle setPlaceholderText addAction addTab QLabel QPushButton tr "
               "QGroupBox QCheckBox QRadioButton addButton setLabelText setHeaderLabels".split())
SYMMETRIC = {"max", "min", "qMax", "qMin", "swap", "connect", "disconnect", "minmax", "isSameName",
             "sameField"}
KEYWORDS = set("""
    if for while switch return sizeof decltype throw catch new delete else do case default break continue
    goto using auto const static constexpr try co_await co_return alignof noexcept template typename operator
""".split())

TOKEN = re.compile(r"""
    (?P<skip>\s+|//[^\n]*|/\*.*?\*/)
  | (?P<pre>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<str>(?:u8|u|U|L)?R"(?P<mark>[^()\s\\]{0,16})\(.*?\)(?P=mark)"|(?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*")
  | (?P<chr>(?:u8|u|U|L)?'(?:[^'\\\n]|\\.)+')
  | (?P<num>\.?\d(?:[eE][+-]|[\w.]|'(?=\w))*)
  | (?P<id>[^\W\d]\w*)
  | (?P<op><=>|->\*|\.\.\.|::|->|\+\+|--|&&|\|\||[-+*/%&|^=!<>]=|.)
""", re.X | re.S | re.M)

SQL = re.compile(r"\b(SELECT|UPDATE|DELETE|INSERT|WHERE|FROM|ORDER BY|GROUP BY|FLOOR|round)\b"
                 r"|\b(AND|OR|SET)\b |\w+ *(=|<|>|<=|>=|<>) *(:[A-Z]|'|[0-9])|= *:[A-Z]")


@dataclass
class Fault:
    """One change of a source. It is found again by the text of its line and the lines around it, so that
    it can be applied to later versions of the sources."""
    module: str
    file: str
    kind: str
    line: str       # the line it starts in, without its indentation
    before: str     # the lines above and below, without indentation
    after: str
    occurrence: int  # index among identical places in the file
    column: int     # in the line
    old: str
    new: str
    number: int = 0  # the line number, for messages

    def values(self):
        return asdict(self)


class Columns:
    """The columns of the record dictionary by table."""

    def __init__(self, root):
        self.tables = {}
        for name in sorted(glob.glob(os.path.join(root, "**", "*.dict"), recursive=True)):
            fields = []
            for line in open(name, encoding="utf-8"):
                words = line.split()
                if words[:1] == ["table"]:
                    fields = self.tables.setdefault(words[1].upper(), [])
                elif words[:1] == ["field"]:
                    fields.append((words[2], words[3].split(":")[0]))

    def others(self, word):
        """Returns columns of the same kind in tables that have this column."""
        found = set()
        for fields in self.tables.values():
            kinds = {kind for name, kind in fields if name.upper() == word.upper()}
            found |= {name.upper() if word.isupper() else name for name, kind in fields if kind in kinds}
        return sorted(name for name in found if name.upper() != word.upper())


class Source:
    """The tokens of one source, its brackets, and which of its braces contain code."""

    def __init__(self, text):
        self.text = text
        self.kinds, self.words, self.starts = [], [], []
        self._tokenize()
        self.match = self._brackets()
        self.code = self._code()
        self.excluded, self.messages = self._excluded()

    def _tokenize(self):
        conditions = []  # of the preprocessor: (tests for Windows, the current lines are for Windows only)
        for m in TOKEN.finditer(self.text):
            kind = "str" if m.group("str") else m.lastgroup
            if kind == "pre":
                line = m.group().strip()
                if re.match(r"#\s*if", line):
                    about = "WIN" in line
                    conditions.append((about, about and not re.search(r"ifndef|!\s*defined", line)))
                elif re.match(r"#\s*else", line) and conditions:
                    about, own = conditions.pop()
                    conditions.append((about, about and not own))
                elif re.match(r"#\s*endif", line) and conditions:
                    conditions.pop()
            elif kind != "skip" and not any(own for _, own in conditions):
                self.kinds.append(kind)
                self.words.append(m.group())
                self.starts.append(m.start())

    def end(self, i):
        return self.starts[i] + len(self.words[i])

    def slice(self, first, last):
        return self.text[self.starts[first]:self.end(last)]

    def _brackets(self):
        match, stack = {}, []
        for i, word in enumerate(self.words):
            if self.kinds[i] != "op":
                continue
            if word in "([{":
                stack.append(i)
            elif word in ")]}" and stack:
                match[stack[-1]] = i
                match[i] = stack.pop()
        return match

    def _code(self):
        """For every token: whether it is in braces other than those of a namespace or type."""
        code, stack, head = [], [], 0
        for i, word in enumerate(self.words):
            if word == "}" and self.kinds[i] == "op" and stack:
                stack.pop()
                head = i + 1
            code.append(bool(stack) and stack[-1])
            if self.kinds[i] == "op" and word == "{":
                opening = self.words[head:i]
                scope = "namespace" in opening or (opening[:1] and opening[0] in
                                                   ("class", "struct", "union", "enum"))
                stack.append((bool(stack) and stack[-1]) or not scope)
                head = i + 1
            elif self.kinds[i] == "op" and word == ";":
                head = i + 1
        return code

    def _excluded(self):
        excluded, messages = set(), set()
        for i, word in enumerate(self.words[:-1]):
            if self.kinds[i] != "id" or self.words[i + 1] != "(":
                continue
            close = self.match.get(i + 1, i)
            if word in LEFT_ALONE:
                if word.startswith("q"):  # a stream: up to the end of the statement
                    while close < len(self.words) - 1 and self.words[close] != ";":
                        close += 1
                excluded.update(range(i, close + 1))
            elif word in MESSAGES:
                messages.update(range(i, close + 1))
        return excluded, messages

    def arguments(self, opening):
        """Returns the first and last token of each argument of the bracket at this token."""
        close, first, i, found = self.match.get(opening), opening + 1, opening + 1, []
        if close is None:
            return []
        while i <= close:
            if self.words[i] == "," or i == close:
                if i > first:
                    found.append((first, i - 1))
                first = i + 1
            if i < close and self.words[i] in ("(", "[", "{"):
                i = self.match.get(i, i)
            i += 1
        return found

    def spaced(self, i):
        return self.text[self.starts[i] - 1].isspace() and self.text[self.end(i)].isspace()

    def statement_end(self, i):
        while i < len(self.words) and self.words[i] != ";":
            i = self.match.get(i, i) if self.words[i] in ("(", "[", "{") else i
            i += 1
        return i


class Finder:
    """All places for faults in a source, as (kind, start, end, new text)."""

    def __init__(self, text, columns):
        self.source = Source(text)
        self.columns = columns
        self.found = []

    def add(self, kind, first, last, new):
        self.found.append((kind, self.source.starts[first], self.source.end(last), new))

    def sites(self):
        s = self.source
        for i in range(1, len(s.words) - 1):
            if i in s.excluded:
                continue
            if s.kinds[i] == "num":
                self.constant(i)
            elif s.kinds[i] == "str" and i not in s.messages:
                self.text(i)
            elif not s.code[i]:
                continue
            elif s.kinds[i] == "op":
                self.operator(i)
            elif s.words[i] in ("true", "false"):
                self.add("constant", i, i, "false" if s.words[i] == "true" else "true")
            elif s.words[i] in ("if", "while") and s.words[i + 1] == "(":
                self.condition(i)
            elif s.kinds[i] == "id":
                self.call(i)
        return self.found

    def constant(self, i):
        word = self.source.words[i]
        if re.fullmatch(r"0[xX][0-9a-fA-F]+|\d+", word):
            value = int(word, 0) if not re.fullmatch(r"0\d+", word) else int(word, 8)
            for other in {value + 1, abs(value - 1)}:
                self.add("constant", i, i, hex(other) if word[:2] in ("0x", "0X") else str(other))
        elif re.fullmatch(r"\d*\.\d+", word):
            self.add("constant", i, i, word[:-1] + str((int(word[-1]) + 1) % 10))
            self.add("constant", i, i, repr(float(word) + 1))

    def text(self, i):
        word = self.source.words[i]
        content = word[word.index('"') + 1:-1]
        start = self.source.starts[i] + word.index('"') + 1

        def add(at, length, new):
            self.found.append(("text", start + at, start + at + length, new))

        is_sql = bool(SQL.search(content))
        for m in re.finditer(r"(?<![:\w])[A-Za-z_]\w{2,}", content):
            if is_sql or m.group() == content:
                others = self.columns.others(m.group())
                if others:
                    add(m.start(), len(m.group()), others[(start + m.start()) % len(others)])
        if is_sql:
            for m in re.finditer(r"<>|<=|>=|[<>=]|\bAND\b|\bOR\b|\d+", content):
                new = {"<>": "=", "<=": "<", ">=": ">", "<": "<=", ">": ">=", "=": "<>", "AND": "OR",
                       "OR": "AND"}.get(m.group()) or str(int(m.group()) + 1)
                add(m.start(), len(m.group()), new)

    def operator(self, i):
        s, word = self.source, self.source.words[i]
        texts = ("QStringLiteral", "QLatin1String", "QString", "QLatin1StringView")
        near_text = "str" in (s.kinds[i - 1], s.kinds[i + 1]) or s.kinds[i + 1] == "chr" \
            or s.words[i + 1] in texts \
            or (s.words[i - 1] == ")" and s.words[s.match.get(i - 1, 1) - 1] in texts)
        if word in ("+", "-", "+=", "-=", "*", "/") and s.spaced(i):
            if not near_text:
                other = dict(zip(("+", "-", "+=", "-=", "*", "/"), ("-", "+", "-=", "+=", "/", "*")))
                self.add("sign", i, i, other[word])
        elif word == "-" and s.starts[i + 1] == s.end(i) and s.kinds[i + 1] in ("id", "num"):
            self.add("sign", i, i, "")
        elif word in ("<", "<=", ">", ">=", "==", "!=") and s.spaced(i):
            for other in {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
                          "==": ("!=",), "!=": ("==",)}[word]:
                self.add("comparison", i, i, other)
        elif word in ("&&", "||") and s.spaced(i):
            self.add("condition", i, i, "||" if word == "&&" else "&&")
        elif word == "!" and s.starts[i + 1] == s.end(i):
            self.add("condition", i, i, "")

    def condition(self, i):
        s = self.source
        close = s.match.get(i + 1)
        if close is None or close + 1 >= len(s.words):
            return
        first, depth_0, j = i + 2, [], i + 2
        while j < close:
            depth_0.append(s.words[j])
            if s.words[j] == ";":
                first, depth_0 = j + 1, []
            j = s.match.get(j, j) + 1 if s.words[j] in ("(", "[", "{") else j + 1
        if "=" not in depth_0 and first < close:
            self.add("condition", first, close - 1, f"!({s.slice(first, close - 1)})")
        if s.words[i] == "if":
            self.branch(i, close + 1)

    def branch(self, i, body):
        """`if (...) return x;` without an else: dropped."""
        s = self.source
        block = s.words[body] == "{"
        first = body + 1 if block else body
        if s.words[first] not in ("return", "throw", "continue", "break"):
            return
        last = s.statement_end(first)
        if block:
            last += 1
            if last != s.match.get(body):
                return
        if last + 1 < len(s.words) and s.words[last + 1] != "else":
            self.add("branch", i, last, "{}")

    def call(self, i):
        s = self.source
        if s.words[i + 1] == "(" and s.words[i] not in KEYWORDS | SYMMETRIC:
            arguments = s.arguments(i + 1)
            for (a, b), (c, d) in zip(arguments, arguments[1:]):
                one, two = s.slice(a, b), s.slice(c, d)
                kinds = [("QStringLiteral" in t or '"' in t, t.startswith("["), t[:1].isdigit())
                         for t in (one, two)]
                if one != two and kinds[0] == kinds[1] and not kinds[0][1]:
                    self.add("arguments", a, d, two + s.text[s.end(b):s.starts[c]] + one)
        if s.words[i] in KEYWORDS or not self.starts_statement(i):
            return
        j, callee, previous = i, None, None
        while s.words[j] != ";":
            if s.words[j] in ("(", "["):
                if s.words[j] == "(":
                    callee = s.words[j - 1]
                j = s.match.get(j, j)
                previous = None
            elif s.kinds[j] == "id" and previous != "id":
                previous = "id"
            elif s.words[j] in ("::", ".", "->"):
                previous = None
            else:
                return
            j += 1
            if j >= len(s.words):
                return
        if s.words[j - 1] == ")" and callee not in LEFT_ALONE:
            self.add("call", i, j, "{}")

    def starts_statement(self, i):
        s = self.source
        if s.words[i - 1] in (";", "{", "}", "else"):
            return True
        opening = s.match.get(i - 1)
        return s.words[i - 1] == ")" and opening is not None and \
            s.words[opening - 1] in ("if", "for", "while")


def faults_of(module, file, text, columns):
    """Returns all faults possible in this source."""
    lines = text.split("\n")
    stripped = [line.strip() for line in lines]
    offsets = [0]
    for line in lines:
        offsets.append(offsets[-1] + len(line) + 1)
    found, number = [], 0
    for kind, start, end, new in sorted(Finder(text, columns).sites(), key=lambda site: site[1:]):
        while offsets[number + 1] <= start:
            number += 1
        line = stripped[number]
        found.append(Fault(
            module, file, kind, line, stripped[number - 1] if number else "", stripped[number + 1],
            stripped[:number].count(line),
            start - offsets[number] - (len(lines[number]) - len(lines[number].lstrip())),
            text[start:end], new, number + 1))
    return found


def apply(fault, text):
    """Returns the mutated text and how well the place matches; None if its line is gone."""
    # Whitespace between words is ignored, so that reformatted code still matches.
    old = re.compile(r"\s*".join(re.escape(word) for word in re.findall(r"\w+|\S", fault.old)))
    lines = text.split("\n")
    stripped = [line.strip() for line in lines]
    best, offset, occurrence = None, 0, 0
    for number, line in enumerate(lines):
        if stripped[number] == fault.line:
            start = offset + len(line) - len(line.lstrip()) + fault.column
            match = old.match(text, start)
            if match:
                fit = (2 * (number > 0 and stripped[number - 1] == fault.before)
                       + 2 * (number + 1 < len(lines) and stripped[number + 1] == fault.after)
                       + (occurrence == fault.occurrence))
                if best is None or fit > best[0]:
                    best = (fit, match)
            occurrence += 1
        offset += len(line) + 1
    if best is None:
        return None
    fit, match = best
    # keeps the numbers of the lines below, which assertions put into the object code
    padding = "\n" * (match.group().count("\n") - fault.new.count("\n"))
    return text[:match.start()] + fault.new + padding + text[match.end():], fit
