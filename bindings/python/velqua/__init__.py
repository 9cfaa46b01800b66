"""Velqua: the call records a telephone switch prints on its SMDR port, as call data.

Two layers:

* The library's two classes with their own names and members, properties as
  properties and operations as methods, as hosts of the automation interface
  use them::

      cfg = velqua.clsCfgConmut()
      cfg.Abrir("kx-tda.cfg")
      t = velqua.clsTraductor()
      t.Conmutador = cfg
      t.LlamadaActual = line
      t.TipoLlamadaDetectada, t.Duracion, t.Marcacion

  Failures raise velqua.Error with the library's number, source and Spanish
  description.

* The rows of ``velqua translate``, one velqua.Call per record::

      for call in velqua.translate(open("records.txt", "rb"), "kx-tda.json"):
          print(call.date, call.time, call.dialled, call.duration)

* Every call of a file at once, as a pandas DataFrame of typed columns::

      calls = velqua.read_calls("records.txt", "kx-tda.json")
      calls[calls.type == "outgoing"].groupby("extension").duration.sum()

The enumerations are IntEnum classes (velqua.emCasos ...), and their members
are also names of the module (velqua.emCasoEstandar), as hosts know them.
"""

import datetime as _datetime
import enum as _enum
from typing import NamedTuple as _NamedTuple
from typing import Optional as _Optional
from typing import Union as _Union

from . import _velqua
from ._velqua import Config, Translation, clsCfgConmut, clsTraductor, translate


class Error(Exception):
    """A failure of the library: its number, source and Spanish description.

    Numbers are those hosts compare against: 6 overflow, 9 index out of
    range, 13 an object that is not a configuration given to Conmutador,
    91 no configuration bound, and 0x80040000 plus a code (read as a
    negative 32-bit value) for the files and wiring, e.g. -2147219999 for a
    file that is not a configuration.
    """

    def __init__(self, number: int, source: str, description: str) -> None:
        super().__init__(number, source, description)
        self.number = number
        self.source = source
        self.description = description

    def __str__(self) -> str:
        return f"{self.description} (error {self.number}, {self.source})"


class Call(_NamedTuple):
    """One row of ``velqua translate``: the call data of one record.

    The program's columns, in its order. What the switch did not print is
    None, never a value from the clock; None also stands for an empty text,
    as null does in the program's JSON Lines. An unrecognised record has
    None in every field but its number, type, attribute and error.
    """

    record: int
    type: int
    type_name: str
    attribute: int
    attribute_name: str
    # A datetime.date (a record with a date the calendar has not is kept
    # unrecognised, with why in error).
    date: _Optional[_Union[_datetime.date, str]]
    # A datetime.time, its seconds 0 when the switch printed none (see
    # has_seconds); past 23:59:59 as the program prints it.
    time: _Optional[_Union[_datetime.time, str]]
    duration: _Optional[int]
    ring: _Optional[int]
    dialled: _Optional[str]
    extension: _Optional[str]
    trunk: _Optional[str]
    receiving_extension: _Optional[str]
    receiving_trunk: _Optional[str]
    account_code: _Optional[str]
    # The account code is not in the extension list: the extension is blank.
    extension_random: _Optional[bool]
    error: _Optional[str]
    # Whether the switch printed the time's seconds.
    has_seconds: _Optional[bool]
    # The call's end: date is the start plus the duration (time is the true
    # start, also for a switch that prints the end). None when the duration
    # or the time is not known, the date None when no date was printed; as
    # precise as the time (has_seconds). Not a column of `velqua translate`:
    # the program gives it in the store's listings (`velqua calls`).
    end_date: _Optional[_Union[_datetime.date, str]]
    end_time: _Optional[_Union[_datetime.time, str]]


def read_calls(
    source,
    config,
    extensions=None,
    *,
    encoding: _Optional[str] = None,
    year: _Optional[int] = None,
    errors=None,
):
    """Every call of an input as a pandas.DataFrame, one row per record.

    source: a path (str or os.PathLike), a binary file object, or bytes.
    config, extensions, encoding, year and errors as for velqua.translate.

    The columns are those of velqua.Call, typed: record (int64); type and
    attribute (categorical, by name); date (datetime64, NaT when the switch
    printed none or a date the calendar has not); time (timedelta64 from
    midnight, to the minute when the switch printed no seconds; NaT when it
    printed no time); duration and ring (timedelta64, NaT when none); the
    texts (object, None when empty); extension_random (bool); error (None,
    or why the record could not be translated). An unrecognised record has
    NaT and None in every field. The input is read and translated in C++,
    the GIL released, and the columns are built there, not from rows.
    """
    import numpy as _np
    import pandas as _pd

    if hasattr(source, "read"):
        source = source.read()
        if isinstance(source, str):
            source, encoding = source.encode("utf-8"), "utf-8"
    c = _velqua._read_columns(
        source, config, extensions, encoding=encoding, year=year, errors=errors
    )
    error = _np.full(len(c["record"]), None, dtype=object)
    for index, text in c["errors"]:
        error[index] = text
    columns = {
        "record": c["record"],
        "type": _pd.Categorical.from_codes(c["type"], c["type_names"]),
        "attribute": _pd.Categorical.from_codes(c["attribute"], c["attribute_names"]),
        "date": c["date"],
        "time": c["time"],
        "duration": c["duration"],
        "ring": c["ring"],
    }
    for name in ("dialled", "extension", "trunk", "receiving_extension",
                 "receiving_trunk", "account_code", "extension_random"):
        columns[name] = c[name]
    columns["error"] = error
    return _pd.DataFrame(columns, copy=False)


_velqua._register_error(Error)
_velqua._register_call(Call)

for _name, _members in _velqua._enumerations().items():
    _type = _enum.IntEnum(_name, _members, module=__name__)
    globals()[_name] = _type
    globals().update(_type.__members__)
del _name, _members, _type

__all__ = [
    "Call",
    "Config",
    "Error",
    "Translation",
    "clsCfgConmut",
    "clsTraductor",
    "read_calls",
    "translate",
]
