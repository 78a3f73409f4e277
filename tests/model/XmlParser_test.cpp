// SPDX-License-Identifier: Apache-2.0
#include "model/XmlParser.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <new>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace Zorvane {
namespace {

struct Parsed {
    std::string text;
    XmlParser parser;
    explicit Parsed(std::string document)
        : text(std::move(document)),
          parser(reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size())) {}
};

std::string bytesOf(XmlParser& parser) {
    return {reinterpret_cast<const char*>(parser.getBuffer()),
            static_cast<std::size_t>(parser.getBufferLen())};
}

// One value written as text and read back.
std::string roundTrip(const std::string& value) {
    XmlParser writer;
    writer.AppendElement("Row");
    writer.AppendValue("Field", value);
    Parsed reader(bytesOf(writer));
    reader.parser.initChildren();
    reader.parser.firstObjectTag();
    reader.parser.firstValueTag();
    std::string read = "unread";
    reader.parser.CopyNodeValue(&read);
    return read;
}

class XmlParserTest : public testing::Test {
  protected:
    void SetUp() override { std::setlocale(LC_ALL, "C.UTF-8"); }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_F(XmlParserTest, TextsComeBackAsTheyWent) {
    const std::string texts[] = {
        "plain",
        "<a & \"b\" 'c'>",
        " blanks around ",
        "  ",
        "two\nlines",
        "carriage\rreturn",
        "tab\there",
        "gr\xc3\xbc\xc3\x9f",
        "\xe6\x97\xa5\xe6\x9c\xac",
        "\xf0\x9f\x92\xbe",
        "]]>",
    };
    for (const std::string& text : texts)
        EXPECT_EQ(roundTrip(text), text);
    EXPECT_EQ(roundTrip("dos\x1a"
                        "end"),
              "dos_end");
    EXPECT_EQ(roundTrip(""), "unread") << "an element without text leaves the destination alone";
}

TEST_F(XmlParserTest, TextsSurviveALocaleThatDoesNotKnowThem) {
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(roundTrip("gr\xc3\xbc\xc3\x9f"), "gr\xc3\xbc\xc3\x9f");
    EXPECT_FALSE(roundTrip("\xff\xfe").empty());
}

TEST_F(XmlParserTest, NumbersAreRead) {
    Parsed p("<r><o><a>-7</a><b>4294967295</b><c>9223372036854775807</c><d>12x</d><e>word</e><f/></o></r>");
    p.parser.initChildren();
    p.parser.firstObjectTag();
    p.parser.firstValueTag();
    int number = 1;
    p.parser.CopyNodeValue(&number);
    EXPECT_EQ(number, -7);
    p.parser.nextValueTag();
    unsigned int wide = 1;
    p.parser.CopyNodeValue(&wide);
    EXPECT_EQ(wide, 4294967295U);
    p.parser.nextValueTag();
    __int64 huge = 1;
    p.parser.CopyNodeValue(&huge);
    EXPECT_EQ(huge, 9223372036854775807LL);
    p.parser.nextValueTag();
    p.parser.CopyNodeValue(&number);
    EXPECT_EQ(number, 12);
    p.parser.nextValueTag();
    p.parser.CopyNodeValue(&number);
    EXPECT_EQ(number, 0);
    p.parser.nextValueTag();
    number = 5;
    bool flag = true;
    p.parser.CopyNodeValue(&number);
    p.parser.CopyNodeValue(&flag);
    EXPECT_EQ(number, 5);
    EXPECT_TRUE(flag);
    char* text = nullptr;
    p.parser.CopyNodeValue(&text);
    EXPECT_STREQ(text, "");
    delete[] text;
    EXPECT_EQ(p.parser.nextValueTag(), nullptr);
}

TEST_F(XmlParserTest, AReferenceWithoutItsFlagLeavesTheFlag) {
    Parsed p("<r><o><a>5</a><b fromDb='1'>6</b><c fromDb='0'>7</c></o></r>");
    p.parser.initChildren();
    p.parser.firstObjectTag();
    const struct {
        ID id;
        bool before, after;
    } cases[] = {{5, true, true}, {6, false, true}, {7, true, false}};
    const std::string* tag = p.parser.firstValueTag();
    for (const auto& c : cases) {
        ASSERT_NE(tag, nullptr);
        IDREF id = 0;
        bool fromDb = c.before;
        p.parser.CopyNodeValue(&id, &fromDb);
        EXPECT_EQ(id, c.id);
        EXPECT_EQ(fromDb, c.after);
        tag = p.parser.nextValueTag();
    }
}

// A value of each kind as it is written, and as it is read again.
TEST_F(XmlParserTest, ValuesOfEachKindComeBack) {
    XmlParser writer;
    writer.AppendElement("Row");
    const std::string text = "by pointer";
    const wchar_t wide[] = {L'x', 0x1F4BE, 0xD800, 0x110000, 0};
    EXPECT_EQ(writer.AppendValue("A", 'a') + writer.AppendValue("B", true) + writer.AppendValue("C", -5L) +
                  writer.AppendValue("D", 5UL) + writer.AppendValue("E", __int64{-7}) +
                  writer.AppendValue("F", 65535U) + writer.AppendValue("G", &text) +
                  writer.AppendValue("H", wide) + writer.AppendValue("I", L'\u00fc') +
                  writer.AppendValue("J", static_cast<const char*>(nullptr)) +
                  writer.AppendValue("K", static_cast<const wchar_t*>(nullptr)) +
                  writer.AppendValue("L", static_cast<const std::string*>(nullptr)),
              0);
    Parsed reader(bytesOf(writer));
    XmlParser& p = reader.parser;
    p.initChildren();
    const auto release = [](char* tag) { return std::string(XmlText(tag).get()); };
    EXPECT_EQ(release(p.getFirstObject()), "Row");
    EXPECT_EQ(release(p.getFirstValue()), "A");
    const auto next = [&](auto value) {
        p.CopyNodeValue(&value);
        XmlText(p.getNextValue());
        return value;
    };
    EXPECT_EQ(next(static_cast<unsigned char>(0)), 'a');
    EXPECT_TRUE(next(false));
    EXPECT_EQ(next(0L), -5);
    EXPECT_EQ(next(0UL), 5U);
    EXPECT_EQ(next(__int64{0}), -7);
    EXPECT_EQ(next(static_cast<unsigned short>(0)), 65535);
    const auto textOf = [&](auto* made) {
        const std::basic_string read(made);
        delete[] made;
        return read;
    };
    EXPECT_EQ(textOf(next(static_cast<char*>(nullptr))), "by pointer");
    EXPECT_EQ(textOf(next(static_cast<wchar_t*>(nullptr))), L"x\U0001F4BE\uFFFD\uFFFD");
    EXPECT_EQ(next(L'-'), L'\u00fc');
    EXPECT_EQ(next(L'-'), L'\0') << "an element without a text";
    EXPECT_EQ(textOf(next(static_cast<wchar_t*>(nullptr))), L"");
    EXPECT_EQ(next(static_cast<unsigned char*>(nullptr)), nullptr);
    EXPECT_EQ(p.getNextValue(), nullptr);
}

TEST_F(XmlParserTest, TheCursorCanBeSetBack) {
    Parsed p("<r>one<a>two</a><b/></r>");
    XmlNode* const root = p.parser.getCurrentNode();
    ASSERT_EQ(*p.parser.firstObjectTag(), "a");
    std::string text;
    p.parser.CopyNode(&text);
    EXPECT_EQ(text, "two");
    ASSERT_EQ(*p.parser.nextObjectTag(), "b");
    p.parser.CopyNode(&text);
    EXPECT_EQ(text, "two") << "nothing to copy";
    p.parser.setCurrentNode(root);
    EXPECT_EQ(*p.parser.firstObjectTag(), "a");
    EXPECT_EQ(p.parser.firstValueTag(), nullptr);
}

TEST_F(XmlParserTest, BytesComeBackThroughBase64) {
    XmlParser writer;
    writer.AppendElement("Row");
    const unsigned char bytes[] = {0, 0x1a, 255, 7};
    EXPECT_EQ(writer.AppendValue("Data", bytes, sizeof bytes), 0);
    Parsed reader(bytesOf(writer));
    reader.parser.initChildren();
    reader.parser.firstObjectTag();
    reader.parser.firstValueTag();
    std::vector<unsigned char> read;
    reader.parser.CopyNodeValue(&read);
    EXPECT_EQ(read, std::vector<unsigned char>(bytes, bytes + sizeof bytes));

    Parsed bad("<r><o><f>*no base64*</f></o></r>");
    bad.parser.firstObjectTag();
    bad.parser.firstValueTag();
    unsigned char* copied = nullptr;
    bad.parser.CopyNodeValue(&read);
    bad.parser.CopyNodeValue(&copied);
    EXPECT_TRUE(read.empty());
    EXPECT_EQ(copied, nullptr);
}

TEST_F(XmlParserTest, ResultsTellWhatWentWrong) {
    XmlParser writer;
    const unsigned char byte = 1;
    EXPECT_EQ(writer.AppendValue("Field", "text"), 1) << "no record yet";
    EXPECT_EQ(writer.AppendValue("Field", L"wide"), XML_BAD_STATE);
    EXPECT_EQ(writer.AppendValue("Field", &byte, 1), XML_BAD_STATE);
    EXPECT_EQ(writer.AppendElement(nullptr), 1);
    EXPECT_EQ(writer.AppendElement("Row"), 0);
    EXPECT_EQ(writer.AppendValue("Field", L"wide"), 0);
    EXPECT_EQ(writer.parse(nullptr, 5), 1);
    EXPECT_EQ(writer.parse(&byte, 0), 1);
    writer.releaseDocument();
    EXPECT_EQ(writer.write(), XML_WRITE_FAILED);

    Parsed reused("<r><o/></r>");
    EXPECT_EQ(reused.parser.parse(&byte, 1), XML_NOT_WELL_FORMED);
    EXPECT_EQ(reused.parser.initChildren(), 1) << "nothing points into the first document any more";

    Parsed empty("");
    EXPECT_EQ(empty.parser.initChildren(), 1);
    EXPECT_EQ(empty.parser.getFirstObject(), nullptr);
    EXPECT_EQ(empty.parser.AppendElement("Row"), 1);
    EXPECT_EQ(empty.parser.AppendValue("Field", &byte, 1), 1);
    EXPECT_EQ(empty.parser.write(), 1);
    EXPECT_EQ(empty.parser.getRootName(), "");
    EXPECT_EQ(empty.parser.getCurrentNode(), nullptr);
    EXPECT_EQ(empty.parser.nextObjectTag(), nullptr);
    EXPECT_EQ(empty.parser.firstValueTag(), nullptr);
    EXPECT_EQ(empty.parser.nextValueTag(), nullptr);
    empty.parser.setCurrentNode(nullptr);
    std::string text = "kept", name = "a";
    int number = 3;
    wchar_t* wide = nullptr;
    empty.parser.CopyNode(&text);
    empty.parser.CopyNodeAttribute(&text, &name);
    empty.parser.CopyNodeValue(&text);
    empty.parser.CopyNodeValue(&number);
    empty.parser.CopyNodeValue(&wide);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(number, 3);
    EXPECT_EQ(wide, nullptr);
}

TEST_F(XmlParserTest, BadAndHostileDocumentsAreRefused) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    const std::string documents[] = {
        "no xml",
        "<a>",
        "<a></b>",
        "<a>&undefined;</a>",
        std::string("<a>\0</a>", 8),
        "<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>",
        "<!DOCTYPE a SYSTEM 'http://127.0.0.1:1/a.dtd'><a/>",
        deep,
    };
    for (const std::string& document : documents) {
        XmlParser parser;
        EXPECT_EQ(parser.parse(reinterpret_cast<const unsigned char*>(document.data()),
                               static_cast<int>(document.size())),
                  XML_NOT_WELL_FORMED)
            << document.substr(0, 60);
    }
}

