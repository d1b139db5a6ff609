// SPDX-License-Identifier: GPL-3.0-or-later
// Plays and records audio files as the program does, at the command of standard input, a line each:
//
//     COMMAND [NUMBER [PATH]]
//
//     play DEVICE PATH   seek MS   stop   position   record DEVICE   stoprecord 0 PATH   level   cards   quit
//
// Every answer and event is a line on standard output.
#include <QCoreApplication>
#include <QSocketNotifier>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>

#include "adapters/audio/file_wave_control.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/sound/sound_cards.h"

namespace {

/// Any thread, the sound thread reports, too.
void Say(const std::string& line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::cout << line << std::endl;
}

class Player : public orven::WaveEvents {
 public:
  Player() { control_.SetEvents(this); }

  void PlayFinished() override { Say("finished"); }

  void Do(const std::string& line) {
    std::istringstream words(line);
    std::string command, path;
    int number = 0;
    words >> command >> number >> path;
    const auto answer = [&](auto value) { Say(command + " " + std::to_string(value)); };
    if (command == "play") answer(control_.PlayFile(path, number));
    if (command == "seek") control_.Seek(std::chrono::milliseconds(number));
    if (command == "stop") control_.StopPlay();
    if (command == "position") answer(control_.Position().count());
    if (command == "record") answer(control_.StartRecord(number, {}));
    if (command == "stoprecord") answer(control_.StopRecordToFile(path));
    if (command == "level") answer(control_.InputLevel());
    if (command == "cards")
      for (const auto& card : cards_.Present())
        Say("card " + std::to_string(card.number) + " " + card.description);
    if (command == "quit") QCoreApplication::quit();
    Say("done " + command);
  }

 private:
  orven::QtEventLoop loop_;
  orven::SoundCards cards_{loop_, [](const std::string& text) { Say("report " + text); }};
  orven::FileWaveControl control_{loop_, cards_, "."};
};

}  // namespace

int main(int count, char** arguments) {
  QCoreApplication application(count, arguments);
  Player player;
  QSocketNotifier input(0, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, [&] {
    std::string line;  // the next one comes when this one is done
    if (!std::getline(std::cin, line)) return QCoreApplication::quit();
    player.Do(line);
  });
  return QCoreApplication::exec();
}
