"""Checks that what the objects of the libraries need of each other keeps to the table of layers.

usage: checkSymbols.py <root of the project> <nm> <file that lists the objects>

The includes show what a source may use; the symbols show where it is. A function that one component
declares and another one defines makes them depend on each other, whatever they include.
"""

import subprocess
import sys
from pathlib import Path

from checkLayers import findCircle
from sourceTree import Errors, Table, readSources

NEEDED = "U"
# Code, data, constants and zeroed data of one object. What several objects may define alike
# (templates, inline functions) is nobody's.
DEFINED = "TDRB"


def readSymbols(nm, objects):
    """The symbols of the objects as (stem of the source, symbol, kind)."""
    for path in objects:
        listing = subprocess.run([nm, "--format=posix", path], check=True, capture_output=True,
                                 text=True).stdout
        for line in listing.splitlines():
            symbol, kind = line.split()[:2]
            yield Path(path).name.split(".")[0], symbol, kind


def needsOf(symbols, componentOf):
    """What components need of each other: {component: {other: a symbol}}."""
    defined, needed = {}, []
    for name, symbol, kind in symbols:
        if kind in DEFINED:
            defined[symbol] = componentOf(name)
        elif kind == NEEDED:
            needed.append((componentOf(name), symbol))
    needs = {}
    for component, symbol in sorted(needed):
        other = defined.get(symbol, component)
        if other != component:
            needs.setdefault(component, {}).setdefault(other, symbol)
    return needs


def checkNeeds(table, needs, errors):
    for component, others in needs.items():
        for other, symbol in others.items():
            isUpward = table.level(other) > table.level(component)
            if isUpward and (component, other) not in table.upward:
                errors.add(table.shown, table.rows[component].line, "upward symbol",
                           f"{component} needs {symbol} of {other}")
    while circle := findCircle(needs):
        symbol = needs[circle[0]].pop(circle[1])
        errors.add(table.shown, table.rows[circle[0]].line, "circle of symbols",
                   f"{' -> '.join(circle)}, with {symbol}")


def check(root, symbols):
    errors = Errors()
    table = Table(root, errors)
    stems = {source.path.stem: source.stem for source in readSources(root).values()}
    checkNeeds(table, needsOf(symbols, lambda name: table.component(stems[name])), errors)
    return errors


if __name__ == "__main__":
    root, nm, listed = sys.argv[1:]
    objects = Path(listed).read_text(encoding="utf-8").split()
    sys.exit(check(Path(root), readSymbols(nm, objects)).report())
