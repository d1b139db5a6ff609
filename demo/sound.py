# SPDX-License-Identifier: GPL-3.0-or-later
"""Audio of a telephone call: 8000 samples a second, mono, 16 bits, as arrays of short integers."""

import array
import cmath
import math
import os
import random
import subprocess
import tempfile
import wave

RATE = 8000
BLOCK = 160  # 20 ms
WAV_HEADER_BYTES = 44
FULL_SCALE = 32768.0
LOUDEST_NOISE = 8000


def _mu_law_value(code):
    """ITU-T G.711, in 16 bits."""
    code = ~code & 0xFF
    magnitude = (((code & 0x0F) << 3) + 0x84 << (code >> 4 & 7)) - 0x84
    return -magnitude if code & 0x80 else magnitude


MU_LAW = [_mu_law_value(code) for code in range(256)]  # the samples of all codes


def noise(seconds, seed):
    """Random samples that mu-law encodes without loss."""
    values = [value for value in MU_LAW if 0 < abs(value) < LOUDEST_NOISE]
    return array.array("h", random.Random(seed).choices(values, k=int(seconds * RATE)))


def read(path):
    """The samples of any sound file that sox reads."""
    command = ["sox", "-D", path, "-t", "raw", "-r", str(RATE), "-c", "1", "-b", "16", "-e", "signed-integer", "-"]
    return array.array("h", subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)


def read_growing(path):
    """The samples so far of a 16-bit mono WAV file that is still being written."""
    try:
        with open(path, "rb") as file:
            file.seek(WAV_HEADER_BYTES)
            data = file.read()
    except FileNotFoundError:
        return array.array("h")
    return array.array("h", data[: len(data) // 2 * 2])


def data(path):
    """The bytes of a WAV file's samples, as they are encoded."""
    with open(path, "rb") as file:
        content = file.read()
    return content[content.index(b"data") + 8 :]


def write(path, samples):
    with wave.open(path, "wb") as file:
        file.setparams((1, 2, RATE, len(samples), "NONE", ""))
        file.writeframes(array.array("h", samples).tobytes())


def silence(seconds):
    return array.array("h", bytes(2 * int(seconds * RATE)))


def speech(text, voice):
    """`text` spoken by espeak-ng, within the telephone's band, without silence at its ends."""
    with tempfile.TemporaryDirectory() as folder:
        spoken, telephone = os.path.join(folder, "spoken.wav"), os.path.join(folder, "telephone.wav")
        subprocess.run(["espeak-ng", "-v", voice, "-s", "160", "-w", spoken, text], check=True)
        subprocess.run(
            ["sox", "-D", spoken, "-r", str(RATE), "-c", "1", "-b", "16", telephone]
            + "gain -6 highpass 200 lowpass 3400 gain -n -4 silence 1 0.01 0.2% reverse silence 1 0.01 0.2% reverse".split(),
            check=True,
        )
        return read(telephone)


def peak(samples):
    """The highest level, 0 to 1."""
    return max(map(abs, samples), default=0) / FULL_SCALE


def end_of_beep(samples, frequency=1000, seconds=0.25):
    """The index just after the first tone of `frequency` that lasts `seconds` or longer and is over;
    None while there is none. Speech never keeps nearly all its energy on one frequency for so long."""
    needed = int(seconds * RATE / BLOCK)
    run = 0
    for start in range(0, len(samples) - BLOCK + 1, BLOCK):
        if _is_tone(samples[start : start + BLOCK], frequency):
            run += 1
        elif run >= needed:
            return start
        else:
            run = 0
    return None


def _is_tone(block, frequency):
    energy = sum(sample * sample for sample in block)
    if energy < len(block) * (0.01 * FULL_SCALE) ** 2:
        return False
    turn = cmath.exp(-2j * math.pi * frequency / RATE)
    phasor, bin_value = 1, 0
    for sample in block:
        bin_value += sample * phasor
        phasor *= turn
    # A pure tone's whole energy is in its bin: 2 |X|^2 / N.
    return 2 * abs(bin_value) ** 2 / len(block) > 0.9 * energy
