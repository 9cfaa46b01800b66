#!/usr/bin/env python3
"""Pricing in plain Python, side by side with bench/bench_rating.cpp.

The alternative a user would write: the same 50,000 prefixes (a dict per
prefix length, longest first), the same calls (the same generator), the same
split-mode block arithmetic in integers. Prints calls/s and the sum of every
priced call in cents, which must equal the benchmark's `cents` counter.

    python3 bench/rating_python.py [CALLS]
"""
import sys
import time

MASK = (1 << 64) - 1


class Lcg:
    def __init__(self):
        self.state = 42

    def next(self):
        self.state = (self.state * 6364136223846793005 + 1442695040888963407) & MASK
        return self.state >> 33


PREFIXES = 50000


def prefix_number(i):
    if i < 90:
        return "+" + str(10 + i)
    j = i - 90
    return "+" + str(10 + j % 90) + str(j // 90)


# rate -> band -> (connect, per_minute, first, increment, minimum), millionths
PEAK, OFF, WEEKEND = 0, 1, 2
RATES = [
    [(60000, 20000, 60, 60, 0), (60000, 10000, 60, 60, 0), (0, 5000, 60, 60, 0)],
    [(100000, 61500, 30, 6, 0)] * 3,
    [(0, 120000, 1, 1, 150000), (0, 90000, 1, 1, 150000), (0, 60000, 1, 1, 0)],
    [(250000, 452500, 60, 30, 0)] * 3,
]
DAY = 86400


def band_at(t):
    """Band at t seconds from 2026-01-01 00:00 (a Thursday), and its end."""
    day, second = divmod(t, DAY)
    if (3 + day) % 7 >= 5:
        return WEEKEND, (day + 1) * DAY
    if second < 28800:
        return OFF, day * DAY + 28800
    if second < 68400:
        return PEAK, day * DAY + 68400
    return OFF, (day + 1) * DAY


def cost(rate, start, seconds):
    prices = RATES[rate]
    band, end = band_at(start)
    connect, per_minute, first, increment, minimum = prices[band]
    increments = 0 if seconds <= first else (seconds - first + increment - 1) // increment
    charged = first * per_minute
    base = start + first
    k = 0
    while k < increments:
        b, end = band_at(base + k * increment)
        upto = min(increments, (end - base + increment - 1) // increment)
        charged += (upto - k) * increment * prices[b][1]
        k = upto
    total = max(connect * 60 + charged, minimum * 60) * 1000000
    denominator = 60 * 10**12
    return (total * 100 * 2 + denominator) // (2 * denominator)


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 1000000
    tables = {}
    for i in range(PREFIXES):
        p = prefix_number(i)
        tables.setdefault(len(p), {})[p] = i % 4
    lengths = sorted(tables, reverse=True)
    lcg = Lcg()
    calls = []
    for _ in range(count):
        pick = lcg.next()
        number = "+0" if pick % 20 == 0 else prefix_number(pick // 20 % PREFIXES)
        number += str(100000 + lcg.next() % 900000)
        day = 1 + lcg.next() % 31
        t = lcg.next() % 86400
        calls.append((number, day, t, lcg.next() % 1800))
    began = time.process_time()
    cents = unpriced = 0
    for number, day, t, duration in calls:
        if duration == 0:
            continue
        rate = None
        for length in lengths:
            rate = tables[length].get(number[:length])
            if rate is not None:
                break
        if rate is None:
            unpriced += 1
            continue
        cents += cost(rate, (day - 1) * DAY + t, duration)
    spent = time.process_time() - began
    print(f"python: {count} calls in {spent:.2f} s CPU = {count / spent:,.0f} calls/s; "
          f"cents={cents} unpriced={unpriced}")


if __name__ == "__main__":
    main()
