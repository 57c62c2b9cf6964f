#include "bda/platform/ContSrv/ContSrv.h"

#include "bda/platform/EvtSrv/EventPortManager.h"

namespace ContSrv {

Data::~Data() = default;
DataFile::~DataFile() = default;
Work::~Work() = default;

Work* WorkManager::getWork(EvtSrv::EventPortManager* manager) {
  return manager == nullptr ? nullptr : manager->getContentsWork();
}

}  // namespace ContSrv
