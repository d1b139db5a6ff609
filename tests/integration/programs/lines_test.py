#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A call on the kinds of telephone line that the demonstration leaves out, in real time. It has 16-bit modems and SIP
# without SRTP, a caller who hangs up, and the owner who hears the messages by telephone.

import os

import harness
import modem_telephone
import snr
from harness import LIMIT, REACTION_SECONDS, sound

NAME, NUMBER = "Anna Garden", "5557777"
SILENCE_SECONDS = 3


class Calls:
    """A call for each kind of line, checked on both sides."""

    lowest_snr = 25.0  # dB; mu-law alone leaves about 37
    profile = None  # the emulated modem's

    def prepare(self):
        if self.profile:
            folder = os.path.join(self.folder, "modem")
            self.modem = self.enterContext(modem_telephone.Modem(harness.EMULATOR, folder, self.profile, seconds=120))

    def assert_same(self, reference, recording):
        """Checks that `recording` contains the sound and returns where."""
        ratio, lag = snr.snr(reference, recording)
        self.assertGreaterEqual(ratio, self.lowest_snr)
        return lag

    def say(self, silence_seconds):
        """Calls, waits for the greeting and the beep, and speaks. Returns the caller and what was said."""
        greeting, message = (sound.speech(text, "en") for text in ("Hello, this is the garden.", "Where are the keys?"))
        self.orven.change_settings(dict(NumOfRing=2, Greeting="Garden", SecSilence=silence_seconds))
        sound.write(self.orven.path("Greets/Garden.wav"), greeting)
        self.orven.start_and_wait()
        caller = self.enterContext(self.orven.telephone(NAME, NUMBER))
        caller.dial(self.orven.address)
        caller.wait_until("The recording", lambda: self.orven.count("Start Record Message["), LIMIT)
        end = self.assert_same(greeting, caller.heard()) + len(greeting)
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()[end:]) is not None, LIMIT)
        caller.say(sound.silence(REACTION_SECONDS) + message, LIMIT)
        return caller, message

    def end(self, message, *steps):
        """Waits for the end of the call and checks its logged steps and its message. Returns the message."""
        self.orven.wait_for("Idle[", LIMIT)
        self.orven.end()
        self.assertEqual(self.modem.complaints() if self.modem else [], [])
        self.assert_order("InCommingCall[", "CallerID[", "Ring[LineIndex:0]->2", "LineAnswer[", "Connected[",
                          "Play Beep ", "Start Record Message[", *steps, "Idle[LineIndex:0]")  # fmt: skip
        (record,) = self.orven.records()
        self.assertEqual((record["Call_Name"], record["Call_Number"]), (NAME, NUMBER))
        recorded = sound.read(self.orven.message(record))
        self.assert_same(message, recorded)
        return recorded


class Silence(Calls):
    def test_a_message_that_silence_ends(self):
        caller, message = self.say(SILENCE_SECONDS)
        caller.wait_event("CALL_CLOSED", LIMIT)
        recorded = self.end(message, "Record Message ")
        self.assertEqual(self.orven.count("Ring[LineIndex:0]->3"), 0)
        self.assertEqual(self.orven.count("Disconnected["), 0, "the program has hung up")
        self.assertGreaterEqual(len(recorded), SILENCE_SECONDS * sound.RATE)


class Modem8Bits(Silence, harness.ProgramCase):
    profile, lowest_snr = "conexant", 20.0  # 8 linear bits leave about 24


class SipEncrypted(Silence, harness.ProgramCase):
    def setUp(self):
        super().setUp()
        self.orven.encrypt()


class ModemUnplugged(Calls, harness.ProgramCase):
    profile = "silabs"

    def test_unplugged_during_a_message_and_plugged_in_again(self):
        _, message = self.say(30)  # silence must not end the call
        self.modem.do("unplug")
        self.orven.wait_for(f"The modem at {self.modem.port} was unplugged", LIMIT)
        self.modem.do("replug")
        self.orven.wait_for(f"The modem at {self.modem.port} works again", LIMIT)
        self.end(message, "Disconnected[LineIndex:0]", "Record Message ")


if __name__ == "__main__":
    harness.main(program_arguments=2, at_a_time=3)
