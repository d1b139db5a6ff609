// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/line/setup/registrar.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <string>

#include "integration/line/sip/network.h"

namespace orven::test {
namespace {

const std::string kRoutes = R"(
debug=-1
log_stderror=yes
children=1
tcp_children=1
auto_aliases=no
mpath="/usr/lib/x86_64-linux-gnu/kamailio/modules:/usr/lib/aarch64-linux-gnu/kamailio/modules"
loadmodule "sl.so"
loadmodule "pv.so"
loadmodule "usrloc.so"
loadmodule "registrar.so"
loadmodule "auth.so"
request_route {
  if ($rm != "REGISTER") { sl_send_reply("405", "Method Not Allowed"); exit; }
  if ($au != "100" || !pv_www_authenticate("home", "secret", "0")) { www_challenge("home", "1"); exit; }
  save("location");
  exit;
}
)";

}  // namespace

Registrar::Registrar() : port_(FreePort()) {
  const auto address = "127.0.0.1:" + std::to_string(port_);
  PutFile(folder_ / "registrar.cfg", "listen=udp:" + address + "\nlisten=tcp:" + address + "\n" + kRoutes);
  const std::string home = folder_ / ".";
  const std::string command = "exec timeout 55 kamailio -f " + (folder_ / "registrar.cfg") +
                              " -DD -E -m 16 -M 4 -w " + home + " -Y " + home + " -P " + (folder_ / "pid");
  const std::array arguments{"sh", "-c", command.c_str(), static_cast<const char*>(nullptr)};
  if (::posix_spawnp(&process_, arguments[0], nullptr, nullptr, const_cast<char* const*>(arguments.data()),
                     environ) != 0) {
    throw std::runtime_error("the registrar does not start");
  }
  constexpr int kTries = 500;
  for (int i = 0; i < kTries && !Answers(); ++i) (void)::poll(nullptr, 0, 20);
  if (!Answers()) throw std::runtime_error("the registrar does not answer");
}

Registrar::~Registrar() {
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
}

bool Registrar::Answers() const {
  try {
    Socket::TcpTo(port_);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace orven::test
