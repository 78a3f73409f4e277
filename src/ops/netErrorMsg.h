// SPDX-License-Identifier: Apache-2.0
// An error message that travels between the daemon and its client.
#pragma once

#include "logging/CErrorMsg.h"

#include <memory>

namespace Zorvane {

class CZor;

/// On the wire: an ERROR_RESPONSE packet and a configuration document, with one CErrorResponse row and a
/// CErrorResponseArgument row for each parameter.
class CNetErrorMsg : public CErrorMsg {
  public:
    CNetErrorMsg();
    void reset() override;

    /// Adds the rows to a document.
    void serializeToData(CZor& document) const;
    /// Takes the values of the first error row; without one the object stays as it is.
    void serializeFromData(const CZor& document);

    /// 0, or 1 if it could not be sent.
    int sendMessage(int descriptor);
    /// Reads the packet and the document: 0 or 1.
    int receivebuffer(int descriptor);
    /// Reads a whole message: 0, 1, or the code of a document that makes no sense.
    int receiveMessage(int descriptor);

  private:
    std::int32_t m_xmlLength = 0;
    std::unique_ptr<unsigned char[]> m_xmlBuffer;
};

} // namespace Zorvane
