// The XML document object of the online services: a small node tree with
// child access by position and attributes in document order. Both files the
// program reads from its server are read by position, never by name, so the
// order the server wrote is the order kept here.
#pragma once

#include <QByteArray>
#include <QString>
#include <utility>
#include <vector>

namespace felthawk {

// Deeper documents are refused: nothing the server sends nests this far.
inline constexpr int kMaxXmlDepth = 64;

struct XmlNode {
    enum class Kind { Element, Text, Comment, ProcessingInstruction, DocumentType };

    Kind kind = Kind::Element;
    // The tag of an element, the target of a processing instruction.
    QString name;
    // The characters of a text node, comment or processing instruction.
    QString value;
    // Name and text of each attribute, in document order.
    std::vector<std::pair<QString, QString>> attributes;
    // Whitespace between elements is not a node; everything else is.
    std::vector<XmlNode> childNodes;

    // All text below the node, its outer blanks trimmed.
    QString Text() const;
};

class XmlDocument {
  public:
    // Parses `bytes`; false, with an empty document, when malformed or
    // nested deeper than kMaxXmlDepth elements. The parse keeps its own
    // stack of open elements and never recurses on the document's depth.
    bool LoadXml(const QByteArray& bytes);

    // The nodes at the top of the document: the root element and any comment
    // or processing instruction around it, in order. The XML declaration is
    // not a node.
    const std::vector<XmlNode>& childNodes() const { return top_; }

    // The first element, in document order, reached by the "/"-separated
    // element names of `path` from the top; nullptr when there is none.
    const XmlNode* selectSingleNode(const QString& path) const;

  private:
    std::vector<XmlNode> top_;
};

}  // namespace felthawk
