#include <gtest/gtest.h>

#include <string>

#include "equity/range.h"

namespace felthawk::equity {
namespace {

CardMask Cards(std::initializer_list<const char*> texts) {
    CardMask mask = 0;
    for (const char* t : texts) mask |= Bit(*ParseCard(t));
    return mask;
}

TEST(Range, NotationGivesTheRightCombos) {
    struct Row {
        const char* text;
        std::size_t combos;
        double totalWeight;
    };
    const Row rows[] = {
        {"AKs", 4, 4},
        {"AKo", 12, 12},
        {"ak", 16, 16},
        {"QQ+,AKs", 22, 22},
        {"K4o+", 9 * 12, 108},
        {"99-22", 8 * 6, 48},
        {"22-99", 8 * 6, 48},
        {"JTs-67s", 5 * 4, 20},
        {"A5s-A2s", 4 * 4, 16},
        {"AcKd", 1, 1},
        {"random", 1326, 1326},
        {" QQ+ : 0.5 , AKs ", 22, 9 + 4},
        {"AA,AsAh:0.25", 6, 5.25},  // a combo named again keeps the last weight
        {"AKs,AK", 16, 16},
    };
    for (const auto& row : rows) {
        const Range range = ParseRange(row.text);
        double total = 0;
        for (const auto& c : range) {
            total += c.weight;
            EXPECT_GT(c.high, c.low) << row.text;
        }
        EXPECT_EQ(range.size(), row.combos) << row.text;
        EXPECT_DOUBLE_EQ(total, row.totalWeight) << row.text;
    }
}

TEST(Range, KnownCardsBlockCombos) {
    struct Row {
        const char* text;
        CardMask known;
        std::size_t left;
    };
    const Row rows[] = {
        {"QQ+,AKs", Cards({"Qh", "As", "Kd"}), 3 + 3 + 3 + 2},
        {"AA", Cards({"Ah", "As", "Ad"}), 0},
        {"random", Cards({"2c", "3c", "4c", "5c", "6c", "7c", "8c"}), 1326 - 7 * 51 + 21},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(WithoutCards(ParseRange(row.text), row.known).size(), row.left) << row.text;
    }
}

TEST(Range, MalformedTextNamesThePlace) {
    struct Row {
        const char* text;
        const char* where;
    };
    const Row rows[] = {
        {"AKx", "position 3"},         {"AZs", "position 2"},      {"AK,,QQ", "position 4"},
        {"QQ:2", "position 4"},        {"QQ:0", "position 4"},     {"QQ:x", "position 4"},
        {"99-AKs", "position 1"},      {"AKs-QJo", "position 1"},  {"AsAs", "position 1"},
        {"QQs", "position 3"},         {"AKs,AsXd", "position 7"}, {":0.5", "position 1"},
        {"AKQ", "position 3"},         {"A", "position 1"},        {"AK+s", "position 1"},
        {"AKs,KQs-J9s", "position 5"},
    };
    for (const auto& row : rows) {
        try {
            ParseRange(row.text);
            ADD_FAILURE() << row.text << " was accepted";
        } catch (const EquityError& e) {
            EXPECT_NE(std::string(e.what()).find(row.where), std::string::npos)
                << row.text << ": " << e.what();
        }
    }
    EXPECT_THROW(ParseRange("  "), EquityError);
    EXPECT_THROW(ParseRange(std::string(5000, 'A')), EquityError);
}

}  // namespace
}  // namespace felthawk::equity
