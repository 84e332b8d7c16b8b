"""Programs of one run: started, watched and ended together, in a directory of their own.

Nothing that is started here outlives its worker, however that ends: a player whose server has gone would
spin for ever.
"""

import os
import select
import shutil
import signal
import subprocess
import tempfile
import time
from collections.abc import Sequence
from dataclasses import dataclass, field
from pathlib import Path

# The kernel ends a program when the worker that started it ends.
_LEASH = ("setpriv", "--pdeathsig", "KILL", "--")
# What is kept of a program's output.
_KEPT_OUTPUT = 4000
_POLL = 0.002  # s
_START_LIMIT = 60.0  # s for a program to begin


class RunFailed(Exception):
    """A program crashed, hung or was killed. The text says which and how."""


@dataclass
class Program:
    name: str
    process: subprocess.Popen[bytes]
    output: Path
    watch: int  # a descriptor that becomes readable when the program ends
    status: int | None = None
    seconds: float = 0.0  # of processor time, once it has ended


@dataclass
class Stage:
    """A directory and the programs that run in it. To be used with `with`."""

    parent: Path | None = None
    directory: Path = field(init=False)
    programs: list[Program] = field(default_factory=list)

    def __enter__(self) -> "Stage":
        self.directory = Path(tempfile.mkdtemp(prefix="run-", dir=self.parent))
        return self

    def __exit__(self, *_: object) -> None:
        self.end()
        shutil.rmtree(self.directory, ignore_errors=True)

    def start(self, name: str, command: Sequence[str | Path], directory: Path | None = None) -> Program:
        """Starts a program; its output goes to a file."""
        output = self.directory / f"{name}.out"
        with output.open("wb") as file:
            process = subprocess.Popen(
                [*_LEASH, *map(str, command)],
                cwd=directory or self.directory,
                stdin=subprocess.DEVNULL,
                stdout=file,
                stderr=subprocess.STDOUT,
                start_new_session=True,
            )
        program = Program(name, process, output, os.pidfd_open(process.pid))
        self.programs.append(program)
        return program

    def _collect(self, program: Program, wait: bool) -> None:
        """Notes status and processor time of a program that has ended."""
        if program.status is not None:
            return
        pid, status, usage = os.wait4(program.process.pid, 0 if wait else os.WNOHANG)
        if pid == 0:
            return
        program.status = os.waitstatus_to_exitcode(status)
        program.process.returncode = program.status
        program.seconds = usage.ru_utime + usage.ru_stime
        os.close(program.watch)

    def check(self) -> None:
        """Raises RunFailed if a program has failed."""
        for program in self.programs:
            self._collect(program, wait=False)
            if program.status:
                raise RunFailed(_how_it_ended(program))

    def wait_for(self, program: Program, limit: float) -> None:
        """Waits until the program has ended well. Raises RunFailed if it or another one fails, or
        after `limit` seconds."""
        end = time.monotonic() + limit
        while program.status is None:
            poll = select.poll()
            for other in self.programs:
                if other.status is None:
                    poll.register(other.watch, select.POLLIN)
            if not poll.poll(max(0.0, end - time.monotonic()) * 1000):
                raise RunFailed(f"{program.name} had not ended after {limit:.0f} s")
            self.check()

    def read_line_with(self, program: Program, mark: str) -> str:
        """The first line of the program's output that holds `mark`, once it is there."""
        end = time.monotonic() + _START_LIMIT
        while time.monotonic() < end:
            for line in program.output.read_text(errors="replace").splitlines(keepends=True):
                if mark in line and line.endswith("\n"):
                    return line
            self.check()
            time.sleep(_POLL)
        raise RunFailed(f"{program.name} did not start")

    def wait_for_links(self, port: int, count: int) -> None:
        """Waits until `count` connections to the port are up. Who is connected before the next one is
        started has the earlier place in the server's order, however busy the machine is."""
        end = time.monotonic() + _START_LIMIT
        peer = f":{port:04X}"
        while time.monotonic() < end:
            with open("/proc/self/net/tcp", encoding="ascii") as table:
                up = sum(words[2].endswith(peer) and words[3] == "01" for words in map(str.split, table))
            if up >= count:
                return
            self.check()
            time.sleep(_POLL)
        raise RunFailed(f"{self.programs[-1].name} did not connect")

    def end(self) -> None:
        """Ends whatever runs."""
        for program in self.programs:
            if program.status is None:
                # Not through Popen, which would reap one that has just ended, and its figures with it.
                os.kill(program.process.pid, signal.SIGKILL)
        for program in self.programs:
            self._collect(program, wait=True)

    def outputs(self) -> dict[str, str]:
        """The ends of what the programs have written."""
        kept = {}
        for program in self.programs:
            with program.output.open("rb") as file:
                file.seek(max(0, program.output.stat().st_size - _KEPT_OUTPUT))
                kept[program.name] = file.read().decode(errors="replace").replace("\r", "\n")
        return kept


def _how_it_ended(program: Program) -> str:
    assert program.status is not None
    if program.status < 0:
        return f"{program.name} was ended by signal {-program.status}"
    return f"{program.name} ended with status {program.status}"
