#include "library/sniff/SampleTable.h"

#include "detection/BlankTrim.h"

namespace library {

std::size_t SampleTable::Add(const SampleRecord& record, std::size_t region) {
  cutter_.Cut(record.text, &fields_);
  rows_.push_back({region, record.line, record.lines, cells_.size(), fields_.size()});
  for (const RecordCutter::Field& field : fields_) {
    std::string_view text = textwizard::TrimRight(textwizard::TrimLeft(field.text));
    const bool isView = text.empty() || (text.data() >= record.text.data() &&
                                         text.data() < record.text.data() + record.text.size());
    if (!isView) {
      texts_.push_back(std::make_unique<std::string>(text));
      text = *texts_.back();
    }
    cells_.push_back({text, kinds_.Of(text), field.qualified});
  }
  return fields_.size();
}

void SampleTable::AddUncut(const SampleRecord& record, std::size_t region) {
  rows_.push_back({region, record.line, record.lines, cells_.size(), 1});
  const std::string_view text = textwizard::TrimRight(textwizard::TrimLeft(record.text));
  cells_.push_back({text, kinds_.Of(text), false});
}

}  // namespace library
