"""The kinds of scenario that a task can name: their options, and the runs that they ask for."""

from collections.abc import Callable
from dataclasses import dataclass, field
from typing import Any

from tuning.configs import Configs
from tuning.errors import TuneError
from tuning.evaluation import Run

_TEAM_METRICS = (
    "first_touch touched first_goal scored goals conceded goal_difference won lost falls "
    "falls_per_minute stand_ups down outside walked fouls ball_metres ball_forward ball_progress crowd"
).split()


def _number(low: float, high: float) -> Callable[[Any], bool]:
    return lambda value: isinstance(value, (int, float)) and low <= value <= high


def _whole(low: int, high: int) -> Callable[[Any], bool]:
    return lambda value: type(value) is int and low <= value <= high


def _one_of(*words: str) -> Callable[[Any], bool]:
    return lambda value: value in words


def _yes_or_no(value: Any) -> bool:
    return isinstance(value, bool)


def _list_of(check: Callable[[Any], bool]) -> Callable[[Any], bool]:
    def is_list(value: Any) -> bool:
        if not isinstance(value, list) or not value:
            return False
        return all(check(item) for item in value) and len(set(value)) == len(value)

    return is_list


@dataclass(frozen=True)
class Option:
    default: Any
    check: Callable[[Any], bool]
    help: str
    # A list whose items are played one by one, each in a run of its own, under this name.
    each: str | None = None


_NUMBERS = _list_of(_whole(1, 11))
_ALL = list(range(1, 12))
_KICK_OFF = Option(
    "early", _one_of("early", "auto"), "'early' after 5 s, or 'auto' by the referee after 30 s"
)
_TYPE = Option(None, _whole(0, 4), "robot type; by the number unless given")
_SET_PLAYS = Option(
    0, _number(0, 600), "seconds from one of our set plays to the next, from the start on; 0: as they come"
)
_SIDE = Option("both", _one_of("left", "right", "both"), "ours; 'both': right in runs with an odd seed")


@dataclass(frozen=True)
class Kind:
    help: str
    options: dict[str, Option]
    metrics: tuple[str, ...]
    runs: str  # what carries a run out
    has_rivals: bool = False
    fixed: dict[str, Any] = field(default_factory=dict)  # what its runs are told beside the options


def _duration(seconds: int) -> Option:
    return Option(seconds, _number(1, 600), "seconds of game time")


def _motion_kind(
    text: str,
    measure: str,
    metrics: str,
    seconds: int,
    motions: tuple[str, ...],
    default: list[str],
    more: dict[str, Option] | None = None,
    fixed: dict[str, Any] | None = None,
) -> Kind:
    """One of the player's motions, driven by the program `motion`."""
    types = Option([0], _list_of(_whole(0, 4)), "robot types, each in a run of its own", each="type")
    options = {
        "types": types,
        "number": Option(None, _whole(1, 11), "whose own values hold; those of no number unless given"),
        "seconds": Option(seconds, _number(1, 600), "seconds of play"),
        "noise": Option(0.01, _number(0, 1), "standard error of the joints' speeds, rad/s"),
        **(more or {}),
    }
    if len(motions) > 1:
        options["motions"] = Option(
            default,
            _list_of(_one_of(*motions)),
            f"out of {', '.join(motions)}; each in a run of its own",
            each="motion",
        )
    else:
        fixed = {**(fixed or {}), "motion": motions[0]}
    return Kind(text, options, tuple(metrics.split()), "motion", fixed={**(fixed or {}), "measure": measure})


def _angles(*default: float) -> dict[str, Option]:
    return {
        "angles": Option(
            list(default), _list_of(_number(-180, 180)), "degrees, each in a run of its own", each="angle"
        )
    }


def _speed(default: float) -> dict[str, Option]:
    return {"speed": Option(default, _number(0, 2), "where the ramp of the gait stops; play on: 0.3")}


_TURN_METRICS = "done seconds error drift turn_rate falls ball_distance"
_GAIT_METRICS = "speed stray turn_rate falls"

