#!/usr/bin/env python3
"""Capture throughput, latency and memory: one TCP source (velqua-emulator's
Panasonic port, records as fast as it can send them) into SQLite, through
`velqua capture`, side by side with a plain Python collector that stores the
raw lines in SQLite (what a user would otherwise write). Prints a Markdown
table; the figures and the command are in doc/performance.md.

    python3 bench/capture_bench.py [--build build] [--records 1000000]

With --vs-import it measures instead the capture end to end with one
pushing source (first byte sent to last call stored), side by side with
`velqua import` of the same records into a new store, --pairs times in turn.
"""
import argparse
import json
import os
import socket
import sqlite3
import subprocess
import tempfile
import time


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def rss_kib(pid):
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    return 0


def emulator(build, records, port, rate=0, count=0):
    return subprocess.Popen(
        [f"{build}/tools/switch-emulator/velqua-emulator", "panasonic", "--user", "",
         "--port", str(port), "--records", records, "--rate", str(rate), "--count", str(count)],
        stdout=subprocess.DEVNULL)


def run_capture(build, work, records, count, fsync, rate=0):
    """`velqua capture` reading `count` records sent at `rate` a second (0: as
    fast as the emulator can): records stored a second, the latency from a
    byte received to its call committed, and the service's memory."""
    port = free_port()
    folder = os.path.join(work, f"{fsync}-{rate}")
    os.makedirs(folder)
    config = os.path.join(folder, "capture.toml")
    root = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
    with open(config, "w") as f:
        f.write(f'store = "calls.db"\nspool = "spool"\nfsync = "{fsync}"\n'
                f'[[switch]]\nname = "kx-tda"\nconfig = "{root}/examples/kx-tda/kx-tda.json"\n'
                f'[[switch.source]]\nname = "lan"\nkind = "tcp-connect"\n'
                f'host = "127.0.0.1"\nport = {port}\n')
    switch = emulator(build, records, port, rate, count)
    time.sleep(0.3)
    log = open(os.path.join(folder, "service.log"), "w")
    service = subprocess.Popen([f"{build}/tools/velqua/velqua", "capture", "--config", config],
                               stderr=log)
    status_path = os.path.join(folder, "spool", "status.json")
    first = None
    rss = []
    stored = 0
    status = {}
    while stored < count:
        time.sleep(0.25)
        try:
            with open(status_path) as f:
                status = json.load(f)
        except (OSError, ValueError):
            continue
        stored = sum(s["records"] for s in status["streams"])
        if stored and first is None:
            first = (time.monotonic(), stored)
        rss.append((stored, rss_kib(service.pid)))
    end = time.monotonic()
    service.terminate()
    service.wait()
    switch.kill()
    switch.wait()
    rate = (count - first[1]) / (end - first[0])
    return rate, status["latency_ms"], rss


def run_python_collector(build, work, records, count):
    """A plain collector: socket lines into SQLite, one transaction a read."""
    port = free_port()
    switch = emulator(build, records, port)
    time.sleep(0.3)
    db = sqlite3.connect(os.path.join(work, "python.db"))
    db.execute("PRAGMA journal_mode=WAL")
    db.execute("CREATE TABLE raw (id INTEGER PRIMARY KEY, line TEXT, received TEXT)")
    sock = socket.create_connection(("127.0.0.1", port))
    start = time.monotonic()
    stored = 0
    rest = b""
    while stored < count:
        data = sock.recv(65536)
        if not data:
            break
        lines = (rest + data).split(b"\r\n")
        rest = lines.pop()
        now = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())
        with db:
            db.executemany("INSERT INTO raw (line, received) VALUES (?, ?)",
                           [(l.decode("latin-1"), now) for l in lines if l])
        stored += sum(1 for l in lines if l)
    end = time.monotonic()
    switch.kill()
    switch.wait()
    return count / (end - start)


def wait_for_log(path, text, timeout=20):
    end = time.monotonic() + timeout
    while time.monotonic() < end:
        with open(path) as f:
            if text in f.read():
                return
        time.sleep(0.02)
    raise RuntimeError(f"{text!r} not in {path}")


