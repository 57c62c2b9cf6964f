#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "models/ContentAddress.h"
#include "models/ModelSet.h"

namespace Editor {

// What the models need of the library: stored contents, and the live models between two runs. One thread uses it. Each
// store is atomic, and part of the transaction that the caller has open, if any. Operations that can answer a failure
// do not throw; the others throw a std::exception.
class ContentStore {
 public:
  enum class Loaded : std::uint8_t {
    ok,
    empty,   // nothing is stored there
    opaque,  // bytes are stored there, but not such models; they may be damaged
    failed,  // the store itself failed
  };

  struct LiveModels {
    std::string key;
    const ModelSet* models;
  };

  virtual ~ContentStore();

  // `models` comes in with the expected shape (see ModelSet) and goes out filled; unless the result is ok it is
  // untouched, and `why` says for a human why.
  virtual Loaded loadModels(ContentId id, ModelSet& models, std::string& why) = 0;
  // Replaces the whole content and its name. False, with nothing changed and `why` set, on failure.
  virtual bool storeModels(ContentId id, const std::string& name, const ModelSet& models, std::string& why) = 0;

  virtual bool isEmpty(ContentId id) = 0;
  // How many mixing voices are stored, and how many there may be.
  virtual std::int64_t mixingVoiceCount() = 0;
  virtual std::int64_t mixingVoiceMaximum() = 0;

  // Live models by key ("multi", "part:7", "system" ...); as loadModels.
  virtual Loaded loadLive(const std::string& key, ModelSet& models, std::string& why) = 0;
  // Stores all of them or, with `why` set, none.
  virtual bool storeLive(const std::vector<LiveModels>& live, std::string& why) = 0;
};

}  // namespace Editor
