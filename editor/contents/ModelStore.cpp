#include "contents/ModelStore.h"

#include "contents/ContentFormat.h"

namespace Editor {
namespace {

template <typename Operation>
bool attempt(std::string& why, Operation operation) {
  try {
    operation();
    return true;
  } catch (const LibraryError& error) {
    why = error.what();
    return false;
  }
}

ContentStore::Loaded notRead(const LibraryError& error, std::string& why) {
  why = error.what();
  return error.kind() == LibraryError::Kind::DamagedPlace ? ContentStore::Loaded::opaque : ContentStore::Loaded::failed;
}

ContentStore::Loaded decode(const Library::Bytes& bytes, ModelSet& models, std::string& why) {
  const std::optional<std::string> error = decodeContent(bytes, models);
  if (!error) return ContentStore::Loaded::ok;
  why = *error;
  return ContentStore::Loaded::opaque;
}

ContentStore::Loaded nothingStored(std::string& why) {
  why = "nothing is stored there";
  return ContentStore::Loaded::empty;
}

}  // namespace

ContentStore::Loaded ModelStore::loadModels(ContentId id, ModelSet& models, std::string& why) {
  try {
    const std::optional<Library::Content> content = library_.content(id);
    return content ? decode(content->bytes, models, why) : nothingStored(why);
  } catch (const LibraryError& error) {
    return notRead(error, why);
  }
}

bool ModelStore::storeModels(ContentId id, const std::string& name, const ModelSet& models, std::string& why) {
  if (haveSameShape(models, ModelSet()) || !haveSameShape(models, emptySetFor(id))) {
    why = "such models cannot be stored there";
    return false;
  }
  return attempt(why, [&] { library_.store(id, encodeContent(models), name); });
}

ContentStore::Loaded ModelStore::loadLive(const std::string& key, ModelSet& models, std::string& why) {
  using Kind = LibraryError::Kind;
  try {
    const std::optional<Library::Bytes> bytes = library_.live(key);
    return bytes ? decode(*bytes, models, why) : nothingStored(why);
  } catch (const LibraryError& error) {
    // All of them are read by whoever opens a library: what cannot be read keeps nobody from the rest.
    if (error.kind() != Kind::Damaged && error.kind() != Kind::DamagedPlace) return notRead(error, why);
    why = error.reason();  // an opaque live model is damaged, whatever it is
    return Loaded::opaque;
  }
}

bool ModelStore::storeLive(const std::vector<LiveModels>& live, std::string& why) {
  return attempt(why, [&] {
    Library::Transaction transaction(library_);
    for (const LiveModels& one : live) library_.storeLive(one.key, encodeContent(*one.models));
    transaction.commit();
  });
}

}  // namespace Editor
