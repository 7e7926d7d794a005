#include "library/files/FilePlace.h"

#include <utility>

namespace library {

nlohmann::ordered_json FileJson(const std::string& name, std::int64_t casesBefore,
                                const PassAccount& account) {
  nlohmann::ordered_json json = {{"file", name},
                                 {"cases", account.cases},
                                 {"first_case", casesBefore + 1},
                                 {"problems", account.problems.total()}};
  if (account.digest) json["digest"] = account.digest->Hex();
  json["ledger"] = account.ledger.Json();
  return json;
}

bool FilePlace::Open(const QANT_DataSource& file, const DataSetSource& all) {
  if (!all.Find(file, &variables_)) return false;
  all_ = &all;
  layout_.emplace(file, all, variables_, sourceText_ ? &*sourceText_ : nullptr);
  return true;
}

void FilePlace::Place(PassAccount* account) const {
  const std::size_t others = all_->GetNVariables() - variables_.size();
  const std::size_t sourceTexts = sourceText_ ? 1 : 0;
  account->ledger.AddVariables(static_cast<std::int64_t>(others - sourceTexts),
                               static_cast<std::int64_t>(sourceTexts));
  account->problems = account->problems.OfFile(name_, variables_);
  if (account->textsBeyondColumn.empty()) return;
  std::vector<std::int64_t> texts(all_->GetNVariables());
  for (std::size_t i = 0; i < variables_.size(); ++i) {
    texts[variables_[i]] = account->textsBeyondColumn[i];
  }
  account->textsBeyondColumn = std::move(texts);
}

}  // namespace library
