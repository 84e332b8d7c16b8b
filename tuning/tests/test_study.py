"""The search, with a formula in the place of the player."""

from pathlib import Path

import pytest
from conftest import FakeWorkers, SilentWatch
from dataclasses import replace

from optuna.trial import TrialState

from tuning.apply import apply, found_values, reason_to_refuse
from tuning.configs import Configs, read_directory, write_directory
from tuning.errors import TuneError
from tuning.report import write_report
from tuning.study import Study, mean_and_half_width, open_storage
from tuning.task import Limit, Task


def storage(directory: Path):
    return open_storage(f"sqlite:///{directory / 'study.db'}")


def begin(task: Task, directory: Path, name: str = "small") -> Study:
    return Study.create(name, task, "fake", storage(directory), directory)


def told(study: Study) -> list[tuple]:
    return [(t.number, t.state, t.params, t.value) for t in study.trials]


@pytest.fixture
def finished(small_task: Task, tmp_path: Path) -> Study:
    study = begin(small_task, tmp_path)
    study.run(FakeWorkers(), SilentWatch())
    return study


def test_a_study_finds_something_better(finished: Study) -> None:
    assert len(finished.trials) == 16
    assert finished.best and finished.shipped and finished.best.score > finished.shipped.score
    comparison = finished.validation()
    assert comparison and comparison.seeds == ["9000", "9001", "9002"]
    gain, half = comparison.gain()
    assert gain - half > 0
    assert reason_to_refuse(comparison) is None


def test_all_candidates_of_a_generation_get_the_same_seeds_and_the_next_fresh_ones(
    small_task: Task, tmp_path: Path
) -> None:
    workers = FakeWorkers()
    begin(small_task, tmp_path).run(workers, SilentWatch())
    # Two seeds of the start, belief for shipped and start, then five candidates with two seeds.
    first, second = workers.seeds[6:16], workers.seeds[16:26]
    assert first == first[:2] * 5 and second == second[:2] * 5
    assert not set(first) & set(second)
    assert workers.seeds[-6:] == [9000, 9001, 9002] * 2


@pytest.mark.parametrize("sampler", ["cma-es", "tpe", "random"])
def test_a_study_that_is_stopped_anywhere_ends_as_if_it_had_not_been(
    small_task: Task, tmp_path: Path, sampler: str
) -> None:
    task = replace(small_task, search=replace(small_task.search, sampler=sampler))
    whole = begin(task, tmp_path, "whole")
    whole.run(FakeWorkers(), SilentWatch())
    broken = begin(task, tmp_path, "broken")
    stops = 0
    for patience in range(3, 60, 4):
        broken = Study.load("broken", storage(tmp_path), tmp_path)
        try:
            broken.run(FakeWorkers(left=patience), SilentWatch())
            break
        except KeyboardInterrupt:
            stops += 1
    assert stops > 3
    assert told(broken) == told(whole)
    assert broken.beliefs == whole.beliefs
    assert broken.attribute("validation") == whole.attribute("validation")


