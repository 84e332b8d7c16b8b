from pathlib import Path

import pytest
from conftest import SMALL_TASK

from tuning import paths, seeds
from tuning.configs import Configs, read_value, set_value
from tuning.errors import TuneError
from tuning.task import PENALTY, Task, parse_task, read_task

TIES = """
[[key]]
file = "backWalk"
group = "backwalk"
key = "Zankle"
indices = [0, 1, 2]
low = -1
high = 1
step = 0.1
[[tie]]
file = "backWalk"
group = "backwalk"
key = "Zankle"
index = 3
sum = 0
[[tie]]
file = "omniBackWalk"
group = "omnibackwalk"
key = "Zankle"
follows = { file = "backWalk", group = "backwalk", key = "Zankle" }
"""


def parse(text: str, base: Configs) -> Task:
    return parse_task(text, base, paths.ROOT)


@pytest.mark.parametrize("path", sorted(paths.TASKS.glob("*.toml")), ids=lambda path: path.stem)
def test_every_shipped_task_fits_the_shipped_values(path: Path, shipped: Configs) -> None:
    task = read_task(path, shipped)
    start = task.candidate({knob.name: 0.0 for knob in task.knobs})
    assert set(start) >= set(shipped)
    assert all(scenario.runs(start, 1) for scenario in task.scenarios)


BAD = [
    ("[objective]", "[objectives]", "has no 'objectives'"),
    ("touched = 1.0\nfirst_touch = -0.1", "", "at least one metric"),
    ("touched = 1.0", "wins = 1.0", "'wins', which is no metric"),
    ("touched = 1.0", 'touched = "much"', "is no number"),
    ("[validation]", "[limits]\nwins = 1\n[validation]", "[limits] names 'wins'"),
    ('kind = "kick-off"', 'kind = "chess"', "kind is 'chess'"),
    ("duration = 5", "duration = -5", "duration = -5 cannot be"),
    ("duration = 5", "length = 5", "no option 'length'"),
    ("population = 5", "population = 0", "[search] population = 0"),
    ("population = 5", 'sampler = "luck"', "sampler 'luck'"),
    ("population = 5", "sampler = 1", "must be a word"),
    ('key = "p11"', 'key = "p12"', "no key 'p12'"),
    ('file = "Formation"', 'file = "Deformation"', "no file Deformation.conf"),
    ('group = "Beam"', 'scope = "number-12"\ngroup = "Beam"', "scope 'number-12'"),
    ("low = [-0.6, -0.3, -40]", "low = [-0.2, -0.3, -40]", "exclude the shipped value"),
    ("low = [-0.6, -0.3, -40]", "low = [-0.6, -0.3]", "2 numbers for 3 values"),
    ("low = [-0.6, -0.3, -40]", "low = [-0.6, -0.3, 50]", "low must be below high"),
    ("low = [-0.6, -0.3, -40]", "", "None is no number"),
    ("step = [0.05, 0.05, 8]", "step = 0", "step above 0"),
    ("step = [0.05, 0.05, 8]", "step = 1\nstart = [0.1, 0, 0]", "exclude the start"),
    ("step = [0.05, 0.05, 8]", "step = 1\nindices = [0, 3]", "indices [0, 3]"),
    ("title", "title =", "no TOML"),
]


@pytest.mark.parametrize("old, new, told", BAD, ids=[told for _, _, told in BAD])
def test_what_is_wrong_with_a_task_is_told_in_one_line(base: Configs, old: str, new: str, told: str) -> None:
    assert old in SMALL_TASK
    with pytest.raises(TuneError) as error:
        parse(SMALL_TASK.replace(old, new), base)
    assert told in str(error.value)
    assert "\n" not in str(error.value)


def test_a_file_that_cannot_be_read_is_told(base: Configs, tmp_path: Path) -> None:
    with pytest.raises(TuneError, match="cannot read the task"):
        read_task(tmp_path / "none.toml", base)


def test_ties_make_lists_equal_and_sums_whole(base: Configs) -> None:
    task = parse(SMALL_TASK + TIES, base)
    moved = {knob.name: 0.0 for knob in task.knobs}
    moved["backWalk Zankle[0]"] = 1.5
    candidate = task.candidate(moved)
    lift = [float(atom) for atom in read_value(candidate, "all", "backWalk", "backwalk", "Zankle")]
    shipped = [float(atom) for atom in read_value(base, "all", "backWalk", "backwalk", "Zankle")]
    assert lift[0] == pytest.approx(shipped[0] + 0.15)
    assert sum(lift) == pytest.approx(0, abs=1e-9)
    assert read_value(candidate, "all", "omniBackWalk", "omnibackwalk", "Zankle") == [f"{z:g}" for z in lift]


