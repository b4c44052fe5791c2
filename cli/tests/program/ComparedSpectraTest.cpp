// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "ReportText.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace zav {
namespace {

using nlohmann::json;

const QString MEASURED = QStringLiteral(ZAV_TEST_DATA_DIR "/LQSRPAAPPAPGPGQLTLR.mzML");

/// `zav spectrum` over lists of peptides and measured spectra.
class ComparedSpectra : public ::testing::Test
{
protected:
    ProgramRun run(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{"spectrum"} + arguments, standardInput, m_files.path(QString()));
    }

    /// The predictions of some peptides as measured spectra, whose titles are PEPTIDE/CHARGE.
    void predict(const QByteArray &list, const QString &name) const
    {
        ASSERT_EQ(run({"--peptides", "-", "-o", name}, list).exitCode, 0);
    }

    QList<QStringList> table(const QString &name) const
    {
        QList<QStringList> rows;
        for (const QString &line : linesOf(m_files.read(name).toStdString()))
            rows.append(line.split('\t'));
        return rows;
    }

    QStringList files() const { return QDir(m_files.path(QString())).entryList(QDir::Files | QDir::Hidden); }

    TemporaryFiles m_files;
};

TEST_F(ComparedSpectra, EachPredictionAgreesWithItself)
{
    predict("PEPTIDEK\t2\nSAMPLER\t1\nELVISK\t2\n", "run.mgf");
    m_files.write("list.tsv", "peptide\tcharge\tscan\nELVISK\t2\tELVISK/2\nPEPTIDEK\t2\tPEPTIDEK/2\n"
                              "SAMPLER\t1\tPEPTIDEK/2\n");
    const ProgramRun all =
        run({"--peptides", "list.tsv", "--against", "run.mgf", "--scores", "scores.tsv", "-o", "out.mgf"});
    EXPECT_EQ(all.exitCode, 0) << all.standardError;
    EXPECT_EQ(all.standardError, "");
    EXPECT_EQ(all.standardOutput,
              "spectral angle 1.000, 100.0 % of the intensity explained (medians of 3 comparisons)\n");
    const QList<QStringList> rows = table("scores.tsv");
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[0].join(' '), "peptide charge scan spectral_angle cosine explained_peaks observed_peaks "
                                 "explained_intensity precursor_ppm");
    EXPECT_EQ(rows[1].mid(0, 5).join(' '), "ELVISK 2 ELVISK/2 1.0000 1.0000");
    EXPECT_EQ(rows[1][5], rows[1][6]) << "all peaks are explained";
    EXPECT_EQ(rows[1][7], "1.0000");
    EXPECT_NEAR(rows[1][8].toDouble(), 0, 0.02) << "MGF rounds it to 5 decimals";
    EXPECT_LT(rows[3][3].toDouble(), 0.5);
    // m/z of SAMPLER 1+ and of PEPTIDEK 2+ from monoisotopic residue masses: 803.4080 and 464.7347.
    EXPECT_NEAR(rows[3][8].toDouble(), (464.7347 / 803.4080 - 1) * 1e6, 1);
    EXPECT_EQ(m_files.read("out.mgf").count("BEGIN IONS"), 3);
}

TEST_F(ComparedSpectra, ScoresAreThoseOfOnePeptideAlone)
{
    const ProgramRun alone = run({"LQSRPAAPPAPGPGQLTLR", "3", "--against", MEASURED, "-o", "out.tsv"});
    m_files.write("list.tsv", "peptide\tcharge\tscan\nLQSRPAAPPAPGPGQLTLR\t3\t30069\n");
    const ProgramRun list = run({"--peptides", "list.tsv", "--against", MEASURED, "--scores", "-", "-o", "all.tsv"});
    ASSERT_EQ(list.exitCode, 0) << list.standardError;
    EXPECT_EQ(list.standardError.find("spectral angle "), 0u) << "the table has standard output";
    const QStringList row = linesOf(list.standardOutput).value(1).split('\t');
    const QString said = QString::fromStdString(alone.standardOutput);
    EXPECT_TRUE(said.startsWith(
        QStringLiteral("spectral angle %1, cosine %2 ")
            .arg(QString::number(row[3].toDouble(), 'f', 3), QString::number(row[4].toDouble(), 'f', 3))))
        << alone.standardOutput;
    EXPECT_TRUE(said.contains(QStringLiteral("\n%1 of %2 observed").arg(row[5], row[6]))) << alone.standardOutput;
}

