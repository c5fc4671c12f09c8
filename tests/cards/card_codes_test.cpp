#include "cards/card_codes.h"
#include "cards/runtime_fault.h"

#include <gtest/gtest.h>

namespace felthawk {
namespace {

TEST(CardCodes, CardFromTextGivesRankPlusSuitBase) {
    const struct {
        const char* text;
        CardCode code;
    } cases[] = {{"TD", 310}, {"AS", 114}, {"2C", 2}, {"9H", 209}, {"KS", 113}, {"", 0}};
    for (const auto& c : cases) EXPECT_EQ(CardFromText(c.text), c.code) << c.text;
}

TEST(CardCodes, SuitBaseKeepsZeroForNoCard) {
    const struct {
        long card;
        int16_t base;
    } cases[] = {{2, 1},     {14, 1},    {1, 0},     {15, 0},    {101, 0}, {0, 0},
                 {102, 100}, {214, 200}, {302, 300}, {314, 300}, {315, 0}, {-2, 0}};
    for (const auto& c : cases) EXPECT_EQ(SuitBase(c.card), c.base) << c.card;
}

TEST(CardCodes, RankTexts) {
    EXPECT_EQ(RankValue(""), 0);
    EXPECT_EQ(RankValue("X"), 0);
    EXPECT_EQ(RankValue("9"), 9);
    EXPECT_EQ(RankValue("1"), 0);
    EXPECT_EQ(RankValue("T"), 10);
    EXPECT_EQ(RankText(15), "");
    EXPECT_EQ(RankText(7), " 7");
    EXPECT_EQ(Trim(RankText(7)), "7");
    EXPECT_EQ(RankToLetter(15), "");
    EXPECT_EQ(RankToLetter(9), "9");
    EXPECT_EQ(RankToLetter(12), "Q");
    EXPECT_EQ(RankFromLetter("T"), 10);
    EXPECT_EQ(RankFromLetter("7"), 7);
    EXPECT_EQ(RankFromLetter("X"), 0);
    EXPECT_EQ(RankFromLetter("7.9"), 7);
    // Numbers beyond 16 bits are the runtime's overflow, not a wrapped rank.
    for (const char* text : {"99999", "-40000", "7777777777777777777777"}) {
        EXPECT_THROW(RankFromLetter(text), RuntimeFault) << text;
    }
    EXPECT_THROW(CardFromText("32700D"), RuntimeFault);
}

TEST(CardCodes, CardTextRoundTrips) {
    for (int suit = 0; suit < 4; ++suit) {
        for (int rank = 2; rank <= 14; ++rank) {
            const CardCode code = static_cast<CardCode>(suit * 100 + rank);
            const std::string text = CardText(code);
            EXPECT_TRUE(IsCardText(text)) << text;
            EXPECT_EQ(CardFromText(text), code) << text;
        }
    }
    EXPECT_FALSE(IsCardText("1S"));
    EXPECT_FALSE(IsCardText("as"));
    EXPECT_FALSE(IsCardText("ASS"));
}

}  // namespace
}  // namespace felthawk
