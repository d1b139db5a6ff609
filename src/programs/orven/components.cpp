// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/components.h"

#include <curl/curlver.h>
#include <pulse/version.h>
#include <samplerate.h>
#include <sndfile.h>
#include <sqlite3.h>

#include <QtGlobal>
#include <algorithm>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {
namespace {

/// The number in "libsndfile-1.2.0" and "libsamplerate-0.2.2 (c) …".
std::string NumberIn(const std::string& text) {
  const auto begin = std::min(text.find_first_of("0123456789"), text.size());
  return text.substr(begin, text.find(' ', begin) - begin);
}

}  // namespace

std::vector<Component> ProgramComponents() {
  return {
      {"Qt", qVersion(), "LGPL-3.0-only", "windows, sound cards"},
      {"libre", sys_libre_version_get(), "BSD-3-Clause", "the telephone line (SIP)"},
      {"OpenSSL", ORVEN_OPENSSL_VERSION, "Apache-2.0", "encrypted calls and mail"},
      {"spandsp", ORVEN_SPANDSP_VERSION, "LGPL-2.1-only", "touch tones"},
      {"libsndfile", NumberIn(sf_version_string()), "LGPL-2.1-or-later", "sound files"},
      {"libsamplerate", NumberIn(src_get_version()), "BSD-2-Clause", "sound files at another rate"},
      {"SQLite", sqlite3_libversion(), "public domain", "the records of calls"},
      {"libcurl", LIBCURL_VERSION, "curl", "mail"},
      {"PulseAudio client", pa_get_library_version(), "LGPL-2.1-or-later", "the default sound card"},
      {"eSpeak NG", ORVEN_ESPEAK_VERSION, "GPL-3.0-or-later", "typed greetings (helper TTS)"},
      {"GLib", ORVEN_GLIB_VERSION, "LGPL-2.1-or-later", "the start at login"},
      {"Breeze icons", "", "LGPL-3.0-or-later", "pictures of the commands"},
  };
}

}  // namespace orven
