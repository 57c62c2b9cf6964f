#pragma once

// Calls with a library. What is refused has changed nothing, and a copy foretells what a change does.

#include <climits>
#include <utility>

#include "surface.h"

namespace Surface {

inline constexpr Texts kFinding{"{}",
                                R"({"terms": "A"})",
                                R"({"kind": "voice", "where": ["voice.common[3]>1"]})",
                                R"({"duplicates": true, "edit-buffers": true})",
                                R"({"same-as": "voice:user1:6"})",
                                R"({"like": "voice:user1:6", "kind": "voice"})",
                                R"({"favourite": true})",
                                R"({"terms": ["*", ""], "where": "voice.name=A*"})"};
inline constexpr Texts kPaths{"voice.common[3]", "Volume", "system.utility[50]", "voice.name", "voice.common[999]", ""};
inline constexpr Texts kSettings{"device-number", "receive-bulk", "mixing-voices",
                                 "history",       "history-size", "history-siz"};
inline constexpr Texts kValues{"6", "all", "off", "on", "0", "1", "2048", "99999999999999999999", "-1", ""};

// All that it holds and remembers; nothing where it does not say, or where that was asked for often.
inline std::optional<std::string> stateOf(Caller& caller, bda_library* library) {
  constexpr unsigned kEffort = 4;
  if (!caller.spend(kEffort)) return std::nullopt;
  std::string state;
  for (const auto read : {+[](bda_library*of, char**out) { return bda_library_contents(of, nullptr, out); },
                          +[](bda_library*of, char**out) { return bda_library_settings(of, nullptr, out); },
                          +[](bda_library*of, char**out) { return bda_library_history(of, 0, out); }}) {
    Answer<char> answer(true);
    if (read(library, answer.out()) != BDA_OK) return std::nullopt;
    state += answer.get();
  }
  return state;
}

inline void requireSame(Caller& caller, bda_library* library, const std::string& before) {
  const std::optional<std::string> now = stateOf(caller, library);
  require(!now || now == before, "a change by a call that was refused, or says that it has changed nothing");
}

inline bool isUsed(const Caller& caller, const bda_library* library) {
  return library != nullptr &&
         std::ranges::any_of(caller.wires, [&](const Wire& wire) { return wire.uses == library; });
}

// The end of each call with a library.
inline bda_result judged(const Caller& caller, const bda_library* library, bda_result result) {
  judge(result, bda_library_error(library));
  require(!isUsed(caller, library) || result == BDA_MISUSED, "a call with a library that a wire uses");
  return result;
}

inline void closeLibrary(Caller& caller, std::size_t slot) {
  bda_library* const library = std::exchange(caller.libraries[slot], nullptr);
  for (Wire& wire : caller.wires)
    if (wire.uses == library) wire.uses = nullptr;
  bda_library_close(library);
}

inline bda_result libraryOpen(Caller& caller) {
  const std::size_t slot = caller.slot();
  closeLibrary(caller, slot);
  const std::uint8_t how = caller.input.byte() % 16;
  std::string path = "/dev/null/_" + (how == 1 ? caller.rawText() : "library.db");
  std::replace(path.begin() + 11, path.end(), '/', '_');
  const unsigned flags = how == 2 ? caller.input.byte() : 0;
  const char* const file = how == 1 || how == 3 ? caller.kept(path) : how == 4 ? "/" : how == 5 ? "" : nullptr;
  const bda_result result = bda_library_open(file, how == 3 ? unsigned(BDA_OPEN_READ) : flags, &caller.libraries[slot]);
  judge(result, bda_library_error(caller.libraries[slot]));
  return result;
}

inline bda_result libraryClone(Caller& caller) {
  bda_library* const library = caller.library();
  const std::size_t slot = caller.slot();
  bda_library* clone = nullptr;
  const bda_result result = bda_library_clone(library, &clone);
  judged(caller, library, result);
  require((clone != nullptr) == (result == BDA_OK), "a clone that is not there, or of nothing");
  if (clone == nullptr) return result;
  const std::optional<std::string> state = stateOf(caller, clone);
  if (state) requireSame(caller, library, *state);
  closeLibrary(caller, slot);
  caller.libraries[slot] = clone;
  return result;
}

inline bda_result libraryOfFiles(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const std::size_t slot = caller.slot();
  closeLibrary(caller, slot);
  const bda_result result = bda_library_of_files(files, &caller.libraries[slot]);
  judge(result, bda_files_error(files));
  const bool isThere = caller.libraries[slot] != nullptr;
  require(isThere == (result == BDA_OK || result == BDA_REFUSED), "a library that is not there, or of nothing");
  return result;
}

inline bda_result libraryClose(Caller& caller) {
  closeLibrary(caller, caller.slot());
  return BDA_OK;
}

inline bda_result libraryNameParameters(Caller& caller) {
  bda_library* const library = caller.library();
  return judged(caller, library, bda_library_name_parameters(library, caller.text(kNameFiles)));
}

// A call that reads: read(library, json).
template <typename Read>
bda_result reading(Caller& caller, Read read) {
  bda_library* const library = caller.library();
  Answer<char> answer(caller.wants());
  const bda_result result = read(library, answer.out());
  json(caller, answer, result, bda_library_error(library));
  return judged(caller, library, result);
}

// Of places, options or a name, or of none of them.
template <bda_result (*kFunction)(bda_library*, const char*, char**), const Texts& kFitting>
bda_result libraryAt(Caller& caller) {
  return reading(caller,
                 [&](bda_library* library, char** out) { return kFunction(library, caller.text(kFitting), out); });
}

inline bda_result libraryCheck(Caller& caller) { return reading(caller, bda_library_check); }

inline bda_result libraryHistory(Caller& caller) {
  return reading(caller, [&](bda_library* library, char** out) {
    return bda_library_history(library, caller.input.byte() % 4, out);
  });
}

inline bda_result libraryDiff(Caller& caller) {
  return reading(caller, [&](bda_library* library, char** out) {
    bda_library* const other = caller.library();
    const bda_result result = bda_library_diff(library, other, out);
    require(!isUsed(caller, other) || result == BDA_MISUSED, "a comparison with a library that a wire uses");
    require(library == nullptr || library != other || result == BDA_OK || result == BDA_MISUSED,
            "a library that differs from itself");
    return result;
  });
}

inline bda_result libraryExplain(Caller& caller) {
  return reading(caller, [&](bda_library* library, char** out) {
    const char* const place = caller.text(kPlaces);
    return bda_library_explain(library, place, caller.text(kPaths), out);
  });
}

inline bda_result libraryBackup(Caller& caller) {
  constexpr unsigned kEffort = 100;
  caller.spend(kEffort);
  bda_library* const library = caller.library();
  Answer<std::uint8_t> bytes(caller.wants());
  Answer<char> manifest(caller.wants());
  std::size_t size = 0;
  const bda_result result = bda_library_backup(library, bytes.out(), caller.wants() ? &size : nullptr, manifest.out());
  bytes.check(result);
  if (bytes.isThere()) caller.lastBytes.assign(bytes.get(), bytes.get() + size);
  json(caller, manifest, result, bda_library_error(library));
  return judged(caller, library, result);
}

// What a clone does first: the same, but for what is not in it yet.
template <typename Change>
void rehearse(bda_library* library, bda_result expected, const std::string& answer, bda_library* clone, Change change) {
  Answer<char> same(true);
  require(change(clone, same.out()) == expected, "a clone that does something else");
  require((same.isThere() ? same.get() : "") == answer, "a clone that tells something else");
  require(std::string_view(bda_library_error(clone)) == bda_library_error(library), "a clone that says something else");
  bda_library_close(clone);
}

// A call that changes: change(library, json).
template <typename Change>
bda_result changing(Caller& caller, Change change, bool isRehearsed = true) {
  bda_library* const library = caller.library();
  Answer<char> answer(caller.wants());
  const std::optional<std::string> before = stateOf(caller, library);
  bda_library* clone = nullptr;
  if (isRehearsed && caller.flag()) bda_library_clone(library, &clone);
  const bda_result result = change(library, answer.out());
  json(caller, answer, result, bda_library_error(library));
  judged(caller, library, result);
  if (clone != nullptr && answer.out() != nullptr)
    rehearse(library, result, answer.isThere() ? answer.get() : "", clone, change);
  else
    bda_library_close(clone);
  if (result == BDA_OK && (!answer.isThere() || *answer.get() != '\0')) return result;
  if (result == BDA_REFUSED && (answer.isThere() || answer.out() == nullptr)) return result;
  // An undo of nothing is an entry all the same.
  if (result != BDA_OK) require(bda_library_entry(library) == 0, "an entry of a call that has changed nothing");
  const std::int64_t entry = bda_library_entry(library);
  if (before && entry == 0) requireSame(caller, library, *before);
  require(bda_library_entry(library) == entry, "an entry that is another when somebody has looked");
  return result;
}

template <bda_result (*kFunction)(bda_library*, const char*, const char*, char**)>
bda_result arranging(Caller& caller) {
  const char* const from = caller.text(kPlaces);
  const char* const to = caller.text(kPlaces);
  return changing(caller, [&](bda_library* library, char** out) { return kFunction(library, from, to, out); });
}

inline bda_result libraryApply(Caller& caller) {
  const char* const place = caller.text(kPlaces);
  const char* const object = caller.text({"{}", R"({"voice": {}})", "[", "null"});
  return changing(caller,
                  [&](bda_library* library, char** out) { return bda_library_apply(library, place, object, out); });
}

inline bda_result libraryRename(Caller& caller) {
  const char* const place = caller.text(kPlaces);
  const char* const name = caller.text(kNames);
  return changing(caller,
                  [&](bda_library* library, char** out) { return bda_library_rename(library, place, name, out); });
}

inline bda_result libraryFavourite(Caller& caller) {
  const char* const places = caller.text(kPlaces);
  const int on = caller.input.byte() - 1;
  return changing(caller,
                  [&](bda_library* library, char** out) { return bda_library_favourite(library, places, on, out); });
}

inline bda_result libraryRemove(Caller& caller) {
  const char* const places = caller.text(kPlaces);
  return changing(caller, [&](bda_library* library, char** out) { return bda_library_remove(library, places, out); });
}

inline bda_result librarySet(Caller& caller) {
  const char* const name = caller.text(kSettings);
  const char* const value = caller.text(kValues);
  return changing(caller, [&](bda_library* library, char** out) { return bda_library_set(library, name, value, out); });
}

inline bda_result libraryUndo(Caller& caller) {
  const std::int64_t entry = std::int64_t(caller.input.byte() % 8) - 1;
  const int force = caller.input.byte() % 3;
  return changing(caller,
                  [&](bda_library* library, char** out) { return bda_library_undo(library, entry, force, out); });
}

inline bda_result libraryRestore(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const char* const options = caller.text({"{}", R"({"any-device": true})", R"({"any-device": 1})"});
  return changing(
      caller, [&](bda_library* library, char** out) { return bda_library_restore(library, files, options, out); },
      false);
}

// Hands over messages one after the other, if that is what the bytes are.
inline bda_result libraryHandle(Caller& caller) {
  bda_library* const library = caller.library();
  const std::uint8_t which = caller.input.byte();
  const unsigned port = which == 255 ? UINT_MAX : which % 8;
  const bda_send send = caller.wants() ? hearSent : nullptr;
  const bool isWanted = caller.wants();
  std::span<const std::uint8_t> left = caller.bytes();
  bda_result result = BDA_OK;
  do {
    const auto end = std::ranges::find(left, std::uint8_t{0xF7});
    const std::size_t size = std::size_t(end - left.begin()) + (end == left.end() ? 0 : 1);
    const Bytes message(left.begin(), left.begin() + std::ptrdiff_t(size));
    left = left.subspan(size);
    const std::optional<std::string> before = stateOf(caller, library);
    Answer<char> answer(isWanted);
    const bda_result here =
        bda_library_handle(library, port, message.data(), message.size(), send, &caller.lastBytes, answer.out());
    json(caller, answer, here, bda_library_error(library));
    judged(caller, library, here);
    if (here != BDA_OK && before) requireSame(caller, library, *before);
    result = here == BDA_OK ? result : here;
  } while (!left.empty() && caller.spend(1));
  return result;
}

inline bda_result libraryRequest(Caller& caller) {
  bda_library* const library = caller.library();
  const char* const places = caller.text(kPlaces);
  const bda_send send = caller.wants() ? hearSent : nullptr;
  return judged(caller, library, bda_library_request(library, places, send, &caller.lastBytes));
}

}  // namespace Surface
