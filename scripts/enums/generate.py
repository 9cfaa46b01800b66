#!/usr/bin/env python3
"""Writes every listing of the public enumerations from scripts/enums/enums.txt.

    scripts/enums/generate.py          rewrite the generated files
    scripts/enums/generate.py --check  exit 1, naming each file that differs

The C++ header, the C header and the records layer's name tables are written
whole; the Python stubs from their first enumeration class to their end.
"""
import argparse
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE = ROOT / "scripts" / "enums" / "enums.txt"
NOTE = "Generated from scripts/enums/enums.txt by scripts/enums/generate.py."


class Enum:
    def __init__(self, name, kind):
        self.name, self.kind, self.doc, self.members = name, kind, [], []


def parse(text):
    enums = []
    for number, line in enumerate(text.splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        head = re.fullmatch(r"enum (\w+)(?: names=(k\w+))?", line)
        member = re.fullmatch(r"(\w+) = (-?\d+)", line)
        if head:
            enums.append(Enum(head.group(1), head.group(2)))
        elif enums and line.startswith("  ") and not enums[-1].members:
            enums[-1].doc.append(line.strip())
        elif enums and member:
            enums[-1].members.append((member.group(1), int(member.group(2))))
        else:
            raise SystemExit(f"{SOURCE}:{number}: not an enumeration, comment or member: {line}")
    for e in enums:
        if not e.members:
            raise SystemExit(f"{SOURCE}: {e.name} has no member")
        for seen, (name, _) in enumerate(e.members):
            if any(name == other for other, _ in e.members[:seen]):
                raise SystemExit(f"{SOURCE}: {e.name} names {name} twice")
    return enums


def cpp_header(enums):
    out = [
        "// The ten public enumerations of Velqua.",
        "//",
        "// Names and values are fixed: the configuration files store them as plain",
        "// integers and hosts compare them by value. The enumerations are unscoped and",
        "// 32-bit, so any 32-bit value (in the enumeration or not) can be stored by a",
        "// cast: the setters never validate, and each reader says what an unknown",
        "// value does.",
        "//",
        f"// {NOTE}",
        "#pragma once",
        "",
        "#include <cstdint>",
        "",
        "namespace velqua {",
        "",
    ]
    for e in enums:
        out += [f"// {d}" for d in e.doc]
        out.append(f"enum {e.name} : int32_t {{")
        out += [f"  {name} = {value}," for name, value in e.members]
        out += ["};", ""]
    out.append("}  // namespace velqua")
    return "\n".join(out) + "\n"


def c_header(enums):
    out = [
        "/* The enumerations of Velqua for C hosts, with the names and values of the",
        " * C++ enumerations in velqua/enums.h (the configuration files store them as",
        " * plain integers and hosts compare them by value). The functions of",
        " * velqua_c.h take and give them as int32_t, so that any 32-bit value can be",
        " * stored, as in C++. C++ hosts use velqua/enums.h instead, which velqua_c.h",
        " * includes for them.",
        " *",
        f" * {NOTE} */",
        "#pragma once",
        "",
        "#ifndef __cplusplus",
        "",
    ]
    for e in enums:
        doc = [("/* " if i == 0 else " * ") + d for i, d in enumerate(e.doc)]
        if doc:
            doc[-1] += " */"
        out += doc
        out.append(f"typedef enum {e.name} {{")
        out += [f"  {name} = {value}," for name, value in e.members]
        out += [f"}} {e.name};", ""]
    out.append("#endif /* __cplusplus */")
    return "\n".join(out) + "\n"


def name_tables(enums):
    named = [e for e in enums if e.kind]
    out = [
        "// The member names of the enumerations the records layer looks up by",
        "// name, each entry written from one member, so a name never drifts from its",
        "// value.",
        f"// {NOTE}",
        "#pragma once",
        "",
        "#include <cstddef>",
        "",
        '#include "velqua/enums.h"',
        '#include "velqua/records/names.h"',
        "",
        "namespace velqua_records {",
        "namespace {",
        "",
        "// clang-format off",
    ]
    for e in named:
        out.append(f"constexpr EnumName kNames_{e.name}[] = {{")
        out += [f'    {{velqua::{name}, "{name}"}},' for name, _ in e.members]
        out += ["};", ""]
    out += ["// clang-format on", "", "struct Table {", "  const EnumName* entries;",
            "  size_t count;", "};", "", "template <size_t N>",
            "constexpr Table Of(const EnumName (&entries)[N]) {", "  return Table{entries, N};",
            "}", "", "Table TableOf(EnumKind kind) {", "  switch (kind) {"]
    for e in named:
        out += [f"    case EnumKind::{e.kind}:", f"      return Of(kNames_{e.name});"]
    out += ["  }", "  return Table{nullptr, 0};", "}", "", "}  // namespace",
            "}  // namespace velqua_records"]
    return "\n".join(out) + "\n"


STUB_START = "class emVersionConfiguracion(IntEnum):"


def python_stubs(enums, current):
    head = current[: current.index(STUB_START)] if STUB_START in current else current + "\n"
    head = head.rstrip("\n")
    marker = f"# {NOTE}"
    if head.endswith(marker):
        head = head[: -len(marker)].rstrip("\n")
    out = [head, "", marker]
    for e in enums:
        out.append(f"class {e.name}(IntEnum):")
        out += [f"    {name} = {value}" for name, value in e.members]
        out.append("")
    for e in enums:
        out += [f"{name}: {e.name}" for name, _ in e.members]
    return "\n".join(out) + "\n"


def outputs(enums):
    stubs = ROOT / "bindings" / "python" / "velqua" / "__init__.pyi"
    return {
        ROOT / "include" / "velqua" / "enums.h": cpp_header(enums),
        ROOT / "include" / "velqua" / "velqua_c_enums.h": c_header(enums),
        ROOT / "records" / "src" / "enum_names.h": name_tables(enums),
        stubs: python_stubs(enums, stubs.read_text(encoding="utf-8")),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="compare, write nothing")
    args = parser.parse_args()
    enums = parse(SOURCE.read_text(encoding="utf-8"))
    differ = []
    for path, text in outputs(enums).items():
        old = path.read_text(encoding="utf-8") if path.exists() else None
        if old == text:
            continue
        differ.append(path)
        if not args.check:
            path.write_text(text, encoding="utf-8")
    for path in differ:
        verb = "differs from" if args.check else "rewritten from"
        print(f"{path.relative_to(ROOT)} {verb} {SOURCE.relative_to(ROOT)}", file=sys.stderr)
    return 1 if args.check and differ else 0


if __name__ == "__main__":
    sys.exit(main())
