"""The places of the sources that are changed, and into what."""
import hashlib
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

# The patterns and their replacements; the first group of a pattern is replaced. Patterns match only
# code: literals and comments are blanked out first.
SWAPS = [
    ("condition", r"(==)", ["!="]),
    ("condition", r"(!=)", ["=="]),
    ("condition", r"(?<![<\-])(<=)(?!>)", ["<", ">"]),
    ("condition", r"(?<!>)(>=)", [">", "<"]),
    ("condition", r"(?<= )(<)(?= )", ["<=", ">="]),
    ("condition", r"(?<= )(>)(?= )", [">=", "<="]),
    ("condition", r"(&&)(?= )", ["||"]),
    ("condition", r"(\|\|)", ["&&"]),
    ("condition", r"(?<=[\s(])(!)(?=[A-Za-z_(])", [""]),
    ("condition", r"\b(true)\b", ["false"]),
    ("condition", r"\b(false)\b", ["true"]),
    ("arithmetic", r"(?<= )(\+)(?= )", ["-"]),
    ("arithmetic", r"(?<= )(-)(?= )", ["+"]),
    ("arithmetic", r"(?<= )(\*)(?= \d)", ["+"]),
    ("arithmetic", r"(\+=)", ["-="]),
    ("arithmetic", r"(-=)", ["+="]),
    ("arithmetic", r"(\+\+)", ["--"]),
    ("bits", r"(?<=[\w)\]] )(&)(?= [\w(~])", ["|"]),
    ("bits", r"(?<= )(\|)(?= )", ["&"]),
    ("bits", r"(<<)", [">>"]),
]
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(u|U)?(?![\w.'])")
STATEMENT = re.compile(r"^(\s+)((?:[A-Za-z_][\w:.\[\]>*()-]*\s*[-+|&*]?=\s*[^={};]+"
                       r"|(?:\+\+|--)[\w.\[\]>-]+|[A-Za-z_][\w:.>-]*\([^{};]*\)));$")
RETURN = re.compile(r"^\s*(?:[^/]*\s)?return ([^;{}]+);")
# Results equal to {}, and results that other patterns change.
SAME_AS_NOTHING = ("0", "1", "true", "false", "nullptr", "std::nullopt", "Reason::None", "{}")
DECLARATION = re.compile(r"^\s*(?:const|constexpr|auto|static|using|extern|return|typename|char|"
                         r"bool|uint\w*|size_t|std::\w+|case|default|struct)\b")


def code_only(text):
    """The text with comments, strings and characters blanked out, of the same length."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', blank, text,
                  flags=re.S)


class Mutant:
    def __init__(self, path, line, kind, begin, end, after, text):
        self.path, self.line, self.kind = path, line, kind
        self.number = 0  # in the sources that hold all
        self.begin, self.end, self.after = begin, end, after
        start = text.rfind("\n", 0, begin) + 1
        stop = text.find("\n", end)
        self.before_line = text[start:stop].strip()
        self.after_line = (text[start:begin] + after + text[end:stop]).strip()
        self.mutated = text[:begin] + after + text[end:]
        # Identified by its text, not by its number: a line moves when others change.
        nth = text[:start].count(text[start:stop])
        told = f"{path}\0{self.before_line}\0{self.after_line}\0{nth}"
        self.key = hashlib.sha256(told.encode()).hexdigest()[:16]

    def __str__(self):
        return (f"{self.path}:{self.line}: {self.kind}\n    - {self.before_line}"
                f"\n    + {self.after_line or '(nothing)'}")


def mutants_of(path):
    text = (ROOT / path).read_text()
    code = code_only(text)
    found = []
    offset = 0
    for number, line in enumerate(code.split("\n"), 1):
        directive = line.lstrip().startswith(("#", "static_assert", "template"))

        def add(kind, begin, end, after):
            found.append(Mutant(path, number, kind, offset + begin, offset + end, after, text))

        if not directive:
            for kind, pattern, replacements in SWAPS:
                for match in re.finditer(pattern, line):
                    for after in replacements:
                        add(kind, *match.span(1), after)
            for match in NUMBER.finditer(line):
                value = int(match.group(1), 0)
                suffix = match.group(2) or ""
                for other in {value + 1, value - 1 if value > 0 else 1}:
                    add("constant", *match.span(), f"{other}{suffix}")
            statement = STATEMENT.match(line)
            if statement and not DECLARATION.match(line):
                add("statement", statement.start(2), statement.end(2) + 1, ";")
            result = RETURN.match(line)
            if result and result.group(1) not in SAME_AS_NOTHING:
                add("result", *result.span(1), "{}")
        offset += len(line) + 1
    return found


def all_mutants(subject, part):
    paths = sorted(p.relative_to(ROOT).as_posix() for folder in subject.folders
                   for p in (ROOT / folder).glob("*.[ch]pp"))
    found = [mutant for path in paths if part in path for mutant in mutants_of(path)]
    for number, mutant in enumerate(found, 1):
        mutant.number = number
    return found
