#include "VerbHelp.h"

#include <algorithm>

#include "ExitCode.h"

namespace Editor {

namespace {

constexpr Heeds kNoLibrary{};
constexpr Heeds kNoLibraryButMore{.verbose = true};
constexpr Heeds kLibrary{.library = true};
constexpr Heeds kLibraryAndMore{.library = true, .verbose = true};
constexpr Heeds kLibraryAndLists{.library = true, .names = Heeds::Names::lists};
constexpr Heeds kEverything{.library = true, .names = Heeds::Names::lists, .verbose = true};
constexpr Heeds kLibraryAndParameters{.library = true, .names = Heeds::Names::parameters};

constexpr std::array kVerbs{
    VerbHelp{"list",
             "FILE...",
             "What messages a file holds, one line each",
             VerbGroup::files,
             kNoLibraryButMore,
             {{{"bda list dump.syx", "each message, and what it carries"},
               {"bda list --json *.syx", "the same of several files, for a script"}}}},
    VerbHelp{"verify",
             "FILE...",
             "Whether every message and every unit of a file is whole",
             VerbGroup::files,
             kNoLibraryButMore,
             {{{"bda verify dump.syx", "what is missing or broken, exit code 3 if anything is"},
               {"bda verify -q *.syx", "the same, without the closing notes"}}}},
    VerbHelp{"convert",
             "IN... -o OUT | --split DIR",
             "Messages into other files, chosen and addressed anew",
             VerbGroup::files,
             kNoLibrary,
             {{{"bda convert song.mid -o song.syx", "or to .mid, or .txt"},
               {"bda convert voice.syx --place voice:edit -o edit.syx", "to another place"}}}},
    VerbHelp{"explain",
             "FILE [OFFSET] | ADDRESS PATH",
             "What a byte of a file carries, or which bytes a parameter",
             VerbGroup::files,
             kLibraryAndParameters,
             {{{"bda explain dump.syx 0x1F4", "one byte; all without offset"},
               {"bda explain voice:user1:6 'voice.common[3]'", "where a parameter travels"}}}},
    VerbHelp{"salvage",
             "FILE... -o GOOD",
             "What is whole in broken captures, and requests for the rest",
             VerbGroup::files,
             kNoLibraryButMore,
             {{{"bda salvage monday.syx friday.syx -o good.syx", "captures complete each other"},
               {"bda salvage a.syx -o good.syx --requests r.syx", "and how to fetch the rest"}}}},
    VerbHelp{"receive",
             "FILE...",
             "Feed messages to the library's instrument",
             VerbGroup::receiving,
             kEverything,
             {{{"bda receive dump.syx", "store what the file holds"},
               {"bda receive --whole --dry-run dump.syx", "what would be stored"}}}},
    VerbHelp{"request",
             "ADDRESS...",
             "Ask the library's instrument for dumps, as .syx",
             VerbGroup::receiving,
             kLibraryAndLists,
             {{{"bda request voice:user1:6 -o voice.syx", "one voice, from header to footer"},
               {"bda request system -o system.syx", "all system blocks"}}}},
    VerbHelp{"replay",
             "TRANSCRIPT",
             "A run that --transcript kept, once more, compared",
             VerbGroup::receiving,
             kLibrary,
             {{{"bda replay run.jsonl", "with the library that it holds"},
               {"bda replay run.jsonl --from-library old.db", "with another one"}}}},
    VerbHelp{"screen",
             "-o FILE",
             "A picture of the editor's screen",
             VerbGroup::receiving,
             kLibrary,
             {{{"bda screen -o screen.png", "as PNG, 160 x 64 pixels"},
               {"bda screen -o - > screen.png", "the same by standard output"}}}},
    VerbHelp{"fetch",
             "ADDRESS... --from PORT",
             "What an instrument holds, into the library or a file",
             VerbGroup::instrument,
             kLibrary,
             {{{"bda fetch file:voice:user1 --from /dev/midi1", "a bank, into the library"},
               {"bda fetch all --from /dev/midi1 -o all.syx", "all: hours, if much is empty"}}}},
    VerbHelp{"instrument",
             "--on PORT",
             "The library answers at a port, as the instrument would",
             VerbGroup::instrument,
             kEverything,
             {{{"bda instrument --on pty:", "it says where"},
               {"bda instrument --on /dev/midi1 --faults drop=1%", "with faults"}}}},
    VerbHelp{"send",
             "FILE|ADDRESS... --to PORT",
             "Dumps to an instrument, and whether they arrived",
             VerbGroup::instrument,
             kLibrary,
             {{{"bda send voice.syx --to /dev/midi1 --verify", "a file, read back"},
               {"bda send voice:user1:6 --to /dev/midi1 --to-edit-buffer", "to hear it"}}}},
    VerbHelp{"job",
             "voice|drum|performance|mix|master --to PORT",
             "An edit buffer to an instrument, as the assistant's job sends it",
             VerbGroup::instrument,
             kLibrary,
             {{{"bda job voice --to /dev/midi1", "the voice that is being edited"},
               {"bda job mix --to - > mix.syx", "the multi, into a file"}}}},
    VerbHelp{"ports",
             "",
             "What can be sent to and received from",
             VerbGroup::instrument,
             kNoLibrary,
             {{{"bda ports", "names for --from, --to and --on"}, {"bda ports --json", "the same for a script"}}}},
    VerbHelp{"record",
             "--from PORT -o FILE",
             "What arrives at a port, into a file",
             VerbGroup::instrument,
             kNoLibraryButMore,
             {{{"bda record --from /dev/snd/midiC1D0 -o a.syx", "until Ctrl-C"},
               {"bda record --from /dev/midi1 -o a.syx --quiet-after 3", "until nothing comes"}}}},
    VerbHelp{"contents",
             "[ADDRESS...]",
             "What the library holds, by bank",
             VerbGroup::library,
             kLibrary,
             {{{"bda contents voice:user1 drum:user", "two banks, as a grid on a terminal"},
               {"bda contents --json", "with hashes, for a script"}}}},
    VerbHelp{"find",
             "[TERM...]",
             "Contents by name, kind, parameters or likeness",
             VerbGroup::library,
             kLibraryAndParameters,
             {{{"bda find piano --favourite", "by a part of the name"},
               {"bda find --like voice:user1:6 --in dumps", "the nearest in a folder first"}}}},
    VerbHelp{"show",
             "TARGET...",
             "The parameters of targets",
             VerbGroup::library,
             kLibraryAndParameters,
             {{{"bda show voice:user1:6", "one line for each group of parameters"},
               {"bda show system --json > system.json", "as apply takes it"}}}},
    VerbHelp{"apply",
             "TARGET FILE",
             "Replace a whole target by what show --json printed",
             VerbGroup::library,
             kLibrary,
             {{{"bda apply system system.json", "the inverse of show system --json"},
               {"bda apply voice:user1:6 voice.json", "any voice's, here"}}}},
    VerbHelp{"rename",
             "ADDRESS NAME | --from TABLE",
             "Name contents or edit buffers",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda rename voice:user1:6 \"Grand Piano\"", "up to 20 characters"},
               {"bda rename --from names.txt", "all that a table names"}}}},
    VerbHelp{"favourite",
             "ADDRESS... on|off",
             "Make voices favourites, or no longer",
             VerbGroup::library,
             kLibrary,
             {{{"bda favourite voice:user1:6 on", "a favourite from now on"},
               {"bda favourite voice:user1:1..16 off", "several no longer"}}}},
    VerbHelp{
        "remove",
        "ADDRESS...",
        "Remove contents: all that are named, or none",
        VerbGroup::library,
        kLibraryAndMore,
        {{{"bda remove voice:user1:6", "favourite flags stay"}, {"bda remove master:1 master:2", "both or none"}}}},
    VerbHelp{"copy",
             "FROM TO",
             "Copy contents or edit buffers to other places",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda copy voice:edit voice:user1:6", "one place"},
               {"bda copy voice:user1 voice:user2 --from-library old.db", "a bank"}}}},
    VerbHelp{"move",
             "FROM TO",
             "Move contents or edit buffers to other places",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda move voice:user1:1..16 voice:user3:1", "a range, to this place and on"},
               {"bda move voice:user1:1..127 voice:user1:2", "room for one more"}}}},
    VerbHelp{"swap",
             "ADDRESS ADDRESS",
             "Swap what two places, ranges or banks hold",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda swap voice:user1:1 voice:user1:2", "two voices"},
               {"bda swap --dry-run voice:user1 voice:user2", "what would change"}}}},
    VerbHelp{"history",
             "[-n N]",
             "What changed the library, the newest first",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda history -n 5", "the newest five entries"},
               {"bda history -v", "each with the places that it changed"}}}},
    VerbHelp{"undo",
             "[ENTRY]",
             "Take back the newest change, or that of an entry",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda undo", "the newest change, then the one before it"},
               {"bda undo 12", "that of entry 12 of the history"}}}},
    VerbHelp{"check",
             "",
             "Whether all that the library holds is as it was stored",
             VerbGroup::library,
             kLibrary,
             {{{"bda check", "what is damaged, exit code 3 if anything is"},
               {"bda check --json", "every table and every content, for a script"}}}},
    VerbHelp{"settings",
             "[SETTING [VALUE]]",
             "How it listens, and what history it keeps",
             VerbGroup::library,
             kLibrary,
             {{{"bda settings", "all of them"}, {"bda settings device-number 5", "accept messages for device 5"}}}},
    VerbHelp{"backup",
             "-o FILE",
             "The whole library as messages that restore takes",
             VerbGroup::library,
             kLibrary,
             {{{"bda backup -o backup.syx", "written whole, or not at all"},
               {"bda backup -o - | gzip > backup.syx.gz", "by standard output"}}}},
    VerbHelp{"restore",
             "FILE",
             "Receive all messages of a file into the library, or none",
             VerbGroup::library,
             kLibraryAndMore,
             {{{"bda restore backup.syx", "in one change of the library"},
               {"bda restore --dry-run -v backup.syx", "what would change, by parameter"}}}},
    VerbHelp{"diff",
             "A B",
             "What two libraries or message files do not have in common",
             VerbGroup::library,
             kLibraryAndParameters,
             {{{"bda diff library.db backup.syx", "what changed since"},
               {"bda diff monday.db friday.db", "two libraries"}}}},
    VerbHelp{
        "help",
        "[VERB | --man]",
        "How to use a verb",
        VerbGroup::help,
        kNoLibrary,
        {{{"bda help receive", "as bda receive --help"}, {"bda help --man | man -l -", "all of it, as a manual"}}}},
};

