#include "contents/PartVoices.h"

#include "contents/ContentFormat.h"
#include "models/EditorJobTools.h"
#include "models/LiveKeys.h"

namespace Editor {

void dropMisfits(Library& library) {
  const std::string multiKey = liveKeyOf(EditBuffer::multi);
  ModelSet multi = shapesOfLiveKey(multiKey).front();
  const std::optional<Held> heldMulti = library.held(liveAt(multiKey));
  if (heldMulti && (!isWhole(*heldMulti) || decodeContent(heldMulti->bytes, multi))) return;
  for (std::uint8_t part = 0; part < kParts; ++part) {
    const std::string key = liveKeyOf(EditBuffer::partVoice, part);
    ModelSet voice;
    voice.voice.emplace(EditorJobTools::playsDrums(*multi.multi, part));
    const std::optional<Held> held = library.held(liveAt(key));
    if (held && isWhole(*held) && decodeContent(held->bytes, voice)) library.putBack(liveAt(key), std::nullopt);
  }
}

}  // namespace Editor
