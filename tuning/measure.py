"""Measures play and motions of this build, by the same engine and cache as the tuner: scripts/measure-play
and scripts/motion-report. Prints Markdown tables, which docs/play.md and docs/motion.md keep."""

import argparse
import statistics
import sys
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

from tuning import paths
from tuning.cli import add_worker_options, open_workers, report_errors
from tuning.configs import read_directory
from tuning.errors import TuneError
from tuning.evaluation import CYCLE, Metrics, Result, Run

_ALL = list(range(1, 12))


# --- scripts/measure-play --------------------------------------------------------------------------


def _shown(value: float | None, unit: str = "", digits: int = 1) -> str:
    return "-" if value is None else f"{value:.{digits}f}{unit}"


def _touch(figures: dict[str, Any]) -> float | None:
    return figures["first_touch"]["time"] if figures["first_touch"] else None


def _cycle_cost(result: Result, players: int) -> float:
    """Processor time that a player needs for a cycle, microseconds."""
    assert result.seconds and result.figures
    return result.seconds["player"] / players / result.figures["cycles"] * 1e6


def _lone_row(run: Run, result: Result) -> str:
    figures = result.figures
    assert figures
    player = figures["players"][0]
    goals = [goal["time"] for goal in figures["goals"] if goal["side"] == "left"]
    minutes = figures["seconds"] / 60
    cells = [
        str(run.seed),
        _shown(_touch(figures), " s"),
        _shown(goals[0] if goals else None, " s"),
        str(len(goals)),
        f"{figures['ball_metres']:.1f} m",
        f"{player['falls'] / minutes:.1f}/min",
        f"{player['stand_ups'] / minutes:.1f}/min",
        f"{player['walked']:.0f} m",
        f"{player['outside']:.0f} s",
        f"{_cycle_cost(result, 1):.0f} us",
    ]
    return f"| {' | '.join(cells)} |"


def _full_rows(result: Result) -> list[tuple[str, str]]:
    figures = result.figures
    assert figures and result.seconds
    report = figures["report"]
    minutes, players = figures["seconds"] / 60, figures["players"]
    falls, ups = (sum(player[name] for player in players) for name in ("falls", "stand_ups"))
    fouls: dict[str, int] = {}
    for player in players:
        for what, count in player["fouls"].items():
            fouls[what] = fouls.get(what, 0) + count
    left, right = report["teams"]["left"], report["teams"]["right"]

    def calls(what: str) -> str:
        sides = ("left", "right")
        return " : ".join(
            str(sum(p.get(what, 0) for p in report["players"] if p["team"] == s)) for s in sides
        )

    per_player = minutes * len(players)
    return [
        ("score", f"{left['score']} : {right['score']}"),
        ("first touch", _shown(_touch(figures), " s")),
        ("first goal", _shown(figures["goals"][0]["time"] if figures["goals"] else None, " s")),
        ("ball moved in play", f"{figures['ball_metres']:.1f} m"),
        ("possession", f"{100 * left['possession']:.0f} % : {100 * right['possession']:.0f} %"),
        ("falls", f"{falls} ({falls / per_player:.2f} a player and minute)"),
        ("stand-ups", f"{ups} ({ups / per_player:.2f} a player and minute)"),
        ("walked", f"{statistics.fmean(player['walked'] for player in players):.0f} m a player"),
        (
            "fouls",
            ", ".join(f"{n} x {what.replace('_', ' ')}" for what, n in sorted(fouls.items())) or "none",
        ),
        ("calls said", calls("said")),
        ("calls heard", calls("heard")),
        ("processor time of a player a cycle", f"{_cycle_cost(result, len(players)):.0f} us"),
        (
            "speed with all players on this machine",
            f"{figures['cycles'] * CYCLE / result.seconds['wall']:.1f} x real time",
        ),
    ]


