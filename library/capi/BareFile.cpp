#include "library/capi/BareFile.h"

#include <memory>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/command/PipeSpools.h"
#include "library/capi/Failure.h"
#include "library/import/HostSettings.h"
#include "library/import/WizardRecords.h"
#include "library/input/FileKind.h"
#include "library/outputs/Utf8Converter.h"
#include "library/sniff/SniffJson.h"
#include "library/sniff/Sniffer.h"

namespace library {
namespace {

std::unique_ptr<HostUse> Utf8Host() {
  std::unique_ptr<HostUse> use = HostUse::ShareUtf8();
  if (use != nullptr) return use;
  throw Failure{.status = TEXTWIZARD_BUSY,
                .text = "another import is being read in a code page, or opened; wait for it"};
}

std::string Dumped(const nlohmann::ordered_json& json) {
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string SniffedFile(const std::string& path, const SniffSettings& settings) {
  const std::unique_ptr<HostUse> host = Utf8Host();
  std::string problem;
  const auto source = FileSource::Open(path, &problem);
  if (source == nullptr) {
    throw Failure{.status = TEXTWIZARD_FILE, .text = path + ": " + problem};
  }
  SniffResult result;
  if (!Sniff(*source, settings, &result, &problem)) throw Failure{.text = path + ": " + problem};
  return Dumped(SniffJson(path, result));
}

std::string PreviewedFile(const std::string& path, const std::string& encoding, std::int64_t first,
                          std::int64_t count) {
  if (first < 1 || count < 0) {
    throw Failure{.status = TEXTWIZARD_USAGE,
                  .text = "records are counted from 1, and how many is not negative"};
  }
  const std::unique_ptr<HostUse> host = Utf8Host();
  embedded::PipeSpools spools;
  const std::string opened = spools.PathOf(path);
  DACErrorResponse error;
  const auto records = WizardRecords::Open(opened, encoding, &error);
  if (records == nullptr) {
    const std::string why = WhyNotOpened(opened);
    throw Failure{.status = TEXTWIZARD_FILE,
                  .text = fmt::format("{}: {}", path,
                                      error.GetCode() == kWizardUnknownEncoding
                                          ? encoding + " is no encoding of the wizard's"
                                      : why.empty() ? "the file cannot be read"
                                                    : why),
                  .number = static_cast<std::int32_t>(error.GetCode())};
  }
  nlohmann::ordered_json json = {{"records", nlohmann::ordered_json::array()}};
  Utf8Converter utf8;
  WizardRecord record;
  for (std::int64_t line = 1; count > 0 && records->Next(&record); ++line) {
    if (line < first) continue;
    json["records"].push_back(
        {{"line", line}, {"text", utf8.ToUtf8(record.text)}, {"cut", record.isCut}});
    --count;
  }
  return Dumped(json);
}

}  // namespace library
