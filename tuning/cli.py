"""The command line: scripts/tune."""

import argparse
import os
import re
import sys
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from tuning import paths
from tuning.errors import TuneError


def main(arguments: list[str] | None = None) -> int:
    options = _parser().parse_args(arguments)
    try:
        return options.command(options)
    except TuneError as error:
        print(f"tune: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        print(f"tune: stopped{_resume_hint(options)}", file=sys.stderr)
        return 130
    except OSError as error:
        print(f"tune: {error}{_resume_hint(options)}", file=sys.stderr)
        return 1


def _resume_hint(options: argparse.Namespace) -> str:
    name = getattr(options, "study_name", None)
    return f"; scripts/tune resume {name} goes on" if name else ""


# --- Options ---------------------------------------------------------------------------------------


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="scripts/tune",
        description="Finds configuration values by letting the real player play. docs/tuning.md explains it.",
    )
    commands = parser.add_subparsers(required=True, metavar="COMMAND")

    run = _command(commands, "run", _run, "begin a study")
    run.add_argument("task", type=Path, help="the task file, or the name of one in tuning/tasks")
    run.add_argument("--name", help="of the study (default: that of the task)")
    run.add_argument("--configs", type=Path, default=paths.CONFIGS, help="the values to improve (Configs/)")
    run.add_argument("--sampler", choices=("cma-es", "tpe", "random"), help="instead of the task's")
    run.add_argument("--seed", type=int, help="of the study, instead of the task's")
    run.add_argument("--generations", type=int, help="instead of the task's")
    run.add_argument("--population", type=int, help="instead of the task's")
    _storage_options(run)
    _worker_options(run)

    resume = _command(commands, "resume", _resume, "go on with a study that was stopped, or extend it")
    resume.add_argument("name", help="of the study")
    resume.add_argument("--generations", type=int, help="how many there shall be in all")
    _storage_options(resume)
    _worker_options(resume)
    return parser


def _command(commands, name, function, text):  # type: ignore[no-untyped-def]
    parser = commands.add_parser(name, help=text, description=text[0].upper() + text[1:] + ".")
    parser.set_defaults(command=function)
    return parser


def _storage_options(parser: argparse.ArgumentParser) -> None:
    parser.add_argument(
        "--studies", type=Path, default=paths.STUDIES, help="directory of studies and results (studies/)"
    )
    parser.add_argument("--storage", help="URL of an Optuna storage (default: an SQLite file of the study)")


def _worker_options(parser: argparse.ArgumentParser) -> None:
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--workers", type=_positive, help="on this machine (default: one for each core)")
    where.add_argument("--scheduler", help="of a Dask cluster that runs already, tcp://HOST:8786")
    parser.add_argument(
        "--programs", type=Path, help="directory of the built programs (build/release/bin), for workers here"
    )
    parser.add_argument("--plain", action="store_true", help="lines instead of a live display")


def _positive(text: str) -> int:
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError("must be 1 or more")
    return value


# --- What commands share ---------------------------------------------------------------------------


def _storage(options: argparse.Namespace, name: str, create: bool = False):  # type: ignore[no-untyped-def]
    from tuning.study import open_storage

    if options.storage:
        return open_storage(options.storage)
    path = options.studies / name / "study.db"
    if create:
        path.parent.mkdir(parents=True, exist_ok=True)
    elif not path.exists():
        raise TuneError(f"there is no study '{name}' in {options.studies}")
    return open_storage(f"sqlite:///{path.resolve()}")


@contextmanager
def _workers(options: argparse.Namespace) -> Iterator:  # type: ignore[type-arg]
    from tuning.cluster import ResultStore, cluster_workers, local_workers

    if options.programs:
        os.environ[paths.PROGRAMS_VARIABLE] = str(options.programs.resolve())
    store = ResultStore(options.studies / "results")
    if options.scheduler:
        with cluster_workers(options.scheduler, store) as workers:
            yield workers
    else:
        with local_workers(options.workers, store, options.studies / "scratch") as workers:
            yield workers


def _carry_on(options: argparse.Namespace, study, workers) -> int:  # type: ignore[no-untyped-def]
    from tuning.display import Display

    task = study.task
    per_seed = sum(len(scenario.runs(task.base, 0)) for scenario in task.scenarios)
    left = max(0, 1 + task.search.population * task.search.generations - len(study.trials))
    rounds = task.search.generations // task.believe.every + 1
    again = 2 + rounds * (task.believe.few + 1)
    planned = per_seed * (
        left * task.search.seeds + again * task.believe.seeds + 2 * task.validation.seeds
    )
    with Display(f"{study.name}: {task.title}", planned, workers.count, options.plain) as display:
        study.run(workers, display)
    _tell_result(study)
    return 0


def _tell_result(study) -> None:  # type: ignore[no-untyped-def]
    comparison = study.validation()
    shipped, best = comparison.scores()
    gain, half = comparison.gain()
    count = len(comparison.seeds)
    print(f"best: {comparison.label}, on {count} seeds that no search has used")
    print(f"  score {sum(best) / count:.3f}, shipped values {sum(shipped) / count:.3f}")
    print(f"  better by {gain:.3f}, 95 % within {gain - half:.3f} to {gain + half:.3f}")
    print(f"  scripts/tune report {study.name} shows it, scripts/tune apply {study.name} takes it over")


# --- Commands --------------------------------------------------------------------------------------


def _run(options: argparse.Namespace) -> int:
    from dataclasses import replace

    from tuning.configs import read_directory
    from tuning.study import Study
    from tuning.task import read_task

    path = options.task
    if not path.exists() and len(path.parts) == 1:
        path = paths.TASKS / f"{path.stem}.toml"
    task = read_task(path, read_directory(options.configs))
    given = {n: getattr(options, n) for n in ("sampler", "seed", "generations", "population")}
    changed = {name: value for name, value in given.items() if value is not None}
    task = replace(task, search=replace(task.search, **changed))
    name = options.name or path.stem
    if not re.fullmatch(r"[\w.-]+", name):
        raise TuneError(f"a study's name holds letters, digits, '_', '-' and '.' only, not '{name}'")
    storage = _storage(options, name, create=True)
    with _workers(options) as workers:
        study = Study.create(name, task, workers.version, storage, options.studies / name)
        options.study_name = name
        return _carry_on(options, study, workers)


def _resume(options: argparse.Namespace) -> int:
    from tuning.study import Study

    study = Study.load(options.name, _storage(options, options.name), options.studies / options.name)
    options.study_name = options.name
    if options.generations is not None:
        study.extend(options.generations)
    with _workers(options) as workers:
        return _carry_on(options, study, workers)
