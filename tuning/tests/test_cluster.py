"""Workers as processes: on this machine, and as a cluster of a scheduler and workers on loopback."""

import os
import re
import signal
import subprocess
import sys
import time
from collections.abc import Iterator
from pathlib import Path

import optuna
import pytest

from tuning import paths
from tuning.cli import main
from tuning.cluster import ResultStore, local_workers
from tuning.configs import Configs
from tuning.errors import TuneError
from tuning.evaluation import Result, Run
from tuning.scenarios import read_scenario

ENVIRONMENT = {**os.environ, "PYTHONPATH": str(paths.ROOT)}


def tune(*words: str | Path, limit: float = 120, **options) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        [paths.ROOT / "scripts" / "tune", *words], capture_output=True, text=True, timeout=limit, **options
    )


def trials(directory: Path, name: str) -> list[tuple]:
    study = optuna.load_study(study_name=name, storage=f"sqlite:///{directory / name / 'study.db'}")
    return [(t.number, t.state, t.params, t.value) for t in study.trials]


class Cluster:
    """A scheduler and workers, each a process group of its own."""

    def __init__(self, directory: Path) -> None:
        self._directory = directory
        self._processes: list[subprocess.Popen[bytes]] = []
        log = directory / "scheduler.log"
        self.scheduler = self._start(
            [
                "dask-scheduler",
                "--host",
                "127.0.0.1",
                "--port",
                "0",
                "--no-dashboard",
                "--dashboard-address",
                ":0",
            ],
            log,
        )
        for _ in range(300):
            found = re.search(r"(tcp://127\.0\.0\.1:\d+)", log.read_text())
            if found:
                break
            time.sleep(0.1)
        assert found, log.read_text()
        self.address = found[1]

    def _start(self, command: list[str], log: Path) -> subprocess.Popen[bytes]:
        with log.open("w") as file:
            process = subprocess.Popen(
                command,
                cwd=self._directory,
                env=ENVIRONMENT,
                stdout=file,
                stderr=file,
                start_new_session=True,
            )
        self._processes.append(process)
        return process

    def add_worker(self) -> subprocess.Popen[bytes]:
        command = [str(paths.ROOT / "scripts" / "tune"), "worker", self.address, "--workers", "1"]
        return self._start(command, self._directory / f"worker-{len(self._processes)}.log")

    @staticmethod
    def kill(process: subprocess.Popen[bytes]) -> None:
        """With all that it has started itself, as if its machine had lost power."""
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()

    def close(self) -> None:
        for process in self._processes:
            if process.poll() is None:
                self.kill(process)


@pytest.fixture
def cluster(tmp_path: Path) -> Iterator[Cluster]:
    cluster = Cluster(tmp_path)
    yield cluster
    cluster.close()


@pytest.fixture(scope="session")
def undisturbed(task_file: Path, tmp_path_factory: pytest.TempPathFactory) -> list[tuple]:
    """The trials of a study that one worker carried out."""
    directory = tmp_path_factory.mktemp("undisturbed")
    done = tune("run", task_file, "--name", "whole", "--studies", directory, "--workers", "1")
    assert done.returncode == 0, done.stderr
    return trials(directory, "whole")


