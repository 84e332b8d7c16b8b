"""The command line: scripts/tune."""

import argparse
import os
import re
import sys
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from pathlib import Path

from tuning import paths
from tuning.errors import TuneError


def main(arguments: list[str] | None = None) -> int:
    options = _parser().parse_args(arguments)
    return report_errors(lambda: options.command(options), "tune", lambda: _resume_hint(options))


def report_errors(work: Callable[[], int], program: str, hint: Callable[[], str] = lambda: "") -> int:
    """The status of `work`. What is no fault of the code ends in one line and status 1."""
    try:
        return work()
    except TuneError as error:
        text = str(error)
    except KeyboardInterrupt:
        print(f"{program}: stopped{hint()}", file=sys.stderr)
        return 130
    except OSError as error:
        text = str(error)
    except Exception as failure:
        error: BaseException = failure
        # Storages throw whatever their database does.
        if type(error).__module__.split(".")[0] not in ("sqlalchemy", "sqlite3", "optuna"):
            raise
        while error.__cause__ is not None:
            error = error.__cause__
        text = f"the storage fails: {(str(error).splitlines() or [type(error).__name__])[0]}"
    print(f"{program}: {text}{hint()}", file=sys.stderr)
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
    _plain_option(run)

    resume = _command(commands, "resume", _resume, "go on with a study that was stopped, or extend it")
    resume.add_argument("name", help="of the study")
    resume.add_argument("--generations", type=int, help="how many there shall be in all")
    _storage_options(resume)
    _worker_options(resume)
    _plain_option(resume)

    status = _command(commands, "status", _status, "list the studies, or tell how one of them stands")
    status.add_argument("name", nargs="?", help="of the study")
    _storage_options(status)

    validate = _command(
        commands, "validate", _validate, "play shipped and best values with unused seeds again"
    )
    validate.add_argument("name", help="of the study")
    validate.add_argument("--seeds", type=_positive, help="how many (default: as the task says)")
    _storage_options(validate)
    _worker_options(validate)
    _plain_option(validate)

    report = _command(commands, "report", _report, "write what a study has found to one HTML file")
    report.add_argument("name", help="of the study")
    report.add_argument("-o", "--output", type=Path, help="the file (default: report.html of the study)")
    _storage_options(report)

    apply = _command(commands, "apply", _apply, "take the values that a study has found over")
    apply.add_argument("name", help="of the study")
    apply.add_argument("--configs", type=Path, default=paths.CONFIGS, help="where to (Configs/)")
    apply.add_argument("--force", action="store_true", help="even if they are not better")
    apply.add_argument("--dry-run", action="store_true", help="only show what would change")
    _storage_options(apply)

    evaluate = _command(
        commands, "evaluate", _evaluate, "play a directory of values as a task says, without a search"
    )
    evaluate.add_argument("task", type=Path, help="the task file, or the name of one in tuning/tasks")
    evaluate.add_argument("--configs", type=Path, default=paths.CONFIGS, help="the values (Configs/)")
    evaluate.add_argument("--seeds", type=_positive, help="how many (default: as the task validates)")
    evaluate.add_argument("--first-seed", type=int, help="the first of them (default: as the task validates)")
    evaluate.add_argument("--json", action="store_true", help="every seed's figures as JSON")
    add_worker_options(evaluate)
    _plain_option(evaluate)

    speed = _command(commands, "speed", _speed, "measure what runs and the engine cost on this machine")
    speed.add_argument("--evaluations", type=_positive, default=24, help="with each number of workers (24)")
    speed.add_argument("--duration", type=_positive, default=200, help="seconds of game time of each (200)")

    worker = _command(commands, "worker", _worker, "join a Dask cluster with workers of this machine")
    worker.add_argument("scheduler", help="tcp://HOST:8786")
    worker.add_argument(
        "--workers", type=_positive, default=os.cpu_count(), help="how many (one for each core)"
    )
    worker.add_argument("--programs", type=Path, help="directory of the built programs (build/release/bin)")
    return parser


def _command(commands, name, function, text):  # type: ignore[no-untyped-def]
    parser = commands.add_parser(name, help=text, description=text[0].upper() + text[1:] + ".")
    parser.set_defaults(command=function)
    return parser


