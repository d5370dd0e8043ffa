#include "KIVInterface/StatusCodes.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

TEST(StatusCodes, TableIsOrderedAndEveryCodeHasAText) {
    const int codes[] = {0, 20, 550, 551, 553, 554};
    ASSERT_EQ(std::size(kivStatusTexts()), std::size(codes));
    for (std::size_t i = 0; i < std::size(codes); ++i) {
        EXPECT_EQ(kivStatusTexts()[i].code, codes[i]);
        EXPECT_STREQ(kivStatusText(codes[i]), kivStatusTexts()[i].text);
        EXPECT_EQ(std::strncmp(kivStatusTexts()[i].name, "KIV_", 4), 0);
    }
    for (const int unknown : {-1, 1, 552, 601})
        EXPECT_STREQ(kivStatusText(unknown), "unknown status code");
}

TEST(StatusCodes, AreAllInTheHostGuide) {
    std::ifstream file(KIV_DOCS "/host-guide.md");
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    for (const KIV_STATUS_TEXT& row : kivStatusTexts()) {
        const std::string start = "\n| " + std::to_string(row.code) + " | `" + row.name + "` | ";
        EXPECT_NE(guide.find(start), guide.npos) << start;
    }
}
