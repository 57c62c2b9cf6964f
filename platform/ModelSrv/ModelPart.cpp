#include "bda/platform/ModelSrv/ModelPart.h"

namespace ModelSrv {

ModelPart::~ModelPart() = default;

}  // namespace ModelSrv
