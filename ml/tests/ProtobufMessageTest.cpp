// SPDX-License-Identifier: Apache-2.0
#include "ProtobufMessage.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

// The examples of protobuf.dev, "Encoding".

TEST(ProtobufMessage, WritesAVarintFieldAsDocumented)
{
    EXPECT_EQ("\x08\x96\x01", ProtobufMessage().integer(1, 150).serialised());
}

TEST(ProtobufMessage, WritesAStringFieldAsDocumented)
{
    EXPECT_EQ("\x12\x07testing", ProtobufMessage().bytes(2, "testing").serialised());
}

TEST(ProtobufMessage, WritesANestedMessageAsDocumented)
{
    EXPECT_EQ("\x1a\x03\x08\x96\x01", ProtobufMessage().message(3, ProtobufMessage().integer(1, 150)).serialised());
}

TEST(ProtobufMessage, WritesANegativeNumberAsTenBytes)
{
    EXPECT_EQ("\x08\xfe\xff\xff\xff\xff\xff\xff\xff\xff\x01", ProtobufMessage().integer(1, -2).serialised());
}

} // namespace
} // namespace zav
