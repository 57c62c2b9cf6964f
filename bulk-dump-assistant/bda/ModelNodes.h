#pragma once

#include "bda/platform/CMA/ParameterModels.h"

namespace BDA {

using Voice = CMA::VoiceParameterModel;
using Multi = CMA::MultiParameterModel;
using Arpeggio = CMA::ArpeggioParameterModel;
using Master = CMA::MasterParameterModel;
using Remote = CMA::RemoteParameterModel;
using System = CMA::SystemParameterModel;

// What `getter` gives of a model or node, null when the node is null: what a missing node should hold is missing too.
template <typename Node, typename Result, typename... Parameters, typename... Arguments>
Result* from(Node* node, Result* (Node::*getter)(Parameters...), Arguments... arguments) {
  return node == nullptr ? nullptr : (node->*getter)(arguments...);
}

}  // namespace BDA
