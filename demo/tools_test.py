#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tests of the demonstration's measuring functions."""

import array
import math
import os
import random
import unittest

import snr
import sound

ASSETS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "assets")


def noise(count, level, seed):
    source = random.Random(seed)
    return array.array("h", (int(source.gauss(0, level)) for _ in range(count)))


class Snr(unittest.TestCase):
    reference = noise(16000, 3000, seed=1)

    def test_measures_added_noise_whatever_the_gain_and_the_place(self):
        for before, after, gain, noise_level, expected in ((0, 0, 1, 300, 20), (9001, 5000, 0.5, 47, 30)):
            hiss = noise(len(self.reference), noise_level, seed=2)
            kept = [int(gain * a) + b for a, b in zip(self.reference, hiss)]
            recording = sound.silence(before / sound.RATE) + array.array("h", kept) + sound.silence(after / sound.RATE)
            ratio, lag = snr.snr(self.reference, recording)
            self.assertAlmostEqual(ratio, expected, delta=0.3)
            self.assertEqual(lag, before)

    def test_a_missing_beginning_counts_as_noise(self):
        ratio, lag = snr.snr(self.reference, self.reference[1600:])
        self.assertEqual(lag, -1600)
        self.assertAlmostEqual(ratio, 10 * math.log10(0.9 / 0.1), delta=0.7)

    def test_a_slip_of_one_packet_in_the_middle_is_noticed(self):
        slipped = self.reference[:8000] + self.reference[8000 + sound.BLOCK :]
        self.assertLess(snr.snr(self.reference, slipped)[0], 5)

    def test_the_same_is_identical_and_another_sound_is_not(self):
        self.assertEqual(snr.snr(self.reference, self.reference), (snr.IDENTICAL, 0))
        self.assertLess(snr.snr(self.reference, noise(20000, 3000, seed=3))[0], 0)


class Beep(unittest.TestCase):
    def test_is_found_after_the_greeting_once_it_is_over(self):
        greeting = sound.speech("Nobody can take your call right now.", "en-us")
        beep = sound.read(os.path.join(ASSETS, "beep.wav"))
        self.assertIsNone(sound.end_of_beep(greeting + sound.silence(1)))
        self.assertIsNone(sound.end_of_beep(greeting + beep[: len(beep) - 2 * sound.BLOCK]))
        end = sound.end_of_beep(greeting + beep + sound.silence(0.1))
        self.assertAlmostEqual(end, len(greeting) + len(beep), delta=3 * sound.BLOCK)


if __name__ == "__main__":
    unittest.main()
