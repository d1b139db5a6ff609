#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A network that comes late, fails and changes: the line registers by itself, and calls come through.
#
# The program has its own network namespace. At the other end of the link are a name server (dnsmasq), the account's
# server (kamailio) and callers (sipp). The test is skipped (77) if namespaces cannot be created.

import os
import subprocess
import tempfile

import harness
from harness import processes

LIMIT = 10  # seconds from the return of the network to a call, as promised
HOST, SERVER, FIRST, SECOND = "registrar.test", "10.77.0.1", "10.77.0.2", "10.77.0.3"
SERVER6, FIRST6 = "fd77::1", "fd77::2"
FAILED = "Error LineOpen[LineIndex:0 "
MODULES = "".join(f'loadmodule "{name}.so"\n' for name in "sl tm pv xlog usrloc registrar".split())
ROUTES = r"""
request_route {
  if ($rm == "REGISTER") { save("location"); xlog("L_ERR", "Registered: $ct\n"); exit; }
  if (!lookup("location")) { sl_send_reply("404", "Not Found"); exit; }
  t_relay();
}
"""
SETTINGS = """
log_stderror=yes
children=1
tcp_children=1
auto_aliases=no
mpath="/usr/lib/x86_64-linux-gnu/kamailio/modules:/usr/lib/aarch64-linux-gnu/kamailio/modules"
"""


def run(command):
    subprocess.run(command.split(), check=True, stdout=subprocess.DEVNULL)


def desk(command):
    """Runs a command in the program's namespace."""
    inside("desk", command)


def inside(namespace, *commands):
    for command in commands:
        run(f"ip netns exec {namespace} {command}")


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


