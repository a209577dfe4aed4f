"""The driver of the soak, on a kind whose cases fail as planted: a report, an abort, and a case without end."""

import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TREE, DRIVER = sys.argv[1:3]
del sys.argv[1:3]


class Driver(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.state = pathlib.Path(self.folder.name)

    def run_driver(self, *arguments):
        run = subprocess.run([DRIVER, TREE, str(self.state), "--kind", "planted", *arguments],
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout

    def row(self, out):
        return re.search(r"^\| planted \| (\d+) .* \| (\d+) \| (\d+) \| \d+ \| (\d+) \|$", out, re.M).groups()

    def test_good_cases_are_no_failure(self):
        code, out = self.run_driver("--seed", "1", "--cases", "4")
        self.assertEqual(code, 0, out)
        self.assertEqual(self.row(out), ("8", "0", "4", "5"))

    def test_reported_failure_is_counted_kept_and_can_be_repeated(self):
        code, out = self.run_driver("--seed", "4", "--cases", "3")
        self.assertEqual(code, 1)
        self.assertEqual(self.row(out), ("5", "1", "3", "7"))
        kept = self.state / "failures" / "planted-5"
        self.assertEqual((kept / "found.txt").read_text(), "found\n")
        self.assertIn("./soak --kind planted --seed 5 --cases 1", (kept / "failure.txt").read_text())
        self.assertIn("./soak --kind planted --seed 5 --cases 1", out)
        code, out = self.run_driver("--seed", "5", "--cases", "1")
        self.assertEqual(code, 1)
        self.assertIn("found in the / fifth case", out)

    def test_case_that_ends_its_worker_has_failed_and_the_next_is_run(self):
        code, out = self.run_driver("--seed", "9", "--cases", "3")
        self.assertEqual(code, 1)
        self.assertEqual(self.row(out), ("4", "1", "3", "12"))
        self.assertIn("planted, seed 10:ended the worker: signal 6", out)

    def test_case_without_end_has_failed_and_the_next_is_run(self):
        code, out = self.run_driver("--seed", "15", "--cases", "2", "--patience", "1")
        self.assertEqual(code, 1)
        self.assertEqual(self.row(out), ("2", "1", "2", "17"))
        self.assertIn("planted, seed 15:no end after 1 s", out)

    def test_next_run_goes_on_where_the_last_one_stopped(self):
        self.run_driver("--cases", "3")
        _, out = self.run_driver("--cases", "1")
        self.assertEqual(self.row(out)[3], "5")

    def test_run_with_a_seed_leaves_the_place_alone(self):
        self.run_driver("--cases", "3")
        self.run_driver("--seed", "100", "--cases", "1")
        _, out = self.run_driver("--cases", "1")
        self.assertEqual(self.row(out)[3], "5")

    def test_interrupted_run_prints_the_table(self):
        with subprocess.Popen([DRIVER, TREE, str(self.state), "--kind", "planted", "--seed", "14"],
                              stdout=subprocess.PIPE, text=True) as run:
            time.sleep(1)
            run.send_signal(signal.SIGINT)
            out, _ = run.communicate(timeout=20)
            self.assertEqual(run.returncode, 130, out)
        self.assertIn("| planted | 2 ", out)
        self.assertIn("interrupted", out)

    def test_worker_that_is_not_built_is_not_a_success(self):
        run = subprocess.run([DRIVER, str(self.state), str(self.state), "--kind", "planted"],
                             capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertIn("| planted | skipped: not built", run.stdout)

    def test_wrong_arguments_are_told(self):
        for arguments in (["--kind", "none"], ["--seed", "0"], ["--seed", "x"], ["much"]):
            run = subprocess.run([DRIVER, TREE, str(self.state), *arguments], capture_output=True, text=True,
                                 check=False)
            self.assertEqual(run.returncode, 2, arguments)
            self.assertIn("usage: ./soak", run.stderr)


FUZZER = """#!/bin/sh
# Finds something new in every run, which a fuzzer writes to the first of its folders.
first=
for argument in "$@"; do
    case $argument in -*) continue ;; esac
    ls "$argument" >>"$(dirname "$0")/seen"
    first=${first:-$argument}
done
echo new >"$first/$$"
echo "Done 7 runs in 0 second(s)"
"""


class Fuzzers(unittest.TestCase):
    def test_what_is_found_stays_out_of_the_tree_and_of_the_next_case(self):
        corpus = pathlib.Path(TREE) / "fuzz" / "corpus"
        before = sorted(path for path in corpus.rglob("*"))
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for fuzzer in ("open_file", "statement", "properties", "table_def"):
                (folder / f"{fuzzer}_fuzzer").write_text(FUZZER)
                (folder / f"{fuzzer}_fuzzer").chmod(0o755)
            run = subprocess.run([f"{TREE}/tests/soak/run_fuzzers", name, "fuzzers", "1", "8", "60", name],
                                 capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, 0, run.stderr)
            self.assertIn("done 8 7 9", run.stdout)
            seen = (folder / "seen").read_text()
        for path in before:
            if path.is_file():
                self.assertIn(path.name, seen)
        self.assertNotRegex(seen, r"(?m)^\d+$")
        self.assertEqual(sorted(path for path in corpus.rglob("*")), before)


if __name__ == "__main__":
    unittest.main()
