#include "targets/TargetModels.h"

#include <fmt/format.h>

#include <algorithm>

#include "AddressRows.h"
#include "contents/PartVoices.h"
#include "models/LiveKeys.h"

namespace Editor {

namespace {

// Contents that have no format of ours: their bytes are somebody else's.
void requireFormat(const Target& target) {
  if (haveSameShape(emptySetFor(target.content), ModelSet()))
    refuse(target, "its bytes are kept as they came, they have no parameters");
}

// Bytes of another format are not replaced, and a new mixing voice needs room.
void requireReplaceable(EmbeddedEditor& editor, const Target& target) {
  ModelSet before = emptySetFor(target.content);
  std::string why;
  const ContentStore::Loaded found = editor.store().loadModels(target.content, before, why);
  if (found == ContentStore::Loaded::failed) throw LibraryError(LibraryError::Kind::Failed, why);
  if (found == ContentStore::Loaded::opaque) refuse(target, why);
  const bool isNew = found == ContentStore::Loaded::empty;
  if (isNew && isMixingVoice(target.content) &&
      editor.store().mixingVoiceCount() >= editor.store().mixingVoiceMaximum())
    refuse(target,
           fmt::format("there is no room for another mixing voice, {} are stored", editor.store().mixingVoiceCount()));
}

// A part's voice brings the multi that it plays in.
bool replaceBuffer(EditorJobTools& tools, const Target& target, const ModelSet& models) {
  if (target.buffer != EditBuffer::partVoice) return tools.replaceLive(target.buffer, 0, models);
  ModelSet multi = models;
  multi.voice.reset();
  ModelSet voice;
  voice.voice = models.voice;
  return tools.replaceLive(EditBuffer::multi, 0, multi) && tools.replaceLive(EditBuffer::partVoice, target.part, voice);
}

}  // namespace

std::string damageOf(const EditorJobTools& tools, const Target& target) {
  switch (target.kind) {
    case Target::Kind::system:
      return tools.systemDamage();
    case Target::Kind::additional:
      return tools.additionalDamage();
    case Target::Kind::editBuffer:
      return tools.damage(target.buffer, target.part);
    case Target::Kind::content:
      break;
  }
  return {};
}

std::string damageInShort(const EditorJobTools& tools, const Target& target) {
  const std::string why = damageOf(tools, target);
  const bool isOfAnother =
      target.kind == Target::Kind::editBuffer && tools.ownDamage(target.buffer, target.part).empty();
  return why.empty() || isOfAnother ? why : kItIsDamaged;
}

ModelSet loadTarget(EmbeddedEditor& editor, const Target& target) {
  const EditorJobTools& tools = editor.tools();
  if (const std::string why = damageOf(tools, target); !why.empty()) refuse(target, why);
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

std::size_t loadTargets(EmbeddedEditor& editor, const Places<Target>& places, const TargetVisitor& visitor) {
  std::size_t leftOut = 0;
  for (const Target& target : places.list) {
    const bool mayBeEmpty = !places.isOne && target.kind == Target::Kind::content;
    try {
      if (mayBeEmpty && !editor.library().contentName(target.content))
        ++leftOut;
      else
        visitor.loaded(target, loadTarget(editor, target));
    } catch (const TargetError& error) {
      visitor.refused(error);
    } catch (const LibraryError& error) {
      if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
      visitor.damaged(target);
    }
  }
  return leftOut;
}

void dropUnstored(EmbeddedEditor& editor, std::vector<Target>& targets) {
  const std::vector<Target> stored = storedLive(editor);
  std::erase_if(targets, [&](const Target& target) {
    const auto isIt = [name = placeNameOf(target)](const Target& one) { return one.name == name; };
    return target.kind != Target::Kind::content && std::none_of(stored.begin(), stored.end(), isIt);
  });
}

bool forgetTarget(Library& library, const Target& target) {
  if (target.kind == Target::Kind::content) return library.remove(target.content);
  std::string key = kSystemKey;
  if (target.kind == Target::Kind::additional) key = kAdditionalKey;
  if (target.kind == Target::Kind::editBuffer) key = liveKeyOf(target.buffer, target.part);
  if (!library.held(liveAt(key))) return false;
  library.putBack(liveAt(key), std::nullopt);
  dropMisfits(library);
  return true;
}

std::vector<Target> editBuffers() {
  std::vector<Target> targets;
  const auto add = [&](EditBuffer buffer, std::uint8_t part) {
    const MidLo header = headerOf(buffer, part);
    targets.push_back(parseTarget(nameOrBytes({BDA::kHeaderHi, header.mid, header.lo})));
  };
  for (const EditBuffer buffer : kSingleEditBuffers) add(buffer, 0);
  for (std::uint8_t part = 0; part < kParts; ++part) add(EditBuffer::partVoice, part);
  return targets;
}

std::vector<Target> storedLive(EmbeddedEditor& editor) {
  const EditorJobTools& tools = editor.tools();
  const std::vector<std::string> keys = editor.library().liveKeys();
  std::vector<Target> targets;
  const auto add = [&](const std::string& key, Target target) {
    const bool isStored = std::find(keys.begin(), keys.end(), key) != keys.end() || !damageOf(tools, target).empty();
    if (isStored) targets.push_back(std::move(target));
  };
  for (Target& buffer : editBuffers()) {
    const std::string& key = tools.liveKey(buffer.buffer, buffer.part);
    add(key, std::move(buffer));
  }
  add(tools.systemKey(), parseTarget("system"));
  add(tools.additionalKey(), parseTarget("additional"));
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
      stored = replaceBuffer(tools, target, models);
      break;
    case Target::Kind::content:
      requireReplaceable(editor, target);
      stored = editor.store().storeModels(target.content, nameOf(models), models, why);
      break;
  }
  if (!stored) failToStore(editor.library(), failures, target, why.empty() ? tools.lastError() : why);
  transaction.commit();
}

}  // namespace Editor
