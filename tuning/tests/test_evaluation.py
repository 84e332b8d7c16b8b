"""Runs of the real player."""

import os
import re
import signal
import subprocess
import sys
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

import pytest

from tuning import paths
from tuning.configs import Configs, set_value
from tuning.evaluation import TEAM, Run, evaluate, set_plays_script
from tuning.scenarios import KINDS, read_scenario
from tuning.stage import RunFailed, Stage


def first_run(base: Configs, kind: str, seed: int = 3, **options) -> Run:
    scenario = read_scenario(kind, {"kind": kind, **options})
    run = scenario.runs(base, seed)[0]
    return Run(run.kind, run.options, seed, base, base if KINDS[kind].has_rivals else None)


@contextmanager
def busy_machine() -> Iterator[None]:
    """Twice as much to do as there are cores."""
    command = [sys.executable, "-c", "while True: pass"]
    idlers = [subprocess.Popen(command) for _ in range(2 * (os.cpu_count() or 1))]
    try:
        yield
    finally:
        for idler in idlers:
            idler.kill()
            idler.wait()


SHORT = [
    ("kick-off", {"duration": 5}),
    ("striker", {"duration": 8, "placed": True}),
    ("still", {"duration": 4, "players": [9, 10], "rivals": 2}),
    ("match", {"duration": 4, "players": [9, 11], "rivals": [10, 11], "set_plays": 2}),
    ("course", {"seconds": 8}),
    ("course", {"seconds": 8, "reach": 0.15, "stops": False}),
    ("turn", {"seconds": 3}),
    ("get-up", {"seconds": 4}),
]


@pytest.mark.parametrize("kind, options", SHORT, ids=str)
def test_the_same_seed_gives_the_same_figures_whatever_the_load(
    base: Configs, kind: str, options: dict
) -> None:
    run = first_run(base, kind, **options)
    result = evaluate(run, details=True)
    assert result.failure is None, result.outputs
    assert set(result.metrics) == set(KINDS[kind].metrics)
    with busy_machine():
        again = evaluate(run, details=True)
    assert again.figures == result.figures
    assert again.metrics == result.metrics


def test_in_real_time_messages_can_get_lost(shipped: Configs) -> None:
    run = first_run(shipped, "kick-off", duration=3)
    assert evaluate(run).metrics["touched"] == 1
    deaf = Run(run.kind, {**run.options, "real_time": True, "lost": 100, "report": True}, run.seed, shipped)
    result = evaluate(deaf, details=True)
    assert result.metrics["touched"] == 0
    assert result.seconds["wall"] > 8  # 5 s before the kick-off
    assert result.figures["report"]["players"][0]["late_answers"] < 10


def test_set_plays_are_ours_at_places_drawn_by_the_seed() -> None:
    kinds = set()
    for seed in range(20):
        left = set_plays_script(seed, "left", 30, 100).splitlines()
        assert [int(line.split()[0]) for line in left] == [250, 252, 1750, 1752, 3250, 3252, 4750, 4752]
        for placing, calling in zip(left[::2], left[1::2], strict=True):
            x, y = map(float, re.search(r"\(pos (\S+) (\S+) 0.042\)", placing).groups())
            kind = re.fullmatch(r"\d+ \(playMode (KickIn_Left|(?:free|corner)_kick_left)\)", calling)[1]
            kinds.add(kind)
            assert abs(x) <= 10 or (kind == "corner_kick_left" and x == 14.9)
            assert abs(y) <= 7 if kind == "free_kick_left" else abs(y) == 9.9
        # The same from the other side: turned by half a turn.
        right = set_plays_script(seed, "right", 30, 100)
        assert right.count("_right)") + right.count("_Right)") == 4
        assert [-float(n) for n in re.findall(r"pos (\S+)", "\n".join(left))] == [
            float(n) for n in re.findall(r"pos (\S+)", right)
        ]
    assert len(kinds) == 3


@pytest.mark.parametrize("kind", ["KickIn_Right", "free_kick_right", "corner_kick_right"])
def test_a_called_set_play_stops_play(base: Configs, kind: str) -> None:
    seed = next(seed for seed in range(1, 99, 2) if kind in set_plays_script(seed, "right", 30, 6))
    run = first_run(base, "still", seed=seed, duration=6, players=[9], rivals=1, set_plays=30)
    # Play goes on for the two cycles in which the ball is put there.
    assert evaluate(run, details=True).figures["play_seconds"] < 0.2


@pytest.mark.parametrize("seed, side", [(2, "left"), (3, "right")])
def test_against_still_robots_both_sides_are_played(base: Configs, seed: int, side: str) -> None:
    run = first_run(base, "still", seed=seed, duration=2, players=[9], rivals=1)
    figures = evaluate(run, details=True).figures
    assert figures["teams"][side]["name"] == TEAM


