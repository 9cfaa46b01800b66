#!/usr/bin/env python3
"""A Python host of Velqua: prints one CSV row a record, as
`velqua translate --format csv` does.

    python3 velqua_rows.py CONFIG RECORDS [EXTENSION_LIST]

CONFIG is a .cfg, .ini or .json configuration; EXTENSION_LIST the account
code to extension list of a Panasonic KX-TDA.
"""

import csv
import datetime
import pathlib
import sys

import velqua

COLUMNS = ["record", "type", "type_name", "attribute", "attribute_name", "date", "time",
           "duration", "ring", "dialled", "extension", "trunk", "receiving_extension",
           "receiving_trunk", "account_code", "extension_random", "error"]


def cell(call, column):
    value = getattr(call, column)
    if value is None:
        return ""
    if isinstance(value, datetime.date):
        return value.isoformat()
    if isinstance(value, datetime.time):  # HH:MM when the switch printed no seconds
        return value.isoformat("seconds" if call.has_seconds else "minutes")
    if column == "extension_random":
        return int(value)
    return value


def main(argv):
    if len(argv) not in (3, 4):
        sys.exit(__doc__)
    try:
        calls = velqua.translate(pathlib.Path(argv[2]), argv[1], argv[3] if len(argv) == 4 else None)
        sys.stdout.reconfigure(encoding="utf-8", newline="")
        out = csv.writer(sys.stdout, lineterminator="\r\n")
        out.writerow(COLUMNS)
        for call in calls:
            out.writerow([cell(call, column) for column in COLUMNS])
    except velqua.Error as e:  # number, source and Spanish description, as the library gives them
        sys.exit(f"velqua_rows.py: error {e.number} in {e.source}: {e.description}")
    except (OSError, ValueError) as e:
        sys.exit(f"velqua_rows.py: {e}")


if __name__ == "__main__":
    main(sys.argv)
