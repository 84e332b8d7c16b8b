"""scripts/measure-play: what whole matches come to, as Markdown tables.

Without a word in front it tells every figure of lone runs and of one full match; with `strikers` or `halves` it tells what
many runs come to together.
"""

import argparse
import statistics
import sys
from collections.abc import Callable, Sequence
from pathlib import Path
from typing import Any

from tuning import paths
from tuning.cli import add_worker_options, report_errors
from tuning.configs import Configs, disturbed, read_directory
from tuning.errors import TuneError
from tuning.evaluation import CYCLE, Metrics, Result, Run
from tuning.measure import carry_out

_ALL = list(range(1, 12))
# What a walk or a turn is made of.
_GAITS = ("forWalk", "backWalk", "sideWalk", "omniWalk", "omniBackWalk", "omniSideWalk", "Turn", "TAB")
# Directories of values to play against that this project keeps.
_RIVALS = paths.ROOT / "tuning" / "rivals"


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


def matches(words: Sequence[str]) -> int:
    parser = argparse.ArgumentParser(
        prog="scripts/measure-play",
        description="Plays matches of this build in the practice arena and prints their figures as Markdown tables: a lone"
        " striker against an empty goal, once for each seed, and a full match of eleven a side. What has been"
        " played before is taken from the results that are kept.",
        epilog="`scripts/measure-play strikers` sums up many lone runs, in real time and with lost messages too;"
        " `scripts/measure-play halves` sums up halves against robots that stand or against other values. Each has its"
        " own --help.",
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
    results = carry_out(options, runs)
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


# --- Many runs together ----------------------------------------------------------------------------


def _numbers(text: str) -> list[int]:
    try:
        numbers = [int(word) for word in text.split(",")]
    except ValueError:
        numbers = []
    if not numbers or not set(numbers) <= set(_ALL) or len(set(numbers)) < len(numbers):
        raise argparse.ArgumentTypeError("takes numbers from 1 to 11, as in 9,10,11")
    return numbers


def _between(low: float, high: float) -> Callable[[str], float]:
    def number(text: str) -> float:
        value = float(text)
        if not low <= value <= high:
            raise argparse.ArgumentTypeError(f"takes a number from {low:g} to {high:g}")
        return int(value) if value.is_integer() else value

    return number


def _count(text: str) -> int:
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError("takes 1 or more")
    return value


def _seeds(options: argparse.Namespace) -> range:
    return range(options.first_seed, options.first_seed + options.seeds)


def _add_seeds(parser: argparse.ArgumentParser, count: int) -> None:
    parser.add_argument("--seeds", type=_count, default=count, help=f"how many (default {count})")
    parser.add_argument(
        "--first-seed", type=int, default=9000, help="the first of them (default 9000: no search draws these)"
    )


def _mean(values: Sequence[float], digits: int) -> str:
    """With its standard error."""
    text = f"{statistics.fmean(values):.{digits}f}"
    if len(values) > 1:
        text += f" ± {statistics.stdev(values) / len(values) ** 0.5:.{digits}f}"
    return text


def _print_table(
    heads: Sequence[str],
    names: Sequence[str],
    results: Sequence[Result],
    cells: Callable[[Sequence[Result]], list[str]],
    together: str,
) -> None:
    """A row for each name, with its equal share of the results, and one for all if there are several."""
    share = len(results) // len(names)
    rows = [(name, results[at * share : (at + 1) * share]) for at, name in enumerate(names)]
    if len(names) > 1:
        rows.append((together, results))
    print(f"| {' | '.join(heads)} |\n|{'---|' * len(heads)}")
    for name, mine in rows:
        print(f"| {name} | {' | '.join(cells(mine))} |")


def _first_goal(metrics: Sequence[Metrics]) -> str:
    """Median over all runs, and the range over those that scored."""
    times = sorted(row["first_goal"] for row in metrics if row["scored"])
    never = len(metrics) - len(times)
    middle = statistics.median(times + [float("inf")] * never)
    if not times:
        return "-"
    told = "-" if middle == float("inf") else f"{middle:.1f} s"
    return f"{told}, {times[0]:.0f} to {times[-1]:.0f} s"


def _striker_cells(results: Sequence[Result]) -> list[str]:
    metrics = [result.metrics for result in results]
    return [
        f"{sum(row['scored'] for row in metrics):.0f} of {len(metrics)}",
        _first_goal(metrics),
        _mean([row["goals"] for row in metrics], 2),
        f"{statistics.fmean(row['falls_per_minute'] for row in metrics):.2f}",
        f"{statistics.fmean(row['outside'] for row in metrics):.1f}",
    ]


def _late_share(results: Sequence[Result]) -> float:
    """Percentage of the cycles before which the player had not answered the last one."""
    late = cycles = 0
    for result in results:
        assert result.figures
        report = result.figures["report"]
        late += sum(player["late_answers"] for player in report["players"])
        cycles += round(report["simulated_seconds"] / CYCLE) * len(report["players"])
    return 100 * late / cycles


def strikers(words: Sequence[str]) -> int:
    parser = argparse.ArgumentParser(
        prog="scripts/measure-play strikers",
        description="Plays lone strikers against an empty goal, kick-off by the referee, and prints what all seeds together"
        " come to: how many runs scored, when, how often (mean and its standard error), falls, and seconds more than a metre"
        " outside the pitch. With disturbances it tells how robust the values are.",
    )
    parser.add_argument(
        "--numbers", type=_numbers, default=[9, 10, 11], help="each plays alone (default 9,10,11)"
    )
    parser.add_argument("--type", type=int, choices=range(5), help="of the robot (default: by the number)")
    _add_seeds(parser, 20)
    parser.add_argument(
        "--duration", type=_between(1, 600), default=200, help="seconds of each run (default 200)"
    )
    parser.add_argument("--configs", type=Path, default=paths.CONFIGS, help="the values (Configs/)")
    parser.add_argument(
        "--off",
        type=_between(0, 50),
        default=0,
        metavar="PERCENT",
        help="every number of every gait is off by so much, up or down at random",
    )
    parser.add_argument(
        "--draws", type=_count, default=3, help="with --off: how often that is drawn, each with all seeds (3)"
    )
    parser.add_argument(
        "--real-time",
        action="store_true",
        help="50 cycles a second by the clock, as in the league: a run lasts as long as its match, its figures differ from"
        " time to time, and more --workers than cores make sense",
    )
    parser.add_argument(
        "--lost",
        type=_between(0, 100),
        default=0,
        metavar="PERCENT",
        help="with --real-time: so many of the messages get lost, either way",
    )
    add_worker_options(parser)
    options = parser.parse_args(words)
    if options.lost and not options.real_time:
        parser.error("--lost needs --real-time: in lockstep nothing gets lost")
    values = _disturbances(read_directory(options.configs), options)
    common: dict[str, Any] = {
        "type": options.type,
        "duration": options.duration,
        "kick_off": "auto",
        "placed": False,
    }
    if options.real_time:
        common |= {"real_time": True, "lost": options.lost, "report": True}
    runs = [
        Run("striker", {**common, "number": number}, seed, configs)
        for number in options.numbers
        for configs in values
        for seed in _seeds(options)
    ]
    results = carry_out(options, runs)
    print(
        f"### Lone strikers against an empty goal, {options.duration:g} s of game time{_conditions(options)}\n"
    )
    heads = ("number", "scored", "first goal: median, range", "goals", "falls a minute", "seconds outside")
    _print_table(heads, [str(number) for number in options.numbers], results, _striker_cells, "all")
    if options.real_time:
        print(f"\nLate answers: {_late_share(results):.2f} % of the cycles.")
    return 0


def _disturbances(configs: Configs, options: argparse.Namespace) -> list[Configs]:
    if not options.off:
        return [configs]
    return [disturbed(configs, _GAITS, options.off / 100, draw) for draw in range(1, options.draws + 1)]


def _conditions(options: argparse.Namespace) -> str:
    seeds = _seeds(options)
    told = [f", seeds {seeds[0]} to {seeds[-1]}"]
    if options.off:
        told.append(f", gaits off by {options.off:g} %, {options.draws} draws")
    if options.real_time:
        told.append(", in real time")
    if options.lost:
        told.append(f", {options.lost:g} % of the messages lost")
    return "".join(told)


def _half_cells(results: Sequence[Result]) -> list[str]:
    metrics = [result.metrics for result in results]
    won, lost = (int(sum(row[name] for row in metrics)) for name in ("won", "lost"))
    goals = [row["goals"] for row in metrics]
    falls = [row["falls_per_minute"] for row in metrics]
    return [
        str(won),
        str(len(metrics) - won - lost),
        str(lost),
        f"{sum(goals):.0f} : {sum(row['conceded'] for row in metrics):.0f}",
        f"{_mean(goals, 2)} ({min(goals):.0f} to {max(goals):.0f})",
        f"{statistics.fmean(falls):.2f} ({min(falls):.2f} to {max(falls):.2f})",
    ]


def _rivals(text: str) -> Configs | None:
    """None: robots that only stand."""
    if text == "still":
        return None
    kept = _RIVALS / text
    if len(Path(text).parts) == 1 and not Path(text).exists() and kept.is_dir():
        return read_directory(kept)
    if not Path(text).is_dir():
        names = ", ".join(sorted(path.name for path in _RIVALS.iterdir() if path.is_dir()))
        raise TuneError(
            f"--against {text}: neither 'still', nor one of tuning/rivals ({names}), nor a directory"
        )
    return read_directory(Path(text))


def halves(words: Sequence[str]) -> int:
    parser = argparse.ArgumentParser(
        prog="scripts/measure-play halves",
        description="Plays halves against eleven robots that only stand, or against a team with other values, and prints what"
        " they come to on either side: won, drawn, lost, goals (mean, its standard error, range) and falls a player and"
        " minute.",
    )
    parser.add_argument(
        "--against",
        default="still",
        metavar="TEAM",
        help="'still' (default), the name of a directory in tuning/rivals, as first-values, or any directory of values",
    )
    parser.add_argument(
        "--side",
        choices=("left", "right", "both"),
        default="both",
        help="ours; both: every seed on either (default)",
    )
    _add_seeds(parser, 10)
    parser.add_argument(
        "--duration", type=_between(1, 600), default=300, help="seconds of each half (default 300)"
    )
    parser.add_argument("--players", type=_numbers, default=_ALL, help="our numbers (default: all)")
    parser.add_argument("--configs", type=Path, default=paths.CONFIGS, help="our values (Configs/)")
    add_worker_options(parser)
    options = parser.parse_args(words)
    configs, rivals = read_directory(options.configs), _rivals(options.against)
    common = {"players": options.players, "duration": options.duration, "kick_off": "auto", "set_plays": 0}
    kind, others = ("still", len(_ALL)) if rivals is None else ("match", _ALL)
    sides = ("left", "right") if options.side == "both" else (options.side,)
    runs = [
        Run(kind, {**common, "rivals": others, "side": side}, seed, configs, rivals)
        for side in sides
        for seed in _seeds(options)
    ]
    results = carry_out(options, runs)
    seeds = _seeds(options)
    against = "eleven that stand" if rivals is None else f"eleven of {options.against}"
    print(f"### Halves of {options.duration:g} s against {against}, seeds {seeds[0]} to {seeds[-1]}\n")
    heads = ("side", "won", "drawn", "lost", "goals", "goals of ours", "falls a player and minute")
    _print_table(heads, sides, results, _half_cells, "both")
    return 0


_TABLES = {"strikers": strikers, "halves": halves}


def measure_play(words: Sequence[str]) -> int:
    if words and words[0] in _TABLES:
        return _TABLES[words[0]](words[1:])
    return matches(words)


if __name__ == "__main__":
    sys.exit(report_errors(lambda: measure_play(sys.argv[1:]), "scripts/measure-play"))
