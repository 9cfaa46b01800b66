#!/usr/bin/env python3
"""Differential check of two `velqua` builds: same output or not.

A change made for speed must not change what the program prints. This
script makes random switch configurations (every case, random field and
constant positions, sizes and types, several separators) and random records
(digits, blanks, marks, the Norstar keywords, now and then a byte above
0x7F), runs `velqua translate` of both builds on each pair with the clock
fixed (--now), and compares standard output, standard error and the exit
status byte for byte. It prints the first differences and exits 1 when
there are any.

Usage: bench/compare_builds.py OLD/velqua NEW/velqua [--configs N]
                               [--records M] [--seed S] [--keep DIR] [--case C]
Example, against the build of another commit:
  git worktree add /tmp/velqua-old HEAD~5
  cmake -S /tmp/velqua-old -B /tmp/velqua-old/build -DCMAKE_BUILD_TYPE=Release
  cmake --build /tmp/velqua-old/build -j2 --target velqua_cli
  bench/compare_builds.py /tmp/velqua-old/build/tools/velqua/velqua \\
      build-perf/tools/velqua/velqua --configs 300
"""
import argparse
import json
import os
import random
import re
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NOW = "2026-03-04 05:06:07"
NORSTAR_WORDS = ["--------", "CALL RELEASED", "TRANSFERRED", "NO ANSWER", "OUTGOING CALL",
                 "INCOMING CALL", "FROM TRANSFER", "DIGITS DIALED", "RESTRICTION PASSWORD"]
SEPARATORS = ["\r\n", "|", "", "--", "x|", "  "]
ALPHABET = "0123456789      ::/-*'ABCDEIOSTXabcio|,\""


def enum_names(prefix_re):
    text = open(os.path.join(ROOT, "include/velqua/enums.h"), encoding="utf-8").read()
    return re.findall(r"\b(" + prefix_re + r")\s*=", text)


DATA_KEYS = [k for k in enum_names(r"emParam\w+")
             if k not in ("emPrimerParamDato", "emUltimoParamDato", "emNoParamDato")]
CONSTANT_KEYS = [k for k in enum_names(r"emDatoCte\w+")]
CASES = enum_names(r"emCaso\w+")
NORSTAR_FIELDS = json.load(open(os.path.join(ROOT, "examples/norstar/norstar.json"),
                                encoding="utf-8"))["fields"]


def random_config(rng, case=None):
    fields = {}
    for key in rng.sample(DATA_KEYS, rng.randint(5, len(DATA_KEYS))):
        pos = rng.randint(1, 90)
        size = rng.randint(1, 14) if rng.random() > 0.002 else rng.randint(150, 255)
        fields[key] = {"pos": pos, "size": size,
                       "type": "numeric" if rng.random() < 0.5 else "string"}
    if rng.random() < 0.9:  # most switches print a duration: calls are recognised
        for key in ("emParamDuracionMinutos", "emParamDuracionSegundos"):
            fields[key] = {"pos": rng.randint(1, 90), "size": rng.randint(1, 3), "type": "numeric"}
    constants = {}
    for key in rng.sample(CONSTANT_KEYS, rng.randint(0, min(12, len(CONSTANT_KEYS)))):
        text = "".join(rng.choice("ABCDEIOSTX*0129") for _ in range(rng.randint(1, 3)))
        constants[key] = {"pos": rng.randint(1, 40), "text": text}
    return {"brand": "Prueba", "model": "Diferencial", "case": case or rng.choice(CASES),
            "separator": rng.choice(SEPARATORS), "comments": "", "fields": fields,
            "constants": constants, "wiring": {"rj45": [], "db9": [], "db25": []}}


