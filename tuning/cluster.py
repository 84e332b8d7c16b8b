"""Runs carried out by Dask workers: on this machine, or on a cluster that runs already. Results are kept
on disk and never computed twice."""

import json
import logging
import os
import signal
from collections.abc import Callable, Iterator, Sequence
from contextlib import contextmanager, suppress
from dataclasses import asdict
from pathlib import Path
from typing import Any

import dask
from distributed import Client, LocalCluster, as_completed

from tuning import paths
from tuning.errors import TuneError
from tuning.evaluation import Result, Run, evaluate

# Workers that may be lost while they carry a run out before it counts as failed.
_RETRIES = 3
_WAIT_FOR_SCHEDULER = 10  # s
_WAIT_FOR_WORKERS = 60  # s

# By default Dask looks at its loops, its threads and its memory up to a hundred times a second, which
# costs more than all the rest of it; a run takes seconds.
SETTINGS = {
    "distributed.admin.tick.interval": "2s",
    "distributed.admin.tick.limit": "1h",
    "distributed.admin.system-monitor.interval": "10s",
    "distributed.comm.timeouts.connect": "20s",
    "distributed.scheduler.allowed-failures": _RETRIES,
    "distributed.scheduler.work-stealing-interval": "1s",
    "distributed.worker.memory.monitor-interval": "5s",
    "distributed.worker.profile.interval": "10s",
    "distributed.worker.profile.cycle": "100s",
}

# Losses are told by this module, in one line.
for _name in list(logging.root.manager.loggerDict):
    if _name.split(".")[0] in ("distributed", "tornado", "asyncio"):
        logging.getLogger(_name).setLevel(logging.CRITICAL)

Progress = Callable[[Run, Result], None]


class ResultStore:
    """Results as JSON files, by the keys of their runs."""

    def __init__(self, directory: Path) -> None:
        self._directory = directory

    def _path(self, key: str) -> Path:
        return self._directory / key[4:6] / f"{key}.json"

    def get(self, key: str) -> Result | None:
        try:
            return Result(**json.loads(self._path(key).read_text(encoding="utf-8")))
        except (OSError, ValueError, TypeError):
            return None

    def put(self, key: str, result: Result) -> None:
        path = self._path(key)
        temporary = path.with_suffix(f".{os.getpid()}")
        try:
            path.parent.mkdir(parents=True, exist_ok=True)
            temporary.write_text(json.dumps(asdict(result)), encoding="utf-8")
            temporary.replace(path)
        except OSError as error:
            with suppress(OSError):
                temporary.unlink()
            raise TuneError(f"cannot keep a result in {self._directory}: {error.strerror}") from None


class Workers:
    """Carries runs out. Made by `local_workers` and `cluster_workers`."""

    def __init__(self, client: Client, store: ResultStore, address: str) -> None:
        self._client = client
        self._store = store
        self._address = address
        self.version = self._common_version()

    @property
    def count(self) -> int:
        return len(self._client.scheduler_info()["workers"])

    def _common_version(self) -> str:
        """Of the programs, which must be the same on all workers."""
        versions = self._client.run(_version)
        for text in versions.values():
            if text.startswith("!"):
                raise TuneError(text[1:])
        if len(set(versions.values())) != 1:
            told = ", ".join(f"{worker} {text}" for worker, text in sorted(versions.items()))
            raise TuneError(f"the workers have different versions of the programs: {told}")
        return next(iter(versions.values()))

    def processor_seconds(self) -> float:
        """Of all workers and of the programs that have ended under them."""
        return sum(self._client.run(own_seconds).values())

    def carry_out(
        self, runs: Sequence[Run], progress: Progress | None = None, details: bool = False
    ) -> list[Result]:
        """The results of the runs, in their order."""
        keys = [run.key(self.version) + ("-details" if details else "") for run in runs]
        results: dict[str, Result] = {}
        waiting: dict[str, Run] = {}
        for key, run in zip(keys, runs):
            kept = self._store.get(key)
            if kept is not None:
                results[key] = kept
                if progress:
                    progress(run, kept)
            else:
                waiting[key] = run
        for key, result in self._compute(waiting, details):
            if result.failure is None:
                self._store.put(key, result)
            results[key] = result
            if progress:
                progress(waiting[key], result)
        return [results[key] for key in keys]

    def _compute(self, waiting: dict[str, Run], details: bool) -> Iterator[tuple[str, Result]]:
        futures = [
            self._client.submit(evaluate, run, details, key=key, pure=False, retries=_RETRIES)
            for key, run in waiting.items()
        ]
        try:
            for future in as_completed(futures):
                yield future.key, self._result_of(future)
        finally:
            with suppress(OSError, TimeoutError):  # of a scheduler that is gone
                self._client.cancel(futures)

    def _result_of(self, future: Any) -> Result:
        if future.status == "cancelled":
            raise TuneError(f"the scheduler {self._address} is gone")
        if future.status == "error":
            error = future.exception()
            if isinstance(error, OSError) or isinstance(error, TuneError):
                raise TuneError(f"a worker cannot work: {error}")
            return Result({}, self.version, f"{type(error).__name__}: {error}")
        result = future.result()
        if result.version != self.version:
            raise TuneError(
                "the programs have changed since the start; results of two versions are not mixed"
            )
        return result


def own_seconds() -> float:
    """Processor time of this process and of the children that it has waited for."""
    return sum(os.times()[:4])


def _version() -> str:
    try:
        return paths.version()
    except TuneError as error:
        return f"!{error}"


@contextmanager
def local_workers(count: int | None, store: ResultStore, directory: Path) -> Iterator[Workers]:
    """Workers on this machine, one process each; as many as cores unless told otherwise."""
    paths.version()  # complains before anything is started
    directory.mkdir(parents=True, exist_ok=True)
    with dask.config.set(SETTINGS):
        # Ctrl-C is for the driver: the workers end when it ends them.
        before = signal.signal(signal.SIGINT, signal.SIG_IGN)
        try:
            cluster = LocalCluster(
                n_workers=count or os.cpu_count() or 1,
                threads_per_worker=1,
                processes=True,
                dashboard_address="127.0.0.1:0",  # any free port: many clusters may run
                local_directory=str(directory),
                silence_logs="CRITICAL",
            )
        finally:
            signal.signal(signal.SIGINT, before)
        with cluster, Client(cluster) as client:
            yield Workers(client, store, "on this machine")


@contextmanager
def cluster_workers(address: str, store: ResultStore) -> Iterator[Workers]:
    """Workers of a cluster that runs already."""
    with dask.config.set(SETTINGS):
        try:
            client = Client(address, timeout=_WAIT_FOR_SCHEDULER)
        except (OSError, ValueError, TimeoutError) as error:
            raise TuneError(f"no scheduler answers at {address}: {error}") from None
        with client:
            try:
                client.wait_for_workers(1, timeout=_WAIT_FOR_WORKERS)
            except Exception:
                raise TuneError(f"the scheduler {address} has no workers") from None
            yield Workers(client, store, address)
