"""The examples of the documentation strings."""

import doctest
import importlib
import inspect
import pkgutil

import pytest

import veq
import veq.ensemble

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


# What no small example raises.
WITHOUT = {"UnsupportedError"}


def of_python():
    """Every public class and function, and every method and property that is written in Python."""
    public = [(package, name) for package in (veq, veq.ensemble) for name in package.__all__]
    for package, name in public:
        thing = getattr(package, name)
        yield name, thing
        for owner in thing.__mro__ if inspect.isclass(thing) else ():
            if owner.__module__.startswith("veq."):
                for key, member in vars(owner).items():
                    member = getattr(member, "__func__", member)
                    shown = inspect.isfunction(member) or isinstance(member, property)
                    if shown and not key.startswith("_") and owner.__module__ != "veq._core":
                        yield f"{name}.{key}", member


def test_everything_has_an_example():
    missing = {name for name, thing in of_python() if ">>> " not in (inspect.getdoc(thing) or "")}
    assert missing == WITHOUT
