"""A task: what may move, how it is judged, and how it is searched. Read from a TOML file."""

import hashlib
import math
import statistics
import tomllib
from collections.abc import Sequence
from dataclasses import dataclass, replace
from pathlib import Path
from typing import Any

from tuning import configs as conf
from tuning.configs import Configs
from tuning.errors import TuneError
from tuning.evaluation import Metrics
from tuning.scenarios import KINDS, Scenario, read_scenario

# Seeds that no search draws: they are for judging what a search has found.
RESERVED_SEEDS = range(9000, 10000)
SAMPLERS = ("cma-es", "tpe", "random")
# Added to the score of a candidate that breaks a hard limit: worse than any that keeps them.
PENALTY = -1e6


@dataclass(frozen=True)
class Place:
    """One value of the configuration, as one scope of players has it."""

    scope: str
    file: str
    group: str
    key: str

    def read(self, configs: Configs) -> list[str]:
        return conf.read_value(configs, self.scope, self.file, self.group, self.key)

    def write(self, configs: Configs, atoms: Sequence[str]) -> None:
        conf.set_value(configs, self.scope, self.file, self.group, self.key, atoms)

    def __str__(self) -> str:
        scope = "" if self.scope == "all" else f"{self.scope} "
        return f"{scope}{self.file} {self.key}"


@dataclass(frozen=True)
class Knob:
    """One number that may move."""

    place: Place
    index: int
    low: float
    high: float
    step: float  # of the first generation
    start: float
    whole: bool
    size: int  # atoms of the value

    @property
    def name(self) -> str:
        return f"{self.place}[{self.index}]" if self.size > 1 else str(self.place)

    # The search moves in steps from the start, so that one width fits all knobs.
    @property
    def range(self) -> tuple[float, float]:
        return (self.low - self.start) / self.step, (self.high - self.start) / self.step

    def value(self, moved: float) -> float:
        """The configuration's value `moved` steps from the start, as precise as it is written."""
        value = min(max(self.start + moved * self.step, self.low), self.high)
        return float(round(value)) if self.whole else float(f"{value:.4g}")


@dataclass(frozen=True)
class Tie:
    """`target` follows: it is the list `source`, with `plus` added where that is given, or its atom
    `index` makes the sum `total`."""

    target: Place
    source: Place | None
    index: int = -1
    total: float = 0.0
    plus: tuple[float, ...] | None = None

    def apply(self, configs: Configs) -> None:
        if self.source is not None:
            atoms = self.source.read(configs)
            if self.plus is not None:
                atoms = [f"{float(atom) + more:.6g}" for atom, more in zip(atoms, self.plus)]
            self.target.write(configs, atoms)
            return
        atoms = self.target.read(configs)
        others = math.fsum(float(atom) for i, atom in enumerate(atoms) if i != self.index % len(atoms))
        atoms[self.index] = f"{self.total - others:.6g}"
        self.target.write(configs, atoms)


@dataclass(frozen=True)
class Limit:
    low: float = -math.inf
    high: float = math.inf

    def excess(self, value: float) -> float:
        return max(self.low - value, value - self.high, 0.0)


@dataclass(frozen=True)
class Search:
    sampler: str = "cma-es"
    population: int = 12
    generations: int = 20
    seeds: int = 2  # of each evaluation
    seed: int = 1  # of the study


@dataclass(frozen=True)
class Believe:
    """The best few are played again, with seeds that are the same for all of them."""

    few: int = 2
    seeds: int = 6
    every: int = 5  # generations


@dataclass(frozen=True)
class Validation:
    first: int = 9000
    seeds: int = 20


