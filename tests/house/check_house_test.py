#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Adds one fault at a time to a small source tree and expects the check to report it."""

import os
import tempfile
import unittest

import check_house

LICENCE = "// SPDX-License-Identifier: GPL-3.0-or-later\n"
ORDERLY = {
    "src/base/paths.h": "#include <string>",
    "src/base/paths.cpp": '#include <unistd.h>\n#include "base/paths.h"',
    "src/platform/clock.h": '#include <chrono>\n#include "base/paths.h"',
    "src/core/settings.h": '#include <cstdint>\n#include "platform/clock.h"',
    "src/widgets/icons.h": '#include <QIcon>\n#include "core/settings.h"',
    "src/notify/frmEvents.h": '#include <QDialog>\n#include "widgets/icons.h"',
    "src/shell/frmMain.h": '#include <QMainWindow>\n#include "notify/frmEvents.h"',
    "src/adapters/desktop/qt_clock.h": '#include <QLocale>\n#include "base/paths.h"\n#include "platform/clock.h"',
    "src/programs/orven/main.cpp": '#include "adapters/desktop/qt_clock.h"\n#include "shell/frmMain.h"',
}
PLANTED = [  # path, content, expected line number and a word of the report
    ("src/core/settings.h", "#include <string>\n  # include <QString>", "3: ", "<QString>"),
    ("src/core/settings.h", '#include "adapters/desktop/qt_clock.h"', "2: ", "adapter"),
    ("src/core/settings.h", '#include "../platform/clock.h"', "2: ", "no header"),
    ("src/platform/clock.h", '#include "core/settings.h"', "2: ", "floor 3"),
    ("src/base/paths.h", "#include <unistd.h>", "2: ", "<unistd.h>"),
    ("src/shell/main_window.cpp", '#include "shell/frmMain.h"', "2: ", "window"),
    ("src/notify/frmEvents.h", '#include "shell/frmMain.h"', "2: ", "above notify/"),
    ("src/adapters/desktop/qt_clock.h", '#include "core/settings.h"', "2: ", "ports"),
    ("src/attic/box.h", "", "1: ", "floor"),
]


class CheckHouse(unittest.TestCase):
    def faults(self, *changes):
        """Returns the faults in the correct tree after `changes`, pairs of a path and its new content."""
        with tempfile.TemporaryDirectory() as root:
            orderly = [(path, LICENCE + text) for path, text in ORDERLY.items()]
            for path, text in orderly + list(changes):
                os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text + "\n")
            return check_house.faults_of(root)

    def test_each_planted_fault_is_the_only_one_and_named(self):
        self.assertEqual(self.faults(), [])
        for path, text, line, word in PLANTED:
            faults = self.faults((path, LICENCE + text))
            self.assertEqual(len(faults), 1, (path, text, faults))
            self.assertTrue(faults[0].startswith(f"{path}:{line}") and word in faults[0], faults)

    def test_a_long_file_a_missing_licence_too_many_tests_and_an_empty_house_are_faults(self):
        faults = self.faults(("src/core/settings.cpp", LICENCE + "// why\n" * 450), ("tests/a_test.cpp", "int x;\n" * 10))
        self.assertEqual([fault.split(" ")[0] for fault in faults],
                         ["src/core/settings.cpp:450:", "tests/a_test.cpp:1:", "tests:"])
        self.assertEqual(check_house.faults_of("/nowhere"), ["src: no source files found"])


if __name__ == "__main__":
    unittest.main()
