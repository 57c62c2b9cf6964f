// The verb list: the messages of files, judged one by one without a library.

#include "output/ReadingLines.h"
#include "verbs/Verbs.h"

namespace Editor {

void list(const Words& files, bool json, Program& program) {
  const InputFiles input(files, program.console);
  if (!input.reportLosses(program.console)) program.refuse();
  printReadings(input, json ? LineForm::json : LineForm::words, program.console,
                [&](const InputFiles::Message&, const Reading& reading) {
                  if (isBroken(reading)) program.refuse();
                });
}

}  // namespace Editor
