// The problems of an import, as the page leafs through them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/wizard/Job.h"

namespace cli {

// Reads a file of problems (JSON Lines), which it removes in the end together with its folder. Rows
// stay in the file; of each its place and its variable are kept.
class ProblemRows : public JobResult {
 public:
  // `folder` holds nothing else that is wanted. A file that is not there has no rows.
  ProblemRows(std::string folder, const std::string& file);
  ~ProblemRows() override;
  ProblemRows(const ProblemRows&) = delete;
  ProblemRows& operator=(const ProblemRows&) = delete;

  // "problems": `variable` (empty: all), `offset`, `count`; gives `problems` and `all`, the number
  // of rows of that variable.
  std::optional<nlohmann::json> Answer(std::string_view name,
                                       const nlohmann::json& question) const override;

 private:
  struct Row {
    std::int64_t begin;
    std::uint32_t bytes;
    std::uint32_t variable;
  };

  const std::string folder_;
  const std::string path_;
  std::vector<std::string> variables_;
  std::vector<Row> rows_;
};

}  // namespace cli
