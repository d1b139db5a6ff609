// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// An open stream to or from one sound device. It is open from the beginning until Close; the destructor
/// lets the thread's events run. Sound thread; every call may wait for the sound server.
class CardStream {
 public:
  virtual ~CardStream() = default;

  /// Moves what can be moved; to be called every 20 ms. False when there is nothing left to do, or there
  /// is a Problem.
  virtual bool Tick() = 0;

  virtual void Close() = 0;

  /// Why the stream does not go (on), as a sentence; empty while it does.
  virtual const std::string& Problem() const = 0;

  /// Ends the play or take, because of the Problem. False when it was over already.
  virtual bool Fail() = 0;
};

}  // namespace orven
