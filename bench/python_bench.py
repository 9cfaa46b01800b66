#!/usr/bin/env python3
"""velqua.translate and velqua.read_calls against plain Python and pandas.

All read the same file of Panasonic KX-TDA records (the bundled sample
repeated to about --records records), one after the other in the same
minute, --runs times each: a plain-Python slicing parser giving the same
velqua.Call for every record as velqua.translate (checked on the sample
first); velqua.translate; pandas.read_fwf with the same column positions
(which only cuts the columns: no call types, no numbers read); and
velqua.read_calls (a typed DataFrame). Wall and CPU seconds per run,
records/s, and the ratios of the medians. Then --threads: two files
translated with velqua.translate by one thread one after the other, and by
two threads at once.

    PYTHONPATH=build-perf/bindings/python python3 bench/python_bench.py [--records N]
        [--runs K] [--no-list] [--threads]

--no-list translates without the extension list (the account codes then get
drawn extensions, and the parser leaves them blank).
"""

import argparse
import datetime
import os
import pathlib
import statistics
import sys
import tempfile
import threading
import time

import velqua

EXAMPLE = pathlib.Path(__file__).resolve().parents[1] / "examples" / "kx-tda"
TYPES = {1: "incoming", 2: "outgoing", 3: "internal"}
ATTRIBUTES = {0: "none", 2: "in-transfer", 4: "unanswered"}
UNRECOGNISED = (None,) * 15


def load_list(path):
    """The account code to extension list: code;extension or code,extension."""
    codes = {}
    with open(path, encoding="cp1252") as f:
        for line in f:
            for separator in ";,":
                if separator in line:
                    code, extension = line.strip().split(separator, 1)
                    codes.setdefault(code.strip(), extension.strip())
                    break
    return codes


def parse(lines, codes):
    """The plain-Python parser: the columns of the KX-TDA SMDR pattern A."""
    n = 0
    for line in lines:
        line = line.rstrip("\r\n")
        if not line:
            continue
        n += 1
        try:
            month, day, year = int(line[0:2]), int(line[3:5]), 2000 + int(line[6:8])
            hour, minute = int(line[9:11]), int(line[12:14])
            duration = int(line[57:59]) * 3600 + int(line[60:62]) * 60 + int(line[63:65])
        except ValueError:
            yield velqua.Call(n, 0, "unrecognised", 0, "none", *UNRECOGNISED)
            continue
        if line[14:16] == "AM":
            hour = 0 if hour == 12 else hour
        elif hour < 12:
            hour += 12
        mark, flag = line[26:29], line[77:79]
        kind = 1 if mark == "<I>" else 3 if mark == "EXT" else 2
        attribute = 4 if flag == "NA" else 2 if flag == "TR" else 0
        dialled = (line[26:51] if kind == 2 else line[29:51]).strip() or None
        extension, account = line[17:22].strip(), None
        if extension.startswith("*"):
            account = extension[1:]
            extension = codes.get(account)
        ring = None
        if kind == 1 and line[54:56].strip():
            ring = int(line[52:53]) * 60 + int(line[54:56])
        start = datetime.datetime(year, month, day, hour, minute)
        end = (start + datetime.timedelta(seconds=duration)).replace(second=0)  # to the minute
        yield velqua.Call(n, kind, TYPES[kind], attribute, ATTRIBUTES[attribute],
                          start.date(), start.time(), duration, ring, dialled, extension or None,
                          None if kind == 3 else line[23:25].strip() or None,
                          dialled if kind == 3 else None, None, account, False, None, False,
                          end.date(), end.time())


def check(codes, extensions):
    """The parser gives velqua's Calls on the sample (a drawn extension aside)."""
    sample = EXAMPLE / "records.txt"
    mine = list(parse(sample.open(encoding="cp1252"), codes))
    theirs = list(velqua.translate(sample, EXAMPLE / "kx-tda.cfg", extensions))
    assert len(mine) == len(theirs) == 32
    for a, b in zip(mine, theirs):
        if b.extension_random:
            b = b._replace(extension=None, extension_random=False)
        assert a == b, (a, b)


