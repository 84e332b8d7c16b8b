import subprocess
from pathlib import Path

import pytest

from tuning import paths
from tuning.configs import Configs, read_directory, read_value, set_value, without_numbers, write_directory
from tuning.errors import TuneError

TEXT = """# A file.

[one]
# With a comment.
list =  1  2\t3   # and another
plain = 4
[two]
plain = 5
[one]
plain = 6
"""


@pytest.fixture
def configs() -> Configs:
    return {"File.conf": TEXT}


def test_a_value_is_found_by_group_and_key_and_the_last_one_counts(configs: Configs) -> None:
    assert read_value(configs, "all", "File", "one", "list") == ["1", "2", "3"]
    assert read_value(configs, "all", "File", "one", "plain") == ["6"]
    assert read_value(configs, "all", "File", "two", "plain") == ["5"]


def test_setting_a_value_keeps_comments_order_and_blanks(configs: Configs) -> None:
    set_value(configs, "all", "File", "one", "list", ["1", "-2.5", "3"])
    assert configs["File.conf"] == TEXT.replace("1  2\t3", "1  -2.5\t3")
    set_value(configs, "all", "File", "one", "plain", ["7"])
    assert configs["File.conf"].endswith("[one]\nplain = 7\n")


@pytest.mark.parametrize(
    "file, group, key", [("None", "one", "plain"), ("File", "three", "plain"), ("File", "one", "none")]
)
def test_what_is_not_there_is_told(configs: Configs, file: str, group: str, key: str) -> None:
    with pytest.raises(TuneError):
        read_value(configs, "all", file, group, key)


def test_overlays_hold_only_what_differs_and_win_by_number_over_type(configs: Configs) -> None:
    set_value(configs, "type-2", "File", "one", "plain", ["8"])
    assert configs["overlays/type-2/File.conf"] == "[one]\nplain = 8\n"
    set_value(configs, "number-2", "File", "one", "list", ["9", "9", "9"])
    set_value(configs, "number-2", "File", "two", "plain", ["10"])
    set_value(configs, "number-2", "File", "one", "plain", ["11"])
    assert configs["overlays/number-2/File.conf"] == "[one]\nlist = 9 9 9\nplain = 11\n\n[two]\nplain = 10\n"
    assert configs["File.conf"] == TEXT
    # Number 2 is of type 2, number 11 too.
    assert read_value(configs, "number-11", "File", "one", "plain") == ["8"]
    assert read_value(configs, "number-2", "File", "one", "plain") == ["11"]
    assert read_value(configs, "all", "File", "one", "plain") == ["6"]


def test_beside_others_a_number_may_have_other_values(configs: Configs) -> None:
    set_value(configs, "type-2", "File", "one", "plain", ["8"])
    set_value(configs, "number-2", "File", "one", "list", ["9", "9", "9"])
    set_value(configs, "together-2", "File", "two", "plain", ["12"])
    assert configs["overlays/together-2/File.conf"] == "[two]\nplain = 12\n"
    # What a number has alone holds on beside others, alone it has nothing of what it has beside them.
    assert read_value(configs, "together-2", "File", "one", "plain") == ["8"]
    assert read_value(configs, "together-2", "File", "one", "list") == ["9", "9", "9"]
    assert read_value(configs, "together-2", "File", "two", "plain") == ["12"]
    assert read_value(configs, "number-2", "File", "two", "plain") == ["5"]
    assert without_numbers(configs).keys() == {"File.conf", "overlays/type-2/File.conf"}


@pytest.mark.parametrize(
    "laid_out, scope", [([["2:2"], ["3:4"]], "number"), ([["2:2", "3:4"]], "together")]
)
def test_a_player_gets_what_is_read_here(
    base: Configs, tmp_path: Path, laid_out: list[list[str]], scope: str
) -> None:
    configs = dict(base)
    set_value(configs, "type-2", "omniWalk", "omniwalk", "speed", ["0.5"])
    set_value(configs, "number-2", "omniWalk", "omniwalk", "RotZ", ["1", "-2", "-3", "-4"])
    set_value(configs, "together-2", "omniWalk", "omniwalk", "Xtorso", ["0.25"])
    write_directory(configs, tmp_path / "source")
    assert read_directory(tmp_path / "source") == configs
    for players in laid_out:
        subprocess.run([paths.DEPLOY, tmp_path / "source", tmp_path, *players], check=True)
    for number in (2, 3):
        read = read_directory(tmp_path / str(number) / "Configs")
        for key in ("speed", "RotZ", "Xtorso"):
            expected = read_value(configs, f"{scope}-{number}", "omniWalk", "omniwalk", key)
            assert read_value(read, "all", "omniWalk", "omniwalk", key) == expected


def test_a_directory_without_files_is_told(tmp_path: Path) -> None:
    with pytest.raises(TuneError, match="no configuration files"):
        read_directory(tmp_path)
