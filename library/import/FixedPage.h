// The code page in which fixed columns count characters.
#pragma once

#include <string>

#include "library/import/BareCut.h"
#include "library/sniff/SniffResult.h"

namespace library {

// Columns are cut by bytes of host text. Where the data holds characters that are several bytes in
// UTF-8, the host has to work in a code page that has each of them in one: it is set in `cut`.
// False when there is none, and columns are counted in bytes then; true also where nothing is
// needed. The host is in UTF-8 mode.
bool ChooseFixedPage(const std::string& path, const SniffResult& sniff, BareCut* cut);

// `text` (UTF-8) as host text. False when the host's page lacks a character of it.
bool HostTextOf(const std::string& text, std::string* hostText);

}  // namespace library
