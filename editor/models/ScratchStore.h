#pragma once

#include <map>
#include <string>
#include <vector>

#include "models/ContentStore.h"
#include "models/ModelSet.h"

namespace Editor {

// A store for one look: nothing lasts.
class ScratchStore final : public ContentStore {
 public:
  std::map<ContentId, ModelSet> contents;

  Loaded loadModels(ContentId id, ModelSet& models, std::string& /*why*/) override {
    const auto found = contents.find(id);
    if (found == contents.end()) return Loaded::empty;
    models = found->second;
    return Loaded::ok;
  }
  bool storeModels(ContentId id, const std::string& /*name*/, const ModelSet& models, std::string& /*why*/) override {
    contents[id] = models;
    return true;
  }
  bool isEmpty(ContentId id) override { return !contents.contains(id); }
  std::int64_t mixingVoiceCount() override { return 0; }
  std::int64_t mixingVoiceMaximum() override { return 1; }
  Loaded loadLive(const std::string& /*key*/, ModelSet& /*models*/, std::string& /*why*/) override {
    return Loaded::empty;
  }
  bool storeLive(const std::vector<LiveModels>& /*live*/, std::string& /*why*/) override { return true; }
};

}  // namespace Editor
