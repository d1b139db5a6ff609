#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Demonstrates the answering machine; exits with 0 only when every step worked.

    demo.py PROGRAM [EMULATOR]

A greeting is typed. An independent telephone calls ORVEN, hears it, waits for the beep, speaks and
hangs up; the message arrives by mail, and a program is started with the call's details. Then the owner calls,
keys the password and "*" and hears that message. Everything runs on 127.0.0.1 in a temporary folder, which is
kept when a step fails. The program's window is on a virtual display; its picture is saved at the end. With
EMULATOR, orven-modem-emulator, the telephone line is that of a voice modem.
"""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import creator
import display
import machine
import mailbox
import modem_telephone
import snr
import sound
from processes import Failed, wait_for

CALLER_NAME, CALLER_NUMBER = "Anna Garden", "5557777"
GREETING_NAME = "Garden"
GREETING = "Hello. You have reached the garden family. Please speak after the tone."
MESSAGE = "Hello, this is Anna. The garden gate is open again. Please call me back when you are home."
REACTION_SECONDS = 0.6  # from the end of the beep until a person speaks
LOWEST_SNR = 25.0  # dB; mu-law alone leaves about 37
MAIL_TO = "owner@example.org"
ANSWER_LIMIT = 30.0  # seconds: four rings, three seconds apart at a modem, and a slow machine
MODEM_FAMILY = "lucent"  # 16 bits a sample
SCREENSHOT = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "build", "demo", "main_window.png")
FEWEST_COLOURS = 32  # in a picture that shows a window; an unpainted one has one or two
STEPS_OF_A_CALL = (
    ["InCommingCall[LineIndex:0]"]
    + [f"Ring[LineIndex:0]->{count}" for count in (1, 2, 3, 4)]
    + ["LineAnswer[LineIndex:0]->Proc Num: ", "Connected[LineIndex:0]", "Play Beep ", "Start Record Message["]
    + ["Disconnected[LineIndex:0]", "Record Message ", "Idle[LineIndex:0]"]
)

_began = time.monotonic()


def step(text):
    print(f"[{time.monotonic() - _began:5.1f} s] {text}", flush=True)


def show_log_line(log, line):
    print(f"            {log:>5} | {line}", flush=True)


def check(holds, text):
    if not holds:
        raise Failed(text)


def check_order(lines, steps):
    """All steps are in the log, in this order."""
    remaining = iter(lines)
    for text in steps:
        check(any(text in line for line in remaining), f'The system log lacks "{text}" at its place in the call')


def call(phone, answering_machine):
    phone.dial(answering_machine.address)
    phone.wait_event("CALL_ESTABLISHED", ANSWER_LIMIT)


def make_greeting(answering_machine, screen):
    """Returns the path of the greeting that callers hear."""
    if screen is None:
        step("No greeting is typed: that takes xdotool, xprop, ImageMagick, and Xvfb with openbox or a display")
        return answering_machine.path("Greets/Default.wav")
    window = creator.Creator(screen, answering_machine.process, answering_machine.look)
    window.open()
    window.create(GREETING)
    path = window.save(answering_machine.home, GREETING_NAME)
    step(f'A greeting was typed in the greeting creator: "{GREETING}"')
    return path


def leave_message(answering_machine, greeting, spoken):
    """The first call. Returns the lines that it has added to the system log."""
    first_line, calls = len(answering_machine.log()), answering_machine.count("Idle[")
    with answering_machine.telephone(CALLER_NAME, CALLER_NUMBER) as caller:
        step(f"{CALLER_NAME} calls {answering_machine.address}")
        call(caller, answering_machine)
        step("The machine has answered; she hears the greeting and waits for the beep")
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()) is not None, 30)
        check_quality("the greeting's file, heard by the caller", sound.read(greeting), caller.heard())
        step(f'She heard the beep and says: "{MESSAGE}"')
        caller.say(sound.silence(REACTION_SECONDS) + spoken, 60)
        caller.hang_up()
        step("She has hung up")
        answering_machine.wait_for("Idle[LineIndex:0]", 10, calls + 1)
    return answering_machine.log()[first_line:]


def check_record(answering_machine):
    """The filed call. Returns the path of its message."""
    records = wait_for("The call record", answering_machine.records, 10, answering_machine.look)
    step("The call record, as SQLite reads it:")
    for field, value in records[-1].items():
        print(f"            {field:>17} = {value}", flush=True)
    check(len(records) == 1, f"There are {len(records)} call records after one call")
    record = records[0]
    caller = (record["Call_Name"], record["Call_Number"])
    check(caller == (CALLER_NAME, CALLER_NUMBER), f"The record names another caller: {caller}")
    check(record["Type"] != "-1", "The record says that no message was recorded")
    check(record["Read"] == "0", f'The new record\'s "Read" is {record["Read"]!r}')
    path = answering_machine.message(record)
    check(os.path.isfile(path), f"The message file is not there: {path}")
    return path


def check_message(path, spoken):
    length = float(subprocess.run(["soxi", "-D", path], check=True, stdout=subprocess.PIPE, text=True).stdout)
    step(f"The message file Messages/{os.path.basename(path)} holds {length:.2f} s")
    check(length >= len(spoken) / sound.RATE, f"The message is shorter than the {len(spoken) / sound.RATE:.2f} s spoken")
    recorded = sound.read(path)
    check_quality("spoken, recorded", spoken, recorded)
    return recorded


def check_quality(what, reference, recording):
    ratio, _ = snr.snr(reference, recording)
    text = "identical" if ratio == snr.IDENTICAL else f"{ratio:.1f} dB"
    step(f"Signal to noise between {what}: {text}")
    check(ratio >= LOWEST_SNR, f"The ratio between {what} is {ratio:.1f} dB; at least {LOWEST_SNR:g} dB is due")


def check_mail(answering_machine, inbox, message):
    wait_for("The mail", lambda: inbox.mails, 20, answering_machine.look)
    answering_machine.wait_for("Mail was sent to " + MAIL_TO, 10)
    (recipients, mail), = inbox.mails
    step(f'The mail server took a mail to {recipients[0]}: "{mail["Subject"]}"')
    check(recipients == [MAIL_TO], f"The mail went to {recipients}")
    check(mail["Subject"] == f"New Call From {CALLER_NAME} - {CALLER_NUMBER}", f"Its subject is {mail['Subject']!r}")
    attachments = list(mail.iter_attachments())
    check(len(attachments) == 1, f"It carries {len(attachments)} files")
    check(attachments[0].get_content_type() == "audio/x-wav", f"Its file is {attachments[0].get_content_type()}")
    with open(message, "rb") as file:
        check(attachments[0].get_payload(decode=True) == file.read(), "Its file is not the message")
    step(f"It carries {attachments[0].get_filename()}, identical to the message")


def check_program(answering_machine, notebook, record):
    lines = wait_for("The program's file", notebook.lines, 10, answering_machine.look)
    step(f"The program was started with {lines}")
    check(lines == [CALLER_NAME, CALLER_NUMBER, record["Call_Massage_Name"]], "These are not the call's details")


def listen_remotely(answering_machine, password, message_seconds):
    """The owner's call. Returns what he heard."""
    calls = answering_machine.count("Idle[")
    with answering_machine.telephone("Owner", "5551111") as owner:
        step("The owner calls his machine")
        call(owner, answering_machine)
        owner.wait_until("The greeting", lambda: sound.peak(owner.heard()) > 0.05, 10)
        step(f"He hears the greeting and keys {password} and *")
        for number, digit in enumerate(password + "*", 1):
            owner.press(digit)
            answering_machine.wait_for("MonitorDigit[LineIndex:0]->", 5, number)
        keyed = "".join(line[-1] for line in answering_machine.log_since_start() if "MonitorDigit[" in line)
        check(keyed == password + "*", f"The machine noticed the keys {keyed}")
        answering_machine.wait_for("Remote Control [LineIndex:0]", 5)
        step("The machine plays the message to him and hangs up after it")
        owner.wait_event("CALL_CLOSED", message_seconds + 20)
        answering_machine.wait_for("Idle[LineIndex:0]", 10, calls + 1)
        return owner.heard()


