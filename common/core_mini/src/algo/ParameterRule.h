// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <initializer_list>

namespace zav {

/// One rule of an options record, checked on one field's value. No rule holds for NaN.
struct ParameterRule
{
    bool holds;
    const char *field;
    QString value;
    QString rule; // continues "must be"

    static ParameterRule notEmpty(const char *field, const QString &value);
    static ParameterRule atLeast(const char *field, int value, int lowest);
    static ParameterRule greaterThan(const char *field, int value, int limit);
    static ParameterRule greaterThan(const char *field, double value, double limit);
    static ParameterRule within(const char *field, double value, double lowest, double highest);
    static ParameterRule fromToBelow(const char *field, double value, double lowest, double limit);
};

/// `InvalidInput` with "<field> is <value>, must be <rule>" for the first rule that does not hold, else no error.
Error firstBrokenRule(std::initializer_list<ParameterRule> rules);

} // namespace zav
