// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The rules of a line's TLS connections: which certificate we show to those who call, or which we
/// accept of the server that we call. All functions throw std::runtime_error with a sentence for the
/// log. SIP thread.
class TlsContext {
 public:
  /// For connections that others open: shows the certificate of the PEM file at `path`, which holds its
  /// chain and its private key, too. Connections that we open are not checked.
  static std::unique_ptr<TlsContext> Showing(const std::string& path);

  /// For connections that we open: the peer must show a certificate for `host`, a name or an address,
  /// by an authority that the system trusts, or one in the PEM file `trusted` unless that is empty.
  static std::unique_ptr<TlsContext> Checking(const std::string& host, const std::string& trusted);

  TlsContext(const TlsContext&) = delete;
  TlsContext& operator=(const TlsContext&) = delete;
  ~TlsContext();

  tls* Get() const { return context_.get(); }

  /// Why the latest connection's certificate was not accepted; empty when it was.
  const std::string& Refusal() const;

 private:
  struct Rules;

  TlsContext();

  std::unique_ptr<Rules> rules_;  ///< the library's callbacks see it
  LibrePtr<tls> context_;
};

/// Makes sure that there is a file at `path`: where there is none, one with a fresh RSA key and a
/// certificate for it that nobody but itself has signed is made, readable by the owner only. It encrypts;
/// that a caller has reached this machine and no other it proves only to who knows the certificate. The
/// file is there as a whole or not at all. Throws std::runtime_error with a sentence for the log.
void MakeCertificateOnFirstUse(const std::string& path);

}  // namespace orven