def save_screenshot(answering_machine, screen):
    """A picture of the main window with the calls in it."""
    if screen is None:
        step("No screenshot: that takes xdotool, xprop, ImageMagick, and Xvfb with openbox or a display")
        return
    window = wait_for(
        "The main window", lambda: screen.main_window(answering_machine.process), 10, answering_machine.look
    )
    os.makedirs(os.path.dirname(SCREENSHOT), exist_ok=True)
    wait_for(
        "A picture of the main window",
        lambda: window.picture(SCREENSHOT) and screen.colours(SCREENSHOT) >= FEWEST_COLOURS,
        10,
        answering_machine.look,
    )
    step(f"Screenshot: {SCREENSHOT}")


def demonstrate(answering_machine, folder, screen, inbox):
    step(f"ORVEN starts in the empty folder {answering_machine.home}")
    answering_machine.start()
    password = answering_machine.password()
    step(f"Its first start has made the password {password}")
    answering_machine.wait_for("LineOpen[", 20)
    notebook = mailbox.Notebook(folder)
    command = f'"{notebook.program}" "<NAME>" <NUMBER> "<MESSAGE_PATH>"'
    step(f"It is told to mail each message to {MAIL_TO}, and to start {command}")
    answering_machine.restart_with({
        "pMailTo": "1", "MailTo": MAIL_TO, "SMTPServer": f"127.0.0.1:{inbox.port}", "MailFrom": "orven@example.org",
        "pAppTo": "1", "AppTo": command,
    })
    check(f"[LineIndex:0 Device Name:{machine.LINE}]->" in "".join(answering_machine.log()), "Another line is open")

    spoken = sound.speech(MESSAGE, "en-gb+f2")
    greeting = make_greeting(answering_machine, screen)
    check_order(leave_message(answering_machine, greeting, spoken), STEPS_OF_A_CALL)
    message = check_record(answering_machine)
    recorded = check_message(message, spoken)
    check_mail(answering_machine, inbox, message)
    check_program(answering_machine, notebook, answering_machine.records()[0])

    heard = listen_remotely(answering_machine, password, len(recorded) / sound.RATE)
    check_quality("recorded, heard by the owner", recorded, heard)
    check_quality("spoken, heard by the owner", spoken, heard)
    check(len(answering_machine.records()) == 1, "The owner's own call was filed as a call")

    save_screenshot(answering_machine, screen)
    step("The program is asked to end (SIGTERM)")
    answering_machine.end()
    for name, kind in (("system", "Sys"), ("calls", "Calls")):
        check("Unload ORVEN" in answering_machine.log(kind)[-1], f'The {name} log does not end in "Unload ORVEN"')
    expected = f"Ring:4 [{CALLER_NAME}:{CALLER_NUMBER}]"
    check(any(expected in line for line in answering_machine.log("Calls")), f'The calls log lacks "{expected}"')
    step("Every step worked")


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    # An ordinary exit, so that everything started here is stopped.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    folder = tempfile.mkdtemp(prefix="orven-demo-")
    log = []
    try:
        with contextlib.ExitStack() as things:
            screen = things.enter_context(display.find_display(folder))
            inbox = things.enter_context(mailbox.Mailbox())
            modem = None
            if len(sys.argv) == 3:
                modem = modem_telephone.Modem(sys.argv[2], os.path.join(folder, "modem"), MODEM_FAMILY)
                things.enter_context(modem)
            answering_machine = machine.Machine(sys.argv[1], folder, show_log_line, screen, modem)
            things.enter_context(answering_machine)
            log = answering_machine.log()
            demonstrate(answering_machine, folder, screen, inbox)
    except (Failed, OSError, subprocess.CalledProcessError) as failure:
        print(f"\nFAILED: {failure}.", file=sys.stderr)
        if log:
            print("The last lines of the system log:", *log[-15:], sep="\n    ", file=sys.stderr)
        print(f"Everything is kept in {folder}", file=sys.stderr)
        return 1
    except BaseException:
        print(f"Everything is kept in {folder}", file=sys.stderr)
        raise
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
