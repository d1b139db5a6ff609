// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "platform/telephone_lines.h"

namespace orven::test {

/// Telephone lines in memory. The test sets their states and reports the result of a line test.
class ScriptedLines : public TelephoneLines {
 public:
  Configured configured;
  std::function<void()> before_store = [] {};
  std::string fault = "The server is missing.";
  std::map<std::string, std::string> states;  ///< by line name
  std::vector<SerialPortFound> ports;
  std::vector<TelephoneLine> tested;
  TestDone done;  ///< callback of the running line test

  Configured Read() override { return configured; }
  void Store(const std::vector<TelephoneLine>& lines) override {
    before_store();
    configured.lines = lines;
  }
  std::optional<LineFault> Check(const TelephoneLine& line) const override {
    if (line.user.empty() != line.server.empty()) return LineFault{"txtServer", fault};
    if (line.password.starts_with(' ')) return LineFault{"txtPassword", "No blank, please."};
    return std::nullopt;
  }
  std::vector<SerialPortFound> SerialPorts() const override { return ports; }
  std::string State(const TelephoneLine& line) const override {
    const auto state = states.find(line.name);
    return state == states.end() ? "Off" : state->second;
  }
  void Test(const TelephoneLine& line, TestDone when_done) override {
    tested.push_back(line);
    done = std::move(when_done);
  }
  void CancelTest() override { done = nullptr; }
};

}  // namespace orven::test
