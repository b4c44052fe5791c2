// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"
#include "Enzyme.h"
#include "Precursor.h"
#include "PrintableText.h"

#include <CLI/CLI.hpp>

#include <cmath>

namespace zav {

namespace {

constexpr char SHARD_PLACEHOLDER[] = "{shard}";

constexpr char EXAMPLES[] =
    R"(PROTEINS is a FASTA file, plain or compressed with gzip, and - standard input. FILE of --peptides has a peptide a
line, or columns named peptide, protein and gene. Every peptide appears once, with all its proteins, at each charge.

The kind of library follows from the ending of -o: .msp, .tsv (OpenSWATH and DIA-NN), .pqp (OpenSWATH), .mgf,
.mzSpecLib.txt, .dlib (EncyclopeDIA) or .blib (BiblioSpec). Retention times are iRT (Escher et al. 2012), or those of a
run with --calibrate, whose times are minutes. Intensities are relative to the base peak of what the filters leave. The
network gives no peaks over 2000 m/z or under 0.04 of its base peak; .tsv and .pqp hold neither a ions nor isotopes.
Precursors without a peak are left out.

--fixed and --variable take NAME@SITES. NAME is Unimod's (Oxidation), UNIMOD:35 or a mass (+15.9949). SITES are parted
by commas: residues (STY), N-term, C-term, protein-N-term, protein-C-term, or N-term:Q for that residue at a terminus.
A variable modification takes the place of a fixed one. Of each peptide come first the peptidoform without variable
modifications, then those with one, and so on up to --max-variable. FILE of --peptides may hold modifications in
ProForma (M[Oxidation]PEPTIDEK): such a peptide gets the fixed modifications where it has none and no variable ones.

Peptides with a residue that is none of the 20 standard ones, or of more than 52 residues, are left out, counted, and
listed in the FILE of --skipped.

The library is the same to the byte whatever --threads, --low-memory and shards. LIB.json beside it says what it was
made from; --resume compares that and the library's SHA-256 and makes only what is not there yet. A shard is a part of
the library; zav library merge joins them. In an array job of Slurm the shard is that of the task, unless --shard says
otherwise. {shard} in -o and --skipped becomes 2-of-4.

Exit code: 0 the library is complete, 1 it is not (standard error says why, and it does not appear), 2 wrong usage.

Examples:
  zav library human.fasta.gz -o human.tsv
  zav library human.fasta -o human.dlib --enzyme lys-c --charges 2-4 --decoys shuffled --top 20
  zav library human.fasta -o human.tsv --variable Oxidation@M --variable Acetyl@protein-N-term --max-variable 2
  zav library --peptides peptides.txt -o some.msp --skipped left_out.tsv
  zav library human.fasta --shard 2/4 -o human.{shard}.tsv --resume
  zav library merge human.*-of-4.tsv -o human.tsv
)";

constexpr char MERGE_EXAMPLES[] =
    R"(Joins all shards of a library to what one run would have written, to the byte. Their order does not matter, their
manifests (SHARD.json) must stand beside them. Shards that are missing, given twice, damaged or of another library are
refused by name.

Exit code: 0 the library is complete, 1 it is not (standard error says why, and it does not appear), 2 wrong usage.

Example:
  zav library merge human.1-of-2.tsv human.2-of-2.tsv -o human.tsv
)";

bool isWithin(double value, double lowest, double highest)
{
    return value >= lowest && value <= highest; // false for NaN
}

