// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/own_caller/sip_own_caller.h"

#include "adapters/line/config/line_settings.h"

namespace orven {

Words SipOwnCaller::Obstacle(std::int32_t line) const {
  const auto index = static_cast<std::size_t>(line);
  if (line < 0 || index >= states_.size()) return Tr("No line is chosen: choose one in Options.");
  if (states_[index].section.type == "sip") return {};
  return Tr("The program can only call a line over SIP: call this one from another telephone.");
}

void SipOwnCaller::Call(std::int32_t line, const std::string& greeting, const std::string& beep, News news) {
  HangUp();
  news_ = std::move(news);
  auto& run = runs_.emplace_back();
  run.number = ++calls_;
  const auto events = EventsOf(run.number);
  const auto& section = states_.at(static_cast<std::size_t>(line)).section;
  const OwnCallPlan plan{SipSettingsOf(section, folder_), greeting, beep, sentence_};
  const auto fault = run.thread.Start([&run] { run.session.reset(); });
  if (!fault.empty()) {
    events.news({OwnCallerNews::Kind::Over, Words("The test call failed: %1.").Arg(fault)});
    return events.gone();
  }
  run.thread.Post([&run, plan, events] {
    run.session = std::make_unique<OwnCallSession>(plan, events);
    run.session->Begin();
  });
}

OwnCallSession::Events SipOwnCaller::EventsOf(std::uint32_t run) {
  const auto post = [this](EventLoop::Task task) { loop_.Post(lifeline_.Bind(std::move(task))); };
  return {.news =
              [this, post, run](const OwnCallerNews& news) {
                post([this, run, news] {
                  if (run != calls_ || !news_) return;
                  const auto tell = news_;  // HangUp may be called within
                  tell(news);
                });
              },
          .gone =
              [this, post, run] {
                post([this, run] { runs_.remove_if([run](auto& one) { return one.number == run; }); });
              }};
}

void SipOwnCaller::HangUp() {
  news_ = {};
  if (runs_.empty()) return;
  auto& run = runs_.back();
  run.thread.Post([&run] {
    if (run.session != nullptr) run.session->Close();
  });
}

bool SipOwnCaller::Holds(const std::string& path) const {
  const auto message = ReadSound(path);
  return SoundSearch(ReadSound(sentence_), 0, message.size()).Look(message) == SoundSearch::Result::Found;
}

}  // namespace orven
