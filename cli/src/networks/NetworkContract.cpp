// SPDX-License-Identifier: Apache-2.0
#include "NetworkContract.h"

#include "ByteStream.h"
#include "PrintableText.h"

#include <nlohmann/json.hpp>

#include <QtCore/QStringList>

#include <cmath>
#include <limits>

namespace zav {

namespace {

using Json = nlohmann::json;

constexpr qint64 MAX_CONTRACT_BYTES = 1 << 20; // real ones have 2,000

QString textField(const Json &object, const char *name)
{
    const auto field = object.find(name);
    return field != object.end() && field->is_string() ? QString::fromStdString(field->get<std::string>()) : QString();
}

/// 0 for what is no whole number that fits an int.
int numberOf(const Json &value)
{
    if (!value.is_number_integer())
        return 0;
    // Compared as a floating-point number, in which large unsigned ones do not turn negative.
    const auto number = value.get<double>();
    return std::abs(number) <= std::numeric_limits<int>::max() ? value.get<int>() : 0;
}

int numberField(const Json &object, const char *name)
{
    const auto field = object.find(name);
    return field != object.end() ? numberOf(*field) : 0;
}

QList<int> shapeField(const Json &object, const char *name)
{
    QList<int> shape;
    const auto field = object.find(name);
    if (field == object.end() || !field->is_array())
        return shape;
    for (const Json &size : *field)
        shape.append(numberOf(size));
    return shape;
}

struct Figure
{
    const char *field;
    const char *text; // with a place for the value
    int decimals;
};

// In the order in which they are shown.
constexpr Figure FIGURES[] = {{"heldOutMedianSpectralAngle", "angle %1", 3},
                              {"heldOutMedianPearson", "Pearson %1", 3},
                              {"heldOutSpectra", "%1 spectra", 0},
                              {"heldOutMedianError", "median error %1 iRT", 2},
                              {"heldOutObservations", "%1 peptidoforms", 0},
                              {"heldOutManualWindowF1", "F1 %1 by hand", 3},
                              {"heldOutSoftwareVisibleF1", "%1 by software", 3},
                              {"heldOutNeighboursPrecision", "precision %1", 3},
                              {"heldOutNeighboursRecall", "recall %1", 3}};

QString figuresOf(const Json &object)
{
    QStringList texts;
    for (const Figure &figure : FIGURES) {
        const auto field = object.find(figure.field);
        if (field != object.end() && field->is_number())
            texts.append(QString::fromUtf8(figure.text).arg(field->get<double>(), 0, 'f', figure.decimals));
    }
    return texts.join(QStringLiteral(", "));
}

} // namespace

Result<NetworkContract> readNetworkContract(const QString &path)
{
    const Result<QByteArray> text = fileBytes(path, MAX_CONTRACT_BYTES);
    if (text.hasError())
        return text.error();
    const Json object = Json::parse(text.value().toStdString(), nullptr, false);
    NetworkContract contract;
    if (object.is_object())
        contract.kind = textField(object, "kind");
    if (contract.kind.isEmpty())
        return Error(Failure, QStringLiteral("%1 is not the contract of a network").arg(displayText(path, 300)));
    contract.charge = numberField(object, "charge");
    contract.maxPointCount = numberField(object, "maxPointCount");
    contract.inputShape = shapeField(object, "inputShape");
    contract.outputShape = shapeField(object, "outputShape");
    contract.figures = figuresOf(object);
    contract.sha256 = textField(object, "sha256").toLower();
    return contract;
}

} // namespace zav