@dataclass(frozen=True)
class Task:
    title: str
    text: str  # the file, from which it can be read again
    scenarios: tuple[Scenario, ...]
    knobs: tuple[Knob, ...]
    ties: tuple[Tie, ...]
    objective: dict[str, float]
    limits: dict[str, Limit]
    search: Search
    believe: Believe
    validation: Validation
    base: Configs  # the values that are to be improved

    @property
    def hash(self) -> str:
        return hashlib.sha256(self.text.encode()).hexdigest()[:16]

    def candidate(self, moved: dict[str, float]) -> Configs:
        """The configuration with knobs moved so many steps from the start."""
        result = dict(self.base)
        for knob in self.knobs:
            atoms = knob.place.read(result)
            value = knob.value(moved[knob.name])
            atoms[knob.index] = str(int(value)) if knob.whole else f"{value:.4g}"
            knob.place.write(result, atoms)
        for tie in self.ties:
            tie.apply(result)
        return result

    def score(self, metrics: Metrics) -> float:
        return math.fsum(weight * metrics[name] for name, weight in self.objective.items())

    def judged(self, metrics: Metrics) -> float:
        """What the search climbs: the score, or far less if a hard limit is broken."""
        excess = math.fsum(limit.excess(metrics[name]) for name, limit in self.limits.items())
        return self.score(metrics) if excess == 0 else PENALTY * (1 + excess)

    def average(self, rows: Sequence[Metrics]) -> Metrics:
        return {name: statistics.fmean(row[name] for row in rows) for name in rows[0]}

    def metric_names(self) -> list[str]:
        return [metric_name(self.scenarios, s, m) for s in self.scenarios for m in KINDS[s.kind].metrics]


def metric_name(scenarios: Sequence[Scenario], scenario: Scenario, metric: str) -> str:
    """Plain where a task has one scenario, with the scenario's name in front where it has several."""
    return metric if len(scenarios) == 1 else f"{scenario.name}.{metric}"


# --- Reading ---------------------------------------------------------------------------------------


def read_task(path: Path, base: Configs) -> Task:
    """Raises TuneError, with the place, for a file that is no task for these values."""
    try:
        text = path.read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as error:
        raise TuneError(f"cannot read the task {path}: {error}") from None
    try:
        return parse_task(text, base, path.parent)
    except TuneError as error:
        raise TuneError(f"{path}: {error}") from None


def parse_task(text: str, base: Configs, directory: Path, rivals: list[Configs | None] | None = None) -> Task:
    """`rivals`: the other teams' values by scenario, where a study has kept them."""
    try:
        table = tomllib.loads(text)
    except tomllib.TOMLDecodeError as error:
        raise TuneError(f"no TOML: {error}") from None
    _refuse_unknown("the task", table, _SECTIONS)
    scenarios = _read_scenarios(table, base, directory, rivals)
    names = [metric_name(scenarios, s, m) for s in scenarios for m in KINDS[s.kind].metrics]
    objective = _section(table, "objective")
    if not objective:
        raise TuneError("[objective] is missing: name at least one metric and its weight")
    for name, weight in objective.items():
        _check_metric("objective", name, names)
        _check_number(f"objective {name}", weight)
    limits = {}
    for name, limit in _section(table, "limits").items():
        _check_metric("limits", name, names)
        limits[name] = _read_limit(name, limit)
    search = _read_plain(Search, "search", table)
    if search.sampler not in SAMPLERS:
        raise TuneError(f"search: sampler '{search.sampler}' is none of {', '.join(SAMPLERS)}")
    knobs = tuple(knob for entry in _tables(table, "key") for knob in _read_knobs(entry, base))
    if not knobs:
        raise TuneError("no [[key]] may move")
    if len({knob.name for knob in knobs}) < len(knobs):
        raise TuneError("a [[key]] is named twice")
    if search.sampler == "cma-es" and len(knobs) < 2:
        raise TuneError('cma-es needs two values or more that may move; take sampler = "tpe"')
    return Task(
        title=str(table.get("title", "")),
        text=text,
        scenarios=scenarios,
        knobs=knobs,
        ties=tuple(_read_tie(entry, base, knobs) for entry in _tables(table, "tie")),
        objective={name: float(weight) for name, weight in objective.items()},
        limits=limits,
        search=search,
        believe=_read_plain(Believe, "believe", table),
        validation=_read_plain(Validation, "validation", table),
        base=base,
    )


_SECTIONS = ("title", "scenario", "objective", "limits", "search", "believe", "validation", "key", "tie")


