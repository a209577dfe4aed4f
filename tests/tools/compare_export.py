#!/usr/bin/env python3
"""Reads an export back and compares it with the tables it was made of, value by value. Exit code 1 and a line for
each difference; 77 when what is needed for the comparison is not on the machine.

usage: compare_export.py KVDB FORM FILE EXPORT [FILE EXPORT ...]     FORM: sqlite, csv, jsonl, html or postgres

What the tables hold is what `kvdb rows --json` prints, with every digit.
"""

import csv
import glob
import html.parser
import json
import os
import pwd
import shutil
import sqlite3
import subprocess
import sys
import tempfile
from decimal import Decimal

SKIP = 77
SCHEMA = 'the "studio"'


def tool(kvdb, *words):
    return subprocess.run([kvdb, *words], check=True, capture_output=True).stdout.decode("utf-8")



def parse(text):
    return json.loads(text, parse_float=Decimal, parse_int=Decimal)


def tables_of(kvdb, file):
    """Name in the export, and the rows as dictionaries; a name that comes twice has its file's in front."""
    names = set()
    files = sorted(glob.glob(os.path.join(file, "*.mdb")), reverse=True) if os.path.isdir(file) else [file]
    for path in files:
        for name in tool(kvdb, "tables", path).splitlines():
            exported = name if name not in names else os.path.splitext(os.path.basename(path))[0] + "_" + name
            names.add(exported)
            yield exported, parse(tool(kvdb, "rows", path, name, "--json"))


def read_sqlite(export, table):
    connection = sqlite3.connect(export)
    cursor = connection.execute('SELECT * FROM "' + table.replace('"', '""') + '"')
    names = [column[0] for column in cursor.description]
    for row in cursor:
        # repr gives the shortest digits that are this double.
        yield {n: Decimal(repr(v)) if isinstance(v, float) else Decimal(v) if isinstance(v, int)
               else v.hex().upper() if isinstance(v, bytes) else v for n, v in zip(names, row)}


def file_of(export, table):
    with open(os.path.join(export, "schema.json"), encoding="utf-8") as file:
        return next(entry["file"] for entry in json.load(file)["tables"] if entry["name"] == table)


def read_csv(export, table):
    path = os.path.join(export, file_of(export, table))
    with open(path, encoding="utf-8", newline="") as file:
        yield from csv.DictReader(file, strict=True)


def read_jsonl(export, table):
    with open(os.path.join(export, file_of(export, table)), encoding="utf-8", newline="\n") as file:
        for line in file.read().split("\n")[:-1]:
            yield parse(line)


class Page(html.parser.HTMLParser):
    """The data of a report's page: what its elements for data hold, by their attributes."""

    def __init__(self, path):
        super().__init__()
        self.manifest = None
        self.rows = {}
        self.attributes = None
        self.text = ""
        with open(path, encoding="utf-8", newline="") as file:
            self.feed(file.read())
        self.close()

    def handle_starttag(self, tag, attributes):
        self.attributes = dict(attributes) if tag == "script" else None
        self.text = ""

    def handle_data(self, data):
        self.text += data

    def handle_endtag(self, tag):
        if tag == "script" and self.attributes.get("type") == "application/json":
            if "data-table" in self.attributes:
                self.rows.setdefault(int(self.attributes["data-table"]), []).extend(parse(self.text))
            else:
                self.manifest = json.loads(self.text)


def read_html(export, table):
    page = Page(export)
    number, about = next((i, t) for i, t in enumerate(page.manifest["tables"]) if t["name"] == table)
    names = [column["name"] for column in about["columns"]]
    rows = page.rows.get(number, [])
    if len(rows) != about["rows"]:
        sys.exit(f"{table}: {len(rows)} rows, and the page says {about['rows']}")
    for row in rows:
        yield dict(zip(names, row + [None] * (len(names) - len(row))))


