#include "HostFramework/DataSource.h"

#include <algorithm>

#include "HostFramework/Formats.h"

namespace {

QANT_Format WithMinimumWidth(int type, int width, int decimals) {
  const DisplayFormat* format = DisplayFormatOf(type);
  const int least = format ? static_cast<int>(format->MinWidth(decimals)) : 1;
  return {type, std::max(width, least), decimals};
}

}  // namespace

QANT_Variable::QANT_Variable(int width, std::size_t obsIndex) : type_(width), obsIndex_(obsIndex) {
  if (width > 0) format_ = {kFormatA, width, 0};
  writeFormat_ = format_;
}

void QANT_Variable::SetName(const char* name) { name_ = name ? name : ""; }
const std::string& QANT_Variable::GetName() const { return name_; }

void QANT_Variable::SetFormat(int type, int width, int decimals) {
  format_ = WithMinimumWidth(type, width, decimals);
}
void QANT_Variable::SetWriteFormat(int type, int width, int decimals) {
  writeFormat_ = WithMinimumWidth(type, width, decimals);
}
const QANT_Format& QANT_Variable::GetFormat() const { return format_; }
const QANT_Format& QANT_Variable::GetWriteFormat() const { return writeFormat_; }

int QANT_Variable::GetDisplayWidth() const { return displayWidth_; }
void QANT_Variable::SetDisplayWidth(int width) { displayWidth_ = width; }
int QANT_Variable::GetType() const { return type_; }
std::size_t QANT_Variable::ObsIndex() const { return obsIndex_; }

QANT_DataSource::QANT_DataSource(QANT_DataSource* parent) : parent_(parent) {}
QANT_DataSource::~QANT_DataSource() = default;

// No source of this host is split into groups.
int QANT_DataSource::GetNSplitVars() const { return 0; }
int QANT_DataSource::GetSplitVarIndex(unsigned int) const { return -1; }
int QANT_DataSource::GetSplitVarID(unsigned int) const { return -1; }
bool QANT_DataSource::GetSplitqSeparate() const { return false; }

std::size_t QANT_DataSource::GetObsAreaSize() const { return cells_ * sizeof(OBS); }
long long QANT_DataSource::RowCount() const { return -1; }
// Cases are read when they are asked for; none are held.
bool QANT_DataSource::IsLoaded() const { return false; }
int QANT_DataSource::NParents() const { return parent_ ? 1 : 0; }

QANT_Variable* QANT_DataSource::MakeVariable(QANT_DataSource* source, int width, int* status) {
  const bool valid = source && width >= 0;
  if (status) *status = valid ? 0 : 1;
  if (!valid) return nullptr;
  const std::size_t bytes = width > 0 ? static_cast<std::size_t>(width) : sizeof(double);
  source->columns_.push_back({source->cells_, static_cast<std::size_t>(width)});
  source->variables_.push_back(std::make_unique<QANT_Variable>(width, source->cells_));
  source->cells_ += (bytes + sizeof(OBS) - 1) / sizeof(OBS);
  return source->variables_.back().get();
}

std::size_t QANT_DataSource::GetNVariables() const { return variables_.size(); }

QANT_Variable* QANT_DataSource::GetVariable(std::size_t index) const {
  return index < variables_.size() ? variables_[index].get() : nullptr;
}

void QANT_DataSource::SetFileSpec(const char* path) { fileSpec_ = path ? path : ""; }
const std::string& QANT_DataSource::GetFileSpec() const { return fileSpec_; }
