#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the sounds that an installation starts with, into this folder. Needs sox; run it after
# changing it, and commit what it made.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
mkdir -p Sound

# sox without dither (-D): the same input gives the same file.
line_wav=(-r 8000 -c 1 -b 16 -e signed-integer)   # what a telephone line carries
desk_wav=(-r 22050 -c 1 -b 16 -e signed-integer)  # what the sound card plays

# The beep: 0.4 s of 1 kHz, with 20 ms ramps so that it does not click, at -10 dB full scale.
sox -D -n "${line_wav[@]}" beep.wav synth 0.4 sine 1000 fade q 0.02 0.4 0.02 gain -10

# A call rings: two soft notes, twice. A message was left: three rising notes. To choose from besides:
# a doorbell's two notes, a clock's four, and one short note for those who like it quiet.
note() { # note FREQUENCY SECONDS: a plucked-bell tone as a sox pipe
  echo "|sox -D -n -r 22050 -c 1 -p synth $2 sine $1 sine $(($1 * 2)) remix - fade h 0.005 $2 $2 gain -12"
}
sox -D "$(note 880 0.35)" "$(note 698 0.45)" "$(note 880 0.35)" "$(note 698 0.6)" "${desk_wav[@]}" Sound/Ring.wav
sox -D "$(note 523 0.2)" "$(note 659 0.2)" "$(note 784 0.6)" "${desk_wav[@]}" Sound/Message.wav
sox -D "$(note 659 0.5)" "$(note 523 0.9)" "${desk_wav[@]}" Sound/Doorbell.wav
sox -D "$(note 659 0.4)" "$(note 523 0.4)" "$(note 587 0.4)" "$(note 392 0.9)" "${desk_wav[@]}" Sound/Clock.wav
sox -D "$(note 988 0.3)" "${desk_wav[@]}" Sound/Note.wav

for file in beep.wav Sound/*.wav; do
  printf '%-20s %5.2f s  %5d Hz\n' "$file" "$(soxi -D "$file")" "$(soxi -r "$file")"
done
