// SPDX-License-Identifier: Apache-2.0
#include "TextBuffer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace zav {

namespace {

constexpr qsizetype INTEGER_SIZE = 21;
constexpr qsizetype FIXED_SIZE = 352; // of the largest double, its sign, point and 9 decimals
constexpr qint64 POWERS_OF_TEN[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

// Beyond it not every integer is a double.
constexpr double EXACT_INTEGERS = 9007199254740992.0;

} // namespace

TextBuffer::TextBuffer(qsizetype expectedSize) : m_bytes(expectedSize, Qt::Uninitialized) {}

TextBuffer &TextBuffer::add(QByteArrayView text)
{
    std::copy(text.begin(), text.end(), room(text.size())); // an empty text may point nowhere
    m_size += text.size();
    return *this;
}

TextBuffer &TextBuffer::add(char character)
{
    *room(1) = character;
    ++m_size;
    return *this;
}

TextBuffer &TextBuffer::add(QStringView text)
{
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 128; });
    if (!isAscii)
        return add(QByteArrayView(text.toUtf8()));
    char *end = room(text.size());
    for (const QChar character : text)
        *end++ = static_cast<char>(character.unicode());
    m_size += text.size();
    return *this;
}

TextBuffer &TextBuffer::addInteger(qint64 value)
{
    char *begin = room(INTEGER_SIZE);
    m_size += std::to_chars(begin, begin + INTEGER_SIZE, value).ptr - begin;
    return *this;
}

TextBuffer &TextBuffer::addFixed(double value, int decimals)
{
    const qint64 scale = POWERS_OF_TEN[decimals];
    const double scaled = std::round(value * static_cast<double>(scale));
    char *begin = room(FIXED_SIZE);
    if (!(std::abs(scaled) < EXACT_INTEGERS)) {
        m_size += std::to_chars(begin, begin + FIXED_SIZE, value, std::chars_format::fixed, decimals).ptr - begin;
        return *this;
    }
    // Three times as fast as the conversion of a double.
    const auto digits = static_cast<qint64>(scaled);
    char *end = begin;
    if (digits < 0)
        *end++ = '-';
    end = std::to_chars(end, begin + FIXED_SIZE, std::abs(digits) / scale).ptr;
    if (decimals > 0) {
        *end = '.';
        qint64 rest = std::abs(digits) % scale;
        for (int place = decimals; place > 0; --place, rest /= 10)
            end[place] = static_cast<char>('0' + rest % 10);
        end += decimals + 1;
    }
    m_size += end - begin;
    return *this;
}

QByteArray TextBuffer::take()
{
    m_bytes.truncate(std::exchange(m_size, 0));
    return std::exchange(m_bytes, {});
}

char *TextBuffer::room(qsizetype size)
{
    if (m_size + size > m_bytes.size())
        m_bytes.resize(std::max(2 * m_bytes.size(), m_size + size));
    return m_bytes.data() + m_size;
}

} // namespace zav
