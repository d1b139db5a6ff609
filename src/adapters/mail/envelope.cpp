// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/envelope.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <random>

#include "adapters/mail/mail_text.h"

namespace orven {
namespace {

constexpr std::string_view kFirstLine = "ORVEN mail 1\n";
constexpr std::string_view kLastLine = "end\n";

struct Line {
  std::string_view label;
  std::string Envelope::*value;
};

constexpr std::array<Line, 8> kLines{{
    {"message-id=", &Envelope::message_id},
    {"date=", &Envelope::date},
    {"server=", &Envelope::server},
    {"sender=", &Envelope::sender},
    {"sender-name=", &Envelope::sender_name},
    {"recipient=", &Envelope::recipient},
    {"subject=", &Envelope::subject},
    {"attachment=", &Envelope::attachment},
}};

/// Values keep their bytes; only what could end a line, and the sign of this writing, is written as hex.
std::string Escaped(std::string_view value) {
  std::string text;
  for (const char c : value) {
    text += static_cast<unsigned char>(c) < 0x20 || c == '%' ? PercentEncoded({&c, 1}) : std::string(1, c);
  }
  return text;
}

std::optional<std::string> Unescaped(std::string_view text) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string value;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      value += text[at];
      continue;
    }
    if (text.size() - at < 3) return {};
    const std::size_t high = kDigits.find(text[at + 1]);
    const std::size_t low = kDigits.find(text[at + 2]);
    if (high == kDigits.npos || low == kDigits.npos) return {};
    value += static_cast<char>(high << 4U | low);
    at += 2;
  }
  return value;
}

bool Take(std::string_view& text, std::string_view start) {
  if (!text.starts_with(start)) return false;
  text.remove_prefix(start.size());
  return true;
}

bool IsDomain(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.';
  });
}

}  // namespace

std::string NewMessageId(std::string_view sender) {
  std::random_device random;
  std::array<char, 33> digits{};
  for (std::size_t at = 0; at < 32; at += 8) {
    std::snprintf(digits.data() + at, 9, "%08x", static_cast<std::uint32_t>(random()));
  }
  const std::string_view domain = sender.substr(std::min(sender.size(), sender.rfind('@') + 1));
  return std::string("<") + digits.data() + "@" + (IsDomain(domain) ? std::string(domain) : "orven.invalid") +
         ">";
}

std::string EnvelopeText(const Envelope& envelope) {
  std::string text(kFirstLine);
  for (const Line& line : kLines) {
    text += line.label;
    text += Escaped(envelope.*line.value) + "\n";
  }
  return text + std::string(kLastLine);
}

std::optional<Envelope> ParseEnvelope(std::string_view text) {
  Envelope envelope;
  if (!Take(text, kFirstLine)) return {};
  for (const Line& line : kLines) {
    if (!Take(text, line.label)) return {};
    const std::size_t end = text.find('\n');
    if (end == text.npos) return {};
    auto value = Unescaped(text.substr(0, end));
    if (!value) return {};
    envelope.*line.value = *std::move(value);
    text.remove_prefix(end + 1);
  }
  if (text != kLastLine) return {};
  return envelope;
}

}  // namespace orven