def _storage_options(parser: argparse.ArgumentParser) -> None:
    _studies_option(parser)
    parser.add_argument("--storage", help="URL of an Optuna storage (default: an SQLite file of the study)")


def _studies_option(parser: argparse.ArgumentParser) -> None:
    parser.add_argument(
        "--studies", type=Path, default=paths.STUDIES, help="directory of studies and results (studies/)"
    )


def add_worker_options(parser: argparse.ArgumentParser) -> None:
    """For scripts that have runs carried out, but no study."""
    _studies_option(parser)
    _worker_options(parser)


def _worker_options(parser: argparse.ArgumentParser) -> None:
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--workers", type=_positive, help="on this machine (default: one for each core)")
    where.add_argument("--scheduler", help="of a Dask cluster that runs already, tcp://HOST:8786")
    parser.add_argument(
        "--programs", type=Path, help="directory of the built programs (build/release/bin), for workers here"
    )


def _plain_option(parser: argparse.ArgumentParser) -> None:
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
def open_workers(options: argparse.Namespace) -> Iterator:  # type: ignore[type-arg]
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


def _task_path(path: Path) -> Path:
    """A file, or the name of one that is shipped."""
    shipped = paths.TASKS / f"{path.stem}.toml"
    return shipped if not path.exists() and len(path.parts) == 1 and shipped.exists() else path


def _open(options: argparse.Namespace):  # type: ignore[no-untyped-def]
    from tuning.study import Study

    return Study.load(options.name, _storage(options, options.name), options.studies / options.name)


def _carry_on(options: argparse.Namespace, study, workers) -> int:  # type: ignore[no-untyped-def]
    from tuning.display import Display

    task = study.task
    per_seed = sum(len(scenario.runs(task.base, 0)) for scenario in task.scenarios)
    left = max(0, 1 + task.search.population * task.search.generations - len(study.trials))
    rounds = task.search.generations // task.believe.every + 1
    again = 2 + rounds * (task.believe.few + 1)
    planned = per_seed * (left * task.search.seeds + again * task.believe.seeds + 2 * task.validation.seeds)
    with Display(f"{study.name}: {task.title}", planned, workers.count, options.plain) as display:
        study.run(workers, display)
    _tell_result(study)
    return 0


@contextmanager
def _alone(options: argparse.Namespace, name: str) -> Iterator[None]:
    """Refuses a second driver of a study on this machine. The lock ends with the process."""
    import fcntl

    path = options.studies / name / "lock"
    path.parent.mkdir(parents=True, exist_ok=True)
    with path.open("w") as file:
        try:
            fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            raise TuneError(f"the study '{name}' runs already, by another process") from None
        yield


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

    path = _task_path(options.task)
    task = read_task(path, read_directory(options.configs))
    given = {n: getattr(options, n) for n in ("sampler", "seed", "generations", "population")}
    changed = {name: value for name, value in given.items() if value is not None}
    task = replace(task, search=replace(task.search, **changed))
    name = options.name or path.stem
    if not re.fullmatch(r"[\w.-]+", name):
        raise TuneError(f"a study's name holds letters, digits, '_', '-' and '.' only, not '{name}'")
    storage = _storage(options, name, create=True)
    with _alone(options, name), open_workers(options) as workers:
        study = Study.create(name, task, workers.version, storage, options.studies / name)
        options.study_name = name
        return _carry_on(options, study, workers)


def _resume(options: argparse.Namespace) -> int:
    study = _open(options)
    options.study_name = options.name
    if options.generations is not None:
        study.extend(options.generations)
    with _alone(options, options.name), open_workers(options) as workers:
        return _carry_on(options, study, workers)


def _status(options: argparse.Namespace) -> int:
    if options.name is None:
        if options.storage:
            raise TuneError("name a study of that storage")
        names = sorted(path.parent.name for path in options.studies.glob("*/study.db"))
        if not names:
            print(f"no studies in {options.studies}")
        for name in names:
            options.name = name
            print(_status_line(_open(options)))
        return 0
    study = _open(options)
    print(_status_line(study))
    from tuning.display import shown_score

    for contender in sorted(study.beliefs, key=lambda c: -c.score):
        print(f"  {shown_score(contender.score):>14}  {contender.label}")
    if study.validation():
        _tell_result(study)
    return 0


