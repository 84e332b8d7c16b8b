"""scripts/motion-report: what every motion of the player does in the arena, as a Markdown table."""

import argparse
import statistics
import sys
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

from tuning import paths
from tuning.cli import add_worker_options, report_errors
from tuning.configs import read_directory
from tuning.evaluation import Metrics, Result, Run
from tuning.measure import carry_out


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
    results = carry_out(options, runs)
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
    sys.exit(report_errors(motion_report, "scripts/motion-report"))
