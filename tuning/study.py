"""A study: candidates proposed by Optuna, generation by generation, and what the real player made of them.

The driver asks for a whole generation, has it evaluated, and tells the results in the order of the trials:
so what is proposed does not hang on how many workers there are or which of them is faster. All that is
needed to go on is in Optuna's storage: a driver that is killed loses the runs that were under way.
"""

import hashlib
import json
import math
import statistics
import warnings
from collections.abc import Sequence
from dataclasses import asdict, dataclass, field, replace
from pathlib import Path
from typing import Any, Protocol

import optuna
from optuna.distributions import FloatDistribution
from optuna.trial import FrozenTrial, TrialState, create_trial

from tuning import seeds
from tuning.cluster import Workers
from tuning.configs import Configs
from tuning.errors import TuneError
from tuning.evaluation import Metrics, Result, Run
from tuning.task import Task, metric_name, parse_task

optuna.logging.set_verbosity(optuna.logging.ERROR)
warnings.filterwarnings("ignore", category=optuna.exceptions.ExperimentalWarning)

# What the first step of every knob is to the sampler: one.
_FIRST_STEP = 1.0


class Watch(Protocol):
    """Is told how a study goes on."""

    def begin(self, title: str, runs: int) -> None:
        ...

    def progress(self, run: Run, result: Result) -> None:
        ...

    def note(self, text: str) -> None:
        ...

    def standing(self, shipped: float | None, best: float | None, generation: int) -> None:
        ...


@dataclass
class Outcome:
    """What one candidate did: a row of metrics for each seed that worked out."""

    rows: dict[int, Metrics] = field(default_factory=dict)
    failures: list[Result] = field(default_factory=list)


@dataclass
class Contender:
    """A candidate that has been played with the seeds of belief."""

    label: str
    moved: dict[str, float] | None  # None: the shipped values
    score: float  # as judged


def evaluate_candidates(
    task: Task,
    workers: Workers,
    candidates: Sequence[Configs],
    run_seeds: Sequence[int],
    watch: Watch,
    title: str,
) -> list[Outcome]:
    """Plays every candidate with every seed."""
    runs: list[Run] = []
    places: list[tuple[int, int, str]] = []  # candidate, seed, scenario of each run
    for at, configs in enumerate(candidates):
        for seed in run_seeds:
            for scenario in task.scenarios:
                new = scenario.runs(configs, seed)
                runs += new
                places += [(at, seed, scenario.name)] * len(new)
    watch.begin(title, len(runs))
    results = workers.carry_out(runs, watch.progress)

    outcomes = [Outcome() for _ in candidates]
    grouped: dict[tuple[int, int, str], list[Result]] = {}
    for place, result in zip(places, results):
        grouped.setdefault(place, []).append(result)
        if result.failure is not None:
            outcomes[place[0]].failures.append(result)
    for at, outcome in enumerate(outcomes):
        for seed in run_seeds:
            row: Metrics = {}
            group = [(scenario, grouped[at, seed, scenario.name]) for scenario in task.scenarios]
            if any(result.failure is not None for _, of_seed in group for result in of_seed):
                continue
            for scenario, of_seed in group:
                for metric in of_seed[0].metrics:
                    mean = statistics.fmean(result.metrics[metric] for result in of_seed)
                    row[metric_name(task.scenarios, scenario, metric)] = mean
            outcome.rows[seed] = row
    return outcomes


def open_storage(url: str) -> optuna.storages.BaseStorage:
    try:
        return optuna.storages.RDBStorage(url)
    except Exception as error:  # whatever the driver of the database throws
        reason = str(error).strip().splitlines()[0] if str(error).strip() else type(error).__name__
        raise TuneError(f"the storage {url} cannot be reached: {reason}") from None


def _is_unfinished(name: str, storage: optuna.storages.BaseStorage) -> bool:
    """Whether a driver was killed while it made the study."""
    try:
        return "version" not in optuna.load_study(study_name=name, storage=storage).user_attrs
    except KeyError:
        return False


def configs_hash(configs: Configs) -> str:
    return hashlib.sha256(json.dumps(configs, sort_keys=True).encode()).hexdigest()[:16]


