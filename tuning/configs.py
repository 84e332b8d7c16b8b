"""A configuration directory as texts: reads and changes single values, keeping everything else.

A `Configs` maps paths below the directory to texts: "omniWalk.conf" for the base and
"overlays/type-2/omniWalk.conf" for what players of one type or number have of their own, or one number
where others play beside it.
"""

import random
import re
from collections.abc import Collection, Sequence
from pathlib import Path

from tuning import paths
from tuning.errors import TuneError

Configs = dict[str, str]

SCOPE = re.compile(r"all|type-[0-4]|(number|together)-([1-9]|10|11)")
_SECTION = re.compile(r"^[ \t]*\[(.*)\][ \t]*(#.*)?$")
_ENTRY = re.compile(r"^[ \t]*(?P<key>[^#=\[\]]*?)[ \t]*=(?P<value>[^#\n]*)")
_ATOM = re.compile(r"[^ \t\r]+")


def read_directory(directory: Path) -> Configs:
    """Every configuration file of the directory and of its overlays."""
    files = [*directory.glob("*.conf"), *directory.glob("overlays/*/*.conf")]
    if not any(file.parent == directory for file in files):
        raise TuneError(f"{directory} holds no configuration files")
    return {str(file.relative_to(directory)): file.read_text(encoding="utf-8") for file in sorted(files)}


def write_directory(configs: Configs, directory: Path) -> None:
    for name, text in configs.items():
        path = directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def without_numbers(configs: Configs) -> Configs:
    """What players have whose number has nothing of its own."""
    return {
        name: text for name, text in configs.items() if not re.match(r"overlays/(number|together)-", name)
    }


def disturbed(configs: Configs, files: Collection[str], share: float, seed: int) -> Configs:
    """The same with every number of these files, overlays included, off by the share, up or down at random."""
    draw = random.Random(seed)

    def off(atom: re.Match[str]) -> str:
        return f"{float(atom[0]) * (1 + draw.choice((-share, share))):.6g}"

    def line_of(line: str) -> str:
        entry = _ENTRY.match(line)
        if not entry or line.lstrip().startswith("#"):
            return line
        start, end = entry.span("value")
        return line[:start] + _ATOM.sub(off, line[start:end]) + line[end:]

    return {
        name: "\n".join(map(line_of, text.split("\n"))) if Path(name).stem in files else text
        for name, text in sorted(configs.items())
    }


def layer_name(scope: str, file: str) -> str:
    return f"{file}.conf" if scope == "all" else f"overlays/{scope}/{file}.conf"


def layers(scope: str, file: str) -> list[str]:
    """The files that a player of the scope reads, the last word last."""
    names = [layer_name("all", file)]
    if match := re.fullmatch(r"(number|together)-(\d+)", scope):
        names.append(layer_name(f"type-{paths.team_types()[int(match[2])]}", file))
        if match[1] == "together":
            names.append(layer_name(f"number-{match[2]}", file))
    if scope != "all":
        names.append(layer_name(scope, file))
    return names


def _find(lines: Sequence[str], group: str, key: str) -> int | None:
    """The line that counts: the last one."""
    found, section = None, ""
    for at, line in enumerate(lines):
        if match := _SECTION.match(line):
            section = match[1]
        elif section == group and (match := _ENTRY.match(line)) and match["key"] == key:
            found = at
    return found


def read_value(configs: Configs, scope: str, file: str, group: str, key: str) -> list[str]:
    """The atoms of the value that players of the scope have. Raises TuneError if there is none."""
    if layer_name("all", file) not in configs:
        raise TuneError(f"there is no file {file}.conf")
    for name in reversed(layers(scope, file)):
        lines = configs.get(name, "").split("\n")
        at = _find(lines, group, key)
        if at is not None:
            match = _ENTRY.match(lines[at])
            assert match
            return _ATOM.findall(match["value"])
    raise TuneError(f"{file}.conf has no key '{key}' in group [{group}]")


def set_value(configs: Configs, scope: str, file: str, group: str, key: str, atoms: Sequence[str]) -> None:
    """Gives players of the scope another value, as many atoms as before. Comments, order and blanks
    stay; in an overlay that lacks the key it is added."""
    name = layer_name(scope, file)
    lines = configs.get(name, "").split("\n")
    at = _find(lines, group, key)
    if at is not None:
        lines[at] = _with_atoms(lines[at], atoms)
    else:
        _insert(lines, group, f"{key} = {' '.join(atoms)}")
    configs[name] = "\n".join(lines)


def _with_atoms(line: str, atoms: Sequence[str]) -> str:
    entry = _ENTRY.match(line)
    assert entry
    start, end = entry.span("value")
    rest = iter(atoms)
    value = _ATOM.sub(lambda match: next(rest, match[0]), line[start:end])
    return line[:start] + value + line[end:]


def _insert(lines: list[str], group: str, entry: str) -> None:
    """Behind the last entry of the group, or in a group of its own at the end."""
    section, last = "", None
    for at, line in enumerate(lines):
        if match := _SECTION.match(line):
            section = match[1]
        if section == group and line.strip():
            last = at
    if last is not None:
        lines.insert(last + 1, entry)
        return
    while lines and not lines[-1].strip():
        lines.pop()
    lines += [*([""] if lines else []), f"[{group}]", entry, ""]
