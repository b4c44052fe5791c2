// SPDX-License-Identifier: Apache-2.0
#include "Bindings.h"
#include "Errors.h"

#include <zav/XicBaselineLimitsDetector.h>
#include <zav/XicPeakSplitter.h>

#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>

#include <QtCore/QPointF>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace nb = nanobind;

namespace zav::python {

namespace {

using TwoArrays = std::pair<Array<double>, Array<double>>;

/// The library's list of points, which is the one copy of the two arrays. They are of equal length.
QList<QPointF> pointsOf(const Values &times, const Values &intensities)
{
    const auto time = times.view();
    const auto intensity = intensities.view();
    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(time.shape(0)));
    for (std::size_t i = 0; i < time.shape(0); ++i)
        points.append(QPointF(time(i), intensity(i)));
    return points;
}

/// Two arrays from a list of which `first` and `second` take a value of each element.
template <typename T, typename First, typename Second>
TwoArrays twoArrays(const QList<T> &list, First first, Second second)
{
    std::vector<double> firsts;
    std::vector<double> seconds;
    for (const T &each : list) {
        firsts.push_back(first(each));
        seconds.push_back(second(each));
    }
    return {arrayOf<double>(std::move(firsts)), arrayOf<double>(std::move(seconds))};
}

/// A reader of chromatograms for any number of threads: they take turns, and wait for them without the GIL.
template <typename Reader, typename Options>
class SharedReader
{
public:
    explicit SharedReader(const Options &options)
    {
        Error error;
        {
            const nb::gil_scoped_release release;
            error = m_reader.init(options);
        }
        raiseIfError(error);
    }

protected:
    template <typename Call>
    auto call(const Call &ask)
    {
        auto result = [&] {
            const nb::gil_scoped_release release;
            const std::lock_guard turn(m_mutex);
            return ask(&m_reader);
        }();
        return valueOrRaise(std::move(result));
    }

private:
    std::mutex m_mutex; ///< of the reader, which serves one thread at a time
    Reader m_reader;
};

class Limits : public SharedReader<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions>
{
public:
    using SharedReader::SharedReader;

    TwoArrays byNetwork(const Values &times, const Values &intensities, double hint)
    {
        const QList<QPointF> points = pointsOf(times, intensities);
        return arrays(call([&](auto *detector) { return detector->integrateXIC(points, hint, 0); }));
    }

    TwoArrays byWalk(const Values &times, const Values &intensities)
    {
        const QList<QPointF> points = pointsOf(times, intensities);
        return arrays(call([&](auto *detector) { return detector->integrateXIC(points); }));
    }

private:
    static TwoArrays arrays(const QList<Interval<double>> &limits)
    {
        return twoArrays(
            limits, [](const Interval<double> &each) { return each.start; },
            [](const Interval<double> &each) { return each.end; });
    }
};

class Splits : public SharedReader<XicPeakSplitter, XicPeakSplitterOptions>
{
public:
    using SharedReader::SharedReader;

    TwoArrays find(const Values &times, const Values &intensities)
    {
        const QList<QPointF> points = pointsOf(times, intensities);
        return twoArrays(
            call([&](auto *splitter) { return splitter->splitXIC(points); }),
            [](const std::pair<double, double> &each) { return each.first; },
            [](const std::pair<double, double> &each) { return each.second; });
    }
};

/// A field of options that is named and typed as in C++.
template <typename Options>
auto modelPathOf()
{
    return std::pair{[](const Options &options) { return options.modelFilePath.toStdString(); },
                     [](Options &options, const std::string &path) { options.modelFilePath = text(path); }};
}

void bindOptions(nb::module_ &module)
{
    using LimitsOptions = XicBaselineLimitsDetectorOptions;
    const auto [limitsPath, setLimitsPath] = modelPathOf<LimitsOptions>();
    nb::class_<LimitsOptions>(module, "LimitsOptions")
        .def(nb::init<>())
        .def_prop_rw("model_file_path", limitsPath, setLimitsPath)
        .def_rw("max_point_count", &LimitsOptions::maxPointCount)
        .def_rw("probability_tolerance", &LimitsOptions::probabilityTolerance)
        .def_rw("dbscan_epsilon", &LimitsOptions::dbscanEpsilon)
        .def_rw("dbscan_min_points", &LimitsOptions::dbscanMinPoints)
        .def_rw("min_point_count", &LimitsOptions::minPointCount)
        .def_rw("smoothing_pass_count", &LimitsOptions::smoothingPassCount)
        .def_rw("gaussian_filter_size", &LimitsOptions::gaussianFilterSize)
        .def_rw("limit_threshold", &LimitsOptions::limitThreshold);

    using SplitterOptions = XicPeakSplitterOptions;
    const auto [splitterPath, setSplitterPath] = modelPathOf<SplitterOptions>();
    nb::class_<SplitterOptions>(module, "SplitterOptions")
        .def(nb::init<>())
        .def_prop_rw("model_file_path", splitterPath, setSplitterPath)
        .def_rw("max_point_count", &SplitterOptions::maxPointCount)
        .def_rw("probability_tolerance", &SplitterOptions::probabilityTolerance)
        .def_rw("gaussian_filter_size", &SplitterOptions::gaussianFilterSize)
        .def_rw("smoothing_pass_count", &SplitterOptions::smoothingPassCount);
}

} // namespace

void bindChromatograms(nb::module_ &module)
{
    bindOptions(module);
    nb::class_<Limits>(module, "Limits")
        .def(nb::init<const XicBaselineLimitsDetectorOptions &>(), nb::arg("options"))
        .def("by_network", &Limits::byNetwork, nb::arg("times").noconvert(), nb::arg("intensities").noconvert(),
             nb::arg("hint"))
        .def("by_walk", &Limits::byWalk, nb::arg("times").noconvert(), nb::arg("intensities").noconvert());
    nb::class_<Splits>(module, "Splits")
        .def(nb::init<const XicPeakSplitterOptions &>(), nb::arg("options"))
        .def("find", &Splits::find, nb::arg("times").noconvert(), nb::arg("intensities").noconvert());
}

} // namespace zav::python
