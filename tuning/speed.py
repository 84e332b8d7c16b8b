"""What the tuner costs: processor time of runs, split into programs and engine, and what a second worker
brings."""

import tempfile
import time
from pathlib import Path

from tuning import paths, seeds
from tuning.cluster import ResultStore, local_workers, own_seconds
from tuning.configs import read_directory
from tuning.errors import TuneError
from tuning.evaluation import CYCLE, Run
from tuning.scenarios import read_scenario


def measure(evaluations: int, duration: int, workers: tuple[int, ...] = (1, 2)) -> None:
    """Prints the figures. Every run is played anew: nothing is kept."""
    configs = read_directory(paths.CONFIGS)
    scenario = read_scenario("striker", {"kind": "striker", "numbers": [9], "duration": duration})
    runs = [scenario.runs(configs, seeds.derived("speed", at))[0] for at in range(evaluations)]
    print(
        f"{evaluations} striker evaluations of {duration} s each; processor milliseconds a simulated second:\n"
    )
    print("| workers | arena | player | engine | engine's part | evaluations a minute |")
    print("|---|---|---|---|---|---|")
    rates = [_measure_with(count, runs) for count in workers]
    for count, rate in zip(workers[1:], rates[1:]):
        print(f"\n{count} workers finish {rate / rates[0]:.2f} times as many evaluations as {workers[0]}.")


def _measure_with(count: int, runs: list[Run]) -> float:
    """Returns evaluations a second."""
    with tempfile.TemporaryDirectory() as name:
        directory = Path(name)
        with local_workers(count, ResultStore(directory / "results"), directory) as workers:
            # Every worker has then loaded what it needs. With details these are other results.
            workers.carry_out(runs[:count])
            before = workers.processor_seconds() + own_seconds()
            began = time.monotonic()
            results = workers.carry_out(runs, details=True)
            took = time.monotonic() - began
            used = workers.processor_seconds() + own_seconds() - before
    for result in results:
        if result.failure is not None or not result.seconds or not result.figures:
            raise TuneError(f"a run failed: {result.failure}")
    simulated = sum(result.figures["cycles"] * CYCLE for result in results if result.figures)
    arena, player = (sum(r.seconds[name] for r in results if r.seconds) for name in ("arena", "player"))
    engine = used - arena - player
    cells = [1000 * seconds / simulated for seconds in (arena, player, engine)]
    print(
        f"| {count} | {cells[0]:.2f} | {cells[1]:.2f} | {cells[2]:.2f} | {100 * engine / used:.1f} %"
        f" | {60 * len(runs) / took:.1f} |",
        flush=True,
    )
    return len(runs) / took