def _refuse_unknown(what: str, table: dict[str, Any], known: Sequence[str]) -> None:
    for name in table:
        if name not in known:
            raise TuneError(f"{what} has no '{name}'; it has {', '.join(known)}")


def _section(table: dict[str, Any], name: str) -> dict[str, Any]:
    section = table.get(name, {})
    if not isinstance(section, dict):
        raise TuneError(f"[{name}] must be a section")
    return section


def _tables(table: dict[str, Any], name: str) -> list[dict[str, Any]]:
    entries = table.get(name, [])
    if not isinstance(entries, list) or not all(isinstance(entry, dict) for entry in entries):
        raise TuneError(f"[[{name}]] must be written with two brackets")
    return entries


def _check_number(what: str, value: Any) -> float:
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not math.isfinite(value):
        raise TuneError(f"{what} = {value!r} is no number")
    return float(value)


def _check_metric(where: str, name: str, names: Sequence[str]) -> None:
    if name not in names:
        raise TuneError(f"[{where}] names '{name}', which is no metric here; there are {', '.join(names)}")


def _read_scenarios(
    table: dict[str, Any], base: Configs, directory: Path, rivals: list[Configs | None] | None
) -> tuple[Scenario, ...]:
    entries = _tables(table, "scenario")
    if not entries:
        raise TuneError("[[scenario]] is missing")
    scenarios: list[Scenario] = []
    for at, entry in enumerate(entries):
        entry = dict(entry)
        name = str(entry.pop("name", entry.get("kind", f"scenario {at + 1}")))
        if any(name == other.name for other in scenarios):
            raise TuneError(f"two scenarios are named '{name}'; give each a name of its own")
        scenario = read_scenario(name, entry)
        if KINDS[scenario.kind].has_rivals:
            other = scenario.options["configs"]
            kept = rivals[at] if rivals else None
            values = kept or (conf.read_directory(directory / other) if other else base)
            scenario = replace(scenario, rivals=values)
        scenarios.append(scenario)
    return tuple(scenarios)


def _read_limit(name: str, limit: Any) -> Limit:
    if not isinstance(limit, dict):
        return Limit(high=_check_number(f"limits {name}", limit))
    _refuse_unknown(f"limits {name}", limit, ("min", "max"))
    low = _check_number(f"limits {name} min", limit.get("min", -1e300))
    return Limit(low, _check_number(f"limits {name} max", limit.get("max", 1e300)))


def _read_plain(kind: type, name: str, table: dict[str, Any]) -> Any:
    """A section whose entries are the fields of a class: whole numbers from 0, or words."""
    section = _section(table, name)
    fields = kind.__dataclass_fields__
    _refuse_unknown(f"[{name}]", section, tuple(fields))
    for key, value in section.items():
        wanted = type(fields[key].default)
        least = 0 if key in ("few", "seed", "first", "generations") else 1
        if type(value) is not wanted or (wanted is int and value < least):
            raise TuneError(
                f"[{name}] {key} = {value!r} must be a {'word' if wanted is str else f'whole number from {least}'}"
            )
    return kind(**section)


def _read_place(what: str, entry: dict[str, Any]) -> Place:
    for name in ("file", "group", "key"):
        if not isinstance(entry.get(name), str):
            raise TuneError(f"{what}: '{name}' is missing")
    scope = entry.get("scope", "all")
    if not isinstance(scope, str) or not conf.SCOPE.fullmatch(scope):
        raise TuneError(f"{what}: scope {scope!r} is none of all, type-0 to type-4, number-1 to number-11, together-1 to together-11")
    return Place(scope, entry["file"].removesuffix(".conf"), entry["group"], entry["key"])


_KNOB_WORDS = ("scope", "file", "group", "key", "index", "indices", "low", "high", "step", "start", "type")


