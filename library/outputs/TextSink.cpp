#include "library/outputs/TextSink.h"

#include <utility>

namespace library {
namespace {

class TextPart : public CasePart {
 public:
  TextBlock text;
};

}  // namespace

TextSink::TextSink(std::unique_ptr<CaseWriter> writer, std::size_t cells, ByteSink& out)
    : writer_(std::move(writer)), cells_(cells), out_(out) {
  TextBlock header;
  writer_->WriteHeader(header);
  out_.Append(header.view());
}

std::unique_ptr<CasePart> TextSink::Make(const OBS* cases, std::size_t count,
                                         std::int64_t /*firstCase*/) const {
  auto part = std::make_unique<TextPart>();
  Utf8Converter hostText;
  for (std::size_t i = 0; i < count; ++i) {
    writer_->WriteCase(cases + i * cells_, hostText, part->text);
  }
  return part;
}

void TextSink::Take(std::unique_ptr<CasePart> part) {
  out_.Append(static_cast<const TextPart&>(*part).text.view());
}

}  // namespace library
