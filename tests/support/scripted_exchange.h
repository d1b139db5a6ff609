// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/data_exchange.h"

namespace orven::test {

/// A speech helper that takes every message and says what a test lets it say.
class ScriptedExchange : public DataExchange {
 public:
  std::vector<std::string> sent;
  std::vector<std::int32_t> checked;  ///< the argument of every OpenCheck
  bool up = true;
  bool takes = true;  ///< messages can be sent
  bool closed = false;
  std::function<void()> while_waiting = [] {};  ///< what else happens inside the next OpenCheck
  std::function<void(const std::string&)> on_message = [](const std::string&) {};

  void Say(const std::string& text) {
    if (events_ != nullptr) events_->DataArrival(text);
  }
  void Die() {
    up = false;
    if (events_ != nullptr) events_->LinkLost();
  }
  std::vector<std::string> TakeSent() { return std::exchange(sent, {}); }

  void SetEvents(DataExchangeEvents* events) override { events_ = events; }
  bool OpenCheck(std::int32_t seconds) override {
    checked.push_back(seconds);
    std::exchange(while_waiting, [] {})();
    return up;
  }
  bool Send(const std::string& text) override {
    if (!up || !takes) return false;
    sent.push_back(text);
    on_message(text);
    return true;
  }
  void Close() override {
    closed = true;
    up = false;
  }

 private:
  DataExchangeEvents* events_ = nullptr;
};

}  // namespace orven::test
