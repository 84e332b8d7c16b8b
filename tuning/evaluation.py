"""One run of the real player: values, scenario and seed go in, figures come out.

`evaluate` is what workers carry out. It needs the built project on the worker's machine and nothing of
the driver's but the request.
"""

import csv
import errno
import hashlib
import json
import math
import os
import random
import re
import shutil
import subprocess
import tempfile
import time
from collections.abc import Callable
from dataclasses import asdict, dataclass
from pathlib import Path
from typing import Any

from tuning import paths
from tuning.configs import Configs, without_numbers, write_directory
from tuning.stage import RunFailed, Stage

CYCLE = 0.02  # s
TEAM = "Quolnaris"
# The arena takes teams that come together in the order of their names, the first one on the left.
RIVALS_ON_THE_RIGHT = "Rivals"
RIVALS_ON_THE_LEFT = "Opponents"
# Silence after which the arena goes on without a player, s: far longer than any load may take. Such a
# run has failed.
_SILENCE = 60
# Cycles until players are in their teams and know where they are; then a script may begin.
_READY = 250
_KEPT_DEPLOYMENTS = 16
# With less room on the disk than this, bytes, a failure says nothing about the values.
_LEAST_SPACE = 8 << 20

Metrics = dict[str, float]


@dataclass(frozen=True)
class Run:
    """What determines a result, beside the version of the programs."""

    kind: str
    options: dict[str, Any]
    seed: int
    configs: Configs
    rivals: Configs | None = None  # of the other team, where it plays

    def key(self, version: str) -> str:
        """The name of the result."""
        text = json.dumps([version, asdict(self)], sort_keys=True)
        return "run-" + hashlib.sha256(text.encode()).hexdigest()[:40]


@dataclass
class Result:
    metrics: Metrics
    version: str
    failure: str | None = None  # why there are no metrics
    outputs: dict[str, str] | None = None  # what the programs wrote, of a failed run
    seconds: dict[str, float] | None = None  # of processor time, by program; of the wall clock
    figures: dict[str, Any] | None = None  # all that is known of a match, where it was asked for


def evaluate(run: Run, details: bool = False) -> Result:
    """Carries a run out. A crash of its programs makes a failed result; other errors are raised."""
    version = paths.version()
    began, cpu_began = time.monotonic(), _own_seconds()
    with Stage(_workspace()) as stage:
        try:
            metrics, figures = _KINDS[run.kind](run, stage)
        except RunFailed as failure:
            stage.end()
            if shutil.disk_usage(stage.directory).free < _LEAST_SPACE:
                raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC), str(stage.directory)) from failure
            return Result({}, version, str(failure), stage.outputs())
        stage.end()
        seconds: dict[str, float] = {}
        for program in stage.programs:
            name = program.name.split("-")[0]
            seconds[name] = seconds.get(name, 0.0) + program.seconds
        programs = sum(program.seconds for program in stage.programs)
        seconds["engine"] = _own_seconds() - cpu_began - programs
        seconds["wall"] = time.monotonic() - began
    if not all(math.isfinite(value) for value in metrics.values()):
        return Result({}, version, f"a metric is no number: {metrics}")
    return Result(metrics, version, seconds=seconds, figures=figures if details else None)


def _own_seconds() -> float:
    """Processor time of this process and of all that it has waited for."""
    return sum(os.times()[:4])


# --- Directories -----------------------------------------------------------------------------------

_deployed: dict[str, Path] = {}


def _workspace() -> Path:
    """Where this worker keeps what it needs for a while."""
    try:
        from distributed import get_worker

        return Path(get_worker().local_directory)
    except (ImportError, ValueError):
        return Path(tempfile.gettempdir())


