#!/usr/bin/env python3
"""Live pages while capture stores calls: `velqua capture` takes records from
velqua-emulator (a Panasonic sending --rate records a second) into SQLite,
`velqua serve` runs on the same store, and --clients live pages (server-sent
events on /api/live) listen from before the first record to after the last.
Checks that every page got every stored call, once and in order, and
compares capture's latency (a record received to its call committed, from
the service's status) with and without the pages. Each run measures without pages, then with them, and says the
load average before each and the CPU seconds the capture service, the
server and this script's reader used. With --decode after, the reader only
receives the streams while capture runs and decodes them once it is done,
so that its decoding does not compete with the capture service for the
processors (the pages' browsers would be on other machines); --nice lowers
the reader's priority. Prints a Markdown table; the figures and the command
are in doc/performance.md.

    python3 bench/live_bench.py [--build build] [--rate 2000] [--seconds 30]
                                [--clients 50] [--runs 1] [--decode during|after]
                                [--nice 0]
"""
import argparse
import json
import os
import re
import selectors
import socket
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
# A call's event: its JSON's keys in byte order, "id" before "kind".
CALL = re.compile(rb'\ndata: \{[^\n]*?"id":(\d+),[^\n]*?"kind":"call"')


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class LivePage:
    """One /api/live stream (a body that ends with the connection, or
    chunked), decoded as it arrives or once capture is done; the ids of the
    calls it was sent, in order, and whether it was told to reload."""

    def __init__(self, port, cookie, keep_raw):
        self.sock = socket.create_connection(("127.0.0.1", port))
        self.sock.sendall(f"GET /api/live HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: {cookie}\r\n"
                          "Accept: text/event-stream\r\n\r\n".encode())
        self.sock.setblocking(False)
        self.raw = b""
        self.headers_done = False
        self.chunked = False
        self.body = b""
        self.ids = []
        self.lost = False
        self.keep_raw = keep_raw
        self.kept = []

    def feed(self):
        data = self.sock.recv(1 << 20)
        if not data:
            return False
        if self.keep_raw:
            self.kept.append(data)
            return True
        self.decode(data)
        return True

    def decode_kept(self):
        kept, self.kept, self.keep_raw = self.kept, [], False
        self.decode(b"".join(kept))

    def decode(self, data):
        raw = self.raw + data
        if not self.headers_done:
            end = raw.find(b"\r\n\r\n")
            if end < 0:
                self.raw = raw
                return
            head = raw[:end].split(b"\r\n")
            if b" 200 " not in head[0]:
                raise RuntimeError(raw[:end].decode())
            self.chunked = b"transfer-encoding: chunked" in (h.lower() for h in head)
            raw = raw[end + 4:]
            self.headers_done = True
        if self.chunked:
            body = self.body + self.dechunk(raw)
        else:
            self.raw, body = b"", self.body + raw
        cut = body.rfind(b"\n\n")
        if cut < 0:
            self.body = body
            return
        events, self.body = body[:cut + 2], body[cut + 2:]
        at = events.find(b"event: lost")  # fell behind: told to reload
        if not self.lost and at >= 0:
            self.lost = len(self.ids) + len(CALL.findall(events[:at])) + 1  # the call it lost
        self.ids.extend(int(i) for i in CALL.findall(events))

    def dechunk(self, raw):
        """The body in the whole chunks of `raw`; the rest is kept."""
        parts, at = [], 0
        while True:
            line_end = raw.find(b"\r\n", at)
            if line_end < 0:
                break
            size = int(raw[at:line_end].split(b";")[0], 16)
            if len(raw) < line_end + 2 + size + 2:
                break
            parts.append(raw[line_end + 2:line_end + 2 + size])
            at = line_end + 2 + size + 2
        self.raw = raw[at:]
        return b"".join(parts)


def listen(pages, stop, nice):
    if nice:
        os.setpriority(os.PRIO_PROCESS, threading.get_native_id(), nice)
    sel = selectors.DefaultSelector()
    for page in pages:
        sel.register(page.sock, selectors.EVENT_READ, page)
    while not stop.is_set():
        for key, _ in sel.select(0.2):
            if not key.data.feed():
                sel.unregister(key.fileobj)


