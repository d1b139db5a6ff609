// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Whether `text` may go over the link: UTF-8 of at most DataExchange::kLongestMessage bytes.
bool IsMessage(std::string_view text);

/// `message` as bytes of a stream: its length in bytes as four bytes, the highest first, then itself.
std::string Framed(std::string_view message);

/// Puts messages together again from a stream that arrives in pieces of any size.
class MessageReader {
 public:
  void Add(std::string_view bytes);

  /// The next message that is whole. Nothing while there is none, and for ever once Broken.
  std::optional<std::string> Next();

  /// The stream breaks the rules: a message that is too long or no UTF-8. What came before it has been
  /// given out.
  bool Broken() const { return broken_; }

 private:
  std::optional<std::string> Break();

  std::string bytes_;
  std::size_t read_ = 0;  ///< bytes at the front that have been given out
  bool broken_ = false;
};

}  // namespace orven
