// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "adapters/line/own_caller/own_call_session.h"
#include "adapters/line/setup/line_devices.h"
#include "adapters/line/sip/sip_thread.h"
#include "platform/event_loop.h"
#include "platform/own_caller.h"

namespace orven {

/// Calls the SIP lines of `lines.ini` from this computer, each time on a thread of its own. User-interface
/// thread.
class SipOwnCaller final : public OwnCaller {
 public:
  /// `states` are those of all lines; `folder` is that of lines.ini. `sentence` is the sound file of the
  /// sentence that the caller says.
  SipOwnCaller(EventLoop& loop, const LineStates& states, std::string folder, std::string sentence)
      : loop_(loop), states_(states), folder_(std::move(folder)), sentence_(std::move(sentence)) {}
  SipOwnCaller(const SipOwnCaller&) = delete;
  SipOwnCaller& operator=(const SipOwnCaller&) = delete;

  Words Obstacle(std::int32_t line) const override;
  void Call(std::int32_t line, const std::string& greeting, const std::string& beep, News news) override;
  void HangUp() override;
  bool Holds(const std::string& path) const override;

 private:
  /// A call that is up, or whose end the line is to confirm.
  struct Run {
    std::uint32_t number = 0;
    std::unique_ptr<OwnCallSession> session{};  ///< SIP thread only
    SipThread thread{};
  };

  OwnCallSession::Events EventsOf(std::uint32_t run);

  EventLoop& loop_;
  const LineStates& states_;
  const std::string folder_;
  const std::string sentence_;
  News news_;                ///< of the call that is up; empty: there is none
  std::uint32_t calls_ = 0;  ///< the number of the latest one
  Lifeline lifeline_;        ///< outlives the threads
  std::list<Run> runs_;
};

}  // namespace orven
