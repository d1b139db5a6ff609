#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Tests the emulated modem with an independent answering machine, which must be able to take a call on it.
# mgetty_test.py EMULATOR FAMILY: runs Debian's vgetty in its own mount namespace, with its folders in a temporary one,
# so that the machine's own configuration, logs, locks and messages are neither read nor written.

import array
import os
import pathlib
import random
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), *[".."] * 4, "demo"))

import modem_telephone  # noqa: E402
import processes  # noqa: E402
import sound  # noqa: E402

VGETTY = "/usr/sbin/vgetty"
SKIPPED = 77  # CTest's SKIP_RETURN_CODE
NUMBER, NAME = "5557777", "ANNA GARDEN"

# The offset of unsigned 8-bit samples, and how the call ends: the softmodem has no code for a caller who hangs up.
FAMILIES = {"v253": (0, "hangup"), "conexant": (128, "hangup"), "softmodem": (128, "silence"), "silabs": (128, "hangup")}

VOICE_CONF = """\
part generic
voice_log_level 6
voice_dir {folder}/voice
message_dir messages
backup_message standard.rmd
port_speed 115200
raw_data true
forceV253 TRUE
rec_silence_len 40
rec_silence_threshold 128
program vgetty
rings 2
voice_devices {tty}
"""
MGETTY_CONFIG = "debug 9\nspeed 115200\nport {tty}\ntoggle-dtr no\n"

# The folders that it would otherwise share with this machine, by their names in its own folder.
PRIVATE = {"etc": "/etc/mgetty", "log": "/var/log", "voice": "/var/spool/voice", "run": "/run"}


def start(folder, tty, greeting):
    """Starts vgetty on the modem's port."""
    for name in ("etc", "log/mgetty", "voice/incoming", "voice/messages", "run/lock"):
        os.makedirs(os.path.join(folder, name))
    for name, text in (("voice.conf", VOICE_CONF), ("mgetty.config", MGETTY_CONFIG)):
        pathlib.Path(folder, "etc", name).write_text(text.format(folder=folder, tty=tty), encoding="ascii")
    pathlib.Path(folder, "voice", "messages", "standard.rmd").write_bytes(greeting)
    script = " && ".join([*(f"mount --bind {folder}/{name} {place}" for name, place in PRIVATE.items()), f"exec {VGETTY} {tty}"])
    command = ["unshare", "--mount", "--propagation", "private", "sh", "-c", script]
    return processes.start(command, os.path.join(folder, "vgetty.out"))


def contents(folder, pattern):
    """Returns the contents of all files that match `pattern`, joined."""
    return b"".join(path.read_bytes() for path in pathlib.Path(folder).glob(pattern))


def call(modem, folder, message, end):
    """Makes a call: two rings with the caller's number in between, a message, and the end of the call."""

    caller_id = [f"callerid {line}" for line in ("DATE = 1121", "TIME = 1335", f"NMBR = {NUMBER}", f"NAME = {NAME}")]
    for text, steps in (("waiting...", ["ring"]), ("CND: RING", [*caller_id, "ring"])):
        processes.wait_for(f'"{text}" in its log', lambda: text.encode() in contents(folder, "log/mgetty/*"), 60)
        for step in steps:
            modem.do(step)
    answered = modem.wait("receiving", 60)
    modem.do("say " + message)
    modem.wait("said", 30, answered)
    modem.do(end)
    modem.wait("on-hook", 60, answered)


def check(modem, folder, profile):
    offset, end = FAMILIES[profile]
    greeting = random.Random(1).randbytes(16000)  # two seconds with every byte value, including 0x10
    said = array.array("h", (random.Random(2).randrange(-20000, 20000) for _ in range(2 * sound.RATE)))
    sound.write(os.path.join(folder, "message.wav"), said)
    machine = start(folder, os.path.relpath(os.path.realpath(modem.port), "/dev"), greeting)
    call(modem, folder, os.path.join(folder, "message.wav"), end)
    processes.stop(machine, 3)
    heard = modem.heard()
    played = array.array("h", (((byte ^ 128 ^ offset) - 128) * 256 for byte in greeting)).tobytes()
    start_of_it = heard.tobytes().find(played)
    assert start_of_it >= 0, "the greeting was not heard in one piece"
    assert sound.end_of_beep(heard[(start_of_it + len(played)) // 2 :], 933, 1.4) is not None, "no beep was heard"
    recording = contents(folder, "voice/incoming/v-*")
    assert recording == modem.sent(), "what it recorded is not what the modem sent"
    assert bytes((sample >> 8 & 255) ^ offset for sample in said) in recording, "the message is not complete"
    if profile != "softmodem":  # vgetty does not know its command for caller IDs
        assert [*pathlib.Path(folder).glob(f"voice/incoming/v-*-{NUMBER}.*")], "the caller's number is not in the name"
        assert NAME.encode() in contents(folder, "log/mgetty/*"), "the caller's name is not in the log"
    assert modem.complaints() == [], modem.complaints()


def main(emulator, profile):
    if not os.access(VGETTY, os.X_OK) or subprocess.call(["unshare", "--mount", "true"], stderr=subprocess.DEVNULL):
        return print(f"SKIPPED: {VGETTY} (the package mgetty-voice) and root, for its mount namespace, are needed") or SKIPPED
    with tempfile.TemporaryDirectory() as folder, modem_telephone.Modem(emulator, folder + "/modem", profile) as modem:
        check(modem, folder, profile)
    return 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]), sys.argv[2]))
