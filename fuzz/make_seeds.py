#!/usr/bin/env python3
"""Writes the hand-made seeds of the fuzz corpora (fuzz/corpus/<target>/seed-*).

The translator seeds encode the bundled example configurations (examples/*/
*.json) in the byte layout that fuzz_traductor.cpp reads, followed by their
sample records; the other seeds are the example and golden files themselves
plus a few hostile shapes. Run from the repository root; libFuzzer grows the
rest of each corpus, which is then minimised with -merge=1.
"""
import json
import os
import re
import shutil
import struct

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CORPUS = os.path.join(ROOT, "fuzz", "corpus")


def enum_values():
    text = open(os.path.join(ROOT, "include", "velqua", "enums.h")).read()
    return {m.group(1): int(m.group(2)) for m in re.finditer(r"(em\w+)\s*=\s*(-?\d+)", text)}


def put(target, name, data):
    d = os.path.join(CORPUS, target)
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, "seed-" + name), "wb") as f:
        f.write(data)


def copy(target, name, path):
    put(target, name, open(os.path.join(ROOT, path), "rb").read())


TYPES = {"numeric": 1, "constant": 2, "string": 3}


def translator_seed(cfg, records, split=b"\n", options=0):
    e = enum_values()
    out = bytearray()
    out.append(e[cfg["case"]])
    sep = cfg["separator"].encode("latin-1")[:3]
    out.append(len(sep))
    out += sep
    fields = list(cfg["fields"].items())[:31]
    out.append(len(fields))
    for name, f in fields:
        out += bytes([e[name], TYPES[f["type"]], f["pos"], f["size"]])
    consts = list(cfg["constants"].items())[:15]
    out.append(len(consts))
    for name, c in consts:
        text = c["text"].encode("latin-1")[:7]
        out += bytes([e[name], c["pos"], 0, len(text)]) + text
    out.append(options)
    out += split
    out += records
    return bytes(out)


def main():
    for target in ("abrir", "importar", "traductor", "lector"):
        shutil.rmtree(os.path.join(CORPUS, target, "seeds-tmp"), ignore_errors=True)
    # (1) Abrir: version 3 (GuardarComo output) and version 2 (786 bytes).
    copy("abrir", "v3-golden", "tests/data/files/v3_golden.cfg")
    copy("abrir", "v3-reserva", "tests/data/files/v3_reserva.cfg")
    copy("abrir", "v2-estandar", "tests/data/files/v2_estandar.cfg")
    copy("abrir", "v2-samsung", "tests/data/files/v2_samsung.cfg")
    copy("abrir", "v3-kx-tda", "examples/kx-tda/kx-tda.cfg")
    copy("abrir", "v3-norstar", "examples/norstar/norstar.cfg")
    golden = open(os.path.join(ROOT, "tests/data/files/v3_golden.cfg"), "rb").read()
    put("abrir", "v3-promises-32767", golden[:656] + struct.pack("<hh", 32767, 32767) + golden[660:])
    put("abrir", "v3-truncated", golden[:-7])
    put("abrir", "empty", b"")
    # (2) Importar.
    copy("importar", "export-golden", "tests/data/files/export_golden.ini")
    copy("importar", "hicom", "examples/hicom/hicom.ini")
    put("importar", "minimal", b"[Conmutador]\r\nVersion=3\r\nMarca=M\r\nModelo=X\r\nCaso=1\r\n"
        b"Separador=13,10,\r\n[Datos]\r\nDato1=2,1,1,2,\r\n[Constantes]\r\n"
        b"Constante1=4,2,10,1,$(69,0,)\r\n")
    put("importar", "odd-forms", b"; comment\n[ conmutador ]\nVERSION = 2.6\nmarca=  a=b  \n"
        b"Modelo=[x]\nCaso=+1\nSeparador=300,abc,65\n[Puertos]\nRJ45=x,7,99999999999,\n"
        b"[Datos]\nDato1=69,1,1,1\nDato2=2,1,255,255,\n")
    # (3) The translator, one seed per bundled example.
    for name in ("kx-tda", "norstar", "hicom", "definity"):
        cfg = json.load(open(os.path.join(ROOT, "examples", name, name + ".json")))
        recs = open(os.path.join(ROOT, "examples", name, "records.txt"), "rb").read()
        lines = recs.replace(b"\r\n", b"\n").split(b"\n")
        if name == "norstar":
            calls, cur = [], []
            for ln in lines:
                if ln.startswith(b"--------") and cur:
                    calls.append(b"|".join(cur))
                    cur = []
                if ln:
                    cur.append(ln)
            calls.append(b"|".join(cur))
            cfg["separator"] = "|"
            recs = b"\n".join(calls[:8])
        else:
            recs = b"\n".join(lines[:12])
        put("traductor", name, translator_seed(cfg, recs, options=2 | (1 if name == "kx-tda" else 0)))
    # (4) The record reader.
    copy("lector", "norstar", "examples/norstar/records.txt")
    put("lector", "endings", b"\x00a\r\nb\rc\n\n\r\r\nd")
    put("lector", "padded-crlf", b"\x03\nx\r\n-------- 1\r\n2")
    # (5) The web server's own parsers.
    put("web_cookie", "session", b"velqua_session=0123abcd")
    put("web_cookie", "several", b"theme=dark; velqua_session=ab; a=1;a=2")
    put("web_cookie", "odd", b";;  ; velqua_session; =x; a=; velqua_session==;")
    put("web_cookie", "empty", b"")
    put("web_event_id", "number", b"42")
    put("web_event_id", "zeros", b"000")
    put("web_event_id", "too-long", b"1234567890123456789")
    put("web_event_id", "signed", b"-5")
    put("web_event_id", "spaced", b" 7\r\n")
    put("web_serve_config", "full", b'listen = "0.0.0.0:8443"\ntls_cert = "c.pem"\ntls_key = "k.pem"\n'
        b'body_limit = 1048576\nsession_minutes = 480\nconnections = 4\nthreads = 64\n'
        b'capture = ["capture.toml", "/etc/velqua/b.toml"]\n')
    put("web_serve_config", "wrong-kinds", b'threads = "many"\ncapture = [1, ""]\n')
    put("web_serve_config", "out-of-range", b"threads = 3\nbody_limit = 99999999999999\n")
    put("web_serve_config", "broken", b'listen = "a\n[x\ncolour = 1\n\xff\xfe')
    put("web_query", "every-filter", b"from=2026-03-01&to=2026-03-31&switch=hq&extension=201"
        b"&person=We%25ber&department=Sales&number=030&trunk=01&account=77&type=outgoing"
        b"&unanswered=1&min_duration=60&min_cost=0.50&max_cost=12&sort=cost&order=asc"
        b"&offset=100&limit=1000")
    put("web_query", "bad-amounts", b"min_cost=1.1234567&max_cost=-&limit=0")
    put("web_query", "bad-words", b"sort=colour&order=up&type=fax&offset=-1")
    put("web_query", "encoded", b"person=%00%ff%zz&&&=&min_cost=%31.5&limit=9999999999999999999999")


if __name__ == "__main__":
    main()
