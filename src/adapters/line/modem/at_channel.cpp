// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/at_channel.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace orven {
namespace {

/// Unsolicited results: what a modem reports at any time, never as an answer.
constexpr std::array<std::string_view, 8> kLineNews{"RING", "DATE", "TIME", "NMBR",
                                                    "NAME", "MESG", "DRON", "DROF"};

bool IsLineNews(std::string_view line) {
  return std::ranges::any_of(kLineNews, [&](std::string_view word) {
    if (!line.starts_with(word)) return false;
    const auto rest = line.substr(word.size());
    return rest.empty() || rest.front() == ' ' || rest.front() == '=';
  });
}

/// The modem has hung up by itself, regardless of the command.
bool IsHangUp(std::string_view line) {
  return line == "NO CARRIER" || line == "BUSY";
}

/// The result code in `line`, if it is one (ITU-T V.250, clause 5.7; VCON: V.253).
std::optional<ModemReply::Kind> ResultOf(std::string_view line) {
  if (line == "OK" || line == "VCON") return ModemReply::Kind::Ok;
  if (line.starts_with("CONNECT")) return ModemReply::Kind::Connect;
  if (line == "ERROR" || line.starts_with("+CME ERROR") || IsHangUp(line) || line == "NO DIALTONE" ||
      line == "NO DIAL TONE" || line == "NO ANSWER") {
    return ModemReply::Kind::Error;
  }
  return std::nullopt;
}

}  // namespace

void AtChannel::Ask(std::string command, Done done, std::chrono::milliseconds patience) {
  Add({std::move(command), false, false, patience, std::move(done)});
}

void AtChannel::AskForAudio(std::string command, bool receive, Done done) {
  Add({std::move(command), true, receive, kPatience, std::move(done)});
}

void AtChannel::AwaitOk(Done done, std::chrono::milliseconds patience) {
  Add({"", false, false, patience, std::move(done)});
}

void AtChannel::Add(Command command) {
  waiting_.push_back(std::move(command));
  if (!asking_) Next();
}

void AtChannel::Next() {
  if (waiting_.empty()) return;
  asking_ = true;
  current_ = std::move(waiting_.front());
  waiting_.pop_front();
  reply_ = {};
  if (current_.audio_follows) reader_.ExpectAudio();
  if (!current_.command.empty()) {
    const auto line = current_.command + '\r';
    link_.Write(std::span(reinterpret_cast<const std::uint8_t*>(line.data()), line.size()));
  }
  loop_.After(current_.patience, lifeline_.Bind([this, turn = ++turn_] {
    if (asking_ && turn == turn_) Finish(ModemReply::Kind::Nothing);
  }));
}

void AtChannel::Finish(ModemReply::Kind kind) {
  reply_.kind = kind;
  if (current_.audio_follows && kind != ModemReply::Kind::Connect) reader_.ExpectLines();
  asking_ = false;
  const auto reply = std::move(reply_);
  const auto done = std::move(current_.done);
  done(reply);
  if (!asking_) Next();
}

void AtChannel::Forget() {
  waiting_.clear();
  asking_ = false;
  ++turn_;
}

void AtChannel::Line(const std::string& text) {
  if (!asking_ || IsLineNews(text)) {
    strays_seen_ = strays_seen_ || text == "OK";
    return unsolicited_.Line(text);
  }
  if (!current_.command.empty() && text == current_.command) {
    reply_.echoed = true;
    return;
  }
  const auto result = ResultOf(text);
  if (!result) {
    reply_.lines.push_back(text);
    return;
  }
  // The call must know before the next command is sent.
  if (IsHangUp(text)) unsolicited_.Line(text);
  if (!asking_) return;
  // An OK instead of CONNECT belongs to something earlier.
  if (current_.wants_connect && *result == ModemReply::Kind::Ok) {
    strays_seen_ = true;
    return;
  }
  if (!current_.wants_connect && *result == ModemReply::Kind::Connect) return;
  Finish(*result);
}

}  // namespace orven
