// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/voice_format.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/conversions.h"

namespace orven {
namespace {

/// The rates that we can convert, best first.
constexpr std::array kRates{8000, 7200, 11025};

/// Silence compression and expansion, which we turn off.
constexpr std::ptrdiff_t kSilenceFields = 2;

/// One line of the answer: number, "name", bits, timing marks, rates, silence compression, silence expansion
/// (ITU-T V.253, +VSM); many modems leave out all but number, name and rates.
using Fields = std::vector<std::string>;

/// Cuts at the commas outside quotes and brackets; removes quotes and blanks.
Fields FieldsOf(std::string_view line) {
  Fields fields(1);
  int depth = 0;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (quoted || (c != ' ' && (c != ',' || depth > 0))) {
      if (!quoted) depth += c == '(' ? 1 : c == ')' ? -1 : 0;
      fields.back() += c;
    } else if (c == ',') {
      fields.emplace_back();
    }
  }
  return fields;
}

/// The line without the "+VSM:" that some modems prepend.
std::string_view WithoutPrefix(std::string_view line) {
  const auto start = line.find_first_of("0123456789\"");
  const auto colon = line.substr(0, start).find_last_of(":=");
  return colon == std::string_view::npos ? line : line.substr(colon + 1);
}

/// Whether `list`, "8000", "(7200,8000)" or "(7200-11025)", has `value`.
bool Has(std::string_view list, int value) {
  while (!list.empty()) {
    const auto end = std::min(list.find_first_of("(),"), list.size());
    const auto item = list.substr(0, end);
    const auto dash = item.find('-');
    const auto low = WholeNumber<int>(item.substr(0, dash));
    const auto high = dash == std::string_view::npos ? low : WholeNumber<int>(item.substr(dash + 1));
    if (low && high && *low <= value && value <= *high) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

bool IsRates(const std::string& field) {
  return std::ranges::any_of(kRates, [&field](int rate) { return Has(field, rate); });
}

/// In upper case, letters and digits only: "u-law" and "ULAW" are the same.
std::string Plain(const std::string& name) {
  std::string plain;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == 0xB5) plain += 'U';  // the Greek letter of mu-law, ISO 8859-1
    if (byte < 0x80 && std::isalnum(byte) != 0) plain += static_cast<char>(std::toupper(byte));
  }
  return plain;
}

/// The bits of a sample, from their own field or else from the name; 0: not given.
int BitsOf(const Fields& fields, std::size_t rates, const std::string& name) {
  if (rates > 2) return WholeNumber<int>(fields[2]).value_or(0);
  return name.find("16BIT") != std::string::npos ? 16 : name.find("8BIT") != std::string::npos ? 8 : 0;
}

std::optional<SampleKind> KindOf(const std::string& name, int bits) {
  const auto says = [&name](const char* word) { return name.find(word) != std::string::npos; };
  if (says("ADPCM")) return std::nullopt;
  if (says("ULAW") || says("G711U"))
    return bits == 8 || bits == 0 ? std::optional(SampleKind::MuLaw) : std::nullopt;
  if (says("LAW") || (!says("LINEAR") && !says("PCM"))) return std::nullopt;
  const bool is_unsigned = says("UNSIGNED");
  if (bits == 16 && !is_unsigned) return SampleKind::Linear16;
  if (bits == 8 && (is_unsigned || (says("LINEAR") && !says("SIGNED")))) return SampleKind::Unsigned8;
  return std::nullopt;
}

/// The formats in one line of the answer.
std::vector<VoiceFormat> FormatsIn(const std::string& line) {
  const auto fields = FieldsOf(WithoutPrefix(line));
  if (fields.size() < 3 || !WholeNumber<int>(fields[0])) return {};
  const auto rates = std::find_if(fields.begin() + 2, fields.end(), IsRates);
  if (rates == fields.end()) return {};
  const auto name = Plain(fields[1]);
  const auto kind = KindOf(name, BitsOf(fields, static_cast<std::size_t>(rates - fields.begin()), name));
  if (!kind) return {};
  std::vector<VoiceFormat> formats;
  for (const int rate : kRates) {
    if (!Has(*rates, rate)) continue;
    std::string setting = fields[0] + ',' + std::to_string(rate);
    const auto more = std::min<std::ptrdiff_t>(fields.end() - rates - 1, kSilenceFields);
    for (std::ptrdiff_t i = 0; i < more; ++i) setting += ",0";
    formats.push_back({*kind, rate, setting});
  }
  return formats;
}

/// The numbers with the same meaning on every modem (ITU-T V.253: 1 and 4; the vendors agree on 128).
std::optional<SampleKind> KindOfNumber(int number) {
  switch (number) {
    case 1:
    case 128: return SampleKind::Unsigned8;
    case 4: return SampleKind::MuLaw;
    default: return std::nullopt;
  }
}

std::optional<VoiceFormat> FormatOfNumbers(const std::string& line) {
  const auto fields = FieldsOf(WithoutPrefix(line));
  if (fields.size() < 2) return std::nullopt;
  const auto kind = KindOfNumber(WholeNumber<int>(fields[0]).value_or(-1));
  const int rate = WholeNumber<int>(fields[1]).value_or(0);
  if (!kind || std::ranges::find(kRates, rate) == kRates.end()) return std::nullopt;
  std::string setting = fields[0];
  for (std::size_t i = 1; i < fields.size(); ++i) setting += ',' + fields[i];
  return VoiceFormat{*kind, rate, setting};
}

}  // namespace

std::vector<VoiceFormat> OfferedFormats(std::span<const std::string> answer) {
  std::vector<VoiceFormat> formats;
  for (const std::string& line : answer) {
    for (auto& format : FormatsIn(line)) formats.push_back(std::move(format));
  }
  const auto rank = [](const VoiceFormat& format) {
    return std::pair(format.kind, std::ranges::find(kRates, format.rate));
  };
  std::ranges::stable_sort(formats, {}, rank);
  return formats;
}

std::vector<VoiceFormat> UsualFormats() {
  return {{SampleKind::Unsigned8, 8000, "1,8000"},
          {SampleKind::Unsigned8, 8000, "1,8000,0,0"},
          {SampleKind::Unsigned8, 8000, "128,8000"}};
}

std::vector<VoiceFormat> PresentFormat(std::span<const std::string> answer) {
  auto formats = OfferedFormats(answer);
  if (!formats.empty()) return {formats.front()};
  for (const std::string& line : answer) {
    if (auto format = FormatOfNumbers(line)) return {*format};
  }
  return {};
}

}  // namespace orven
