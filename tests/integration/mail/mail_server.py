#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Mail servers for the tests, on loopback, until standard input ends.

mail_server.py FOLDER real [starttls|smtps]     aiosmtpd; encrypted ones want user "desk", password "s3cret+ü"
mail_server.py FOLDER fault STEP ACTION [once]  a server that fails at CONNECT, EHLO, MAIL, RCPT, DATA, BODY or QUIT:
                                                ACTION is a reply, "stall", "close", "garbage" or "pause"

The port appears in FOLDER/port, the certificate in FOLDER/cert.pem; the n-th mail received, read by Python's
own email package, in FOLDER/n.fields and its attached file in FOLDER/n.wav.
"""
import asyncio
import email
import email.policy
import email.utils
import logging
import os
import ssl
import subprocess
import sys
import warnings

from aiosmtpd.smtp import SMTP, AuthResult

FOLDER = sys.argv[1]
logging.disable()  # what clients do wrong here is the tests' doing
warnings.simplefilter("ignore")
received = 0


def put(name, content):
    with open(os.path.join(FOLDER, name + ".part"), "wb") as file:
        file.write(content)
    os.rename(file.name, os.path.join(FOLDER, name))


def keep(raw):
    global received
    received += 1
    message = email.message_from_bytes(raw, policy=email.policy.default)
    parts = list(message.iter_parts())
    files = list(message.iter_attachments())
    fields = {name: message[name] for name in ("From", "To", "Subject", "Message-ID", "MIME-Version", "Bcc")}
    fields["Seconds"] = int(email.utils.parsedate_to_datetime(message["Date"]).timestamp())
    fields["Parts"] = " ".join(part.get_content_type() for part in parts)
    fields["Charset"] = parts[0].get_content_charset()
    fields["Body"] = parts[0].get_content().strip("\r\n")
    fields["File"] = files[0].get_filename() if files else ""
    fields["Longest"] = max(len(line) for line in raw.split(b"\r\n"))
    fields["Defects"] = sum(len(part.defects) for part in message.walk())
    put(f"{received}.wav", files[0].get_content() if files else b"")
    put(f"{received}.fields", "".join(f"{key}={value}\n" for key, value in fields.items()).encode())


class Handler:
    async def handle_DATA(self, server, session, envelope):
        keep(envelope.content)
        return "250 OK"


def login(server, session, envelope, mechanism, auth_data):
    return AuthResult(success=(auth_data.login, auth_data.password) == (b"desk", "s3cret+ü".encode()), handled=False)


def certificate():
    key, cert = (os.path.join(FOLDER, name) for name in ("key.pem", "cert.pem"))
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-keyout", key,
                    "-out", cert, "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1"],
                   check=True, stderr=subprocess.DEVNULL)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert, key)
    return context


def real(kind):
    context = certificate() if kind else None
    options = dict(hostname="mail.test", enable_SMTPUTF8=True)
    if kind:
        options.update(authenticator=login, auth_required=True, auth_require_tls=kind == "starttls")
    if kind == "starttls":
        options.update(tls_context=context, require_starttls=True)
    return (lambda: SMTP(Handler(), **options)), context if kind == "smtps" else None


class Fault:
    def __init__(self, step, action, once=""):
        self.step, self.action, self.once, self.broken = step, action, once, 0

    async def step_reply(self, step, usual, reader, writer):
        """False when the conversation is over."""
        self.broken += step == self.step
        if step != self.step or (self.once and self.broken > 1):
            writer.write(usual)
            return True
        put("stalled", b"")
        if self.action == "pause":
            await asyncio.sleep(1.5)
            writer.write(usual)
        elif self.action == "close":
            return False
        elif self.action == "stall":
            while await reader.read(4096):
                pass
            return False
        elif self.action == "garbage":
            while not writer.is_closing():
                writer.write(b"\x00\xff garbage \r\n" * 100)
                await writer.drain()
            return False
        else:
            writer.write(self.action.encode().decode("unicode_escape").encode("latin-1") + b"\r\n")
        return True

    async def talk(self, reader, writer):
        try:
            alive = await self.step_reply("CONNECT", b"220 fault.test\r\n", reader, writer)
            while alive and (line := await reader.readline()):
                verb = line[:4].decode("latin-1").strip().upper()
                usual = {"DATA": b"354 go on\r\n", "QUIT": b"221 bye\r\n"}.get(verb, b"250 fine\r\n")
                alive = await self.step_reply(verb, usual, reader, writer)
                if verb == "DATA" and alive and (self.step != "DATA" or self.broken > 1):
                    raw = await reader.readuntil(b"\r\n.\r\n")
                    keep(raw[:-3].replace(b"\r\n..", b"\r\n."))
                    alive = await self.step_reply("BODY", b"250 taken\r\n", reader, writer)
                if verb == "QUIT":
                    break
        except (ConnectionError, asyncio.IncompleteReadError):
            pass
        writer.close()


async def main():
    loop = asyncio.get_running_loop()
    if sys.argv[2] == "real":
        make, context = real(sys.argv[3] if len(sys.argv) > 3 else "")
        server = await loop.create_server(make, "127.0.0.1", 0, ssl=context)
    else:
        server = await asyncio.start_server(Fault(*sys.argv[3:]).talk, "127.0.0.1", 0, limit=1 << 24)
    put("port", str(server.sockets[0].getsockname()[1]).encode())
    await loop.run_in_executor(None, sys.stdin.read)
    os._exit(0)


asyncio.run(main())