/// `zav library` and, below it, `zav library merge`.
class LibraryArguments : public CommandArguments
{
public:
    const char *name() const override { return "library"; }
    const char *summary() const override { return "Make a spectral library of proteins or peptides"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    void addDigestionTo(CLI::App *command);
    void addModificationsTo(CLI::App *command);
    void addPrecursorsTo(CLI::App *command);
    void addPeaksTo(CLI::App *command);
    void addOutputTo(CLI::App *command);
    void addMergeTo(CLI::App *command);

    Result<CommandLine> libraryOptions() const;
    Result<CommandLine> mergeOptions() const;
    Error convertInput(LibraryOptions *options) const;
    Error convertModifications(LibraryOptions *options) const;
    Error convertDecoys(LibraryOptions *options) const;
    Error convertOutput(LibraryOptions *options) const;
    Error convertShard(LibraryOptions *options) const;
    Error checkRanges() const;

    CLI::App *m_merge = nullptr;
    LibraryOptions m_given; ///< the numbers and flags; texts are below until they are converted
    std::string m_proteins, m_peptides, m_output, m_format, m_skipped, m_shard;
    std::string m_enzyme, m_cleavagePattern, m_charges, m_decoys;
    NetworkArguments m_networks;
    CLI::Option *m_cysteine = nullptr;
    double m_cysteineMass = 0.0;
    CLI::Option *m_energy = nullptr;
    std::string m_calibrate;
    bool m_noRetentionTimes = false;
    std::vector<std::string> m_fixed, m_variable;
    bool m_noLosses = false;
    std::vector<std::string> m_mergedShards;
    std::string m_mergedOutput;
    bool m_mergeVerbose = false;
};

Result<QList<ModificationRule>> parseRules(const char *option, const std::vector<std::string> &texts)
{
    QList<ModificationRule> rules;
    for (const std::string &given : texts) {
        const Result<ModificationRule> rule = ModificationRule::parse(text(given));
        if (rule.hasError())
            return wrongArgument(QStringLiteral("%1 '%2': %3")
                                     .arg(QLatin1String(option), displayText(text(given)), rule.error().message()));
        rules.append(rule.value());
    }
    return rules;
}

/// The rule that adds such a mass to every cysteine; none for a mass next to 0.
QList<ModificationRule> cysteineRule(double mass)
{
    if (!isCysteineModified(mass))
        return {};
    const CysteineModification *known = knownCysteineModification(mass);
    const modifications::Entry *entry = known ? modifications::findByAccession(known->unimod) : nullptr;
    return {{entry ? entry->modification : modifications::ofMass(mass), {{ModificationSite::Residue, 'C'}}}};
}

} // namespace

void LibraryArguments::addTo(CLI::App *command)
{
    command->add_option("PROTEINS", m_proteins, "a FASTA file")->type_name("");
    command->add_option("--peptides", m_peptides, "a list of peptides instead of proteins; they are not digested")
        ->type_name("FILE");
    addOutputTo(command);
    addDigestionTo(command);
    addModificationsTo(command);
    addPrecursorsTo(command);
    addPeaksTo(command);
    addMergeTo(command);
    command->footer(EXAMPLES);
}

void LibraryArguments::addOutputTo(CLI::App *command)
{
    command->add_option("-o,--output", m_output, "write to LIB, which appears only when it is complete")
        ->type_name("LIB");
    command
        ->add_option("-f,--format", m_format, "msp, tsv, mgf, mzspeclib, dlib, blib or pqp; default: by LIB's ending")
        ->type_name("FORMAT");
    offerChoices(command->get_option("--format"), {"msp", "tsv", "mgf", "mzspeclib", "dlib", "blib", "pqp"});
    command->add_option("--skipped", m_skipped, "list the peptides that are left out, and why")->type_name("FILE.tsv");
    command
        ->add_option("--threads", m_given.threads, withDefault("worker threads; 0: one for each core", m_given.threads))
        ->type_name("N");
    command->add_flag("--low-memory", m_given.lowMemory, "sort the peptides on disk");
    command->add_option("--shard", m_shard, "make the I-th of N parts of equal size")->type_name("I/N");
    command->add_flag("--resume", m_given.resume,
                      "do nothing if LIB is complete and made from the same input and settings");
    m_networks.addTo(command);
    command->add_flag("-v,--verbose", m_given.verbose, "also show where in the program each failure occurred");
}