TEST_F(XmlParserTest, TheWalkSkipsTextAndEndsAtAComment) {
    Parsed p("<r>\n <a/>\n text <b><c/> <d/></b><!-- end of the walk --><e/></r>");
    ASSERT_EQ(p.parser.initChildren(), 0);
    EXPECT_EQ(*p.parser.firstObjectTag(), "a");
    EXPECT_EQ(p.parser.firstValueTag(), nullptr);
    EXPECT_EQ(p.parser.nextValueTag(), nullptr) << "the values of one object are not the next object";
    EXPECT_EQ(*p.parser.nextObjectTag(), "b");
    EXPECT_EQ(*p.parser.firstValueTag(), "c");
    EXPECT_EQ(*p.parser.nextValueTag(), "d");
    EXPECT_EQ(p.parser.nextValueTag(), nullptr);
    EXPECT_EQ(p.parser.nextObjectTag(), nullptr);
    EXPECT_EQ(p.parser.getRootName(), "r");
}

TEST_F(XmlParserTest, WhiteSpaceIsATextWhereItStandsAlone) {
    Parsed p("<r>\n <o> </o>\n <p>\n  <f> </f>\n  <g>\n x</g> </p>\n</r>");
    std::string text = "unread";
    ASSERT_EQ(*p.parser.firstObjectTag(), "o");
    p.parser.CopyNodeValue(&text);
    EXPECT_EQ(text, " ");
    ASSERT_EQ(*p.parser.nextObjectTag(), "p");
    ASSERT_EQ(*p.parser.firstValueTag(), "f");
    text.clear();
    p.parser.CopyNodeValue(&text);
    EXPECT_EQ(text, " ");
    ASSERT_EQ(*p.parser.nextValueTag(), "g");
    p.parser.CopyNodeValue(&text);
    EXPECT_EQ(text, "\n x");
    EXPECT_EQ(p.parser.nextValueTag(), nullptr);
}

