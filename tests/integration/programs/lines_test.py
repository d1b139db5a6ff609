#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# The same calls on every kind of telephone line, in real time. The demonstration covers 16-bit modems and SIP without
# SRTP.

import functools
import os
import sqlite3

import harness
import modem_telephone
import snr
from harness import LIMIT, REACTION_SECONDS, sound

NAME, NUMBER = "Anna Garden", "5557777"
PASSWORD = "12"
SILENCE_SECONDS = 3
SAID = dict(Garden="Hello, this is the garden.", Old="The boat is ready for you.", New="Where did you leave the keys?")


@functools.cache
def said(name):
    return sound.speech(SAID[name], "en")


class Calls:
    """The calls for each kind of line, and checks on both sides. The demonstration has the caller hang up."""

    lowest_snr = 25.0  # dB; mu-law alone leaves about 37
    profile = None  # the emulated modem's

    def prepare(self):
        if self.profile:
            folder = os.path.join(self.folder, "modem")
            self.modem = self.enterContext(modem_telephone.Modem(harness.EMULATOR, folder, self.profile, seconds=120))

    def setUp(self):
        super().setUp()
        self.orven.change_settings(dict(NumOfRing=2, Greeting="Garden", SecSilence=SILENCE_SECONDS, Pass=PASSWORD))
        sound.write(self.orven.path("Greets/Garden.wav"), said("Garden"))

    def start_and_call(self, until):
        """Starts the program, calls it and waits until its log contains `until`."""
        self.orven.start_and_wait()
        caller = self.enterContext(self.orven.telephone(NAME, NUMBER))
        caller.dial(self.orven.address)
        self.until(caller, until)
        return caller

    def until(self, caller, text, count=1):
        caller.wait_until(f'"{text}" in the system log', lambda: self.orven.count(text) >= count, LIMIT)

    def assert_same(self, reference, recording):
        """Checks that `recording` contains the sound and returns where."""
        ratio, lag = snr.snr(reference, recording)
        self.assertGreaterEqual(ratio, self.lowest_snr)
        return lag

    def end(self, *steps):
        """Waits for the end of the call, ends the program and checks that it has logged these steps."""
        self.orven.wait_for("Idle[", LIMIT)
        self.orven.end()
        self.assertEqual(self.modem.complaints() if self.modem else [], [])
        self.assert_order("InCommingCall[", *steps, "Idle[LineIndex:0]")

    def record(self):
        (record,) = self.orven.records()
        self.assertEqual((record["Call_Name"], record["Call_Number"]), (NAME, NUMBER))
        return record

    def say(self, name):
        """Calls, waits for the greeting and the beep, and speaks."""
        caller = self.start_and_call("Start Record Message[")
        end = self.assert_same(said("Garden"), caller.heard()) + len(said("Garden"))
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()[end:]) is not None, LIMIT)
        caller.say(sound.silence(REACTION_SECONDS) + said(name), LIMIT)
        return caller


    def test_a_message_that_silence_ends(self):
        self.say("New").wait_event("CALL_CLOSED", LIMIT)
        self.end("CallerID[", "Ring[LineIndex:0]->2", "LineAnswer[", "Connected[", "Play Beep ",
                 "Start Record Message[", "Record Message ")  # fmt: skip
        self.assertEqual(self.orven.count("Ring[LineIndex:0]->3"), 0)
        self.assertEqual(self.orven.count("Disconnected["), 0, "the program has hung up")
        message = sound.read(self.orven.message(self.record()))
        self.assertGreaterEqual(len(message), SILENCE_SECONDS * sound.RATE)
        self.assert_same(said("New"), message)

    def test_messages_heard_by_telephone(self):
        for name in ("Old", "New"):
            # messages end in silence, because the last moment before the program hangs up may be cut off
            sound.write(self.orven.path(f"Messages/{name}.wav"), said(name) + sound.silence(0.4))
        with sqlite3.connect(self.orven.path("Calls")) as calls:
            rows = [("Bob", "5551111", "10:00:00", "11/20/2025", f"{n}.wav", "2.0", "0") for n in ("Old", "New")]
            calls.executemany("insert into Calls values (?, ?, ?, ?, ?, ?, ?)", rows)
        caller = self.start_and_call("Connected[")
        for number, key in enumerate(PASSWORD + "*", 1):
            caller.press(key)
            self.until(caller, "MonitorDigit[", number)
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.end("Connected[", "->1", "->2", "->*", "Remote Control [")
        first, second = (self.assert_same(said(name), caller.heard()) for name in ("New", "Old"))
        self.assertGreaterEqual(second, first + len(said("New")))
        self.assertLess(snr.snr(said("Garden"), caller.heard())[0], self.lowest_snr, "the greeting was cut")
        self.assertEqual(self.callers_of_records(), ["Bob", "Bob"], "the owner's call is not filed")


class Modem8Bits(Calls, harness.ProgramCase):
    profile, lowest_snr = "conexant", 20.0  # 8 linear bits leave about 24


class SipEncrypted(Calls, harness.ProgramCase):
    def setUp(self):
        super().setUp()
        self.orven.encrypt()


if __name__ == "__main__":
    harness.main(program_arguments=2, at_a_time=4)
