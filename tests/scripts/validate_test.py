#!/usr/bin/env python3
"""The validate script reports each kind of violation, and nothing else, in a tree made for it."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

VALIDATE = sys.argv.pop(1)

GOOD_CPP = '#include "os/x.h"\n\nint answer() { return 42; }\n'


class ValidateTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kvdb validate ")
        self.addCleanup(shutil.rmtree, self.folder)
        self.write("layers.txt", "# From the top.\nframe\ngear\nstudio\njet/sql\njet/base\nos\n")
        self.write("os/x.h", "#pragma once\n")
        self.write("jet/base/x.h", "#pragma once\n")
        self.write("jet/sql/x.h", "#pragma once\n")
        self.write("tests/x.h", "#pragma once\n")
        self.write("include/kvdb/kvdb.h", "#pragma once\n")

    def write(self, path, content):
        full = os.path.join(self.folder, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())

    def validate(self):
        """Exit code and the lines reported."""
        answer = subprocess.run([sys.executable, VALIDATE, self.folder], capture_output=True, text=True, check=False)
        lines = [line for line in answer.stdout.splitlines() if not line.startswith("validate:")]
        return answer.returncode, lines

    def expect_only(self, prefix):
        code, lines = self.validate()
        self.assertEqual(code, 1)
        self.assertEqual(len(lines), 1, lines)
        self.assertTrue(lines[0].startswith(prefix), lines[0])

    def test_good_tree_passes(self):
        self.write("jet/base/good.cpp", GOOD_CPP)
        self.assertEqual(self.validate(), (0, []))

    def test_upward_include_is_reported(self):
        self.write("os/bad.cpp", '#include "jet/base/x.h"\n')
        self.expect_only("os/bad.cpp:1: layer: ")

    def test_upward_include_by_relative_path_is_reported(self):
        self.write("os/bad.cpp", '\n#include "../jet/base/x.h"\n')
        self.expect_only("os/bad.cpp:2: layer: ")

    def test_include_of_a_file_above_the_layers_of_its_folder_is_reported(self):
        self.write("jet/y.h", "#pragma once\n")
        self.write("jet/sql/bad.cpp", '#include "jet/y.h"\n')
        self.expect_only("jet/sql/bad.cpp:1: layer: ")

    def test_files_of_the_engine_that_include_each_other_are_reported(self):
        self.write("jet/base/a.cpp", '#include "jet/base/b.h"\n')
        self.write("jet/base/b.h", '#include "jet/base/c.h"\n')
        self.write("jet/base/c.h", '#include "jet/base/a.h"\n')
        self.write("jet/base/a.h", '#include "jet/base/x.h"\n')
        self.write("jet/base/good.cpp", '#include "jet/base/a.h"\n')
        code, lines = self.validate()
        self.assertEqual(code, 1)
        self.assertEqual([line.split(":")[0] for line in lines], ["jet/base/a.cpp", "jet/base/b.h", "jet/base/c.h"])
        self.assertTrue(all(": circle: " in line for line in lines), lines)

    def test_document_that_shows_the_layers_in_another_order_is_reported(self):
        table = "| folder | owns |\n|---|---|\n| `frame/` | a |\n| `gear/` | b |\n| `studio/` | c |\n"
        table += "| `jet/sql/` | d |\n"
        self.write("docs/architecture.md", table + "| `jet/base/` | d |\n| `os/` | e |\n")
        self.assertEqual(self.validate(), (0, []))
        self.write("docs/architecture.md", table + "| `os/` | e |\n| `jet/base/` | d |\n")
        self.expect_only("docs/architecture.md:3: layers: ")

    def test_include_of_the_layer_right_above_is_reported(self):
        self.write("gear/x.h", "#pragma once\n")
        self.write("studio/bad.cpp", '#include "gear/x.h"\n')
        self.expect_only("studio/bad.cpp:1: layer: ")

    def test_engine_including_its_statements_is_reported(self):
        self.write("jet/base/bad.cpp", '#include "jet/sql/x.h"\n')
        self.expect_only("jet/base/bad.cpp:1: layer: ")

    def test_layer_including_tests_is_reported(self):
        self.write("frame/bad.cpp", '#include "tests/x.h"\n')
        self.expect_only("frame/bad.cpp:1: layer: ")

    def test_public_header_including_a_layer_is_reported(self):
        self.write("include/kvdb/bad.h", '#include "os/x.h"\n')
        self.expect_only("include/kvdb/bad.h:1: layer: ")

    def test_downward_includes_pass(self):
        self.write("jet/sql/good.cpp", '#include "x.h"\n\n#include "jet/base/x.h"\n#include "os/x.h"\n')
        self.write("os/good.cpp", '#include <kvdb/kvdb.h>\n\n#include <string>\n')
        self.write("tests/good.cpp", '#include "jet/base/x.h"\n#include "os/x.h"\n')
        self.assertEqual(self.validate(), (0, []))

    def test_tab_is_reported(self):
        self.write("docs/bad.md", "one\n\ttwo\n")
        self.expect_only("docs/bad.md:2: tab: ")

    def test_tab_in_table_of_data_passes(self):
        self.write("jet/base/good.tsv", "one\ttwo\n")
        self.assertEqual(self.validate(), (0, []))

    def test_crlf_is_reported(self):
        self.write("docs/bad.md", "one\r\n")
        self.expect_only("docs/bad.md:1: line-end: ")

    def test_missing_last_newline_is_reported(self):
        self.write("docs/bad.md", "one\ntwo")
        self.expect_only("docs/bad.md:2: line-end: ")

    def test_line_of_120_characters_passes_and_of_121_is_reported(self):
        self.write("docs/good.md", "\u00e4" * 120 + "\n")
        self.assertEqual(self.validate(), (0, []))
        self.write("docs/bad.md", "x" * 121 + "\n")
        self.expect_only("docs/bad.md:1: width: ")

    def test_blank_at_line_end_is_reported(self):
        self.write("docs/bad.md", "one \n")
        self.expect_only("docs/bad.md:1: blank: ")

    def test_bytes_that_are_not_utf8_are_reported(self):
        self.write("docs/bad.md", b"one\n\xe4\n")
        self.expect_only("docs/bad.md:2: encoding: ")

    @unittest.skipUnless(shutil.which("clang-format-14"), "clang-format 14 is not here")
    def test_unformatted_code_is_reported(self):
        self.write(".clang-format", "BasedOnStyle: Google\n")
        self.write("os/bad.cpp", "int  x;\n")
        self.expect_only("os/bad.cpp:1: format: ")

    def test_every_violation_has_a_line(self):
        self.write("os/bad.cpp", '#include "jet/base/x.h"\n\tint x;\n')
        code, lines = self.validate()
        self.assertEqual(code, 1)
        self.assertEqual(len(lines), 2, lines)

    def test_wrong_arguments_are_told_apart(self):
        answer = subprocess.run([sys.executable, VALIDATE, "a", "b"], capture_output=True, text=True, check=False)
        self.assertEqual(answer.returncode, 2)
        self.assertIn("usage", answer.stderr)


if __name__ == "__main__":
    unittest.main()
