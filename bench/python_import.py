#!/usr/bin/env python3
"""What a user would otherwise write: a plain Python sqlite3.executemany of rows.

Reads every row that `velqua import` stored in STORE (calls and unrecognised
records, all their columns), makes a new SQLite file OUT with the very same
schema (the statements kept in STORE's sqlite_master, its user_version), and
times inserting the same rows into it with executemany in one transaction:
the rows are already in memory, so only the inserting is timed.

Usage: bench/python_import.py STORE OUT
"""
import os
import sqlite3
import sys
import time


def main():
    store, out = sys.argv[1], sys.argv[2]
    source = sqlite3.connect(store)
    schema = source.execute(
        "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE 'sqlite_%' "
        "ORDER BY rowid").fetchall()
    version = source.execute("PRAGMA user_version").fetchone()[0]
    tables = {}
    for table in ("switches", "sources", "call_types", "call_attributes", "calls", "unrecognised"):
        columns = [c[1] for c in source.execute(f"PRAGMA table_info({table})")]
        rows = source.execute(f"SELECT {', '.join(columns)} FROM {table}").fetchall()
        tables[table] = (columns, rows)
    source.close()

    for suffix in ("", "-wal", "-shm"):
        if os.path.exists(out + suffix):
            os.remove(out + suffix)
    db = sqlite3.connect(out)
    for (sql,) in schema:
        db.execute(sql)
    db.execute(f"PRAGMA user_version = {version}")
    db.commit()

    count = 0
    start = time.perf_counter()
    cpu = time.process_time()
    with db:  # one transaction
        for table, (columns, rows) in tables.items():
            marks = ", ".join("?" * len(columns))
            db.executemany(f"INSERT INTO {table} ({', '.join(columns)}) VALUES ({marks})", rows)
            if table in ("calls", "unrecognised"):
                count += len(rows)
    seconds = time.perf_counter() - start
    cpu = time.process_time() - cpu
    db.close()
    print(f"python executemany: {count} records in {seconds:.2f} s wall ({cpu:.2f} s cpu): "
          f"{count / seconds:.0f} records/s")


if __name__ == "__main__":
    main()
