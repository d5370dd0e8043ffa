#pragma once

namespace kiv {

inline constexpr const char* messageCaption = "Zel Error Message for KIV";

// The text of message 601 to 624, null for any other id. The texts are kept as hosts know them,
// with their spelling and punctuation.
const char* messageText(unsigned id);

} // namespace kiv
