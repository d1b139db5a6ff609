// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/helper.h"

#include <QCoreApplication>
#include <QLocale>
#include <QMetaObject>
#include <chrono>
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

#include "adapters/channel/exchange_client.h"
#include "adapters/desktop/exit_requests.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/sound/sound_cards.h"
#include "programs/TTS/command_interpreter.h"
#include "programs/TTS/report.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// The program listens before it starts the helper.
constexpr auto kConnectLimit = 3s;

constexpr std::int32_t kDefaultCard = 0;

/// Ends the event loop. Any thread; an end that was asked for before stays.
void Exit(int code) {
  QMetaObject::invokeMethod(
      qApp, [code] { QCoreApplication::exit(code); }, Qt::QueuedConnection);
}

/// Everything that the helper consists of.
class Helper {
 public:
  /// Throws std::exception when the engine cannot be used or there is no voice.
  Helper() {
    auto voices = VoicesFor(QLocale::system().name().toStdString(), engine_.Voices());
    if (voices.empty()) throw std::runtime_error("the speech engine has no voices");
    interpreter_.emplace(CommandInterpreter::Parts{jobs_, sound_, *cards_.Find(kDefaultCard)},
                         std::move(voices),
                         CommandInterpreter::Answers{[this](const std::string& text) { client_.Send(text); },
                                                     [] { Exit(0); }});
  }

  std::optional<std::string> Connect(const std::string& path) { return client_.Connect(path, kConnectLimit); }

 private:
  void Lost() const {
    if (interpreter_->Unloading()) return;
    Report("the link to the program is lost");
    Exit(1);
  }

  SpeechEngine engine_;
  SpokenSound sound_{engine_.SampleRate()};
  QtEventLoop loop_{Report};
  SoundCards cards_{loop_, Report};
  SpeechJobs jobs_{engine_, sound_};
  std::optional<CommandInterpreter> interpreter_;
  ExchangeClient client_{{[this](const std::string& text) { interpreter_->Obey(text); }, [this] { Lost(); }}};
};

}  // namespace

int RunHelper(int& count, char** arguments) {
  const QCoreApplication application(count, arguments);
  const ExitSignals exit_signals([] { Exit(0); });
  const std::string path = qEnvironmentVariable("ORVEN_CHANNEL").toStdString();
  if (path.empty()) {
    Report("ORVEN_CHANNEL is not set; the answering machine starts this program");
    return 1;
  }
  try {
    Helper helper;
    if (const auto problem = helper.Connect(path)) {
      Report(*problem);
      return 1;
    }
    return QCoreApplication::exec();
  } catch (const std::exception& failure) {
    Report(failure.what());
    return 1;
  }
}

}  // namespace orven
