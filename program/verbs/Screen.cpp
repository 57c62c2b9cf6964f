// The verb screen: a picture of the editor's screen, as the instrument sends it.

#include <fmt/format.h>

#include <memory>

#include "exchange/Answers.h"
#include "messages/Text.h"
#include "output/OutputFile.h"
#include "output/Picture.h"
#include "verbs/Verbs.h"

namespace Editor {

void screen(const std::string& output, Program& program) {
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  if (output == "-") program.console.keepOutputForBytes();
  OutputFile file(output);
  const Record record = editor->handle(editor->requestFor(kScreen), BDA::DevicePort_Main, 1);
  Picture picture;
  std::string why = whyUnanswered(record);
  if (why.empty()) why = assemblePicture(record.sent, picture);
  if (!why.empty()) throw Failure(kRefused, fmt::format("no screen, nothing is written: {}", escape(why)));
  file.write(encodePng(picture));
  file.commit();
  program.console.note(fmt::format("{} x {} pixels", picture.width, picture.height));
}

}  // namespace Editor
