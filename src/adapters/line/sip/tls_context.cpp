// SPDX-License-Identifier: GPL-3.0-or-later
// The SIP library declares tls_openssl_context only with this.
#define USE_OPENSSL 1
#include "adapters/line/sip/tls_context.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include <memory>
#include <new>
#include <stdexcept>

#include "base/durable_file.h"

namespace orven {

struct TlsContext::Rules {
  std::string host;  ///< empty: nothing is checked
  bool is_address = false;
  std::string refusal;
};

namespace {

/// Why OpenSSL's latest operation failed.
std::string Reason() {
  const unsigned long error = ERR_peek_last_error();
  const char* words = ERR_reason_error_string(error);
  ERR_clear_error();
  return words != nullptr ? words : "unknown reason";
}

/// The index of our own data in OpenSSL's context.
int RulesIndex() {
  static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
  return index;
}

void* RulesOf(const SSL* connection) {
  return SSL_CTX_get_ex_data(SSL_get_SSL_CTX(connection), RulesIndex());
}

/// A locked private key fails, instead of asking at a terminal.
int NoPassphrase(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*data*/) {
  return -1;
}

bool IsAddress(const std::string& host) {
  sa address{};
  return sa_set_str(&address, host.c_str(), 1) == 0;
}

template <auto Function>
struct Release {
  template <typename T>
  void operator()(T* object) const {
    (void)Function(object);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO_free>>;

/// Old desk telephones support this, too.
constexpr unsigned kKeyBits = 2048;

/// The certificate is not renewed, so it must be valid for as long as a telephone that trusts it is in use.
constexpr long kDay = 24L * 3600;
constexpr long kLife = 20 * 365 * kDay;

bool Fill(X509& certificate, EVP_PKEY& key) {
  std::uint64_t serial = 0;
  if (RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof(serial)) != 1) return false;
  X509_NAME* const name = X509_get_subject_name(&certificate);
  const auto* const text = reinterpret_cast<const unsigned char*>("ORVEN");
  return X509_set_version(&certificate, X509_VERSION_3) == 1 &&
         ASN1_INTEGER_set_uint64(X509_get_serialNumber(&certificate), serial >> 1) == 1 &&
         // A telephone's clock may be behind ours.
         X509_gmtime_adj(X509_getm_notBefore(&certificate), -kDay) != nullptr &&
         X509_gmtime_adj(X509_getm_notAfter(&certificate), kLife) != nullptr &&
         X509_set_pubkey(&certificate, &key) == 1 &&
         X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0) == 1 &&
         X509_set_issuer_name(&certificate, name) == 1 && X509_sign(&certificate, &key, EVP_sha256()) > 0;
}

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error("no certificate for calls over TLS can be made at " + path + ": " + reason);
}

/// The certificate and its private key as a PEM file has them; empty when memory ran out.
std::string PemOf(X509& certificate, EVP_PKEY& key) {
  const Memory memory(BIO_new(BIO_s_mem()));
  char* text = nullptr;
  if (memory == nullptr || PEM_write_bio_X509(memory.get(), &certificate) != 1 ||
      PEM_write_bio_PrivateKey(memory.get(), &key, nullptr, nullptr, 0, nullptr, nullptr) != 1) {
    return {};
  }
  const long size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<std::size_t>(size)};
}

/// Keeps the library from checking the servers that this context's connections reach. Version 2 checks them
/// unless it is told not to; version 1 has no such function and checks what its context says.
template <class Context>
void CheckNoServer(Context* context) {
  if constexpr (requires { tls_disable_verify_server(context); }) tls_disable_verify_server(context);
}

}  // namespace

TlsContext::TlsContext()
    : rules_(std::make_unique<Rules>()), context_(Made(tls_alloc, TLS_METHOD_SSLV23, nullptr, nullptr)) {
  SSL_CTX_set_ex_data(tls_openssl_context(context_.get()), RulesIndex(), rules_.get());
  ERR_clear_error();
}

