// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace zav {

/// Writes one message in protobuf's binary wire format (protobuf.dev, "Encoding"), field by field.
class ProtobufMessage
{
public:
    /// A varint field: bool, enum and integers; negative ones take ten bytes.
    ProtobufMessage &integer(int field, std::int64_t value);

    /// A length-delimited field: strings, bytes and packed lists.
    ProtobufMessage &bytes(int field, const std::string &value);

    ProtobufMessage &message(int field, const ProtobufMessage &value) { return bytes(field, value.serialised()); }

    const std::string &serialised() const { return m_bytes; }

private:
    void varint(std::uint64_t value);
    void key(int field, unsigned wireType);

    std::string m_bytes;
};

} // namespace zav
