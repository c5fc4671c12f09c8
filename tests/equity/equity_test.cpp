#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "equity/equity.h"
#include "equity/evaluator.h"

namespace felthawk::equity {
namespace {

std::vector<Card> CardsOf(const std::string& text) {
    std::vector<Card> cards;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2)
        cards.push_back(*ParseCard(text.substr(i, 2)));
    return cards;
}

EquityRequest Request(const std::string& hero, const std::string& board,
                      const std::vector<std::string>& ranges) {
    EquityRequest request;
    const auto h = CardsOf(hero);
    request.hero = {h[0], h[1]};
    request.board = CardsOf(board);
    for (const auto& r : ranges) request.opponents.push_back(ParseRange(r));
    return request;
}

// The user's equity against fixed hands, every board dealt and judged one by one.
double DealtEquity(const std::vector<Card>& hero, const std::vector<Card>& board,
                   const std::vector<std::vector<Card>>& others) {
    CardMask used = 0;
    for (Card c : hero) used |= Bit(c);
    for (Card c : board) used |= Bit(c);
    for (const auto& o : others) used |= Bit(o[0]) | Bit(o[1]);
    std::vector<Card> deck;
    for (Card c = 0; c < kDeckSize; ++c) {
        if (!(used & Bit(c))) deck.push_back(c);
    }
    double share = 0;
    int64_t boards = 0;
    std::vector<Card> full = board;
    auto deal = [&](auto& self, std::size_t from) -> void {
        if (full.size() == 5) {
            Hand common;
            for (Card c : full) common += Hand::Of(c);
            const HandValue mine = Evaluate(common + Hand::Of(hero[0]) + Hand::Of(hero[1]));
            HandValue best = 0;
            int tied = 0;
            for (const auto& o : others) {
                const HandValue theirs = Evaluate(common + Hand::Of(o[0]) + Hand::Of(o[1]));
                if (theirs > best) best = theirs, tied = 0;
                if (theirs == best) ++tied;
            }
            if (mine > best) share += 1;
            if (mine == best) share += 1.0 / (tied + 1);
            ++boards;
            return;
        }
        for (std::size_t i = from; i < deck.size(); ++i) {
            full.push_back(deck[i]);
            self(self, i + 1);
            full.pop_back();
        }
    };
    deal(deal, 0);
    return share / static_cast<double>(boards);
}

TEST(Equity, KnownFiguresBeforeTheFlop) {
    auto request = Request("AhAs", "", {"KdKc"});
    const auto aces = ComputeEquity(request);
    EXPECT_EQ(aces.method, EquityMethod::kExact);
    EXPECT_EQ(aces.samples, 1'712'304u);
    EXPECT_NEAR(aces.win * 1'712'304, 1'388'072, 1e-6);
    EXPECT_NEAR(aces.tie * 1'712'304, 6'538, 1e-6);
    EXPECT_NEAR(aces.equity * 100, 81.255, 0.0005);
    const auto kings = ComputeEquity(Request("KdKc", "", {"AhAs"}));
    EXPECT_NEAR(kings.equity * 100, 18.745, 0.0005);

    const auto suited = ComputeEquity(Request("AsKs", "", {"random"}));
    EXPECT_EQ(suited.method, EquityMethod::kExact);
    EXPECT_NEAR(suited.equity * 100, 67.045, 0.0005);
}

// The exact walk counts boards by rank and patches in flushes; judging every
// board one by one must give the same figure, flush-heavy spots included.
TEST(Equity, ExactMatchesEveryBoardDealt) {
    struct Row {
        const char* hero;
        const char* board;
        std::vector<const char*> others;
    };
    const Row rows[] = {
        {"7s6s", "", {"AhKh", "2s2d"}},
        {"AsKs", "Qs7s2d", {"JsTs", "QhQd"}},
        {"9h8h", "7h6c2h", {"AhAd", "KcQc", "5h5s"}},
        {"AcAd", "KsQsJs", {"Ts9s"}},
        {"2c3d", "4h5s6c7d", {"8h9h", "AsAh"}},
        {"AhKd", "Ac2c3c4c5c", {"KcQd", "7h7d"}},
        {"QsJh", "QcJcTd", {"Ks9s", "AhKh", "8c7c", "6d6h"}},
        {"Td9d", "8d", {"AsKs", "6d5d"}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> ranges;
        std::vector<std::vector<Card>> others;
        for (const char* o : row.others) {
            ranges.push_back(o);
            others.push_back(CardsOf(o));
        }
        auto request = Request(row.hero, row.board, ranges);
        request.method = EquityMethod::kExact;
        EXPECT_NEAR(ComputeEquity(request).equity,
                    DealtEquity(CardsOf(row.hero), CardsOf(row.board), others), 1e-12)
            << row.hero << " on " << row.board;
    }
}

// A weighted range is the weighted mean of its combos.
TEST(Equity, RangeIsTheWeightedMeanOfItsCombos) {
    struct Row {
        const char* hero;
        const char* board;
        const char* range;
    };
    const Row rows[] = {
        {"AsKs", "Qs7s2d", "JJ,AQs:0.5,7h6h:0.25"},
        {"8c8d", "Kh", "AKs:0.5,QQ-TT"},
        {"AhQh", "9h8d2c5h", "T9,88:0.3"},
    };
    for (const auto& row : rows) {
        auto request = Request(row.hero, row.board, {row.range});
        request.method = EquityMethod::kExact;
        CardMask known = 0;
        for (Card c : CardsOf(row.hero)) known |= Bit(c);
        for (Card c : CardsOf(row.board)) known |= Bit(c);
        double sum = 0, weight = 0;
        for (const auto& combo : WithoutCards(ParseRange(row.range), known)) {
            sum += combo.weight *
                   DealtEquity(CardsOf(row.hero), CardsOf(row.board), {{combo.high, combo.low}});
            weight += combo.weight;
        }
        EXPECT_NEAR(ComputeEquity(request).equity, sum / weight, 1e-12) << row.range;
    }
}

// Random spots: Monte Carlo within three standard errors of the exact figure.
TEST(Equity, MonteCarloLandsNearTheExactFigure) {
    struct Row {
        int boardCards;
        std::vector<std::string> ranges;
    };
    const Row rows[] = {
        {0, {"QQ+,AKs"}},
        {0, {"T9s-54s", "AA:0.5,KK"}},
        {3, {"random"}},
        {3, {"random", "QQ+,AKs"}},
        {4, {"random", "QQ+,AKs"}},
        {5, {"random", "22+:0.5,A2s+"}},
        {4, {"JTs-67s:0.5,99-22", "random"}},
    };
    std::mt19937 random(16);
    for (const auto& row : rows) {
        std::vector<Card> deck(kDeckSize);
        for (Card c = 0; c < kDeckSize; ++c) deck[c] = c;
        std::shuffle(deck.begin(), deck.end(), random);
        EquityRequest request;
        request.hero = {deck[0], deck[1]};
        request.board.assign(deck.begin() + 2, deck.begin() + 2 + row.boardCards);
        for (const auto& r : row.ranges) request.opponents.push_back(ParseRange(r));
        request.method = EquityMethod::kExact;
        const auto exact = ComputeEquity(request);
        request.method = EquityMethod::kMonteCarlo;
        request.targetStderr = 0.004;
        const auto sampled = ComputeEquity(request);
        EXPECT_EQ(sampled.method, EquityMethod::kMonteCarlo);
        EXPECT_LE(sampled.stderr, 0.004);
        EXPECT_LE(std::abs(sampled.equity - exact.equity), 3 * sampled.stderr)
            << CardText(deck[0]) << CardText(deck[1]) << " exact " << exact.equity << " sampled "
            << sampled.equity << " +- " << sampled.stderr;
    }
}

TEST(Equity, AnswersDependOnTheRequestAlone) {
    auto many = Request("AsKs", "", std::vector<std::string>(5, "random"));
    auto other = Request("2c7d", "AhKhQh", {"random", "JJ+"});
    const auto first = ComputeEquity(many);
    ComputeEquity(other);
    const auto again = ComputeEquity(many);
    EXPECT_EQ(first.method, EquityMethod::kMonteCarlo);
    EXPECT_EQ(first.equity, again.equity);
    EXPECT_EQ(first.samples, again.samples);
    EXPECT_EQ(first.opponents, 5);

    auto nine = Request("2c2d", "", std::vector<std::string>(9, "random"));
    const auto crowded = ComputeEquity(nine);
    EXPECT_EQ(crowded.opponents, 9);
    EXPECT_GT(crowded.equity, 0.05);
    EXPECT_LT(crowded.equity, 0.2);
}

TEST(Equity, CancelStopsEarly) {
    std::atomic<bool> cancel{true};
    for (auto method : {EquityMethod::kExact, EquityMethod::kMonteCarlo}) {
        auto request = Request("AsKs", "", {"random"});
        request.method = method;
        request.targetStderr = 1e-6;
        request.cancel = &cancel;
        const auto result = ComputeEquity(request);
        EXPECT_TRUE(result.cancelled);
        EXPECT_LT(result.milliseconds, 1000);
    }
}

TEST(Equity, ImpossibleRequestsAreRefused) {
    struct Row {
        EquityRequest request;
        const char* message;
    };
    auto tooMany = Request("AsKs", "", std::vector<std::string>(10, "random"));
    auto none = Request("AsKs", "", {});
    auto twice = Request("AsKs", "AsQd2c", {"random"});
    auto emptied = Request("AsKs", "AhAd", {"AA"});
    auto crowded = Request("AsKd", "", {"AA", "AA"});
    auto sixBoard = Request("AsKs", "2c3c4c5c6c7c", {"random"});
    auto noTarget = Request("AsKs", "", {"random"});
    noTarget.targetStderr = 0;
    const Row rows[] = {
        {tooMany, "1 to 9 opponents"},    {none, "1 to 9 opponents"},
        {twice, "As is dealt twice"},     {emptied, "opponent 1's range has no hand left"},
        {crowded, "cannot all be dealt"}, {sixBoard, "at most five"},
        {noTarget, "standard error"},
    };
    for (const auto& row : rows) {
        try {
            ComputeEquity(row.request);
            ADD_FAILURE() << row.message << ": accepted";
        } catch (const EquityError& e) {
            EXPECT_NE(std::string(e.what()).find(row.message), std::string::npos) << e.what();
        }
    }
}

}  // namespace
}  // namespace felthawk::equity
