#include "surface/Handles.h"

#include <sstream>

#include "history/History.h"
#include "names/NameFile.h"

namespace Editor {

ParameterNames parameterNamesIn(const char* names) {
  NameLists lists;
  if (names == nullptr) return {};
  if (const std::string wrong = parseNames(textOf(names, "names"), lists); !wrong.empty())
    throw CallFailure{BDA_UNUSABLE, wrong};
  return std::move(lists.parameters);
}

LeavingOut::LeavingOut(EmbeddedEditor& editor, Doubts& doubts) : library_(editor.library()) {
  library_.leaveOutUnread([&doubts](const Library::Unread& unread) {
    doubts.add((unread.place ? nameOf(*unread.place) : "table " + unread.table) + ": " + unread.reason);
  });
}

std::vector<std::string> wordsOf(const char* places, const char* what) {
  std::istringstream text{std::string(textOf(places, what))};
  std::vector<std::string> words;
  for (std::string word; text >> word;) words.push_back(word);
  if (words.empty()) throw CallFailure{BDA_UNUSABLE, std::string(what) + " names none"};
  return words;
}

}  // namespace Editor
