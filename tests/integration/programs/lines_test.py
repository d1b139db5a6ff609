#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# The same calls on every kind of telephone line, in real time. Modems of 16 bits are in the demonstration.

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
STEPS_TO_A_MESSAGE = ("InCommingCall[", "CallerID[", "Ring[LineIndex:0]->2", "LineAnswer[", "Connected[", "Play Beep ",
                      "Start Record Message[")  # fmt: skip
SAID = dict(Garden="Hello, this is the garden.", Old="The boat is ready for you.", New="Where did you leave the keys?")


@functools.cache
def said(name):
    return sound.speech(SAID[name], "en")


class LineCase(harness.ProgramCase):
    """The program with a line of one kind, and what both say of a call."""

    lowest_snr = 25.0  # dB; mu-law alone leaves about 37
    profile = None  # the emulated modem's

    def prepare(self):
        if self.profile:
            self.modem = self.enterContext(
                modem_telephone.Modem(harness.EMULATOR, os.path.join(self.folder, "modem"), self.profile, seconds=120)
            )

    def setUp(self):
        super().setUp()
        self.settings(NumOfRing=2, Greeting="Garden", SecSilence=SILENCE_SECONDS, Pass=PASSWORD)
        sound.write(self.orven.path("Greets/Garden.wav"), said("Garden"))

    def settings(self, **values):
        self.orven.change_settings(values)

    def dial(self):
        """A caller whose telephone rings the program."""
        self.orven.start_and_wait()
        caller = self.enterContext(self.orven.telephone(NAME, NUMBER))
        caller.dial(self.orven.address)
        return caller

    def dial_and_connect(self):
        caller = self.dial()
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        self.until(caller, "Connected[")
        return caller

    def until(self, caller, text, count=1):
        caller.wait_until(f'"{text}" in the system log', lambda: self.orven.count(text) >= count, LIMIT)

    def assert_same(self, reference, recording):
        """`recording` contains the sound; returns where."""
        ratio, lag = snr.snr(reference, recording)
        self.assertGreaterEqual(ratio, self.lowest_snr)
        return lag

    def end(self):
        self.orven.wait_for("Idle[", LIMIT)
        self.orven.end()
        self.assertEqual(self.modem.complaints() if self.modem else [], [])

    def recorded(self):
        """The message of the only record."""
        (record,) = self.orven.records()
        self.assertEqual((record["Call_Name"], record["Call_Number"], record["Read"]), (NAME, NUMBER, "0"))
        return sound.read(self.orven.message(record))

    def to_the_message(self):
        """A caller who has heard the greeting and the beep."""
        caller = self.dial_and_connect()
        self.until(caller, "Start Record Message[")
        self.assert_order(*STEPS_TO_A_MESSAGE)
        self.assertEqual(self.orven.count("Ring[LineIndex:0]->3"), 0)
        end = self.assert_same(said("Garden"), caller.heard()) + len(said("Garden"))
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()[end:]) is not None, LIMIT)
        return caller


class Scenarios:
    """The calls, for each kind of line."""

    def test_a_message(self):
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + said("Old"), LIMIT)
        caller.hang_up()
        self.end()
        self.assert_order(*STEPS_TO_A_MESSAGE, "Disconnected[LineIndex:0]", "Record Message ", "Idle[LineIndex:0]")
        self.assert_same(said("Old"), self.recorded())

    def test_a_message_that_silence_ends(self):
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + said("New"), LIMIT)
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.end()
        self.assert_order(*STEPS_TO_A_MESSAGE, "Record Message ", "Idle[LineIndex:0]")
        self.assertEqual(self.orven.count("Disconnected["), 0, "the program has hung up")
        message = self.recorded()
        self.assertGreaterEqual(len(message), SILENCE_SECONDS * sound.RATE)
        self.assert_same(said("New"), message)

    def test_a_caller_who_gives_up(self):
        self.settings(NumOfRing=4)
        caller = self.dial()
        self.until(caller, "CallerID[")
        caller.hang_up()
        self.end()
        self.assert_order("InCommingCall[", "Ring[LineIndex:0]->1", "Idle[LineIndex:0]")
        self.assertEqual(self.orven.count("LineAnswer["), 0)
        (record,) = self.orven.records()
        self.assertEqual((record["Call_Name"], record["Call_Number"], record["Type"]), (NAME, NUMBER, "-1"))
        self.assertEqual(os.listdir(self.orven.path("Messages")), [])

    def test_messages_heard_by_telephone(self):
        for name in ("Old", "New"):
            # a message ends in silence; the last moment before the program hangs up may not get through
            sound.write(self.orven.path(f"Messages/{name}.wav"), said(name) + sound.silence(0.4))
        with sqlite3.connect(self.orven.path("Calls")) as calls:
            rows = [("Bob", "5551111", "10:00:00", "11/20/2025", f"{n}.wav", "2.0", "0") for n in ("Old", "New")]
            calls.executemany("insert into Calls values (?, ?, ?, ?, ?, ?, ?)", rows)
        caller = self.dial_and_connect()
        for number, key in enumerate(PASSWORD + "*", 1):
            caller.press(key)
            self.until(caller, "MonitorDigit[", number)
        self.until(caller, "Remote Control [LineIndex:0]")
        before = len(caller.heard())
        caller.wait_until("The first message", lambda: sound.peak(caller.heard()[before:]) > 0.1, LIMIT)
        caller.press("*")  # the password is still what was keyed: the first message again
        self.until(caller, "Remote Control [LineIndex:0]", 2)
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.end()
        self.assert_order("Connected[", "->1", "->2", "->*", "Remote Control [", "->*", "Remote Control [", "Idle[")
        self.assertEqual(self.orven.count("Play Beep "), 0)
        heard = caller.heard()
        first, second = (self.assert_same(said(name), heard) for name in ("New", "Old"))
        self.assertGreaterEqual(second, first + len(said("New")))
        self.assertGreater(sound.peak(heard[before:first]), 0.1, "the beginning of the first message, once more")
        self.assertLess(snr.snr(said("Garden"), heard)[0], self.lowest_snr, "the greeting was cut")
        self.assertEqual(self.callers_of_records(), ["Bob", "Bob"], "the owner's call is not filed")


class Modem8Bits(Scenarios, LineCase):
    profile, lowest_snr = "conexant", 20.0  # 8 linear bits leave about 24


class Sip(Scenarios, LineCase):
    pass


class ModemUnplugged(LineCase):
    profile = "silabs"

    def test_unplugged_in_mid_message(self):
        self.settings(SecSilence=30)  # not what ends the call
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + said("Old"), LIMIT)
        self.modem.do("unplug")
        self.orven.wait_for("Idle[", LIMIT)
        self.assert_order(*STEPS_TO_A_MESSAGE, "Disconnected[LineIndex:0]", "Record Message ", "Idle[LineIndex:0]")
        self.orven.wait_for(f"The modem at {self.modem.port} was unplugged")
        self.assert_same(said("Old"), self.recorded())
        self.modem.do("replug")
        self.orven.wait_for(f"The modem at {self.modem.port} works again", LIMIT)
        caller.dial()
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        self.until(caller, "Connected[", 2)
        caller.hang_up()
        self.orven.wait_for("Idle[", LIMIT, 2)
        self.end()


if __name__ == "__main__":
    harness.main(program_arguments=2, at_a_time=5)
