// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/words.h"

namespace orven {

/// The classic run-time error numbers that users know from the log files.
enum class ErrorNumber : std::int32_t {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  InternalError = 51,
  FileNotFound = 53,
  DeviceIoError = 57,
  FileAlreadyExists = 58,
  DiskFull = 61,
  PermissionDenied = 70,
  PathAccessError = 75,
  PathNotFound = 76,
};

/// The description that belongs to a number, for example "Type mismatch" for 13.
constexpr const char* DescriptionOf(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::InvalidProcedureCall: return Tr("Invalid procedure call or argument");
    case ErrorNumber::Overflow: return Tr("Overflow");
    case ErrorNumber::OutOfMemory: return Tr("Out of memory");
    case ErrorNumber::SubscriptOutOfRange: return Tr("Subscript out of range");
    case ErrorNumber::DivisionByZero: return Tr("Division by zero");
    case ErrorNumber::TypeMismatch: return Tr("Type mismatch");
    case ErrorNumber::InternalError: return Tr("Internal error");
    case ErrorNumber::FileNotFound: return Tr("File not found");
    case ErrorNumber::DeviceIoError: return Tr("Device I/O error");
    case ErrorNumber::FileAlreadyExists: return Tr("File already exists");
    case ErrorNumber::DiskFull: return Tr("Disk full");
    case ErrorNumber::PermissionDenied: return Tr("Permission denied");
    case ErrorNumber::PathAccessError: return Tr("Path/File access error");
    case ErrorNumber::PathNotFound: return Tr("Path not found");
  }
  return Tr("Internal error");
}

/// Between the description and the detail of a failed statement.
inline constexpr std::string_view kBeforeDetail = ": ";

/// A failed statement: a number and the text for the log. Ports throw it where their contract says so; the
/// error trap of the running routine turns it into one log line.
class RuntimeError : public std::runtime_error {
 public:
  explicit RuntimeError(ErrorNumber number) : std::runtime_error(DescriptionOf(number)), number_(number) {}

  /// `detail` names what is wrong and where; it follows the description after ": ".
  RuntimeError(ErrorNumber number, const std::string& detail)
      : std::runtime_error(std::string(DescriptionOf(number)).append(kBeforeDetail) + detail),
        number_(number) {}

  std::int32_t Number() const { return static_cast<std::int32_t>(number_); }

 private:
  ErrorNumber number_;
};

/// What failed, for people: in English it is what().
Words ReasonOf(const std::exception& failure);
Words ReasonOf(const std::exception_ptr& failure);

}  // namespace orven
