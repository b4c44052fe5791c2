// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringView>

namespace zav {

/// Builds a text of many short pieces without an allocation for each: what the writers of peak lists use.
///
/// Numbers have a decimal point whatever the locale.
class TextBuffer
{
public:
    /// `expectedSize` in bytes saves growing; the buffer grows beyond it all the same.
    explicit TextBuffer(qsizetype expectedSize = 0);

    TextBuffer &add(QByteArrayView text);
    TextBuffer &add(char character);

    /// The text as UTF-8.
    TextBuffer &add(QStringView text);

    TextBuffer &addInteger(qint64 value);

    /// With `decimals` (0 to 9) digits behind the point, rounded to nearest: -1.5 with 2 is "-1.50". What rounds to
    /// zero has no sign.
    TextBuffer &addFixed(double value, int decimals);

    /// `size` bytes of this text, from `from` on, once more.
    TextBuffer &repeat(qsizetype from, qsizetype size);

    bool isEmpty() const { return m_size == 0; }
    qsizetype size() const { return m_size; }

    /// The text so far; valid until the next call that is not const.
    QByteArrayView view() const { return {m_bytes.constData(), m_size}; }

    /// Empties the buffer, which keeps its memory.
    void clear() { m_size = 0; }

    /// The text; the buffer is empty afterwards.
    QByteArray take();

private:
    char *room(qsizetype size);

    QByteArray m_bytes;
    qsizetype m_size = 0;
};

} // namespace zav
