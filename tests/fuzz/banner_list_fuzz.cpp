// The banner list reader on any bytes: a tree no deeper than the parser's
// limit, at most kMaxBanners banners, and nothing but its own exceptions.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

#include <QByteArray>

#include "online/banner_service.h"
#include "online/banners.h"
#include "online/xml_document.h"

namespace {

void Check(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

// The deepest element below the top, walked with a stack of our own.
int Depth(const std::vector<felthawk::XmlNode>& top) {
    int deepest = 0;
    std::vector<std::pair<const felthawk::XmlNode*, int>> pending;
    for (const felthawk::XmlNode& node : top) pending.emplace_back(&node, 1);
    while (!pending.empty()) {
        const auto [node, depth] = pending.back();
        pending.pop_back();
        if (node->kind == felthawk::XmlNode::Kind::Element && depth > deepest) deepest = depth;
        for (const felthawk::XmlNode& child : node->childNodes)
            pending.emplace_back(&child, depth + 1);
    }
    return deepest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    felthawk::XmlDocument document;
    const bool loaded = document.LoadXml(bytes);
    Check(loaded || document.childNodes().empty(), "a refused document kept nodes");
    Check(Depth(document.childNodes()) <= felthawk::kMaxXmlDepth, "a document beyond the depth");
    felthawk::Banners banners;
    try {
        felthawk::ReadBannerList(document, banners);
    } catch (const felthawk::MissingNode&) {
        // A short list: the default banner stands in.
    } catch (const std::invalid_argument&) {
        // A Duration that is no number.
    } catch (const std::out_of_range&) {
        // A Duration beyond 16 bits.
    }
    Check(banners.Count() <= felthawk::kMaxBanners, "more banners than are kept");
    return 0;
}
