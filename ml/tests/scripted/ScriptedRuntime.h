// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zav {

/// An operation of the graph that the scripted runtime "imports".
struct ScriptedOperation
{
    std::string name;
    int type = 1;                         ///< 1: float
    std::vector<std::int64_t> shape = {}; ///< empty: of unknown rank
};

/// The state of the scripted runtime: a small shared library under the name of TensorFlow's that answers as a test
/// tells it to, and records what it is asked. It stands for what the real runtime cannot be made to do: to refuse
/// memory, to fail where it does not, and to keep strings as TensorFlow did up to 2.3.
struct ScriptedRuntime
{
    // What it answers; 0 is the status "OK".
    std::vector<ScriptedOperation> operations{{"init"}};
    int newSessionStatus = 0;
    int importStatus = 0;
    int runStatus = 0;
    int deleteSessionStatus = 0;
    int encodeStatus = 0;
    int failingEncodes = -1;       ///< how many of the next encodings have `encodeStatus`, the others 0; -1: all
    bool refusesNewTensor = false; ///< TF_NewTensor calls the deallocator and returns null, as TensorFlow does
    bool refusesAllocation = false;
    bool hidesTensorData = false;
    std::vector<float> results{42.0F};       ///< the values of every output
    std::vector<std::int64_t> resultShape{}; ///< of every output; empty: one dimension

    // What it was asked.
    std::vector<std::string> calls;       ///< functions in order, with the arguments that matter in parentheses
    std::string importedBytes;            ///< of the graph file
    std::string configBytes;              ///< of the session
    std::vector<std::string> fedBytes;    ///< the contents of each tensor fed
    std::map<std::string, int> liveCount; ///< objects created and not deleted, by type
    int wrongDeletions = 0;               ///< of objects that do not live

    void forget() { *this = ScriptedRuntime(); }
};

} // namespace zav
