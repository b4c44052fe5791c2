// SPDX-License-Identifier: Apache-2.0
#include "TextBuffer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace zav {

namespace {

constexpr qsizetype INTEGER_SIZE = 21;
constexpr qsizetype FIXED_SIZE = 352; // of the largest double, its sign, point and 9 decimals
constexpr qint64 POWERS_OF_TEN[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

// Beyond it not every integer is a double.
constexpr double EXACT_INTEGERS = 9007199254740992.0;

constexpr std::array<char, 200> makePairs()
{
    std::array<char, 200> pairs{};
    for (size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}

// "00" to "99" in a row.
constexpr std::array<char, 200> PAIRS = makePairs();

// Writes a number so that it ends before `end`, with leading zeros where it has fewer digits than `least`.
char *addDigitsBefore(char *end, quint64 number, int least)
{
    char *begin = end;
    for (; number >= 10 || end - begin + 1 < least; number /= 100) {
        begin -= 2;
        std::memcpy(begin, &PAIRS[2 * (number % 100)], 2);
    }
    if (number > 0 || end - begin < least)
        *--begin = static_cast<char>('0' + number);
    return begin;
}

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
    const double scaled = std::abs(value) * static_cast<double>(scale);
    if (!(scaled < EXACT_INTEGERS)) {
        char *begin = room(FIXED_SIZE);
        m_size += std::to_chars(begin, begin + FIXED_SIZE, value, std::chars_format::fixed, decimals).ptr - begin;
        return *this;
    }
    // Several times as fast as the conversion of a double, and as `std::round`.
    auto digits = static_cast<quint64>(scaled);
    digits += scaled - static_cast<double>(digits) >= 0.5;
    char text[INTEGER_SIZE + 2];
    char *const end = text + sizeof text;
    char *begin = end;
    if (decimals > 0) {
        begin = addDigitsBefore(end, digits % static_cast<quint64>(scale), decimals);
        *--begin = '.';
    }
    begin = addDigitsBefore(begin, digits / static_cast<quint64>(scale), 1);
    if (value < 0 && digits > 0)
        *--begin = '-';
    return add(QByteArrayView(begin, end - begin));
}

TextBuffer &TextBuffer::repeat(qsizetype from, qsizetype size)
{
    char *to = room(size);
    std::memcpy(to, m_bytes.constData() + from, static_cast<size_t>(size));
    m_size += size;
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
