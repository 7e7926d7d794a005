#include "library/sniff/SniffJson.h"

#include <cmath>

namespace library {

const char* NameOf(Arrangement arrangement) {
  return arrangement == Arrangement::kFixed ? "fixed" : "delimited";
}

const char* NameOf(LineEnd lineEnd) {
  switch (lineEnd) {
    case LineEnd::kLf:
      return "lf";
    case LineEnd::kCrLf:
      return "crlf";
    case LineEnd::kCr:
      return "cr";
    case LineEnd::kMixed:
      break;
  }
  return "mixed";
}

const char* NameOf(Escape escape) {
  switch (escape) {
    case Escape::kDouble:
      return "double";
    case Escape::kBackslash:
      return "backslash";
    case Escape::kNone:
      break;
  }
  return "none";
}

const char* NameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::kCertain:
      return "certain";
    case Verdict::kLikely:
      return "likely";
    case Verdict::kGuess:
      break;
  }
  return "guess";
}

const char* NameOf(DecimalCharacter decimal) {
  return decimal == DecimalCharacter::kComma ? "comma" : "point";
}

nlohmann::ordered_json SniffJson(const std::string& file, const SniffResult& result) {
  nlohmann::ordered_json json;
  json["file"] = file;
  json["encoding"] = result.encoding.value;
  json["byte_order_mark"] = result.byteOrderMark;
  json["arrangement"] = NameOf(result.arrangement.value);
  json["line_end"] = NameOf(result.lineEnd.value);
  json["delimiter"] = result.delimiter.value;
  json["qualifier"] = result.qualifier.value;
  json["escape"] = NameOf(result.escape.value);
  json["multiple_blanks"] = result.multipleBlanks;
  json["preamble_lines"] = result.preambleLines;
  json["header_lines"] = result.headerLines.value;
  json["first_data_line"] = result.firstDataLine.value;
  json["last_data_line"] = nullptr;
  if (result.lastDataLine) json["last_data_line"] = *result.lastDataLine;
  json["decimal"] = NameOf(result.decimal.value);
  json["line_breaks_in_quotes"] = {{"count", result.lineBreaksInQuotes.count},
                                   {"first_line", result.lineBreaksInQuotes.firstLine}};
  json["names"] = nlohmann::ordered_json::array();
  json["columns"] = nlohmann::ordered_json::array();
  for (const SniffColumn& column : result.columns) {
    json["names"].push_back(column.name);
    nlohmann::ordered_json one;
    one["name"] = column.name;
    one["label"] = column.label;
    one["format"] = column.format;
    if (result.arrangement.value == Arrangement::kFixed) {
      one["from"] = column.range.from;
      one["to"] = column.range.to;
    }
    json["columns"].push_back(std::move(one));
  }
  nlohmann::ordered_json confidence;
  confidence["verdict"] = NameOf(result.verdict);
  confidence["margin"] = std::round(result.margin * 1000.0) / 1000.0;
  confidence["runner_up"] = nullptr;
  if (result.runnerUp) {
    confidence["runner_up"] = {{"encoding", result.runnerUp->encoding},
                               {"arrangement", NameOf(result.runnerUp->arrangement)},
                               {"delimiter", result.runnerUp->delimiter},
                               {"qualifier", result.runnerUp->qualifier},
                               {"first_data_line", result.runnerUp->firstDataLine}};
  }
  json["confidence"] = std::move(confidence);
  return json;
}

}  // namespace library
