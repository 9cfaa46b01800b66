#!/usr/bin/env python3
"""Live pages while capture stores calls: `velqua capture` takes records from
velqua-emulator (a Panasonic sending --rate records a second) into SQLite,
`velqua serve` runs on the same store, and --clients live pages (server-sent
events on /api/live) listen from before the first record to after the last.
Checks that every page got every stored call, once and in order, and
compares capture's latency (a record received to its call committed, from
the service's status) with and without the pages. Prints a Markdown table;
the figures and the command are in doc/performance.md.

    python3 bench/live_bench.py [--build build] [--rate 2000] [--seconds 30]
                                [--clients 50]
"""
import argparse
import json
import os
import re
import selectors
import socket
import sqlite3
import subprocess
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
    """One /api/live stream, its chunked body decoded as it arrives; the ids
    of the calls it was sent, in order."""

    def __init__(self, port, cookie):
        self.sock = socket.create_connection(("127.0.0.1", port))
        self.sock.sendall(f"GET /api/live HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: {cookie}\r\n"
                          "Accept: text/event-stream\r\n\r\n".encode())
        self.sock.setblocking(False)
        self.raw = b""
        self.headers_done = False
        self.body = b""
        self.ids = []

    def feed(self):
        data = self.sock.recv(1 << 20)
        if not data:
            return False
        raw = self.raw + data
        if not self.headers_done:
            end = raw.find(b"\r\n\r\n")
            if end < 0:
                self.raw = raw
                return True
            if b" 200 " not in raw[:end].split(b"\r\n")[0]:
                raise RuntimeError(raw[:end].decode())
            raw = raw[end + 4:]
            self.headers_done = True
        parts, at = [self.body], 0
        while True:  # whole chunks: each holds whole events
            line_end = raw.find(b"\r\n", at)
            if line_end < 0:
                break
            size = int(raw[at:line_end].split(b";")[0], 16)
            if len(raw) < line_end + 2 + size + 2:
                break
            parts.append(raw[line_end + 2:line_end + 2 + size])
            at = line_end + 2 + size + 2
        self.raw = raw[at:]
        body = b"".join(parts)
        cut = body.rfind(b"\n\n")
        events, self.body = body[:cut + 2], body[cut + 2:]
        if b"event: lost" in events:
            raise RuntimeError("a live page fell behind and was told to reload")
        self.ids.extend(int(i) for i in CALL.findall(events))
        return True


def listen(pages, stop):
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


def run(build, work, rate, count, clients):
    """Capture of `count` records sent at `rate` a second; with `clients`
    live pages listening when clients > 0. Returns the capture's latency
    (p50, p99, max ms) and how many pages got every call."""
    folder = os.path.join(work, f"clients-{clients}")
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
        pages = [LivePage(web_port, cookie) for _ in range(clients)]
        listener = threading.Thread(target=listen, args=(pages, stop))
        listener.start()
    switch = subprocess.Popen(
        [f"{build}/tools/switch-emulator/velqua-emulator", "panasonic", "--user", "", "--port",
         str(port), "--rate", str(rate), "--count", str(count)], stdout=subprocess.DEVNULL)
    status_path = os.path.join(folder, "spool", "status.json")
    status = {}
    while sum(s["records"] for s in status.get("streams", [])) < count:
        time.sleep(0.25)
        try:
            with open(status_path) as f:
                status = json.load(f)
        except (OSError, ValueError):
            continue
    complete = 0
    if clients:
        time.sleep(2)  # the feed looks four times a second
        stop.set()
        listener.join()
        with sqlite3.connect(db) as store:
            ids = [r[0] for r in store.execute("SELECT id FROM calls ORDER BY id")]
        complete = sum(1 for p in pages if p.ids == ids)
        server.terminate()
        server.wait()
    service.terminate()
    service.wait()
    switch.kill()
    switch.wait()
    latency = status["latency_ms"]
    return latency["p50"], latency["p99"], latency["max"], complete


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default="build")
    parser.add_argument("--rate", type=int, default=2000)
    parser.add_argument("--seconds", type=int, default=30)
    parser.add_argument("--clients", type=int, default=50)
    args = parser.parse_args()
    work = tempfile.mkdtemp(prefix="velqua-live-bench-")
    count = args.rate * args.seconds
    print(f"{count} records at {args.rate}/s, work folder {work}\n")
    print("| live pages | capture p50 ms | p99 ms | max ms | pages that got every call |")
    print("|---|---|---|---|---|")
    for clients in (0, args.clients):
        p50, p99, worst, complete = run(args.build, work, args.rate, count, clients)
        got = f"{complete} of {clients}" if clients else "–"
        print(f"| {clients} | {p50} | {p99} | {worst} | {got} |", flush=True)


if __name__ == "__main__":
    main()
