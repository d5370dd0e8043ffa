// What a report says of its run: digests and times.

#include <algorithm>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "host/base/Hashing.h"
#include "host/rows/RowTime.h"
#include "host/rows/TimeStamp.h"

namespace {

using namespace kiv::host;

// The vectors of FIPS 180-2, in pieces of several sizes.
TEST(Sha256, PublishedVectors) {
    const struct {
        std::string text;
        const char* digest;
    } vectors[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& v : vectors)
        for (const std::size_t piece : {std::size_t{1}, std::size_t{61}, std::size_t{4096}}) {
            Sha256 hash;
            for (std::size_t at = 0; at < v.text.size(); at += piece)
                hash.add(std::span(v.text).subspan(at, std::min(piece, v.text.size() - at)));
            EXPECT_EQ(hash.hex(), v.digest) << v.text.size() << ' ' << piece;
        }
}

TEST(TimeStamp, Formats) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* text;
        double seconds;
        bool zoned;
        const char* shown;
    } rows[] = {
        {"1970-01-01T00:00:00Z", 0, true, "1970-01-01T00:00:00Z"},
        {"1970-01-01 00:01", 60, false, "1970-01-01T00:01:00"},
        {"2024-02-29T23:59:59,125-0030", 1709252999.125, true, "2024-03-01T00:29:59.125Z"},
        {"2026-03-29t14:05:09.25+02", 1774785909.25, true, "2026-03-29T12:05:09.25Z"},
        {"1969-12-31T23:59:59.5z", -0.5, true, "1969-12-31T23:59:59.5Z"},
        {"2023-02-29T00:00Z", none, false, ""},
        {"2023-02-28", none, false, ""},
        {"2023-02-28T24:00Z", none, false, ""},
        {"2023-02-28T12:00:00.Z", none, false, ""},
        {"2023-02-28T12:00:00+2", none, false, ""},
        {"2023-02-28T12:00:00Z ", none, false, ""},
        {"+023-02-28T12:00:00Z", none, false, ""},
        {"29.03.2026 14:05:06", 1774793106, false, "2026-03-29T14:05:06"},
        {"29.03.2026 14:05", 1774793100, false, "2026-03-29T14:05:00"},
        {"20260329T140506", 1774793106, false, "2026-03-29T14:05:06"},
        {"20260329T1405Z", 1774793100, true, "2026-03-29T14:05:00Z"},
        {"20260329 140506,5+0200", 1774785906.5, true, "2026-03-29T12:05:06.5Z"},
        {"1774793106.25", 1774793106.25, true, "2026-03-29T14:05:06.25Z"},
        {"31.02.2026 14:05", none, false, ""},
        {"29.03.2026", none, false, ""},
        {"20260329T14:05", none, false, ""},
        {"20260329", none, false, ""},
        {"12345678901", none, false, ""},
        {"1774793106.", none, false, ""},
        {"12.5", none, false, ""},
        {"", none, false, ""},
    };
    for (const auto& row : rows) {
        const auto stamp = timeStampIn(row.text);
        ASSERT_EQ(stamp.has_value(), *row.shown != 0) << row.text;
        if (!stamp)
            continue;
        EXPECT_EQ(stamp->seconds, row.seconds) << row.text;
        EXPECT_EQ(stamp->zoned, row.zoned) << row.text;
        EXPECT_EQ(timeStampText(*stamp), row.shown);
    }
}

} // namespace
