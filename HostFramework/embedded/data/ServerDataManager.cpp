#include <algorithm>
#include <map>
#include <utility>

#include "HostFramework/DataSource.h"

struct ServerDataManager::State {
  std::map<std::string, std::unique_ptr<QANT_DataSource>> sources;
};

ServerDataManager::ServerDataManager() : state_(std::make_unique<State>()) {}
ServerDataManager::~ServerDataManager() = default;

// Never destroyed: at the end of the process the libraries that made the sources may already have
// been finalised.
ServerDataManager* ServerDataManager::GetInstance() {
  static ServerDataManager* const instance = new ServerDataManager;
  return instance;
}

void ServerDataManager::Add(QANT_DataSource* source, const char* name, bool /*keep*/) {
  if (!source) return;
  const std::string place = name ? name : "";
  std::unique_ptr<QANT_DataSource> owned;
  // A source that has a name already moves: two owners would destroy it twice.
  const auto owner =
      std::find_if(state_->sources.begin(), state_->sources.end(),
                   [source](const auto& entry) { return entry.second.get() == source; });
  if (owner != state_->sources.end()) {
    owned = std::move(owner->second);
    state_->sources.erase(owner);
  } else {
    owned.reset(source);
  }
  state_->sources[place] = std::move(owned);
}

QANT_DataSource* ServerDataManager::Find(const char* name) const {
  const auto found = state_->sources.find(name ? name : "");
  return found == state_->sources.end() ? nullptr : found->second.get();
}

bool ServerDataManager::Remove(const char* name) {
  return state_->sources.erase(name ? name : "") > 0;
}
