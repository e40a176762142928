"""Checks that the includes of the sources keep to the table of layers.

usage: checkLayers.py <root of the project>
"""

import sys
from pathlib import Path

from sourceTree import Errors, Table, readSources

KIT_LEVEL = 6


def checkTable(table, sources, errors):
    """Every component has its row, and every row its component."""
    stems = {}
    for source in sources.values():
        stems.setdefault(source.stem, source)
    for stem, source in sorted(stems.items()):
        if table.component(stem) not in table.levels:
            errors.add(source.shown, 1, "table", f"component {stem} is not in {table.shown}")
        elif ("app/" in source.name) != (table.levels[table.component(stem)] == KIT_LEVEL):
            errors.add(source.shown, 1, "table", f"level {KIT_LEVEL} is that of src/app")
    for stem, line in [*table.rows.items(), *table.parts]:
        if stem not in stems:
            errors.add(table.shown, line, "table", f"no file of src belongs to {stem}")


def resolveIncludes(sources, errors):
    """The includes between files of the project as (source, line, included source)."""
    for source in sources.values():
        for line, name, quoted in source.includes():
            if name in sources and quoted and not name.endswith(".cpp"):
                yield source, line, sources[name]
            elif name.endswith(".cpp"):
                errors.add(source.shown, line, "include", f"{name} is a source, not a header")
            elif name in sources:
                errors.add(source.shown, line, "include", f"{name} belongs in quotation marks")
            elif quoted:
                errors.add(source.shown, line, "include", f"{name} is no header of the project")


def findCircle(edges):
    """One circle of components as [a, b, ..., a], or None."""
    done, path = set(), []

    def visit(component):
        if component in path:
            return path[path.index(component):] + [component]
        if component in done:
            return None
        path.append(component)
        for target in sorted(edges.get(component, {})):
            if circle := visit(target):
                return circle
        done.add(path.pop())
        return None

    return next(filter(None, map(visit, sorted(edges))), None)


def checkIncludes(table, sources, errors):
    """Includes go to the same or a lower level and make no circle; all exceptions are needed."""
    used = set()
    edges = {}  # component -> {included component: where}
    for source, line, target in resolveIncludes(sources, errors):
        pair = table.component(source.stem), table.component(target.stem)
        if pair[0] == pair[1]:
            continue
        edges.setdefault(pair[0], {}).setdefault(pair[1], (source.shown, line))
        levels = [table.levels.get(component) for component in pair]
        if None in levels or levels[1] <= levels[0]:
            continue
        used.add(pair)
        if pair not in table.upward:
            errors.add(source.shown, line, "upward", f"{pair[0]} of level {levels[0]} includes "
                       f"{target.name} of level {levels[1]}")
    for (source, target), line in table.upward.items():
        if (source, target) not in used:
            errors.add(table.shown, line, "exception", f"{source} -> {target} is not needed")
    while circle := findCircle(edges):
        where = edges[circle[0]].pop(circle[1])
        errors.add(*where, "circle", " -> ".join(circle))


def check(root):
    errors = Errors()
    table = Table(root / "tests/policy/layers.txt", root, errors)
    sources = readSources(root)
    checkTable(table, sources, errors)
    checkIncludes(table, sources, errors)
    return errors


if __name__ == "__main__":
    sys.exit(check(Path(sys.argv[1])).report())
