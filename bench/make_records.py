#!/usr/bin/env python3
"""Writes N call records in the Siemens Hicom 150 long format of examples/hicom.

Unlike repeating the bundled sample, every record differs the way a real
switch's do: the calls of one site over the days, in time order, from a few
hundred extensions on a few dozen trunks to many different numbers, with some
account-code charges and one record in a thousand that no configuration would
recognise. Indexes and queries are then measured on realistic keys.

Usage: bench/make_records.py N [--start 2025-01-01] [--seed 1] > records.txt
"""
import argparse
import datetime
import random
import sys


def record(rng, when):
    """One 79-column line: date, time, trunk, extension, ring, duration, number, charge, kind."""
    trunk = rng.randint(1, 40)
    extension = rng.randint(100, 499)
    duration = int(rng.expovariate(1 / 180))
    kind = rng.choices(["1", "2", "5", "6"], weights=[40, 50, 5, 5])[0]
    incoming = kind in ("1", "5")
    ring = f"{rng.randint(0, 1):02d}:{rng.randint(0, 59):02d}" if incoming else "     "
    area = rng.choice(["089", "030", "040", "069", "0711", "0221", "0176", "0043", "00442"])
    number = area + "".join(rng.choice("0123456789") for _ in range(rng.randint(5, 8)))
    charge = "" if incoming else f"{rng.randint(0, 2000) / 100:.2f}"
    return (
        f"{when:%d.%m.%y %H:%M:%S} {trunk:3d} {extension:6d} {ring} "
        f"{duration // 3600:02d}:{duration // 60 % 60:02d}:{duration % 60:02d} "
        f"{number:<20}{charge:>12} {kind:>2}"
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("count", type=int)
    parser.add_argument("--start", default="2025-01-01")
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()
    rng = random.Random(args.seed)
    when = datetime.datetime.fromisoformat(args.start)
    out = sys.stdout
    lines = []
    for n in range(args.count):
        # About 2,000 calls a day: 45 s apart on average.
        when += datetime.timedelta(seconds=rng.randint(1, 89))
        if n % 1000 == 999:
            lines.append("Siemens Hicom 150 E Office  -  call charge printout")
        else:
            lines.append(record(rng, when))
        if len(lines) == 10000:
            out.write("\r\n".join(lines) + "\r\n")
            lines = []
    if lines:
        out.write("\r\n".join(lines) + "\r\n")


if __name__ == "__main__":
    main()