# The columns of the KX-TDA pattern A as parse() cuts them, for read_fwf.
COLUMNS = [(0, 8), (9, 16), (17, 22), (23, 25), (26, 51), (52, 56), (57, 65), (77, 79)]
NAMES = ["date", "time", "extension", "trunk", "dialled", "ring", "duration", "flag"]


def read_fwf(path):
    import pandas
    return pandas.read_fwf(path, colspecs=COLUMNS, names=NAMES, header=None,
                           encoding="cp1252", dtype=str)


def timed(run):
    wall, cpu = time.perf_counter(), time.process_time()
    result = run()
    n = len(result) if hasattr(result, "columns") else sum(1 for _ in result)
    return n, time.perf_counter() - wall, time.process_time() - cpu


def threads(paths, cfg, extensions):
    """Wall seconds of translating each file in turn, and of one thread per file."""
    def one(path):
        for _ in velqua.translate(path, cfg, extensions):
            pass

    start = time.perf_counter()
    for path in paths:
        one(path)
    alone = time.perf_counter() - start
    workers = [threading.Thread(target=one, args=(path,)) for path in paths]
    start = time.perf_counter()
    for w in workers:
        w.start()
    for w in workers:
        w.join()
    return alone, time.perf_counter() - start


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--records", type=int, default=1_000_000)
    options.add_argument("--runs", type=int, default=3)
    options.add_argument("--no-list", action="store_true")
    options.add_argument("--threads", action="store_true")
    args = options.parse_args()
    extensions = None if args.no_list else EXAMPLE / "extensions.txt"
    codes = load_list(EXAMPLE / "extensions.txt") if extensions else {}
    check(codes, extensions)
    cfg = velqua.Config.load(EXAMPLE / "kx-tda.cfg")
    sample = (EXAMPLE / "records.txt").read_bytes()
    with tempfile.NamedTemporaryFile(suffix=".txt") as f:
        f.write(sample * -(-args.records // 32))
        f.flush()
        path = pathlib.Path(f.name)
        runs = {
            "plain Python": lambda: parse(path.open(encoding="cp1252"), codes),
            "velqua.translate(path)": lambda: velqua.translate(path, cfg, extensions),
            "velqua.translate(file)": lambda: velqua.translate(path.open("rb"), cfg, extensions),
            "pandas.read_fwf": lambda: read_fwf(path),
            "velqua.read_calls": lambda: velqua.read_calls(path, cfg, extensions),
        }
        print(f"{os.uname().machine}, {os.cpu_count()} CPUs, load {os.getloadavg()[0]:.2f}; "
              f"Python {sys.version.split()[0]}; list: {'no' if args.no_list else 'yes'}")
        walls = {name: [] for name in runs}
        cpus = {name: [] for name in runs}
        for k in range(args.runs):
            for name, run in runs.items():
                n, wall, cpu = timed(run)
                walls[name].append(wall)
                cpus[name].append(cpu)
                print(f"run {k + 1} {name:24} {n} records  {wall:6.3f} s wall  {cpu:6.3f} s cpu  "
                      f"{n / wall / 1e6:5.2f} M records/s")
        for name, base in [("velqua.translate(path)", "plain Python"),
                           ("velqua.translate(file)", "plain Python"),
                           ("velqua.read_calls", "pandas.read_fwf")]:
            ratios = [statistics.median(t[base]) / statistics.median(t[name])
                      for t in (walls, cpus)]
            print(f"{name}: {ratios[0]:.2f}x {base} in wall time, {ratios[1]:.2f}x in "
                  "CPU time (medians)")
        if args.threads:
            with tempfile.NamedTemporaryFile(suffix=".txt") as g:
                g.write(path.read_bytes())
                g.flush()
                for k in range(args.runs):
                    alone, together = threads([path, pathlib.Path(g.name)], cfg, extensions)
                    print(f"run {k + 1} two files: one thread {alone:6.3f} s, two threads "
                          f"{together:6.3f} s wall: {alone / together:.2f}x")

if __name__ == "__main__":
    main()
