"""The names hosts rely on are the same everywhere: the module's
enumerations against the C++ header (the C header is written from the same
list, and checked against it where it is written), and the module against
its type stubs."""

import ast
import re

import velqua
from conftest import SOURCE


def enumerations(header):
    text = (SOURCE / "include" / "velqua" / header).read_text()
    return {name: dict((m, int(v)) for m, v in re.findall(r"(\w+) = (-?\d+)", body))
            for name, body in re.findall(r"enum (\w+)(?: : int32_t)? \{(.*?)\}", text, re.S)}


def test_the_enumerations_agree_in_cpp_c_and_python():
    cpp = enumerations("enums.h")
    assert len(cpp) == 10 and sum(len(m) for m in cpp.values()) > 150
    python = {name: {m.name: int(m) for m in getattr(velqua, name)} for name in cpp}
    assert python == cpp


def stub_members():
    tree = ast.parse((SOURCE / "bindings" / "python" / "velqua" / "__init__.pyi").read_text())
    members = {}
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            members[node.name] = {n.name if isinstance(n, ast.FunctionDef) else n.target.id
                                  for n in node.body if isinstance(n, (ast.FunctionDef, ast.AnnAssign))}
        elif isinstance(node, ast.FunctionDef):
            members[node.name] = set()
    return members


def test_the_stubs_describe_the_module():
    def public(cls):
        return {m for m in vars(cls) if not m.startswith("_")}

    runtime = {
        "clsCfgConmut": public(velqua.clsCfgConmut) | {"__init__"},
        "clsTraductor": public(velqua.clsTraductor) | {"__init__"},
        "Translation": public(velqua.Translation) | {"__next__"},
        "Call": set(velqua.Call._fields),
        "Error": set(vars(velqua.Error(13, "Velqua", ""))) | {"__init__"},
    }
    stubs = stub_members()
    for name, members in runtime.items():
        assert stubs[name] == members, name
    assert "translate" in stubs
