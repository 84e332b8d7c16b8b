"""Takes what a study has found over into a configuration directory."""

import difflib
from pathlib import Path

from tuning.configs import Configs, read_directory, write_directory
from tuning.errors import TuneError
from tuning.study import Comparison, Study


def reason_to_refuse(comparison: Comparison | None) -> str | None:
    """Why the best of a study should not be taken over; None if it may be."""
    if comparison is None:
        return "the best has not been played with the seeds of validation yet"
    if not comparison.seeds:
        return "no run with the seeds of validation worked out"
    gain, half = comparison.gain()
    if not gain > 0:
        return f"on the seeds of validation the best is not better than the shipped values ({gain:+.3f} +- {half:.3f})"
    if not comparison.keeps_limits():
        return "on the seeds of validation the best breaks a hard limit"
    return None


def found_values(study: Study, base: Configs) -> Configs:
    """The base with the best candidate's values set; nothing else of it is changed."""
    comparison = study.validation()
    best = study.best
    if best is None or best.moved is None:
        raise TuneError(f"the study '{study.name}' has found nothing yet")
    candidate = study.configs_of(comparison.moved if comparison else best.moved)
    result = dict(base)
    places = [knob.place for knob in study.task.knobs] + [tie.target for tie in study.task.ties]
    for place in dict.fromkeys(places):
        place.read(base)  # complains if the directory does not have it any more
        if place.read(candidate) != place.read(result):
            place.write(result, place.read(candidate))
    return result


def apply(study: Study, directory: Path, force: bool) -> list[str]:
    """Writes the values in place. Returns the names of the files that have changed."""
    reason = reason_to_refuse(study.validation())
    if reason and not force:
        raise TuneError(f"{reason}; --force takes it over all the same")
    before = read_directory(directory)
    after = found_values(study, before)
    changed = {name: text for name, text in after.items() if before.get(name) != text}
    write_directory(changed, directory)
    return list(changed)


def diff(before: Configs, after: Configs) -> str:
    """The changed values as a unified diff."""
    lines: list[str] = []
    for name in sorted(after):
        old, new = before.get(name, ""), after[name]
        if old != new:
            lines += difflib.unified_diff(
                old.splitlines(), new.splitlines(), f"a/Configs/{name}", f"b/Configs/{name}", lineterm="", n=1
            )
    return "\n".join(lines)
