// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/tray_icon.h"

#include <cmath>
#include <utility>

#include "base/runtime_error.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kBlinkInterval = 500ms;

// Mouse messages of the shell.
constexpr long kLeftButtonUp = 514;   // WM_LBUTTONUP
constexpr long kRightButtonUp = 517;  // WM_RBUTTONUP

/// The tip as a field of fixed size that ends in NUL.
std::string TipField(std::string text) {
  text.resize(NotifyIconData::kTipCharacters - 1);
  text.resize(NotifyIconData::kTipCharacters);
  return text;
}

}  // namespace

TrayIcon::TrayIcon(EventLoop& loop, Shell& shell, SystemLog& log, std::function<std::uintptr_t()> window)
    : shell_(shell),
      log_(log),
      window_(std::move(window)),
      tmrSysTryBlink_(loop.MakeTimer([this] { Blink(); })) {
  record_.tip = TipField("ORVEN");
}

void TrayIcon::MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) {
  record_.text = Words("ORVEN - Calls:%1  New:%2").Arg(total).Arg(new_calls);
  record_.tip = TipField(record_.text.English());
  Send(line_);
}

void TrayIcon::ShowLine(const LineHealth& line) {
  using enum NotifyIconPicture;
  const auto picture = !line.trouble.Empty() ? LineTrouble : line.on ? MainWindow : LineOff;
  if (std::exchange(line_, picture) != picture && !Blinking()) Send(picture);
}

void TrayIcon::StartBlinking() {
  if (!Blinking()) tmrSysTryBlink_->Start(kBlinkInterval);
}

void TrayIcon::StopBlinking() {
  tmrSysTryBlink_->Stop();
}

bool TrayIcon::Blinking() const {
  return tmrSysTryBlink_->Enabled();
}

void TrayIcon::Blink() {
  Send(blink_phase_ ? line_ : NotifyIconPicture::PicSysTryNothing);
  blink_phase_ = !blink_phase_;
}

void TrayIcon::ShowNothing() {
  StopBlinking();
  Send(NotifyIconPicture::PicSysTryNothing);
}

void TrayIcon::Send(NotifyIconPicture picture) {
  try {
    record_.window = window_();
    record_.icon = picture;
    shell_.NotifyIcon(NotifyRequest::Add, record_);
    shell_.NotifyIcon(NotifyRequest::Modify, record_);
  } catch (const std::exception& error) {
    log_.WriteSystem(std::string("ErrMakeSysTryBaloon ") + error.what());
  }
}

void TrayIcon::MouseMove(double x, double twips_per_pixel, const std::function<void()>& restore,
                         const std::function<void()>& pop_up_menu) const {
  const auto message = std::lround(x / twips_per_pixel);
  if (message == kLeftButtonUp) restore();
  if (message == kRightButtonUp) pop_up_menu();
}

}  // namespace orven
