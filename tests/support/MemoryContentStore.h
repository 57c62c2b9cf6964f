#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "models/ContentStore.h"

namespace Editor {

// A content store without a disk, open to the eyes and hands of a test.
class MemoryContentStore final : public ContentStore {
 public:
  struct Content {
    std::string name;
    ModelSet models;
  };

  std::map<ContentId, Content> contents;
  std::map<ContentId, std::string> opaque;  // contents that are no models, and why
  std::map<std::string, ModelSet> live;
  std::int64_t mixingVoices = 0;
  std::int64_t mostMixingVoices = 2048;
  std::string failure;  // not empty: every store and live model fails with it, every question throws it

  std::vector<std::vector<std::string>> liveStores;  // the keys of each storeLive, in order

  Loaded loadModels(ContentId id, ModelSet& models, std::string& why) override {
    if (opaque.count(id) != 0) {
      why = opaque[id];
      return Loaded::opaque;
    }
    const auto found = contents.find(id);
    return found == contents.end() ? Loaded::empty : load(found->second.models, models, why);
  }

  bool storeModels(ContentId id, const std::string& name, const ModelSet& models, std::string& why) override {
    if (fails(why)) return false;
    opaque.erase(id);
    contents[id] = {name, models};
    return true;
  }

  bool isEmpty(ContentId id) override {
    if (!failure.empty()) throw std::runtime_error(failure);
    return contents.count(id) == 0 && opaque.count(id) == 0;
  }
  std::int64_t mixingVoiceCount() override { return mixingVoices; }
  std::int64_t mixingVoiceMaximum() override { return mostMixingVoices; }

  Loaded loadLive(const std::string& key, ModelSet& models, std::string& why) override {
    if (fails(why)) return Loaded::failed;
    const auto found = live.find(key);
    return found == live.end() ? Loaded::empty : load(found->second, models, why);
  }

  bool storeLive(const std::vector<LiveModels>& sets, std::string& why) override {
    if (fails(why)) return false;
    std::vector<std::string>& keys = liveStores.emplace_back();
    for (const LiveModels& set : sets) {
      keys.push_back(set.key);
      live[set.key] = *set.models;
    }
    return true;
  }

 private:
  bool fails(std::string& why) const {
    if (!failure.empty()) why = failure;
    return !failure.empty();
  }

  static Loaded load(const ModelSet& stored, ModelSet& models, std::string& why) {
    if (!haveSameShape(stored, models)) {
      why = "other models than asked for";
      return Loaded::opaque;
    }
    models = stored;
    return Loaded::ok;
  }
};

}  // namespace Editor
