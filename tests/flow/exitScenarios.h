// SPDX-License-Identifier: Apache-2.0
// Every exit of a conversion as data: what is asked for, and what the user then sees.
#pragma once

#include <string>
#include <vector>

namespace Zorvane {

struct Exit {
    std::string client;  ///< with the options that are needed; none of them if it is empty
    std::string options; ///< behind those; CONF is the configuration file, EMPTY an empty word
    std::string target;  ///< lines of that file, behind those that are needed
    std::string rules;   ///< failures of the lab
    int status;
    int out;          ///< the message on standard output
    std::string told; ///< on standard error: a message and its arguments, "14 client|config", or a line end
    std::string road;
    std::string left = "0 0"; ///< the numbers of visible profiles and of tasks
    std::string before{};     ///< what is done to the database first
};

std::vector<Exit> usageExits();
std::vector<Exit> clientsThatDoNotQualifyExits();
std::vector<Exit> profilesAndPendingJobsExits();
std::vector<Exit> targetsThatAreNotThereExits();
std::vector<Exit> submissionExits();
std::vector<Exit> consoleJobsExits();

/// The command's arguments for an exit; `target` is the path of its configuration file.
std::vector<std::string> argumentsOf(const Exit& exit, const std::string& target);
/// The text of that file.
std::string targetOf(const Exit& exit);

} // namespace Zorvane
