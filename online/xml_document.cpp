#include "online/xml_document.h"

#include <QFile>
#include <QStringList>
#include <QUrl>
#include <QXmlStreamReader>

#include <algorithm>

#include "online/transfer.h"

namespace felthawk {

namespace {

void AppendText(const XmlNode& node, QString& out) {
    if (node.kind != XmlNode::Kind::Element) {
        out += node.value;
        return;
    }
    for (const XmlNode& child : node.childNodes) {
        if (child.kind == XmlNode::Kind::Element || child.kind == XmlNode::Kind::Text)
            AppendText(child, out);
    }
}

bool IsRemote(const QUrl& url) {
    const QString scheme = url.scheme().toLower();
    return scheme == u"http" || scheme == u"https" || scheme == u"ftp";
}

// The elements named `name` among `nodes`, in order, appended to `out`.
void CollectElements(const std::vector<XmlNode>& nodes, const QString& name,
                     std::vector<const XmlNode*>& out) {
    for (const XmlNode& node : nodes) {
        if (node.kind == XmlNode::Kind::Element && node.name == name) out.push_back(&node);
    }
}

}  // namespace

QString XmlNode::Text() const {
    QString out;
    AppendText(*this, out);
    return out.trimmed();
}

bool XmlDocument::LoadXml(const QByteArray& bytes) {
    top_.clear();
    QXmlStreamReader reader(bytes);
    // Namespace declarations stay ordinary attributes, in their place.
    reader.setNamespaceProcessing(false);

    std::vector<XmlNode> top;
    // The open elements, outermost first; children go to the last one.
    std::vector<XmlNode*> open;
    auto append = [&](XmlNode node) -> XmlNode& {
        std::vector<XmlNode>& siblings = open.empty() ? top : open.back()->childNodes;
        siblings.push_back(std::move(node));
        return siblings.back();
    };

    while (!reader.atEnd()) {
        switch (reader.readNext()) {
            case QXmlStreamReader::StartElement: {
                XmlNode element;
                element.name = reader.qualifiedName().toString();
                for (const QXmlStreamAttribute& attribute : reader.attributes())
                    element.attributes.emplace_back(attribute.qualifiedName().toString(),
                                                    attribute.value().toString());
                open.push_back(&append(std::move(element)));
                break;
            }
            case QXmlStreamReader::EndElement:
                open.pop_back();
                break;
            case QXmlStreamReader::Characters:
                if (!reader.isWhitespace() && !open.empty())
                    append({XmlNode::Kind::Text, {}, reader.text().toString(), {}, {}});
                break;
            case QXmlStreamReader::Comment:
                append({XmlNode::Kind::Comment, {}, reader.text().toString(), {}, {}});
                break;
            case QXmlStreamReader::ProcessingInstruction:
                append({XmlNode::Kind::ProcessingInstruction,
                        reader.processingInstructionTarget().toString(),
                        reader.processingInstructionData().toString(),
                        {},
                        {}});
                break;
            case QXmlStreamReader::DTD:
                append({XmlNode::Kind::DocumentType, {}, reader.text().toString(), {}, {}});
                break;
            default:
                break;
        }
    }
    // A document with no root element is as malformed as a broken one.
    const bool hasRoot = std::any_of(top.begin(), top.end(), [](const XmlNode& node) {
        return node.kind == XmlNode::Kind::Element;
    });
    if (reader.hasError() || !hasRoot) return false;
    top_ = std::move(top);
    return true;
}

bool XmlDocument::Load(const QString& source, Inet& inet) {
    top_.clear();
    const QUrl url(source);
    if (IsRemote(url)) {
        try {
            return LoadXml(inet.OpenURL(source));
        } catch (const TransferError&) {
            return false;
        }
    }
    QFile file(url.isLocalFile() ? url.toLocalFile() : source);
    if (!file.open(QIODevice::ReadOnly)) return false;
    return LoadXml(file.readAll());
}

const XmlNode* XmlDocument::selectSingleNode(const QString& path) const {
    const QStringList steps = path.split(u'/');
    std::vector<const XmlNode*> current;
    CollectElements(top_, steps.front(), current);
    for (qsizetype i = 1; i < steps.size(); ++i) {
        std::vector<const XmlNode*> next;
        for (const XmlNode* node : current) CollectElements(node->childNodes, steps[i], next);
        current = std::move(next);
    }
    return current.empty() ? nullptr : current.front();
}

}  // namespace felthawk
