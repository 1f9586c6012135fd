// SPDX-License-Identifier: MIT
//
// Which web pages the Codex CLI may have the user sent to for a login.
#pragma once

#include <array>
#include <string_view>

namespace vantora {

/// The Codex service's authentication host, login host and web application. A login page
/// elsewhere is not opened; change the list here when the service moves.
inline constexpr std::array<std::string_view, 3> officialLoginHosts{
    "auth.openai.com",
    "login.openai.com",
    "chatgpt.com",
};

/// Whether `url` is an absolute URL (RFC 3986, strictly: no blanks, control characters,
/// backslashes or bytes outside ASCII) with the scheme "https" in lower case, one of
/// officialLoginHosts in any letter case, and neither a user name nor a password. Port,
/// path, query and fragment only have to be well formed.
[[nodiscard]] bool isOfficialLoginURL(std::string_view url);

}  // namespace vantora
