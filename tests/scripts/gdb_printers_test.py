#!/usr/bin/env python3
"""The debugger shows pages, rows and values as scripts/gdb_printers.py has them."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SKIPPED = 77

EXPECTED = {
    "row": "row 5 of page 1234",
    "amount": "-12.3456",
    "day": "2005-03-05T12:00:00",
    "guid": "{03020100-0504-0706-0809-0A0B0C0D0E0F}",
    "numeric": "20.0",
    "text": 'u"Night Trains"',
    "pinned": "page 99: rows of the table at page 20, 7 slots, 120 bytes free",
}


class GdbPrinters(unittest.TestCase):
    def test_each_kind_is_shown_in_words(self):
        source = os.path.join(ROOT, "tests", "scripts", "gdb_printers_test.cpp")
        printers = os.path.join(ROOT, "scripts", "gdb_printers.py")
        with tempfile.TemporaryDirectory() as folder:
            program = os.path.join(folder, "printed")
            subprocess.run(["g++", "-std=c++20", "-g", "-O0", "-I", ROOT, source, "-o", program], check=True)
            commands = ["set print pretty off", "set disable-randomization off", f"source {printers}", "break stop",
                        "run", "up"]
            commands += [f"print {name}" for name in EXPECTED]
            arguments = [part for command in commands for part in ("-ex", command)]
            shown = subprocess.run(["gdb", "-nx", "-q", "-batch", *arguments, program], capture_output=True, text=True,
                                   check=False)
            for name, text in EXPECTED.items():
                self.assertIn(text, shown.stdout, f"{name}: {shown.stdout}{shown.stderr}")


if __name__ == "__main__":
    if shutil.which("gdb") is None or shutil.which("g++") is None:
        print("skipped: no gdb")
        sys.exit(SKIPPED)
    unittest.main()