def random_line(rng, config):
    """A random line, most often with some of the configuration's constants
    at their columns and digits in its numeric fields, so that calls are
    recognised and their fields read."""
    if rng.random() < 0.1:
        return ""
    parts = []
    while sum(len(p) for p in parts) < rng.randint(5, 120):
        r = rng.random()
        if r < 0.15:
            parts.append(rng.choice(NORSTAR_WORDS))
        elif r < 0.2:
            parts.append(rng.choice(["\u00e9", "\u00ff", "\u00d1"]))
        else:
            parts.append("".join(rng.choice(ALPHABET) for _ in range(rng.randint(1, 12))))
    line = list("".join(parts))

    def put(pos, text):
        if len(line) < pos - 1 + len(text):
            line.extend(" " * (pos - 1 + len(text) - len(line)))
        line[pos - 1:pos - 1 + len(text)] = list(text)

    if rng.random() < 0.8:
        for field in config["fields"].values():
            if field["type"] == "numeric" and field["size"] < 20 and rng.random() < 0.8:
                put(field["pos"], "".join(rng.choice("0123456789 ") for _ in range(field["size"])))
        constants = list(config["constants"].values())
        for constant in rng.sample(constants, min(len(constants), rng.randint(0, 3))):
            put(constant["pos"], constant["text"])
    return "".join(line)


def norstar_lines(rng, config, count):
    """Calls in the Norstar report's shape: a header line, event lines with
    keywords, an empty line; random digits and now and then random text."""
    lines = []
    while len(lines) < count:
        d = lambda n: "".join(rng.choice("0123456789") for _ in range(n))
        lines.append(f"-------- {d(2)}/{d(2)}/{d(2)} {d(2)}:{d(2)}:{d(2)} LINE = {d(4)} STN = {d(4)}")
        for _ in range(rng.randint(0, 5)):
            if rng.random() < 0.2:
                lines.append(random_line(rng, config))
            else:
                word = rng.choice(NORSTAR_WORDS[1:])
                lines.append(f"{d(2)}:{d(2)}:{d(2)} {word} {d(rng.randint(0, 11))}")
        lines.append("")
    return lines[:count]


def run(velqua, args):
    p = subprocess.run([velqua, "--now", NOW] + args, capture_output=True, timeout=120)
    return p.returncode, p.stdout, p.stderr


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("old")
    ap.add_argument("new")
    ap.add_argument("--configs", type=int, default=200)
    ap.add_argument("--records", type=int, default=300)
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--keep", help="keep the inputs of differing runs in this folder")
    ap.add_argument("--case", choices=CASES, help="only this case (default: any)")
    a = ap.parse_args()
    rng = random.Random(a.seed)
    differing = 0
    translated = 0
    rows = 0
    with tempfile.TemporaryDirectory() as work:
        listing = os.path.join(work, "extensions.txt")
        with open(listing, "wb") as f:
            f.write(b"1;201\r\n12;202\nAB;203\r*9,204\r\n\r\n")
        for i in range(a.configs):
            config = os.path.join(work, "cfg.json")
            records = os.path.join(work, "records.txt")
            cfg = random_config(rng, a.case)
            if cfg["case"] == "emCasoNortelNorstar0x32SMDR6" and rng.random() < 0.5:
                cfg["fields"] = dict(NORSTAR_FIELDS)  # the real layout: calls recognised
            with open(config, "w", encoding="utf-8") as f:
                json.dump(cfg, f)
            with open(records, "w", encoding="cp1252", newline="") as f:
                if cfg["case"] == "emCasoNortelNorstar0x32SMDR6" and rng.random() < 0.8:
                    lines = norstar_lines(rng, cfg, a.records)
                else:
                    lines = [random_line(rng, cfg) for _ in range(a.records)]
                f.write("\r\n".join(lines))
            for form in ("jsonl", "csv"):
                args = ["translate", "-c", config, "--extensions", listing, "-f", form, records]
                old = run(a.old, args)
                if form == "csv":
                    lines = old[1].split(b"\r\n")[1:-1]
                    rows += len(lines)
                    translated += sum(1 for l in lines if b",NoIdentificada," not in l)
                if old != run(a.new, args):
                    differing += 1
                    print(f"configuration {i} ({form}): the builds differ")
                    if a.keep:
                        os.makedirs(a.keep, exist_ok=True)
                        for name in (config, records):
                            dest = os.path.join(a.keep, f"{i}-{os.path.basename(name)}")
                            with open(name, "rb") as src, open(dest, "wb") as out:
                                out.write(src.read())
    print(f"{a.configs} configurations x {a.records} records, 2 forms: {rows} rows, "
          f"{translated} recognised; {differing} differing run(s)")
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