class Study:
    def __init__(self, study: optuna.Study, task: Task, directory: Path) -> None:
        self._study = study
        self.task = task
        self.directory = directory

    # --- Making and opening ------------------------------------------------------------------------

    @classmethod
    def create(
        cls, name: str, task: Task, version: str, storage: optuna.storages.BaseStorage, directory: Path
    ) -> "Study":
        if _is_unfinished(name, storage):
            optuna.delete_study(study_name=name, storage=storage)
        try:
            study = optuna.create_study(storage=storage, study_name=name, direction="maximize")
        except optuna.exceptions.DuplicatedStudyError:
            raise TuneError(
                f"there is a study '{name}' already: go on with 'resume {name}', or give another --name"
            ) from None
        record = {
            "task": task.text,
            "task_hash": task.hash,
            "base": task.base,
            "base_hash": configs_hash(task.base),
            "rivals": [scenario.rivals for scenario in task.scenarios],
            "search": asdict(task.search),
            "version": version,  # the last one: with it the study is complete
        }
        for key, value in record.items():
            study.set_user_attr(key, value)
        return cls(study, task, directory)

    @classmethod
    def load(cls, name: str, storage: optuna.storages.BaseStorage, directory: Path) -> "Study":
        try:
            study = optuna.load_study(study_name=name, storage=storage)
            record = study.user_attrs
        except KeyError:
            raise TuneError(f"there is no study '{name}'; 'status' lists them") from None
        if "version" not in record:
            raise TuneError(f"the study '{name}' was stopped before it had begun; 'run' begins it anew")
        task = parse_task(record["task"], record["base"], directory, record["rivals"])
        task = replace(task, search=type(task.search)(**record["search"]))
        return cls(study, task, directory)

    @property
    def name(self) -> str:
        return self._study.study_name

    @property
    def version(self) -> str:
        return str(self._study.user_attrs["version"])

    @property
    def trials(self) -> list[FrozenTrial]:
        return self._study.get_trials(deepcopy=False)

    def attribute(self, name: str, default: Any = None) -> Any:
        return self._study.user_attrs.get(name, default)

    def check_version(self, workers: Workers) -> None:
        """Raises TuneError unless the workers have the programs with which the study was begun."""
        if workers.version != self.version:
            raise TuneError(
                f"the study '{self.name}' was begun with other programs ({self.version}) than these"
                f" ({workers.version}); results of two versions are not mixed: begin a new study"
            )

    def extend(self, generations: int) -> None:
        """Another number of generations, for a study that goes on."""
        self.task = replace(self.task, search=replace(self.task.search, generations=generations))
        self._study.set_user_attr("search", asdict(self.task.search))

    # --- Searching ---------------------------------------------------------------------------------

    def run(self, workers: Workers, watch: Watch) -> None:
        """Searches from where it stands to the end, then judges the best with the seeds of validation."""
        self.check_version(workers)
        self._begin(workers, watch)
        generations = self.task.search.generations
        for generation in range(1, generations + 1):
            self._tell_standing(watch, generation)
            self._generation(generation, workers, watch)
            if generation % self.task.believe.every == 0 or generation == generations:
                self._believe(generation, workers, watch)
        self.validate(workers, watch)

    def _begin(self, workers: Workers, watch: Watch) -> None:
        """The values that the search starts from: the first trial, of no generation."""
        if not self.trials:
            moved = {knob.name: 0.0 for knob in self.task.knobs}
            outcome = self._play([moved], seeds.of_generation(self.task, 0), workers, watch, "start")[0]
            if outcome.failures:
                raise TuneError(f"the values to start from fail: {outcome.failures[0].failure}")
            metrics = self.task.average(list(outcome.rows.values()))
            self._study.add_trial(
                create_trial(
                    params=moved,
                    distributions=self._distributions(),
                    value=self.task.judged(metrics),
                    user_attrs=self._described(0, moved, outcome),
                )
            )
        if not self.beliefs:
            self._judge_contenders(
                [("shipped values", None), ("start", self._moved(self.trials[0]))], workers, watch
            )

    def _generation(self, generation: int, workers: Workers, watch: Watch) -> None:
        population = self.task.search.population
        first = 1 + (generation - 1) * population
        numbers = range(first, first + population)
        trials = self.trials
        if len(trials) > numbers[-1] and all(trials[n].state.is_finished() for n in numbers):
            return
        candidates = [self._proposed(number) for number in numbers]
        run_seeds = seeds.of_generation(self.task, generation)
        title = f"generation {generation} of {self.task.search.generations}"
        outcomes = self._play(candidates, run_seeds, workers, watch, title)
        trials = self.trials
        for number, moved, outcome in zip(numbers, candidates, outcomes):
            if not trials[number].state.is_finished():
                self._tell(trials[number], generation, moved, outcome)

    def _proposed(self, number: int) -> dict[str, float]:
        """The candidate of a trial, which is asked for unless that was done before."""
        trials = self.trials
        distributions = self._distributions()
        if number < len(trials) and set(trials[number].params) == set(distributions):
            return dict(trials[number].params)
        self._study.sampler = self._sampler(number)
        if number < len(trials):
            # The driver was killed within the asking.
            trial = optuna.trial.Trial(self._study, trials[number]._trial_id)
        else:
            trial = self._study.ask()
        return {name: trial.suggest_float(name, d.low, d.high) for name, d in distributions.items()}

    def _sampler(self, number: int) -> optuna.samplers.BaseSampler:
        seed = seeds.of_sampler(self.task, number)
        search = self.task.search
        if search.sampler == "random":
            return optuna.samplers.RandomSampler(seed=seed)
        if search.sampler == "tpe":
            return optuna.samplers.TPESampler(
                seed=seed, multivariate=True, constant_liar=True, n_startup_trials=search.population
            )
        return optuna.samplers.CmaEsSampler(
            x0={knob.name: 0.0 for knob in self.task.knobs},
            sigma0=_FIRST_STEP,
            popsize=search.population,
            seed=seed,
            warn_independent_sampling=False,
        )

    def _distributions(self) -> dict[str, FloatDistribution]:
        return {knob.name: FloatDistribution(*knob.range) for knob in self.task.knobs}

    def _play(
        self,
        candidates: Sequence[dict[str, float] | None],
        run_seeds: Sequence[int],
        workers: Workers,
        watch: Watch,
        title: str,
    ) -> list[Outcome]:
        texts = [self.configs_of(moved) for moved in candidates]
        return evaluate_candidates(self.task, workers, texts, run_seeds, watch, title)

    def configs_of(self, moved: dict[str, float] | None) -> Configs:
        return self.task.base if moved is None else self.task.candidate(moved)

    def _moved(self, trial: FrozenTrial) -> dict[str, float]:
        return dict(trial.params)

    def _described(self, generation: int, moved: dict[str, float], outcome: Outcome) -> dict[str, Any]:
        rows = list(outcome.rows.values())
        metrics = self.task.average(rows) if rows else {}
        return {
            "generation": generation,
            "values": {knob.name: knob.value(moved[knob.name]) for knob in self.task.knobs},
            "metrics": metrics,
            "score": self.task.score(metrics) if metrics else None,
            "rows": [self.task.score(row) for row in rows],
        }

    def _tell(self, trial: FrozenTrial, generation: int, moved: dict[str, float], outcome: Outcome) -> None:
        storage = self._study._storage
        for key, value in self._described(generation, moved, outcome).items():
            storage.set_trial_user_attr(trial._trial_id, key, value)
        if outcome.failures:
            storage.set_trial_user_attr(trial._trial_id, "failure", outcome.failures[0].failure)
            self._keep_failure(trial.number, outcome.failures)
            self._study.tell(trial.number, state=TrialState.FAIL)
            return
        metrics = self.task.average(list(outcome.rows.values()))
        self._study.tell(trial.number, self.task.judged(metrics))

    def _keep_failure(self, number: int, failures: Sequence[Result]) -> None:
        """What the programs of a failed trial wrote."""
        path = self.directory / "failures" / f"trial-{number}.txt"
        parts = []
        for result in failures:
            parts.append(f"{result.failure}\n")
            parts += [f"--- {name}\n{text}\n" for name, text in (result.outputs or {}).items()]
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(parts), encoding="utf-8")

    # --- Believing ---------------------------------------------------------------------------------

    @property
    def beliefs(self) -> list[Contender]:
        """All that have been played with the seeds of belief."""
        return [Contender(**entry) for entry in self.attribute("beliefs", [])]

    @property
    def best(self) -> Contender | None:
        found = [contender for contender in self.beliefs if contender.moved is not None]
        return max(found, key=lambda contender: contender.score, default=None)

    @property
    def shipped(self) -> Contender | None:
        return next((contender for contender in self.beliefs if contender.moved is None), None)

    def _believe(self, generation: int, workers: Workers, watch: Watch) -> None:
        """Plays the best few of the generations since the last time again, and the middle of the
        latest: with noise in every score, where all the good ones lie is worth more than any of them."""
        if any(contender.label == f"middle of generation {generation}" for contender in self.beliefs):
            return
        since = generation - self.task.believe.every
        done = [t for t in self.trials if t.state == TrialState.COMPLETE and t.value is not None]
        recent = [t for t in done if since < t.user_attrs["generation"] <= generation]
        best = sorted(recent, key=lambda t: (-t.value, t.number))[: self.task.believe.few]
        fresh = [(f"trial {t.number}", self._moved(t)) for t in best]
        latest = [t for t in done if t.user_attrs["generation"] == generation]
        if latest:
            fresh.append((f"middle of generation {generation}", _middle(latest)))
        self._judge_contenders(fresh, workers, watch)

    def _judge_contenders(
        self, fresh: Sequence[tuple[str, dict[str, float] | None]], workers: Workers, watch: Watch
    ) -> None:
        known = {contender.label for contender in self.beliefs}
        fresh = [entry for entry in fresh if entry[0] not in known]
        moves = [moved for _, moved in fresh]
        outcomes = self._play(moves, seeds.of_belief(self.task), workers, watch, "the best few again")
        judged = self.beliefs
        for (label, moved), outcome in zip(fresh, outcomes):
            if outcome.failures:
                watch.note(f"{label}: {outcome.failures[0].failure}")
                continue
            metrics = self.task.average(list(outcome.rows.values()))
            judged.append(Contender(label, moved, self.task.judged(metrics)))
        self._study.set_user_attr("beliefs", [asdict(contender) for contender in judged])

    def _tell_standing(self, watch: Watch, generation: int) -> None:
        shipped, best = self.shipped, self.best
        watch.standing(shipped.score if shipped else None, best.score if best else None, generation)

    # --- Validation --------------------------------------------------------------------------------

    def validate(self, workers: Workers, watch: Watch, count: int | None = None) -> None:
        """Plays the shipped values and the best with seeds that no search has used."""
        best = self.best
        if best is None:
            raise TuneError("nothing has been found yet")
        run_seeds = seeds.of_validation(self.task, count)
        outcomes = self._play([None, best.moved], run_seeds, workers, watch, "validation")
        self._study.set_user_attr(
            "validation",
            {
                "label": best.label,
                "moved": best.moved,
                "seeds": run_seeds,
                "shipped": {str(seed): row for seed, row in outcomes[0].rows.items()},
                "best": {str(seed): row for seed, row in outcomes[1].rows.items()},
                "failures": [f.failure for outcome in outcomes for f in outcome.failures],
            },
        )
        self._tell_standing(watch, self.task.search.generations)

    def validation(self) -> "Comparison | None":
        kept = self.attribute("validation")
        return Comparison(self.task, kept) if kept else None


