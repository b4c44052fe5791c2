// SPDX-License-Identifier: Apache-2.0
#include "ParameterRule.h"

#include <QtCore/QLocale>

#include <algorithm>

namespace zav {

namespace {

QString text(int value)
{
    return QString::number(value);
}

QString text(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

} // namespace

ParameterRule ParameterRule::notEmpty(const char *field, const QString &value)
{
    return {!value.isEmpty(), field, QStringLiteral("empty"), QStringLiteral("set")};
}

ParameterRule ParameterRule::atLeast(const char *field, int value, int lowest)
{
    return {value >= lowest, field, text(value), QStringLiteral("%1 or more").arg(text(lowest))};
}

ParameterRule ParameterRule::atMost(const char *field, int value, int highest)
{
    return {value <= highest, field, text(value), QStringLiteral("%1 or less").arg(text(highest))};
}

ParameterRule ParameterRule::greaterThan(const char *field, int value, int limit)
{
    return {value > limit, field, text(value), QStringLiteral("greater than %1").arg(text(limit))};
}

ParameterRule ParameterRule::greaterThan(const char *field, double value, double limit)
{
    return {value > limit, field, text(value), QStringLiteral("greater than %1").arg(text(limit))};
}

ParameterRule ParameterRule::within(const char *field, double value, double lowest, double highest)
{
    return {value >= lowest && value <= highest, field, text(value),
            QStringLiteral("within %1 to %2").arg(text(lowest), text(highest))};
}

ParameterRule ParameterRule::fromToBelow(const char *field, double value, double lowest, double limit)
{
    return {value >= lowest && value < limit, field, text(value),
            QStringLiteral("%1 or more and less than %2").arg(text(lowest), text(limit))};
}

Error firstBrokenRule(std::initializer_list<ParameterRule> rules)
{
    const auto broken = std::find_if(rules.begin(), rules.end(), [](const ParameterRule &rule) { return !rule.holds; });
    if (broken == rules.end())
        return {};
    return {
        InvalidInput,
        QStringLiteral("%1 is %2, must be %3").arg(QString::fromLatin1(broken->field), broken->value, broken->rule)};
}

} // namespace zav
