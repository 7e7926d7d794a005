// A data file as the component is shown it, and the way back: what it says of places and texts
// becomes what the file holds.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "library/rewriting/RewritingDevice.h"
#include "library/rewriting/RewritingOptions.h"
#include "model/ImportSettings.h"

namespace library {

// Several may live at the same time, of different paths; of one path the last one counts. Made and
// destroyed on any thread.
class ShownFile {
 public:
  struct Settings {
    // What streams open (host text).
    std::string path;
    // A byte-order mark that the file lacks, to be shown; empty for none.
    std::string mark{};
    RewritingOptions rewriting{};
    // Those to use, where that is known; else they are chosen by reading the whole file.
    std::optional<StandIns> standIns{};
    // How the quotes stand at a place, where that is known: what is before it need not be read.
    std::optional<QuoteAnchor> known{};
    // Reading begins at this shown offset, or a little before it, behind the head of the file: how
    // the quotes stand there is found by trying (GuessQuotes). 0: at the beginning. What is shown
    // is that of the whole file only where it turns out that the records begin where they should.
    std::int64_t guessAt = 0;
  };

  // From now on streams that open the path read the file so, in an import with the settings
  // `import`. Null when the file cannot be read or shown so; *problem is then a sentence (UTF-8).
  static std::unique_ptr<ShownFile> Show(const Settings& settings,
                                         const textwizard::ImportSettings& import,
                                         std::string* problem);
  // Streams read the file itself again.
  ~ShownFile();
  ShownFile(const ShownFile&) = delete;
  ShownFile& operator=(const ShownFile&) = delete;

  // Null where no byte is replaced.
  const StandIns* standIns() const { return index_ ? &index_->rewriter().standIns() : nullptr; }
  // Bytes that the file lacks and is shown with.
  std::int64_t markBytes() const { return static_cast<std::int64_t>(mark_.size()); }
  // Offset in the file of an offset in what is shown.
  std::int64_t FileOffset(std::int64_t shown) const {
    return shown < markBytes() ? 0 : shown - markBytes();
  }
  // The physical line of what stands at shown offset `offset`, in line `line` of what is shown;
  // that in which a shown line begins. Host's thread.
  std::int64_t PhysicalLine(std::int64_t line, std::int64_t offset) const {
    return joined_ ? line + joined_->Before(offset) : line;
  }
  std::int64_t PhysicalLine(std::int64_t line) const {
    return joined_ ? joined_->PhysicalLine(line) : line;
  }
  // How the walk stands in front of a shown offset; as at the beginning of a file where no byte is
  // replaced. False when the file cannot be read.
  bool PositionAt(std::int64_t shown, QuotePosition* position) const;
  // The walk over the whole file: how many lines were joined, and so on. False when it cannot be
  // read.
  bool Totals(QuotePosition* totals) const;

 private:
  ShownFile(std::string path, std::string mark);

  const std::string path_;
  const std::string mark_;
  std::shared_ptr<QuoteIndex> index_;
  std::unique_ptr<JoinedLines> joined_;
};

}  // namespace library
