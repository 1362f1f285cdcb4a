// The plain counterpart of the static evaluation.
#pragma once

namespace plain {

// Of the whole position from White's view, worked out square by square.
int ComputeEvaluation();

} // namespace plain
