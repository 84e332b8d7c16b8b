"""What scripts/measure-play and scripts/motion-report share. Both measure this build by the engine and the cache of the
tuner and print Markdown tables, which docs/play.md and docs/motion.md keep."""

import argparse
import sys
from collections.abc import Sequence

from tuning.cli import open_workers
from tuning.errors import TuneError
from tuning.evaluation import Result, Run


def carry_out(options: argparse.Namespace, runs: Sequence[Run]) -> list[Result]:
    """All results with their figures. Raises TuneError if a run fails."""
    done = 0

    def progress(run: Run, result: Result) -> None:
        nonlocal done
        done += 1
        if sys.stderr.isatty():
            print(f"\r{done} of {len(runs)} runs", end="\n" if done == len(runs) else "", file=sys.stderr)

    with open_workers(options) as workers:
        results = workers.carry_out(runs, progress, details=True)
    for run, result in zip(runs, results):
        if result.failure is not None:
            raise TuneError(f"a run failed (seed {run.seed}): {result.failure}")
    return results
