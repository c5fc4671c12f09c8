// The version file and the decision on it, without the network: the
// document is read from a local file, as the document object allows.
#include <gtest/gtest.h>
#include <QTemporaryDir>

#include "online/app_version.h"
#include "online/online_config.h"
#include "online/transfer.h"
#include "online/xml_document.h"
#include "online_test_support.h"

namespace felthawk {
namespace {

TEST(Val, ReadsTheLeadingNumberOnly) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"010", 10},    {"011", 11},  {"", 0},        {"abc", 0},    {"12abc", 12}, {" 1 1", 11},
        {"\t2\n3", 23}, {"-5", -5},   {"+7", 7},      {"3.5x", 3.5}, {".", 0},      {"-", 0},
        {"5.", 5},      {"1e2", 100}, {"1D2", 100},   {"2e", 2},     {"2e-1", 0.2}, {"&H1F", 31},
        {"&o17", 15},   {"&H", 0},    {"1.2.3", 1.2}, {"x11", 0},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(Val(QString::fromUtf8(c.text)), c.value) << c.text;
}

TEST(IsNewerVersion, OnlyAboveThisBuild) {
    const struct {
        const char* joined;
        bool newer;
    } cases[] = {
        {"010", false}, {"011", true},   {"10", false},  {"", false},
        {"abc", false}, {"11abc", true}, {"-20", false}, {"1e3", true},
        {"9", false},   {"105", true},   {"10 1", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(IsNewerVersion(QString::fromUtf8(c.joined)), c.newer) << c.joined;
}

TEST(GetCurrentVersion, JoinsTheFirstThreeAttributesInDocumentOrder) {
    const struct {
        const char* name;
        const char* document;
        const char* version;
    } cases[] = {
        {"one zero five", R"(<APPLICATION><CURRENTVERSION a="1" b="0" c="5"/></APPLICATION>)",
         "105"},
        // Names do not matter, and alphabetical order would give "110".
        {"order not names", R"(<APPLICATION><CURRENTVERSION z="0" a="1" m="1"/></APPLICATION>)",
         "011"},
        {"fourth ignored",
         R"(<APPLICATION><CURRENTVERSION a="0" b="1" c="0" d="9"/></APPLICATION>)", "010"},
        {"missing third", R"(<APPLICATION><CURRENTVERSION a="1" b="2"/></APPLICATION>)", "12"},
        {"no attributes", R"(<APPLICATION><CURRENTVERSION/></APPLICATION>)", ""},
        {"points inside parts",
         R"(<APPLICATION><CURRENTVERSION a="1.2" b="." c="3"/></APPLICATION>)", "123"},
        {"first of two",
         R"(<APPLICATION><CURRENTVERSION a="0" b="1" c="1"/><CURRENTVERSION a="9" b="9" c="9"/></APPLICATION>)",
         "011"},
        {"declaration and comment",
         "<?xml version=\"1.0\"?>\n<!-- v -->\n<APPLICATION>\n  <CURRENTVERSION a=\"2\" b=\"0\" "
         "c=\"0\"/>\n</APPLICATION>\n",
         "200"},
        {"no such element", R"(<APPLICATION><VERSION a="1" b="1" c="1"/></APPLICATION>)", ""},
        {"too deep", R"(<APPLICATION><X><CURRENTVERSION a="1" b="1" c="1"/></X></APPLICATION>)",
         ""},
        {"other root", R"(<APP><CURRENTVERSION a="1" b="1" c="1"/></APP>)", ""},
        {"malformed", R"(<APPLICATION><CURRENTVERSION a="1" b="1" c="1"></APPLICATION>)", ""},
        {"empty", "", ""},
        {"not xml", "version 11", ""},
    };
    QTemporaryDir folder;
    Inet inet(1000);
    for (const auto& c : cases) {
        const QString path = folder.filePath(QStringLiteral("Version.xml"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.document);
        file.close();
        cAppVersion version(inet);
        version.XMLSource = path;
        EXPECT_EQ(version.GetCurrentVersion(), QString::fromUtf8(c.version)) << c.name;
    }
}

TEST(GetCurrentVersion, MissingFileGivesNothing) {
    Inet inet(1000);
    cAppVersion version(inet);
    version.XMLSource = QStringLiteral("/nonexistent/Version.xml");
    EXPECT_EQ(version.GetCurrentVersion(), QString());
}

TEST(XmlDocument, KeepsEveryNodeButWhitespaceInOrder) {
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(
        "<?xml version=\"1.0\"?>\n<!--top-->\n<list>\n <a x=\"1\"> one <![CDATA[two]]> </a>\n"
        " text <!--c--><?pi data?><b/>\n</list>\n"));
    ASSERT_EQ(document.childNodes().size(), 2u);
    EXPECT_EQ(document.childNodes()[0].kind, XmlNode::Kind::Comment);
    const XmlNode& list = document.childNodes()[1];
    const std::vector<XmlNode::Kind> kinds = {
        XmlNode::Kind::Element, XmlNode::Kind::Text, XmlNode::Kind::Comment,
        XmlNode::Kind::ProcessingInstruction, XmlNode::Kind::Element};
    ASSERT_EQ(list.childNodes.size(), kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i)
        EXPECT_EQ(list.childNodes[i].kind, kinds[i]) << i;
    EXPECT_EQ(list.childNodes[0].Text(), QStringLiteral("one two"));
    EXPECT_EQ(list.childNodes[2].Text(), QStringLiteral("c"));
    EXPECT_EQ(list.Text(), QStringLiteral("one two\n text"));
}

TEST(OnlineConfig, ServerFromTheEnvironmentOverTheDefault) {
    const struct {
        const char* environment;
        const char* versionUrl;
    } cases[] = {
        {"http://127.0.0.1:8080/", "http://127.0.0.1:8080/member/VersionCheck/Version.xml"},
        {"http://h/base", "http://h/base/member/VersionCheck/Version.xml"},
        {"", FELTHAWK_SERVER_DEFAULT "member/VersionCheck/Version.xml"},
    };
    for (const auto& c : cases) {
        qputenv("FELTHAWK_SERVER", c.environment);
        EXPECT_EQ(OnlineConfig::FromEnvironment().ServerUrl(
                      QStringLiteral("member/VersionCheck/Version.xml")),
                  QString::fromUtf8(c.versionUrl))
            << c.environment;
    }
}

}  // namespace
}  // namespace felthawk