def begin(task: Path, directory: Path, name: str, *words: str) -> subprocess.Popen[str]:
    """A driver that runs while the test goes on."""
    command = [
        str(paths.ROOT / "scripts" / "tune"),
        "run",
        str(task),
        "--name",
        name,
        "--studies",
        str(directory),
    ]
    return subprocess.Popen([*command, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def wait_for(driver: subprocess.Popen[str], text: str) -> None:
    assert driver.stderr
    lines = []
    for line in driver.stderr:
        lines.append(line)
        if text in line:
            return
    pytest.fail("the driver did not come so far: " + "".join(lines))


def test_losing_a_worker_and_getting_one_changes_nothing(
    cluster: Cluster, task_file: Path, undisturbed: list[tuple], tmp_path: Path
) -> None:
    workers = [cluster.add_worker() for _ in range(3)]
    driver = begin(task_file, tmp_path / "b", "whole", "--scheduler", cluster.address)
    wait_for(driver, "generation 1")
    cluster.kill(workers[0])
    wait_for(driver, "generation 2")
    cluster.add_worker()
    output = driver.communicate(timeout=120)
    assert driver.returncode == 0, output
    assert trials(tmp_path / "b", "whole") == undisturbed


def test_a_scheduler_that_goes_is_told_and_the_study_goes_on_elsewhere(
    cluster: Cluster, task_file: Path, tmp_path: Path
) -> None:
    cluster.add_worker()
    driver = begin(task_file, tmp_path / "b", "whole", "--scheduler", cluster.address)
    wait_for(driver, "generation 1")
    cluster.kill(cluster.scheduler)
    _, errors = driver.communicate(timeout=60)
    assert driver.returncode == 1
    assert (
        errors.splitlines()[-1]
        == f"tune: the scheduler {cluster.address} is gone; scripts/tune resume whole goes on"
    )
    assert "Traceback" not in errors
    resumed = tune("resume", "whole", "--studies", tmp_path / "b", "--workers", "1")
    assert resumed.returncode == 0, resumed.stderr
    assert len(trials(tmp_path / "b", "whole")) == 13


def test_a_driver_that_is_killed_leaves_nothing_running_and_resumes(
    task_file: Path, undisturbed: list[tuple], tmp_path: Path
) -> None:
    driver = begin(task_file, tmp_path / "b", "whole", "--workers", "1")
    wait_for(driver, "generation 2")
    time.sleep(0.3)
    driver.kill()
    driver.communicate()
    # Whatever works for a study names its directory, or stands in it.
    for _ in range(100):
        left = [
            pid
            for pid in map(int, filter(str.isdigit, os.listdir("/proc")))
            if stands_in(pid, tmp_path / "b")
        ]
        if not left:
            break
        time.sleep(0.1)
    assert not left
    resumed = tune("resume", "whole", "--studies", tmp_path / "b", "--workers", "2")
    assert resumed.returncode == 0, resumed.stderr
    assert trials(tmp_path / "b", "whole") == undisturbed


def stands_in(pid: int, directory: Path) -> bool:
    try:
        return str(directory) in os.readlink(f"/proc/{pid}/cwd")
    except OSError:
        return False


def test_ctrl_c_ends_a_study_and_says_how_to_go_on(task_file: Path, tmp_path: Path) -> None:
    driver = begin(task_file, tmp_path, "whole", "--workers", "1")
    wait_for(driver, "generation 1")
    driver.send_signal(signal.SIGINT)
    _, errors = driver.communicate(timeout=60)
    assert driver.returncode == 130
    assert errors.splitlines()[-1] == "tune: stopped; scripts/tune resume whole goes on"
    assert "Traceback" not in errors


class Counter:
    def __init__(self) -> None:
        self.results: list[Result] = []

    def __call__(self, run: Run, result: Result) -> None:
        self.results.append(result)


def test_a_result_is_computed_once(base: Configs, tmp_path: Path) -> None:
    store = ResultStore(tmp_path / "results")
    runs = read_scenario("kick-off", {"kind": "kick-off", "duration": 3}).runs(base, 5)
    with local_workers(1, store, tmp_path) as workers:
        # The same run twice is one run.
        first = workers.carry_out(runs * 2)
        began = time.monotonic()
        again = workers.carry_out(runs, Counter())
        assert time.monotonic() - began < 0.2
    assert first[0] == first[1] == again[0]
    assert len(list((tmp_path / "results").glob("*/*.json"))) == 1


def test_results_that_cannot_be_kept_are_told(tmp_path: Path) -> None:
    (tmp_path / "results").write_text("a file in the place of the directory")
    with pytest.raises(TuneError, match="cannot keep a result"):
        ResultStore(tmp_path / "results").put("run-123456", Result({}, "v"))


def test_bad_input_ends_in_one_line(
    task_file: Path, tmp_path: Path, capsys: pytest.CaptureFixture[str], monkeypatch: pytest.MonkeyPatch
) -> None:
    no_metrics = tmp_path / "no-metrics.toml"
    no_metrics.write_text(task_file.read_text().replace("touched = 1.0\nfirst_touch = -0.1", ""))
    monkeypatch.setenv(paths.PROGRAMS_VARIABLE, "")
    cases = [
        (["run", tmp_path / "none.toml"], "cannot read the task"),
        (["run", no_metrics], "at least one metric"),
        (["run", task_file, "--programs", tmp_path], "is missing; build it"),
        (["run", task_file, "--storage", "sqlite:////nowhere/at/all.db"], "cannot be reached"),
        (["run", task_file, "--storage", "nonsense"], "cannot be reached"),
        (["run", task_file, "--name", "a/b"], "a study's name holds"),
        (["run", task_file, "--configs", tmp_path], "no configuration files"),
        (["run", task_file, "--scheduler", "tcp://127.0.0.1:1"], "no scheduler answers at tcp://127.0.0.1:1"),
        (["resume", "nobody"], "no study 'nobody'"),
        (["report", "nobody"], "no study 'nobody'"),
        (["apply", "nobody"], "no study 'nobody'"),
    ]
    for words, told in cases:
        assert main([*map(str, words), "--studies", str(tmp_path / "studies")]) == 1, words
        errors = capsys.readouterr().err
        assert told in errors and errors.startswith("tune: ") and errors.count("\n") == 1, errors


def test_a_full_disk_is_told_and_loses_nothing(task_file: Path, tmp_path: Path) -> None:
    """A limit on the length of files does what a full disk does: the database cannot grow."""
    limited = ["bash", "-c", 'ulimit -f 120; exec "$@"', "limited", str(paths.ROOT / "scripts" / "tune")]
    words = ["run", str(task_file), "--name", "full", "--studies", str(tmp_path / "s"), "--workers", "1"]
    done = subprocess.run([*limited, *words], capture_output=True, text=True, timeout=120)
    assert done.returncode == 1, done.stderr
    assert "Traceback" not in done.stderr
    assert done.stderr.splitlines()[-1].startswith("tune: ")
    again = tune(
        "resume" if "resume full" in done.stderr else "run",
        *(["full"] if "resume full" in done.stderr else words[1:2] + words[2:4]),
        "--studies",
        tmp_path / "s",
        "--workers",
        "1",
    )
    assert again.returncode == 0, again.stderr
