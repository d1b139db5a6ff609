# SPDX-License-Identifier: GPL-3.0-or-later
"""Calls that go the same way on every kind of telephone line."""

import os
import re
import shutil
import sqlite3
import tempfile

from orven_test import Orven, OrvenCase, processes, sound

import snr  # noqa: E402

LIMIT = 30  # seconds, for whatever is waited for
NAME, NUMBER = "Anna Garden", "5557777"
PASSWORD = "12"
SILENCE_SECONDS = 3
REACTION_SECONDS = 0.5  # from what is logged to what a person says
STEPS_TO_A_MESSAGE = ["InCommingCall[", "CallerID[", "Ring[LineIndex:0]->2", "LineAnswer[", "Connected["] + [
    "Play Beep ",
    "Start Record Message[",
]
SAID = {
    "Garden": "Hello, this is the garden.",
    "Old": "The boat is ready for you.",
    "New": "Where did you leave the keys?",
}


class LineCase(OrvenCase):
    """The program with a line, and what both say of a call. A subclass has `make_line`."""

    lowest_snr = 25.0  # dB; mu-law alone leaves about 37

    @classmethod
    def setUpClass(cls):
        """A used folder, and what is said in it."""
        folder = tempfile.mkdtemp(prefix="orven-lines-")
        cls.addClassCleanup(shutil.rmtree, folder, True)
        cls.template = os.path.join(folder, "home")
        os.makedirs(cls.template)
        with open(os.path.join(cls.template, "lines.ini"), "w", encoding="utf-8") as lines:
            lines.write("[Test]\ntype = sim\n")
        with Orven(cls.template, ["-st"]) as orven:
            orven.wait_for("LineOpen[")
            orven.end()
        shutil.rmtree(os.path.join(cls.template, "Log"))
        cls.sounds = {name: sound.speech(text, "en") for name, text in SAID.items()}
        sound.write(os.path.join(cls.template, "Greets", "Garden.wav"), cls.sounds["Garden"])

    def setUp(self):
        super().setUp()
        shutil.copytree(self.template, self.home, dirs_exist_ok=True)
        self.settings(NumOfRing="2", Greeting="Garden", SecSilence=str(SILENCE_SECONDS), Pass=PASSWORD)
        self.line = self.enterContext(self.make_line())
        self.write("lines.ini", "[Test]\n" + self.line.section)

    def settings(self, **values):
        text = self.read("registry.reg").replace(self.template, self.home)
        for name, value in values.items():
            text, count = re.subn(rf'^"{name}"=.*$', f'"{name}"="{value}"', text, flags=re.MULTILINE)
            self.assertEqual(count, 1, name)
        self.write("registry.reg", text)

    def start(self):
        self.orven = self.enterContext(Orven(self.home, ["-st"]))
        self.orven.wait_for(self.line.ready)

    def caller(self):
        """Somebody with a telephone."""
        return self.enterContext(self.line.telephone(NAME, NUMBER))

    def until(self, caller, text, count=1):
        def look():
            return sum(text in line for line in self.orven.log()) >= count

        caller.wait_until(f'"{text}" in the system log', look, LIMIT)

    def assert_order(self, *steps):
        log = self.orven.log()
        rest = iter(log)
        for step in steps:
            self.assertTrue(any(step in line for line in rest), (step, log))

    def assert_same(self, reference, recording):
        """`recording` contains the sound; returns where."""
        ratio, lag = snr.snr(reference, recording)
        self.assertGreaterEqual(ratio, self.lowest_snr)
        return lag

    def end(self):
        self.orven.wait_for("Idle[", LIMIT)
        self.assertEqual(self.orven.end(), 0)
        self.assertEqual(self.line.complaints(), [])

    def recorded(self):
        """The message of the only record."""
        (record,) = self.records()
        self.assertEqual(record[:2], (NAME, NUMBER))
        self.assertNotEqual(record[5], "-1")
        self.assertEqual(record[6], "0", "it is new")
        return sound.read(self.path("Messages/" + record[4]))

    def to_the_message(self):
        """A caller who has heard the greeting and the beep."""
        self.start()
        caller = self.caller()
        caller.dial()
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        self.until(caller, "Start Record Message[")
        self.assert_order(*STEPS_TO_A_MESSAGE)
        self.assertNotIn("Ring[LineIndex:0]->3", "\n".join(self.orven.log()))
        end = self.assert_same(self.sounds["Garden"], caller.heard()) + len(self.sounds["Garden"])
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()[end:]) is not None, LIMIT)
        return caller


