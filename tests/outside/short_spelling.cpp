// An editor written to 0.1 says CMA/JobTools.h for bda/platform/CMA/JobTools.h: the targets offer that folder as well.

#include "CMA/JobTools.h"
#include "bda/platform/CMA/JobTools.h"

CMA::JOB::Result shortSpelling() { return CMA::JOB::Result_Success; }
