// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/own_certificate.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace orven {
namespace {

template <auto Function>
struct Release {
  template <typename T>
  void operator()(T* object) const {
    (void)Function(object);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using File = std::unique_ptr<std::FILE, Release<std::fclose>>;

/// What desk telephones of every age can do.
constexpr unsigned kKeyBits = 2048;

/// Nobody renews it, and a telephone that has been told to trust it should do so for its life.
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
  throw std::runtime_error("no certificate for calls by TLS can be made at " + path + ": " + reason);
}

[[noreturn]] void FailToWrite(const std::string& path) {
  Fail(path, std::generic_category().message(errno));
}

void Write(const std::string& path, X509& certificate, EVP_PKEY& key) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd < 0) FailToWrite(path);
  File file(::fdopen(fd, "w"));
  if (file == nullptr) {
    (void)::close(fd);
    FailToWrite(path);
  }
  // A file left over by a failed try may have been readable by others.
  const bool written = ::fchmod(fd, 0600) == 0 && PEM_write_X509(file.get(), &certificate) == 1 &&
                       PEM_write_PrivateKey(file.get(), &key, nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
                       std::fflush(file.get()) == 0 && ::fsync(fd) == 0;
  if (!written) FailToWrite(path);
}

}  // namespace

void MakeCertificateOnFirstUse(const std::string& path) {
  if (::access(path.c_str(), F_OK) == 0) return;
  const Key key(EVP_RSA_gen(kKeyBits));
  const Certificate certificate(X509_new());
  if (key == nullptr || certificate == nullptr || !Fill(*certificate, *key)) Fail(path, "no key can be made");
  const std::string unfinished = path + ".new";
  try {
    Write(unfinished, *certificate, *key);
    if (std::rename(unfinished.c_str(), path.c_str()) != 0) FailToWrite(path);
  } catch (...) {
    (void)::unlink(unfinished.c_str());
    throw;
  }
}

}  // namespace orven
