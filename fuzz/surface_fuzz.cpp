// Arbitrary sequences of calls of the C surface, with arbitrary arguments: each has one of the results, its answer and
// its words are what the header promises, and what is refused has changed nothing.
//
// The first byte of each call is its row in kFunctions; its arguments take theirs one after the other.
// surface_seeds.py writes such inputs. With BDA_FUZZ_REACHED in the environment, the program says at its end how often
// each function was BDA_OK, and fails where one never was.

#include <cstdio>
#include <cstdlib>

#include "surface_files.h"
#include "surface_library.h"
#include "surface_wires.h"

namespace Surface {
namespace {

bda_result general(Caller& caller) {
  require(*bda_version() != '\0', "no version");
  bda_free(nullptr);
  bda_files_close(nullptr);
  bda_library_close(nullptr);
  bda_joiner_close(nullptr);
  bda_wire_close(nullptr);
  require(bda_wire_is_done(nullptr) == 1, "no wire is not done");
  Answer<char> answer(caller.wants());
  const bda_result result = bda_places(answer.out());
  return json(caller, answer, result, result == BDA_OK ? "" : "nobody wants it");
}

// A row for each function of the header that is called, in its order, and one for two wires at a time.
struct Function {
  const char* name;
  bda_result (*call)(Caller&);
  unsigned reached = 0;  // how often it was BDA_OK
};
Function kFunctions[] = {
    {"bda_places", general},
    {"bda_files_new", filesNew},
    {"bda_files_close", filesClose},
    {"bda_files_add", filesAdd},
    {"bda_files_name_parameters", filesNameParameters},
    {"bda_files_each", filesEach},
    {"bda_files_list", filesRead<bda_files_list>},
    {"bda_files_verify", filesRead<bda_files_verify>},
    {"bda_files_explain", filesExplain},
    {"bda_files_salvage", filesSalvage},
    {"bda_files_convert", filesConvert},
    {"bda_library_open", libraryOpen},
    {"bda_library_clone", libraryClone},
    {"bda_library_of_files", libraryOfFiles},
    {"bda_library_close", libraryClose},
    {"bda_library_name_parameters", libraryNameParameters},
    {"bda_library_contents", libraryAt<bda_library_contents, kPlaces>},
    {"bda_library_show", libraryAt<bda_library_show, kPlaces>},
    {"bda_library_find", libraryAt<bda_library_find, kFinding>},
    {"bda_library_diff", libraryDiff},
    {"bda_library_explain", libraryExplain},
    {"bda_library_check", libraryCheck},
    {"bda_library_history", libraryHistory},
    {"bda_library_settings", libraryAt<bda_library_settings, kSettings>},
    {"bda_library_backup", libraryBackup},
    {"bda_library_apply", libraryApply},
    {"bda_library_rename", libraryRename},
    {"bda_library_favourite", libraryFavourite},
    {"bda_library_copy_places", arranging<bda_library_copy_places>},
    {"bda_library_move_places", arranging<bda_library_move_places>},
    {"bda_library_swap_places", arranging<bda_library_swap_places>},
    {"bda_library_remove", libraryRemove},
    {"bda_library_undo", libraryUndo},
    {"bda_library_set", librarySet},
    {"bda_library_restore", libraryRestore},
    {"bda_library_handle", libraryHandle},
    {"bda_library_request", libraryRequest},
    {"bda_joiner_new", joinerNew},
    {"bda_joiner_feed", joinerFeed},
    {"bda_joiner_finish", joinerFinish},
    {"bda_joiner_close", joinerClose},
    {"bda_wire_fetch", wireFetch},
    {"bda_wire_send", wireSend},
    {"bda_wire_send_files", wireSendFiles},
    {"bda_wire_instrument", wireInstrument},
    {"bda_wire_close", wireClose},
    {"bda_wire_effects", wireEffects},
    {"bda_wire_progress", wireProgress},
    {"bda_wire_feed", wireFeed},
    {"bda_wire_tick", wireTick},
    {"bda_wire_stop", wireStop},
    {"bda_wire_results", wireResults},
    {"two wires", wiresPlay},
};

void sayReached() {
  bool isAll = true;
  for (const Function& function : kFunctions) {
    std::printf("%8u %s\n", function.reached, function.name);
    isAll = isAll && function.reached > 0;
  }
  std::fflush(stdout);
  if (!isAll) std::_Exit(EXIT_FAILURE);
}

}  // namespace
}  // namespace Surface

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool isAsked = std::getenv("BDA_FUZZ_REACHED") != nullptr && std::atexit(Surface::sayReached) == 0;
  (void)isAsked;
  constexpr unsigned kEffort = 20;
  Surface::Caller caller(Input(data, size));
  while (!caller.input.empty() && caller.spend(kEffort)) {
    Surface::Function& function = Surface::kFunctions[caller.input.byte() % std::size(Surface::kFunctions)];
    if (function.call(caller) == BDA_OK) ++function.reached;
    caller.endCall();
  }
  return 0;
}
