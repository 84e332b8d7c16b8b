"""Where things are in the project, and the programs of the build that evaluations run."""

import hashlib
import os
from functools import cache
from pathlib import Path

from tuning.errors import TuneError

ROOT = Path(__file__).resolve().parent.parent
CONFIGS = ROOT / "Configs"
TASKS = ROOT / "tuning" / "tasks"
STUDIES = ROOT / "studies"
DEPLOY = ROOT / "scripts" / "lib" / "deploy-configs"
TEAM_TYPES = ROOT / "scripts" / "lib" / "team-types"

# Names the directory of the programs on a machine where they are elsewhere.
PROGRAMS_VARIABLE = "QUOLNARIS_PROGRAMS"
PROGRAMS = ("arena", "quolnaris", "match-figures", "still-players", "motion")


def programs() -> Path:
    """The directory of the built programs on this machine."""
    return Path(os.environ.get(PROGRAMS_VARIABLE) or ROOT / "build" / "release" / "bin")


@cache
def team_types() -> dict[int, int]:
    """Robot type of each uniform number."""
    lines = (line.split() for line in TEAM_TYPES.read_text(encoding="utf-8").splitlines())
    return {int(words[0]): int(words[1]) for words in lines if words and not words[0].startswith("#")}


@cache
def _digest(path: Path, size: int, changed: int) -> str:
    """Size and time of change are there so that a file is read again only when it is another one."""
    del size, changed
    return hashlib.sha256(path.read_bytes()).hexdigest()


def version() -> str:
    """One hash of all that makes a result besides values, scenario and seed: the programs, the layout
    of configurations and the code that measures. Raises TuneError for a program that is missing."""
    files = [programs() / name for name in PROGRAMS]
    files += [DEPLOY, TEAM_TYPES, *(ROOT / "tuning" / name for name in ("evaluation.py", "stage.py"))]
    parts = []
    for path in files:
        try:
            status = path.stat()
        except OSError:
            raise TuneError(f"{path} is missing; build it with scripts/play or scripts/test") from None
        parts.append(f"{path.name} {_digest(path, status.st_size, status.st_mtime_ns)}")
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()[:16]
