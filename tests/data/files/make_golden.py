#!/usr/bin/env python3
"""Writes the golden configuration files from the byte layouts, independently of
the C++ code. Run from this folder: python3 make_golden.py

  v3_golden.cfg, export_golden.ini  what GuardarComo and Exportar write for the
                                    configuration of MakeGoldenConfig (files_support.h)
  v3_reserva.cfg   version 3 with entry 0 of every wiring array and the reserve set
  v2_*.cfg         version 2: case byte 0, case byte 1, a separator without quotes
"""
import struct


def text(s, width, pad=b"\0"):
    b = s.encode("cp1252")
    assert len(b) <= width
    return b + pad * (width - len(b))


def i32s(values, count):
    return b"".join(struct.pack("<i", v) for v in list(values) + [0] * (count - len(values)))


def header_v3(brand, model, comments, sep, case, rj45, db9, db25, reserve, d, c):
    h = struct.pack("<i", 3) + text(brand, 50) + text(model, 50) + text(comments, 250)
    h += text(sep, 10) + struct.pack("<i", case) + i32s(rj45, 10) + i32s(db9, 10)
    h += i32s(db25, 26) + i32s(reserve, 26) + struct.pack("<hh", d, c)
    assert len(h) == 660
    return h


def dato(param, tipo, pos, tam):
    return struct.pack("<iiBB", param, tipo, pos, tam)


def cte(param, tipo, pos, tam, s):
    return struct.pack("<iiBB", param, tipo, pos, tam) + text(s, 20)


def v2(case_byte, brand, model, comments, sep):
    b = bytes([2, 0, case_byte]) + b"\0" * 5 + text(brand, 50, b" ") + text(model, 50, b" ")
    b += text(comments, 255, b" ") + b" " * 255 + text(sep, 12, b" ")
    b += b"".join(bytes([i + 1, 2]) for i in range(32)) + bytes([0, 0])  # 33 pairs
    for col, s in [(20, "'AM'"), (45, "FIN"), (1, "E"), (2, "X"), (3, "S"),
                   (4, "Y"), (5, "I"), (0, ""), (6, "T"), (7, "Z")]:
        b += bytes([col]) + text(s, 8, b" ")
    assert len(b) == 786
    return b


def codes(s, n):
    b = s.encode("cp1252")
    return "".join("%d," % (b[i] if i < len(b) else 0) for i in range(n))


FILES = {
    "v3_golden.cfg": header_v3("Panasonic", "KX-TDA200", "L\u00ednea 1", "\r\n", 10,
                               [1, 0, 0, 2], [0, 0, 4] + [0] * 6 + [256], [0] * 25 + [1 << 30],
                               [], 3, 2)
    + dato(2, 1, 1, 2) + dato(5, 1, 11, 2) + dato(19, 3, 30, 20)
    + cte(4, 2, 30, 1, "E") + cte(7, 2, 30, 1, "S"),
    "v3_reserva.cfg": header_v3("Marca", "Modelo", "", "|", 11, [7], [8], [9],
                                list(range(100, 126)), 1, 1)
    + dato(2, 1, 1, 2) + cte(4, 3, 30, 9, "E"),  # stored type 3 and width 9
    "v2_estandar.cfg": v2(0, "  Siemens", "Hicom 150  ", "C" * 255, "'|'"),
    "v2_samsung.cfg": v2(1, "Samsung", "NX-820", "", "' '"),
    "v2_sin_comillas.cfg": v2(0, "A", "B", "", "  ##  "),
    "export_golden.ini": ("\r\n".join([
        "[Conmutador]", "Version=3", "Marca=Panasonic", "Modelo=KX-TDA200", "Caso=10",
        "Separador=" + codes("\r\n", 10), "Comentarios=L\u00ednea 1", "",
        "[Puertos]", "RJ45=0,0,2,0,0,0,0,0,0,", "DB9=0,4,0,0,0,0,0,0,256,",
        "DB25=" + "0," * 24 + "%d," % (1 << 30), "",
        "[Datos]", "Dato1=2,1,1,2,", "Dato2=5,1,11,2,", "Dato3=19,3,30,20,", "",
        "[Constantes]", "Constante1=4,2,30,1,$(" + codes("E", 20) + ")",
        "Constante2=7,2,30,1,$(" + codes("S", 20) + ")"]) + "\r\n").encode("cp1252"),
}

if __name__ == "__main__":
    for name, data in FILES.items():
        with open(name, "wb") as f:
            f.write(data)
