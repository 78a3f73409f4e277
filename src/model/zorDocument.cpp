// SPDX-License-Identifier: Apache-2.0
// CZor: the document of a container, in memory and in files.
#include "logging/Trace.h"
#include "model/CZor.h"
#include "model/RecordCodec.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>

namespace Zorvane {

namespace {

// What an index costs, a row of it, in looks at a row.
constexpr std::size_t LOOKS_PER_ROW_OF_INDEX = 20;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool isSelected(const VectorDescriptor& vector, const BaseTable& row, int filter) {
    switch (filter) {
    case FOR_ALL:
        return true;
    case FOR_QUERY:
        return std::string_view(vector.name) == "QueryRequest";
    case FOR_INSERT:
        return !row.isFromDb();
    case FOR_UPDATE:
        return row.isFromDb() && row.isChanged();
    case FOR_DELETE:
        return row.isFromDb();
    case FOR_TRANSACTION:
        return std::string_view(vector.name) == "TransactionRequest";
    default:
        return false;
    }
}

void markAsRead(const TableDescriptor& table, BaseTable& row, int filter) {
    if (filter == FOR_QUERY || filter == FOR_INSERT || filter == FOR_DELETE)
        RecordCodec::setFromDb(table, row, true);
    else if (filter == FOR_UPDATE)
        row.setChanged();
}

// The rows of one vector by their identifier, the first of each. Few rows are found by a look at all of them;
// when the looking has cost as much as an index, there is one.
class RowsById {
  public:
    /// The first row of the identifier, or null.
    BaseTable* find(const RecordVector::Pointers& rows, ID id) {
        if (!m_isIndexed && m_looks > LOOKS_PER_ROW_OF_INDEX * rows.size())
            makeIndex(rows);
        if (m_isIndexed) {
            const auto found = m_index.find(id);
            return found == m_index.end() ? nullptr : found->second;
        }
        const auto found = std::find_if(rows.begin(), rows.end(),
                                        [&](const BaseTable* row) { return row && row->getId() == id; });
        m_looks += static_cast<std::size_t>(found - rows.begin());
        return found == rows.end() ? nullptr : *found;
    }

    void add(BaseTable& row) {
        if (m_isIndexed)
            m_index.try_emplace(row.getId(), &row);
    }

  private:
    void makeIndex(const RecordVector::Pointers& rows) {
        m_index.reserve(rows.size());
        for (BaseTable* row : rows)
            if (row)
                m_index.try_emplace(row->getId(), row);
        m_isIndexed = true;
    }

    bool m_isIndexed = false;
    std::size_t m_looks = 0;
    std::unordered_map<ID, BaseTable*> m_index;
};

// Puts the rows of one document into a container.
class RowReceiver {
  public:
    RowReceiver(CZor& zor, XmlParser& parser, int filter) : m_zor(zor), m_parser(parser), m_filter(filter) {}

    /// Takes in the row that the parser stands on.
    void receive(const XmlName* name, Trace& trace) {
        Known& known =
            m_known.of(name, [&](Known& made) { made.vector = findVector(m_parser.nameText(name)); });
        if (!known.vector)
            return;
        const TableDescriptor& table = known.vector->table();
        std::unique_ptr<BaseTable> row(table.create());
        RecordCodec::read(table, *row, m_parser, known.fields);
        markAsRead(table, *row, m_filter);
        auto& records = known.vector->rows(m_zor).records();
        if (BaseTable* old = known.rows.find(records, row->getId())) {
            table.assign(*old, *row);
            trace.write(LEVEL_FAILURE, "Replaced object in m_v", known.vector->name, ".");
            return;
        }
        records.push_back(row.get());
        known.rows.add(*row.release());
    }

  private:
    struct Known {
        const VectorDescriptor* vector = nullptr;
        FieldNames fields;
        RowsById rows;
    };

