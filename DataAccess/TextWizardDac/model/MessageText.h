// The component's numbered messages and their texts, from the host's catalogue.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/Messages.h"

namespace textwizard {

// Numbers of the catalogue, by what raises them. E: error that ends the command, W: warning.
enum MessageId : std::uint32_t {
  kNoArrangement = 2251,            // E neither delimited nor fixed
  kFixCaseWithDelimited = 2252,     // E
  kDelimitedWithFixed = 2253,       // E DELCASE or DELIMITERS with fixed columns
  kEmptySubcommand = 2254,          // E a slash with nothing after it
  kMissingSubcommand = 2255,        // E
  kBadSubcommand = 2256,            // E no value, unknown, or nothing follows where it must
  kRepeatedSubcommand = 2257,       // E
  kBadArrangement = 2258,           // E
  kBadFirstCase = 2259,             // E
  kBadDelCase = 2260,               // E
  kBadFixCase = 2261,               // E
  kBadImportCase = 2262,            // E
  kNotGetData = 2263,               // E
  kNotTypeText = 2264,              // E
  kBadVariable = 2265,              // E record number, column range or format
  kColumnsCut = 2266,               // W column range wider than the format
  kUnexpectedText = 2267,           // E where a slash or an equals sign is expected
  kNoSubcommandName = 2268,         // E
  kReadFailed = 2269,               // E reading the file or building the dictionary failed
  kVariableCountDiffers = 2270,     // E from the count of DELCASE
  kStringWidthCut = 2271,           // W
  kNameUsed = 2272,                 // E
  kNameCut = 2273,                  // W
  kNumberWidthCut = 2274,           // W
  kQualifierIsDelimiter = 2275,     // E
  kQualifierCut = 2276,             // W
  kNameReserved = 2277,             // E
  kNameInvalid = 2278,              // E
  kUndecodable = 2279,              // W bytes that are no character: case number and position
  kBadEncoding = 2280,              // E
  kUtf8MarkWithLocale = 2281,       // W
  kUtf16MarkWithLocale = 2283,      // W
  kBadLeadingSpaces = 2284,         // E
  kLeadingSpacesNoIgnore = 2286,    // E
  kLeadingSpacesNoEquals = 2287,    // E
  kBadMultipleSpaces = 2288,        // E
  kMultipleSpacesNoIgnore = 2290,   // E
  kMultipleSpacesNoEquals = 2291,   // E
  kNotWithFixed = 2292,             // E LEADINGSPACES, MULTIPLESPACES or MAP with fixed columns
  kDataTypeMinNoPercentage = 2295,  // E
  kDataTypeMinNoEquals = 2296,      // E
  kBadDataTypeMin = 2297,           // E
};

// Warnings in the order in which they arose.
using ErrorTextList = std::vector<ErrorText>;

// The text of message `id` with its token. Where the text has a placeholder for a limit, the limit
// is filled in; where it has one for the token, the token is; any other text is followed by one
// blank and the token. A null token adds nothing.
std::string MessageText(std::uint32_t id, const char* token);
// The warning for bytes at `position` (from 0) of case `caseNumber` (from 1) that are no character.
ErrorText UndecodableWarning(std::int64_t caseNumber, std::size_t position);
// The error that ends a reading pass whose file `fileName` could not be read on.
ErrorText ReadFailedError(const std::string& fileName);
// Sends one line to the log; nothing when the monitor is null.
void ReportLogMessage(ErrorMonitor* monitor, const std::string& text);

}  // namespace textwizard
