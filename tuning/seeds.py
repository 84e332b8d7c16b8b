"""Seeds of runs and of samplers, all derived from the seed of the study."""

import hashlib

from tuning.task import RESERVED_SEEDS, Task

_LARGEST = 2**31


def derived(*words: object) -> int:
    """A number from 0 to 2^31 - 1 that hangs on all words."""
    digest = hashlib.sha256(" ".join(map(str, words)).encode()).digest()
    return int.from_bytes(digest[:8], "big") % _LARGEST


def _run_seeds(task: Task, count: int, *words: object) -> list[int]:
    """Never one for validation."""
    first = task.validation.first
    kept = range(first, first + max(task.validation.seeds, 1000))
    seeds: list[int] = []
    at = 0
    while len(seeds) < count:
        seed = derived(task.search.seed, *words, at)
        if seed not in kept and seed not in RESERVED_SEEDS and seed not in seeds:
            seeds.append(seed)
        at += 1
    return seeds


def of_generation(task: Task, generation: int) -> list[int]:
    """Of all candidates of one generation."""
    return _run_seeds(task, task.search.seeds, "generation", generation)


def of_belief(task: Task) -> list[int]:
    """With which the best few are played again."""
    return _run_seeds(task, task.believe.seeds, "belief")


def of_validation(task: Task, count: int | None = None) -> list[int]:
    """Which no search uses."""
    return list(range(task.validation.first, task.validation.first + (count or task.validation.seeds)))


def of_sampler(task: Task, trial: int) -> int:
    """A sampler of its own for each trial: so what is proposed hangs on the trials before and not on
    how often the study was interrupted."""
    return derived(task.search.seed, "sampler", trial)
