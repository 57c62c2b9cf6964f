#pragma once

#include <memory>

#include "Program.h"
#include "input/InputFile.h"

namespace Editor {

// An editor that has received all dumps of a file into a library in memory, whatever device they are for. What is
// broken or refused is told, and makes the run end with kRefused; the rest is there. `verb` is for the progress.
std::unique_ptr<EmbeddedEditor> editorOf(const InputFile& input, const char* verb, Program& program);

}  // namespace Editor