void LibraryArguments::addDigestionTo(CLI::App *command)
{
    DigestionOptions &digestion = m_given.digestion;
    m_enzyme = digestion.enzyme.toStdString();
    command
        ->add_option(
            "--enzyme", m_enzyme,
            withDefault(Enzyme::names().join(QStringLiteral(", ")).toStdString() + "; upper or lower case", m_enzyme))
        ->type_name("NAME");
    std::vector<std::string> enzymes;
    for (const QString &enzyme : Enzyme::names())
        enzymes.push_back(enzyme.toStdString());
    offerChoices(command->get_option("--enzyme"), enzymes);
    command
        ->add_option("--cleavage-pattern", m_cleavagePattern,
                     "instead of --enzyme: cut where this regular expression matches, such as (?<=[KR])(?!P)")
        ->type_name("REGEX");
    command
        ->add_option("--missed-cleavages", digestion.missedCleavages,
                     withDefault("highest number of uncut sites in a peptide", digestion.missedCleavages))
        ->type_name("N");
    command
        ->add_option("--min-length", digestion.minimumLength,
                     withDefault("shortest peptide, in residues", digestion.minimumLength))
        ->type_name("N");
    command
        ->add_option("--max-length", digestion.maximumLength,
                     withDefault("longest peptide, in residues", digestion.maximumLength))
        ->type_name("N");
    command->add_flag("--semi-specific", digestion.semiSpecific, "one end of a peptide may lie anywhere");
    command->add_flag("--remove-methionine", digestion.removesMethionine,
                      "also digest proteins without their initial methionine");
    command->add_option("--decoys", m_decoys, "none, reversed or shuffled [none]")->type_name("KIND");
    offerChoices(command->get_option("--decoys"), {"none", "reversed", "shuffled"});
    command
        ->add_option("--decoy-seed", m_given.decoys.seed,
                     withDefault("seed for shuffled decoys", std::to_string(m_given.decoys.seed)))
        ->type_name("N");
}

void LibraryArguments::addModificationsTo(CLI::App *command)
{
    command
        ->add_option(
            "--fixed", m_fixed,
            withDefault("modification at every one of its sites, or none; may be repeated", "Carbamidomethyl@C"))
        ->type_name("NAME@SITES")
        ->allow_extra_args(false);
    command
        ->add_option("--variable", m_variable,
                     "modification at some of its sites, such as Oxidation@M; may be repeated")
        ->type_name("NAME@SITES")
        ->allow_extra_args(false);
    command
        ->add_option("--max-variable", m_given.modifications.maxVariable,
                     withDefault("most variable modifications of a peptide", m_given.modifications.maxVariable))
        ->type_name("N");
    m_cysteine = command
                     ->add_option("--cysteine", m_cysteineMass,
                                  "instead of --fixed: this mass at every cysteine, in Da; 0: none")
                     ->type_name("MASS");
}

void LibraryArguments::addPrecursorsTo(CLI::App *command)
{
    command->add_option("--charges", m_charges, "precursor charges, 1 to 6, such as 2,3 or 1-4 [2,3]")
        ->type_name("LIST");
    m_energy = command
                   ->add_option("--energy", m_given.collisionEnergy,
                                "normalised collision energy, 10 to 60; trained on 20 to 35 [30]")
                   ->type_name("NCE");
    command
        ->add_option("--calibrate", m_calibrate,
                     "write retention times in minutes, fitted to this table of columns peptide and rt")
        ->type_name("FILE");
    command->add_flag("--no-retention-times", m_noRetentionTimes, "write none; without it they are iRT");
    command
        ->add_option("--min-precursor-mz", m_given.lowestPrecursorMz,
                     withDefault("lowest precursor m/z", m_given.lowestPrecursorMz))
        ->type_name("MZ");
    command
        ->add_option("--max-precursor-mz", m_given.highestPrecursorMz,
                     withDefault("highest precursor m/z", m_given.highestPrecursorMz))
        ->type_name("MZ");
}

void LibraryArguments::addPeaksTo(CLI::App *command)
{
    PeakFilterOptions &peaks = m_given.peaks;
    command->add_option("--top", peaks.top, withDefault("keep the N most intense peaks; 0: all", peaks.top))
        ->type_name("N");
    command
        ->add_option("--min-intensity", peaks.minIntensity,
                     withDefault("lowest intensity, relative to the base peak", peaks.minIntensity))
        ->type_name("X");
    command->add_option("--min-mz", peaks.minMz, withDefault("lowest m/z of a peak", peaks.minMz))->type_name("MZ");
    command
        ->add_option("--min-ion-number", peaks.minIonNumber,
                     withDefault("smallest ion number; 3 keeps b3, y3 and higher", peaks.minIonNumber))
        ->type_name("N");
    command->add_flag("--no-losses", m_noLosses, "leave out neutral losses");
    command->add_flag("--isotopes", peaks.isotopes, "add the heavier isotopes of each peak that is kept");
}

