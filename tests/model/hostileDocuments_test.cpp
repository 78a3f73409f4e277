// SPDX-License-Identifier: Apache-2.0
// Documents that would reach out of themselves, or grow without end.
#include "logging/CZorLog.h"
#include "model/CZor.h"
#include "model/XmlParser.h"
#include "suite/Scratch.h"
#include "suite/utf8.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

using testing::HasSubstr;

namespace Zorvane {
namespace {

int parse(XmlParser& parser, const std::string& document) {
    return parser.parse(reinterpret_cast<const unsigned char*>(document.data()),
                        static_cast<int>(document.size()));
}

int resultOf(const std::string& document) {
    XmlParser parser;
    return parse(parser, document);
}

std::string nested(unsigned depth) {
    std::string document;
    for (unsigned i = 0; i < depth; ++i)
        document += "<a>";
    for (unsigned i = 0; i < depth; ++i)
        document += "</a>";
    return document;
}

// A file and a service that know whether anybody asked for them.
class Outside {
  public:
    Outside() {
        m_scratch.write("secret.xml", "<secret>of this host</secret>");
        inotify_add_watch(m_watch, m_scratch.path("").c_str(), IN_OPEN | IN_ACCESS);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(m_listener, 8), 0);
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.sin_port);
    }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;
    ~Outside() {
        close(m_listener);
        close(m_watch);
    }

    [[nodiscard]] std::string file() const { return m_scratch.path("secret.xml"); }
    [[nodiscard]] std::string address() const {
        return "http://127.0.0.1:" + std::to_string(m_port) + "/a.dtd";
    }
    [[nodiscard]] bool wasAsked() const {
        char event[1024];
        const int peer = accept(m_listener, nullptr, nullptr);
        if (peer >= 0)
            close(peer);
        return read(m_watch, event, sizeof event) > 0 || peer >= 0;
    }

  private:
    Scratch m_scratch;
    int m_watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    unsigned m_port = 0;
};

} // namespace

TEST(HostileDocuments, NothingOutsideIsAskedFor) {
    const Outside outside;
    for (const std::string& place : {outside.file(), "file://" + outside.file(), outside.address()}) {
        const struct {
            const char* reason;
            std::string document;
            int result;
        } cases[] = {
            {"a DTD", "<!DOCTYPE a SYSTEM '" + place + "'><a/>", XML_NOT_WELL_FORMED},
            {"a DTD with a public name", "<!DOCTYPE a PUBLIC '-//X//Y' '" + place + "'><a/>",
             XML_NOT_WELL_FORMED},
            {"an entity", "<!DOCTYPE a [<!ENTITY x SYSTEM '" + place + "'>]><a>&x;</a>", XML_NOT_WELL_FORMED},
            {"a parameter entity", "<!DOCTYPE a [<!ENTITY % x SYSTEM '" + place + "'> %x;]><a/>",
             XML_NOT_WELL_FORMED},
            {"a schema",
             "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:noNamespaceSchemaLocation='" +
                 place + "'/>",
             0},
            {"a schema of a namespace",
             "<a xmlns='u' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='u " +
                 place + "'/>",
             0},
            {"a style sheet", "<?xml-stylesheet type='text/xsl' href='" + place + "'?><a/>", 0},
            {"an inclusion",
             "<a><i:include xmlns:i='http://www.w3.org/2001/XInclude' parse='text' href='" + place +
                 "'/></a>",
             0},
        };
        for (const auto& test : cases) {
            EXPECT_EQ(resultOf(test.document), test.result) << test.reason << " at " << place;
            EXPECT_FALSE(outside.wasAsked()) << test.reason << " at " << place;
        }
    }
    std::ifstream(outside.file()).get();
    EXPECT_TRUE(outside.wasAsked()) << "the watch works";
}

TEST(HostileDocuments, EntitiesThatMultiplyAreNotDeclared) {
    std::string doctype = "<!DOCTYPE a [<!ENTITY x0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        const std::string before = "&x" + std::to_string(i - 1) + ";";
        doctype += "<!ENTITY x" + std::to_string(i) + " '" + before + before + "'>";
    }
    EXPECT_EQ(resultOf(doctype + "]><a>&x29;</a>"), XML_NOT_WELL_FORMED);
    EXPECT_EQ(resultOf(doctype + "<!ATTLIST a b CDATA '&x29;'>]><a/>"), XML_NOT_WELL_FORMED);
    EXPECT_EQ(resultOf("<!DOCTYPE a [<!ENTITY x '&y;'><!ENTITY y '&x;'>]><a>&x;</a>"), XML_NOT_WELL_FORMED);
    EXPECT_EQ(resultOf("<a>&lt;&amp;&#65;&#x1F4BE;</a>"), 0) << "those of the language are no declared ones";
}

