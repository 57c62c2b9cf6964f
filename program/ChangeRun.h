#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "Program.h"
#include "output/ChangeLines.h"

namespace Editor {

// A run of a verb that changes the library as one transaction and one entry of its history, or rehearses that on a
// copy. What the history says of it is what is told.
class ChangeRun {
 public:
  // Throws Failure (kUnusableInput) and LibraryError. Nobody else changes the library from now on.
  ChangeRun(Program& program, LibraryRun run, const ChangeOptions& options)
      : program_(program),
        options_(options),
        editor_(options.dryRun ? program.openToRehearse(std::move(run)) : program.openToChange(std::move(run))),
        transaction_(editor_->library()) {
    editor_->tools().reload();
  }

  EmbeddedEditor& editor() { return *editor_; }
  Library& library() { return editor_->library(); }
  // Throws LibraryError, with nothing kept and nothing told, as what follows.
  std::vector<PlaceChange> commit() {
    std::vector<PlaceChange> changes = changesOfRun(library());
    transaction_.commit();
    if (!options_.dryRun && !changes.empty()) program_.noteChange();
    return changes;
  }
  std::vector<PlaceChange> keep() {
    std::vector<PlaceChange> changes = commit();
    tellChanges(changes, options_, program_.console);
    return changes;
  }

 private:
  Program& program_;
  const ChangeOptions& options_;
  const std::unique_ptr<EmbeddedEditor> editor_;
  Library::Transaction transaction_;
};

}  // namespace Editor
