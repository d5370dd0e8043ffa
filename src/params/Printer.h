#pragma once

#include "params/Document.h"

namespace kiv {

class ByteSink;

// Of a number: six decimals, as the format has them, or the fewest that read back to the same.
enum class Digits : unsigned char { sixDecimals, shortest };

// Prints the blocks that the document has, in file order, and of a broken one what was complete:
// the titles as the block table has them, in any locale.
void print(const Document& document, ByteSink& sink, Digits digits = Digits::sixDecimals);

} // namespace kiv
