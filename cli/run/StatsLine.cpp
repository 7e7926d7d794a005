#include "cli/run/StatsLine.h"

#include <nlohmann/json.hpp>

namespace cli {

std::string StatsLine(const library::ImportStats& stats) {
  return nlohmann::ordered_json{{"cases", stats.cases},
                                {"variables", stats.variables},
                                {"bytes", stats.bytes},
                                {"dictionary_seconds", stats.dictionarySeconds},
                                {"read_seconds", stats.readSeconds},
                                {"write_seconds", stats.writeSeconds},
                                {"peak_rss_bytes", library::PeakMemory()},
                                {"threads", stats.threads}}
      .dump();
}

}  // namespace cli
