// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <curl/curl.h>

namespace orven {

/// The functions of libcurl that a mail needs, by their names without "curl_".
///
/// They are loaded with the first mail, not with the program: libcurl loads sixteen more libraries (Kerberos,
/// LDAP, another TLS …), 3.4 MB of an idle program's resident set.
struct CurlLibrary {
  /// Throws std::runtime_error, whose text says what could not be loaded.
  CurlLibrary();

  decltype(curl_easy_init)* easy_init;
  decltype(curl_easy_cleanup)* easy_cleanup;
  decltype(curl_easy_setopt)* easy_setopt;
  decltype(curl_easy_getinfo)* easy_getinfo;
  decltype(curl_easy_perform)* easy_perform;
  decltype(curl_easy_strerror)* easy_strerror;
  decltype(curl_slist_append)* slist_append;
  decltype(curl_slist_free_all)* slist_free_all;
  decltype(curl_mime_init)* mime_init;
  decltype(curl_mime_free)* mime_free;
  decltype(curl_mime_addpart)* mime_addpart;
  decltype(curl_mime_data)* mime_data;
  decltype(curl_mime_data_cb)* mime_data_cb;
  decltype(curl_mime_type)* mime_type;
  decltype(curl_mime_encoder)* mime_encoder;
  decltype(curl_mime_headers)* mime_headers;
};

/// Loads the library at the first call; throws std::runtime_error when that fails, and tries again the next
/// time. Any thread.
const CurlLibrary& Curl();

}  // namespace orven
