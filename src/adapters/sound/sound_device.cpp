// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_device.h"

#include <QList>
#include <QMediaDevices>

namespace orven {
namespace {

QAudioDevice Among(const QList<QAudioDevice>& devices, const std::string& id) {
  for (const QAudioDevice& device : devices)
    if (device.id().toStdString() == id) return device;
  return {};
}

}  // namespace

QAudioDevice OutputOf(const std::string& id) {
  return Among(QMediaDevices::audioOutputs(), id);
}

QAudioDevice InputOf(const std::string& id) {
  return Among(QMediaDevices::audioInputs(), id);
}

std::string Told(const char* kind, const QAudioDevice& device, const char* what) {
  return std::string("The ") + kind + " \"" + device.description().toStdString() + "\" " + what;
}

}  // namespace orven
