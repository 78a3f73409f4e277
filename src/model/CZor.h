// SPDX-License-Identifier: Apache-2.0
// A whole configuration in memory: one vector for each kind of row, tied together by the identifiers in the
// rows.
#pragma once

#include "model/RecordVector.h"

#include <iosfwd>
#include <memory>
#include <span>
#include <string>

namespace Zorvane {

#define VECTOR(T) class C##T;
#include "model/records/vectors.def"

class CZor;

/// Which rows a document carries, and how rows that are read are marked.
enum ZorFilter : int {
    FOR_ALL = 0,         ///< every row; no marking
    FOR_QUERY = 1,       ///< query requests; rows read are from the database
    FOR_INSERT = 2,      ///< rows not from the database; rows read are
    FOR_UPDATE = 3,      ///< changed rows from the database; rows read are changed
    FOR_DELETE = 4,      ///< rows from the database; rows read are
    FOR_TRANSACTION = 5, ///< transaction requests; no marking
};

/// One of the container's vectors, for operations over all of them.
struct VectorDescriptor {
    const char* name; ///< "Gateway"
    const TableDescriptor& (*table)();
    RecordVector& (*rows)(CZor&);
};

/// The container's vectors in their order.
std::span<const VectorDescriptor> allVectors();
/// The vector of an element's name, or null.
const VectorDescriptor* findVector(std::string_view name);

class CZor {
  public:
#define VECTOR(T) RecordRows<C##T> m_v##T;
#include "model/records/vectors.def"

    CZor();
    /// Deep copies. Assignment appends: the target's rows stay, on purpose.
    CZor(const CZor& other);
    CZor& operator=(const CZor& other);
    virtual ~CZor();

    /// Adds the rows of a document, in any order; a row whose Id is in its vector already is assigned over
    /// the old one. 0, or 1 for a document that can't be read; rows added by then stay.
    virtual int readXml(unsigned char* xml, int len);
    virtual int readXml(unsigned char* xml, int len, int filter);
    /// The same from a file: 0, the document's code, or 1 (can't open), 2 (no memory), 3 (can't read).
    virtual int readXml(char* filename);
    virtual int readXml(std::string& filename);

    /// The document of the rows that the filter selects. The caller frees `*xml` with array delete; `*len`
    /// does not count the zero byte behind the document. 0, or 1 when an output place is null.
    int writeXml(unsigned char** xml, int* len, int filter);
    int writeXml(unsigned char** xml, int* len);
    /// The whole container to a file.
    int writeXml(char* filename);
    /// A whole file into a new array, not zero-ended, which the caller frees with array delete.
    int readFile(const char* filename, unsigned char** buffer, int* len);

    /// Empties every vector and drops the parser; `deleteRecords` destroys the rows too.
    void clear(bool deleteRecords);
    void dump(std::ostream& out);
    void dump();

    /// Brings the container in line with the database after a request of this filter has succeeded.
    void removeAfterRequest(int filter);
    void clearFromDbFlags();
    /// Rewrites the references to a device identifier's row that got another number; with `onlyNew` just
    /// those that are not from the database.
    void replaceDeviceIdReference(ID oldId, ID newId, bool onlyNew);
    /// The same for a package's row.
    void replacePackageReference(ID oldId, ID newId);

    // The request verbs: each is one exchange with the recovery daemon, and blocks for its length. 0, a code
    // of the document or a code of ZorOps.

    int queryRequest(const std::string& colClause, const std::string& tableClause,
                     const std::string& whereClause);
    int queryRequestAll();
    /// The row of that Id and all rows that hang from it.
    int queryTreeRequest(const std::string& tableName, ID id);
    int insertRequest();
    int updateRequest();
    int deleteRequest();
    /// The inserts and updates of this container and the deletes of another, all or nothing.
    int transactionRequest(CZor& thingsToDelete);

  private:
    XmlParser& renewParser(std::unique_ptr<XmlParser> parser);

    std::unique_ptr<XmlParser> m_pXml; ///< of the last writeXml or readXml
};

/// The document of all rows; empty if it can't be written.
std::string documentText(CZor& rows);

} // namespace Zorvane
