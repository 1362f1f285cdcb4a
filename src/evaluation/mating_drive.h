// What drives a bare king to the edge.
#pragma once

namespace zorvane {

// Centipawns, positive when White has a rook or queen against Black's bare king, negative the other way round, 0
// when neither holds.
int MatingDrive();

} // namespace zorvane
