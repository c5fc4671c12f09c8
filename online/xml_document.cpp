#include "online/xml_document.h"

#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>

namespace felthawk {

namespace {

// The elements named `name` among `nodes`, in order, appended to `out`.
void CollectElements(const std::vector<XmlNode>& nodes, const QString& name,
                     std::vector<const XmlNode*>& out) {
    for (const XmlNode& node : nodes) {
        if (node.kind == XmlNode::Kind::Element && node.name == name) out.push_back(&node);
    }
}

}  // namespace

QString XmlNode::Text() const {
    // Depth first, in document order, with a stack of our own.
    QString out;
    std::vector<const XmlNode*> pending{this};
    while (!pending.empty()) {
        const XmlNode* node = pending.back();
        pending.pop_back();
        if (node->kind != Kind::Element) {
            out += node->value;
            continue;
        }
        for (auto child = node->childNodes.rbegin(); child != node->childNodes.rend(); ++child) {
            if (child->kind == Kind::Element || child->kind == Kind::Text)
                pending.push_back(&*child);
        }
    }
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
                if (open.size() >= kMaxXmlDepth) return false;
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
