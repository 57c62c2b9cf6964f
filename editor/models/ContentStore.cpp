#include "models/ContentStore.h"

namespace Editor {

ContentStore::~ContentStore() = default;

}  // namespace Editor
