"""One HTML file about a study, with pictures as inline SVG: it opens anywhere, without a network."""

import html
import io
import statistics
import time
from collections.abc import Callable, Sequence
from pathlib import Path

import matplotlib
import optuna
from optuna.trial import FrozenTrial, TrialState

from tuning.apply import diff, found_values, reason_to_refuse
from tuning.display import shown_score
from tuning.errors import TuneError
from tuning.study import Comparison, Study, mean_and_half_width
from tuning.task import PENALTY

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402  the backend must be chosen before

# Text stays text: smaller, and a reader's fonts serve.
matplotlib.rcParams.update(
    {
        "svg.fonttype": "none",
        "svg.hashsalt": "tune",
        "font.family": "sans-serif",
        "axes.grid": True,
        "grid.alpha": 0.3,
    }
)
_SHIPPED, _BEST, _TRIAL, _MIDDLE = "#7a7f87", "#1b7f4d", "#9db7d6", "#1f4e8c"
_MOST_IMPORTANT = 20

_PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{title}</title><style>
body {{ font: 15px/1.5 sans-serif; max-width: 62em; margin: 2em auto; padding: 0 1em; color: #222; }}
h1, h2 {{ line-height: 1.2; }} svg {{ max-width: 100%; height: auto; }}
table {{ border-collapse: collapse; }} td, th {{ padding: .15em .8em; border-bottom: 1px solid #ddd; text-align: right; }}
td:first-child, th:first-child {{ text-align: left; }} pre {{ background: #f5f5f5; padding: 1em; overflow-x: auto; }}
.plus {{ color: #1b7f4d; }} .minus {{ color: #b3261e; }} .note {{ color: #666; }}
</style></head><body>
{body}
</body></html>
"""


def write_report(study: Study, path: Path) -> None:
    done = [t for t in study.trials if t.state == TrialState.COMPLETE]
    if not done:
        raise TuneError(f"the study '{study.name}' has no finished trial to report")
    sections = [
        f"<h1>{html.escape(study.name)}</h1>",
        _summary(study),
        _course(study, done),
        _importance(study, done),
        _validation(study),
        _spread(study),
        _changes(study),
        _failures(study),
        _task(study),
    ]
    page = _PAGE.format(title=html.escape(study.name), body="\n".join(filter(None, sections)))
    try:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(page, encoding="utf-8")
    except OSError as error:
        raise TuneError(f"cannot write the report {path}: {error.strerror}") from None


def _section(title: str, *parts: str) -> str:
    return f"<h2>{title}</h2>\n" + "\n".join(parts)


def _paragraph(text: str, kind: str = "") -> str:
    return f'<p class="{kind}">{text}</p>' if kind else f"<p>{text}</p>"


def _table(heads: Sequence[str], rows: Sequence[Sequence[str]]) -> str:
    head = "".join(f"<th>{cell}</th>" for cell in heads)
    body = "\n".join("<tr>" + "".join(f"<td>{cell}</td>" for cell in row) + "</tr>" for row in rows)
    return f"<table><tr>{head}</tr>\n{body}</table>"


def _picture(width: float, height: float, draw: Callable[[plt.Axes], None]) -> str:
    figure, axes = plt.subplots(figsize=(width, height), layout="constrained")
    draw(axes)
    text = io.StringIO()
    figure.savefig(text, format="svg", metadata={"Date": None})
    plt.close(figure)
    return text.getvalue()[text.getvalue().index("<svg") :]


# --- Sections --------------------------------------------------------------------------------------


def _summary(study: Study) -> str:
    task, trials = study.task, study.trials
    failed = sum(trial.state == TrialState.FAIL for trial in trials)
    objective = " ".join(
        f"{weight:+g} &times; {html.escape(name)}" for name, weight in task.objective.items()
    )
    limits = ", ".join(f"{html.escape(n)} within {l.low:g} to {l.high:g}" for n, l in task.limits.items())
    search = task.search
    rows = [
        ("task", html.escape(task.title)),
        ("score", objective + (f"; hard limits: {limits}" if limits else "")),
        (
            "search",
            f"{search.sampler}, {search.generations} generations of {search.population}, {search.seeds} seeds each, study seed {search.seed}",
        ),
        ("trials", f"{len(trials)}, {failed} of them failed"),
        ("on the seeds of belief", f"shipped {_contender(study.shipped)}, best {_contender(study.best)}"),
        ("programs, values, task", f"{study.version}, {study.attribute('base_hash')}, {task.hash}"),
        ("written", time.strftime("%Y-%m-%d %H:%M")),
    ]
    return (
        "<table>"
        + "".join(f"<tr><td>{a}</td><td style='text-align:left'>{b}</td></tr>" for a, b in rows)
        + "</table>"
    )


def _contender(contender) -> str:  # type: ignore[no-untyped-def]
    return f"{shown_score(contender.score)} ({html.escape(contender.label)})" if contender else "-"


def _within_limits(trials: Sequence[FrozenTrial]) -> list[FrozenTrial]:
    return [t for t in trials if t.value is not None and t.value > PENALTY]


def _course(study: Study, done: Sequence[FrozenTrial]) -> str:
    good = _within_limits(done)
    by_generation: dict[int, list[float]] = {}
    for trial in good:
        by_generation.setdefault(trial.user_attrs["generation"], []).append(trial.value or 0.0)

    def draw(axes: plt.Axes) -> None:
        axes.scatter(
            [t.user_attrs["generation"] for t in good],
            [t.value for t in good],
            s=14,
            color=_TRIAL,
            label="trials",
        )
        generations = sorted(by_generation)
        axes.plot(
            generations,
            [statistics.median(by_generation[g]) for g in generations],
            color=_MIDDLE,
            label="median of a generation",
        )
        if study.shipped and study.shipped.score > PENALTY:
            axes.axhline(
                study.shipped.score, color=_SHIPPED, linestyle="--", label="shipped values, seeds of belief"
            )
        if study.best and study.best.score > PENALTY:
            axes.axhline(study.best.score, color=_BEST, linestyle="--", label="best, seeds of belief")
        axes.set_xlabel("generation")
        axes.set_ylabel("score")
        axes.legend(fontsize="small")

    broken = len(done) - len(good)
    note = f" {broken} trials broke a hard limit and are not shown." if broken else ""
    return _section(
        "How the search went",
        _paragraph(
            "Each generation has seeds of its own, the same for all of its candidates; so scores of different generations differ by luck too."
            + note,
            "note",
        ),
        _picture(8, 3.6, draw),
    )


def _importance(study: Study, done: Sequence[FrozenTrial]) -> str:
    good = _within_limits(done)
    if len(good) < 8 or len({t.value for t in good}) < 2:
        return _section("What mattered", _paragraph("There are too few trials to tell.", "note"))
    # Those that broke a limit would outweigh everything else.
    scratch = optuna.create_study(direction="maximize")
    scratch.add_trials(
        optuna.trial.create_trial(params=t.params, distributions=t.distributions, value=t.value) for t in good
    )
    found = optuna.importance.get_param_importances(
        scratch, evaluator=optuna.importance.FanovaImportanceEvaluator(seed=1)
    )
    shown = list(found.items())[:_MOST_IMPORTANT]

    def draw(axes: plt.Axes) -> None:
        axes.barh([name for name, _ in shown][::-1], [share for _, share in shown][::-1], color=_MIDDLE)
        axes.set_xlabel("share of the variance of the score (functional ANOVA)")

    return _section("What mattered", _picture(8, 0.8 + 0.26 * len(shown), draw))


def _validation(study: Study) -> str:
    comparison = study.validation()
    if comparison is None or not comparison.seeds:
        return _section(
            "Shipped against best", _paragraph("Not played with the seeds of validation yet.", "note")
        )
    shipped, best = comparison.scores()
    gain, half = comparison.gain()
    rows = [_row("score", shipped, best)]
    names = list(study.task.objective) + [n for n in comparison.best[0] if n not in study.task.objective]
    for name in names:
        rows.append(
            _row(name, [row[name] for row in comparison.shipped], [row[name] for row in comparison.best])
        )
    refusal = reason_to_refuse(comparison)
    verdict = (
        f"The best is better by {gain:.3f}; with 95 % certainty by {gain - half:.3f} to {gain + half:.3f}."
    )
    return _section(
        "Shipped against best",
        _paragraph(
            f"{html.escape(comparison.label)}, on {len(comparison.seeds)} seeds that no search has used"
            f" ({comparison.seeds[0]} to {comparison.seeds[-1]}); means with 95 % confidence intervals, differences seed by seed.",
            "note",
        ),
        _paragraph(verdict + (f" Not to be taken over: {html.escape(refusal)}." if refusal else "")),
        _table(("", "shipped", "best", "difference"), rows),
    )


def _interval(values: Sequence[float]) -> str:
    mean, half = mean_and_half_width(values)
    return f"{mean:.3f} &plusmn; {half:.3f}"


def _row(name: str, shipped: Sequence[float], best: Sequence[float]) -> list[str]:
    differences = [b - a for a, b in zip(shipped, best)]
    return [html.escape(name), _interval(shipped), _interval(best), _interval(differences)]


def _spread(study: Study) -> str:
    comparison = study.validation()
    if comparison is None or not comparison.seeds:
        return ""
    names = [n for n in comparison.best[0] if _varies(comparison, n)]
    columns = 4
    lines = -(-len(names) // columns)
    if not names:
        return ""
    figure, grid = plt.subplots(lines, columns, figsize=(9, 1.9 * lines), squeeze=False, layout="constrained")
    for at, axes in enumerate(grid.flat):
        if at >= len(names):
            axes.axis("off")
            continue
        name = names[at]
        boxes = axes.boxplot(
            [[row[name] for row in comparison.shipped], [row[name] for row in comparison.best]],
            labels=["shipped", "best"],
            patch_artist=True,
            widths=0.6,
            flierprops={"markersize": 3},
        )
        for box, colour in zip(boxes["boxes"], (_SHIPPED, _BEST)):
            box.set(facecolor=colour, alpha=0.5)
        axes.set_title(name, fontsize="small")
        axes.tick_params(labelsize="x-small")
    text = io.StringIO()
    figure.savefig(text, format="svg", metadata={"Date": None})
    plt.close(figure)
    picture = text.getvalue()[text.getvalue().index("<svg") :]
    return _section(
        "Spread of the metrics", _paragraph("One value for each seed of validation.", "note"), picture
    )


def _varies(comparison: Comparison, name: str) -> bool:
    return len({row[name] for row in comparison.shipped + comparison.best}) > 1


def _changes(study: Study) -> str:
    if study.best is None:
        return ""
    base = study.task.base
    lines = []
    for line in diff(base, found_values(study, base)).splitlines():
        text = html.escape(line)
        kind = "plus" if line.startswith("+") else "minus" if line.startswith("-") else ""
        lines.append(f'<span class="{kind}">{text}</span>' if kind else text)
    return _section("Changed values", "<pre>" + "\n".join(lines or ["none"]) + "</pre>")


def _failures(study: Study) -> str:
    failed = [t for t in study.trials if t.state == TrialState.FAIL]
    if not failed:
        return ""
    parts = []
    for trial in failed:
        kept = study.directory / "failures" / f"trial-{trial.number}.txt"
        output = kept.read_text(encoding="utf-8", errors="replace") if kept.exists() else ""
        reason = html.escape(str(trial.user_attrs.get("failure", "unknown")))
        parts.append(
            f"<details><summary>trial {trial.number}: {reason}</summary><pre>{html.escape(output)}</pre></details>"
        )
    return _section("Failed trials", *parts)


def _task(study: Study) -> str:
    return _section(
        "Task",
        f"<details><summary>the task file</summary><pre>{html.escape(study.task.text)}</pre></details>",
    )
