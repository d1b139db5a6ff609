// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/mail/unreachable.h"

#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string_view>

namespace orven::testing {
namespace {

std::mutex mutex;
std::condition_variable changed;
bool hanging = false;
int waiting = 0;

sockaddr_in AddressOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return address;
}

}  // namespace

DeadPort::DeadPort() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "a port") {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(listener_.Number(), reinterpret_cast<sockaddr*>(&address), sizeof address);
}

std::string DeadPort::Address() const {
  return "127.0.0.1:" + std::to_string(ntohs(AddressOf(listener_.Number()).sin_port));
}

void DeadPort::Listen() {
  ::listen(listener_.Number(), 16);
}

void DeadPort::Fill() {
  ::listen(listener_.Number(), 0);
  const sockaddr_in address = AddressOf(listener_.Number());
  for (int i = 0; i < 4; ++i) {
    const int filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    fillers_.push_back(std::make_unique<Descriptor>(filler, "a connection"));
    ::connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
}

HangingNameServer::HangingNameServer() {
  const std::lock_guard lock(mutex);
  hanging = true;
}

HangingNameServer::~HangingNameServer() {
  std::unique_lock lock(mutex);
  hanging = false;
  changed.notify_all();
  changed.wait(lock, [] { return waiting == 0; });
}

bool HangingNameServer::Asked() {
  const std::lock_guard lock(mutex);
  return waiting > 0;
}

}  // namespace orven::testing

/// Stands before the C library's function of this name in the test program.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
  using namespace orven::testing;
  const std::string_view asked = name == nullptr ? "" : name;
  if (asked == "unknown.invalid") return EAI_NONAME;
  if (asked == "hanging.invalid") {
    std::unique_lock lock(mutex);
    ++waiting;
    changed.wait(lock, [] { return !hanging; });
    --waiting;
    changed.notify_all();
    return EAI_AGAIN;
  }
  static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return real(name, service, hints, result);
}