def _read_knobs(entry: dict[str, Any], base: Configs) -> list[Knob]:
    what = f"[[key]] {entry.get('file', '?')} {entry.get('key', '?')}"
    _refuse_unknown(what, entry, _KNOB_WORDS)
    place = _read_place(what, entry)
    atoms = place.read(base)
    indices = entry.get("indices", [entry["index"]] if "index" in entry else list(range(len(atoms))))
    if (
        not isinstance(indices, list)
        or not indices
        or not all(type(i) is int and 0 <= i < len(atoms) for i in indices)
    ):
        raise TuneError(f"{what}: indices {indices!r} are not all within 0 to {len(atoms) - 1}")
    kind = entry.get("type", "float")
    if kind not in ("float", "int"):
        raise TuneError(f"{what}: type {kind!r} is neither float nor int")
    columns = {name: _column(what, name, entry, len(indices)) for name in ("low", "high", "step")}
    shipped = [_atom(what, atoms[i]) for i in indices]
    starts = _column(what, "start", entry, len(indices)) if "start" in entry else shipped
    knobs = []
    for at, index in enumerate(indices):
        low, high, step = columns["low"][at], columns["high"][at], columns["step"][at]
        place_text = f"{what}[{index}]"
        if not low < high or step <= 0:
            raise TuneError(f"{place_text}: low must be below high, and step above 0")
        for word, value in (("shipped value", shipped[at]), ("start", starts[at])):
            if not low <= value <= high:
                raise TuneError(f"{place_text}: the bounds {low:g} to {high:g} exclude the {word} {value:g}")
        knobs.append(Knob(place, index, low, high, step, starts[at], kind == "int", len(atoms)))
    return knobs


def _column(what: str, name: str, entry: dict[str, Any], count: int) -> list[float]:
    """A number for all, or a list with one for each."""
    value = entry.get(name)
    if isinstance(value, list):
        if len(value) != count:
            raise TuneError(f"{what}: {name} has {len(value)} numbers for {count} values")
        return [_check_number(f"{what}: {name}", item) for item in value]
    return [_check_number(f"{what}: {name}", value)] * count


def _atom(what: str, atom: str) -> float:
    try:
        return float(atom)
    except ValueError:
        raise TuneError(f"{what}: the value {atom!r} is no number") from None


def _read_plus(what: str, entry: dict[str, Any], size: int) -> tuple[float, ...] | None:
    if "plus" not in entry:
        return None
    plus = entry["plus"]
    if not isinstance(plus, list) or len(plus) != size:
        raise TuneError(f"{what}: plus must be a list of {size}")
    return tuple(_check_number(f"{what}: plus", more) for more in plus)


def _read_tie(entry: dict[str, Any], base: Configs, knobs: Sequence[Knob]) -> Tie:
    """`follows = {file, group, key}`, of the same scope unless it names one, also with `plus = [...]`, or
    `sum = TOTAL` with `index`."""
    what = f"[[tie]] {entry.get('file', '?')} {entry.get('key', '?')}"
    _refuse_unknown(what, entry, ("scope", "file", "group", "key", "follows", "plus", "sum", "index"))
    target = _read_place(what, entry)
    size = len(target.read(base))
    if ("follows" in entry) == ("sum" in entry):
        raise TuneError(f"{what}: needs either 'follows' or 'sum'")
    moved = {knob.index for knob in knobs if knob.place == target}
    if "follows" in entry:
        if not isinstance(entry["follows"], dict):
            raise TuneError(f"{what}: follows must be {{file, group, key}}")
        _refuse_unknown(f"{what} follows", entry["follows"], ("scope", "file", "group", "key"))
        source = _read_place(what, {"scope": target.scope, **entry["follows"]})
        if len(source.read(base)) != size:
            raise TuneError(f"{what}: follows a list of another length")
        if moved:
            raise TuneError(f"{what}: is a [[key]] that moves too")
        return Tie(target, source, plus=_read_plus(what, entry, size))
    if "plus" in entry:
        raise TuneError(f"{what}: 'plus' needs 'follows'")
    index = entry.get("index", size - 1)
    if type(index) is not int or not 0 <= index < size:
        raise TuneError(f"{what}: index {index!r} is not within 0 to {size - 1}")
    if index in moved:
        raise TuneError(f"{what}: index {index} is a [[key]] that moves too; leave it out of 'indices'")
    return Tie(target, None, index, _check_number(f"{what}: sum", entry["sum"]))
