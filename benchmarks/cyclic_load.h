#pragma once

namespace NBenchmarks {

/// Sends 1, 10 and 100 cyclic messages through the module and through python-can over the same socketcand
/// server, and prints how exactly they arrive. Each run takes this long.
void CompareCyclicLoads(int seconds);

}  // namespace NBenchmarks
