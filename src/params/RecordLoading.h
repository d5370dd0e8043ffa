#pragma once

class CKivPrm;

namespace kiv {

struct ParsedFile;

// Turns a parsed text into a record, for the library's own programs: what they have parsed already
// is not parsed again. No member of CKivPrm itself: the class is exported whole.
struct RecordLoading {
    // Stores the completed blocks, all of the tables or, where memory is refused, nothing; the
    // record is loaded when the whole text was good.
    static void store(CKivPrm& record, const ParsedFile& parsed);
};

} // namespace kiv
