# SPDX-License-Identifier: GPL-3.0-or-later
"""A mail server on 127.0.0.1 that keeps the received mails, and a program that keeps its arguments."""

import email
import email.policy
import os
import stat

from aiosmtpd.controller import Controller

import processes


class Mailbox:
    """Use it in a with statement. `mails` has the received mails, parsed by Python's email package."""

    def __init__(self):
        self.mails = []
        self.port = processes.free_port()
        self._server = Controller(self, hostname="127.0.0.1", port=self.port)

    def __enter__(self):
        self._server.start()
        return self

    def __exit__(self, *_):
        self._server.stop()

    async def handle_DATA(self, _server, _session, envelope):  # noqa: N802 (aiosmtpd's name)
        mail = email.message_from_bytes(envelope.content, policy=email.policy.default)
        self.mails.append((envelope.rcpt_tos, mail))
        return "250 Taken"


class Notebook:
    """A program that writes each of its arguments as one line into a file."""

    def __init__(self, folder):
        self.program = os.path.join(folder, "notebook")
        self._pages = self.program + ".out"
        with open(self.program, "w", encoding="utf-8") as file:
            file.write(f"""#!/bin/sh
for argument; do printf '%s\\n' "$argument"; done > "{self._pages}.new"
mv "{self._pages}.new" "{self._pages}"
""")
        os.chmod(self.program, stat.S_IRWXU)

    def lines(self):
        """Its arguments; empty if it was not started."""
        if not os.path.exists(self._pages):
            return []
        with open(self._pages, encoding="utf-8") as file:
            return file.read().splitlines()