def _status_line(study) -> str:  # type: ignore[no-untyped-def]
    from tuning.display import shown_score

    task, trials = study.task, study.trials
    done = sum(trial.state.is_finished() for trial in trials)
    failed = sum(trial.state.name == "FAIL" for trial in trials)
    planned = 1 + task.search.generations * task.search.population
    scores = ", ".join(
        f"{word} {shown_score(contender.score)}"
        for word, contender in (("shipped", study.shipped), ("best", study.best))
        if contender
    )
    state = "validated" if study.validation() else "not finished"
    return f"{study.name}: {done} of {planned} trials, {failed} failed; {scores or 'nothing yet'}; {state}"


def _validate(options: argparse.Namespace) -> int:
    from tuning.display import Display

    study = _open(options)
    options.study_name = options.name
    with _alone(options, options.name), open_workers(options) as workers:
        study.check_version(workers)
        planned = 2 * (options.seeds or study.task.validation.seeds)
        with Display(study.name, planned, workers.count, options.plain) as display:
            study.validate(workers, display, options.seeds)
    _tell_result(study)
    return 0


def _report(options: argparse.Namespace) -> int:
    from tuning.report import write_report

    output = options.output or options.studies / options.name / "report.html"
    write_report(_open(options), output)
    print(f"tune: the report is {output}")
    return 0


def _apply(options: argparse.Namespace) -> int:
    from tuning.apply import apply, diff, found_values
    from tuning.configs import read_directory

    study = _open(options)
    before = read_directory(options.configs)
    print(diff(before, found_values(study, before)))
    if options.dry_run:
        return 0
    changed = apply(study, options.configs, options.force)
    for name in changed:
        print(f"tune: wrote {options.configs / name}")
    if not changed:
        print(f"tune: {options.configs} has these values already")
    return 0


def _evaluate(options: argparse.Namespace) -> int:
    import json

    from tuning import seeds
    from tuning.configs import read_directory
    from tuning.display import Display
    from tuning.study import evaluate_candidates, mean_and_half_width
    from tuning.task import read_task

    task = read_task(_task_path(options.task), read_directory(options.configs))
    count = options.seeds or task.validation.seeds
    first = task.validation.first if options.first_seed is None else options.first_seed
    with open_workers(options) as workers:
        with Display("evaluate", count, workers.count, options.plain) as display:
            outcome = evaluate_candidates(
                task, workers, [task.base], range(first, first + count), display, str(options.task)
            )[0]
    if outcome.failures:
        raise TuneError(f"{len(outcome.failures)} runs failed: {outcome.failures[0].failure}")
    if options.json:
        print(json.dumps(outcome.rows))
        return 0
    rows = list(outcome.rows.values())
    for name, column in [("score", [task.score(row) for row in rows])] + [
        (name, [row[name] for row in rows]) for name in rows[0]
    ]:
        mean, half = mean_and_half_width(column)
        middle = sorted(column)[len(column) // 2]
        print(
            f"{name:<24} {mean:10.3f} +- {half:<8.3f} median {middle:.3f}, {min(column):.3f} to {max(column):.3f}"
        )
    return 0


def _speed(options: argparse.Namespace) -> int:
    from tuning.speed import measure

    measure(options.evaluations, options.duration)
    return 0


def _worker(options: argparse.Namespace) -> int:
    if options.programs:
        os.environ[paths.PROGRAMS_VARIABLE] = str(options.programs.resolve())
    paths.version()
    from tuning.cluster import SETTINGS

    for name, value in SETTINGS.items():
        os.environ.setdefault("DASK_" + name.replace(".", "__").replace("-", "_").upper(), str(value))
    words = ["dask-worker", options.scheduler, "--nthreads", "1", "--nworkers", str(options.workers)]
    os.execvp(words[0], [*words, "--no-dashboard", "--local-directory", str(paths.STUDIES / "scratch")])
