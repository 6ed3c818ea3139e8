// Placeholder until the optimiser lands: the listing passes through unchanged.
#include "codegen/optimizer.h"

namespace velkor {

void TOptimizer::Load(const StringList& lines) { lines_ = lines; }
void TOptimizer::Run() {}

} // namespace velkor
