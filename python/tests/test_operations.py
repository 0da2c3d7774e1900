"""What stands in docs/operations.md: each expression gives what is said."""

import ast
import re
from pathlib import Path

import pytest

SOURCES = Path(__file__).parents[2]
PAGE = (Path(__file__).parents[1] / "docs" / "operations.md").read_text()
FIRST = re.search(r"```python\n(.*?)```", PAGE, re.DOTALL).group(1)
ROWS = re.findall(r"^\| `(.+?)` \| `(.+?)` \| (`.+) \|$", PAGE, re.MULTILINE)
NAMED = re.findall(r"^\| .+? \| (?:`.+?` \| )?(`\w+`.*) \|$", PAGE, re.MULTILINE)


@pytest.mark.parametrize(("expression", "gives", "_"), ROWS, ids=[row[0] for row in ROWS])
def test_expression(expression, gives, _, tmp_path):
    space = {}
    exec(FIRST, space)
    space["folder"] = tmp_path
    *before, last = ast.parse(expression).body
    exec(compile(ast.Module(before, []), "row", "exec"), space)
    assert repr(eval(compile(ast.Expression(last.value), "row", "eval"), space)) == gives


def operations():
    """Class and name of all that the page names."""
    for names in NAMED:
        owner = ""
        for name, colon in re.findall(r"`(\w+)`(:?)", names):
            if colon:
                owner = name
            else:
                yield owner, name


def test_every_operation_is_named_once_and_exists():
    named = list(operations())
    assert len(ROWS) >= 80
    # All that are published.
    assert len(named) == len(set(named)) == 376
    headers = "\n".join(path.read_text() for path in sorted(SOURCES.glob("veq/**/*.hpp")))
    words = set(re.findall(r"\w+", headers))
    assert {name for _, name in named if name not in words} == set()