def test_another_seed_or_other_values_give_another_match(base: Configs) -> None:
    run = first_run(base, "striker", duration=8, placed=True)
    figures = evaluate(run, details=True).figures
    assert (
        evaluate(first_run(base, "striker", seed=4, duration=8, placed=True), details=True).figures != figures
    )
    slower = dict(base)
    set_value(slower, "all", "omniWalk", "omniwalk", "speed", ["0.3"])
    assert slower != base
    assert evaluate(Run(run.kind, run.options, run.seed, slower), details=True).figures != figures


def test_a_motion_has_a_numbers_own_values_only_where_it_names_the_number(base: Configs) -> None:
    """Players who never set a foot forward walk no course."""
    standing = dict(base)
    set_value(standing, "number-3", "omniWalk", "omniwalk", "speed", ["-0.428571"])

    def pace(number: int | None) -> float:
        run = first_run(standing, "course", seconds=15, number=number, types=[4])
        return evaluate(Run(run.kind, run.options, 3, standing)).metrics["pace"]

    assert pace(3) < 0.05
    assert pace(None) > 0.1


def test_with_an_odd_seed_the_candidate_plays_on_the_right(base: Configs) -> None:
    for seed, side in ((4, "left"), (5, "right")):
        figures = evaluate(
            first_run(base, "match", seed, duration=2, players=[9], rivals=[10]), details=True
        ).figures
        assert figures and figures["teams"][side]["name"] == "Quolnaris"
        assert [player["number"] for player in figures["players"] if player["side"] == side] == [9]


def test_values_that_end_the_player_make_a_failed_run(base: Configs) -> None:
    broken = dict(base)
    broken["omniWalk.conf"] = base["omniWalk.conf"].replace("speed =", "sped =")
    result = evaluate(Run("striker", first_run(base, "striker", duration=20).options, 1, broken))
    assert result.failure and "player-Quolnaris-9 was ended by signal 6" in result.failure
    assert result.outputs and "speed" in result.outputs["player-Quolnaris-9"]


def test_a_player_that_is_killed_makes_a_failed_run(base: Configs) -> None:
    def kill() -> None:
        for _ in range(200):
            time.sleep(0.05)
            for child in children_of(os.getpid()):
                try:
                    words = Path(f"/proc/{child}/cmdline").read_bytes()
                except OSError:  # it has just ended
                    continue
                if b"--number" in words:
                    time.sleep(0.3)
                    os.kill(child, signal.SIGKILL)
                    return

    others = children_of(os.getpid())  # such as multiprocessing's, of tests before
    killer = threading.Thread(target=kill)
    killer.start()
    result = evaluate(first_run(base, "striker", duration=300))
    killer.join()
    assert result.failure == "player-Quolnaris-9 was ended by signal 9"
    assert set(children_of(os.getpid())) <= set(others)


def children_of(pid: int) -> list[int]:
    found = []
    for path in Path("/proc").glob("[0-9]*/stat"):
        try:
            words = path.read_text().rsplit(")", 1)[1].split()
        except OSError:
            continue
        if int(words[1]) == pid and words[0] != "Z":
            found.append(int(path.parent.name))
    return found


def test_nothing_outlives_a_worker_that_is_killed(tmp_path: Path) -> None:
    script = tmp_path / "worker.py"
    script.write_text(
        "import sys, time\n"
        f"sys.path.insert(0, {str(paths.ROOT)!r})\n"
        "from tuning.stage import Stage\n"
        "with Stage() as stage:\n"
        "    for name in ('one', 'two'):\n"
        "        print(stage.start(name, ['sleep', '600']).process.pid, flush=True)\n"
        "    time.sleep(600)\n"
    )
    with subprocess.Popen([sys.executable, script], stdout=subprocess.PIPE, text=True) as worker:
        assert worker.stdout
        children = [int(worker.stdout.readline()) for _ in range(2)]
        time.sleep(0.3)
        worker.kill()
    for _ in range(100):
        if not any(Path(f"/proc/{child}").exists() for child in children):
            return
        time.sleep(0.05)
    pytest.fail("a program runs on without its worker")


def test_a_program_that_hangs_is_ended() -> None:
    with Stage() as stage:
        program = stage.start("sleeper", ["sleep", "600"])
        with pytest.raises(RunFailed, match="sleeper had not ended"):
            stage.wait_for(program, limit=0.2)
    assert program.status == -signal.SIGKILL


def test_a_missing_program_is_told(base: Configs, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    from tuning.errors import TuneError

    monkeypatch.setenv(paths.PROGRAMS_VARIABLE, str(tmp_path))
    with pytest.raises(TuneError, match="arena is missing"):
        evaluate(first_run(base, "kick-off"))
