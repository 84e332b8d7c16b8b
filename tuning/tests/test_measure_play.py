"""The tables of scripts/measure-play, out of results that are made up."""

import re

import pytest

from tuning import measure_play, paths
from tuning.configs import Configs, disturbed, read_directory, read_value
from tuning.errors import TuneError
from tuning.evaluation import Result, Run


@pytest.fixture
def played(monkeypatch: pytest.MonkeyPatch) -> list[Run]:
    """The runs that were asked for. Number 9 scores with even seeds after 40 s and more, others never; on the left a half is
    won 2 : 0 with even seeds and drawn with odd ones, on the right it is lost 0 : 1."""
    runs: list[Run] = []

    def result(run: Run) -> Result:
        even = run.seed % 2 == 0
        scored = even and (run.options.get("number") == 9 or run.options.get("side") == "left")
        lost = run.options.get("side") == "right"
        metrics = {
            "scored": float(scored),
            "first_goal": 40.0 + run.seed if scored else 200.0,
            "goals": 2.0 * scored,
            "conceded": float(lost),
            "won": float(scored),
            "lost": float(lost),
            "falls_per_minute": 0.1 * run.seed,
            "outside": 3.0,
        }
        report = {"simulated_seconds": 40.0, "players": [{"late_answers": run.seed}]}
        return Result(metrics, "made up", figures={"report": report})

    def carry_out(options: object, asked: list[Run]) -> list[Result]:
        runs.extend(asked)
        return [result(run) for run in asked]

    monkeypatch.setattr(measure_play, "carry_out", carry_out)
    return runs


def table(text: str) -> list[list[str]]:
    """The cells of each line but the rule below the heads."""
    lines = [line for line in text.splitlines() if line.startswith("|") and "---" not in line]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines]


def test_strikers_are_summed_up_by_number_and_together(
    played: list[Run], capsys: pytest.CaptureFixture[str]
) -> None:
    words = ["strikers", "--numbers", "9,10", "--seeds", "4", "--first-seed", "2"]
    assert measure_play.measure_play(words) == 0
    out = capsys.readouterr().out
    assert "200 s of game time, seeds 2 to 5" in out
    assert [(run.kind, run.options["number"], run.seed) for run in played] == [
        ("striker", number, seed) for number in (9, 10) for seed in (2, 3, 4, 5)
    ]
    assert all(run.options["kick_off"] == "auto" and "real_time" not in run.options for run in played)
    nine, ten, both = table(out)[1:]
    # 42, 44 and twice none: half of the runs never score, so there is no median. 2, 0, 2, 0: a standard
    # deviation of sqrt(4 / 3), and half of it over four runs.
    assert nine == ["9", "2 of 4", "-, 42 to 44 s", "1.00 ± 0.58", "0.35", "3.0"]
    assert ten[1:4] == ["0 of 4", "-", "0.00 ± 0.00"]
    assert both[:2] == ["all", "2 of 8"]


def test_the_median_first_goal_counts_runs_without_one_as_late(
    played: list[Run], capsys: pytest.CaptureFixture[str]
) -> None:
    words = ["strikers", "--numbers", "9", "--seeds", "3", "--first-seed", "2"]
    assert measure_play.measure_play(words) == 0
    rows = table(capsys.readouterr().out)
    assert len(rows) == 2  # one number: nothing to sum up
    assert rows[1][1:3] == ["2 of 3", "44.0 s, 42 to 44 s"]


def test_in_real_time_messages_get_lost_and_late_answers_are_counted(
    played: list[Run], capsys: pytest.CaptureFixture[str]
) -> None:
    words = ["strikers", "--numbers", "9", "--seeds", "2", "--first-seed", "1", "--real-time", "--lost", "1"]
    assert measure_play.measure_play(words) == 0
    assert all(run.options["real_time"] and run.options["lost"] == 1 for run in played)
    out = capsys.readouterr().out
    assert "in real time, 1 % of the messages lost" in out
    # 1 + 2 of 2 * 2000 cycles
    assert "Late answers: 0.07 % of the cycles." in out


