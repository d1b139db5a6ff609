// SPDX-License-Identifier: GPL-3.0-or-later
// Plays and records sound files as the program does, at the command of standard input, a line each:
//
//     play DEVICE PATH   seek MS   stop   position   record DEVICE   stoprecord PATH   level   cards   quit
//
// Every answer and event is a line on standard output. An operation that keeps the user-interface
// thread for longer than kAtOnce is an event, too.
#include <QCoreApplication>
#include <QSocketNotifier>
#include <chrono>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>

#include "adapters/audio/file_wave_control.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/sound/sound_cards.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Far below what a person notices, far above what a busy machine takes away.
constexpr auto kAtOnce = 200ms;

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
    const auto begin = Clock::now();
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "play") Play(words);
    if (command == "seek") Seek(words);
    if (command == "stop") control_.StopPlay();
    if (command == "position") Say("position " + std::to_string(control_.Position().count()));
    if (command == "record") Record(words);
    if (command == "stoprecord") StopRecord(words);
    if (command == "level") Say("level " + std::to_string(control_.InputLevel()));
    if (command == "cards") ShowCards();
    if (command == "quit") QCoreApplication::quit();
    if (Clock::now() - begin > kAtOnce) Say("blocked " + command);
    Say("done " + command);
  }

 private:
  void Play(std::istream& words) {
    int device = 0;
    std::string path;
    words >> device >> path;
    Say("play " + std::to_string(control_.PlayFile(path, device)));
  }

  void Seek(std::istream& words) {
    int position = 0;
    words >> position;
    control_.Seek(std::chrono::milliseconds(position));
  }

  void Record(std::istream& words) {
    int device = 0;
    words >> device;
    Say("record " + std::to_string(control_.StartRecord(device, {})));
  }

  void StopRecord(std::istream& words) {
    std::string path;
    words >> path;
    Say("stoprecord " + std::to_string(control_.StopRecordToFile(path)));
  }

  void ShowCards() {
    for (const auto& card : cards_.Present())
      Say("card " + std::to_string(card.number) + " " + card.description);
  }

  orven::QtEventLoop loop_;
  orven::SoundCards cards_{loop_, [](const std::string& text) { Say("report " + text); }};
  orven::FileWaveControl control_{loop_, cards_, "."};
};

}  // namespace

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);  // so that it is known which lines have been read ahead
  QCoreApplication application(count, arguments);
  Clock::time_point end;
  {
    Player player;
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
      do {
        std::string line;
        if (!std::getline(std::cin, line)) return QCoreApplication::quit();
        player.Do(line);
      } while (std::cin.rdbuf()->in_avail() > 0);
    });
    QCoreApplication::exec();
    end = Clock::now();
  }
  Say("gone after " + std::to_string((Clock::now() - end) / 1ms) + " ms");
}
