// SPDX-License-Identifier: Apache-2.0
// CZor: the document of a container, in memory and in files.
#include "logging/Trace.h"
#include "model/CZor.h"
#include "model/RecordCodec.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <unordered_map>

namespace Zorvane {

namespace {

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

// Puts the rows of one document into a container. The first row of each Id is known by number, so that a
// large vector is not searched for every row.
class RowReceiver {
  public:
    explicit RowReceiver(CZor& zor) : m_zor(zor) {}

    void add(const VectorDescriptor& vector, std::unique_ptr<BaseTable> row, Trace& trace) {
        auto& records = vector.rows(m_zor).records();
        auto& byId = m_known[&vector];
        if (byId.empty())
            for (BaseTable* old : records)
                if (old)
                    byId.try_emplace(old->getId(), old);
        const auto [known, isNew] = byId.try_emplace(row->getId(), row.get());
        if (isNew) {
            records.push_back(row.get());
            row.release();
            return;
        }
        vector.table().assign(*known->second, *row);
        trace.write(LEVEL_FAILURE, "Replaced object in m_v", vector.name, ".");
    }

  private:
    CZor& m_zor;
    std::unordered_map<const VectorDescriptor*, std::unordered_map<ID, BaseTable*>> m_known;
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
        RowReceiver receiver(*this);
        for (const std::string* tag = parser.firstObjectTag(); tag; tag = parser.nextObjectTag()) {
            const VectorDescriptor* vector = findVector(*tag);
            if (!vector)
                continue;
            const TableDescriptor& table = vector->table();
            std::unique_ptr<BaseTable> row(table.create());
            RecordCodec::read(table, *row, parser);
            markAsRead(table, *row, filter);
            receiver.add(*vector, std::move(row), trace);
        }
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

} // namespace Zorvane