TEST_F(ComparedSpectra, ReportHoldsBothSpectraAndTheScores)
{
    m_files.write("list.tsv", "peptide\tcharge\tenergy\tscan\nLQSRPAAPPAPGPGQLTLR\t3\t27\t30069\n");
    const ProgramRun both = run({"--peptides", "list.tsv", "--against", MEASURED, "--report", "a.html", "--scores",
                                 "scores.tsv", "-o", "out.json", "--annotate"});
    ASSERT_EQ(both.exitCode, 0) << both.standardError;
    const ReportText report(m_files.read("a.html"));
    ASSERT_EQ(report.entries.size(), 1);
    const json &entry = report.entries[0];
    EXPECT_EQ(entry.at("peptide"), "LQSRPAAPPAPGPGQLTLR");
    EXPECT_EQ(entry.at("charge"), 3);
    EXPECT_EQ(entry.at("energy"), 27);
    EXPECT_EQ(entry.at("scan"), "30069");
    EXPECT_EQ(entry.at("title"), "LQSRPAAPPAPGPGQLTLR.mzML, scan 30069");
    const QList<QStringList> rows = table("scores.tsv");
    QStringList values;
    for (const json &value : entry.at("values"))
        values.append(QString::fromStdString(value));
    EXPECT_EQ(values, rows[1].mid(4));

    qsizetype place = entry.at("at");
    EXPECT_EQ(ReportText::readPoints(report.blocks[0], &place).size(), 299);
    const json ions = ReportText::readJson(report.blocks[0], &place);
    EXPECT_EQ(place, report.blocks[0].size());
    const json spectrum = json::parse(m_files.read("out.json").toStdString()).at("spectra")[0];
    ASSERT_EQ(ions.size(), spectrum.at("mz").size());
    int explained = 0;
    for (std::size_t i = 0; i < ions.size(); ++i) {
        EXPECT_NEAR(ions[i][0].get<double>(), spectrum["mz"][i].get<double>(), 1e-5);
        EXPECT_EQ(ions[i][2], spectrum["ion"][i]);
        if (ions[i].size() == 5) {
            ++explained;
            EXPECT_NEAR(ions[i][3].get<double>() / ions[i][0].get<double>(), 1, 20e-6);
        }
    }
    EXPECT_EQ(QString::number(explained), rows[1][6]);
}

TEST_F(ComparedSpectra, WhatFailsIsToldAndTheOthersAreCompared)
{
    predict("PEPTIDEK\t2\n", "run.mgf");
    m_files.write("list.tsv", "peptide\tcharge\tscan\nPEPTIDEX\t2\tPEPTIDEK/2\nSAMPLER\t2\tnowhere\n"
                              "PEPTIDEK\t2\tPEPTIDEK/2\n");
    const ProgramRun some = run({"--peptides", "list.tsv", "--against", "run.mgf", "--report", "a.html", "--scores",
                                 "scores.tsv", "-o", "out.mgf"});
    EXPECT_EQ(some.exitCode, 1);
    EXPECT_EQ(
        some.standardError,
        "zav: list.tsv:2: PEPTIDEX/2: unknown residue 'X' at position 8; only the 20 standard residues are predicted\n"
        "zav: list.tsv:3: SAMPLER/2: run.mgf: has no spectrum 'nowhere': it holds 1 spectrum, index 0 to 0\n"
        "zav: 1 of 3 precursors could not be predicted\n"
        "zav: 1 of 2 predictions could not be compared\n");
    const ReportText report(m_files.read("a.html"));
    ASSERT_EQ(report.entries.size(), 3);
    EXPECT_TRUE(report.entries[0].contains("problem"));
    EXPECT_TRUE(report.entries[1].contains("problem"));
    EXPECT_FALSE(report.entries[2].contains("problem"));
    const QList<QStringList> rows = table("scores.tsv");
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[1].join(' ').trimmed(), "PEPTIDEX 2 PEPTIDEK/2");
    EXPECT_EQ(rows[1].size(), rows[0].size());
    EXPECT_EQ(rows[3][3], "1.0000");
    EXPECT_EQ(m_files.read("out.mgf").count("BEGIN IONS"), 2) << "what is predicted is written";
}