def test_a_driver_that_is_killed_within_asking_and_telling_loses_nothing(
    small_task: Task, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    whole = begin(small_task, tmp_path, "whole")
    whole.run(FakeWorkers(), SilentWatch())
    broken = begin(small_task, tmp_path, "broken")

    def killed_at(count: int, method: str) -> None:
        original = getattr(Study, method)
        calls = 0

        def counted(self, *arguments):
            nonlocal calls
            calls += 1
            if calls > count:
                raise KeyboardInterrupt
            return original(self, *arguments)

        with monkeypatch.context() as patch:
            patch.setattr(Study, method, counted)
            with pytest.raises(KeyboardInterrupt):
                broken.run(FakeWorkers(), SilentWatch())

    killed_at(2, "_proposed")
    # A trial that was made, but not yet given its values.
    broken._study.ask()
    killed_at(3, "_tell")
    killed_at(4, "_tell")
    broken.run(FakeWorkers(), SilentWatch())
    assert told(broken) == told(whole)


def test_a_failed_run_fails_its_trial_alone_and_keeps_the_output(small_task: Task, tmp_path: Path) -> None:
    study = begin(small_task, tmp_path)
    bad = small_task.candidate
    seen: list[Configs] = []

    def breaks(run) -> bool:
        if run.configs not in seen:
            seen.append(run.configs)
        return seen.index(run.configs) in (4, 9)

    assert bad
    study.run(FakeWorkers(breaks=breaks), SilentWatch())
    failed = [t for t in study.trials if t.state == TrialState.FAIL]
    assert 1 <= len(failed) <= 2
    kept = tmp_path / "failures" / f"trial-{failed[0].number}.txt"
    assert "ended by signal 11" in kept.read_text() and "the last words" in kept.read_text()
    write_report(study, tmp_path / "report.html")
    assert "the last words" in (tmp_path / "report.html").read_text()


def test_values_that_fail_from_the_start_are_told(small_task: Task, tmp_path: Path) -> None:
    with pytest.raises(TuneError, match="the values to start from fail: player-1 was ended by signal 11"):
        begin(small_task, tmp_path).run(FakeWorkers(breaks=lambda run: True), SilentWatch())


def test_results_of_other_programs_are_not_mixed(finished: Study) -> None:
    workers = FakeWorkers()
    workers.version = "newer"
    with pytest.raises(TuneError, match="not mixed"):
        finished.run(workers, SilentWatch())


def test_a_study_can_be_extended(finished: Study, tmp_path: Path) -> None:
    finished.extend(4)
    study = Study.load("small", storage(tmp_path), tmp_path)
    study.run(FakeWorkers(), SilentWatch())
    assert len(study.trials) == 21


def test_a_name_is_taken_once(finished: Study, small_task: Task, tmp_path: Path) -> None:
    with pytest.raises(TuneError, match="resume small"):
        begin(small_task, tmp_path)
    with pytest.raises(TuneError, match="no study 'other'"):
        Study.load("other", storage(tmp_path), tmp_path)


def test_the_best_keeps_hard_limits(small_task: Task, tmp_path: Path) -> None:
    task = replace(small_task, limits={"falls": Limit(high=0.08)})
    study = begin(task, tmp_path)
    study.run(FakeWorkers(), SilentWatch())
    comparison = study.validation()
    assert comparison and comparison.keeps_limits()


def test_applying_keeps_all_but_the_values(finished: Study, base: Configs, tmp_path: Path) -> None:
    target = tmp_path / "Configs"
    write_directory(base, target)
    assert apply(finished, target, force=False) == ["Formation.conf"]
    after = read_directory(target)
    assert after == found_values(finished, base)
    old, new = base["Formation.conf"].splitlines(), after["Formation.conf"].splitlines()
    changed = [(a, b) for a, b in zip(old, new, strict=True) if a != b]
    assert len(changed) == 1 and changed[0][0].startswith("p11 =")
    assert apply(finished, target, force=False) == []


def test_what_is_not_better_is_not_applied(finished: Study, base: Configs, tmp_path: Path) -> None:
    target = tmp_path / "Configs"
    write_directory(base, target)
    kept = dict(finished.attribute("validation"))
    kept["best"], kept["shipped"] = kept["shipped"], kept["best"]
    finished._study.set_user_attr("validation", kept)
    with pytest.raises(TuneError, match="not better"):
        apply(finished, target, force=False)
    assert read_directory(target) == base
    assert apply(finished, target, force=True) == ["Formation.conf"]


def test_the_report_needs_no_network(finished: Study, tmp_path: Path) -> None:
    write_report(finished, tmp_path / "report.html")
    page = (tmp_path / "report.html").read_text()
    # Names of XML vocabularies are no addresses to load from.
    for word in ("<script", "<link", "src=", "@import", "url(http"):
        assert word not in page
    for section in (
        "How the search went",
        "What mattered",
        "Shipped against best",
        "Spread of the metrics",
        "Changed values",
    ):
        assert section in page
    assert page.count("<svg") == 3
    assert "+p11 =" in page


def test_a_storage_that_cannot_be_reached_is_told() -> None:
    with pytest.raises(TuneError, match="cannot be reached"):
        open_storage("sqlite:////nowhere/at/all/study.db")


def test_the_interval_is_that_of_student() -> None:
    mean, half = mean_and_half_width([1.0, 2.0, 3.0, 4.0])
    assert mean == 2.5
    assert half == pytest.approx(3.182 * 1.2910 / 2, abs=1e-3)
