#pragma once

#include <string>
#include <vector>

#include "contents/Library.h"
#include "models/ContentStore.h"

namespace Editor {

// The models' view of a library, which outlives it. Where there is no answer that tells of a failure, LibraryError is
// thrown.
class ModelStore final : public ContentStore {
 public:
  explicit ModelStore(Library& library) : library_(library) {}

  Loaded loadModels(ContentId id, ModelSet& models, std::string& why) override;
  // Refuses models of another shape than contents of that id have.
  bool storeModels(ContentId id, const std::string& name, const ModelSet& models, std::string& why) override;

  bool isEmpty(ContentId id) override { return !library_.contentName(id).has_value(); }
  std::int64_t mixingVoiceCount() override { return library_.mixingVoiceCount(); }
  std::int64_t mixingVoiceMaximum() override { return library_.mixingVoiceMaximum(); }

  Loaded loadLive(const std::string& key, ModelSet& models, std::string& why) override;
  bool storeLive(const std::vector<LiveModels>& live, std::string& why) override;

 private:
  Library& library_;
};

}  // namespace Editor