def start_serve(build, db, folder):
    port = free_port()
    out = open(os.path.join(folder, "serve.log"), "w")
    server = subprocess.Popen([f"{build}/tools/velqua/velqua", "serve", "--db", db, "--listen",
                               f"127.0.0.1:{port}"], stdout=out, stderr=out)
    for _ in range(100):
        try:
            with socket.create_connection(("127.0.0.1", port)) as s:
                s.sendall(b"GET /api/session HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                          b"Connection: close\r\n\r\n")
                head = s.recv(65536).decode()
            cookie = re.search(r"Set-Cookie: ([^;\r\n]+)", head, re.I).group(1)
            return server, port, cookie
        except OSError:
            time.sleep(0.1)
    raise RuntimeError("velqua serve did not start")


def cpu_seconds(pid):
    """User and system CPU seconds a process has used."""
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def run(args, work, count, clients, label):
    """Capture of `count` records sent at args.rate a second; with `clients`
    live pages listening when clients > 0. Returns the capture's latency
    (p50, p99, max ms), how many pages got every call and the CPU seconds
    of the capture service, the server and the reader."""
    build = args.build
    folder = os.path.join(work, label)
    os.makedirs(folder)
    port = free_port()
    config = os.path.join(folder, "capture.toml")
    with open(config, "w") as f:
        f.write(f'store = "calls.db"\nspool = "spool"\n'
                f'[[switch]]\nname = "kx-tda"\nconfig = "{ROOT}/examples/kx-tda/kx-tda.json"\n'
                f'[[switch.source]]\nname = "lan"\nkind = "tcp-connect"\n'
                f'host = "127.0.0.1"\nport = {port}\n')
    db = os.path.join(folder, "calls.db")
    service = subprocess.Popen([f"{build}/tools/velqua/velqua", "capture", "--config", config],
                               stderr=open(os.path.join(folder, "capture.log"), "w"))
    while not os.path.exists(db):
        time.sleep(0.05)
    server = pages = None
    stop = threading.Event()
    if clients:
        server, web_port, cookie = start_serve(build, db, folder)
        pages = [LivePage(web_port, cookie, args.decode == "after") for _ in range(clients)]
        used = {}

        def listener_main():
            listen(pages, stop, args.nice)
            used["cpu"] = time.thread_time()

        listener = threading.Thread(target=listener_main)
        listener.start()
    switch = subprocess.Popen(
        [f"{build}/tools/switch-emulator/velqua-emulator", "panasonic", "--user", "", "--port",
         str(port), "--rate", str(args.rate), "--count", str(count)], stdout=subprocess.DEVNULL)
    status_path = os.path.join(folder, "spool", "status.json")
    status = {}
    while sum(s["records"] for s in status.get("streams", [])) < count:
        time.sleep(0.25)
        try:
            with open(status_path) as f:
                status = json.load(f)
        except (OSError, ValueError):
            continue
    complete, cpu = 0, {"capture": cpu_seconds(service.pid)}
    if clients:
        time.sleep(2)  # the feed looks four times a second
        stop.set()
        listener.join()
        cpu["serve"] = cpu_seconds(server.pid)
        cpu["reader"] = used["cpu"]
        with sqlite3.connect(db) as store:
            ids = [r[0] for r in store.execute("SELECT id FROM calls ORDER BY id")]
        for page in pages:
            if page.keep_raw:
                page.decode_kept()
        complete = sum(1 for p in pages if p.ids == ids)
        cpu["lost"] = sum(1 for p in pages if p.lost)
        if cpu["lost"]:
            print("told to reload at calls", sorted(p.lost for p in pages if p.lost)[:5],
                  file=sys.stderr)
        server.terminate()
        server.wait()
    service.terminate()
    service.wait()
    switch.kill()
    switch.wait()
    latency = status["latency_ms"]
    return latency["p50"], latency["p99"], latency["max"], complete, cpu


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default="build")
    parser.add_argument("--rate", type=int, default=2000)
    parser.add_argument("--seconds", type=int, default=30)
    parser.add_argument("--clients", type=int, default=50)
    parser.add_argument("--runs", type=int, default=1)
    parser.add_argument("--decode", choices=("during", "after"), default="during")
    parser.add_argument("--nice", type=int, default=0)
    args = parser.parse_args()
    work = tempfile.mkdtemp(prefix="velqua-live-bench-")
    count = args.rate * args.seconds
    print(f"{count} records at {args.rate}/s, reader decoding {args.decode}, nice {args.nice}, "
          f"work folder {work}\n")
    print("| run (load average) | live pages | capture p50 ms | p99 ms | max ms "
          "| pages that got every call | CPU s: capture / serve / reader |")
    print("|---|---|---|---|---|---|---|")
    for n in range(1, args.runs + 1):
        for clients in (0, args.clients):
            load = os.getloadavg()[0]
            p50, p99, worst, complete, cpu = run(args, work, count, clients, f"{n}-{clients}")
            got = f"{complete} of {clients}" if clients else "–"
            if cpu.get("lost"):
                got += f" ({cpu['lost']} told to reload)"
            used = " / ".join(f"{cpu[k]:.1f}" for k in ("capture", "serve", "reader") if k in cpu)
            print(f"| {n} ({load:.1f}) | {clients} | {p50} | {p99} | {worst} | {got} | {used} |",
                  flush=True)


if __name__ == "__main__":
    main()
