// SPDX-License-Identifier: Apache-2.0
//
// Door: the contract beside a network.
// Promises: a kind, or a message; the same again.
#include "FuzzSupport.h"
#include "NetworkContract.h"

namespace zav::fuzz {
namespace {

QByteArray bitsOf(const NetworkContract &contract)
{
    return bits(contract.kind, contract.charge, contract.maxPointCount, contract.inputShape, contract.outputShape,
                contract.figures, contract.sha256);
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QString path = fileWith("input.json", input);
    const Result<NetworkContract> contract = readNetworkContract(path);
    require(contract.hasError() == !contract.error().message().isEmpty(), "a contract or a message");
    if (contract.hasError())
        return;
    require(!contract.value().kind.isEmpty(), "a contract names a kind");
    require(contract.value().sha256 == contract.value().sha256.toLower(), "a digest is in lower case");
    require(bitsOf(readNetworkContract(path).value()) == bitsOf(contract.value()), "it reads the same again");
}

} // namespace zav::fuzz
