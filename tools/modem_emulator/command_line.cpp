// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/command_line.h"

#include <algorithm>
#include <cctype>

#include "base/conversions.h"

namespace orven::emulator {
namespace {

constexpr std::uint8_t kBackspace = 8;
constexpr std::size_t kLongestLine = 255;

bool Digit(char letter) {
  return std::isdigit(static_cast<unsigned char>(letter)) != 0;
}
bool Capital(char letter) {
  return letter >= 'A' && letter <= 'Z';
}

std::string Normal(std::string_view line) {
  std::string text;
  for (const char letter : line) {
    if (letter != ' ') text += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  }
  return text;
}

/// Reads the commands of a line from left to right.
class Splitter {
 public:
  explicit Splitter(std::string text) : text_(std::move(text)) {}

  bool AtEnd() const { return at_ == text_.size(); }

  /// The next command; nothing when it is invalid.
  std::optional<CommandRequest> Next() {
    if (std::string_view("+#*-").find(text_[at_]) != std::string_view::npos) return Extended();
    return Basic();
  }

 private:
  char Here() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  std::string Digits() {
    const auto begin = at_;
    while (Digit(Here())) ++at_;
    return text_.substr(begin, at_ - begin);
  }

  std::optional<CommandRequest> Extended() {
    const auto end = std::min(text_.find(';', at_), text_.size());
    const auto part = text_.substr(at_, end - at_);
    at_ = std::min(end + 1, text_.size());
    CommandRequest request;
    const auto mark = part.find_first_of("=?");
    request.name = part.substr(0, mark);
    if (request.name.size() < 2) return std::nullopt;
    if (mark == std::string::npos) return request;
    request.value = part.substr(mark + 1);
    const bool ask = part[mark] == '?';
    if (ask && !request.value.empty()) return std::nullopt;
    const bool test = !ask && request.value == "?";
    request.form = ask    ? CommandRequest::Form::Ask
                   : test ? CommandRequest::Form::Test
                          : CommandRequest::Form::Set;
    return request;
  }

  std::optional<CommandRequest> Basic() {
    CommandRequest request;
    if (std::string_view("&\\%").find(Here()) != std::string_view::npos) request.name += text_[at_++];
    if (!Capital(Here())) return std::nullopt;
    request.name += text_[at_++];
    if (request.name == "S") return Register(std::move(request));
    if (request.name == "D") {
      request.value = text_.substr(at_);
      at_ = text_.size();
    } else {
      request.value = Digits();
    }
    if (Here() == ';') ++at_;
    return request;
  }

  std::optional<CommandRequest> Register(CommandRequest request) {
    request.name += Digits();
    const char mark = Here();
    if (mark != '=' && mark != '?') return std::nullopt;
    ++at_;
    request.form = mark == '=' ? CommandRequest::Form::Set : CommandRequest::Form::Ask;
    if (mark == '=') request.value = Digits();
    if (Here() == ';') ++at_;
    return request;
  }

  std::string text_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<std::string> SplitValues(std::string_view text) {
  std::vector<std::string> parts(1);
  int depth = 0;
  for (const char letter : text) {
    if (letter == '(' || letter == '[' || letter == '{') ++depth;
    if (letter == ')' || letter == ']' || letter == '}') --depth;
    if (letter == ',' && depth == 0) {
      parts.emplace_back();
    } else {
      parts.back() += letter;
    }
  }
  return parts;
}

std::optional<int> Number(std::string_view text) {
  const auto number = WholeNumber<int>(text);
  return number && *number >= 0 ? number : std::nullopt;
}

bool InGroup(std::string_view group, int value) {
  if (group.size() < 2 || group == "()") return true;
  const auto choices = SplitValues(group.substr(1, group.size() - 2));
  return std::any_of(choices.begin(), choices.end(), [value](const std::string& choice) {
    const auto dash = choice.find('-');
    const auto least = Number(choice.substr(0, dash));
    const auto most = dash == std::string::npos ? least : Number(choice.substr(dash + 1));
    return least && most && *least <= value && value <= *most;
  });
}

std::optional<std::string> Changed(const std::string& range, const std::string& present,
                                   const std::string& value) {
  const auto groups = SplitValues(range);
  const auto wanted = SplitValues(value);
  auto parts = SplitValues(present);
  parts.resize(groups.size());
  if (wanted.size() > groups.size()) return std::nullopt;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].empty()) continue;
    const auto number = Number(wanted[i]);
    if (!number || !InGroup(groups[i], *number)) return std::nullopt;
    parts[i] = wanted[i];
  }
  std::string changed;
  for (const auto& part : parts) changed += (&part == &parts.front() ? "" : ",") + part;
  return changed;
}

std::optional<std::string> CommandLine::Put(std::uint8_t byte) {
  const char letter = static_cast<char>(byte);
  const char capital = static_cast<char>(std::toupper(byte));
  if (state_ == State::Inside) {
    if (letter == '\r') {
      state_ = State::Outside;
      latest_ = line_;
      return latest_;
    }
    if (byte == kBackspace) {
      if (!line_.empty()) line_.pop_back();
    } else if (letter >= ' ' && line_.size() < kLongestLine) {
      line_ += letter;
    }
    return std::nullopt;
  }
  if (state_ == State::A && capital == 'T') {
    state_ = State::Inside;
    line_.clear();
  } else if (state_ == State::A && letter == '/') {
    state_ = State::Outside;
    return latest_;
  } else {
    state_ = capital == 'A' ? State::A : State::Outside;
  }
  return std::nullopt;
}

std::optional<std::vector<CommandRequest>> SplitCommands(std::string_view line) {
  std::vector<CommandRequest> requests;
  Splitter splitter(Normal(line));
  while (!splitter.AtEnd()) {
    auto request = splitter.Next();
    if (!request) return std::nullopt;
    requests.push_back(std::move(*request));
  }
  return requests;
}

}  // namespace orven::emulator
