"""The examples of the documentation strings."""

import doctest
import importlib
import pkgutil

import pytest

import veq

MODULES = ["veq"] + [
    module.name
    for module in pkgutil.walk_packages(veq.__path__, "veq.")
    if not module.name.endswith("._core")
]


@pytest.mark.parametrize("name", MODULES)
def test_examples(name):
    module = importlib.import_module(name)
    found = doctest.testmod(module, extraglobs={"veq": veq}, optionflags=doctest.ELLIPSIS)
    assert found.failed == 0


def test_there_are_examples():
    tests = [
        test
        for name in MODULES
        for test in doctest.DocTestFinder(exclude_empty=True).find(importlib.import_module(name))
    ]
    assert sum(len(test.examples) for test in tests) >= 30