def test_a_list_follows_another_at_a_distance(base: Configs) -> None:
    ties = TIES.replace(
        '[[tie]]\nfile = "omniBackWalk"', '[[tie]]\nplus = [1, 0, -0.5, 0]\nfile = "omniBackWalk"'
    )
    assert ties != TIES
    task = parse(SMALL_TASK + ties, base)
    candidate = task.candidate({knob.name: 0.0 for knob in task.knobs})
    leader = [float(z) for z in read_value(candidate, "all", "backWalk", "backwalk", "Zankle")]
    follower = [float(z) for z in read_value(candidate, "all", "omniBackWalk", "omnibackwalk", "Zankle")]
    assert follower == pytest.approx([leader[0] + 1, leader[1], leader[2] - 0.5, leader[3]], abs=1e-5)


def test_a_number_follows_what_holds_for_all(base: Configs) -> None:
    tie = """
[[tie]]
scope = "number-10"
file = "Formation"
group = "Beam"
key = "p11"
follows = { scope = "all", file = "Formation", group = "Beam", key = "p11" }
"""
    own = dict(base)
    set_value(own, "number-10", "Formation", "Beam", "p11", ["-1", "2", "3"])
    task = parse(SMALL_TASK + tie, own)
    candidate = task.candidate({knob.name: float(knob.name == "Formation p11[1]") for knob in task.knobs})
    everybody = read_value(candidate, "all", "Formation", "Beam", "p11")
    assert float(everybody[1]) == pytest.approx(0.105)
    assert read_value(candidate, "number-10", "Formation", "Beam", "p11") == everybody


@pytest.mark.parametrize("old, new, told", [
    ("index = 3", "index = 2", "moves too"),
    ("sum = 0", "sum = 0\nplus = [0, 0, 0, 0]", "'plus' needs 'follows'"),
    ('file = "omniBackWalk"', 'plus = [1]\nfile = "omniBackWalk"', "plus must be a list of 4"),
    ("index = 3", "index = 4", "not within 0 to 3"),
    ("sum = 0", "", "either 'follows' or 'sum'"),
    ('key = "Zankle" }', 'key = "speed" }', "another length"),
])  # fmt: skip
def test_ties_that_cannot_be_are_told(base: Configs, old: str, new: str, told: str) -> None:
    with pytest.raises(TuneError, match=told):
        parse(SMALL_TASK + TIES.replace(old, new), base)


def test_values_for_one_number_go_to_its_overlay(base: Configs) -> None:
    task = parse(SMALL_TASK.replace('file = "Form', 'scope = "number-11"\nfile = "Form'), base)
    candidate = task.candidate({knob.name: 1.0 for knob in task.knobs})
    assert candidate["Formation.conf"] == base["Formation.conf"]
    assert candidate["overlays/number-11/Formation.conf"] == "[Beam]\np11 = -0.17 0.105 8\n"


def test_a_broken_limit_counts_for_more_than_any_score(base: Configs) -> None:
    task = parse(SMALL_TASK.replace("[search]", "[limits]\nfalls = 1\n[search]"), base)
    row = {"touched": 1.0, "first_touch": 2.0, "falls": 1.0}
    assert task.judged(row) == pytest.approx(0.8)
    assert task.judged({**row, "falls": 3.0}) < task.judged({**row, "falls": 2.0}) < PENALTY


def test_whole_numbers_stay_whole(base: Configs) -> None:
    more = '[[key]]\nfile = "decision"\ngroup = "time"\nkey = "t"\nindices = [3]\nlow = 0\nhigh = 2000\nstep = 2\ntype = "int"\n'
    task = parse(SMALL_TASK + more, base)
    candidate = task.candidate({knob.name: 0.7 for knob in task.knobs})
    shipped = int(read_value(base, "all", "decision", "time", "t")[3])
    assert read_value(candidate, "all", "decision", "time", "t")[3] == str(shipped + 1)  # 0.7 steps of 2


def test_search_never_draws_a_seed_of_validation(small_task: Task) -> None:
    drawn = seeds.of_belief(small_task)
    for generation in range(2000):
        fresh = seeds.of_generation(small_task, generation)
        assert len(set(fresh)) == small_task.search.seeds
        drawn += fresh
    assert not set(drawn) & (set(range(9000, 10000)) | set(seeds.of_validation(small_task)))
    # Fresh in every generation.
    assert len(set(drawn)) > 0.999 * len(drawn)


def test_several_scenarios_have_metrics_with_names_in_front(base: Configs) -> None:
    text = SMALL_TASK.replace("[objective]", '[[scenario]]\nkind = "turn"\nangles = [90]\n[objective]')
    text = text.replace("touched = 1.0\nfirst_touch = -0.1", '"kick-off.touched" = 1\n"turn.seconds" = -1')
    task = parse(text, base)
    assert [len(scenario.runs(base, 1)) for scenario in task.scenarios] == [1, 1]
    assert "turn.drift" in task.metric_names()
