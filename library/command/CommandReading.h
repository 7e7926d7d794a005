// What a GET DATA command says, as the component's own parser reads it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "library/command/CommandText.h"

namespace library {

// `tokens` are those behind GET DATA /TYPE=TXT /, read from `source`. Of a variable whose type is
// found, the format is AUTO. False when the parser refuses the command; *error is then its message
// (host text). Takes no file in hand. Host's thread.
bool ReadCommand(const std::vector<embedded::CommandToken>& tokens, std::string_view source,
                 CommandSettings* settings, std::string* error);

}  // namespace library
