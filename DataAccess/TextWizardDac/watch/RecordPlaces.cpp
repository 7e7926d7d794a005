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

void PlaceWalk::EnterSegment() {
  const RecordPlaces::Segment& segment = places_->segments_[segment_++];
  nextSegment_ =
      segment_ < places_->segments_.size() ? places_->segments_[segment_].text : text_.size();
  nulsBegin_ = nulsEnd_;
  nulsEnd_ = segment.nulsEnd;
  rawBegin_ = rawEnd_;
  rawEnd_ = segment.rawEnd;
  inRun_ = segment.isRun;
  segmentText_ = lineStart_ = segment.text;
  place_ = segment.place;
  begin_ = place_.begin;
  line_ = place_.line;
}

void PlaceWalk::SkipEmptyLines(std::size_t at) {
  char before = '\0';
  for (const char ch : text_.substr(lineStart_, at - lineStart_)) {
    if (ch == '\r' || before != '\r') ++runLines_;
    before = ch;
  }
}

}  // namespace textwizard
