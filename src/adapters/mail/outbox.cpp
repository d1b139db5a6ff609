// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/outbox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <span>
#include <variant>

#include "base/conversions.h"
#include "base/durable_file.h"
#include "base/text.h"

namespace orven {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFirstLine = "ORVEN mail 2\n";
/// Written before mails had a text and were tried again: without these lines.
constexpr std::string_view kOlderFirstLine = "ORVEN mail 1\n";
constexpr std::size_t kOlderLines = 8;
constexpr std::string_view kLastLine = "end\n";

struct Line {
  std::string_view label;
  std::variant<std::string Envelope::*, std::int64_t Envelope::*> field;
};

constexpr std::array<Line, 12> kLines{{
    {"message-id=", &Envelope::message_id},
    {"date=", &Envelope::date},
    {"server=", &Envelope::server},
    {"sender=", &Envelope::sender},
    {"sender-name=", &Envelope::sender_name},
    {"recipient=", &Envelope::recipient},
    {"subject=", &Envelope::subject},
    {"attachment=", &Envelope::attachment},
    {"text=", &Envelope::text},
    {"tries=", &Envelope::tries},
    {"first-try=", &Envelope::first_try},
    {"problem=", &Envelope::problem},
}};

/// Values keep their bytes, except those that could end a line and the escape itself.
bool IsKept(unsigned char byte) {
  return byte >= 0x20 && byte != '%';
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

std::string ValueText(const Envelope& envelope, const Line& line) {
  if (const auto* text = std::get_if<0>(&line.field)) return envelope.**text;
  return std::to_string(envelope.*std::get<1>(line.field));
}

/// False when the field cannot hold the value.
bool Store(Envelope& envelope, const Line& line, std::string value) {
  if (const auto* text = std::get_if<0>(&line.field)) {
    envelope.** text = std::move(value);
    return true;
  }
  const auto number = WholeNumber<std::int64_t>(value);
  envelope.*std::get<1>(line.field) = number.value_or(0);
  return number.has_value();
}

constexpr std::string_view kWaiting = ".mail";
constexpr std::string_view kFailed = ".failed";
constexpr std::size_t kDigits = 9;
/// Readable by this user alone.
constexpr unsigned kMode = 0600;
/// A larger file is not an envelope.
constexpr std::size_t kLargest = 1 << 20;

/// The number in a file's name with this ending, for example 7 in "000000007.mail"; 0 for other files.
unsigned NumberOf(const std::string& name, std::string_view ending) {
  if (name.size() != kDigits + ending.size() || !name.ends_with(ending)) return 0;
  return WholeNumber<unsigned>(std::string_view(name).substr(0, kDigits)).value_or(0);
}

unsigned Newest(const std::vector<std::string>& paths, std::string_view ending) {
  return paths.empty() ? 0 : NumberOf(fs::path(paths.back()).filename().string(), ending);
}

std::string NameOf(unsigned number) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "%09u%s", number, kWaiting.data());
  return name.data();
}

/// The hard link of the attached file, next to the mail in `path`.
std::string LinkOf(const std::string& path) {
  return fs::path(path).replace_extension(".sound").string();
}

/// A link that a crash left behind is replaced.
void LinkAttachment(const std::string& attachment, const std::string& path) {
  const std::string name = LinkOf(path);
  ::unlink(name.c_str());
  if (!attachment.empty()) (void)::link(attachment.c_str(), name.c_str());
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
    text.append(line.label).append(PercentEncoded(ValueText(envelope, line), IsKept)).append("\n");
  }
  return text + std::string(kLastLine);
}

std::optional<Envelope> ParseEnvelope(std::string_view text) {
  Envelope envelope;
  const bool older = Take(text, kOlderFirstLine);
  if (!older && !Take(text, kFirstLine)) return {};
  for (const Line& line : std::span(kLines).first(older ? kOlderLines : kLines.size())) {
    if (!Take(text, line.label)) return {};
    const std::size_t end = text.find('\n');
    if (end == text.npos) return {};
    auto value = PercentDecoded(text.substr(0, end));
    if (!value || !Store(envelope, line, *std::move(value))) return {};
    text.remove_prefix(end + 1);
  }
  if (text != kLastLine) return {};
  return envelope;
}

std::string Outbox::Keep(const Envelope& envelope) {
  if (::mkdir(folder_.c_str(), 0700) != 0 && errno != EEXIST) throw FileFailure(errno, folder_);
  last_ = std::max({last_, Newest(Waiting(), kWaiting), Newest(Failed(), kFailed)}) + 1;
  std::string path = (fs::path(folder_) / NameOf(last_)).string();
  LinkAttachment(envelope.attachment, path);
  try {
    CreateFile(path, EnvelopeText(envelope), kMode);
  } catch (...) {
    ::unlink(LinkOf(path).c_str());
    throw;
  }
  return path;
}

std::string Outbox::SourceOf(const std::string& attachment, const std::string& path) {
  if (attachment.empty() || path.empty()) return attachment;
  std::string name = LinkOf(path);
  std::error_code error;
  return fs::exists(name, error) ? name : attachment;
}

std::vector<std::string> Outbox::Waiting() const {
  return Mails(kWaiting);
}

std::vector<std::string> Outbox::Failed() const {
  return Mails(kFailed);
}

std::vector<std::string> Outbox::Mails(std::string_view ending) const {
  std::vector<std::string> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder_, error), end; !error && entry != end; entry.increment(error)) {
    if (NumberOf(entry->path().filename().string(), ending) != 0) paths.push_back(entry->path().string());
  }
  if (error && error != std::errc::no_such_file_or_directory) throw FileFailure(error.value(), folder_);
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::optional<Envelope> Outbox::Read(const std::string& path) {
  Descriptor file(path, O_RDONLY);
  std::string text;
  for (std::string block = file.Read(); !block.empty() && text.size() <= kLargest; block = file.Read()) {
    text += block;
  }
  return ParseEnvelope(text);
}

void Outbox::Update(const std::string& path, const Envelope& envelope) {
  ReplaceFile(path, EnvelopeText(envelope), kMode);
}

std::string Outbox::Fail(const std::string& path) {
  std::string failed = fs::path(path).replace_extension(kFailed).string();
  if (!RenameKeeping(path, failed)) throw FileFailure(EXDEV, path);
  return failed;
}

void Outbox::Acknowledge(const std::string& path) {
  if (!RenameKeeping(path, NameToSetAside(path, "seen"))) throw FileFailure(EXDEV, path);
  ::unlink(LinkOf(path).c_str());
}

std::string Outbox::SetAside(const std::string& path) {
  std::string aside = NameToSetAside(path, "damaged");
  if (!RenameKeeping(path, aside)) throw FileFailure(EXDEV, path);
  return aside;
}

void Outbox::Remove(const std::string& path) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) throw FileFailure(errno, path);
  ::unlink(LinkOf(path).c_str());
  Descriptor(fs::path(path).parent_path().string(), O_RDONLY | O_DIRECTORY).Sync();
}

}  // namespace orven
