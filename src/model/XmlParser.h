// SPDX-License-Identifier: Apache-2.0
// The single doorway between records and XML: a document is built one element at a time and serialised, or
// parsed and walked by two cursors. No type of the XML library shows here.
#pragma once

#include "model/BaseTable.h"
#include "model/enumerations.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

/// The namespace of the document: declared at its root, ignored in reading.
inline constexpr const char* ZOR_XML_NAMESPACE = "urn:zorvane:zordata:1";
inline constexpr const char* ZOR_XML_ROOT = "ZorData";

/// Results beside 0 and 1.
enum XmlResult : int {
    XML_BAD_STATE = 9999,        ///< wide and binary AppendValue without a document or a tag
    XML_WRITE_FAILED = 14014,    ///< the serialiser gave up
    XML_LIBRARY_FAILURE = 17005, ///< parsing ended in an XMLException
    XML_DOM_FAILURE = 17006,     ///< parsing ended in a DOMException
    XML_NOT_WELL_FORMED = 17007, ///< parsing ended otherwise: the document is no good
};

/// The deepest nesting that is read. Records stand three deep and inventory trees a few dozen; the walks over
/// a document recurse, so that a document without a bound could exhaust the stack.
inline constexpr unsigned XML_MAX_DEPTH = 512;
/// The longest document that is read, in bytes. The largest sites send some tens of megabytes, a million rows
/// are half of this.
inline constexpr int XML_MAX_LENGTH = 1 << 30;
/// The most elements, comments and instructions: half as many again as a million rows have. What a tree takes
/// goes by them, some 250 bytes for an element however short it is.
inline constexpr std::size_t XML_MAX_NODES = std::size_t{1} << 24;
/// The most attributes of an element, different names of elements and of attributes, and declarations of
/// namespaces that hold in a place. The library compares each with all the others: without a bound, a document
/// of a megabyte could keep it busy for hours. Our documents have one attribute, two thousand names and one
/// namespace at most.
inline constexpr std::size_t XML_MAX_ATTRIBUTES = 256;
inline constexpr std::size_t XML_MAX_NAMES = 10'000;
inline constexpr std::size_t XML_MAX_NAMESPACES = 64;

/// A node of a parsed document: what the cursors point at. Opaque, and owned by the parser.
struct XmlNode;
/// The name of an element of a parsed document. A document keeps one copy of each name.
struct XmlName;

/// Releases a text that a cursor operation returned.
struct XmlTextRelease {
    void operator()(char* text) const;
};
using XmlText = std::unique_ptr<char, XmlTextRelease>;

class XmlParserImpl;

class XmlParser {
  public:
    /// For writing: a document that holds its root.
    XmlParser();
    /// For reading: parses the buffer, which must outlive the call only. A failure leaves an object without a
    /// document: initChildren() then gives 1.
    XmlParser(const unsigned char* buffer, int bufferLen);
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;
    ~XmlParser();

    /// Parses another buffer into this object; 0, 1 or a code of XmlResult.
    int parse(const unsigned char* inBuffer, int bufferLen);
    /// True if memory was lacking for a document, however good it is.
    [[nodiscard]] bool lackedMemory() const { return m_lackedMemory; }

    // --- Building. 0 on success; 1, or 9999 where the value is wide or binary.

    /// A new record element below the root; the values that follow go into it.
    int AppendElement(const char* tag);
    int AppendValue(const char* tag, IDREF value, bool fromDb);
    /// A byte 0x1A in the text goes out as "_". A null text leaves the element empty.
    int AppendValue(const char* tag, const char* value);
    int AppendValue(const char* tag, const std::string* value);
    int AppendValue(const char* tag, const std::string& value);
    int AppendValue(const char* tag, char value);
    int AppendValue(const char* tag, int value);
    int AppendValue(const char* tag, bool value);
    int AppendValue(const char* tag, unsigned int value);
    int AppendValue(const char* tag, long value);
    int AppendValue(const char* tag, unsigned long value);
    int AppendValue(const char* tag, __int64 value);
    int AppendValue(const char* tag, const wchar_t* value);
    int AppendValue(const char* tag, wchar_t value);
    /// Base64 of the bytes.
    int AppendValue(const char* tag, const unsigned char* value, unsigned int length);
    template <ModelEnum E>
    int AppendValue(const char* tag, E value) {
        return AppendValue(tag, static_cast<int>(value));
    }

    /// Serialises the document into the buffer.
    int write();
    /// The serialised bytes, owned by this object until the next write.
    const unsigned char* getBuffer();
    int getBufferLen();
    void releaseDocument();

    // --- Walking. Texts returned are released with XmlTextRelease (or XMLString::release); null is the end.

    /// 0 when there is a document to walk.
    int initChildren();
    char* getFirstObject();
    char* getNextObject();
    char* getFirstValue();
    char* getNextValue();

    /// The same walk for readers that only look at the tag: borrowed until the next step, null at the end.
    const std::string* firstObjectTag();
    const std::string* nextObjectTag();
    const std::string* firstValueTag();
    const std::string* nextValueTag();

    /// The same walk for readers that meet the same names again and again (XmlNames); null at the end.
    const XmlName* firstObjectName();
    const XmlName* nextObjectName();
    const XmlName* firstValueName();
    const XmlName* nextValueName();
    /// The text of a name, borrowed until the next step.
    const std::string& nameText(const XmlName* name);

    /// The document element's name; empty without a document.
    std::string getRootName();
    /// The object cursor; setting it moves both cursors.
    XmlNode* getCurrentNode();
    void setCurrentNode(XmlNode* node);

    /// The text of the object cursor's node.
    void CopyNode(std::string* destination);
    /// An attribute of the value element; the destination is unchanged if it is absent.
    void CopyNodeAttribute(std::string* destination, const std::string* name);

    // The value element's text. Without a text the destination keeps its value, but for the forms that
    // allocate (they give an empty text, or null for bytes) and the single characters (0).
    void CopyNodeValue(bool* destination);
    void CopyNodeValue(unsigned char* destination);
    void CopyNodeValue(std::string* destination);
    void CopyNodeValue(int* destination);
    void CopyNodeValue(unsigned int* destination);
    void CopyNodeValue(unsigned short* destination);
    void CopyNodeValue(long* destination);
    void CopyNodeValue(unsigned long* destination);
    void CopyNodeValue(__int64* destination);
    void CopyNodeValue(wchar_t* destination);
    /// New arrays, freed by the caller with array delete.
    void CopyNodeValue(wchar_t** destination);
    void CopyNodeValue(char** destination);
    /// A new block of the XML library's memory manager.
    void CopyNodeValue(unsigned char** destination);
    void CopyNodeValue(std::vector<unsigned char>* destination);
    void CopyNodeValue(IDREF* destination, bool* fromDb);
    template <ModelEnum E>
    void CopyNodeValue(E* destination) {
        int value = static_cast<int>(*destination);
        CopyNodeValue(&value);
        *destination = static_cast<E>(value);
    }

  private:
    /// The state; null, and a line in the log, for an object that could not be set up.
    XmlParserImpl* usable(const char* label) const;
    const std::string* textOrNull(const XmlName* name);
    bool isWritable();

    std::unique_ptr<XmlParserImpl> m_pXmlParserImpl;
    bool m_lackedMemory = false;
};

} // namespace Zorvane
