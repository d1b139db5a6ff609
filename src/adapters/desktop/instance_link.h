// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalServer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

class QLocalSocket;

namespace orven {

class LinkFolder;

/// What the running program answers to another process.
struct LinkAnswer {
  int code = 0;  ///< an exit code
  std::string text;
};

/// The end of the running program: other processes of this user can ask it, over the local socket `.link` in
/// the application folder, beside the lock `.lock`. A killed program leaves the socket behind; the next one
/// that holds the lock replaces it. Needs a QCoreApplication; user-interface thread.
class InstanceLink {
 public:
  /// To be called once, now or later, even when the asking process or this link is gone.
  using Answer = std::function<void(const LinkAnswer& answer)>;
  /// `argument` is the rest of the request's line; it comes from another process.
  using Handler = std::function<void(const std::string& argument, Answer answer)>;

  explicit InstanceLink(std::string application_folder);
  ~InstanceLink();
  InstanceLink(const InstanceLink&) = delete;
  InstanceLink& operator=(const InstanceLink&) = delete;

  /// Answers requests of this name, a word. Others end without an answer.
  void On(const std::string& request, Handler handler) { handlers_[request] = std::move(handler); }

  /// Opens the socket; this process holds the lock. Returns why it cannot, one sentence with the file's name,
  /// else an empty text: the program then works without the link.
  std::string Open();

 private:
  void Accept();
  void Read(QLocalSocket& socket);

  const std::string path_;
  std::map<std::string, Handler> handlers_;
  std::unique_ptr<LinkFolder>
      folder_;  ///< open while the server listens, which removes the socket at its end
  QLocalServer server_;
};

/// Asks the program that runs in `application_folder`: `request` is a word, perhaps followed by a blank and
/// an argument without line ends. Blocks until the answer is complete, for at most `limit`. Nothing when no
/// program of this user answers.
std::optional<LinkAnswer> AskRunningProgram(const std::string& application_folder, const std::string& request,
                                            std::chrono::milliseconds limit);

}  // namespace orven
