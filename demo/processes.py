# SPDX-License-Identifier: GPL-3.0-or-later
"""Child processes that never outlive the script, and waiting with a time limit."""

import contextlib
import ctypes
import os
import signal
import socket
import subprocess
import time

_PR_SET_PDEATHSIG = 1  # prctl(2)
_libc = ctypes.CDLL(None)

# Programs under a sanitizer are slower: every limit is multiplied by this.
SLOWNESS = float(os.environ.get("ORVEN_TIME_FACTOR", "1"))


class Failed(Exception):
    """A step that failed, with a sentence for the user."""


def start(command, log, **options):
    """Starts `command` with its output in the file `log`; it is killed if this script dies."""
    with open(log, "ab") as output:
        return subprocess.Popen(
            command,
            stdout=output,
            stderr=subprocess.STDOUT,
            preexec_fn=lambda: _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL),
            **{"stdin": subprocess.DEVNULL, **options},
        )


def hurry(process):
    """Gives the process and its later threads a real-time priority if that is allowed, so that they send in time on
    a busy computer."""
    with contextlib.suppress(PermissionError):
        os.sched_setscheduler(process.pid, os.SCHED_RR, os.sched_param(1))


def keep_time():
    """Gives this thread, but not what it starts, a real-time priority if that is allowed."""
    with contextlib.suppress(PermissionError):
        os.sched_setscheduler(0, os.SCHED_RR | os.SCHED_RESET_ON_FORK, os.sched_param(1))


@contextlib.contextmanager
def busy(count):
    """Processes that use all the processor time they get."""
    loops = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(count)]
    try:
        yield
    finally:
        for loop in loops:
            loop.kill()
            loop.wait()


def stop(process, limit):
    """Asks the process to end (SIGTERM) and returns its exit code; None when it had to be killed. If it was started
    with start_new_session, its children are killed with it."""
    if process.poll() is None:
        process.terminate()
    try:
        return process.wait(limit * SLOWNESS)
    except subprocess.TimeoutExpired:
        if os.getpgid(process.pid) == process.pid:
            os.killpg(process.pid, signal.SIGKILL)
        process.kill()
        process.wait()
        return None


def wait_for(what, condition, limit, alive=lambda: None):
    """Polls until `condition` returns something true, and returns that. Raises Failed after `limit` seconds, with
    `what` in its text; `alive` is called meanwhile and may raise earlier."""
    limit *= SLOWNESS
    end = time.monotonic() + limit
    while True:
        result = condition()
        if result:
            return result
        alive()
        if time.monotonic() > end:
            raise Failed(f"{what} did not come within {limit:g} seconds")
        time.sleep(0.02)


def free_port(count=1):
    """The first of `count` consecutive ports of 127.0.0.1 that are free now for both UDP and TCP."""
    for _ in range(100):
        with socket.socket(socket.AF_INET, socket.SOCK_STREAM) as tcp:
            tcp.bind(("127.0.0.1", 0))
            port = tcp.getsockname()[1]
        if all(_is_free(port + i) for i in range(count)):
            return port
    raise Failed("No free port was found on 127.0.0.1")


def _is_free(port):
    for kind in (socket.SOCK_STREAM, socket.SOCK_DGRAM):
        with socket.socket(socket.AF_INET, kind) as probe:
            try:
                probe.bind(("127.0.0.1", port))
            except (OSError, OverflowError):
                return False
    return True
