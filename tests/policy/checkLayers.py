"""Checks that the includes of the sources keep to the table of layers.

usage: checkLayers.py <root of the project>
"""

import sys
from pathlib import Path

from sourceTree import Errors, Table, readSources


def checkTable(table, sources, errors):
    """Every file has its place in the table, and every place its file."""
    known = {file: row for row in table.rows.values() for file in row.files}
    for source in sources.values():
        if source.name not in known:
            errors.add(source.shown, 1, "table", f"{table.shown} does not have it")
    for file, row in known.items():
        if file not in sources:
            errors.add(table.shown, row.line, "table", f"there is no src/{file}")


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
        levels = [table.level(component) for component in pair]
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
    table = Table(root, errors)
    sources = readSources(root)
    checkTable(table, sources, errors)
    checkIncludes(table, sources, errors)
    return errors


if __name__ == "__main__":
    sys.exit(check(Path(sys.argv[1])).report())
