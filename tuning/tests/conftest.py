"""What the tests share: a small task, and workers that need no processes."""

import sys
from collections.abc import Callable, Sequence
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[2]))

from tuning import paths  # noqa: E402
from tuning.configs import Configs, read_directory, read_value, set_value  # noqa: E402
from tuning.evaluation import Result, Run  # noqa: E402
from tuning.task import Task, parse_task  # noqa: E402

SMALL_TASK = """
title = "small"
[[scenario]]
kind = "kick-off"
duration = 5
[objective]
touched = 1.0
first_touch = -0.1
[search]
population = 5
generations = 3
seeds = 2
[believe]
few = 1
seeds = 2
every = 2
[validation]
seeds = 3
[[key]]
file = "Formation"
group = "Beam"
key = "p11"
low = [-0.6, -0.3, -40]
high = [-0.05, 0.3, 40]
step = [0.05, 0.05, 8]
"""


@pytest.fixture(scope="session")
def shipped() -> Configs:
    return read_directory(paths.CONFIGS)


@pytest.fixture(scope="session")
def base(shipped: Configs) -> Configs:
    """The shipped values without overlays; where the small task searches they are the tests' own."""
    configs = {name: text for name, text in shipped.items() if not name.startswith("overlays/")}
    set_value(configs, "all", "Formation", "Beam", "p11", ["-0.22", "0.055", "0"])
    return configs


@pytest.fixture
def small_task(base: Configs) -> Task:
    return parse_task(SMALL_TASK, base, paths.ROOT)


# The same with as few and as short runs as will do.
TINY_TASK = (
    SMALL_TASK.replace("duration = 5", "duration = 2")
    .replace("population = 5", "population = 4")
    .replace("seeds = 2", "seeds = 1")
    .replace("seeds = 3", "seeds = 2")
)


@pytest.fixture(scope="session")
def task_file(tmp_path_factory: pytest.TempPathFactory) -> Path:
    path = tmp_path_factory.mktemp("task") / "tiny.toml"
    path.write_text(TINY_TASK)
    return path


class FakeWorkers:
    """Carries runs out by a formula: the nearer the start to (-0.3, 0.1), the better. Runs for which
    `breaks` holds fail; after `left` runs it raises KeyboardInterrupt, as Ctrl-C does."""

    def __init__(self, left: int = 10**9, breaks: Callable[[Run], bool] = lambda run: False) -> None:
        self.version = "fake"
        self.count = 1
        self.seeds: list[int] = []
        self._left = left
        self._breaks = breaks

    def carry_out(self, runs: Sequence[Run], progress=None, details: bool = False) -> list[Result]:
        results = []
        for run in runs:
            if self._left <= 0:
                raise KeyboardInterrupt
            self._left -= 1
            self.seeds.append(run.seed)
            result = self._result(run)
            results.append(result)
            if progress:
                progress(run, result)
        return results

    def _result(self, run: Run) -> Result:
        if self._breaks(run):
            return Result({}, self.version, "player-1 was ended by signal 11", {"player-1": "the last words"})
        x, y, _ = (float(atom) for atom in read_value(run.configs, "all", "Formation", "Beam", "p11"))
        touch = ((x + 0.3) ** 2 + (y - 0.1) ** 2) ** 0.5 + run.seed % 7 * 0.001
        return Result({"touched": 1.0, "first_touch": touch, "falls": abs(y)}, self.version)


class SilentWatch:
    """Keeps what it is told."""

    def __init__(self) -> None:
        self.notes: list[str] = []

    def begin(self, title: str, runs: int) -> None:
        ...

    def progress(self, run: Run, result: Result) -> None:
        ...

    def note(self, text: str) -> None:
        self.notes.append(text)

    def standing(self, shipped: float | None, best: float | None, generation: int) -> None:
        ...
