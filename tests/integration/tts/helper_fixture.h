// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <qtestsupport_core.h>
#include <sys/resource.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <filesystem>
#include <string>
#include <vector>

#include "adapters/channel/local_exchange.h"
#include "adapters/desktop/qt_event_loop.h"
#include "support/scratch_folder.h"

namespace orven::test {

/// Runs the event loop until `condition` holds; false when that takes too long.
template <typename Condition>
bool Eventually(Condition condition) {
  return QTest::qWaitFor(condition, 60'000);
}

/// A helper in a process of its own.
class Helper {
 public:
  /// Started in the locale `locale`, unable to make a file larger than `most_bytes` when that is not 0.
  explicit Helper(LocalExchange& exchange, const char* locale = "C", rlim_t most_bytes = 0) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVEN_CHANNEL", QString::fromStdString(exchange.Listen()));
    environment.insert("LC_ALL", locale);
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([most_bytes] {
      const rlimit limit{most_bytes, most_bytes};
      if (most_bytes != 0) ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    process.start(TTS_PROGRAM, {"-gc"});
    EXPECT_TRUE(exchange.OpenCheck(60));
  }

  ~Helper() {
    process.kill();
    process.waitForFinished();
  }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;

  bool Ended() {
    return Eventually([&] { return process.state() == QProcess::NotRunning; });
  }
  /// It was told to end, and did so without a fault.
  bool EndedWell() {
    return Ended() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
  }
  /// What it has complained of so far.
  std::string Complaints() {
    complaints_ += process.readAllStandardError().toStdString();
    return complaints_;
  }

  QProcess process;

 private:
  std::string complaints_;
};

class SpeechTest : public ::testing::Test, public DataExchangeEvents {
 protected:
  SpeechTest() { exchange_.SetEvents(this); }

  void DataArrival(const std::string& text) override { arrived_.push_back(text); }
  void LinkLost() override { ++lost_; }

  void Send(const std::string& text) { ASSERT_TRUE(exchange_.Send(text)) << text.substr(0, 80); }

  /// Asks for `text` in the file `name`.
  std::string Write(const std::string& name, const std::string& text) {
    Send("SFS:" + (folder_ / name));
    Send("STW:" + text);
    return folder_ / name;
  }

  /// The helper has done everything that was asked before.
  void WaitForAnswer() {
    const auto before = arrived_.size();
    Send("GVC:");
    ASSERT_TRUE(Eventually([&] { return arrived_.size() > before; }));
  }

  static bool IsThere(const std::string& path) { return std::filesystem::exists(path); }

  /// Bytes of the file, once it is there.
  static std::size_t Size(const std::string& path) {
    EXPECT_TRUE(Eventually([&] { return IsThere(path); })) << path;
    return IsThere(path) ? std::filesystem::file_size(path) : 0;
  }

  /// A text that keeps the helper busy for a while, in bytes.
  static std::string LongText(std::size_t size) {
    std::string text;
    while (text.size() < size) text += "Please leave a message after the tone, and I will call you back.\r\n";
    return text;
  }

  ScratchFolder folder_;
  QtEventLoop loop_;
  LocalExchange exchange_{loop_};
  std::vector<std::string> arrived_;
  int lost_ = 0;
};

}  // namespace orven::test
