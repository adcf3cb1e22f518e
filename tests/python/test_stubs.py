"""The type stubs and docstrings say what the module has."""

import ast
import inspect
import re

import pytest
from conftest import ROOT

import tonewright

STUB = ast.parse((ROOT / "python/tonewright/__init__.pyi").read_text())
CLASSES = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
FUNCTIONS = {node.name: node for node in STUB.body if isinstance(node, ast.FunctionDef)}
METHODS = [(c, f.name, f) for c, node in CLASSES.items() for f in node.body if isinstance(f, ast.FunctionDef)]


def public(of):
    return {name for name in vars(of) if not name.startswith("_")}


def told(function):
    """Names and defaults of a function's arguments, as the words of its refusal tell them."""
    with pytest.raises(TypeError) as refusal:
        function(no_such_argument=1)
    signature = re.search(r"1\. \((.*)\) -> ", str(refusal.value)).group(1)
    return [(name, default) for name, default in re.findall(r"(\w+): [\w.]+(?:\[.*?\]+)?(?: = ([^,]+))?", signature)]


def stubbed(function):
    positional, keyword = function.args.args, function.args.kwonlyargs
    defaults = [None] * (len(positional) - len(function.args.defaults)) + function.args.defaults
    pairs = [*zip(positional, defaults), *zip(keyword, function.args.kw_defaults)]
    return [(a.arg, "" if d is None else repr(ast.literal_eval(d))) for a, d in pairs]


def test_every_name_has_its_stub():
    module = {name for name in public(tonewright) if not inspect.ismodule(getattr(tonewright, name))}
    assert module == CLASSES.keys() | FUNCTIONS.keys()
    for name, node in CLASSES.items():
        if not issubclass(getattr(tonewright, name), Exception):
            assert public(getattr(tonewright, name)) == {f.name for f in node.body if isinstance(f, ast.FunctionDef)}


@pytest.mark.parametrize("name", FUNCTIONS)
def test_functions_take_what_their_stubs_say(name):
    function = getattr(tonewright, name)
    assert told(function) == stubbed(FUNCTIONS[name])
    assert len(function.__doc__) > 60


@pytest.mark.parametrize("owner, name, node", METHODS)
def test_methods_and_properties_are_as_their_stubs_say(owner, name, node):
    member = inspect.getattr_static(getattr(tonewright, owner), name)
    is_property = bool(node.decorator_list)
    assert isinstance(member, property) == is_property
    if not is_property:
        assert member.__doc__
