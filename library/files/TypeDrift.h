// Finds the files whose values are not of the type that a column has in most files.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "library/files/Drift.h"
#include "library/import/BareColumns.h"

namespace library {

// Keeps of each file and column no more than the first value of each way of reading. One thread.
class TypeDrift {
 public:
  // What is known of a column of a file, whose own type would be `format`. Lines are the file's.
  void Add(std::size_t file, std::size_t column, const ColumnEvidence& evidence,
           const ChosenFormat& format);
  // Columns are these of the former ones, in this order.
  void Reorder(const std::vector<std::size_t>& order);
  // The file has the other decimal character than the data set.
  void SwapDecimals(std::size_t file);
  // Makes a file's text what it is for people (UTF-8).
  using Restore = std::function<std::string(std::size_t file, const std::string& text)>;
  // Tells the files that have values which the type of most cannot read.
  void Tell(const std::vector<BareColumn>& columns, DecimalCharacter decimal,
            const Restore& restore, std::vector<Drift>* drift) const;

 private:
  struct Seen {
    std::size_t file;
    ChosenFormat format;
    std::vector<ColumnEvidence::Group> groups;
  };

  void TellColumn(const BareColumn& column, const std::vector<Seen>& seen, DecimalCharacter decimal,
                  const Restore& restore, std::vector<Drift>* drift) const;

  // By column.
  std::vector<std::vector<Seen>> seen_;
};

}  // namespace library
