// The banner collection and the reading of the banner list, without the
// network.
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

#include "online/banner_service.h"
#include "online/banners.h"
#include "online/xml_document.h"

namespace felthawk {
namespace {

TEST(Banners, KeysPositionsAndRemoval) {
    Banners banners;
    banners.Add(QStringLiteral("A0")).Path = QStringLiteral("zero");
    banners.Add(QString()).Path = QStringLiteral("unkeyed");
    banners.Add(QString()).Path = QStringLiteral("unkeyed too");
    banners.Add(QStringLiteral("A3")).Path = QStringLiteral("three");
    EXPECT_EQ(banners.Count(), 4);
    EXPECT_EQ(banners.Item(1).Path, QStringLiteral("zero"));
    EXPECT_EQ(banners.Item(4).Path, QStringLiteral("three"));
    EXPECT_EQ(banners.Item(QStringLiteral("a3")).Path, QStringLiteral("three"));
    EXPECT_THROW(banners.Add(QStringLiteral("a0")), std::invalid_argument);
    EXPECT_EQ(banners.Count(), 4);
    for (int bad : {0, 5, -1}) EXPECT_THROW(banners.Item(bad), std::out_of_range) << bad;
    EXPECT_THROW(banners.Item(QStringLiteral("A9")), std::out_of_range);
    EXPECT_THROW(banners.Item(QString()), std::out_of_range);

    banners.Remove(2);
    EXPECT_THROW(banners.Remove(4), std::out_of_range);
    QStringList walked;
    for (const Banner& banner : banners) walked << banner.Path;
    EXPECT_EQ(walked, QStringList({"zero", "unkeyed too", "three"}));
}

TEST(WholeNumber, RoundsHalfToEvenWithinSixteenBits) {
    const struct {
        const char* text;
        std::optional<int> value;  // nullopt: no number
        bool overflow;
    } cases[] = {
        {"30", 30, false},   {" 5 ", 5, false},       {"2.5", 2, false},
        {"3.5", 4, false},   {"-1", -1, false},       {"0", 0, false},
        {"1e1", 10, false},  {"32767", 32767, false}, {"-32768", -32768, false},
        {"32768", {}, true}, {"-40000", {}, true},    {"", {}, false},
        {"abc", {}, false},  {"12s", {}, false},      {"inf", {}, false},
    };
    for (const auto& c : cases) {
        const QString text = QString::fromUtf8(c.text);
        if (c.value)
            EXPECT_EQ(WholeNumber(text), *c.value) << c.text;
        else if (c.overflow)
            EXPECT_THROW(WholeNumber(text), std::out_of_range) << c.text;
        else
            EXPECT_THROW(WholeNumber(text), std::invalid_argument) << c.text;
    }
}

enum class Outcome { Read, Missing, BadDuration };

TEST(ReadBannerList, ReadsChildrenByPosition) {
    const struct {
        const char* name;
        const char* document;
        Outcome outcome;
        QStringList paths;  // of the banners added, failure or not
        std::vector<int> durations;
    } cases[] = {
        {"two banners",
         "<banners><b><p>one.gif</p><s>one-s.gif</s><d>1</d><r>http://one/</r></b>"
         "<b><p>two.gif</p><s>two-s.gif</s><d>2</d><r>http://two/</r></b></banners>",
         Outcome::Read,
         {"one.gif", "two.gif"},
         {1, 2}},
        // Names are never read: only the order of the four children counts.
        {"any names",
         "<x><y><Reference>a.gif</Reference><Path>b</Path><q> 7 </q><w>c</w></y></x>",
         Outcome::Read,
         {"a.gif"},
         {7}},
        {"extra children ignored",
         "<x><y><a>p</a><b>s</b><c>3</c><d>r</d><e>more</e></y></x>",
         Outcome::Read,
         {"p"},
         {3}},
        {"no banners", "<banners/>", Outcome::Read, {}, {}},
        {"first node a comment",
         "<!-- list --><banners><b><p>p</p><s>s</s><d>1</d><r>r</r></b></banners>",
         Outcome::Read,
         {},
         {}},
        {"short banner", "<x><y><a>p</a><b>s</b><c>4</c></y></x>", Outcome::Missing, {"p"}, {4}},
        {"text in place of a banner", "<x>words</x>", Outcome::Missing, {""}, {0}},
        {"bad duration",
         "<x><y><a>p</a><b>s</b><c>soon</c><d>r</d></y></x>",
         Outcome::BadDuration,
         {"p"},
         {0}},
        {"duration too long",
         "<x><y><a>p</a><b>s</b><c>40000</c><d>r</d></y></x>",
         Outcome::BadDuration,
         {"p"},
         {0}},
    };
    for (const auto& c : cases) {
        XmlDocument document;
        ASSERT_TRUE(document.LoadXml(c.document)) << c.name;
        Banners banners;
        switch (c.outcome) {
            case Outcome::Read:
                EXPECT_NO_THROW(ReadBannerList(document, banners)) << c.name;
                break;
            case Outcome::Missing:
                EXPECT_THROW(ReadBannerList(document, banners), MissingNode) << c.name;
                break;
            case Outcome::BadDuration:
                EXPECT_THROW(ReadBannerList(document, banners), std::logic_error) << c.name;
                break;
        }
        ASSERT_EQ(banners.Count(), c.paths.size()) << c.name;
        for (int i = 1; i <= banners.Count(); ++i) {
            EXPECT_EQ(banners.Item(i).Path, c.paths[i - 1]) << c.name;
            EXPECT_EQ(banners.Item(i).Duration, c.durations[i - 1]) << c.name;
            EXPECT_NO_THROW(banners.Item(QStringLiteral("A%1").arg(i - 1))) << c.name;
        }
    }
}

TEST(ReadBannerList, NothingLoadedIsMissing) {
    XmlDocument document;
    EXPECT_FALSE(document.LoadXml(""));
    Banners banners;
    EXPECT_THROW(ReadBannerList(document, banners), MissingNode);
    EXPECT_EQ(banners.Count(), 0);
}

}  // namespace
}  // namespace felthawk
