// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/Store.h"
#include "lab/rows.h"
#include "model/records.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Zorvane {

/// A directory of its own for each test.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "zorlab-test-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() { std::filesystem::remove_all(m_path); }
    [[nodiscard]] std::filesystem::path file(const char* name) const { return m_path / name; }

  private:
    std::filesystem::path m_path;
};

class StoreTest : public testing::Test {
  protected:
    using Bytes = std::vector<unsigned char>;

    StoreTest() { open(); }
    void open(StoreLimits limits = {}) {
        m_store.reset();
        m_store = std::make_unique<Store>(m_scratch.file("recovery.db"), limits);
    }

    static Bytes document(CZor& rows, int filter = FOR_ALL) {
        unsigned char* xml = nullptr;
        int length = 0;
        rows.writeXml(&xml, &length, filter);
        const std::unique_ptr<unsigned char[]> owner(xml);
        return {xml, xml + length};
    }
    /// Reads as a client does.
    static void read(Bytes& bytes, CZor& rows) {
        ASSERT_EQ(rows.readXml(bytes.data(), static_cast<int>(bytes.size()), FOR_ALL), 0);
    }
    StoreResult query(const std::string& columns, const std::string& table, const std::string& where,
                      ID treeId = 0) {
        CZor request;
        auto& row = add(request.m_vQueryRequest, 0);
        row.setColumnClause(columns);
        row.setTableClause(table);
        row.setWhereClause(where);
        row.setTreeId(treeId);
        return m_store->query(document(request, FOR_QUERY));
    }
    StoreResult tree(const char* table, ID id) { return query("", table, "", id); }
    std::string found(const char* table, const std::string& where = "") {
        return contents(query("*", table, where).reply);
    }

    /// Adds a new record to its vector.
    template <class Record>
    static Record& add(RecordRows<Record>& rows, ID id) {
        auto* row = new Record;
        row->setId(id);
        rows.push_back(row);
        return *row;
    }
    /// "Config 1, Config 2, System 1": what a document holds.
    static std::string contents(Bytes bytes) {
        CZor rows;
        read(bytes, rows);
        std::string text;
        forEachRow(rows, [&](const TableDescriptor& table, const BaseTable& row) {
            text += (text.empty() ? "" : ", ") + std::string(table.name) + ' ' + std::to_string(row.getId());
        });
        return text;
    }

    ScratchDirectory m_scratch;
    std::unique_ptr<Store> m_store;
};

} // namespace Zorvane