constexpr const char* kAddresses =
    R"(An ADDRESS or TARGET is three hex bytes (0E0A05, 0E 0A 05, 0E/0A/05) or a name:
  voice:user1:6, voice:preset3:128, voice:gm:1, voice:edit, voice:part:4,
  voice:mix:1, drum:preset:1, drum:user:3, drum:gm, drum:edit, performance:a:1,
  performance:edit, multi:edit, master:1, master:edit, remote:1, remote:edit,
  system, additional, file:voice:user1:6, file:mix:1:3, file:multi:1,
  file:single
contents, show, request, remove, copy, move, swap, fetch and send also take a
bank (voice:user1) or a range of one (voice:user1:1..16).
)";

constexpr std::array kExitCodes{
    ExitCodeHelp{kAllGood, "all good"},
    ExitCodeHelp{kWrongUsage, "wrong usage or an error of the program"},
    ExitCodeHelp{kUnusableInput, "input that cannot be used"},
    ExitCodeHelp{kRefused, "something was refused or is broken (diff: differs, find: nothing was found)"},
    ExitCodeHelp{kInterrupted, "ended by Ctrl-C"},
};

}  // namespace

std::span<const VerbHelp> verbHelps() { return kVerbs; }

const VerbHelp* findVerb(const std::string& name) {
  const auto found =
      std::find_if(kVerbs.begin(), kVerbs.end(), [&](const VerbHelp& verb) { return verb.name == name; });
  return found == kVerbs.end() ? nullptr : &*found;
}

const char* addressHelp() { return kAddresses; }

std::span<const ExitCodeHelp> exitCodeHelps() { return kExitCodes; }

const char* titleOf(VerbGroup group) {
  switch (group) {
    case VerbGroup::files:
      return "Files, without a library";
    case VerbGroup::receiving:
      return "Receiving and answering";
    case VerbGroup::instrument:
      return "The instrument, at a port";
    case VerbGroup::library:
      return "The library";
    case VerbGroup::help:
      break;
  }
  return "Help";
}

}  // namespace Editor