void LibraryArguments::addMergeTo(CLI::App *command)
{
    m_merge = command->add_subcommand("merge", "Join the shards of a library");
    m_merge->add_option("SHARD", m_mergedShards, "all shards of one library")->type_name("");
    m_merge->add_option("-o,--output", m_mergedOutput, "write to LIB, which appears only when it is complete")
        ->type_name("LIB");
    m_merge->add_flag("-v,--verbose", m_mergeVerbose, "also show where in the program each failure occurred");
    m_merge->footer(MERGE_EXAMPLES);
}

Result<CommandLine> LibraryArguments::options() const
{
    return m_merge->parsed() ? mergeOptions() : libraryOptions();
}

Result<CommandLine> LibraryArguments::libraryOptions() const
{
    LibraryOptions options = m_given;
    options.networks = m_networks.choice();
    options.peaks.neutralLosses = !m_noLosses;
    options.retentionTimes = !m_noRetentionTimes;
    options.observedTimes = text(m_calibrate);
    for (const auto step :
         {&LibraryArguments::convertInput, &LibraryArguments::convertModifications, &LibraryArguments::convertDecoys,
          &LibraryArguments::convertShard, &LibraryArguments::convertOutput}) {
        if (Error error = (this->*step)(&options); error.hasError())
            return error;
    }
    if (Error error = checkRanges(); error.hasError())
        return error;
    return CommandLine(options);
}

Error LibraryArguments::convertInput(LibraryOptions *options) const
{
    if (m_proteins.empty() == m_peptides.empty())
        return wrongArgument(m_proteins.empty() ? QStringLiteral("PROTEINS, or --peptides, is missing")
                                                : QStringLiteral("PROTEINS and --peptides cannot be used together"));
    options->proteins = text(m_proteins);
    options->peptideList = text(m_peptides);
    options->digestion.enzyme = text(m_enzyme);
    options->digestion.cleavagePattern = text(m_cleavagePattern);
    if (!m_charges.empty()) {
        const Result<QList<int>> charges = parseCharges(text(m_charges));
        if (charges.hasError())
            return wrongArgument(QStringLiteral("--charges: ") + charges.error().message());
        options->charges = charges.value();
    }
    return options->digestion.checkForParameterErrors();
}

Error LibraryArguments::convertModifications(LibraryOptions *options) const
{
    if (m_cysteine->count() > 0 && !m_fixed.empty())
        return wrongArgument(QStringLiteral("--cysteine and --fixed cannot be used together"));
    if (!std::isfinite(m_cysteineMass))
        return wrongArgument(QStringLiteral("--cysteine is not a finite mass"));
    PeptidoformRules &rules = options->modifications;
    const bool isNone =
        m_fixed.size() == 1 && text(m_fixed.front()).compare(QLatin1String("none"), Qt::CaseInsensitive) == 0;
    const Result<QList<ModificationRule>> fixed = isNone ? QList<ModificationRule>() : parseRules("--fixed", m_fixed);
    if (fixed.hasError())
        return fixed.error();
    const Result<QList<ModificationRule>> variable = parseRules("--variable", m_variable);
    if (variable.hasError())
        return variable.error();
    if (m_cysteine->count() > 0) {
        rules.fixed = cysteineRule(m_cysteineMass);
    } else if (!m_fixed.empty()) {
        rules.fixed = fixed.value();
    }
    rules.variable = variable.value();
    Error error = rules.check();
    return error.hasError() ? wrongArgument(error.message()) : Error();
}

Error LibraryArguments::convertDecoys(LibraryOptions *options) const
{
    const std::map<std::string, DecoyKind> kinds = {{"", DecoyKind::None},
                                                    {"none", DecoyKind::None},
                                                    {"reversed", DecoyKind::Reversed},
                                                    {"shuffled", DecoyKind::Shuffled}};
    const auto kind = kinds.find(m_decoys);
    if (kind == kinds.end())
        return wrongArgument(
            QStringLiteral("--decoys '%1' is not one of none, reversed, shuffled").arg(displayText(text(m_decoys))));
    options->decoys.kind = kind->second;
    return {};
}

