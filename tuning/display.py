"""What a study shows while it runs: a live display on a terminal, plain lines elsewhere."""

import sys
import time
from contextlib import AbstractContextManager

from rich.console import Console, Group
from rich.live import Live
from rich.panel import Panel
from rich.progress import BarColumn, MofNCompleteColumn, Progress, TextColumn, TimeElapsedColumn
from rich.table import Table

from tuning.evaluation import Result, Run
from tuning.task import PENALTY

_REDRAWS = 2  # a second


def shown_score(score: float | None) -> str:
    if score is None:
        return "-"
    return "breaks a limit" if score <= PENALTY else f"{score:.3f}"


class Display(AbstractContextManager["Display"]):
    """`planned`: runs that the whole study takes from here on, for the time left."""

    def __init__(self, title: str, planned: int, workers: int, plain: bool = False) -> None:
        self._title = title
        self._planned = planned
        self._workers = workers
        self._console = Console(stderr=True)
        self._began = time.monotonic()
        self._done = self._failed = 0
        self._step = ""
        self._shipped: float | None = None
        self._best: float | None = None
        self._generation = 0
        self._bars = Progress(
            TextColumn("{task.description}"), BarColumn(), MofNCompleteColumn(), TimeElapsedColumn()
        )
        self._bar = self._bars.add_task("", total=1)
        # The last one: it draws at once.
        self._live = None
        if not plain and self._console.is_terminal:
            self._live = Live(console=self._console, refresh_per_second=_REDRAWS, get_renderable=self._render)

    def __enter__(self) -> "Display":
        if self._live:
            self._live.__enter__()
        return self

    def __exit__(self, *error: object) -> None:
        if self._live:
            self._live.__exit__(None, None, None)

    # --- What is told ------------------------------------------------------------------------------

    def begin(self, title: str, runs: int) -> None:
        self._step = title
        self._bars.reset(self._bar, total=max(runs, 1), description=title)
        if not self._live and runs:
            self._say(f"{title}: {runs} runs")

    def progress(self, run: Run, result: Result) -> None:
        self._done += 1
        self._failed += result.failure is not None
        self._bars.advance(self._bar)
        if result.failure is not None:
            self.note(f"a run failed ({run.kind}, seed {run.seed}): {result.failure}")

    def note(self, text: str) -> None:
        if self._live:
            self._live.console.print(text, highlight=False)
        else:
            self._say(text)

    def standing(self, shipped: float | None, best: float | None, generation: int) -> None:
        self._shipped, self._best, self._generation = shipped, best, generation
        if not self._live:
            left = self.time_left()
            self._say(f"shipped {shown_score(shipped)}, best {shown_score(best)}, {left} left")

    # --- What is shown -----------------------------------------------------------------------------

    def _say(self, text: str) -> None:
        stamp = time.strftime("%H:%M:%S")
        print(f"tune: {stamp} {text}", file=sys.stderr, flush=True)

    def time_left(self) -> str:
        if not self._done:
            return "-"
        seconds = (time.monotonic() - self._began) / self._done * max(self._planned - self._done, 0)
        hours, rest = divmod(int(seconds), 3600)
        return f"{hours}:{rest // 60:02d} h" if hours else f"{rest // 60}:{rest % 60:02d} min"

    def _render(self) -> Panel:
        table = Table.grid(padding=(0, 2))
        table.add_row("shipped values", shown_score(self._shipped))
        table.add_row("best so far", f"[bold]{shown_score(self._best)}[/bold]")
        failed = f", {self._failed} failed" if self._failed else ""
        table.add_row(
            "runs", f"{self._done} of about {self._planned} done, {self._workers} at a time{failed}"
        )
        table.add_row("time left", self.time_left())
        return Panel(Group(table, self._bars), title=self._title, subtitle="Ctrl-C ends; resume goes on")
