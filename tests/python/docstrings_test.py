"""The examples of all docstrings do what they say, and everything public has a docstring."""

import doctest
import importlib
import inspect
import pkgutil

import pytest
import tessary

MODULES = ["tessary"] + [f"tessary.{module.name}" for module in pkgutil.iter_modules(tessary.__path__)
                         if module.name != "_tessary"]


@pytest.mark.parametrize("name", MODULES)
def test_examples(name):
    result = doctest.testmod(importlib.import_module(name), optionflags=doctest.ELLIPSIS)
    assert result.failed == 0


def test_every_function_has_an_example():
    functions = [getattr(module, name) for module in (tessary, tessary.arrays) for name in module.__all__]
    lacking = [function.__name__ for function in functions if inspect.isfunction(function)
               and ">>>" not in function.__doc__ and "see `" not in function.__doc__]
    assert lacking == []
