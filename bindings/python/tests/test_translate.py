"""velqua.translate gives the rows of `velqua translate`, whatever form the
records come in, and velqua.Config reads the program's three forms."""

import datetime
import io
import json
import os
import re
import subprocess
import sys
import threading

import pytest

import velqua
from conftest import EXAMPLES, SOURCE

SWITCHES = {  # case: (example, configuration, records, extra program arguments)
    "kx-tda": ("kx-tda", "kx-tda.json", None,
               ["--extensions", str(EXAMPLES / "kx-tda" / "extensions.txt")]),
    "norstar": ("norstar", "norstar.cfg", None, ["--year", "2026"]),
    "hicom": ("hicom", "hicom.ini", None, []),
    "ip-office, comma-separated": ("ip-office", "ip-office.json", None, ["--year", "2026"]),
    "samsung, NUL-ended with headings": ("samsung-officeserv", "samsung-officeserv.json", None,
                                         ["--year", "2026"]),
    "hicom in UTF-8": ("hicom", "hicom.cfg", SOURCE / "tests" / "e2e" / "data" / "hicom-utf8.txt",
                       ["--encoding", "utf-8"]),
}


def as_jsonl(call):
    """A Call in the program's JSON Lines form."""
    row = call._asdict()
    seconds = row.pop("has_seconds")
    del row["end_date"], row["end_time"]  # the store's listings give the end, not translate
    if isinstance(row["date"], datetime.date):
        row["date"] = row["date"].isoformat()
    if isinstance(row["time"], datetime.time):
        row["time"] = row["time"].isoformat("seconds" if seconds else "minutes")
    return json.dumps(row, ensure_ascii=False, separators=(",", ":"))


def program_rows(program, config, extra, records):
    # The program carries its own sanitizer runtime, if any: not the one preloaded here.
    env = {k: v for k, v in os.environ.items() if k != "LD_PRELOAD"}
    out = subprocess.run([program, "translate", "-c", str(config), "--format", "jsonl", *extra,
                          str(records)], capture_output=True, check=True, env=env)
    # The program's rows of unrecognised records also say where to find them
    # (file) and what they say (raw): a caller of translate holds both.
    rows = [json.loads(line) for line in out.stdout.decode().splitlines()]
    for row in rows:
        row.pop("file", None)
        row.pop("raw", None)
    return [json.dumps(row, ensure_ascii=False, separators=(",", ":")) for row in rows]


def inputs(records, encoding):
    """The same records in every form translate takes."""
    data = records.read_bytes()
    text = data.decode(encoding)
    return {
        "a path": records,
        "a path as str, as open() takes it": str(records),
        "a binary file": records.open("rb"),
        "the file's bytes": data,
        "bytes lines without line ends": data.splitlines(),
        "text through io.StringIO": io.StringIO(text),
        # The file's lines (str.splitlines would cut at form feeds too).
        "text lines": [line + "\n" for line in re.split(r"\r\n|\r|\n", text)],
    }


@pytest.mark.parametrize("case", sorted(SWITCHES))
def test_the_same_rows_as_the_program(program, case):
    example, config, records, extra = SWITCHES[case]
    config = EXAMPLES / example / config
    records = records or EXAMPLES / example / "records.txt"
    expected = program_rows(program, config, extra, records)
    options = {{"--extensions": "extensions", "--year": "year", "--encoding": "encoding"}[extra[0]]:
               extra[1]} if extra else {}
    if "year" in options:
        options["year"] = int(options["year"])
    encoding = "utf-8" if "encoding" in options else "cp1252"
    for form, lines in inputs(records, encoding).items():
        rows = [as_jsonl(c) for c in velqua.translate(lines, config, **options)]
        assert rows == expected, form


def test_a_live_translation_gives_rows_as_lines_complete(program):
    cfg = velqua.Config.load(EXAMPLES / "norstar" / "norstar.cfg")
    data = (EXAMPLES / "norstar" / "records.txt").read_bytes()
    live = velqua.translate(None, cfg, year=2026)
    rows = []
    for start in range(0, len(data), 97):
        live.write(data[start:start + 97])
        rows += [as_jsonl(c) for c in live]
    live.finish()
    rows += [as_jsonl(c) for c in live]
    assert rows == program_rows(program, EXAMPLES / "norstar" / "norstar.cfg", ["--year", "2026"],
                                EXAMPLES / "norstar" / "records.txt")
    assert live.counts == {"read": len(rows), "translated": len(rows) - live.counts["unrecognised"],
                           "unrecognised": live.counts["unrecognised"], "failed": 0,
                           "random_extensions": 0}
    with pytest.raises(ValueError, match="finished"):
        live.write(b"more")


def test_calls_show_only_what_the_switch_printed(tmp_path):
    cfg = velqua.Config.load(EXAMPLES / "hicom" / "hicom.cfg")
    line = (EXAMPLES / "hicom" / "records.txt").read_text(encoding="cp1252").splitlines()[0]
    broken = "31.02.26" + line[8:]  # a date the calendar has not, as the switch printed it
    calls = list(velqua.translate([line, broken, "garbage"], cfg))
    first = calls[0]
    assert isinstance(first.date, datetime.date) and first.has_seconds is True
    # a date the calendar has not: the record is damaged, kept as unrecognised with why
    assert calls[1].type == 0 and calls[1].date is None
    assert calls[1].error == "date 2026-02-31 does not exist"
    assert calls[2][:5] == (3, 0, "unrecognised", 0, "none")
    assert set(calls[2][5:]) == {None}


