// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zav::naive {

/// Straight from the definition, over all pairs: clusters are the connected sets of cores, numbered by their first row;
/// any other row takes the lowest cluster among the cores around it.
inline std::vector<int> labelsByDefinition(const Eigen::MatrixXd &rows, double eps, int minPoints)
{
    const auto count = static_cast<int>(rows.rows());
    const auto near = [&](int a, int b) { return (rows.row(a) - rows.row(b)).norm() <= eps; };
    std::vector<int> component(static_cast<std::size_t>(count), -1);
    for (int a = 0; a < count; ++a) {
        int neighbours = 0;
        for (int b = 0; b < count; ++b)
            neighbours += near(a, b) ? 1 : 0;
        if (neighbours >= std::max(minPoints, 1))
            component[static_cast<std::size_t>(a)] = a;
    }
    const std::vector<int> cores = component;
    for (bool changed = true; changed;) {
        changed = false;
        for (int a = 0; a < count; ++a)
            for (int b = 0; b < count; ++b) {
                int &own = component[static_cast<std::size_t>(a)];
                const int other = component[static_cast<std::size_t>(b)];
                if (own >= 0 && other >= 0 && other < own && near(a, b)) {
                    own = other;
                    changed = true;
                }
            }
    }
    std::vector<int> firstRows;
    for (int a = 0; a < count; ++a)
        if (component[static_cast<std::size_t>(a)] == a)
            firstRows.push_back(a);
    const auto numberOf = [&](int first) {
        return static_cast<int>(std::find(firstRows.begin(), firstRows.end(), first) - firstRows.begin());
    };
    std::vector<int> labels(static_cast<std::size_t>(count), -1);
    for (int a = 0; a < count; ++a)
        for (int b = 0; b < count; ++b)
            if (cores[static_cast<std::size_t>(b)] >= 0 && near(a, b)) {
                const int label = numberOf(component[static_cast<std::size_t>(b)]);
                int &own = labels[static_cast<std::size_t>(a)];
                own = own < 0 ? label : std::min(own, label);
            }
    return labels;
}

} // namespace zav::naive
