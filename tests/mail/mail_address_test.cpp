#include "mail/mail_address.h"

#include <gtest/gtest.h>

namespace felthawk {
namespace {

TEST(CheckAddress, GivesTheWireFormOrASentenceThatSaysWhy) {
    const std::string longLocal(65, 'a');
    const std::string longLabel(64, 'b');
    std::string longDomain = "com";  // five labels of 60: over 253 in all
    for (int i = 0; i < 5; ++i) longDomain = std::string(60, 'c') + "." + longDomain;
    // Each part within its limit, the whole path over 254.
    const std::string longPath = std::string(64, 'a') + "@" + std::string(63, 'b') + "." +
                                 std::string(63, 'c') + "." + std::string(63, 'd') + ".com";
    // What the user typed, and the address on the wire or part of the sentence.
    const std::string cases[][3] = {
        {"  friend@example.com \t", "friend@example.com", "example.com"},
        {"First.Last@Mail.Example.COM", "First.Last@mail.example.com", "mail.example.com"},
        {"a!#$%&'*+/=?^_`{|}~-b@example.org", "a!#$%&'*+/=?^_`{|}~-b@example.org", "example.org"},
        {"friend@my-host.example.", "friend@my-host.example", "my-host.example"},
        // A domain in another script travels in its ASCII form.
        {"freund@bücher.example", "freund@xn--bcher-kva.example", "xn--bcher-kva.example"},
        {"", "", "has no @"},
        {"friend.example.com", "", "has no @"},
        {"a@b@example.com", "", "more than one @"},
        {"@example.com", "", "nothing before the @"},
        {"friend@", "", "nothing after the @"},
        {"my friend@example.com", "", "part before the @"},
        {"fr..iend@example.com", "", "part before the @"},
        {"josé@example.com", "", "part before the @"},
        {longLocal + "@example.com", "", "part before the @"},
        {"friend@localhost", "", "not a domain name"},
        {"friend@example..com", "", "not a domain name"},
        {"friend@-example.com", "", "not a domain name"},
        {"friend@exa_mple.com", "", "not a domain name"},
        {"friend@192.168.0.1", "", "not a domain name"},
        {"friend@" + longLabel + ".com", "", "not a domain name"},
        {"friend@" + longDomain, "", "not a domain name"},
        {longPath, "", "too long"},
    };
    for (const auto& [typed, address, domainOrProblem] : cases) {
        SCOPED_TRACE(typed);
        const AddressCheck check = CheckAddress(QString::fromStdString(typed));
        const QString expected = QString::fromStdString(domainOrProblem);
        EXPECT_EQ(check.ok, !address.empty()) << check.problem.toStdString();
        EXPECT_EQ(check.address, QString::fromStdString(address));
        if (check.ok) {
            EXPECT_EQ(check.domain, expected);
            EXPECT_TRUE(check.problem.isEmpty());
            continue;
        }
        EXPECT_TRUE(check.problem.contains(expected)) << check.problem.toStdString();
        // The sentence quotes what the user typed, so the user can find it.
        EXPECT_TRUE(check.problem.contains(u'"' + QString::fromStdString(typed).trimmed() + u'"'))
            << check.problem.toStdString();
    }
}

}  // namespace
}  // namespace felthawk
