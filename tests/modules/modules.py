"""Checks the includes of all sources in a folder against the modules' rules.

Usage: modules.py ROOT. A source may include headers of its own module and of those listed here. A
subfolder without rules belongs to its parent's module. Includes between folders must not form a
circle.
"""

import pathlib
import re
import sys

RULES = {  # module: the modules and headers it may use; "x/*" is x and all modules below it
    "data": [],
    "data/lock": ["data"],
    "data/dictionary": ["data"],
    "data/record": ["data", "data/dictionary"],
    "data/catalogue": ["data", "data/dictionary", "data/record"],
    "data/engine": ["data", "data/dictionary", "data/record"],
    "data/journal": ["data", "data/dictionary", "data/record", "data/engine"],
    "data/table": ["data", "data/dictionary", "data/record", "data/engine"],
    "data/sql": ["data", "data/dictionary", "data/record", "data/engine"],
    "platform": ["data/*"],
    "engines": ["data/*"],
    "engines/sqlite": ["engines", "data/*"],
    "engines/journal": ["engines/sqlite", "engines", "data/*"],
    "engines/embedded": ["engines/journal", "engines/sqlite", "engines", "data/*"],
    "engines/shops": ["engines/journal", "engines/sqlite", "engines", "data/*"],
    "engines/extension": ["engines/embedded", "data/*"],
    "company": ["engines/*", "platform", "data/*"],
    "framework/core": ["company", "platform", "data/*"],
    "framework/ui": ["framework/core", "company", "platform", "data/*"],
    "search": ["framework/*", "company", "platform", "data/*"],
    "vatchange/definition": ["framework/core/saved_definition.h"],
    "vatchange/rules": ["vatchange/definition"],
    "vatchange/ports": [],
    "vatchange/journal": ["vatchange/definition", "vatchange/rules", "vatchange/ports",
                          "framework/core/saved_definition.h", "framework/core/settings_table.h", "data/*"],
    "vatchange/orders": ["vatchange/definition", "vatchange/rules", "vatchange/ports",
                         "vatchange/journal", "data/*"],
    "vatchange/run": ["vatchange/definition", "vatchange/rules", "vatchange/ports",
                      "vatchange/orders", "vatchange/journal", "framework/core", "company", "platform", "data/*"],
    "vatchange/changes": ["vatchange/definition", "vatchange/rules", "vatchange/ports",
                          "vatchange/journal", "platform", "data/*"],
    "vatchange/rehearsal": ["vatchange/definition", "vatchange/rules", "vatchange/ports", "vatchange/journal",
                            "vatchange/changes", "vatchange/run", "framework/core", "company", "platform",
                            "data/*"],
    "vatchange/report": ["vatchange/changes", "vatchange/journal", "vatchange/run", "vatchange/ports",
                         "vatchange/rules", "vatchange/definition", "framework/*", "company", "platform",
                         "data/*"],
    "vatchange/views": ["vatchange/report", "vatchange/changes", "vatchange/journal", "vatchange/run",
                        "vatchange/ports", "vatchange/rules", "vatchange/definition", "search",
                        "framework/*", "company", "platform", "data/*"],
    "vatchange/form": ["vatchange/*", "search", "framework/*", "company", "platform", "data/*"],
    "shell": ["vatchange/*", "search", "framework/*", "company", "platform", "data/*"],
    "tools/dictc": ["data/*"],
    "tools/zavdb/demo": ["data/*"],
    "tools/zavdb": ["vatchange/definition", "vatchange/rules", "vatchange/ports",
                    "vatchange/journal", "vatchange/changes", "tools/zavdb/demo", "company", "engines/*", "platform", "data/*"],
}
# The headers of an engine that other modules may include.
PUBLIC = {"engines/embedded": ["embedded_database.h"],
          "engines/shops": ["shops_database.h", "odbc_connection.h"]}
PARTS = {"engines/extension"}  # may include an engine's private headers
WINDOWLESS = re.compile(r"(data|platform|engines|company|framework/core|tools|vatchange/(?!form|report|views))\b")
WINDOW_HEADER = re.compile(
    r"Q(Widget|Dialog|Application|MainWindow|MessageBox|Label|PushButton|Painter)$")
FOLDERS = ("data", "engines", "platform", "company", "framework", "search", "vatchange", "shell",
           "tools")


def module_of(path):
    """Returns the innermost module that contains a file; None if there is none."""
    folder = str(path.parent)
    while folder not in RULES and "/" in folder:
        folder = folder.rpartition("/")[0]
    return folder if folder in RULES else None


def may_use(module, other):
    return module == other or any(
        other == allowed or (allowed.endswith("/*") and
                             (other + "/").startswith(allowed[:-1]))
        for allowed in RULES[module])


def faults_of(source, includes, folders):
    module = module_of(source)
    if module is None:
        yield f"{source}: there is no rule for its folder"
        return
    for kind, header in includes:
        if kind == "<":
            if WINDOWLESS.match(module) and WINDOW_HEADER.match(header):
                yield f"{source}: module {module} has no windows, so no {header}"
        elif "/" in header:  # generated headers have no folder in their names
            target = pathlib.PurePosixPath(header)
            owner = module_of(target)
            if header in RULES[module]:
                pass
            elif owner is None or not may_use(module, owner):
                yield f"{source}: module {module} may not include {header}"
            elif owner != module and module not in PARTS and \
                    target.name not in PUBLIC.get(owner, [target.name]):
                yield f"{source}: {header} is private to {owner}"
            if target.parent != source.parent:
                folders.setdefault(str(source.parent), set()).add(str(target.parent))


def circles(folders):
    """Yields each circle of folders once, starting with its alphabetically first folder."""
    def walk(path):
        for following in sorted(folders.get(path[-1], ())):
            if following == path[0]:
                yield path + [following]
            elif following > path[0] and following not in path:
                yield from walk(path + [following])
    for start in sorted(folders):
        yield from walk([start])


def main(root):
    faults, folders = [], {}
    sources = [path for folder in FOLDERS for path in (root / folder).rglob("*.*")
               if path.suffix in (".h", ".cpp")]
    for path in sorted(sources):
        text = path.read_text(encoding="utf-8")
        includes = re.findall(r'^#include ([<"])([^>"]+)[>"]', text, re.M)
        faults += faults_of(pathlib.PurePosixPath(path.relative_to(root)), includes, folders)
    faults += ["circle: " + " -> ".join(circle) for circle in circles(folders)]
    print("\n".join(faults), flush=True)
    if not sources:
        sys.exit("no sources found")
    if faults:
        sys.exit(f"{len(faults)} faults")


main(pathlib.Path(sys.argv[1]))