TEST_F(XmlParserTest, ElementsOfOneNameDifferAsTheyAreWritten) {
    Parsed p("<r xmlns:n='u'><o><f a='1'>1</f><f a='&lt;'/><f b='3'>3</f><f/><f a='5' b='5'/><n:f a='6'/>"
             "<f xmlns='v' a='7'><f a='8'/></f><f a='9'>9</f></o></r>");
    p.parser.firstObjectTag();
    const struct {
        const char *a, *b, *text;
    } cases[] = {{"1", "", "1"}, {"<", "", ""}, {"", "3", "3"}, {"", "", ""},
                 {"5", "5", ""}, {"6", "", ""}, {"7", "", ""},  {"9", "", "9"}};
    const std::string a = "a", b = "b";
    const std::string* tag = p.parser.firstValueTag();
    for (const auto& c : cases) {
        ASSERT_NE(tag, nullptr);
        EXPECT_EQ(*tag, "f");
        std::string ofA, ofB, text;
        p.parser.CopyNodeAttribute(&ofA, &a);
        p.parser.CopyNodeAttribute(&ofB, &b);
        p.parser.CopyNodeValue(&text);
        EXPECT_EQ(ofA + "|" + ofB + "|" + text, std::string(c.a) + "|" + c.b + "|" + c.text);
        tag = p.parser.nextValueTag();
    }
    EXPECT_EQ(tag, nullptr);
}

