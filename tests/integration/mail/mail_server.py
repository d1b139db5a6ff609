#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A mail server (aiosmtpd) for the tests, on the loopback interface. Runs until its standard input ends.

mail_server.py FOLDER starttls|smtps       encrypted; requires the user "desk" and the password "s3cret+ü"
mail_server.py FOLDER [STEP ACTION]        fails once, at CONNECT, EHLO, MAIL, RCPT, DATA, BODY or QUIT: ACTION is
                                           a reply, "stall", "close", "garbage" or "pause"; or "away", which
                                           closes each connection while there is a file FOLDER/away

Writes its port to FOLDER/port and its certificate to FOLDER/cert.pem, and creates FOLDER/stalled when it fails. The
n-th mail, parsed by Python's email package, is written to FOLDER/n.fields and its attached file to FOLDER/n.wav.
"""
import asyncio
import email.policy
import email.utils
import functools
import logging
import os
import ssl
import subprocess
import sys

from aiosmtpd.smtp import SMTP, AuthResult

FOLDER, KIND, ACTION = (sys.argv[1:] + ["", ""])[:3]
logging.disable()  # the tests cause client errors on purpose
count = {"received": 0, "failed": 0}


def put(name, content):
    with open(os.path.join(FOLDER, name + ".part"), "wb") as file:
        file.write(content)
    os.rename(file.name, os.path.join(FOLDER, name))


class Handler:
    async def handle_DATA(self, server, session, envelope):
        count["received"] += 1
        message = email.message_from_bytes(envelope.content, policy=email.policy.default)
        parts, files = list(message.iter_parts()), list(message.iter_attachments())
        fields = {name: message[name] for name in ("From", "To", "Subject", "Message-ID", "MIME-Version", "Bcc")}
        fields["Seconds"] = int(email.utils.parsedate_to_datetime(message["Date"]).timestamp())
        fields["Parts"] = " ".join(part.get_content_type() for part in parts)
        fields["Body"] = parts[0].get_content_charset() + " " + "|".join(parts[0].get_content().splitlines())
        fields["File"] = files[0].get_filename() if files else ""
        fields["Longest"] = max(len(line) for line in envelope.content.split(b"\r\n"))
        fields["Defects"] = sum(len(part.defects) for part in message.walk())
        put(f"{count['received']}.wav", files[0].get_content() if files else b"")
        put(f"{count['received']}.fields", "".join(f"{key}={value}\n" for key, value in fields.items()).encode())
        return "250 OK"


class Faulty(SMTP):
    """Fails once, at the step KIND."""

    step, silent = "CONNECT", False

    def __init__(self, *arguments, **options):
        super().__init__(*arguments, **options)
        self._smtp_methods = {name: functools.partial(self.enter, name) for name in self._smtp_methods}

    async def enter(self, name, argument):
        self.step, self.silent = name, False
        await getattr(self, "smtp_" + name)(argument)

    async def push(self, status):
        if self.step == KIND and (os.path.exists(FOLDER + "/away") if ACTION == "away" else not count["failed"]):
            count["failed"] = 1
            await self.fail()
        if not self.silent:
            await super().push(status)
        self.step = "BODY" if status[:3] == "354" else self.step

    async def fail(self):
        put("stalled", b"")
        if ACTION == "pause":
            await asyncio.sleep(1.5)
        elif ACTION == "stall":
            await asyncio.Event().wait()
        elif ACTION in ("close", "away"):
            self.transport.abort()
        elif ACTION == "garbage":
            self._writer.write(b"\x00\xff garbage \r\n" * 1000)
        else:
            await super().push(ACTION.encode().decode("unicode_escape").encode("latin-1"))
            self.silent = True
            if self.step != "CONNECT":
                raise RuntimeError("the rest of this step is left out")


def login(server, session, envelope, mechanism, auth_data):
    return AuthResult(success=(auth_data.login, auth_data.password) == (b"desk", "s3cret+ü".encode()), handled=False)


def certificate():
    key, cert = (os.path.join(FOLDER, name) for name in ("key.pem", "cert.pem"))
    command = ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out", cert]
    subprocess.run(command + ["-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1"], check=True, stderr=-3)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert, key)
    return context


async def main():
    loop = asyncio.get_running_loop()
    options, context = {"enable_SMTPUTF8": True}, None
    if KIND in ("starttls", "smtps"):
        context, starts = certificate(), KIND == "starttls"
        options.update(authenticator=login, auth_required=True, auth_require_tls=starts, require_starttls=starts)
    if KIND == "starttls":
        options["tls_context"], context = context, None
    server = await loop.create_server(lambda: Faulty(Handler(), **options), "127.0.0.1", 0, ssl=context)
    put("port", str(server.sockets[0].getsockname()[1]).encode())
    await loop.run_in_executor(None, sys.stdin.read)
    os._exit(0)


asyncio.run(main())
