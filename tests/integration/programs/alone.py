# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a test in namespaces of its own, whose end ends all that it has mounted and connected."""

import os
import subprocess
import sys

_SKIPPED = 77  # CTest's SKIP_RETURN_CODE of such a test
_ALONE = "ORVEN_TEST_ALONE"  # set for the process that has them


def alone(kinds, trial):
    """Returns in a process that has namespaces of its own: `kinds` are letters of unshare(1). Where the shell
    cannot do `trial` in such ones, the test is skipped."""
    if _ALONE in os.environ:
        return
    os.environ[_ALONE] = "1"
    for options in ("-" + kinds, "-r" + kinds):
        command = ["unshare", options]
        if subprocess.run([*command, "sh", "-c", trial], capture_output=True, check=False).returncode == 0:
            os.execvp(command[0], command + [sys.executable, "-B", "-W", "ignore"] + sys.argv)
    print(f"unshare -{kinds} and -r{kinds} do not allow here: {trial}: skipped")
    sys.exit(_SKIPPED)
