#pragma once

#include <cstdint>

// The state machine of the editor.
namespace StmcSrv {

// States of the editor's state machine that a temporary model can be opened for.
enum StateTyp : std::uint32_t {
  StateTyp_Void = 0,  // none in particular
};

}  // namespace StmcSrv
