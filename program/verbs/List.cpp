// The verb list: the messages of files, judged one by one without a library.

#include "output/ReadingLines.h"
#include "verbs/Verbs.h"

namespace Editor {

void list(const Words& files, bool json, Program& program) {
  InputStream input(files);
  if (input.isLive()) program.console.flushEachLine();
  const ReadingResult result = printReadings(input, json ? LineForm::json : LineForm::words, program.console,
                                             [&](const InputMessage&, const Reading& reading) {
                                               if (isBroken(reading)) program.refuse();
                                             });
  if (!result.areAllWhole) program.refuse();
  program.failInputs(result.problems);
}

}  // namespace Editor
