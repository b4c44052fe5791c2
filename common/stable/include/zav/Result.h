// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <utility>
#include <variant>

namespace zav {

/// The outcome of a call that returns a value: either the value or an `Error`, never both.
///
/// While it holds an error, every change of the result's warnings is made to that error too, so that the two carry
/// the same ones wherever the host looks.
template <typename T>
class [[nodiscard]] Result : public Warnings
{
public:
    /// A success, without warnings. Implicit, so that a function can return the plain value.
    Result(const T &value) : m_outcome(std::in_place_index<1>, value) {}
    Result(T &&value) : m_outcome(std::in_place_index<1>, std::move(value)) {}

    /// A failure, with the error's warnings. The error is stored as it stands: tag it before.
    Result(const Error &error) : m_outcome(std::in_place_index<0>, error)
    {
        Warnings::resetWarningsInternal(error.warnings());
    }
    Result(Error &&error) : m_outcome(std::in_place_index<0>, std::move(error))
    {
        Warnings::resetWarningsInternal(std::get<0>(m_outcome).warnings());
    }

    /// Whether it holds an error.
    bool hasError() const { return m_outcome.index() == 0; }

    /// The value. Only for a result without error: std::bad_variant_access otherwise.
    const T &value() const & { return std::get<1>(m_outcome); }
    /// The value, moved out of a result that is about to end.
    T value() && { return std::get<1>(std::move(m_outcome)); }

    /// The error, or an `Error` without error when there is a value.
    const Error &error() const
    {
        static const Error none;
        return hasError() ? std::get<0>(m_outcome) : none;
    }

protected:
    void addWarningInternal(const QString &warning) override
    {
        Warnings::addWarningInternal(warning);
        onError([&](Error &error) { error.addWarning(warning); });
    }

    void addWarningsInternal(const QList<QString> &warnings) override
    {
        Warnings::addWarningsInternal(warnings);
        onError([&](Error &error) { error.addWarnings(warnings); });
    }

    void clearWarningsInternal() override
    {
        Warnings::clearWarningsInternal();
        onError([](Error &error) { error.clearWarnings(); });
    }

    void resetWarningInternal(const QString &warning) override
    {
        Warnings::resetWarningInternal(warning);
        onError([&](Error &error) { error.resetWarning(warning); });
    }

    void resetWarningsInternal(const QList<QString> &warnings) override
    {
        Warnings::resetWarningsInternal(warnings);
        onError([&](Error &error) { error.resetWarnings(warnings); });
    }

private:
    template <typename Change>
    void onError(const Change &change)
    {
        if (Error *error = std::get_if<0>(&m_outcome))
            change(*error);
    }

    std::variant<Error, T> m_outcome;
};

} // namespace zav
