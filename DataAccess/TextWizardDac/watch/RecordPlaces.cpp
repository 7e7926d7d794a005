#include "watch/RecordPlaces.h"

namespace textwizard {

void RecordPlaces::Clear() {
  segments_.clear();
  nuls_.clear();
  raw_.clear();
}

void RecordPlaces::AddRecord(std::size_t text, const RecordPlace& place, const NulRuns& nuls,
                             std::string_view raw) {
  nuls_.insert(nuls_.end(), nuls.begin(), nuls.end());
  raw_.append(raw);
  segments_.push_back({text, false, place, nuls_.size(), raw_.size()});
}

void RecordPlaces::AddRun(std::size_t text, std::int64_t begin, std::int64_t line) {
  RecordPlace place;
  place.begin = begin;
  place.line = line;
  segments_.push_back({text, true, place, nuls_.size(), raw_.size()});
}

void PlaceWalk::Start(const RecordPlaces& places, std::string_view text) {
  *this = PlaceWalk();
  places_ = &places;
  text_ = text;
}

bool PlaceWalk::StepOver(std::size_t at, std::size_t end, std::uint32_t lineEndBytes) {
  if (at >= nextSegment_) EnterSegment();
  if (runEnd_ == 0) {
    place_.line = line_ + runLines_;
    return false;
  }
  if (at != lineStart_) SkipEmptyLines(at);
  recordStart_ = at;
  lineStart_ = end + lineEndBytes;
  place_.lineEndBytes = lineEndBytes;
  ++runLines_;
  return false;
}

const RecordPlace& PlaceWalk::place() {
  if (runEnd_ != 0) {
    place_.line = line_ + runLines_ - 1;
    place_.begin = runShift_ + static_cast<std::int64_t>(recordStart_);
    place_.end = end();
  }
  return place_;
}

void PlaceWalk::EnterSegment() {
  const RecordPlaces::Segment& segment = places_->segments_[segment_++];
  nextSegment_ =
      segment_ < places_->segments_.size() ? places_->segments_[segment_].text : text_.size();
  nulsBegin_ = nulsEnd_;
  nulsEnd_ = segment.nulsEnd;
  rawBegin_ = rawEnd_;
  rawEnd_ = segment.rawEnd;
  place_ = segment.place;
  line_ = place_.line;
  runEnd_ = segment.isRun ? nextSegment_ : 0;
  runShift_ = place_.begin - static_cast<std::int64_t>(segment.text);
  lineStart_ = segment.text;
}

void PlaceWalk::SkipEmptyLines(std::size_t at) {
  char before = '\0';
  for (const char ch : text_.substr(lineStart_, at - lineStart_)) {
    if (ch == '\r' || before != '\r') ++runLines_;
    before = ch;
  }
}

}  // namespace textwizard
