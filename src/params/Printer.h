#pragma once

#include "params/Document.h"

namespace kiv {

class ByteSink;

// Prints the blocks that the document has, in file order, and of a broken one what was complete:
// the titles as the block table has them, numbers with six decimals, in any locale.
void print(const Document& document, ByteSink& sink);

} // namespace kiv
