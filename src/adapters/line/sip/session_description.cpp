// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/session_description.h"

#include <algorithm>
#include <cctype>

#include "base/text.h"

namespace orven {
namespace {

/// Removes the text up to the next `end`, and `end` itself, from `rest`.
std::string_view TakeUpTo(std::string_view& rest, std::string_view end) {
  const auto at = std::min(rest.find(end), rest.size());
  const auto taken = rest.substr(0, at);
  rest.remove_prefix(std::min(at + end.size(), rest.size()));
  return taken;
}

/// The same for a line that ends in CR, LF or both; CR LF may leave an empty line.
std::string_view TakeLine(std::string_view& rest) {
  const auto line = rest.substr(0, std::min(rest.find_first_of("\r\n"), rest.size()));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

/// Removes a header from `rest`, with its continuation lines (RFC 5322, section 2.2.3).
std::string_view TakeHeader(std::string_view& rest) {
  const auto whole = rest;
  do {
    (void)TakeUpTo(rest, "\r\n");
  } while (rest.starts_with(' ') || rest.starts_with('\t'));
  return whole.substr(0, whole.size() - rest.size());
}

/// The header lines of one part of a multipart body.
bool IsDescription(std::string_view headers) {
  while (!headers.empty()) {
    auto value = TakeHeader(headers);
    const auto name = Lower(Trimmed(TakeUpTo(value, ":")));
    if (name != "content-type" && name != "c") continue;
    return Lower(Trimmed(TakeUpTo(value, ";"))) == "application/sdp";
  }
  return false;
}

std::optional<std::string> DescriptionAmong(std::string_view parts, std::string_view boundary) {
  const auto delimiter = "--" + std::string(boundary);
  (void)TakeUpTo(parts, delimiter);
  while (!parts.empty() && !parts.starts_with("--")) {
    auto part = TakeUpTo(parts, delimiter);
    (void)TakeUpTo(part, "\r\n");  // the rest of the delimiter's line
    if (IsDescription(TakeUpTo(part, "\r\n\r\n"))) return std::string(part);
  }
  return std::nullopt;
}

/// "a=rtpmap:" needs "97 opus/48000", "a=fmtp:" something after the format's number.
bool IsWhole(std::string_view attribute) {
  if (attribute.starts_with("fmtp:")) return attribute.find(' ') != std::string_view::npos;
  if (!attribute.starts_with("rtpmap:")) return !attribute.starts_with("rtcp:");
  const auto name = attribute.find(' ');
  const auto slash = attribute.find('/', name);
  return name != std::string_view::npos && slash > name + 1 && slash + 1 < attribute.size() &&
         std::isdigit(static_cast<unsigned char>(attribute[slash + 1])) != 0;
}

constexpr std::string_view kAudio = "m=audio ";

/// "m=audio 0 …": a rejected stream.
bool IsUnwanted(std::string_view line) {
  return line.starts_with("m=audio 0 ");
}

/// Length of the text after the last usable audio stream; all of `lines` when there is none.
std::size_t LeftBehindAudio(std::string_view lines) {
  std::size_t left = lines.size();
  while (!lines.empty()) {
    const auto line = TakeLine(lines);
    if (line.starts_with(kAudio) && !IsUnwanted(line)) left = lines.size();
  }
  return left;
}

/// "m=audio 4000/2 …" without "/2": of several streams we take the first.
std::string MendAudio(std::string_view line) {
  const auto end = std::min(line.find(' ', kAudio.size()), line.size());
  const auto slash = std::min(line.find('/'), end);
  return std::string(line.substr(0, slash)).append(line.substr(end));
}

}  // namespace

std::optional<std::string> DescriptionIn(const sip_msg& message) {
  const std::string_view body(reinterpret_cast<const char*>(mbuf_buf(message.mb)), mbuf_get_left(message.mb));
  const bool untold = !pl_isset(&message.ctyp.type);
  if (untold || msg_ctype_cmp(&message.ctyp, "application", "sdp")) return std::string(body);
  pl boundary{};
  if (pl_strcasecmp(&message.ctyp.type, "multipart") != 0 ||
      msg_param_decode(&message.ctyp.params, "boundary", &boundary) != 0) {
    return std::nullopt;
  }
  auto value = Trimmed(View(boundary));
  if (value.size() > 2 && value.front() == '"' && value.back() == '"')
    value = value.substr(1, value.size() - 2);
  return value.empty() ? std::nullopt : DescriptionAmong(body, value);
}

std::string MendDescription(std::string_view text) {
  std::string mended;
  const std::size_t behind_audio = LeftBehindAudio(text);
  bool audio = true;  // or the session part before the first medium, which applies to all
  while (!text.empty()) {
    const auto line = TakeLine(text);
    if (line.size() < 2 || line[1] != '=') continue;
    const auto value = line.substr(2);
    const bool skipped = IsUnwanted(line) && text.size() > behind_audio;
    if (line[0] == 'm') audio = line.starts_with(kAudio) && !skipped;
    if (line[0] == 'm') {
      mended.append(skipped ? Lower(line) : audio ? MendAudio(line) : std::string(line)).append("\r\n");
    } else if (audio && line[0] != 'b' && (line[0] != 'a' || IsWhole(value))) {
      mended.append(line).append("\r\n");
    }
  }
  return mended;
}

void RestoreProtocols(std::span<char> text) {
  constexpr std::string_view kMended = "m=audio 0 rtp/";
  for (auto at = text.begin();;) {
    at = std::search(at, text.end(), kMended.begin(), kMended.end());
    if (at == text.end()) return;
    const auto end = std::find(at, text.end(), '\r');
    std::transform(at + 8, end, at + 8, [](unsigned char one) { return static_cast<char>(toupper(one)); });
    at = end;
  }
}

}  // namespace orven