TlsContext::~TlsContext() {
  // Connections may still hold the context for a moment.
  SSL_CTX* const context = tls_openssl_context(context_.get());
  SSL_CTX_set_info_callback(context, nullptr);
  SSL_CTX_set_ex_data(context, RulesIndex(), nullptr);
}

std::unique_ptr<TlsContext> TlsContext::Showing(const std::string& path) {
  std::unique_ptr<TlsContext> made(new TlsContext);
  CheckNoServer(made->Get());
  SSL_CTX* const context = tls_openssl_context(made->Get());
  SSL_CTX_set_default_passwd_cb(context, NoPassphrase);
  const char* what = "certificate";
  bool good = SSL_CTX_use_certificate_chain_file(context, path.c_str()) == 1;
  if (good) {
    what = "private key that belongs to its certificate and is not locked by a passphrase";
    good = SSL_CTX_use_PrivateKey_file(context, path.c_str(), SSL_FILETYPE_PEM) == 1 &&
           SSL_CTX_check_private_key(context) == 1;
  }
  if (good) return made;
  throw std::runtime_error("the certificate file " + path + " cannot be used (" + Reason() +
                           "): expected a PEM file with a " + what);
}

std::unique_ptr<TlsContext> TlsContext::Checking(const std::string& host, const std::string& trusted) {
  std::unique_ptr<TlsContext> made(new TlsContext);
  SSL_CTX* const context = tls_openssl_context(made->Get());
  made->rules_->host = host;
  made->rules_->is_address = IsAddress(host);
  if (trusted.empty()) {
    SSL_CTX_set_default_verify_paths(context);
  } else if (SSL_CTX_load_verify_file(context, trusted.c_str()) != 1) {
    throw std::runtime_error("the file " + trusted + " of trusted certificates cannot be used (" + Reason() +
                             "): expected a PEM file with certificates");
  }
  X509_VERIFY_PARAM* const rules = SSL_CTX_get0_param(context);
  // A certificate that the user names is trusted without its issuer.
  if (!trusted.empty()) X509_VERIFY_PARAM_set_flags(rules, X509_V_FLAG_PARTIAL_CHAIN);
  X509_VERIFY_PARAM_set_hostflags(rules, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  const int set = made->rules_->is_address ? X509_VERIFY_PARAM_set1_ip_asc(rules, host.c_str())
                                           : X509_VERIFY_PARAM_set1_host(rules, host.c_str(), host.size());
  if (set != 1) throw std::bad_alloc();
  SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
  SSL_CTX_set_info_callback(context, [](const SSL* connection, int where, int /*result*/) {
    auto* seen = static_cast<Rules*>(RulesOf(connection));
    if (seen == nullptr) return;
    if ((where & SSL_CB_HANDSHAKE_START) != 0) {
      seen->refusal.clear();
      // Servers of several domains need its name (RFC 6066, section 3).
      if (!seen->is_address) (void)SSL_set_tlsext_host_name(const_cast<SSL*>(connection), seen->host.c_str());
    }
    const long verdict = SSL_get_verify_result(connection);
    if ((where & SSL_CB_WRITE_ALERT) == SSL_CB_WRITE_ALERT && verdict != X509_V_OK)
      seen->refusal = X509_verify_cert_error_string(verdict);
  });
  return made;
}

const std::string& TlsContext::Refusal() const {
  return rules_->refusal;
}

void MakeCertificateOnFirstUse(const std::string& path) {
  if (::access(path.c_str(), F_OK) == 0) return;
  const Key key(EVP_RSA_gen(kKeyBits));
  const Certificate certificate(X509_new());
  if (key == nullptr || certificate == nullptr || !Fill(*certificate, *key)) Fail(path, "no key can be made");
  const std::string pem = PemOf(*certificate, *key);
  if (pem.empty()) Fail(path, "no key can be made");
  try {
    ReplaceFile(path, pem, 0600);
  } catch (const RuntimeError& error) {
    Fail(path, error.what());
  }
}

}  // namespace orven
