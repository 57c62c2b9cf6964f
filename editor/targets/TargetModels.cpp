#include "targets/TargetModels.h"

#include <fmt/format.h>

#include <algorithm>

#include "AddressRows.h"

namespace Editor {

namespace {

// Contents that have no format of ours: their bytes are somebody else's.
void requireFormat(const Target& target) {
  if (haveSameShape(emptySetFor(target.content), ModelSet()))
    refuse(target, "its bytes are kept as they came, they have no parameters");
}

}  // namespace

ModelSet loadTarget(EmbeddedEditor& editor, const Target& target) {
  const EditorJobTools& tools = editor.tools();
  switch (target.kind) {
    case Target::Kind::system:
      return tools.liveSystem();
    case Target::Kind::additional:
      return tools.liveAdditional();
    case Target::Kind::editBuffer: {
      if (target.buffer != EditBuffer::partVoice) return tools.live(target.buffer);
      ModelSet models = tools.live(EditBuffer::multi);  // whose effects the voice uses
      models.voice = tools.live(EditBuffer::partVoice, target.part).voice;
      return models;
    }
    case Target::Kind::content:
      break;
  }
  requireFormat(target);
  ModelSet models = emptySetFor(target.content);
  std::string why;
  const ContentStore::Loaded result = editor.store().loadModels(target.content, models, why);
  if (result == ContentStore::Loaded::failed) throw LibraryError(LibraryError::Kind::Failed, why);
  if (result != ContentStore::Loaded::ok) refuse(target, why);
  return models;
}

std::vector<Target> storedLive(EmbeddedEditor& editor) {
  const EditorJobTools& tools = editor.tools();
  const std::vector<std::string> keys = editor.library().liveKeys();
  std::vector<Target> targets;
  const auto add = [&](const std::string& key, const std::string& name) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) targets.push_back(parseTarget(name));
  };
  const auto addBuffer = [&](EditBuffer buffer, std::uint8_t part) {
    const MidLo header = headerOf(buffer, part);
    add(tools.liveKey(buffer, part), nameOrBytes({BDA::kHeaderHi, header.mid, header.lo}));
  };
  for (const EditBuffer buffer : {EditBuffer::normalVoice, EditBuffer::drumVoice, EditBuffer::multi,
                                  EditBuffer::performance, EditBuffer::master, EditBuffer::remote})
    addBuffer(buffer, 0);
  for (std::uint8_t part = 0; part < kParts; ++part) addBuffer(EditBuffer::partVoice, part);
  add(tools.systemKey(), "system");
  add(tools.additionalKey(), "additional");
  return targets;
}

ModelSet freshTarget(const Target& target, bool drum) {
  ModelSet models;
  switch (target.kind) {
    case Target::Kind::system:
      models.system.emplace();
      return models;
    case Target::Kind::additional:
      models.additional.emplace();
      return models;
    case Target::Kind::editBuffer:
      return emptySetFor(headerTypeOf({target.header->mid, target.header->lo}), drum);
    case Target::Kind::content:
      break;
  }
  requireFormat(target);
  return emptySetFor(target.content);
}

void failToStore(const Library& library, std::uint64_t failures, const Target& target, const std::string& why) {
  if (library.failureCount() != failures) throw LibraryError(LibraryError::Kind::Failed, why);
  refuse(target, why);
}

void storeTarget(EmbeddedEditor& editor, const Target& target, const ModelSet& models) {
  EditorJobTools& tools = editor.tools();
  Library::Transaction transaction(editor.library());
  tools.reload();  // another program may have changed the live models
  const std::uint64_t failures = editor.library().failureCount();
  std::string why;
  bool stored = false;
  switch (target.kind) {
    case Target::Kind::system:
      stored = tools.replaceSystem(models);
      break;
    case Target::Kind::additional:
      stored = tools.replaceAdditional(models);
      break;
    case Target::Kind::editBuffer:
      if (target.buffer == EditBuffer::partVoice) {
        ModelSet multi = models;
        multi.voice.reset();
        ModelSet voice;
        voice.voice = models.voice;
        stored = tools.replaceLive(EditBuffer::multi, 0, multi) &&
                 tools.replaceLive(EditBuffer::partVoice, target.part, voice);
      } else {
        stored = tools.replaceLive(target.buffer, 0, models);
      }
      break;
    case Target::Kind::content: {
      ModelSet before = emptySetFor(target.content);
      const ContentStore::Loaded found = editor.store().loadModels(target.content, before, why);
      if (found == ContentStore::Loaded::failed) throw LibraryError(LibraryError::Kind::Failed, why);
      if (found == ContentStore::Loaded::opaque) refuse(target, why);
      const bool isNew = found == ContentStore::Loaded::empty;
      if (isNew && isMixingVoice(target.content) &&
          editor.store().mixingVoiceCount() >= editor.store().mixingVoiceMaximum())
        refuse(target, fmt::format("there is no room for another mixing voice, {} are stored",
                                   editor.store().mixingVoiceCount()));
      stored = editor.store().storeModels(target.content, nameOf(models), models, why);
      break;
    }
  }
  if (!stored) failToStore(editor.library(), failures, target, why.empty() ? tools.lastError() : why);
  transaction.commit();
}

}  // namespace Editor
