import io

import pytest
from rich.console import Console

from tuning import display
from tuning.configs import Configs
from tuning.evaluation import Result, Run


def show(monkeypatch: pytest.MonkeyPatch, base: Configs, terminal: bool) -> str:
    text = io.StringIO()
    monkeypatch.setattr(
        display, "Console", lambda **_: Console(file=text, force_terminal=terminal, width=100)
    )
    with display.Display("study", planned=10, workers=2) as shown:
        shown.begin("generation 1 of 3", 4)
        shown.progress(Run("striker", {}, 7, base), Result({"goals": 1.0}, "v"))
        shown.progress(
            Run("striker", {}, 8, base), Result({}, "v", failure="the arena was ended by signal 9")
        )
        shown.standing(0.25, 1.5, 1)
    return text.getvalue()


def test_a_terminal_shows_runs_scores_and_the_time_left(
    monkeypatch: pytest.MonkeyPatch, base: Configs
) -> None:
    text = show(monkeypatch, base, terminal=True)
    for part in (
        "generation 1 of 3",
        "2/4",
        "2 of about 10 done, 2 at a time, 1 failed",
        "0.250",
        "1.500",
        "time left",
    ):
        assert part in text
    assert "a run failed (striker, seed 8): the arena was ended by signal 9" in text


def test_elsewhere_there_are_plain_lines(
    monkeypatch: pytest.MonkeyPatch, base: Configs, capsys: pytest.CaptureFixture[str]
) -> None:
    assert show(monkeypatch, base, terminal=False) == ""
    lines = capsys.readouterr().err.splitlines()
    assert lines[0].endswith("generation 1 of 3: 4 runs")
    assert "shipped 0.250, best 1.500" in lines[-1]
