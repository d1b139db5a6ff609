// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The SIP library's headers, which need to be told what every system of today has: without these
// three they do not compile, or make a macro of `bool`.
#ifndef HAVE_INTTYPES_H
#define HAVE_INTTYPES_H 1
#endif
#ifndef HAVE_STDBOOL_H
#define HAVE_STDBOOL_H 1
#endif
#ifndef HAVE_INET6
#define HAVE_INET6 1
#endif

#include <re/re.h>

#include <memory>
#include <string>
#include <string_view>

namespace orven {

struct LibreRelease {
  void operator()(void* object) const { mem_deref(object); }
};

/// Owns one reference to an object of the library. The objects are not safe between threads: they are
/// made, used and released on the SIP thread.
template <typename T>
using LibrePtr = std::unique_ptr<T, LibreRelease>;

inline std::string_view View(const pl& text) {
  return {text.p != nullptr ? text.p : "", text.l};
}

/// The system's words for an errno value.
std::string ErrorWords(int error);

/// "192.0.2.1:5060", "[2001:db8::1]:5060".
std::string AddressText(const sa& address);

/// This machine's address from which datagrams to `peer` would leave, with port 0. Nothing is sent.
/// An unset address when there is no way to `peer`.
sa LocalAddressTowards(const sa& peer);

}  // namespace orven
