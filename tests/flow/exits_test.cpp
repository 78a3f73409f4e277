// SPDX-License-Identifier: Apache-2.0
// Every exit of a conversion: what the user sees, what the daemons were asked by then, and which rows are
// left.
#include "flow/Lab.h"
#include "flow/exitScenarios.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

class Exits : public testing::Test {
  protected:
    void check(const std::vector<Exit>& exits) {
        for (const Exit& exit : exits) {
            SCOPED_TRACE(exit.client + " " + exit.options + " " + exit.target + exit.rules);
            m_lab.serve(words(exit.rules));
            m_lab.sql(exit.before);
            m_lab.write("target", targetOf(exit));
            const Ended ended = m_lab.zorb2v(argumentsOf(exit, m_lab.path("target")));
            EXPECT_EQ(ended.status, exit.status);
            EXPECT_EQ(ended.out, message(exit.out));
            EXPECT_EQ(ended.err, exit.told == "\n" ? exit.told : message(exit.told));
            EXPECT_EQ(m_lab.road(), exit.road);
            EXPECT_EQ(
                m_lab.sql("SELECT (SELECT count(*) FROM ZOR_VmwareProfileOptions WHERE HiddenProfile = 0) "
                          "|| ' ' || (SELECT count(*) FROM ZOR_P2VRestoreTask)"),
                exit.left + "\n");
            m_lab.forget();
        }
    }

    Lab m_lab;
};

TEST_F(Exits, usage) {
    check(usageExits());
}

TEST_F(Exits, clientsThatDoNotQualify) {
    check(clientsThatDoNotQualifyExits());
}

TEST_F(Exits, profilesAndPendingJobs) {
    check(profilesAndPendingJobsExits());
}

TEST_F(Exits, targetsThatAreNotThere) {
    check(targetsThatAreNotThereExits());
}

TEST_F(Exits, submission) {
    check(submissionExits());
}

TEST_F(Exits, consoleJobs) {
    check(consoleJobsExits());
}

} // namespace
} // namespace Zorvane
