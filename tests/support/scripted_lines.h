// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <set>
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
  std::set<std::string> taken;                ///< addresses where another program listens
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
  std::string FreeAddress(const std::string& listen) const override {
    return taken.contains(listen) ? listen + "2" : listen;
  }
  std::string Router() const override { return "192.168.1.1"; }
  Words State(const TelephoneLine& line) const override {
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
