#include "cli/wizard/worker/Decodings.h"

#include <algorithm>
#include <deque>
#include <set>
#include <string>
#include <string_view>

#include "cli/wizard/WizardServer.h"
#include "library/input/InputFiles.h"
#include "library/sniff/SampleBytes.h"
#include "library/sniff/SampleText.h"

namespace cli {
namespace {

using nlohmann::json;

constexpr std::size_t kMostEncodings = 12;
constexpr std::size_t kLines = 4;
constexpr std::size_t kMostText = 200;

std::string Shortened(std::string_view text) {
  if (text.size() <= kMostText) return std::string(text);
  std::size_t end = kMostText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return std::string(text.substr(0, end)) + "…";
}

}  // namespace

json Decodings(const json& body) {
  library::InputFiles files;
  const library::InputFiles::Input& input = files.Open(body.at("path"));
  std::string problem = input.problem;
  const auto source = problem.empty() ? library::FileSource::Open(input.path, &problem) : nullptr;
  library::SampleBytes bytes;
  if (source == nullptr || !bytes.Read(*source, &problem)) {
    throw RequestRefused("The file cannot be read: " + problem);
  }
  struct Decoded {
    std::string encoding;
    library::SampleText text;
  };
  // Each holds views of itself.
  std::deque<Decoded> all;
  for (const auto& name : body.at("encodings")) {
    if (all.size() == kMostEncodings) break;
    Decoded& one = all.emplace_back();
    one.encoding = name.get<std::string>();
    if (!one.text.Decode(bytes, one.encoding, 0)) all.pop_back();
  }
  // The lines that tell the encodings apart.
  std::set<std::size_t> lines;
  if (all.empty()) return {{"encodings", json::array()}};
  for (std::size_t i = 1; i < all.size(); ++i) {
    const auto& one = all.front().text.head();
    const auto& other = all[i].text.head();
    std::size_t told = 0;
    for (std::size_t line = 0; line < std::min(one.size(), other.size()) && told < kLines; ++line) {
      if (one[line] == other[line]) continue;
      lines.insert(line);
      ++told;
    }
  }
  for (std::size_t line = 0; lines.size() < 2; ++line) lines.insert(line);
  json answer = json::array();
  for (const Decoded& one : all) {
    json texts = json::array();
    for (const std::size_t line : lines) {
      if (line < one.text.head().size() && texts.size() < kLines) {
        texts.push_back(Shortened(one.text.head()[line]));
      }
    }
    answer.push_back({{"encoding", one.encoding}, {"lines", texts}});
  }
  return {{"encodings", answer}};
}

}  // namespace cli
