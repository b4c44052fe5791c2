# SPDX-License-Identifier: Apache-2.0
#
# The parts of the program that read measured spectra, compare them and draw pictures. Two needs are optional: without
# Qt Gui and Qt Svg the program draws nothing, without ProteoWizard's library it reads no mzML, and says so.

target_sources(zav_program PRIVATE
    src/compare/MassTolerance.cpp
    src/compare/PeptideMasses.cpp
    src/compare/SpectrumComparison.cpp
    src/readers/MgfFile.cpp
    src/readers/ObservedSpectrum.cpp
    src/readers/PeakLine.cpp
    src/readers/PeakTableFile.cpp
    src/readers/SpectrumChoice.cpp
    src/readers/SpectrumFile.cpp
    src/readers/TextLineReader.cpp)

find_package(PwizLite QUIET NO_MODULE PATH_SUFFIXES pwizlite)
find_path(ZAV_BOOST_INCLUDE_DIR boost/shared_ptr.hpp)
mark_as_advanced(PwizLite_DIR ZAV_BOOST_INCLUDE_DIR)
if(TARGET PwizLite::PwizLite AND ZAV_BOOST_INCLUDE_DIR)
    message(STATUS "zav reads mzML: ProteoWizard's library found")
    set(ZAV_READS_MZML TRUE)
    target_sources(zav_program PRIVATE src/readers/MzMlFile.cpp)
    target_link_libraries(zav_program PRIVATE PwizLite::PwizLite)
else()
    message(STATUS "zav reads no mzML: ProteoWizard's library (libpwizlite-dev) or Boost's headers are missing")
    set(ZAV_READS_MZML FALSE)
    target_sources(zav_program PRIVATE src/readers/NoMzMlFile.cpp)
endif()

find_package(Qt6 QUIET OPTIONAL_COMPONENTS Gui Svg)
if(TARGET Qt6::Gui AND TARGET Qt6::Svg)
    message(STATUS "zav draws pictures: Qt Gui and Qt Svg found")
    set(ZAV_DRAWS_PICTURES TRUE)
    target_sources(zav_program PRIVATE
        src/plots/Application.cpp
        src/plots/ChromatogramFigure.cpp
        src/plots/ChromatogramPanel.cpp
        src/plots/ChromatogramPlot.cpp
        src/plots/ChromatogramTrace.cpp
        src/plots/LabelPlacement.cpp
        src/plots/PeptideDiagram.cpp
        src/plots/PictureFile.cpp
        src/plots/PlotAxis.cpp
        src/plots/PlotLabel.cpp
        src/plots/PlotLegend.cpp
        src/plots/PlotPeak.cpp
        src/plots/PlotScale.cpp
        src/plots/PlotStyle.cpp
        src/plots/PlotText.cpp
        src/plots/SpectrumFigure.cpp
        src/plots/SpectrumPanel.cpp
        src/plots/SpectrumPlot.cpp
        src/plots/TickText.cpp)
    target_link_libraries(zav_program PRIVATE Qt6::Gui Qt6::Svg)
else()
    message(STATUS "zav draws no pictures: Qt Gui or Qt Svg (qt6-base-dev, qt6-svg-dev) is missing")
    set(ZAV_DRAWS_PICTURES FALSE)
    target_sources(zav_program PRIVATE
        src/plots/NoChromatogramPlot.cpp
        src/plots/NoGuiApplication.cpp
        src/plots/NoPictureFile.cpp
        src/plots/NoSpectrumPlot.cpp)
endif()
