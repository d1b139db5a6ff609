#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares a recording with a reference: the signal-to-noise ratio in dB.

    snr.py REFERENCE.wav RECORDING.wav

The reference is located in the recording by cross-correlation, and its level is fitted. The whole reference
counts: a part that is missing, late or repeated in the recording is noise. Audio before and after it in the
recording is ignored.
"""

import cmath
import functools
import math
import sys

import sound

IDENTICAL = 99.0  # dB; the result for identical recordings
COARSE = 4  # the search runs on every fourth sample, then the best place is refined


def snr(reference, recording):
    """The ratio in dB, and where in the recording the reference begins (in samples, may be negative)."""
    lag = best_lag(reference, recording)
    found = [recording[i] if 0 <= i < len(recording) else 0 for i in range(lag, lag + len(reference))]
    signal = sum(sample * sample for sample in reference)
    if not signal:
        raise ValueError("the reference is silent")
    gain = sum(a * b for a, b in zip(reference, found)) / signal
    noise = sum((b - gain * a) ** 2 for a, b in zip(reference, found))
    if gain <= 0:
        return -IDENTICAL, lag
    if not noise:
        return IDENTICAL, lag
    return min(IDENTICAL, 10 * math.log10(gain * gain * signal / noise)), lag


def best_lag(reference, recording):
    """The place in the recording at which the reference correlates most with it."""
    coarse = COARSE * _coarse_lag(_thinned(reference), _thinned(recording))
    return max(range(coarse - 2 * COARSE, coarse + 2 * COARSE + 1), key=lambda lag: _dot(reference, recording, lag))


def _dot(reference, recording, lag):
    if lag >= 0:
        return sum(a * b for a, b in zip(reference, recording[lag:]))
    return sum(a * b for a, b in zip(reference[-lag:], recording))


def _thinned(samples):
    return [sum(samples[i : i + COARSE]) for i in range(0, len(samples), COARSE)]


def _coarse_lag(reference, recording):
    size = 1 << (len(reference) + len(recording)).bit_length()
    a = _fft([complex(x) for x in reference] + [0j] * (size - len(reference)))
    b = _fft([complex(x) for x in recording] + [0j] * (size - len(recording)))
    # A forward transform replaces the inverse one. It only conjugates and scales the result, so the maximum
    # of the real part stays in its place.
    correlation = _fft([x * y.conjugate() for x, y in zip(a, b)])
    best = max(range(size), key=lambda i: correlation[i].real)
    return best if best < len(recording) else best - size


@functools.lru_cache(maxsize=None)
def _twiddles(size):
    return [cmath.exp(-2j * math.pi * k / size) for k in range(size // 2)]


def _fft(values):
    """Radix-2 transform; the length is a power of two."""
    size = len(values)
    if size == 1:
        return values
    even, odd = _fft(values[::2]), _fft(values[1::2])
    turned = [w * x for w, x in zip(_twiddles(size), odd)]
    return [x + y for x, y in zip(even, turned)] + [x - y for x, y in zip(even, turned)]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    ratio, lag = snr(sound.read(sys.argv[1]), sound.read(sys.argv[2]))
    print(f"{ratio:.1f} dB, found at {lag / sound.RATE:.3f} s")


if __name__ == "__main__":
    main()
