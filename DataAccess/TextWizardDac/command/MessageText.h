// Texts of the component's numbered messages, from the host's catalogue.
#pragma once

#include <cstdint>
#include <string>

#include "HostFramework/Messages.h"

namespace textwizard {

inline constexpr const char* kMessageCatalogue = "lorvane.err";

// Reading the file failed, or building the dictionary did.
inline constexpr int kReadFailed = 2269;
// Bytes that are no character: case number and byte position.
inline constexpr int kUndecodable = 2279;

// The text of message `id`, followed by one blank and `token` unless that is null.
std::string MessageText(int id, const char* token);
// The warning for bytes at `position` (from 0) of case `caseNumber` (from 1) that are no character.
ErrorText UndecodableWarning(std::int64_t caseNumber, std::size_t position);
// The error that ends a reading pass whose file `fileName` could not be read on.
ErrorText ReadFailedError(const std::string& fileName);

}  // namespace textwizard
