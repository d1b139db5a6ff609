#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Plants one fault after another in a small house and expects the check to name it."""

import os
import tempfile
import unittest

import check_house

LICENCE = "// SPDX-License-Identifier: GPL-3.0-or-later\n"


class CheckHouse(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        self.write("src/platform/clock.h", "#include <chrono>")
        self.write("src/core/settings.h", '#include <string>\n#include "platform/clock.h"')
        self.write("src/telephony/call_sequence.h", '#include "core/settings.h"\n#include "log/log_files.h"')
        self.write("src/log/log_files.h", "#include <vector>")
        self.write("src/shell/frmMain.h", '#include <QMainWindow>\n#include "telephony/call_sequence.h"')
        self.write("src/adapters/desktop/qt_clock.h", '#include <QLocale>\n#include "platform/clock.h"')
        self.write("src/programs/orven/main.cpp", '#include "adapters/desktop/qt_clock.h"\n#include "shell/frmMain.h"')

    def write(self, path, text, licence=LICENCE):
        full = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(licence + text + "\n")

    def expect(self, *parts):
        faults = check_house.faults_of(self.root)
        self.assertEqual(len(faults), 1, faults)
        for part in parts:
            self.assertIn(part, faults[0])

    def test_an_orderly_house_has_no_fault(self):
        self.assertEqual(check_house.faults_of(self.root), [])

    def test_the_engine_includes_nothing_but_the_standard_library(self):
        self.write("src/core/settings.h", "#include <string>\n  # include <QString>")
        self.expect("src/core/settings.h:3:", "<QString>")
        self.write("src/core/settings.h", "#include <unistd.h>")
        self.expect("src/core/settings.h:2:", "<unistd.h>")

    def test_the_engine_knows_no_adapter_and_no_window(self):
        self.write("src/core/settings.h", '#include "adapters/desktop/qt_clock.h"')
        self.expect("src/core/settings.h:2:", "adapter")
        self.write("src/core/settings.h", "")
        self.write("src/shell/main_window.cpp", '#include "shell/frmMain.h"')
        self.expect("src/shell/main_window.cpp:2:", "window")

    def test_a_floor_includes_none_above_it(self):
        self.write("src/platform/clock.h", '#include "core/settings.h"')
        self.expect("src/platform/clock.h:2:", "floor 2", "floor 1")
        self.write("src/platform/clock.h", "")
        self.write("src/records/call.h", '#include "telephony/call_sequence.h"')
        self.expect("src/records/call.h:2:", "floor 4", "floor 3")

    def test_an_adapter_knows_only_the_ports(self):
        self.write("src/adapters/desktop/qt_clock.h", '#include "core/settings.h"')
        self.expect("src/adapters/desktop/qt_clock.h:2:", "ports")

    def test_a_header_is_named_from_src_and_exists(self):
        self.write("src/core/settings.h", '#include "../platform/clock.h"')
        self.expect("src/core/settings.h:2:", "../platform/clock.h")

    def test_every_file_carries_its_licence(self):
        self.write("tests/unit/core/settings_test.cpp", "int x;", licence="")
        self.expect("tests/unit/core/settings_test.cpp:1:", "SPDX")

    def test_a_new_folder_needs_a_floor(self):
        self.write("src/attic/box.h", "")
        self.expect("attic/", "floor")

    def test_an_empty_house_is_a_fault(self):
        with tempfile.TemporaryDirectory() as empty:
            self.assertEqual(check_house.faults_of(empty), ["src: no source files found"])


if __name__ == "__main__":
    unittest.main()