TEST(HostileDocuments, DepthAndLengthHaveABoundThatIsTold) {
    EXPECT_EQ(resultOf(nested(XML_MAX_DEPTH)), 0);

    const Scratch scratch(1);
    CZorLog log(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
    g_libLog = &log;
    EXPECT_EQ(resultOf(nested(XML_MAX_DEPTH + 1)), XML_NOT_WELL_FORMED);
    EXPECT_THAT(scratch.read("51216-128.log"), HasSubstr("the elements are nested too deep"));

    XmlParser parser;
    ASSERT_EQ(parse(parser, "<a/>"), 0);
    const unsigned char byte = '<';
    EXPECT_EQ(parser.parse(&byte, XML_MAX_LENGTH + 1), XML_NOT_WELL_FORMED) << "and not a byte is read";
    EXPECT_EQ(parser.initChildren(), 1) << "the document before is gone";
    EXPECT_THAT(scratch.read("51216-128.log"), HasSubstr("is longer than " + std::to_string(XML_MAX_LENGTH)));
    g_libLog = nullptr;
}

// The library's time for these grows with the square of their number.
TEST(HostileDocuments, NamesAttributesAndNamespacesAreBounded) {
    const auto many = [](std::size_t count, const std::string& before, const std::string& after) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text += before + std::to_string(i) + after;
        return text;
    };
    const auto nestedDeclarations = [&](std::size_t count) {
        std::string end;
        for (std::size_t i = 0; i < count; ++i)
            end += "</a>";
        return "<r>" + many(count, "<a xmlns:p", "='u'>") + end + "</r>";
    };
    const auto siblings = [](std::size_t count) {
        std::string text = "<r>";
        for (std::size_t i = 0; i < count; ++i)
            text += "<a xmlns='u'/>";
        return text + "</r>";
    };
    const auto in = [](const char* codeSet, const std::string& text) {
        return Suite::inCodeSet(text, "UTF-8", codeSet).value_or("");
    };
    const auto wide = [&](std::size_t count) { // U+3C00 has the byte of a "<"
        return in("UTF-16", "<e" + many(count, " a", "='\u3C00'") + "/>");
    };
    const auto declared = [](const std::string& codeSet) {
        return "<?xml version='1.0' encoding='" + codeSet + "'?>";
    };
    const std::string quoted = "<r a='" + std::string(600, '=') + ">'>" + std::string(600, '=') + "</r>";
    const struct {
        const char* what;
        std::string accepted, refused;
    } cases[] = {
        {"attributes", "<r>" + many(1, "<e" + many(XML_MAX_ATTRIBUTES - 1, " a", "='>'") + " b", "=''/></r>"),
         "<e" + many(XML_MAX_ATTRIBUTES + 1, " a", "='>'") + "/>"},
        {"element names", "<r>" + many(XML_MAX_NAMES - 1, "<e", "/>") + "</r>",
         "<r>" + many(XML_MAX_NAMES + 1, "<e", "/>") + "</r>"},
        {"attribute names", "<r>" + many(XML_MAX_NAMES, "<e a", "=''/>") + "</r>",
         "<r>" + many(XML_MAX_NAMES + 1, "<e a", "=''/>") + "</r>"},
        {"namespaces", nestedDeclarations(XML_MAX_NAMESPACES), nestedDeclarations(XML_MAX_NAMESPACES + 1)},
        {"what only looks like it", quoted, "<r>"},
        {"attributes in UTF-16", wide(XML_MAX_ATTRIBUTES), wide(XML_MAX_ATTRIBUTES + 1)},
        {"a code set whose attributes are not seen", declared("iso-8859-1") + "<r>\xE9</r>",
         in("IBM037", declared("IBM037") + "<r/>")},
        {"a code set that is only declared", declared("Shift_JIS") + "<r/>",
         declared("IBM037") + in("IBM037", "<r/>")},
        {"the other order of bytes", in("UTF-16BE", declared("UTF-16") + "<r/>"),
         in("UTF-16LE", declared("UTF-16BE")) +
             in("UTF-16BE", "<e" + many(XML_MAX_ATTRIBUTES + 1, " a", "='\u3C00'") + "/>")},
        {"declarations one after the other", siblings(10 * XML_MAX_NAMESPACES), "<r>"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(resultOf(test.accepted), 0) << test.what;
        EXPECT_EQ(resultOf(test.refused), XML_NOT_WELL_FORMED) << test.what;
    }
}

// Long in every other way is a document like any other.
TEST(HostileDocuments, WhatCouldNotBeWrittenAgainIsNotRead) {
    for (const auto& [version, expected] : {std::pair{"1.0", 0}, std::pair{"1.1", 1}}) {
        const std::string character = expected ? "&#1;" : "&#9;";
        std::string text = std::string("<?xml version=\"") + version + "\"?><ZorData><Config><Name>a" +
                           character + "b</Name></Config></ZorData>";
        CZor zor;
        EXPECT_EQ(zor.readXml(reinterpret_cast<unsigned char*>(text.data()), static_cast<int>(text.size()),
                              FOR_ALL),
                  expected)
            << text;
    }
}

TEST(HostileDocuments, LongPartsAreRead) {
    const std::string million(1'000'000, 'x');
    EXPECT_EQ(resultOf("<a>" + million + "</a>"), 0);
    EXPECT_EQ(resultOf("<a b='" + million + "'/>"), 0);
    EXPECT_EQ(resultOf("<" + million + "/>"), 0);
    std::string wide = "<a>";
    for (int i = 0; i < 100'000; ++i)
        wide += "<b/>";
    EXPECT_EQ(resultOf(wide + "</a>"), 0);
}

} // namespace Zorvane