TEST_F(ComparedSpectra, FileWithNoneOfTheScansEndsTheRunAtOnce)
{
    predict("PEPTIDEK\t2\nSAMPLER\t2\n", "run.mgf");
    m_files.write("list.tsv", "peptide\tcharge\tscan\nPEPTIDEK\t2\t7\nSAMPLER\t2\t8\n");
    const QStringList outputs = {"--against", "run.mgf", "--report", "a.html", "--scores", "s.tsv", "-o", "out.mgf"};
    const ProgramRun none = run(QStringList{"--peptides", "list.tsv"} + outputs);
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.standardError, "zav: run.mgf: has no spectrum '7': it holds 2 spectra, index 0 to 1\n");
    EXPECT_EQ(run(QStringList{"--peptides", "-"} + outputs, "PEPTIDEK\t2\n").standardError,
              "zav: run.mgf: holds 2 MS2 spectra: choose one with the list's column scan\n");
    EXPECT_EQ(files(), QStringList({"list.tsv", "run.mgf"}));
}

TEST_F(ComparedSpectra, ListWithoutScansIsComparedWithTheOnlySpectrum)
{
    predict("PEPTIDEK\t2\n", "run.mgf");
    const ProgramRun both = run({"--peptides", "-", "--against", "run.mgf", "--scores", "s.tsv", "-o", "out.mgf"},
                                "PEPTIDEK\t2\nKEDITPEP\t2\n");
    EXPECT_EQ(both.exitCode, 0) << both.standardError;
    const QList<QStringList> rows = table("s.tsv");
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[1][3], "1.0000");
    EXPECT_LT(rows[2][3].toDouble(), 0.8);
}

TEST_F(ComparedSpectra, SpectraAreWrittenWhereTheyAreAskedFor)
{
    predict("PEPTIDEK\t2\n", "run.mgf");
    const QStringList list = {"--peptides", "-", "--against", "run.mgf"};
    const std::string summary = "spectral angle 1.000, 100.0 % of the intensity explained (1 comparison)\n";
    EXPECT_EQ(run(list + QStringList{"--report", "a.html"}, "PEPTIDEK\t2\n").standardOutput, summary);
    const ProgramRun scored = run(list + QStringList{"--scores", "-"}, "PEPTIDEK\t2\n");
    EXPECT_EQ(linesOf(scored.standardOutput).size(), 2) << "the table alone";
    EXPECT_EQ(scored.standardError, summary);
    const ProgramRun asked = run(list + QStringList{"--scores", "a.tsv", "--format", "mgf"}, "PEPTIDEK\t2\n");
    EXPECT_EQ(asked.standardOutput.find("BEGIN IONS\n"), 0u);
    EXPECT_EQ(asked.standardError, summary);
    EXPECT_EQ(run(list, "PEPTIDEK\t2\n").standardOutput.find("mz\tintensity"), 0u);
}

TEST_F(ComparedSpectra, OnePeptideMayHaveAReportToo)
{
    predict("PEPTIDEK\t2\n", "run.mgf");
    const ProgramRun one = run({"PEPTIDEK", "2", "--against", "run.mgf", "--report", "-"});
    EXPECT_EQ(one.exitCode, 0);
    EXPECT_EQ(one.standardError.find("spectral angle 1.000, cosine 1.000"), 0u);
    const ReportText report(QByteArray::fromStdString(one.standardOutput));
    ASSERT_EQ(report.entries.size(), 1);
    EXPECT_EQ(report.entries[0].at("values")[0], "1.0000");
}

} // namespace
} // namespace zav
