#include "library/capi/PlacedFile.h"

#include <utility>

#include "HostFramework/Text.h"
#include "library/capi/Failure.h"

namespace library {

PlacedFile::PlacedFile(const RecipeDataSet& set, const QANT_DataSource& file)
    : name_(set.fileName), casesBefore_(set.casesBefore), place_(set.fileName, set.sourceText) {
  for (DataSetVariable variable : set.variables) {
    if (!qUTF8mode()) {
      const std::string utf8 = std::exchange(variable.name, {});
      QANTMBU8ToCodePage(nullptr, variable.name, utf8);
    }
    all_.Add(variable);
  }
  all_.Make();
  const bool hasText = !set.sourceText || (!set.variables.empty() && set.variables.back().type > 0);
  if (hasText && place_.Open(file, all_)) return;
  throw Failure{.status = TEXTWIZARD_USAGE,
                .text = "the recipe's command gives other variables than its data set has"};
}

CaseSink& PlacedFile::Cases(std::vector<CaseSink*> sinks) {
  caseSinks_ = std::move(sinks);
  return cases_.emplace(place_.layout(), caseSinks_, casesBefore_);
}

ProblemSink& PlacedFile::Problems(ProblemSink& sink) {
  problemSinks_ = {&sink};
  sink.BeginFile(name_);
  return problems_.emplace(problemSinks_, place_.variables(), casesBefore_);
}

std::string PlacedFile::FilesText(const PassAccount& account) const {
  nlohmann::ordered_json files = nlohmann::ordered_json::array();
  files.push_back(FileJson(name_, casesBefore_, account));
  return files.dump();
}

}  // namespace library