class Postgres:
    """A server of its own, reached through a socket in its own folder."""

    def __init__(self):
        programs = sorted(glob.glob("/usr/lib/postgresql/*/bin/initdb"))
        if not programs or not shutil.which("psql"):
            sys.exit(SKIP)
        self.bin = os.path.dirname(programs[-1])
        self.folder = tempfile.mkdtemp(prefix="kvdb-pg-", dir="/tmp")
        # It does not run as the system's administrator.
        self.owner = []
        if os.getuid() == 0:
            try:
                user = pwd.getpwnam("postgres")
            except KeyError:
                sys.exit(SKIP)
            os.chown(self.folder, user.pw_uid, user.pw_gid)
            self.owner = ["setpriv", "--reuid", str(user.pw_uid), "--regid", str(user.pw_gid), "--clear-groups"]

    def __enter__(self):
        data = os.path.join(self.folder, "data")
        self.run(f"{self.bin}/initdb", "-D", data, "-A", "trust", "-U", "studio", "-E", "UTF8", "--locale=C", "-N")
        self.run(f"{self.bin}/pg_ctl", "-D", data, "-w", "-l", f"{self.folder}/log", "-o",
                 f"-k {self.folder} -c listen_addresses= -c fsync=off", "start")
        return self

    def __exit__(self, *_):
        self.run(f"{self.bin}/pg_ctl", "-D", os.path.join(self.folder, "data"), "-m", "immediate", "stop")
        shutil.rmtree(self.folder)

    def run(self, *words):
        subprocess.run([*self.owner, *words], check=True, stdout=subprocess.DEVNULL, cwd="/")

    def psql(self, *words):
        command = ["psql", "-X", "-q", "-h", self.folder, "-U", "studio", "-d", "postgres", *words]
        return subprocess.run(command, check=True, capture_output=True, cwd="/").stdout.decode("utf-8")

    def read(self, table):
        name = '"' + SCHEMA.replace('"', '""') + '"."' + table.replace('"', '""') + '"'
        for line in self.psql("-At", "-c", f"SELECT row_to_json(t) FROM {name} t").split("\n")[:-1]:
            yield parse(line)


def same(form, want, got):
    if form == "csv":
        want = "" if want is None else str(want).lower() if isinstance(want, bool) else want
        if isinstance(want, Decimal):
            return got != "" and Decimal(got) == want
        return got == want
    if isinstance(want, Decimal) and got is not None:
        return Decimal(got) == want
    if form == "sqlite" and isinstance(want, bool):
        return got == Decimal(int(want))
    if form == "postgres" and isinstance(want, str) and isinstance(got, str):
        if got == want.replace("\0", "\ufffd") or got == want + "T00:00:00" or got.upper() == "\\X" + want:
            return True
        return "{" + got.upper() + "}" == want
    return want == got


def compare(form, table, wanted, given):
    differences = 0
    given = list(given)
    if len(wanted) != len(given):
        print(f"{table}: {len(given)} rows, not {len(wanted)}")
        differences += 1
    for number, (want, got) in enumerate(zip(wanted, given), start=1):
        if list(want) != list(got):
            print(f"{table}, row {number}: columns {list(got)}, not {list(want)}")
            return differences + 1
        for column, value in want.items():
            if not same(form, value, got[column]):
                print(f"{table}, row {number}, {column}: {got[column]!r}, not {value!r}")
                differences += 1
    return differences


def main():
    kvdb, form, *rest = sys.argv[1:]
    pairs = list(zip(rest[::2], rest[1::2]))
    csv.field_size_limit(1 << 30)
    values = 0
    differences = 0

    def go(file, read):
        nonlocal values, differences
        before = values
        for table, rows in tables_of(kvdb, file):
            differences += compare(form, table, rows, read(table))
            values += sum(len(row) for row in rows)
        if values == before:
            sys.exit(f"{file}: there was nothing to compare")

    if form == "postgres":
        with Postgres() as server:
            for file, export in pairs:
                server.psql("-f", export)
                go(file, server.read)
                server.psql("-c", f"DROP SCHEMA \"{SCHEMA.replace(chr(34), chr(34) * 2)}\" CASCADE")
    else:
        read = {"sqlite": read_sqlite, "csv": read_csv, "jsonl": read_jsonl, "html": read_html}[form]
        for file, export in pairs:
            go(file, lambda table, export=export: read(export, table))
    print(f"{len(pairs)} files, {values} values compared, {differences} differences")
    sys.exit(1 if differences else 0)


main()
