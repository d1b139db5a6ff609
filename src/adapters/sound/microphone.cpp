// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/microphone.h"

namespace orven {
namespace {

std::string CardOf(const SoundServer& server, const std::string& output) {
  for (const SoundServer::Output& candidate : server.outputs)
    if (candidate.id == output) return candidate.card;
  return {};
}

std::string DefaultMicrophone(const SoundServer& server) {
  const SoundServer::Input* found = nullptr;
  for (const SoundServer::Input& input : server.inputs) {
    if (input.id == server.default_input) return input.id;
    if (found == nullptr && input.connected) found = &input;
  }
  return found == nullptr ? std::string() : found->id;
}

}  // namespace

std::string MicrophoneOf(const SoundServer& server, const std::string& output) {
  const std::string card = CardOf(server, output);
  const SoundServer::Input* found = nullptr;
  for (const SoundServer::Input& input : server.inputs) {
    if (card.empty() || input.card != card || !input.connected) continue;
    if (found == nullptr || input.id == server.default_input) found = &input;
  }
  return found == nullptr ? DefaultMicrophone(server) : found->id;
}

}  // namespace orven
