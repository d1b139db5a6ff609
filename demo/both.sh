#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# both.sh PROGRAM EMULATOR: runs the two demonstrations in parallel; fails when either does.
demo=$(dirname "$0")/demo.py
output=$(mktemp)
/usr/bin/python3 -B "$demo" "$1" "$2" >"$output" 2>&1 &
/usr/bin/python3 -B "$demo" "$1"
network=$?
wait $!
modem=$?
cat "$output"
rm -f "$output"
exit $((network + modem))
