"""What scripts/test_figures makes of the files that test programs leave."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop()

ALL = """tried faults 5 passed DatabaseFault.a
tried faults 6 passed Versions/UpgradeFault.b/1
tried faults 7 passed MemoryFault.c
tried kills 70 passed EngineCrash.d
tried kills 200 passed GateCrash.e
tried power-cuts 8 passed DatabasePowerCrash.f
tried power-cuts 9 passed UpgradeCrash.g
"""


class TestFigures(unittest.TestCase):
    def run_on(self, text, presets=("native",)):
        with tempfile.TemporaryDirectory() as folder:
            native = pathlib.Path(folder) / "native"
            native.mkdir()
            for number, line in enumerate(text.splitlines()):
                (native / f"{number}.txt").write_text(line + "\n")
            run = subprocess.run([SCRIPT, folder, *presets], capture_output=True, text=True, check=False)
        return run.returncode, run.stdout

    def test_figures_of_all_programs_are_added_up(self):
        code, out = self.run_on(ALL)
        self.assertEqual(code, 0, out)
        self.assertRegex(out, r"faults +18 tried, 0 failed")
        self.assertRegex(out, r"kills +270 tried, 0 failed")
        self.assertRegex(out, r"power cuts +17 tried, 0 failed")

    def test_each_missing_count_is_named_and_a_failure(self):
        lines = ALL.splitlines()
        for missing in lines:
            code, out = self.run_on("\n".join(line for line in lines if line != missing))
            self.assertEqual(code, 1, missing)
            self.assertIn("MISSING", out)

    def test_failed_test_is_counted_and_a_failure(self):
        code, out = self.run_on(ALL + "tried kills 3 failed GateCrash.other\n")
        self.assertEqual(code, 1)
        self.assertRegex(out, r"kills +273 tried, 1 failed")

    def test_count_of_a_failed_test_alone_is_missing(self):
        code, out = self.run_on(ALL.replace("passed EngineCrash", "failed EngineCrash"))
        self.assertEqual(code, 1)
        self.assertIn("MISSING: no kills counted by EngineCrash", out)

    def test_preset_without_any_file_is_a_failure(self):
        code, out = self.run_on(ALL, ("native", "win32"))
        self.assertEqual(code, 1)
        self.assertIn("in preset win32", out)

    def test_skipped_tests_stand_with_their_reasons(self):
        skipped = "skipped A.b: no samples\nskipped C.d: no samples\nskipped E.f: no reader: none\n"
        code, out = self.run_on(ALL + skipped)
        self.assertEqual(code, 0, out)
        self.assertRegex(out, r"tests skipped +3")
        self.assertRegex(out, r"2: no samples")
        self.assertRegex(out, r"1: no reader: none")


if __name__ == "__main__":
    unittest.main()
