#!/usr/bin/env python3
"""Builds the golden files of Parts 3.1 and 3.2 from the layout tables of the
spec, independently of the C++ code (struct offsets written out by hand).

  v3_golden.cfg     what GuardarComo must write for the configuration that
                    test_part_3_1.cpp builds in MakeGoldenConfig()
  v3_reserva.cfg    a version-3 file with entry 0 of every wiring array and
                    lnPinesReserva set (not reachable through the API)
  v2_estandar.cfg   a version-2 file, case byte 0 (emCasoEstandar)
  v2_samsung.cfg    a version-2 file, case byte 1 (emCasoSamsungNX_820)
  v2_sin_comillas.cfg  a version-2 file whose separator is not quoted
  export_golden.ini what Exportar must write for MakeGoldenConfig() (Part 3.2),
                    compared as sections, keys and values

Run from this folder:  python3 make_golden.py
"""
import struct


def text(s, width, pad=b"\0"):
    b = s.encode("cp1252")
    assert len(b) <= width
    return b + pad * (width - len(b))


def i32s(values, count):
    values = list(values) + [0] * (count - len(values))
    return b"".join(struct.pack("<i", v) for v in values)


def header_v3(version, brand, model, comments, sep, case, rj45, db9, db25, reserve, d, c):
    h = struct.pack("<i", version)           # 0
    h += text(brand, 50)                      # 4
    h += text(model, 50)                      # 54
    h += text(comments, 250)                  # 104
    h += text(sep, 10)                        # 354
    h += struct.pack("<i", case)              # 364
    h += i32s(rj45, 10)                       # 368
    h += i32s(db9, 10)                        # 408
    h += i32s(db25, 26)                       # 448
    h += i32s(reserve, 26)                    # 552
    h += struct.pack("<hh", d, c)             # 656, 658
    assert len(h) == 660
    return h


def dato(param, tipo, pos, tam):
    r = struct.pack("<iiBB", param, tipo, pos, tam)
    assert len(r) == 10
    return r


def cte(param, tipo, pos, tam, s):
    r = struct.pack("<iiBB", param, tipo, pos, tam) + text(s, 20)
    assert len(r) == 30
    return r


def golden_v3():
    rj45 = [1, 0, 0, 2]                       # entry 0 = 1 (ActivaPin(RJ45, 0, 1)), [3] = pin 2
    db9 = [0, 0, 4, 0, 0, 0, 0, 0, 0, 256]    # [2] = pin 3, [9] = pin 9
    db25 = [0] * 25 + [1 << 30]               # [25] = pin 31
    body = header_v3(3, "Panasonic", "KX-TDA200", "L\u00ednea 1", "\r\n", 10,
                     rj45, db9, db25, [], 3, 2)
    body += dato(2, 1, 1, 2)      # emParamFechaDia
    body += dato(5, 1, 11, 2)     # emParamFechaHoras
    body += dato(19, 3, 30, 20)   # emParamTelefonoSaliente, emValorCadena
    body += cte(4, 2, 30, 1, "E")  # emDatoCteIdentEntrante
    body += cte(7, 2, 30, 1, "S")  # emDatoCteIdentSaliente
    assert len(body) == 660 + 3 * 10 + 2 * 30
    return body


def reserva_v3():
    reserve = list(range(100, 126))
    body = header_v3(3, "Marca", "Modelo", "", "|", 12 - 1, [7], [8], [9], reserve, 1, 1)
    body += dato(2, 1, 1, 2)
    body += cte(4, 3, 30, 9, "E")  # stored type 3 and width 9: not applied on loading
    return body


def v2(case_byte, brand, model, comments, sep, pairs, consts):
    b = bytes([2, 0, case_byte]) + b"\0" * 5          # 0..7
    b += text(brand, 50, b" ")                          # 8
    b += text(model, 50, b" ")                          # 58
    b += text(comments, 255, b" ")                      # 108
    b += b" " * 255                                     # 363, not used
    b += text(sep, 12, b" ")                            # 618
    assert len(b) == 630
    for col, width in pairs:                            # 630, 33 pairs
        b += bytes([col, width])
    for col, s in consts:                               # 696, 10 entries
        b += bytes([col]) + text(s, 8, b" ")
    assert len(b) == 786
    return b


def pairs_v2():
    p = [(i + 1, 2) for i in range(32)]
    p.append((0, 0))      # pair 32 (account code): incomplete, never saved
    return p


CONSTS_V2 = [(20, "'AM'"), (45, "FIN"), (1, "E"), (2, "X"), (3, "S"),
             (4, "Y"), (5, "I"), (0, ""), (6, "T"), (7, "Z")]


def codes(s, n):
    b = s.encode("cp1252")
    return "".join("%d," % (b[i] if i < len(b) else 0) for i in range(n))


def export_golden():
    lines = [
        "[Conmutador]",
        "Version=3",
        "Marca=Panasonic",
        "Modelo=KX-TDA200",
        "Caso=10",
        "Separador=" + codes("\r\n", 10),
        "Comentarios=L\u00ednea 1",
        "",
        "[Puertos]",
        "RJ45=" + "".join("%d," % v for v in [0, 0, 2, 0, 0, 0, 0, 0, 0]),
        "DB9=" + "".join("%d," % v for v in [0, 4, 0, 0, 0, 0, 0, 0, 256]),
        "DB25=" + "0," * 24 + "%d," % (1 << 30),
        "",
        "[Datos]",
        "Dato1=2,1,1,2,",
        "Dato2=5,1,11,2,",
        "Dato3=19,3,30,20,",
        "",
        "[Constantes]",
        "Constante1=4,2,30,1,$(" + codes("E", 20) + ")",
        "Constante2=7,2,30,1,$(" + codes("S", 20) + ")",
    ]
    return ("\r\n".join(lines) + "\r\n").encode("cp1252")


def main():
    with open("v3_golden.cfg", "wb") as f:
        f.write(golden_v3())
    with open("v3_reserva.cfg", "wb") as f:
        f.write(reserva_v3())
    with open("export_golden.ini", "wb") as f:
        f.write(export_golden())
    with open("v2_estandar.cfg", "wb") as f:
        f.write(v2(0, "  Siemens", "Hicom 150  ", "C" * 255, "'|'", pairs_v2(), CONSTS_V2))
    with open("v2_samsung.cfg", "wb") as f:
        f.write(v2(1, "Samsung", "NX-820", "", "' '", pairs_v2(), CONSTS_V2))
    with open("v2_sin_comillas.cfg", "wb") as f:
        f.write(v2(0, "A", "B", "", "  ##  ", pairs_v2(), CONSTS_V2))


if __name__ == "__main__":
    main()
