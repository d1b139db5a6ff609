// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "core/activity_log.h"
#include "core/error_trap.h"
#include "core/settings.h"
#include "platform/files.h"
#include "platform/registry.h"

namespace orven {

/// Setting: the folder that messages are being moved to, until the move is complete.
inline constexpr const char* kMoveUnderWay = "MassagesPathNext";

/// The messages folder in use.
struct MessagesFolder {
  std::string path;  ///< what a message's file name directly follows
  std::string note;  ///< for the log and the status bar: why it is not the stored one; empty when it is
};

/// The folder to use when the setting `MassagesPath` is `stored`. It is the application folder's own when the
/// setting is missing or not a full path (it would depend on where the program was started), and when the
/// stored folder does not exist (a copied application folder, an unplugged disk), unless messages are
/// `moving` from it.
MessagesFolder ServingMessagesFolder(const std::string& stored, const SharedOptions& shared,
                                     const Files& files, bool moving);

/// Position and size of the main window in twips, with its state.
struct WindowGeometry {
  std::int32_t top = 0, left = 0, width = 0, height = 0;
  std::int16_t state = 0;  ///< 0 normal, 1 minimised, 2 maximised
};

/// The main window as the placement routines see it.
class PlacedWindow {
 public:
  virtual ~PlacedWindow() = default;
  virtual WindowGeometry Geometry() const = 0;
  virtual void Place(const WindowGeometry& geometry) = 0;
};

/// Copies the stored settings into the program's fields and writes single ones back. A value that
/// cannot be converted is logged and its field keeps what it held. User-interface thread.
class SettingsStore {
 public:
  SettingsStore(Registry& registry, SystemLog& log, const Files& files, Settings& settings,
                SharedOptions& shared)
      : registry_(registry), log_(log), files_(files), settings_(settings), shared_(shared) {}

  void GetMainOptions();
  void GetMainAction();
  void GetMainEvents();

  /// Reads what the log viewer and the log properties work with. A value that cannot be converted is skipped
  /// without a log line.
  void GetLogProperties();

  /// Reads the window placement; places the window only when its present state is normal. A stored value that
  /// is not a number leaves that edge of the window unchanged.
  void GetView(PlacedWindow& window);

  /// Saves the window placement, unless the window is hidden, minimised or maximised.
  void SetView(const PlacedWindow& window, bool hidden);

  /// Reads the options that all parts share and chooses the messages folder; runs after GetMainOptions.
  /// `show_ring_count` shows the ring count in the main window's ring box.
  void GetAppOptions(const std::function<void(std::int16_t)>& show_ring_count);

  /// Limits messages to `MaxRec` minutes, under the trap of the running routine. A limit whose seconds do not
  /// fit into 16 bits is logged, and the previous one stays.
  void TakeMaxRec(const ErrorTrap& trap);

  /// Whether the call list shows grid lines; it does until a person switches them off.
  bool GetGridLines();
  void SetGridLines(bool on);

  /// Writes one setting as text.
  void Set(const std::string& name, const std::string& text);

 private:
  void ShareMessagesFolder();
  void Read(unsigned reader, const std::string& label);
  void Read(unsigned reader, const ErrorTrap& trap);
  std::string Value(std::string_view name);

  Registry& registry_;
  SystemLog& log_;
  const Files& files_;
  Settings& settings_;
  SharedOptions& shared_;
};

}  // namespace orven
