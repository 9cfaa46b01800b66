"""velqua.read_calls gives, as typed DataFrame columns, exactly the calls
velqua.translate gives row by row."""

import datetime
import threading

import pandas as pd
import pytest

import velqua
from conftest import EXAMPLES
from test_translate import SWITCHES


def expected_frame(calls):
    """The DataFrame read_calls must give, built from velqua.translate's Calls."""

    def date(call):
        return pd.Timestamp(call.date) if isinstance(call.date, datetime.date) else pd.NaT

    def clock(call):
        if not isinstance(call.time, datetime.time):
            return pd.NaT
        t = call.time
        return pd.Timedelta(hours=t.hour, minutes=t.minute, seconds=t.second)

    def seconds(value):
        return pd.NaT if value is None else pd.Timedelta(seconds=value)

    rows = [{
        "record": c.record, "type": c.type_name, "attribute": c.attribute_name,
        "date": date(c), "time": clock(c), "duration": seconds(c.duration), "ring": seconds(c.ring),
        "dialled": c.dialled, "extension": c.extension, "trunk": c.trunk,
        "receiving_extension": c.receiving_extension, "receiving_trunk": c.receiving_trunk,
        "account_code": c.account_code, "extension_random": bool(c.extension_random),
        "error": c.error,
    } for c in calls]
    return pd.DataFrame(rows)


@pytest.mark.parametrize("case", sorted(SWITCHES))
def test_the_columns_hold_what_translate_gives(case):
    example, config, records, extra = SWITCHES[case]
    config = EXAMPLES / example / config
    records = records or EXAMPLES / example / "records.txt"
    options = {"year": 2026} if "--year" in extra else {}
    if "--extensions" in extra:
        options["extensions"] = EXAMPLES / "kx-tda" / "extensions.txt"
    if "--encoding" in extra:
        options["encoding"] = "utf-8"
    frame = velqua.read_calls(records, config, **options)
    expected = expected_frame(velqua.translate(records, config, **options))
    assert len(frame) == len(expected) > 0
    for name in expected.columns:
        got = frame[name]
        if name in ("type", "attribute"):
            assert got.dtype == "category"
            got = got.astype(object)
        want = expected[name]
        assert got.isna().tolist() == want.isna().tolist(), name
        assert got[got.notna()].tolist() == want[want.notna()].tolist(), name


def test_a_path_a_file_and_bytes_read_alike(tmp_path):
    config = EXAMPLES / "kx-tda" / "kx-tda.json"
    records = EXAMPLES / "kx-tda" / "records.txt"
    frames = [
        velqua.read_calls(records, config, year=2026),
        velqua.read_calls(str(records), config, year=2026),
        velqua.read_calls(records.open("rb"), config, year=2026),
        velqua.read_calls(records.read_bytes(), config, year=2026),
    ]
    for frame in frames[1:]:
        pd.testing.assert_frame_equal(frame, frames[0])
    typed = frames[0].dtypes
    assert str(typed["record"]) == "int64"
    assert str(typed["date"]) == "datetime64[ns]"
    assert str(typed["duration"]) == "timedelta64[ns]"
    assert str(typed["extension_random"]) == "bool"


def test_unrecognised_and_failed_records_keep_their_rows(tmp_path):
    config = velqua.Config.load(EXAMPLES / "hicom" / "hicom.cfg")
    good = (EXAMPLES / "hicom" / "records.txt").read_bytes().splitlines()[0]
    frame = velqua.read_calls(b"not a call\r\n" + good + b"\r\n", config)
    assert frame.record.tolist() == [1, 2]
    assert frame.type.tolist()[0] == "unrecognised"
    assert frame.iloc[0][["date", "time", "duration", "dialled"]].isna().all()
    assert frame.type.tolist()[1] != "unrecognised"


def test_bad_input_is_refused_with_its_reason(tmp_path):
    config = EXAMPLES / "hicom" / "hicom.cfg"
    with pytest.raises(ValueError, match="records"):
        velqua.read_calls(tmp_path / "missing.txt", config)
    with pytest.raises(ValueError, match="encoding"):
        velqua.read_calls(b"", config, encoding="latin-9")
    assert len(velqua.read_calls(b"", config)) == 0


def test_threads_read_their_own_files_at_once():
    cases = [("kx-tda", "kx-tda.json"), ("norstar", "norstar.cfg"), ("hicom", "hicom.ini")]
    alone = [velqua.read_calls(EXAMPLES / e / "records.txt", EXAMPLES / e / c, year=2026)
             for e, c in cases]
    results = [None] * len(cases)

    def run(i):
        e, c = cases[i]
        results[i] = velqua.read_calls(EXAMPLES / e / "records.txt", EXAMPLES / e / c, year=2026)

    threads = [threading.Thread(target=run, args=(i,)) for i in range(len(cases))]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    for got, want in zip(results, alone):
        pd.testing.assert_frame_equal(got, want)