@pytest.mark.parametrize("config, record, start, end", [
    # the switch prints the start: the call ends later by its duration, past midnight
    ("ip-office", "2026/03/10 23:59:30,00:01:05,3,0312345678,I,201,201,,0,1000001,0,E201,Ann,"
                  "T9001,Line 1.1,0,0",
     (datetime.date(2026, 3, 10), datetime.time(23, 59, 30)),
     (datetime.date(2026, 3, 11), datetime.time(0, 0, 35))),
])
def test_each_call_has_its_end_beside_its_true_start(config, record, start, end):
    [call] = velqua.translate([record], config)
    assert (call.date, call.time) == start
    assert (call.end_date, call.end_time) == end


def test_a_bundled_name_is_a_configuration(program):
    records = EXAMPLES / "hicom" / "records.txt"
    expected = program_rows(program, "hicom", [], records)
    assert [as_jsonl(c) for c in velqua.translate(records, "hicom")] == expected
    assert velqua.Config.load("hicom").Marca == "Siemens"
    with pytest.raises(ValueError, match="nor a bundled switch"):
        velqua.translate(records, "no-such-pbx")


def test_wrong_argument_types_raise_a_type_error_naming_the_argument(kx_tda):
    records = EXAMPLES / "kx-tda" / "records.txt"
    cases = [
        (lambda: velqua.translate(42, kx_tda), "lines: expected a path, bytes, .* not int"),
        (lambda: velqua.translate(records, 3.5), "config: expected a velqua.Config, .* not float"),
        (lambda: velqua.translate(records, kx_tda, 7), "extensions: expected a path .* not int"),
        (lambda: velqua.translate(records, kx_tda, encoding=8), "encoding: expected str, not int"),
        (lambda: velqua.translate(records, kx_tda, year="2026"), "year: expected int, not str"),
        (lambda: velqua.translate(records, kx_tda, year=True), "year: expected int, not bool"),
        (lambda: velqua.translate(records, kx_tda, errors=[]), "errors: expected a path .* not list"),
    ]
    for action, message in cases:
        with pytest.raises(TypeError, match=message):
            action()


def test_bad_input_is_refused_with_its_reason(tmp_path, kx_tda):
    cases = [
        (lambda: velqua.translate(["x"], kx_tda, encoding="latin-9"), ValueError, "encoding"),
        (lambda: velqua.translate(tmp_path / "none.txt", kx_tda), FileNotFoundError, "none.txt"),
        (lambda: velqua.translate(str(tmp_path / "none.txt"), kx_tda), FileNotFoundError,
         "none.txt"),
        (lambda: list(velqua.translate(["x", b"y"], kx_tda)), TypeError, "mix str and bytes"),
        (lambda: list(velqua.translate([1], kx_tda)), TypeError, "str or bytes, not int"),
        (lambda: velqua.translate([], kx_tda, tmp_path / "none.txt"), ValueError, "extension list"),
        (lambda: velqua.translate([], tmp_path / "none.json"), FileNotFoundError, "none.json"),
        (lambda: velqua.Config.load(EXAMPLES / "kx-tda" / "records.txt"), ValueError, "unknown format"),
    ]
    for action, error, message in cases:
        with pytest.raises(error, match=message):
            action()


def test_a_save_keeps_the_record_form_and_abrir_drops_it(tmp_path):
    def rows(records, cfg):
        return [as_jsonl(c) for c in velqua.translate(records, cfg)]

    ipo_records = EXAMPLES / "ip-office" / "records.txt"
    ipo = velqua.Config.load(EXAMPLES / "ip-office" / "ip-office.json")
    ipo.save(tmp_path / "copy.json")
    assert rows(ipo_records, tmp_path / "copy.json") == rows(ipo_records, ipo)
    assert '"dialled":"01707299900","extension":"23"' in rows(ipo_records, ipo)[0]  # shaped
    hicom_records = EXAMPLES / "hicom" / "records.txt"
    ipo.Abrir(str(EXAMPLES / "hicom" / "hicom.cfg"))
    assert rows(hicom_records, ipo) == rows(hicom_records, EXAMPLES / "hicom" / "hicom.cfg")


def test_translations_on_two_threads_take_turns_and_stay_exact(program):
    records = EXAMPLES / "kx-tda" / "records.txt"
    extensions = SWITCHES["kx-tda"][3][1]
    expected = program_rows(program, EXAMPLES / "kx-tda" / "kx-tda.cfg", ["--extensions", extensions],
                            records)
    results = []

    def run():
        rows = []
        for _ in range(20):
            rows = [as_jsonl(c) for c in velqua.translate(records, EXAMPLES / "kx-tda" / "kx-tda.cfg",
                                                          extensions)]
        results.append(rows)

    threads = [threading.Thread(target=run) for _ in range(3)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert results == [expected] * 3


DRAWS = """
import pathlib, sys, velqua
sys.argv.pop(0)
list(velqua.translate(pathlib.Path(sys.argv[0]), sys.argv[1]))  # the road: its fixed seed
cfg = velqua.Config.load(sys.argv[1])
t = velqua.clsTraductor()
t.Conmutador = cfg
t.LlamadaActual = "01/19/26 01:35PM *9999 01 0312345678                     00:00'47"
print([t.Extension for _ in range(3)])
"""


def test_the_classes_keep_the_system_seed_beside_a_translation():
    args = [sys.executable, "-c", DRAWS, str(EXAMPLES / "kx-tda" / "records.txt"),
            str(EXAMPLES / "kx-tda" / "kx-tda.cfg")]
    draws = [subprocess.run(args, capture_output=True, check=True, text=True).stdout for _ in range(2)]
    assert draws[0] != draws[1]  # drawn anew in every run: the system seed
