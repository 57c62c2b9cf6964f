// The functions of the C surface that open a library, and hand messages to it.

#include <memory>
#include <new>
#include <utility>

#include "exchange/Answers.h"
#include "messages/Text.h"
#include "surface/Handles.h"
#include "targets/Targets.h"
#include "transcript/MessageJson.h"

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

bda_result bda_library_open(const char* path, unsigned flags, bda_library** library) {
  if (library == nullptr) return BDA_MISUSED;
  *library = new (std::nothrow) bda_library;
  if (*library == nullptr) return BDA_FAILED;
  return call((*library)->error, [&] {
    if ((flags & ~unsigned(BDA_OPEN_READ)) != 0) throw CallFailure{BDA_MISUSED, "there is no such flag"};
    Library::Options options;
    (*library)->isToRead = flags == BDA_OPEN_READ;
    if ((*library)->isToRead) options.use = Library::Use::read;
    if (path == nullptr) options.use = Library::Use::memory;
    if (path != nullptr) (*library)->path = path;
    (*library)->isInMemory = path == nullptr;
    (*library)->editor = std::make_unique<EmbeddedEditor>(path == nullptr ? "memory" : path, options);
    return BDA_OK;
  });
}

bda_result bda_library_clone(bda_library* library, bda_library** clone) {
  if (clone != nullptr) *clone = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts&) {
    require(clone, "clone");
    auto made = std::make_unique<bda_library>();
    made->editor = std::make_unique<EmbeddedEditor>();
    made->path = library->path;
    made->names = library->names;
    made->isOfFiles = library->isOfFiles;
    const EmbeddedEditor::View oneState(editor);
    made->editor->library().copyFrom(editor.library());
    made->editor->tools().reload();
    *clone = made.release();
  });
}

void bda_library_close(bda_library* library) { delete library; }

int64_t bda_library_entry(const bda_library* library) {
  if (library == nullptr || library->editor == nullptr || !library->wire.expired()) return 0;
  return library->editor->library().entryOfRun().value_or(0);
}

const char* bda_library_error(const bda_library* library) {
  return library == nullptr ? "library is NULL" : library->error.c_str();
}

bda_result bda_library_name_parameters(bda_library* library, const char* names) {
  return callWith(library, [&](EmbeddedEditor&, Doubts&) { library->names = parameterNamesIn(names); });
}

bda_result bda_library_handle(bda_library* library, unsigned port, const uint8_t* message, size_t size, bda_send send,
                              void* context, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor, Doubts&) {
    require(message, "message");
    const std::span<const std::uint8_t> bytes(message, size);
    const Reading reading = readMessage(bytes);
    if (reading.kind == Reading::Kind::dump) requireChangeable(*library);
    if (!std::exchange(library->isReceiving, true)) editor.library().beginRun({"receive"});
    const Record record = editor.handle(reading, bytes, BDA::DevicePortNum(port), ++library->messages);
    if (json != nullptr)
      handOut(copyOf(jsonOf({library->messages, nullptr, {}}, BDA::DevicePortNum(port), bytes, record) + '\n'), json);
    if (send != nullptr)
      for (const AssistantHost::Sent& sent : record.sent)
        send(context, sent.port, sent.bytes.data(), sent.bytes.size());
    if (record.libraryFailed) throw CallFailure{BDA_FAILED, record.reason};
    if (record.outcome == Outcome::refused) throw CallFailure{BDA_REFUSED, record.reason};
    if (isSilentlyBroken(record)) throw CallFailure{BDA_REFUSED, describeFault(record.reading)};
  });
}

bda_result bda_library_request(bda_library* library, const char* places, bda_send send, void* context) {
  return callWith(library, [&](EmbeddedEditor& editor, Doubts& doubts) {
    const LeavingOut leavingOut(editor, doubts);
    for (const BulkAddress address : parseAddresses(wordsOf(places, "places"))) {
      const Record record = editor.handle(editor.requestFor(address), BDA::DevicePort_Main, ++library->messages);
      const std::string why = whyUnanswered(record);
      if (!why.empty() && record.libraryFailed) throw CallFailure{BDA_FAILED, why};
      if (!why.empty()) doubts.add(nameOrBytes(address) + ": " + why);
      if (!why.empty() || send == nullptr) continue;
      for (const AssistantHost::Sent& sent : record.sent)
        send(context, sent.port, sent.bytes.data(), sent.bytes.size());
    }
  });
}
