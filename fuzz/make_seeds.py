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


if __name__ == "__main__":
    main()
