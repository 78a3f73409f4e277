// SPDX-License-Identifier: Apache-2.0
// Nodes of the XML library's trees, made and joined without its detours. The library asks every node that it
// touches for its parts by dynamic_cast, which is more than half of all reading and writing, and asks the
// document's pool for every name. Here the nodes' classes are known, and a name is taken from a node that has
// it already.
#pragma once

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/impl/DOMAttrNSImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMElementNSImpl.hpp>
#include <xercesc/dom/impl/DOMTextImpl.hpp>

namespace Zorvane {

/// An element that children are still appended to, and the end of their list. Borrows all of it from the
/// document.
class OpenElement {
  public:
    OpenElement() = default;
    explicit OpenElement(xercesc::DOMElementNSImpl* element) : m_element(element) {}

    [[nodiscard]] xercesc::DOMElementNSImpl* element() const { return m_element; }
    [[nodiscard]] bool hasChildren() const { return m_first != nullptr; }

    /// Appends an element or a text of the same document that has no parent yet.
    template <class Node>
    void append(Node& node) {
        append(node, node.fNode, node.fChild);
    }
    /// To be called when the library appended something, or when the element had children before.
    void noteAppended();

  private:
    void append(xercesc::DOMNode& node, xercesc::DOMNodeImpl& nodePart, xercesc::DOMChildNode& childPart);

    xercesc::DOMElementNSImpl* m_element = nullptr;
    xercesc::DOMChildNode* m_first = nullptr;
    xercesc::DOMNode* m_last = nullptr;
    xercesc::DOMChildNode* m_lastPart = nullptr; ///< of m_last
};

/// An element of another one's name and namespace.
xercesc::DOMElementNSImpl* makeElementLike(xercesc::DOMDocumentImpl& document,
                                           const xercesc::DOMElementNSImpl& model);
/// A text that takes no more room than it needs.
xercesc::DOMTextImpl* makeText(xercesc::DOMDocumentImpl& document, const XMLCh* chars, XMLSize_t length);
/// Gives an element without attributes one of another one's name.
void setAttributeLike(xercesc::DOMElementNSImpl& element, const xercesc::DOMAttrNSImpl& model,
                      const XMLCh* value);

} // namespace Zorvane
