// SPDX-License-Identifier: Apache-2.0
#include "info/explainedSubjects.h"
#include "info/explanations.h"
#include "suite/Scratch.h"

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

// The messages in the catalogue's source, as explanations name them.
std::set<std::string> catalogueSubjects() {
    std::ifstream in(ZOR_SOURCE_DIR "/share/catalog/en/zorvane.msg");
    std::set<std::string> subjects;
    std::string prefix;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("$set "))
            prefix = line == "$set 433" ? "" : line.substr(5) + ":";
        else if (!line.empty() && line.front() >= '0' && line.front() <= '9')
            subjects.insert(prefix + line.substr(0, line.find(' ')));
    }
    return subjects;
}

TEST(Explain, coversEveryMessageAndEveryFindingAndNothingElse) {
    std::set<std::string> subjects = catalogueSubjects();
    EXPECT_GT(subjects.size(), 45U);
    for (const FindingDescriptor& finding : allFindings()) {
        subjects.insert(finding.identifier);
        EXPECT_TRUE(std::regex_match(finding.identifier, std::regex("[a-z]+\\.[a-z]+")))
            << finding.identifier;
        EXPECT_TRUE(finding.message == 0 || subjects.contains(std::to_string(finding.message)));
    }
    for (const std::string& subject : subjects)
        EXPECT_TRUE(findExplanation(subject)) << "explanations.def lacks " << subject;
    std::set<std::string_view> seen;
    for (const Explanation& explanation : allExplanations()) {
        EXPECT_TRUE(subjects.contains(std::string(explanation.subject))) << explanation.subject;
        EXPECT_TRUE(seen.insert(explanation.subject).second) << explanation.subject << " stands twice";
        for (const std::string_view part : {explanation.meaning, explanation.cause, explanation.remedy})
            EXPECT_TRUE(part.ends_with('.')) << explanation.subject;
    }
    EXPECT_EQ(findExplanation("926"), findExplanation("128:926"));
    EXPECT_EQ(findExplanation("433:14"), findExplanation("14"));
    EXPECT_FALSE(findExplanation("128:14"));
}

TEST(Explain, thePageOfTheDocumentationIsUpToDate) {
    const Scratch scratch;
    std::ostringstream made, kept;
    writeMessagesPage(made);
    kept << std::ifstream(ZOR_SOURCE_DIR "/docs/messages.md").rdbuf();
    EXPECT_EQ(made.str(), kept.str()) << "zorinfo explain --md >docs/messages.md";
}

} // namespace
} // namespace Zorvane
