// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The rules of a line's TLS connections: the certificate that we show to callers, or those that we accept
/// from a server. All functions throw std::runtime_error with a sentence for the log. SIP thread.
class TlsContext {
 public:
  /// For connections that others open: shows the certificate of the PEM file at `path`, which also holds its
  /// chain and its private key. Connections that we open are not checked.
  static std::unique_ptr<TlsContext> Showing(const std::string& path);

  /// For connections that we open: the peer must show a certificate for `host`, a name or an address,
  /// by an authority that the system trusts, or one in the PEM file `trusted` unless that is empty.
  static std::unique_ptr<TlsContext> Checking(const std::string& host, const std::string& trusted);

  TlsContext(const TlsContext&) = delete;
  TlsContext& operator=(const TlsContext&) = delete;
  ~TlsContext();

  tls* Get() const { return context_.get(); }

  /// Why the certificate of the latest connection was not accepted; empty when it was.
  const std::string& Refusal() const;

 private:
  struct Rules;

  TlsContext();

  std::unique_ptr<Rules> rules_;  ///< the library's callbacks see it
  LibrePtr<tls> context_;
};

/// Makes a PEM file at `path` unless there is one: a new RSA key and a self-signed certificate, readable by
/// the owner only, written atomically. It encrypts; it proves our identity only to telephones that know it.
/// Throws std::runtime_error with a sentence for the log.
void MakeCertificateOnFirstUse(const std::string& path);

}  // namespace orven
