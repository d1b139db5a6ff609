// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orven {

/// Marks a text in a table for the translators. It is translated where it is shown.
constexpr const char* Tr(const char* english) {
  return english;
}

/// A text for people, written in English: `Words("Answers after %1 rings").Arg(4)`. A window shows it in the
/// language of its desktop; logs, files and standard error have it in English.
class Words {
 public:
  Words() = default;

  /// A literal, which translators find here. "%1" to "%9" are the places of the arguments.
  Words(const char* english) : text_(english), literal_(true) {}  // NOLINT(google-explicit-constructor)

  /// A name, a number or a text from elsewhere: the same in all languages.
  Words(std::string text) : text_(std::move(text)) {}  // NOLINT(google-explicit-constructor)

  /// Fills the next place, "%1" first.
  Words&& Arg(Words value) &&;
  Words&& Arg(std::int64_t value) &&;

  std::string English() const;
  bool Empty() const { return text_.empty(); }

  // What a translation is made from.
  bool IsLiteral() const { return literal_; }
  const std::string& Text() const { return text_; }  ///< as written, with the places
  const std::vector<Words>& Arguments() const { return arguments_; }

  bool operator==(const Words& other) const = default;

 private:
  std::string text_;
  bool literal_ = false;
  std::vector<Words> arguments_;
};

/// What shows texts to a person: the text in his language. User-interface thread.
using Translation = std::function<std::string(const Words&)>;

/// `text` with each place "%1" to "%9" replaced by that argument; a place without one stays.
std::string WithArguments(std::string_view text, const std::vector<std::string>& arguments);

}  // namespace orven
