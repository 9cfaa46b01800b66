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


_velqua._register_error(Error)
_velqua._register_call(Call)

for _name, _members in _velqua._enumerations().items():
    _type = _enum.IntEnum(_name, _members, module=__name__)
    globals()[_name] = _type
    globals().update(_type.__members__)
del _name, _members, _type

__all__ = ["Call", "Config", "Error", "Translation", "clsCfgConmut", "clsTraductor", "translate"]