def capture_end_to_end(build, work, records, count, tag, fsync="always"):
    """Seconds from the pusher's first byte to the last call stored, with the
    store's query indexes in place."""
    port = free_port()
    folder = os.path.join(work, f"end-to-end-{tag}")
    os.makedirs(folder)
    config = os.path.join(folder, "capture.toml")
    root = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
    with open(config, "w") as f:
        f.write(f'store = "calls.db"\nspool = "spool"\nfsync = "{fsync}"\n'
                f'[[switch]]\nname = "kx-tda"\nconfig = "{root}/examples/kx-tda/kx-tda.json"\n'
                f'[[switch.source]]\nname = "ipo"\nkind = "tcp-listen"\nport = {port}\n')
    log_path = os.path.join(folder, "service.log")
    log = open(log_path, "w")
    service = subprocess.Popen([f"{build}/tools/velqua/velqua", "capture", "--config", config],
                               stderr=log)
    wait_for_log(log_path, "listening")
    db = None
    while db is None:
        try:
            db = sqlite3.connect(os.path.join(folder, "calls.db"))
            db.execute("SELECT max(id) FROM calls")
        except sqlite3.Error:
            db = None
            time.sleep(0.02)
    start = time.monotonic()
    pusher = subprocess.Popen(
        [f"{build}/tools/switch-emulator/velqua-emulator", "ipoffice", "--port", str(port),
         "--records", records, "--rate", "0", "--resend", "0"], stdout=subprocess.DEVNULL)
    while (db.execute("SELECT max(id) FROM calls").fetchone()[0] or 0) < count:
        time.sleep(0.01)
    # A backlog loaded in bulk has its query indexes built once it is
    # stored: the capture is done when they are back, as an import is.
    while not db.execute("SELECT 1 FROM sqlite_master WHERE name = 'calls_start'").fetchone():
        time.sleep(0.01)
    took = time.monotonic() - start
    service.terminate()
    service.wait()
    pusher.kill()
    pusher.wait()
    return took


def import_time(build, work, records, tag):
    root = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
    start = time.monotonic()
    subprocess.run([f"{build}/tools/velqua/velqua", "import", "--db",
                    os.path.join(work, f"import-{tag}.db"), "--switch", "kx-tda", "-c",
                    f"{root}/examples/kx-tda/kx-tda.json", records],
                   check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def main_vs_import(args, work, records):
    print("| pair | velqua capture, one pushing source (records/s) | velqua import (records/s) "
          "| import / capture |")
    print("|---|---|---|---|")
    for pair in range(1, args.pairs + 1):
        capture = args.records / capture_end_to_end(args.build, work, records, args.records, pair,
                                                    args.fsync)
        imported = args.records / import_time(args.build, work, records, pair)
        print(f"| {pair} | {capture:,.0f} | {imported:,.0f} | {imported / capture:.2f} |")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default="build")
    parser.add_argument("--records", type=int, default=1000000)
    parser.add_argument("--vs-import", action="store_true")
    parser.add_argument("--pairs", type=int, default=3)
    parser.add_argument("--fsync", default="always", help="with --vs-import")
    args = parser.parse_args()
    work = tempfile.mkdtemp(prefix="velqua-capture-bench-")
    records = os.path.join(work, "records.txt")
    with open(records, "w") as f:
        subprocess.run([f"{args.build}/tools/switch-emulator/velqua-emulator", "generate",
                        str(args.records)], stdout=f, check=True)
    print(f"{args.records} records, work folder {work}\n")
    if args.vs_import:
        return main_vs_import(args, work, records)
    print("| collector | sent at | records stored/s | p50 ms | p99 ms | max ms | "
          "RSS at 10% / 50% / 100% (MiB) |")
    print("|---|---|---|---|---|---|---|")
    runs = [("interval", 0, args.records), ("always", 0, args.records),
            ("interval", 50000, min(args.records, 500000)), ("always", 2000, 20000)]
    for fsync, sent_at, count in runs:
        rate, latency, rss = run_capture(args.build, work, records, count, fsync, sent_at)
        marks = []
        for share in (0.1, 0.5, 1.0):
            marks.append(next((k for n, k in rss if n >= share * count), rss[-1][1]))
        print(f"| velqua capture, fsync={fsync} | {sent_at or 'full speed'} | {rate:,.0f} | "
              f"{latency['p50']} | {latency['p99']} | {latency['max']} | "
              + " / ".join(f"{m / 1024:.1f}" for m in marks) + " |")
    rate = run_python_collector(args.build, work, records, args.records)
    print(f"| Python socket to SQLite, raw lines only | full speed | {rate:,.0f} | | | | |")


if __name__ == "__main__":
    main()