def _deploy(configs: Configs, players: dict[int, int]) -> Path:
    """Lays out each player's own configuration; `players` maps numbers to types. The runs of one
    candidate share it."""
    name = hashlib.sha256(json.dumps([configs, sorted(players.items())]).encode()).hexdigest()[:20]
    place = _deployed.get(name)
    if place is not None and place.is_dir():
        return place
    while len(_deployed) >= _KEPT_DEPLOYMENTS:
        shutil.rmtree(_deployed.pop(next(iter(_deployed))), ignore_errors=True)
    place = Path(tempfile.mkdtemp(prefix="configs-", dir=_workspace()))
    source = place / "source"
    write_directory(configs, source)
    words = [f"{number}:{kind}" for number, kind in players.items()]
    done = subprocess.run([paths.DEPLOY, source, place, *words], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        shutil.rmtree(place, ignore_errors=True)
        raise RunFailed(done.stderr.strip() or f"{paths.DEPLOY.name} failed")
    _deployed[name] = place
    return place


# --- Matches ---------------------------------------------------------------------------------------


@dataclass(frozen=True)
class _Team:
    name: str
    configs: Configs | None  # None: a team that only stands
    players: dict[int, int]  # type by number


def _types(numbers: list[int], given: int | None) -> dict[int, int]:
    return {n: paths.team_types()[n] if given is None else given for n in numbers}


def _play(stage: Stage, teams: list[_Team], run: Run, script: str = "") -> dict[str, Any]:
    """Plays a match and returns what match-figures tells."""
    duration = run.options["duration"]
    agents = sum(len(team.players) for team in teams)
    programs = paths.programs()
    options: list[str | Path] = ["--duration", str(duration), "--wait-agents", str(agents)]
    if script:
        (stage.directory / "script").write_text(script, encoding="ascii")
        options += ["--trainer-script", "script"]
    else:
        options += ["--auto-kick-off"]
    if run.options.get("report"):
        options += ["--report", "report.json"]
    if run.options.get("real_time"):
        options += ["--real-time", "--lose", str(run.options["lost"])]
    arena = _start_arena(stage, run.seed, *options, "--record", "match.rec")
    port = _ports(stage)[0]
    links = 0
    for team in teams:
        deployment = _deploy(team.configs, team.players) if team.configs is not None else None
        if deployment is None:
            count = str(len(team.players))
            command = [programs / "still-players", "--port", str(port), "--players", count]
            stage.start("still", [*command, "--team", team.name])
            links += len(team.players)
            stage.wait_for_links(port, links)
            continue
        for number, kind in team.players.items():
            directory = stage.directory / f"{team.name}-{number}"
            directory.mkdir()
            (directory / "Configs").symlink_to(deployment / str(number) / "Configs")
            command = [programs / "quolnaris", "--player-port", str(port), "--team", team.name]
            command += ["--number", str(number), "--type", str(kind)]
            stage.start(f"player-{team.name}-{number}", command, directory)
            links += 1
            stage.wait_for_links(port, links)
    stage.wait_for(arena, limit=300 + duration * agents)
    if "silent, not waited for" in arena.output.read_text(errors="replace"):
        raise RunFailed("a player was silent for too long")
    figures = _figures(stage)
    if run.options.get("report"):
        figures["report"] = json.loads((stage.directory / "report.json").read_text(encoding="utf-8"))
    return figures


def _start_arena(stage: Stage, seed: int, *options: str | Path):  # type: ignore[no-untyped-def]
    # One thread: there is a run for each core already.
    usual = ("--agent-port", "0", "--monitor-port", "0", "--agent-timeout", str(_SILENCE), "--threads", "1")
    return stage.start("arena", [paths.programs() / "arena", *usual, "--seed", str(seed), *options])


def _ports(stage: Stage) -> tuple[int, int]:
    """Of the arena for players and for trainers, as soon as it listens."""
    line = stage.read_line_with(stage.programs[0], "agents at port")
    match = re.search(r"agents at port (\d+), monitors at port (\d+)", line)
    if not match:
        raise RunFailed("the arena did not tell its ports")
    return int(match[1]), int(match[2])


def _figures(stage: Stage) -> dict[str, Any]:
    command = [paths.programs() / "match-figures", "--json", stage.directory / "match.rec"]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise RunFailed(done.stderr.strip() or "match-figures failed")
    return json.loads(done.stdout)


def _kick_off(run: Run) -> str:
    """A script that kicks off as soon as players can be ready; "" leaves it to the referee."""
    return "" if run.options["kick_off"] == "auto" else f"{_READY} (kickOff Left)\n"


def _side(figures: dict[str, Any], side: str) -> list[dict[str, Any]]:
    return [player for player in figures["players"] if player["side"] == side]


def _team_metrics(figures: dict[str, Any], side: str, duration: float) -> Metrics:
    """What a team did, out of the figures of its match."""
    other = "right" if side == "left" else "left"
    own = _side(figures, side)
    scored = [goal["time"] for goal in figures["goals"] if goal["side"] == side]
    touch = figures["first_touch"]
    minutes = max(figures["seconds"], CYCLE) / 60 * max(len(own), 1)
    score = {name: figures["teams"][name]["score"] for name in ("left", "right")}
    falls = sum(player["falls"] for player in own)
    difference = score[side] - score[other]
    forward = figures["teams"][side]["ball_forward"]
    return {
        "first_touch": touch["time"] if touch else duration,
        "touched": float(bool(touch) and touch["side"] == side),
        "first_goal": scored[0] if scored else duration,
        "scored": float(bool(scored)),
        "goals": float(score[side]),
        "conceded": float(score[other]),
        "goal_difference": float(difference),
        "won": float(difference > 0),
        "lost": float(difference < 0),
        "falls": float(falls),
        "falls_per_minute": falls / minutes,  # and player
        "stand_ups": float(sum(player["stand_ups"] for player in own)),
        "down": sum(player["down"] for player in own) / max(len(own), 1),
        "outside": sum(player["outside"] for player in own) / max(len(own), 1),
        "walked": sum(player["walked"] for player in own) / max(len(own), 1),
        "fouls": float(sum(sum(player["fouls"].values()) for player in own)),
        "ball_metres": figures["ball_metres"],
        "ball_forward": forward,
        "ball_progress": forward - figures["teams"][other]["ball_forward"],
        "crowd": figures["teams"][side]["crowd"],
    }


def _striker(run: Run, stage: Stage) -> tuple[Metrics, dict[str, Any]]:
    options = run.options
    number, kind = options["number"], options["type"]
    script = _kick_off(run)
    if options["placed"]:
        script = _placing_script(run.seed, number)
    team = _Team(TEAM, run.configs, _types([number], kind))
    figures = _play(stage, [team], run, script)
    return _team_metrics(figures, "left", options["duration"]), figures


def _placing_script(seed: int, number: int) -> str:
    """Ball and robot at places drawn by the seed, the robot up to 8 m from the ball, looking anywhere."""
    draw = random.Random(seed)
    ball = (draw.uniform(-8, 10), draw.uniform(-7, 7))
    bearing, way = draw.uniform(0, 2 * math.pi), draw.uniform(1.0, 8.0)
    x = min(max(ball[0] + way * math.cos(bearing), -14), 14)
    y = min(max(ball[1] + way * math.sin(bearing), -9), 9)
    place_ball = f"(ball (pos {ball[0]:.3f} {ball[1]:.3f} 0.042)(vel 0 0 0))"
    turn = draw.uniform(-180, 180)
    place_robot = f"(agent (unum {number})(team Left)(move {x:.3f} {y:.3f} 0.4 {turn:.1f}))"
    # A beam of the player may still be under way in the first of these cycles.
    return f"{_READY} (playMode PlayOn){place_ball}{place_robot}\n" f"{_READY + 3} {place_robot}\n"


def _kick_off_touch(run: Run, stage: Stage) -> tuple[Metrics, dict[str, Any]]:
    number = run.options["number"]
    team = _Team(TEAM, run.configs, _types([number], run.options["type"]))
    figures = _play(stage, [team], run, _kick_off(run))
    return _team_metrics(figures, "left", run.options["duration"]), figures


def _sides(run: Run) -> tuple[str, str, str]:
    """The candidate's side, the other one, and a rivals' name with which the arena gives them these sides."""
    side = run.options["side"]
    if side == "right" or (side == "both" and run.seed % 2 == 1):
        return "right", "left", RIVALS_ON_THE_LEFT
    return "left", "right", RIVALS_ON_THE_RIGHT


def set_plays_script(seed: int, side: str, pause: float, duration: float) -> str:
    """Calls a set play of ours every `pause` seconds, its kind and the ball's place drawn by the seed."""
    draw = random.Random(seed)
    sign = 1 if side == "left" else -1
    lines = []
    for number in range(math.ceil(duration / pause)):
        mode = draw.choice(("KickIn", "free_kick", "corner_kick"))
        x, y = draw.uniform(-10, 10), draw.uniform(-7, 7)
        if mode != "free_kick":
            y = math.copysign(9.9, y)
        if mode == "corner_kick":
            x = 14.9
        cycle = _READY + round(number * pause / CYCLE)
        # Who set the mode first would have the ball put back to where it was.
        lines.append(f"{cycle} (playMode PlayOn)(ball (pos {sign * x:.3f} {sign * y:.3f} 0.042)(vel 0 0 0))")
        lines.append(f"{cycle + 2} (playMode {mode}_{side.capitalize() if mode == 'KickIn' else side})")
    return "\n".join(lines) + "\n"


def _play_rivals(run: Run, stage: Stage, rivals: _Team, side: str) -> dict[str, Any]:
    """The figures of the candidate against `rivals`."""
    team = _Team(TEAM, run.configs, _types(run.options["players"], None))
    script = _kick_off(run)
    # Where a run says nothing of set plays they come as they come.
    if pause := run.options.get("set_plays", 0):
        script = set_plays_script(run.seed, side, pause, run.options["duration"])
    figures = _play(stage, [team, rivals], run, script)
    if figures["teams"][side]["name"] != TEAM:
        raise RunFailed(f"the candidate does not play on the {side}")
    return figures


def _still(run: Run, stage: Stage) -> tuple[Metrics, dict[str, Any]]:
    options = run.options
    side, _, name = _sides(run)
    rivals = _Team(name, None, _types(list(range(1, options["rivals"] + 1)), None))
    figures = _play_rivals(run, stage, rivals, side)
    return _team_metrics(figures, side, options["duration"]), figures


def _match(run: Run, stage: Stage) -> tuple[Metrics, dict[str, Any]]:
    options = run.options
    side, other, name = _sides(run)
    rivals = _Team(name, run.rivals, _types(options["rivals"], None))
    figures = _play_rivals(run, stage, rivals, side)
    metrics = _team_metrics(figures, side, options["duration"])
    theirs = _team_metrics(figures, other, options["duration"])
    metrics["rival_falls_per_minute"] = theirs["falls_per_minute"]
    return metrics, figures


# --- Motions ---------------------------------------------------------------------------------------

_ANY_NUMBER = 2  # of a field player, where no number's own values are asked for


def _motion(run: Run, stage: Stage) -> tuple[Metrics, dict[str, Any]]:
    """One motion of the player's own code; the seed draws the error on its joints' speeds."""
    options = run.options
    configs, number = run.configs, options["number"]
    if number is None:
        configs, number = without_numbers(configs), _ANY_NUMBER
    deployment = _deploy(configs, {number: options["type"]})
    arena = _start_arena(stage, run.seed, "--ground-truth")
    agents, trainers = _ports(stage)
    command: list[str | Path] = [paths.programs() / "motion", options["motion"], "--csv"]
    command += ["--agent-port", str(agents), "--trainer-port", str(trainers)]
    command += ["--seed", str(run.seed), "--number", str(number)]
    for name in ("type", "seconds", "lead", "angle", "speed", "noise", "reach"):
        if options.get(name) is not None:
            command += [f"--{name}", str(options[name])]
    if not options.get("stops", True):
        command.append("--no-stops")
    if options.get("picture"):
        command += ["--svg", str(stage.directory / "motion.svg")]
    motion = stage.start("motion", command, deployment / str(number))
    stage.wait_for(motion, limit=300 + 20 * options["seconds"])
    if "silent, not waited for" in arena.output.read_text(errors="replace"):
        raise RunFailed("the motion was silent for too long")
    lines = motion.output.read_text().splitlines()
    heads = [at for at, line in enumerate(lines) if line.startswith("motion,")]
    if not heads or heads[-1] + 1 >= len(lines):
        raise RunFailed("the motion told no figures")
    row = next(csv.DictReader(lines[heads[-1] : heads[-1] + 2]))
    figures: dict[str, Any] = dict(row)
    if options.get("picture"):
        figures["picture"] = (stage.directory / "motion.svg").read_text(encoding="utf-8")
    return _MEASURES[options["measure"]](row, options), figures


def _seconds_to_end(row: dict[str, str]) -> tuple[float, float]:
    """Whether the motion came to its end, and when, with the length of the run for never."""
    cycles = int(row["cycles_to_end"])
    return float(cycles >= 0), cycles * CYCLE if cycles >= 0 else float(row["seconds"])


def _course(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    falls = {name: float(row[f"falls_{name}"]) for name in ("walking", "stopping", "starting")}
    seconds, metres = float(row["seconds"]), float(row["metres"])
    return {
        "pace": metres / max(seconds, CYCLE),
        "points": float(row["points"]),
        "seconds": seconds,
        "lost": float(row["way"]) - metres,
        "falls": sum(falls.values()),
        **{f"falls_{name}": count for name, count in falls.items()},
    }


def _turn(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    done, seconds = _seconds_to_end(row)
    return {
        "done": done,
        "seconds": seconds,
        "error": abs(float(row["turned"]) - options["angle"]),
        "drift": float(row["distance"]),
        "turn_rate": abs(float(row["turn_rate"])),
        "falls": float(row["falls"]),
        "ball_distance": float(row["ball_distance"]),
    }


# By motion: the column of its speed, and the sign of where it should go.
_GAIT_WAYS = {
    "side-left": ("left_speed", 1),
    "side-right": ("left_speed", -1),
    "omni-left": ("left_speed", 1),
    "omni-right": ("left_speed", -1),
    "omni-back": ("forward_speed", -1),
    "backwalk": ("forward_speed", -1),
    "forwalk": ("forward_speed", 1),
    "omni": ("forward_speed", 1),
    "omni-long": ("forward_speed", 1),
}


def _gait(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    along, sign = _GAIT_WAYS[options["motion"]]
    across = "forward_speed" if along == "left_speed" else "left_speed"
    return {
        "speed": sign * float(row[along]),
        "stray": abs(float(row[across])),
        "turn_rate": abs(float(row["turn_rate"])),
        "falls": float(row["falls"]),
    }


def _kick(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    distance = float(row["ball_distance"])
    hit = distance > 1
    return {
        "hit": float(hit),
        "distance": distance,
        "direction": abs(float(row["ball_direction"])) if hit else 0.0,
        "falls": float(row["falls"]),
        "stands": float(float(row["end_tilt"]) < 30),
    }


def _get_up(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    done, seconds = _seconds_to_end(row)
    return {
        "stands": float(float(row["end_tilt"]) < 30),
        "done": done,
        "seconds": seconds,
        "falls": float(row["falls"]),
    }


def _all(row: dict[str, str], options: dict[str, Any]) -> Metrics:
    """Every column that is a number."""
    return {name: float(text) for name, text in row.items() if name not in ("motion", "source")}


_MEASURES: dict[str, Callable[[dict[str, str], dict[str, Any]], Metrics]] = {
    "all": _all,
    "course": _course,
    "turn": _turn,
    "gait": _gait,
    "kick": _kick,
    "get-up": _get_up,
}


_KINDS: dict[str, Callable[[Run, Stage], tuple[Metrics, dict[str, Any]]]] = {
    "striker": _striker,
    "kick-off": _kick_off_touch,
    "still": _still,
    "match": _match,
    "motion": _motion,
}
