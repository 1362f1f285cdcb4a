#include "tree/node_count.h"

namespace zorvane {

std::int64_t Nodes;

void ResetNodes() { Nodes = 0; }

} // namespace zorvane