    CZor& m_zor;
    XmlParser& m_parser;
    int m_filter;
    XmlNames<Known> m_known;
};

} // namespace

XmlParser& CZor::renewParser(std::unique_ptr<XmlParser> parser) {
    m_pXml = std::move(parser);
    return *m_pXml;
}

int CZor::writeXml(unsigned char** xml, int* len, int filter) {
    Trace trace(g_libLog, "CZor:CZor::writeXml()", ", filter=", filter);
    m_pXml.reset();
    XmlParser& parser = renewParser(std::make_unique<XmlParser>());
    for (const VectorDescriptor& vector : allVectors())
        for (const BaseTable* row : vector.rows(*this).records())
            if (row && isSelected(vector, *row, filter))
                RecordCodec::write(vector.table(), *row, parser);
    if (!xml || !len) {
        trace.write(LEVEL_FAILURE, "Exiting CZor::writeXml with error due to zero length.");
        return trace.leave(1, ", return rc=", 1);
    }
    // The result is not looked at, and this stays so: of a text that XML has no place for (a control
    // character), the document goes out as far as it came, and the peer refuses it.
    parser.write();
    *len = parser.getBufferLen();
    *xml = new unsigned char[static_cast<std::size_t>(*len) + 1];
    if (*len > 0)
        std::memcpy(*xml, parser.getBuffer(), static_cast<std::size_t>(*len));
    (*xml)[*len] = 0;
    parser.releaseDocument();
    return trace.leave(0, ", return rc=", 0);
}

int CZor::writeXml(unsigned char** xml, int* len) {
    return writeXml(xml, len, FOR_ALL);
}

int CZor::readXml(unsigned char* xml, int len, int filter) {
    Trace trace(g_libLog, "CZor:CZor::readXml()", ", len=", len, ", filter=", filter);
    m_pXml.reset();
    try {
        XmlParser& parser = renewParser(std::make_unique<XmlParser>(xml, len));
        if (parser.initChildren() != 0) {
            trace.write(LEVEL_FAILURE, "Exiting, Failure in XmlParserImpl. Line= ", __LINE__);
            return trace.leave(1, ", return rc=", 1);
        }
        RowReceiver receiver(*this, parser, filter);
        for (const XmlName* name = parser.firstObjectName(); name; name = parser.nextObjectName())
            receiver.receive(name, trace);
    } catch (...) {
        trace.write(LEVEL_FAILURE, "Exiting, Caught unexpected error on line= ", __LINE__);
        return trace.leave(1, ", return rc=", 1);
    }
    return trace.leave(0, ", return rc=", 0);
}

int CZor::readXml(unsigned char* xml, int len) {
    return readXml(xml, len, FOR_ALL);
}

int CZor::writeXml(char* filename) {
    Trace trace(g_libLog, "CZor:CZor::writeXml()", ", filename=", orNull(filename));
    unsigned char* xml = nullptr;
    int len = 0;
    if (const int rc = writeXml(&xml, &len)) {
        trace.write(LEVEL_FAILURE, "Error attempting to write XML document, rc ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    const std::unique_ptr<unsigned char[]> document(xml);
    File file(filename ? std::fopen(filename, "we") : nullptr);
    if (!file) {
        trace.write(LEVEL_FAILURE, "Error opening XML document, ", orNull(filename));
        return trace.leave(1, ", return rc=", 1);
    }
    const bool isWritten =
        std::fwrite(xml, 1, static_cast<std::size_t>(len), file.get()) == static_cast<std::size_t>(len);
    // The last bytes reach the disk only here.
    const bool isClosed = std::fclose(file.release()) == 0;
    if (!isWritten || !isClosed) {
        trace.write(LEVEL_FAILURE, "Error writing XML document, ", filename);
        return trace.leave(1, ", return rc=", 1);
    }
    return trace.leave(0, ", return rc=", 0);
}

int CZor::readFile(const char* filename, unsigned char** buffer, int* len) {
    Trace trace(g_libLog, "CZor:CZor::readFile()", ", filename=", orNull(filename));
    if (!buffer || !len) {
        trace.write(LEVEL_FAILURE, "Exiting, Bad parameters passed. rc=1");
        return trace.leave(1, ", return rc=", 1);
    }
    *buffer = nullptr;
    *len = 0;
    const File file(filename ? std::fopen(filename, "rbe") : nullptr);
    if (!file) {
        trace.write(LEVEL_FAILURE, "Exiting failed to open, ", orNull(filename), " rc=1 ");
        return trace.leave(1, ", return rc=", 1);
    }
    std::fseek(file.get(), 0, SEEK_END);
    const long size = std::ftell(file.get());
    std::rewind(file.get());
    // A size beyond int (a directory's end is one) can't be handed to the caller.
    const bool fits = size >= 0 && size < 0x7FFFFFFF;
    std::unique_ptr<unsigned char[]> content(
        fits ? new (std::nothrow) unsigned char[static_cast<std::size_t>(size) + 1] : nullptr);
    if (!content) {
        trace.write(LEVEL_FAILURE, "Exiting. Failed to get memory. rc=2");
        return trace.leave(2, ", return rc=", 2);
    }
    const std::size_t count = std::fread(content.get(), 1, static_cast<std::size_t>(size), file.get());
    if (count < static_cast<std::size_t>(size)) {
        trace.write(LEVEL_FAILURE, "Exiting, failed Read of only", count, "Bytes out of ", size, " rc=3");
        return trace.leave(3, ", return rc=", 3);
    }
    *buffer = content.release();
    *len = static_cast<int>(size);
    return trace.leave(0, ", return rc=", 0);
}

int CZor::readXml(char* filename) {
    Trace trace(g_libLog, "CZor:CZor::readXml()", ", filename=", orNull(filename));
    unsigned char* buffer = nullptr;
    int len = 0;
    if (const int rc = readFile(filename, &buffer, &len)) {
        trace.write(LEVEL_FAILURE, "Failed to read file into memory rc == ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    const std::unique_ptr<unsigned char[]> content(buffer);
    const int rc = readXml(content.get(), len);
    return trace.leave(rc, ", return rc=", rc);
}

int CZor::readXml(std::string& filename) {
    return readXml(filename.data());
}

std::string documentText(CZor& rows) {
    unsigned char* xml = nullptr;
    int length = 0;
    if (rows.writeXml(&xml, &length) != 0)
        return {};
    const std::unique_ptr<unsigned char[]> owner(xml);
    return std::string(reinterpret_cast<const char*>(xml), static_cast<std::size_t>(length));
}

} // namespace Zorvane
