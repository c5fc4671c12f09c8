// The version file reader on any bytes: it never recurses on the document's
// depth, and what it reads is a version text and a digest in the one form
// the upgrade compares.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <QByteArray>

#include "online/app_version.h"

namespace {

void Check(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    felthawk::cAppVersion version;
    const bool loaded = version.Load(bytes);
    const QString joined = version.GetCurrentVersion();
    const QByteArray digest = version.PublishedDigest();
    Check(loaded || (joined.isEmpty() && digest.isEmpty()), "an unread file gave a version");
    Check(!joined.contains(u'.'), "a point left in the version");
    Check(digest.isEmpty() || digest.size() == 64, "a digest of the wrong length");
    for (const char c : digest)
        Check((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'), "a digest that is not hex");
    // The decision itself must hold for whatever was read.
    (void)felthawk::IsNewerVersion(joined);
    return 0;
}
