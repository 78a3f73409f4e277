// SPDX-License-Identifier: Apache-2.0
// Messages and findings with all that is known of them.
#pragma once

#include "info/explanations.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Zorvane {

/// A subject with what is known of it.
struct Subject {
    std::string name; ///< of a message its number alone
    const Explanation& explanation;
    std::string text; ///< the message itself, or the sentence of the finding; "%s" is its argument
    std::vector<const FindingDescriptor*> findings; ///< the one, or those that end in the message
};

/// Every message, then every finding.
std::vector<Subject> allSubjects();
/// The subject of a message's number or a finding's identifier, whose row this is.
Subject subjectOf(const std::string& name, const Explanation& explanation);

bool isMessage(const Subject& subject);
/// Of a message of the code that the command shares with others; else it is the command's.
bool isShared(const Subject& subject);
const char* severityOf(const FindingDescriptor& finding);
/// The identifiers of the subject's findings, with commas between them.
std::string findingList(const Subject& subject);

/// All of them as a page in Markdown: docs/messages.md.
void writeMessagesPage(std::ostream& out);
/// The messages as the lists of a manual page: those of share/man/man1/zorb2v.1.
void writeDiagnostics(std::ostream& out);

} // namespace Zorvane
