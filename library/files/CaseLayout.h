// Where the values of one source's cases lie in the cases of another.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

// Any thread.
class CaseLayout {
 public:
  // `variables`: of each variable of `from` that of `to`, which is of the same kind and at least as
  // wide. The
  // other variables of `to` are missing, but for the last one where there is a `lastText` for it
  // (host text; null for none).
  CaseLayout(const QANT_DataSource& from, const QANT_DataSource& to,
             const std::vector<std::size_t>& variables, const std::string* lastText);

  // Cases are the same to both.
  bool isSame() const { return same_; }
  std::size_t cells() const { return blank_.size(); }
  // Makes `count` cases of one those of the other, cells() cells each.
  void Copy(const OBS* from, std::size_t count, OBS* to) const;

 private:
  // Cells that follow one another in both.
  struct Run {
    std::size_t from;
    std::size_t to;
    std::size_t cells;
  };

  std::size_t fromCells_;
  std::vector<Run> runs_;
  // A case without the values of the other source.
  std::vector<OBS> blank_;
  bool same_ = false;
};

}  // namespace library