KINDS: dict[str, Kind] = {
    "course": _motion_kind(
        "walks to a row of drawn points with the long stride",
        "course",
        "pace points seconds lost falls falls_walking falls_stopping falls_starting",
        90,
        ("course",),
        ["course"],
        {
            **_speed(0.3),
            "reach": Option(0.4, _number(0.01, 5), "metres from a point within which it is reached"),
            "stops": Option(True, _yes_or_no, "stops and starts anew at every second point"),
        },
    ),
    "turn": _motion_kind(
        "turns on the spot",
        "turn",
        _TURN_METRICS,
        6,
        ("turn",),
        ["turn"],
        _angles(60, 120, -60, -120),
        {"lead": 1.16},
    ),
    "circle": _motion_kind(
        "turns around the ball",
        "turn",
        _TURN_METRICS,
        8,
        ("around-ball",),
        ["around-ball"],
        _angles(60, 120, -60, -120),
        {"lead": 1.16},
    ),
    "walk": _motion_kind(
        "walks straight ahead",
        "gait",
        _GAIT_METRICS,
        8,
        ("omni-long", "omni", "forwalk"),
        ["omni-long"],
        _speed(0.3),
    ),
    "side": _motion_kind(
        "walks sideways",
        "gait",
        _GAIT_METRICS,
        8,
        ("side-left", "side-right", "omni-left", "omni-right"),
        ["side-left", "side-right", "omni-left", "omni-right"],
    ),
    "back": _motion_kind(
        "walks backwards", "gait", _GAIT_METRICS, 8, ("omni-back", "backwalk"), ["omni-back"], _speed(0.8)
    ),
    "kick": _motion_kind(
        "kicks a ball in front of the foot",
        "kick",
        "hit distance direction falls stands",
        6,
        ("kick-right", "kick-left", "kick-strong"),
        ["kick-right", "kick-left"],
    ),
    "get-up": _motion_kind(
        "stands up from the front and from the back",
        "get-up",
        "stands done seconds falls",
        6,
        ("stand-up-front", "stand-up-back"),
        ["stand-up-front", "stand-up-back"],
    ),
    "striker": Kind(
        "one player and an empty goal",
        {
            "numbers": Option([9], _NUMBERS, "each plays alone, in a run of its own", each="number"),
            "type": _TYPE,
            "duration": _duration(200),
            "kick_off": _KICK_OFF,
            "placed": Option(False, _yes_or_no, "ball and robot at drawn places, play on"),
        },
        tuple(_TEAM_METRICS),
        "striker",
    ),
    "kick-off": Kind(
        "number 11 alone takes the kick-off",
        {
            "numbers": Option([11], _NUMBERS, "each alone, in a run of its own", each="number"),
            "type": _TYPE,
            "duration": _duration(10),
            "kick_off": _KICK_OFF,
        },
        tuple(_TEAM_METRICS),
        "kick-off",
    ),
    "still": Kind(
        "our players against robots that only stand",
        {
            "players": Option(_ALL, _NUMBERS, "our numbers"),
            "rivals": Option(11, _whole(1, 11), "how many stand"),
            "side": _SIDE,
            "duration": _duration(300),
            "kick_off": _KICK_OFF,
            "set_plays": _SET_PLAYS,
        },
        tuple(_TEAM_METRICS),
        "still",
    ),
    "match": Kind(
        "the candidate's values against those of another directory",
        {
            "players": Option(_ALL, _NUMBERS, "our numbers"),
            "rivals": Option(_ALL, _NUMBERS, "their numbers"),
            "configs": Option(
                None, lambda value: isinstance(value, str), "their directory; the shipped values unless given"
            ),
            "side": _SIDE,
            "duration": _duration(300),
            "kick_off": _KICK_OFF,
            "set_plays": _SET_PLAYS,
        },
        (*_TEAM_METRICS, "rival_falls_per_minute"),
        "match",
        has_rivals=True,
    ),
}


@dataclass(frozen=True)
class Scenario:
    """A kind with its options, all of them filled in."""

    name: str
    kind: str
    options: dict[str, Any]
    rivals: Configs | None = None

    def runs(self, configs: Configs, seed: int) -> list[Run]:
        """All runs for one seed."""
        kind = KINDS[self.kind]
        # The directory of the rivals went into `rivals`.
        common = {name: value for name, value in self.options.items() if name != "configs"}
        common.update(kind.fixed)
        variants = [common]
        for name, option in kind.options.items():
            if option.each:
                items = common.pop(name)
                variants = [{**variant, option.each: item} for variant in variants for item in items]
                for variant in variants:
                    variant.pop(name, None)
        return [Run(kind.runs, variant, seed, configs, self.rivals) for variant in variants]


def read_scenario(name: str, table: dict[str, Any]) -> Scenario:
    """Out of a task file. Raises TuneError for what is no scenario."""
    table = dict(table)
    word = table.pop("kind", None)
    if word not in KINDS:
        raise TuneError(f"scenario '{name}': kind is {word!r}; there are {', '.join(KINDS)}")
    known = KINDS[word].options
    for key in table:
        if key not in known:
            raise TuneError(f"scenario '{name}' ({word}) has no option '{key}'; it has {', '.join(known)}")
    options = {}
    for key, option in known.items():
        value = table.get(key, option.default)
        if value is not None and not option.check(value):
            raise TuneError(f"scenario '{name}': {key} = {value!r} cannot be ({option.help})")
        options[key] = value
    return Scenario(name, word, options)
