// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <qtestsupport_core.h>
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QProcess>
#include <csignal>
#include <memory>

#include "support/scratch_folder.h"

namespace orven::test {

/// Waits until `condition` is true, and handles events meanwhile.
template <typename Condition>
bool Eventually(Condition condition) {
  return QTest::qWaitFor(condition, 60'000);
}

/// A sound server that only this process and its children use. Other programs on it are PulseAudio's: pactl,
/// parec, pacat.
class RealServer {
 public:
  RealServer() {
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR"}) qputenv(name, (folder_ / "").c_str());
    qputenv("PULSE_SERVER", ("unix:" + folder_ / "native").c_str());
  }
  ~RealServer() { End(); }

  /// Starts the server with "desk" as its default output.
  void Start() {
    server_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });  // it ends with the test
    server_.start("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                                 "--load=module-native-protocol-unix auth-anonymous=1 socket=" +
                                     QString::fromStdString(folder_ / "native")});
    EXPECT_TRUE(Eventually([this] { return !Ask({"info"}).isEmpty(); }));
    PlugIn("desk");
  }
  void End() {
    server_.kill();
    server_.waitForFinished();
  }
  void Hang(bool hangs = true) { ::kill(pid_t(server_.processId()), hangs ? SIGSTOP : SIGCONT); }

  /// Returns the output of pactl; empty if it fails.
  static QByteArray Ask(const QStringList& arguments) {
    QProcess pactl;
    pactl.start("pactl", arguments);
    pactl.waitForFinished(60'000);
    return pactl.exitCode() == 0 ? pactl.readAllStandardOutput() : QByteArray();
  }

  /// Adds an output `name` and an input mic_`name` that records what is played there; both belong to the
  /// physical card `card`.
  static void PlugIn(const QString& name, const QString& card = "") {
    const auto of_card = card.isEmpty() ? "" : " device.bus_path=" + card;
    Ask({"load-module", "module-null-sink", "sink_name=" + name, "norewinds=1", "rate=8000", "channels=1",
         "sink_properties=\"device.description=" + name + of_card + "\""});
    Ask({"load-module", "module-remap-source", "master=" + name + ".monitor", "source_name=mic_" + name,
         "source_properties=\"device.description=mic_" + name + of_card + "\""});
  }
  /// Removes an output or an input.
  static void Unplug(const QByteArray& name) {
    for (const auto& module : Listed("modules").split('\n')) {
      if (module.contains("_name=" + name + ' ')) Ask({"unload-module", module.split('\t')[0]});
    }
  }
  static QByteArray Listed(const QString& what) { return Ask({"list", "short", what}); }
  static bool Plays() { return !Listed("sink-inputs").isEmpty(); }

  /// Starts parec, which records from `output`, or pacat, which plays its input there.
  static std::unique_ptr<QProcess> Other(const QString& program, const QString& output) {
    auto other = std::make_unique<QProcess>();
    other->start(program, {"-d", output, "--raw", "--rate=8000", "--channels=1", "--format=s16le",
                           program == "parec" ? "--latency-msec=20" : "--latency-msec=2000"});
    return other;
  }
  /// Waits until parec has recorded another half second.
  static void HearMore(QProcess& parec) {
    const auto enough = parec.bytesAvailable() + 8000;
    EXPECT_TRUE(Eventually([&] { return parec.bytesAvailable() >= enough; }));
  }

 private:
  ScratchFolder folder_;
  QProcess server_;
};

}  // namespace orven::test
