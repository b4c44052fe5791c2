// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <initializer_list>

namespace zav {

// The most that the options of the chromatogram predictors allow, so that every call ends and fits into memory.
constexpr int MOST_POINTS = 1 << 24;      // of a network's input
constexpr int MOST_FILTER_TAPS = 1 << 20; // of the Gaussian filter
constexpr int MOST_CORE_POINTS = 1 << 20; // around a core of DBSCAN

/// One rule of an options record, checked on one field's value. No rule holds for NaN.
struct ParameterRule
{
    bool holds;
    const char *field;
    QString value;
    QString rule; // continues "must be"

    static ParameterRule notEmpty(const char *field, const QString &value);
    static ParameterRule atLeast(const char *field, int value, int lowest);
    static ParameterRule atMost(const char *field, int value, int highest);
    static ParameterRule greaterThan(const char *field, int value, int limit);
    static ParameterRule greaterThan(const char *field, double value, double limit);
    static ParameterRule within(const char *field, double value, double lowest, double highest);
    static ParameterRule fromToBelow(const char *field, double value, double lowest, double limit);
};

/// `InvalidInput` with "<field> is <value>, must be <rule>" for the first rule that does not hold, else no error.
Error firstBrokenRule(std::initializer_list<ParameterRule> rules);

} // namespace zav