def measure_play(words: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(
        prog="scripts/measure-play",
        description="Plays matches of this build in the practice arena and prints their figures as Markdown tables: a lone"
        " striker against an empty goal, once for each seed, and a full match of eleven a side. What has been"
        " played before is taken from the results that are kept.",
    )
    parser.add_argument("--seeds", type=int, default=10, help="matches of the lone striker (default 10)")
    parser.add_argument(
        "--number", type=int, default=11, choices=_ALL, help="of the lone striker (default 11)"
    )
    parser.add_argument("--lone", type=int, default=300, help="seconds of each of them (default 300)")
    parser.add_argument(
        "--full", type=int, default=300, help="seconds of the full match, 0: none (default 300)"
    )
    parser.add_argument("--seed", type=int, default=1, help="seed of the full match (default 1)")
    parser.add_argument("--configs", type=Path, default=paths.CONFIGS, help="the values (Configs/)")
    add_worker_options(parser)
    options = parser.parse_args(words)
    configs = read_directory(options.configs)
    common = {"kick_off": "auto", "report": True}
    lone = {**common, "number": options.number, "type": None, "duration": options.lone, "placed": False}
    full = {**common, "players": _ALL, "rivals": _ALL, "duration": options.full, "side": "left"}
    runs = [Run("striker", lone, seed, configs) for seed in range(1, options.seeds + 1)]
    if options.full > 0:
        runs.append(Run("match", full, options.seed, configs, configs))
    results = _carry_out(options, runs)
    if options.seeds > 0:
        print(
            f"### A lone striker, number {options.number}, against an empty goal, {options.lone} s of game time\n"
        )
        print(
            "| seed | first touch | first goal | goals | ball moved | falls | stand-ups | walked | outside | processor time a cycle |"
        )
        print("|---|---|---|---|---|---|---|---|---|---|")
        for run, result in zip(runs[: options.seeds], results):
            print(_lone_row(run, result))
        print()
    if options.full > 0:
        print(f"### Eleven a side, {options.full} s of game time, seed {options.seed}\n")
        print("| | |\n|---|---|")
        for name, value in _full_rows(results[-1]):
            print(f"| {name} | {value} |")
    return 0


def _carry_out(options: argparse.Namespace, runs: Sequence[Run]) -> list[Result]:
    """All results with their figures. Raises TuneError if a run fails."""
    done = 0

    def progress(run: Run, result: Result) -> None:
        nonlocal done
        done += 1
        if sys.stderr.isatty():
            print(f"\r{done} of {len(runs)} runs", end="\n" if done == len(runs) else "", file=sys.stderr)

    with open_workers(options) as workers:
        results = workers.carry_out(runs, progress, details=True)
    for run, result in zip(runs, results):
        if result.failure is not None:
            raise TuneError(f"a run failed (seed {run.seed}): {result.failure}")
    return results


# --- scripts/motion-report -------------------------------------------------------------------------


def _median(values: Sequence[float]) -> float:
    return statistics.median(values)


def _range(values: Sequence[float]) -> str:
    low, high = min(values), max(values)
    return f"{low:.0f}" if low == high else f"{low:.0f} to {high:.0f}"


def _ends(rows: Sequence[Metrics]) -> list[float]:
    return [row["cycles_to_end"] for row in rows if row["cycles_to_end"] >= 0]


def _stance(rows: Sequence[Metrics]) -> str:
    return f"{_range(_ends(rows)) if _ends(rows) else 'never'} cycles"


def _gait(rows: Sequence[Metrics]) -> str:
    ahead, left, rate = (
        _median([row[n] for row in rows]) for n in ("forward_speed", "left_speed", "turn_rate")
    )
    return f"{ahead:+.2f} m/s ahead, {left:+.2f} m/s left, {rate:+.1f} deg/s"


def _turn(rows: Sequence[Metrics]) -> str:
    ends = _range(_ends(rows)) if _ends(rows) else "no number of"
    return f"{_median([row['turn_rate'] for row in rows]):+.0f} deg/s after the stance, complete after {ends} cycles"


def _stand_up(rows: Sequence[Metrics]) -> str:
    stands = sum(row["end_tilt"] < 30 for row in rows)
    ends = _range(_ends(rows)) if _ends(rows) else "no number of"
    return f"stands in {stands} of {len(rows)}, sequence of {ends} cycles"


def _kick(rows: Sequence[Metrics]) -> str:
    hits = [row for row in rows if row["ball_distance"] > 1]
    if not hits:
        return f"hits in 0 of {len(rows)}"
    far = _median([row["ball_distance"] for row in hits])
    off = _median([abs(row["ball_direction"]) for row in hits])
    return f"hits in {len(hits)} of {len(rows)}: {far:.1f} m, {off:.0f} deg off (medians)"


def _hold(rows: Sequence[Metrics]) -> str:
    return "goes on for as long as it is asked for"


def _end(rows: Sequence[Metrics]) -> str:
    ends = _ends(rows)
    return f"complete in {len(ends)} of {len(rows)}" + (f", after {_range(ends)} cycles" if ends else "")


@dataclass(frozen=True)
class _Row:
    name: str
    tell: Callable[[Sequence[Metrics]], str]
    league: str  # the same on the league's server
    motion: str
    seconds: float
    options: dict[str, float] = field(default_factory=dict)
    type: int | None = None  # of the robot; None: as asked for


_TURN_LEAGUE = "78 deg/s after the stance (60 to 170 degrees); falls 0 of 18"
_ROWS = (
    _Row("neutral stance", _stance, "52 to 56 cycles, no falls", "reset", 4),
    _Row("fixed stance", _stance, "52 to 56 cycles, no falls", "stance0", 4),
    _Row("plain forward gait", _gait, "0.54 to 0.55 m/s; falls 1 of 10", "forwalk", 6),
    _Row("plain back gait", _gait, "walks forward, 0.41 m/s, stable", "backwalk", 8),
    _Row("side gait, gain +1", _gait, "0.55 m/s, 0.03 to 0.05 m/s backwards, 1 to 1.5 deg/s; falls 0 of 8", "side-left", 8),
    _Row("side gait, gain -1", _gait, "the same to the right", "side-right", 8),
    _Row("omni gait, speed 1", _gait, "0.585 m/s, -0.5 deg/s; falls 0 of 8", "omni", 8),
    _Row("omni gait, speed 0.3", _gait, "0.26 m/s; falls 0 of 8", "omni", 8, {"speed": 0.3}),
    _Row("omni gait, speed 1, stopped after 4 s", _end, "falls 0 of 8 at this speed", "omni-stop", 8),
    _Row("long stride, speed 0.3", _gait, "0.58 m/s; falls 0 of 8", "omni-long", 8, {"speed": 0.3}),
    *(
        _Row(f"long stride, curve to the {side}", _gait, "-", "omni-long-curve", 6, {"speed": 0.3, "angle": angle, "lead": 3})
        for side, angle in (("left", 175), ("right", -175))
    ),
    _Row("omni back gait, speed 0.8", _gait, "0.47 to 0.49 m/s backwards; falls 1 of 8", "omni-back", 8, {"speed": 0.8}),
    _Row("omni side gait to the left", _gait, "0.55 m/s; falls 0 of 8", "omni-left", 8),
    _Row("omni side gait to the right", _gait, "0.55 m/s; falls 0 of 8", "omni-right", 8),
    *(
        _Row(f"turn by {angle} degrees", _turn, _TURN_LEAGUE, "turn", 8, {"angle": angle, "lead": 1.16})
        for angle in (60, 120, -60, -120)
    ),
    _Row("turn around the ball by 120 degrees", _turn, "74 deg/s; falls 0 of 18", "around-ball", 8, {"angle": 120, "lead": 1.16}),
    _Row("stand up from the front", _stand_up, "164 to 167 cycles, 19 of 20", "stand-up-front", 6),
    _Row("stand up from the back", _stand_up, "169 to 178 cycles, 28 of 42", "stand-up-back", 6),
    _Row("kick in daily use, right", _kick, "hits 6 to 8 of 10: 5 to 8 m, 3 to 20 degrees off; always ends on the back", "kick-right", 6, type=2),
    _Row("kick in daily use, left", _kick, "-", "kick-left", 6, type=2),
    _Row("kick in daily use, right", _kick, "hits 4 of 8: 5.5 m", "kick-right", 6, type=0),
    _Row("kick in daily use, right", _kick, "hits 1 of 8: 5.5 m", "kick-right", 6, type=4),
    _Row("stronger kick", _kick, "hits 1 of 8: 2.5 to 2.9 m", "kick-strong", 6, type=2),
    _Row("front dive", _end, "-", "dive-front", 4),
    _Row("dive with -1", _end, "-", "dive-left", 4),
    _Row("dive with +1", _end, "-", "dive-right", 4),
    _Row("short block", _end, "-", "dive-block", 4),
    _Row("roll from the front on to the back", _end, "-", "flip", 4),
    _Row("sweep of the head", _hold, "-", "head", 8),
)  # fmt: skip


def motion_report(words: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(
        prog="scripts/motion-report",
        description="Drives every motion of the player several times in the practice arena and prints what they did as a"
        " Markdown table, beside what the same motions do on the league's server.",
    )
    parser.add_argument("--runs", type=int, default=8, help="of each motion, each with a seed of its own (8)")
    parser.add_argument(
        "--type", type=int, default=0, choices=range(5), help="robot type (0); some rows keep theirs"
    )
    parser.add_argument("--noise", type=float, default=0.01, help="error of the joint speeds, rad/s (0.01)")
    parser.add_argument("--configs", type=Path, default=paths.CONFIGS, help="the values (Configs/)")
    parser.add_argument(
        "--keep", type=Path, metavar="DIR", help="keep each run's values and each first run's picture there"
    )
    add_worker_options(parser)
    options = parser.parse_args(words)
    if options.runs < 1:
        parser.error("--runs takes 1 or more")
    configs = read_directory(options.configs)
    kinds = [options.type if row.type is None else row.type for row in _ROWS]
    runs = [
        Run("motion", _motion_options(row, kind, options, seed), seed, configs)
        for row, kind in zip(_ROWS, kinds)
        for seed in range(1, options.runs + 1)
    ]
    results = _carry_out(options, runs)
    print("| motion | robot | in the arena | falls | on the league's server |")
    print("|---|---|---|---|---|")
    for at, (row, kind) in enumerate(zip(_ROWS, kinds)):
        mine = results[at * options.runs : (at + 1) * options.runs]
        metrics = [result.metrics for result in mine]
        fell = sum(values["falls"] > 0 for values in metrics)
        print(f"| {row.name} | type {kind} | {row.tell(metrics)} | {fell} of {len(mine)} | {row.league} |")
        if options.keep:
            _keep(options.keep, f"{at + 1:02d}-{row.motion}", mine)
    return 0


def _motion_options(row: _Row, kind: int, options: argparse.Namespace, seed: int) -> dict[str, Any]:
    return {
        "motion": row.motion, "seconds": row.seconds, **row.options, "type": kind, "number": 1,
        "noise": options.noise, "measure": "all", "picture": bool(options.keep) and seed == 1,
    }  # fmt: skip


def _keep(directory: Path, name: str, results: Sequence[Result]) -> None:
    directory.mkdir(parents=True, exist_ok=True)
    rows = [dict(result.figures or {}) for result in results]
    picture = rows[0].pop("picture", None)
    if picture:
        (directory / f"{name}.svg").write_text(picture, encoding="utf-8")
    lines = [",".join(rows[0])] + [",".join(str(row[column]) for column in rows[0]) for row in rows]
    (directory / f"{name}.csv").write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    command = {"play": measure_play, "motions": motion_report}[sys.argv[1]]
    sys.exit(
        report_errors(
            lambda: command(sys.argv[2:]),
            f"scripts/{'measure-play' if command is measure_play else 'motion-report'}",
        )
    )
