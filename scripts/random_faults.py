"""Prints random faults in the library's sources, in the form of tests/mutants.txt: random_faults.py COUNT SEED

One token a fault: a relation, a sign or operator, a constant, a statement dropped, two arguments swapped. Lines are drawn
with equal chance over all files, so that each file gets its share; some faults do not build, some change nothing that can
be observed.
"""

import random
import re
import subprocess
import sys

RELATIONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
OPERATORS = {"+": "-", "-": "+", "*": "+", "/": "*", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "&&": "||", "||": "&&",
             "+=": "-=", "-=": "+=", "|=": "&="}
SPACED = re.compile(r"(?<= )(<=|>=|==|!=|<<|>>|&&|\|\||\+=|-=|\|=|[-+*/<>&|])(?= )")
NUMBER = re.compile(r"(?<![\w.\"'])(?:0x[0-9A-Fa-f]+|\d+)(?![\w.\"'])")
STATEMENT = re.compile(r"^\s+[\w.>\[\]*-]+(?:\(.*\)| [-+|&]?= .*);$")
ARGUMENTS = re.compile(r"(?<=[(, ])([A-Za-z_]\w*), ([A-Za-z_]\w*)(?=[,)])")


def faults_of(line):
    """(kind, new line) of every fault that this line can have."""
    for match in SPACED.finditer(line):
        token = match.group()
        kind = "relation" if token in RELATIONS else "operator"
        yield kind, line[:match.start()] + {**RELATIONS, **OPERATORS}[token] + line[match.end():]
    for match in NUMBER.finditer(line):
        value = int(match.group(), 0)
        for other in (value + 1, value - 1) if value else (1,):
            yield "constant", line[:match.start()] + str(other) + line[match.end():]
    if STATEMENT.match(line) and not line.lstrip().startswith(("return", "static_assert", "using", "QORV_")):
        yield "dropped", ""
    for match in ARGUMENTS.finditer(line):
        yield "swapped", line[:match.start()] + f"{match[2]}, {match[1]}" + line[match.end():]


def code_lines(path):
    """(number, text) of the lines that hold code which runs."""
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            line = line.rstrip("\n")
            if re.match(r"\s*(//|#|/\*|\*|template|static_assert|$)", line) or line.endswith("\\"):
                continue
            yield number, line.split("  //")[0]


def main():
    count, seed = int(sys.argv[1]), int(sys.argv[2])
    draw = random.Random(seed)
    files = subprocess.run(["git", "ls-files", "src/*.cpp", "src/*.h"], check=True, capture_output=True, text=True)
    lines = []
    for path in files.stdout.split():
        for number, line in code_lines(path):
            faults = list(faults_of(line))
            if faults:
                lines.append((path, number, line, faults))
    for path, number, line, faults in draw.sample(lines, min(count, len(lines))):
        kind = draw.choice(sorted({kind for kind, _ in faults}))
        fault = draw.choice([text for its_kind, text in faults if its_kind == kind])
        escaped = re.sub(r"([\\&#])", r"\\\1", fault)
        print(f"{path}\t{number}s#.*#{escaped}#")


if __name__ == "__main__":
    main()
