#include "library/outputs/TextSink.h"

#include <utility>

namespace library {

// The text of a batch, in memory that goes from batch to batch.
class TextSink::Part : public CasePart {
 public:
  TextBlock text;
};

TextSink::TextSink(std::unique_ptr<CaseWriter> writer, std::size_t cells, ByteSink& out)
    : writer_(std::move(writer)), cells_(cells), out_(out) {
  TextBlock header;
  writer_->WriteHeader(header);
  out_.Append(header.view());
}

TextSink::~TextSink() = default;

std::unique_ptr<CasePart> TextSink::Make(const OBS* cases, std::size_t count,
                                         std::int64_t /*firstCase*/) const {
  std::unique_ptr<Part> part;
  {
    const sfGuard guard(mutex_);
    if (!idle_.empty()) {
      part = std::move(idle_.back());
      idle_.pop_back();
    }
  }
  if (part == nullptr) part = std::make_unique<Part>();
  Utf8Converter hostText;
  for (std::size_t i = 0; i < count; ++i) {
    writer_->WriteCase(cases + i * cells_, hostText, part->text);
  }
  return part;
}

void TextSink::Take(std::unique_ptr<CasePart> part) {
  std::unique_ptr<Part> text(static_cast<Part*>(part.release()));
  out_.Append(text->text.view());
  text->text.Clear();
  const sfGuard guard(mutex_);
  idle_.push_back(std::move(text));
}

}  // namespace library