TEST_F(XmlParserTest, ATagIsGoneByAsItReadsNow) {
    XmlParser writer;
    writer.AppendElement("Row");
    std::string tag = "First";
    writer.AppendValue(tag.c_str(), "1");
    tag = "Other";
    writer.AppendValue(tag.c_str(), "2");
    EXPECT_NE(bytesOf(writer).find("<Other>2</Other>"), std::string::npos)
        << "in the same place as the first";
}

#ifndef __SANITIZE_ADDRESS__ // its shadow is larger than any limit
TEST_F(XmlParserTest, LackOfMemoryIsToldAsSuch) {
    const auto fillMemory = [] {
        const rlimit limit{1U << 27, 1U << 27};
        setrlimit(RLIMIT_AS, &limit);
        try {
            XmlParser writer;
            writer.AppendElement("Row");
            for (const std::string text(100000, 'x');;)
                writer.AppendValue("Field", text);
        } catch (const std::bad_alloc&) {
            std::_Exit(10);
        }
    };
    EXPECT_EXIT(fillMemory(), testing::ExitedWithCode(10), "");
}
#endif

TEST_F(XmlParserTest, TheDocumentDeclaresItsNamespaceOnce) {
    XmlParser writer;
    writer.AppendElement("Row");
    writer.AppendValue("Field", "x");
    const std::string text = bytesOf(writer);
    EXPECT_NE(text.find("<ZorData xmlns=\"urn:zorvane:zordata:1\">"), std::string::npos) << text;
    EXPECT_EQ(text.find("xmlns", text.find("xmlns") + 1), std::string::npos) << text;
    XmlParser none;
    EXPECT_GT(none.getBufferLen(), 0);
}

} // namespace
} // namespace Zorvane
