// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>

#include "platform/own_caller.h"

namespace orven::test {

/// Calls nobody. The test reports what the caller experiences.
class ScriptedOwnCaller : public OwnCaller {
 public:
  Words obstacle;
  News news;
  Words Obstacle(std::int32_t /*line*/) const override { return obstacle; }
  void Call(std::int32_t /*line*/, const std::string& /*greeting*/, const std::string& /*beep*/,
            News when) override {
    news = std::move(when);
  }
  void HangUp() override {}
  bool Holds(const std::string& /*path*/) const override { return true; }
};

}  // namespace orven::test
