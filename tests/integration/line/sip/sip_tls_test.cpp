// SPDX-License-Identifier: GPL-3.0-or-later
// TLS: the line's own certificate, and whether the account's server is the one that it should be.
#include <openssl/ssl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "integration/line/sip/sip_line_test.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// A certificate by openssl for an address, with its key in the same file.
void MakeCertificate(const std::string& path, const std::string& address) {
  const std::string command =
      "openssl req -x509 -newkey rsa:2048 -nodes -days 1 -subj /CN=test -addext subjectAltName=IP:" +
      address + " -keyout " + path + " -out " + path + ".crt 2>/dev/null && cat " + path + ".crt >>" + path;
  ASSERT_EQ(std::system(command.c_str()), 0);
}

/// A server by TLS that takes one connection and keeps the first that it is sent.
class TlsServer {
 public:
  explicit TlsServer(const std::string& certificate) : context_(SSL_CTX_new(TLS_server_method())) {
    EXPECT_EQ(SSL_CTX_use_certificate_file(context_, certificate.c_str(), SSL_FILETYPE_PEM), 1);
    EXPECT_EQ(SSL_CTX_use_PrivateKey_file(context_, certificate.c_str(), SSL_FILETYPE_PEM), 1);
  }
  TlsServer(const TlsServer&) = delete;
  TlsServer& operator=(const TlsServer&) = delete;
  ~TlsServer() { SSL_CTX_free(context_); }

  std::uint16_t Port() const { return socket_.Port(); }

  /// What the next client sends by TLS; empty when the two could not agree to talk.
  std::string FirstWords() const {
    const Socket client = socket_.Accept();
    const timeval limit{5, 0};
    (void)::setsockopt(client.Fd(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    SSL* const connection = SSL_new(context_);
    SSL_set_fd(connection, client.Fd());
    std::string words(4096, '\0');
    const int size = SSL_accept(connection) == 1 ? SSL_read(connection, words.data(), 4096) : 0;
    SSL_free(connection);
    words.resize(static_cast<std::size_t>(std::max(size, 0)));
    return words;
  }

 private:
  SSL_CTX* const context_;
  const Socket socket_ = Socket::TcpListening();
};

class SipTlsTest : public SipLineTest {
 protected:
  SipTlsTest() {
    settings.tls_made_certificate = folder / "made.pem";
    settings.report = [this](const std::string& text) { PutFile(folder / "report", text); };
  }

  /// Registers at `server` and has what it hears.
  std::string Register(const TlsServer& server) {
    settings.account = "sip:100@127.0.0.1:" + std::to_string(server.Port());
    settings.transport = "tls";
    settings.timers.registration_retry_first = settings.timers.registration_retry_longest = milliseconds(200);
    OpenLine();
    std::string words = server.FirstWords();
    if (words.empty()) (void)server.FirstWords();  // the next try comes after the first one's report
    line->Close();
    return words;
  }

  ScratchFolder folder;
};

TEST_F(SipTlsTest, RegistersOnlyAtTheServerThatTheAccountNames) {
  MakeCertificate(folder / "right.pem", "127.0.0.1");
  MakeCertificate(folder / "wrong.pem", "127.0.0.9");
  settings.tls_trust = folder / "right.pem";
  EXPECT_TRUE(Register(TlsServer(folder / "right.pem")).starts_with("REGISTER sip:127.0.0.1:"));
  EXPECT_EQ(ContentOf(folder / "report").find("certificate"), std::string::npos);
  EXPECT_EQ(Register(TlsServer(folder / "wrong.pem")), "") << "a stranger's certificate";
  EXPECT_NE(ContentOf(folder / "report").find("certificate is not accepted: self"), std::string::npos)
      << ContentOf(folder / "report");
  settings.tls_trust = folder / "wrong.pem";
  EXPECT_EQ(Register(TlsServer(folder / "wrong.pem")), "") << "another server's certificate";
  EXPECT_NE(ContentOf(folder / "report").find("mismatch"), std::string::npos) << ContentOf(folder / "report");
  settings.tls_trust.clear();
  EXPECT_EQ(Register(TlsServer(folder / "right.pem")), "") << "nobody vouches for it";
}

TEST_F(SipTlsTest, MakesACertificateOnceAndNamesOneThatIsUnusable) {
  settings.tls_listen = "127.0.0.1:" + std::to_string(FreePort());
  OpenLine();
  const std::string made = ContentOf(settings.tls_made_certificate);
  struct stat status {};
  ASSERT_EQ(::stat(settings.tls_made_certificate.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  line->Close();
  OpenLine();
  EXPECT_EQ(ContentOf(settings.tls_made_certificate), made) << "telephones would have to trust it anew";
  line->Close();

  PutFile(folder / "certificate.pem", made.substr(0, made.find("-----BEGIN PRIVATE")));
  PutFile(folder / "noise.pem", "no certificate");
  const auto fails = [this](const std::string& words) {
    line = MakeSipLine(settings);
    EXPECT_EQ(line->Open(events), kTelephonyDeviceFailed);
    EXPECT_NE(line->LastError().find(words), std::string::npos) << line->LastError();
  };
  for (const char* name : {"certificate.pem", "noise.pem", "absent.pem"}) {
    settings.tls_certificate = folder / name;
    fails(settings.tls_certificate);
  }
  settings.tls_certificate.clear();
  settings.tls_made_certificate = folder / "noise.pem/made.pem";
  fails("/noise.pem/made.pem.new: Not a directory");
  settings.tls_made_certificate = folder / "made.pem";
  settings.account = "sip:100@127.0.0.1";
  settings.transport = "tls";
  fails("tls_listen cannot be used together");
}

}  // namespace
}  // namespace orven::test
