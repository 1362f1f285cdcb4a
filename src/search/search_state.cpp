#include "search/search_state.h"

namespace zorvane {

int CurrentDepth;
std::int64_t Nodes;

void BeginIteration(int depth) {
  CurrentDepth = depth;
  Nodes = 0;
}

} // namespace zorvane