Error LibraryArguments::convertShard(LibraryOptions *options) const
{
    const Result<LibraryShard> shard =
        m_shard.empty() ? LibraryShard::ofSlurmTask() : LibraryShard::parse(text(m_shard));
    if (shard.hasError())
        return wrongArgument(QStringLiteral("--shard: ") + shard.error().message());
    options->shard = shard.value();
    options->outputPath = text(m_output).replace(QLatin1String(SHARD_PLACEHOLDER), shard.value().fileNamePart());
    options->skippedPath = text(m_skipped).replace(QLatin1String(SHARD_PLACEHOLDER), shard.value().fileNamePart());
    return {};
}

Error LibraryArguments::convertOutput(LibraryOptions *options) const
{
    const QString &path = options->outputPath;
    if (path.isEmpty())
        return wrongArgument(QStringLiteral("-o LIB is missing"));
    const auto kind = m_format.empty() ? libraryFileKindOfPath(path) : libraryFileKindOfName(text(m_format));
    if (!kind)
        return wrongArgument(
            m_format.empty()
                ? QStringLiteral("cannot tell the format from the ending of '%1'; use --format (%2)")
                      .arg(displayText(path), libraryFileKindNames().join(QStringLiteral(", ")))
                : QStringLiteral("--format '%1' is not one of %2")
                      .arg(displayText(text(m_format)), libraryFileKindNames().join(QStringLiteral(", "))));
    options->kind = *kind;
    if (Error error = checkNotOverwritten({options->inputPath(), options->observedTimes}, {path, options->skippedPath});
        error.hasError())
        return error;
    if (options->writesToStandardOutput() && (isSqlite(*kind) || !options->shard.isWhole() || options->resume))
        return wrongArgument(QStringLiteral("a database, a shard and --resume need a file, not -o -"));
    if (options->inputPath() == QLatin1String("-") && (!options->shard.isWhole() || options->resume))
        return wrongArgument(QStringLiteral("a shard and --resume need an input file, not standard input"));
    if (options->observedTimes == QLatin1String("-"))
        return wrongArgument(QStringLiteral("--calibrate needs a file, not standard input"));
    return {};
}

Error LibraryArguments::checkRanges() const
{
    const PeakFilterOptions &peaks = m_given.peaks;
    const double highest = m_given.highestPrecursorMz;
    if (m_given.threads < 0 || m_given.threads > 1024)
        return wrongArgument(QStringLiteral("--threads is not within 0 to 1024"));
    if (!std::isfinite(highest) || !isWithin(m_given.lowestPrecursorMz, 0.0, highest))
        return wrongArgument(QStringLiteral(
            "--min-precursor-mz must be at least 0 and at most --max-precursor-mz, which must be finite"));
    if (m_energy->count() > 0 && !isCollisionEnergy(m_given.collisionEnergy))
        return wrongArgument(QStringLiteral("--energy is not within 10 to 60"));
    if (m_noRetentionTimes && !m_calibrate.empty())
        return wrongArgument(QStringLiteral("--calibrate and --no-retention-times cannot be used together"));
    if (peaks.top < 0)
        return wrongArgument(QStringLiteral("--top is below 0"));
    if (!isWithin(peaks.minIntensity, 0.0, 1.0))
        return wrongArgument(QStringLiteral("--min-intensity is not within 0 to 1"));
    if (!std::isfinite(peaks.minMz))
        return wrongArgument(QStringLiteral("--min-mz is not a finite m/z"));
    if (peaks.minIonNumber < 1)
        return wrongArgument(QStringLiteral("--min-ion-number is below 1"));
    return {};
}

Result<CommandLine> LibraryArguments::mergeOptions() const
{
    LibraryMergeOptions options;
    for (const std::string &shard : m_mergedShards)
        options.shards.append(text(shard));
    options.outputPath = text(m_mergedOutput);
    options.verbose = m_mergeVerbose;
    if (options.shards.isEmpty())
        return wrongArgument(QStringLiteral("the shards to merge are missing"));
    if (options.outputPath.isEmpty())
        return wrongArgument(QStringLiteral("-o LIB is missing"));
    if (Error error = checkNotOverwritten(options.shards, {options.outputPath}); error.hasError())
        return error;
    return CommandLine(options);
}

std::unique_ptr<CommandArguments> libraryArguments()
{
    return std::make_unique<LibraryArguments>();
}

} // namespace zav
