#include <map>

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
  std::unique_ptr<QANT_DataSource>& place = state_->sources[name ? name : ""];
  if (place.get() == source) return;
  // A source that has another name already moves: two owners would destroy it twice.
  for (auto& [other, owned] : state_->sources) {
    if (owned.get() == source) owned.release();
  }
  place.reset(source);
}

QANT_DataSource* ServerDataManager::Find(const char* name) const {
  const auto found = state_->sources.find(name ? name : "");
  return found == state_->sources.end() ? nullptr : found->second.get();
}

bool ServerDataManager::Remove(const char* name) {
  const auto found = state_->sources.find(name ? name : "");
  if (found == state_->sources.end()) return false;
  const bool held = found->second != nullptr;
  state_->sources.erase(found);
  return held;
}
