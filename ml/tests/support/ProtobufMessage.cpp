// SPDX-License-Identifier: Apache-2.0
#include "ProtobufMessage.h"

namespace zav {

ProtobufMessage &ProtobufMessage::integer(int field, std::int64_t value)
{
    key(field, 0);
    varint(static_cast<std::uint64_t>(value));
    return *this;
}

ProtobufMessage &ProtobufMessage::bytes(int field, const std::string &value)
{
    key(field, 2);
    varint(value.size());
    m_bytes += value;
    return *this;
}

void ProtobufMessage::key(int field, unsigned wireType)
{
    varint(static_cast<std::uint64_t>(field) << 3 | wireType);
}

void ProtobufMessage::varint(std::uint64_t value)
{
    for (; value >= 0x80; value >>= 7)
        m_bytes.push_back(static_cast<char>(value | 0x80));
    m_bytes.push_back(static_cast<char>(value));
}

} // namespace zav
