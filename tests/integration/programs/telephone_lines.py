# SPDX-License-Identifier: GPL-3.0-or-later
"""The kinds of telephone lines that the program can have, each with a caller at its other end.

Every line has the section of lines.ini for it, what the system log says when it is ready for calls, and
telephones. A telephone has telephone.Telephone's methods.
"""

import os

import modem_telephone
import processes
import telephone


class SipLine:
    """Over the network, from an independent telephone."""

    def __init__(self, folder):
        self._folder, self._port = folder, processes.free_port()
        self.section = f"type = sip\nlisten = 127.0.0.1:{self._port}\nring_seconds = 1\n"
        self.ready = "LineOpen["

    def __enter__(self):
        return self

    def __exit__(self, *_):
        pass

    def telephone(self, name, number):
        return _SipTelephone(f"sip:machine@127.0.0.1:{self._port}", os.path.join(self._folder, "caller"), name, number)

    def complaints(self):
        return []


class _SipTelephone(telephone.Telephone):
    def __init__(self, address, *arguments):
        super().__init__(*arguments)
        self._address = address

    def dial(self):
        super().dial(self._address)


class ModemLine(modem_telephone.Modem):
    """An emulated voice modem on a pseudo-terminal."""

    def __init__(self, emulator, folder, profile):
        super().__init__(emulator, os.path.join(folder, "modem"), profile, seconds=120)
        self.section = f"type = modem\nport = {self.port}\n"
        self.ready = f"The modem at {self.port} is: "

    def telephone(self, name, number):
        return modem_telephone.ModemTelephone(self, name, number)
