// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/message.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "adapters/mail/mail_text.h"
#include "base/durable_file.h"

namespace orven {
namespace {

/// RFC 5322, 2.1.1: longer lines need an encoding.
constexpr std::size_t kLongestLine = 998;

void Check(CURLcode code) {
  if (code != CURLE_OK) throw std::runtime_error(Curl().easy_strerror(code));
}

template <class List>
void Append(List& list, const std::string& line) {
  curl_slist* longer = Curl().slist_append(list.get(), line.c_str());
  if (longer == nullptr) throw std::bad_alloc();
  static_cast<void>(list.release());
  list.reset(longer);
}

/// `text` with the line ends of a mail; every line ends with one.
std::string Lines(std::string_view text) {
  std::string lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    lines += OneLine(text.substr(0, length)) + "\r\n";
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return lines;
}

std::size_t ReadAttachment(char* buffer, std::size_t size, std::size_t count, void* attachment) {
  return static_cast<Attachment*>(attachment)->Read({buffer, size * count}).value_or(CURL_READFUNC_ABORT);
}

int SeekAttachment(void* attachment, curl_off_t offset, int origin) {
  const bool done = origin == SEEK_SET && static_cast<Attachment*>(attachment)->Seek(offset);
  return done ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_CANTSEEK;
}

}  // namespace

bool IsAttachable(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) return S_ISREG(status.st_mode);
  return !path.empty() && errno != ENOENT && errno != ENOTDIR;
}

// O_NONBLOCK, so that opening a pipe does not block; it is refused afterwards.
Attachment::Attachment(std::string path, const std::string& source)
    : path_(std::move(path)), file_(source, O_RDONLY | O_NONBLOCK) {
  struct stat status {};
  if (::fstat(file_.Number(), &status) != 0) throw FileFailure(errno, path_);
  if (!S_ISREG(status.st_mode)) throw RuntimeError(ErrorNumber::PathAccessError, path_ + " (not a file)");
  size_ = status.st_size;
}

std::optional<std::size_t> Attachment::Read(std::span<char> buffer) {
  const auto wanted = std::min(static_cast<std::int64_t>(buffer.size()), size_ - position_);
  const ssize_t count = ::pread(file_.Number(), buffer.data(), static_cast<std::size_t>(wanted), position_);
  if (count < 0) {
    failure_ = FileFailure(errno, path_).what();
    return {};
  }
  if (count == 0 && wanted > 0) {
    failure_ = path_ + " became shorter while it was being sent";
    return {};
  }
  position_ += count;
  return static_cast<std::size_t>(count);
}

bool Attachment::Seek(std::int64_t position) {
  if (position < 0 || position > size_) return false;
  position_ = position;
  return true;
}

Message::Message(CURL* curl, const Envelope& envelope, Attachment* attachment)
    : curl_(curl), mime_(Curl().mime_init(curl), Curl().mime_free) {
  if (!mime_) throw std::bad_alloc();
  Append(recipients_, "<" + envelope.recipient + ">");
  Append(fields_, MailboxField("From", envelope.sender_name, envelope.sender));
  Append(fields_, MailboxField("To", "", envelope.recipient));
  Append(fields_, TextField("Subject", envelope.subject));
  Append(fields_, "Date: " + OneLine(envelope.date));
  Append(fields_, "Message-ID: " + OneLine(envelope.message_id));
  Append(fields_, "MIME-Version: 1.0");
  AddText(Lines(envelope.text.empty() ? envelope.subject : envelope.text));
  if (attachment != nullptr) AddAttachment(envelope.attachment, attachment);
}

void Message::AddText(const std::string& text) {
  curl_mimepart* part = Curl().mime_addpart(mime_.get());
  if (part == nullptr) throw std::bad_alloc();
  const bool plain = text.size() <= kLongestLine && std::all_of(text.begin(), text.end(), [](char c) {
                       return static_cast<unsigned char>(c) < 0x80;
                     });
  Check(Curl().mime_data(part, text.data(), text.size()));
  Check(Curl().mime_type(part, "text/plain; charset=utf-8"));
  // With these two encodings, unlike quoted-printable, the size of the mail is known before it is sent.
  Check(Curl().mime_encoder(part, plain ? "7bit" : "base64"));
}

void Message::AddAttachment(const std::string& path, Attachment* attachment) {
  curl_mimepart* part = Curl().mime_addpart(mime_.get());
  if (part == nullptr) throw std::bad_alloc();
  Check(Curl().mime_data_cb(part, attachment->Size(), &ReadAttachment, &SeekAttachment, nullptr, attachment));
  Check(Curl().mime_type(part, "audio/x-wav"));
  Check(Curl().mime_encoder(part, "base64"));
  // Not curl_mime_filename, which writes a name into the field unencoded.
  List own(nullptr, Curl().slist_free_all);
  Append(own, AttachmentField(std::filesystem::path(path).filename().string()));
  Check(Curl().mime_headers(part, own.release(), 1));
}

void Message::Use(const Envelope& envelope) const {
  Check(Curl().easy_setopt(curl_, CURLOPT_MAIL_FROM, ("<" + envelope.sender + ">").c_str()));
  Check(Curl().easy_setopt(curl_, CURLOPT_MAIL_RCPT, recipients_.get()));
  Check(Curl().easy_setopt(curl_, CURLOPT_HTTPHEADER, fields_.get()));
  Check(Curl().easy_setopt(curl_, CURLOPT_MIMEPOST, mime_.get()));
}

}  // namespace orven