class Scenarios(LineCase):
    """The calls."""

    def test_a_message(self):
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + self.sounds["Old"], LIMIT)
        caller.hang_up()
        self.end()
        self.assert_order(*STEPS_TO_A_MESSAGE, "Disconnected[LineIndex:0]", "Record Message ", "Idle[LineIndex:0]")
        message = self.recorded()
        self.assert_same(self.sounds["Old"], message)

    def test_a_message_that_silence_ends(self):
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + self.sounds["New"], LIMIT)
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.end()
        self.assert_order(*STEPS_TO_A_MESSAGE, "Record Message ", "Idle[LineIndex:0]")
        self.assertNotIn("Disconnected[LineIndex:0]", self.orven.log(), "the program has hung up")
        message = self.recorded()
        self.assertGreaterEqual(len(message), SILENCE_SECONDS * sound.RATE)
        self.assert_same(self.sounds["New"], message)

    def test_a_caller_who_gives_up(self):
        self.settings(NumOfRing="4")
        self.start()
        caller = self.caller()
        caller.dial()
        self.until(caller, "CallerID[")
        caller.hang_up()
        self.end()
        self.assert_order("InCommingCall[", "Ring[LineIndex:0]->1", "Idle[LineIndex:0]")
        self.assertNotIn("LineAnswer[", "\n".join(self.orven.log()))
        self.assertEqual([(r[:2], r[5]) for r in self.records()], [((NAME, NUMBER), "-1")])
        self.assertEqual(os.listdir(self.path("Messages")), [])

    def test_messages_heard_by_telephone(self):
        for name in ("Old", "New"):
            # a message ends in silence; the last moment before the program hangs up may not get through
            sound.write(self.path(f"Messages/{name}.wav"), self.sounds[name] + sound.silence(0.4))
        with sqlite3.connect(self.path("Calls")) as calls:
            rows = [("Bob", "5551111", "10:00:00", "11/20/2025", f"{n}.wav", "2.0", "0") for n in ("Old", "New")]
            calls.executemany("insert into Calls values (?, ?, ?, ?, ?, ?, ?)", rows)
        self.start()
        caller = self.caller()
        caller.dial()
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        self.until(caller, "Connected[")
        for number, key in enumerate(PASSWORD + "*", 1):
            caller.press(key)
            self.until(caller, "MonitorDigit[", number)
        self.until(caller, "Remote Control [LineIndex:0]")
        before = len(caller.heard())
        caller.wait_until("The first message", lambda: sound.peak(caller.heard()[before:]) > 0.1, LIMIT)
        caller.press("*")  # what was keyed is the password still: from the first message again
        self.until(caller, "Remote Control [LineIndex:0]", 2)
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.end()
        self.assert_order("Connected[", "->1", "->2", "->*", "Remote Control [", "->*", "Remote Control [", "Idle[")
        self.assertNotIn("Play Beep ", "\n".join(self.orven.log()))
        heard = caller.heard()
        first, second = (self.assert_same(self.sounds[name], heard) for name in ("New", "Old"))
        self.assertGreaterEqual(second, first + len(self.sounds["New"]))
        self.assertGreater(sound.peak(heard[before:first]), 0.1, "the beginning of the first message, once more")
        self.assertLess(snr.snr(self.sounds["Garden"], heard)[0], self.lowest_snr, "the greeting was cut")
        self.assertEqual([record[0] for record in self.records()], ["Bob", "Bob"], "the call is no record")
