#include "mail/mail_address.h"

#include <gtest/gtest.h>

namespace felthawk {
namespace {

struct GoodAddress {
    const char* typed;
    const char* address;
    const char* domain;
};

TEST(CheckAddress, AcceptsAddressesAndGivesTheirWireForm) {
    const GoodAddress cases[] = {
        {"friend@example.com", "friend@example.com", "example.com"},
        {"  friend@example.com \t", "friend@example.com", "example.com"},
        {"First.Last@Mail.Example.COM", "First.Last@mail.example.com", "mail.example.com"},
        {"o'brien+poker@example.co.uk", "o'brien+poker@example.co.uk", "example.co.uk"},
        {"a!#$%&*/=?^_`{|}~-b@example.org", "a!#$%&*/=?^_`{|}~-b@example.org", "example.org"},
        {"friend@example.com.", "friend@example.com", "example.com"},
        {"friend@my-host.example", "friend@my-host.example", "my-host.example"},
        // A domain in another script travels in its ASCII form.
        {"freund@bücher.example", "freund@xn--bcher-kva.example", "xn--bcher-kva.example"},
    };
    for (const GoodAddress& good : cases) {
        SCOPED_TRACE(good.typed);
        const AddressCheck check = CheckAddress(QString::fromUtf8(good.typed));
        EXPECT_TRUE(check.ok) << check.problem.toStdString();
        EXPECT_EQ(check.address, QString::fromUtf8(good.address));
        EXPECT_EQ(check.domain, QString::fromUtf8(good.domain));
        EXPECT_TRUE(check.problem.isEmpty());
    }
}

TEST(CheckAddress, RejectsWithASentenceThatSaysWhy) {
    const QString longLocal(65, u'a');
    const QString longLabel(64, u'b');
    QString longDomain = "com";  // five labels of 60: over 253 in all
    for (int i = 0; i < 5; ++i) longDomain.prepend(QString(60, u'c') + ".");
    // What the user typed, and what the sentence must say.
    const std::string cases[][2] = {
        {"", "has no @"},
        {"friend.example.com", "has no @"},
        {"friend@@example.com", "more than one @"},
        {"a@b@example.com", "more than one @"},
        {"@example.com", "nothing before the @"},
        {"friend@", "nothing after the @"},
        {"my friend@example.com", "part before the @"},
        {".friend@example.com", "part before the @"},
        {"friend.@example.com", "part before the @"},
        {"fr..iend@example.com", "part before the @"},
        {"\"quoted\"@example.com", "part before the @"},
        {"josé@example.com", "part before the @"},
        {longLocal.toStdString() + "@example.com", "part before the @"},
        {"friend@localhost", "not a domain name"},
        {"friend@example..com", "not a domain name"},
        {"friend@-example.com", "not a domain name"},
        {"friend@example-.com", "not a domain name"},
        {"friend@exa_mple.com", "not a domain name"},
        {"friend@exa mple.com", "not a domain name"},
        {"friend@192.168.0.1", "not a domain name"},
        {"friend@[192.168.0.1]", "not a domain name"},
        {"friend@" + longLabel.toStdString() + ".com", "not a domain name"},
        {"friend@" + longDomain.toStdString(), "not a domain name"},
        {"friend\n@example.com", "part before the @"},
    };
    for (const auto& [typed, problemPart] : cases) {
        SCOPED_TRACE(typed);
        const AddressCheck check = CheckAddress(QString::fromStdString(typed));
        EXPECT_FALSE(check.ok);
        EXPECT_TRUE(check.address.isEmpty());
        EXPECT_TRUE(check.problem.contains(QString::fromStdString(problemPart)))
            << check.problem.toStdString();
        // The sentence quotes what the user typed, so the user can find it.
        EXPECT_TRUE(check.problem.contains(u'"' + QString::fromStdString(typed).trimmed() + u'"'))
            << check.problem.toStdString();
    }
}

TEST(CheckAddress, TooLongAsAWhole) {
    // Each part within its limit, the whole path over 254.
    const QString address = QString(64, u'a') + "@" + QString(63, u'b') + "." + QString(63, u'c') +
                            "." + QString(63, u'd') + ".com";
    const AddressCheck check = CheckAddress(address);
    EXPECT_FALSE(check.ok);
    EXPECT_TRUE(check.problem.contains("too long")) << check.problem.toStdString();
}

}  // namespace
}  // namespace felthawk
