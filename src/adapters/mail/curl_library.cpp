// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/curl_library.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace orven {
namespace {

/// The shared library's name in every libcurl since 7.16.
constexpr const char* kName = "libcurl.so.4";

std::runtime_error Failure() {
  return std::runtime_error(std::string("mail cannot be sent: ") + dlerror());
}

/// Never unloaded: it may have threads that resolve names.
void* Load() {
  void* library = dlopen(kName, RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) throw Failure();
  return library;
}

}  // namespace

CurlLibrary::CurlLibrary() {
  void* const library = Load();
  const auto find = [library]<class Function>(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(dlsym(library, name));
    if (function == nullptr) throw Failure();
  };
  find(easy_init, "curl_easy_init");
  find(easy_cleanup, "curl_easy_cleanup");
  find(easy_setopt, "curl_easy_setopt");
  find(easy_getinfo, "curl_easy_getinfo");
  find(easy_perform, "curl_easy_perform");
  find(easy_strerror, "curl_easy_strerror");
  find(slist_append, "curl_slist_append");
  find(slist_free_all, "curl_slist_free_all");
  find(mime_init, "curl_mime_init");
  find(mime_free, "curl_mime_free");
  find(mime_addpart, "curl_mime_addpart");
  find(mime_data, "curl_mime_data");
  find(mime_data_cb, "curl_mime_data_cb");
  find(mime_type, "curl_mime_type");
  find(mime_encoder, "curl_mime_encoder");
  find(mime_headers, "curl_mime_headers");
  decltype(curl_global_init)* global_init = nullptr;
  find(global_init, "curl_global_init");
  if (const CURLcode code = global_init(CURL_GLOBAL_DEFAULT); code != CURLE_OK) {
    throw std::runtime_error(easy_strerror(code));
  }
}

const CurlLibrary& Curl() {
  static const CurlLibrary library;
  return library;
}

}  // namespace orven
