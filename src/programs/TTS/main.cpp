// SPDX-License-Identifier: GPL-3.0-or-later

#include <QCoreApplication>
#include <QLocale>
#include <QMetaObject>
#include <chrono>
#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/channel/exchange_client.h"
#include "adapters/desktop/exit_requests.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/sound/sound_cards.h"
#include "base/unicode.h"
#include "programs/TTS/command_interpreter.h"
#include "programs/TTS/speech_engine.h"
#include "programs/TTS/speech_file.h"
#include "programs/TTS/speech_jobs.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr const char* kUsage =
    "usage: TTS -gc                 the speech helper; started by the answering machine\n"
    "       TTS -w FILE LANGUAGE    speaks the text on standard input, in en_US or de, into a sound file\n";
constexpr int kUsageError = 2;

void Speak(const std::string& text, const std::string& path, const std::string& language) {
  if (!IsUtf8(text)) throw std::runtime_error("the text on standard input is not UTF-8");
  SpeechEngine engine;
  const auto voices = VoicesFor(language, engine.Voices());
  if (voices.empty()) throw std::runtime_error("the speech engine has no voices");
  RemoveLeftovers(path);
  SpeechFile file(path, engine.SampleRate());
  engine.Speak({text, voices.front().identifier, WordsPerMinute(0)},
               [&](std::span<const std::int16_t> samples) {
                 file.Write(samples);
                 return true;
               });
  file.Finish();
  file.Appear();
}

/// The program listens before it starts the helper.
constexpr auto kConnectLimit = 3s;

constexpr std::int32_t kDefaultCard = 0;

/// Ends the event loop. Any thread; an earlier request for the end stays valid.
void Exit(int code) {
  QMetaObject::invokeMethod(
      qApp, [code] { QCoreApplication::exit(code); }, Qt::QueuedConnection);
}

/// The helper's parts, composed.
class Helper {
 public:
  /// Throws std::exception when the engine cannot be used or has no voice.
  Helper() {
    auto voices = VoicesFor(QLocale::system().name().toStdString(), engine_.Voices());
    if (voices.empty()) throw std::runtime_error("the speech engine has no voices");
    interpreter_.emplace(CommandInterpreter::Parts{jobs_, audio_, *cards_.Find(kDefaultCard)},
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
  SpokenAudio audio_{engine_.SampleRate()};
  QtEventLoop loop_{Report};
  SoundCards cards_{loop_, Report};
  SpeechJobs jobs_{engine_, audio_};
  std::optional<CommandInterpreter> interpreter_;
  ExchangeClient client_{{[this](const std::string& text) { interpreter_->Obey(text); }, [this] { Lost(); }}};
};

/// Speaks the UTF-8 text of standard input into the file at `path`, with the first voice for the language at
/// its normal rate. 0, or 1 with one line on standard error; then an older file stays as it is.
int SpeakIntoFile(const char* path, const char* language) {
  const std::string text{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  try {
    Speak(text, path, language);
    return 0;
  } catch (const std::exception& failure) {
    Report(failure.what());
    return 1;
  }
}

/// Runs the speech helper at the other end of the link in the environment variable ORVEN_CHANNEL, until it is
/// told to unload, the link is lost, or a signal asks for the end. The process's exit code: 0 when it was
/// told or asked to end, 1 when it cannot work or the link was lost. `count` and `arguments` are main's.
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

}  // namespace
}  // namespace orven

int main(int count, char** arguments) {
  // Exceeding a file size limit fails the write, with a reason, instead of ending the process.
  std::signal(SIGXFSZ, SIG_IGN);
  const std::span<char*> words(arguments, static_cast<std::size_t>(count));
  if (words.size() == 2 && std::string_view(words[1]) == "-gc") return orven::RunHelper(count, arguments);
  if (words.size() == 4 && std::string_view(words[1]) == "-w")
    return orven::SpeakIntoFile(words[2], words[3]);
  std::cerr << orven::kUsage;
  return orven::kUsageError;
}