def _middle(trials: Sequence[FrozenTrial]) -> dict[str, float]:
    """The weighted middle of the better half, as an evolution strategy takes it."""
    ranked = sorted(trials, key=lambda t: (-(t.value or 0.0), t.number))
    better = ranked[: max(1, len(ranked) // 2)]
    weights = [math.log(len(better) + 0.5) - math.log(rank + 1) for rank in range(len(better))]
    total = sum(weights)
    return {
        name: sum(weight * t.params[name] for weight, t in zip(weights, better)) / total
        for name in better[0].params
    }


class Comparison:
    """Shipped and best values on the seeds of validation, seed by seed."""

    def __init__(self, task: Task, kept: dict[str, Any]) -> None:
        self._task = task
        self.label: str = kept["label"]
        self.moved: dict[str, float] = kept["moved"]
        self.failures: list[str] = kept["failures"]
        self.seeds = [seed for seed in kept["shipped"] if seed in kept["best"]]
        self.shipped: list[Metrics] = [kept["shipped"][seed] for seed in self.seeds]
        self.best: list[Metrics] = [kept["best"][seed] for seed in self.seeds]

    def scores(self) -> tuple[list[float], list[float]]:
        return [self._task.score(row) for row in self.shipped], [self._task.score(row) for row in self.best]

    def gain(self) -> tuple[float, float]:
        """Mean of the differences of the scores, and half the width of its 95 % confidence interval."""
        shipped, best = self.scores()
        return mean_and_half_width([b - a for a, b in zip(shipped, best)])

    def keeps_limits(self) -> bool:
        means = self._task.average(self.best)
        return all(limit.excess(means[name]) == 0 for name, limit in self._task.limits.items())


# Student's t for 95 % with 1 to 30 degrees of freedom.
_T = (
    12.706, 4.303, 3.182, 2.776, 2.571, 2.447, 2.365, 2.306, 2.262, 2.228,
    2.201, 2.179, 2.160, 2.145, 2.131, 2.120, 2.110, 2.101, 2.093, 2.086,
    2.080, 2.074, 2.069, 2.064, 2.060, 2.056, 2.052, 2.048, 2.045, 2.042,
)  # fmt: skip


def mean_and_half_width(values: Sequence[float]) -> tuple[float, float]:
    """Mean of the values and half the width of its 95 % confidence interval."""
    if not values:
        return math.nan, math.nan
    mean = statistics.fmean(values)
    if len(values) < 2:
        return mean, math.inf
    t = _T[min(len(values) - 2, len(_T) - 1)]
    return mean, t * statistics.stdev(values) / math.sqrt(len(values))