def test_each_draw_of_gaits_that_are_off_is_played_with_every_seed(
    played: list[Run], shipped: Configs, capsys: pytest.CaptureFixture[str]
) -> None:
    words = ["strikers", "--numbers", "9", "--seeds", "2", "--off", "2", "--draws", "3"]
    assert measure_play.measure_play(words) == 0
    assert "gaits off by 2 %, 3 draws" in capsys.readouterr().out
    assert len(played) == 6
    speeds = {read_value(run.configs, "all", "omniWalk", "omniwalk", "speed")[0] for run in played}
    speed = float(read_value(shipped, "all", "omniWalk", "omniwalk", "speed")[0])
    assert {round(float(word) / speed, 3) for word in speeds} <= {0.98, 1.02}
    assert len({run.configs["omniWalk.conf"] for run in played}) == 3
    assert {run.configs["Formation.conf"] for run in played} == {shipped["Formation.conf"]}


def test_halves_are_summed_up_by_side_and_together(
    played: list[Run], capsys: pytest.CaptureFixture[str]
) -> None:
    assert measure_play.measure_play(["halves", "--seeds", "4", "--first-seed", "2"]) == 0
    out = capsys.readouterr().out
    assert "Halves of 300 s against eleven that stand, seeds 2 to 5" in out
    assert [(run.kind, run.options["side"], run.seed) for run in played] == [
        ("still", side, seed) for side in ("left", "right") for seed in (2, 3, 4, 5)
    ]
    left, right, both = table(out)[1:]
    assert left == ["left", "2", "2", "0", "4 : 0", "1.00 ± 0.58 (0 to 2)", "0.35 (0.20 to 0.50)"]
    assert right[1:5] == ["0", "0", "4", "0 : 4"]
    assert both[:5] == ["both", "2", "2", "4", "4 : 4"]


def test_halves_take_rivals_by_their_name_or_their_directory(
    played: list[Run], shipped: Configs, capsys: pytest.CaptureFixture[str]
) -> None:
    for team in ("first-values", str(paths.CONFIGS)):
        assert measure_play.measure_play(["halves", "--seeds", "1", "--side", "left", "--against", team]) == 0
    first, second = played
    assert first.kind == second.kind == "match"
    assert first.rivals == read_directory(paths.ROOT / "tuning" / "rivals" / "first-values")
    assert first.rivals != shipped
    assert second.rivals == first.configs == shipped
    with pytest.raises(
        TuneError, match="neither 'still', nor one of tuning/rivals .first-values., nor a directory"
    ):
        measure_play.measure_play(["halves", "--against", "nobody"])


@pytest.mark.parametrize(
    "words, told",
    [
        (["strikers", "--lost", "1"], "--lost needs --real-time"),
        (["strikers", "--numbers", "9,12"], "takes numbers from 1 to 11"),
        (["strikers", "--numbers", "9,9"], "takes numbers from 1 to 11"),
        (["strikers", "--off", "nan"], "takes a number from 0 to 50"),
        (["strikers", "--seeds", "0"], "takes 1 or more"),
        (["halves", "--duration", "601"], "takes a number from 1 to 600"),
    ],
)
def test_options_that_make_no_sense_are_refused(
    words: list[str], told: str, played: list[Run], capsys: pytest.CaptureFixture[str]
) -> None:
    with pytest.raises(SystemExit) as refused:
        measure_play.measure_play(words)
    assert refused.value.code == 2
    assert told in re.sub(r"\s+", " ", capsys.readouterr().err)
    assert not played


def test_disturbed_values_keep_all_but_the_numbers_of_their_files() -> None:
    configs = {
        "omniWalk.conf": "# step = 1\n[omniwalk]\nXankle = 1 -2 0  4 # 5 mm\n",
        "overlays/number-9/omniWalk.conf": "[omniwalk]\nspeed = 10\n",
        "Formation.conf": "[Beam]\np9 = 1 2 3\n",
    }
    off = disturbed(configs, ["omniWalk"], 0.1, 1)
    assert off["Formation.conf"] == configs["Formation.conf"]
    assert re.fullmatch(
        r"# step = 1\n\[omniwalk\]\nXankle = (0.9|1.1) -(1.8|2.2) -?0  (3.6|4.4) # 5 mm\n",
        off["omniWalk.conf"],
    )
    assert off["overlays/number-9/omniWalk.conf"] in ("[omniwalk]\nspeed = 9\n", "[omniwalk]\nspeed = 11\n")
    assert disturbed(configs, ["omniWalk"], 0.1, 1) == off
    assert any(disturbed(configs, ["omniWalk"], 0.1, seed) != off for seed in range(2, 9))
