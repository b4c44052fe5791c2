// SPDX-License-Identifier: Apache-2.0
#include "CallComparison.h"

namespace zav {

namespace {

using benchmarkSetting::Moment;

struct Samples
{
    std::vector<double> wall, computed;

    void add(const Moment &moment)
    {
        wall.push_back(moment.wall);
        computed.push_back(moment.computed);
    }

    Moment median() const { return {benchmarkSetting::median(wall), benchmarkSetting::median(computed)}; }
};

Moment timeRound(int calls, const std::function<bool()> &call)
{
    const Moment start = Moment::now();
    for (int i = 0; i < calls; ++i)
        benchmarkSetting::require(call(), "A call failed");
    const Moment spent = Moment::now().since(start);
    return {spent.wall / calls * 1e6, spent.computed / calls * 1e6};
}

} // namespace

CallComparison compareCalls(int rounds, int callsPerRound, const std::function<bool()> &part,
                            const std::function<bool()> &whole)
{
    Samples parts, wholes, ratios;
    for (int round = 0; round < rounds; ++round) {
        const Moment partial = timeRound(callsPerRound, part);
        const Moment full = timeRound(callsPerRound, whole);
        parts.add(partial);
        wholes.add(full);
        ratios.add({full.wall / partial.wall, full.computed / partial.computed});
    }
    return {parts.median(), wholes.median(), ratios.median()};
}

} // namespace zav