class NetworkTest(harness.ProgramCase):
    def serve(self, command):
        process = processes.start(command.split(), self.servers, start_new_session=True)
        self.addCleanup(processes.stop, process, 5)
        return process

    def said(self):
        """Returns what the servers have logged."""
        with open(self.servers, encoding="utf-8") as log:
            return log.read()

    def setUp(self):
        super().setUp()
        self.servers = os.path.join(self.folder, "servers")
        write("/etc/resolv.conf", f"nameserver {SERVER}\n")
        run("ip netns add desk")
        self.addCleanup(run, "ip netns delete desk")
        desk("ip link set lo up")
        self.serve(f"dnsmasq --keep-in-foreground --conf-file=/dev/null --no-hosts --no-resolv --user=root --pid-file= "
                   f"--bind-interfaces --listen-address={SERVER} --address=/{HOST}/{SERVER} "
                   f"--srv-host=_sip._tcp.{HOST},{HOST},5070,1 --srv-host=_sip._tcp.{HOST},{HOST},5071,2")
        write(self.folder + "/routes", SETTINGS + MODULES + ROUTES)
        self.registrar = self.serve_calls(5060, 5070)

    def serve_calls(self, udp, tcp):
        home = os.path.join(self.folder, str(tcp))
        os.mkdir(home)
        return self.serve(f"kamailio -f {self.folder}/routes -DD -E -m 64 -M 8 -w {home} -Y {home} -P {home}/pid "
                          f"-l udp:{SERVER}:{udp} -l tcp:{SERVER}:{tcp}")

    def plug_in(self, where="desk"):
        run(f"ip link add outside type veth peer name inside netns {where}")
        self.addCleanup(run, "ip link delete outside")
        run("ip addr add 10.77.0.254/24 dev outside")
        run("ip link set outside up")
        run(f"ip addr add {SERVER6}/64 dev outside nodad")
        inside(where, f"ip addr add {FIRST}/24 dev inside", f"ip addr add {FIRST6}/64 dev inside nodad",
               "ip link set inside up")
        show = f"ip netns exec {where} cat /sys/class/net/inside/operstate".split()
        processes.wait_for("The link", lambda: subprocess.check_output(show) == b"up\n", LIMIT)

    def plug_in_behind_a_router(self):
        """The router has the address FIRST, and another port for each flow."""
        run("ip netns add router")
        self.addCleanup(run, "ip netns delete router")
        self.plug_in("router")
        inside("router", "ip link add lan type veth peer name inside netns desk", "ip addr add 10.78.0.1/24 dev lan",
               "ip link set lan up", "ip route add default via 10.77.0.254", "sysctl -q net.ipv4.ip_forward=1",
               "nft add table nat", "nft add chain nat out { type nat hook postrouting priority 100 ; }",
               "nft add rule nat out oifname inside masquerade random")
        inside("desk", "ip addr add 10.78.0.2/24 dev inside", "ip link set inside up",
               "ip route add default via 10.78.0.1")

    def start(self, ready="LineOpen[", transport="udp", host=HOST, keys=""):
        """Starts the program and waits until its log contains `ready`."""
        self.orven.write_line(f"type = sip\nlisten = *:5060\naccount = sip:100@{host}\n"
                              f"transport = {transport}\nring_seconds = 1\n{keys}")
        self.orven.ready, self.calls = ready, 0
        self.orven.start_and_wait()

    def assert_calls_come_through(self, address=FIRST, count=1, port=5060):
        """Waits for registration number `count` of `address` and checks that a call by the server comes through."""
        contact = f"Registered: <sip:100@{address}:"
        processes.wait_for("A registration", lambda: self.said().count(contact) >= count, LIMIT)
        self.assert_line_answers(f"{SERVER}:{port}", SERVER)

    def assert_line_answers(self, target, caller):
        self.calls += 1
        command = f"sipp -sn uac -s 100 {target} -i {caller} -p 5099 -m 1 -nostdin -timeout {LIMIT}"
        subprocess.run(command.split(), check=True, capture_output=True)
        self.orven.wait_for("Idle[", LIMIT, self.calls)

    def test_the_network_comes_after_the_start(self):
        self.start("there is no server named", "tcp")
        self.plug_in()
        self.assert_calls_come_through()
        self.assert_line_answers(f"[{FIRST6}]:5060", SERVER6)

    def test_a_router_hides_the_line(self):
        self.plug_in_behind_a_router()
        self.start()
        self.assert_calls_come_through()

    def test_the_first_server_dies(self):
        self.serve_calls(5061, 5071)
        self.plug_in()
        self.start(transport="tcp")
        self.assert_calls_come_through()
        processes.stop(self.registrar, 5)
        self.assert_calls_come_through(count=2, port=5061)

    def test_the_address_changes(self):
        self.plug_in()
        self.start(transport="tcp")
        self.assert_calls_come_through()
        desk(f"ip addr delete {FIRST}/24 dev inside")
        desk(f"ip addr add {SECOND}/24 dev inside")
        self.assert_calls_come_through(SECOND)

    def test_the_cable_is_unplugged_and_plugged_in_again(self):
        self.plug_in()
        self.start(transport="tcp")
        self.assert_calls_come_through()
        desk("ip link set inside down")
        self.orven.wait_for("no calls can come in through it")
        desk("ip link set inside up")
        self.assert_calls_come_through(count=2)

    def test_the_name_server_changes(self):
        write("/etc/resolv.conf", "nameserver 10.77.0.99\n")
        self.plug_in()
        self.start("there is no server named")
        write("/etc/resolv.conf", f"nameserver {SERVER}\n")
        self.assert_calls_come_through()

    def test_the_port_becomes_free_later(self):
        self.plug_in()
        holder = self.serve("ip netns exec desk python3 -um http.server 5060")
        processes.wait_for("A server at the port", lambda: "Serving" in self.said(), LIMIT)
        self.start(FAILED, host="nowhere.test", keys=f"proxy = {SERVER}:5060")
        processes.stop(holder, 5)
        self.assert_calls_come_through()
        self.assertEqual(self.orven.count(FAILED), 1)


def prepare():
    """Sets up the server's side of the network, a resolv.conf to be changed, and the program in its own namespace."""
    own = tempfile.mkdtemp(prefix="orven-network-")
    run(f"mount -t tmpfs orven-test {own}")
    write(f"{own}/resolv.conf", "")
    run(f"mount --bind {own}/resolv.conf /etc/resolv.conf")
    run("mount -t tmpfs orven-test /run")
    os.mkdir("/run/netns")
    run("ip link set lo up")
    run(f"ip addr add {SERVER}/32 dev lo")
    inside = os.path.join(own, "orven")
    write(inside, f'#!/bin/sh\nexec ip netns exec desk {harness.PROGRAM} "$@"\n')
    os.chmod(inside, 0o755)
    harness.PROGRAM = inside


if __name__ == "__main__":
    trial = "mount -t tmpfs orven-test /run && mkdir /run/netns && ip netns add trial"
    harness.main(at_a_time=6, namespaces=("nm", trial), prepare=prepare)
