// SPDX-License-Identifier: Apache-2.0
//
// mutated_graphs MODELS FIRST END: changes the graphs of a folder at random, the changes numbered FIRST to END - 1,
// then loads each and predicts once with it, as `zav inspect` does. What becomes of change number n depends on n alone.
//
// That happens in child processes, because TensorFlow ends its process over some graphs that it should refuse. Such an
// end is counted under the place in TensorFlow's sources that its last words name; only an end that names no such
// place, or a run that does not come back, is a failure of this test.
#include "NetworkContract.h"
#include "NetworkTrial.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <new>
#include <random>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int CHANGES_PER_CHILD = 500;         // TensorFlow keeps some memory of each graph
constexpr int CHANGES_PER_LINE = 5000;         // on standard error, of a run that may take hours
constexpr unsigned LONGEST_TRIAL = 120;        // s; one takes 0.1 s, and more under the sanitizers
constexpr rlim_t MOST_MEMORY = 16ULL << 30U;   // bytes of address space
constexpr qsizetype LARGE_NODE = 2000;         // bytes; what is larger holds weights
constexpr int MOST_PLACES = 2;                 // changed in one graph
constexpr qsizetype PERCENT_OF_STRUCTURE = 60; // of the changes: outside the weights

struct Range
{
    qsizetype first = 0, size = 0;
};

struct Network
{
    QString name;
    QByteArray graph;
    zav::NetworkContract contract;
    std::vector<Range> structure; ///< the nodes without weights
};

/// What a child has come to; its parent sees it after the child's death.
struct Account
{
    int next = 0; ///< the change being tried, or END
    int predicted = 0, refused = 0;
};

quint64 numberAt(const QByteArray &bytes, qsizetype *at)
{
    quint64 value = 0;
    for (unsigned shift = 0; shift < 63 && *at < bytes.size(); shift += 7) {
        const auto byte = static_cast<quint8>(bytes[(*at)++]);
        value |= quint64(byte & 0x7FU) << shift;
        if (byte < 0x80U)
            break;
    }
    return value;
}

/// The nodes of a graph (field 1 of GraphDef, protobuf's wire format) that hold no weights. The graph is a whole one.
std::vector<Range> smallNodes(const QByteArray &graph)
{
    std::vector<Range> nodes;
    for (qsizetype at = 0; at < graph.size();) {
        const qsizetype start = at;
        const quint64 key = numberAt(graph, &at);
        const auto size = static_cast<qsizetype>(numberAt(graph, &at));
        if ((key & 7U) == 2)
            at += size;
        if (key == (1U << 3U | 2U) && size < LARGE_NODE)
            nodes.push_back({start, at - start});
    }
    return nodes;
}

std::vector<Network> readNetworks(const QDir &folder)
{
    std::vector<Network> networks;
    for (const QString &file : folder.entryList({QStringLiteral("*.pb")}, QDir::Files, QDir::Name)) {
        const QString name = file.chopped(3);
        const auto contract = zav::readNetworkContract(folder.filePath(name + QStringLiteral(".json")));
        QFile graph(folder.filePath(file));
        if (contract.hasError() || !graph.open(QIODevice::ReadOnly))
            return {};
        Network network{name, graph.readAll(), contract.value(), {}};
        network.structure = smallNodes(network.graph);
        networks.push_back(network);
    }
    return networks;
}

using Random = std::mt19937_64;

qsizetype below(Random *random, qsizetype end)
{
    return static_cast<qsizetype>((*random)() % static_cast<quint64>(std::max<qsizetype>(end, 1)));
}

Range smallNode(Random *random, const Network &network)
{
    return network.structure[static_cast<size_t>(below(random, static_cast<qsizetype>(network.structure.size())))];
}

/// A node that goes, or comes twice.
void changeNode(Random *random, const Network &network, QByteArray *graph)
{
    const Range node = smallNode(random, network);
    if (below(random, 2) == 0)
        graph->remove(node.first, node.size);
    else
        graph->append(graph->mid(node.first, node.size));
}

/// Another value in the last bytes of a small constant: a size, an axis or a bound that fits no longer.
void changeConstant(Random *random, const Network &network, QByteArray *graph)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        const Range node = smallNode(random, network);
        if (node.first + node.size > graph->size() || !graph->mid(node.first, node.size).contains("Const"))
            continue;
        const qsizetype at = node.first + node.size - 1 - below(random, std::min<qsizetype>(node.size, 12));
        (*graph)[at] = static_cast<char>(below(random, 2) == 0 ? below(random, 256) : (*graph)[at] + 1);
        return;
    }
}

/// One change at one place. Most keep the length, for a message of another length than it says is refused at once.
void change(Random *random, const Network &network, QByteArray *graph)
{
    if (below(random, 3) == 0)
        return changeConstant(random, network, graph);
    const bool isStructure = below(random, 100) < PERCENT_OF_STRUCTURE;
    const Range range = isStructure ? smallNode(random, network) : Range{0, graph->size()};
    const qsizetype at = std::min(range.first + below(random, range.size), graph->size() - 1);
    const qsizetype size = 1 + below(random, std::min<qsizetype>(32, graph->size() - at));
    const qsizetype kind = below(random, 64);
    if (kind < 12)
        (*graph)[at] = static_cast<char>((*graph)[at] ^ (1 << below(random, 8)));
    else if (kind < 20)
        (*graph)[at] = static_cast<char>(below(random, 256));
    else if (kind < 36)
        (*graph)[at] = static_cast<char>((*graph)[at] + (below(random, 2) == 0 ? 1 : -1)); // the next size or type
    else if (kind < 46)
        graph->replace(at, size, graph->mid(smallNode(random, network).first, size));
    else if (kind < 58)
        changeNode(random, network, graph);
    else if (kind < 61)
        graph->replace(at, size, QByteArray(size, '\xFF'));
    else if (kind < 62)
        graph->remove(at, size);
    else if (kind < 63)
        graph->insert(at, graph->mid(at, size));
    else
        graph->truncate(at);
}

QByteArray changed(const Network &network, int number)
{
    Random random(static_cast<quint64>(number));
    QByteArray graph = network.graph;
    const auto places = 1 + static_cast<int>(random() % MOST_PLACES);
    for (int place = 0; place < places && !graph.isEmpty(); ++place)
        change(&random, network, &graph);
    return graph;
}

/// The sanitizers reserve terabytes of addresses, so no limit is possible with them.
void limitMemory()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    const rlimit memory{MOST_MEMORY, MOST_MEMORY};
    if (statm.open(QIODevice::ReadOnly) &&
        statm.readAll().split(' ').first().toULongLong() * static_cast<quint64>(sysconf(_SC_PAGESIZE)) < MOST_MEMORY)
        setrlimit(RLIMIT_AS, &memory);
}

/// Memory that runs out in our own code refuses the graph, too; std::bad_alloc of TensorFlow's threads ends the child.
bool isRefusedBy(const zav::NetworkContract &contract, const QString &graphPath)
{
    try {
        return zav::tryNetwork(contract, graphPath).hasError();
    } catch (const std::bad_alloc &) {
        return true;
    }
}

/// What the child does. Never returns.
[[noreturn]] void tryChanges(const std::vector<Network> &networks, int end, const QString &graphPath,
                             const QByteArray &messages, Account *account)
{
    const int log = open(messages.constData(), O_CREAT | O_RDWR | O_APPEND, 0600);
    dup2(log, STDERR_FILENO);
    limitMemory();
    while (account->next < end) {
        const Network &network = networks[static_cast<size_t>(account->next) % networks.size()];
        QFile graph(graphPath);
        if (ftruncate(log, 0) != 0 || !graph.open(QIODevice::WriteOnly) ||
            graph.write(changed(network, account->next)) < 0)
            _exit(2);
        graph.close();
        alarm(LONGEST_TRIAL);
        const bool isRefused = isRefusedBy(network.contract, graphPath);
        alarm(0);
        ++(isRefused ? account->refused : account->predicted);
        ++account->next;
    }
    _exit(0);
}

/// Where a child ended, by its last words; empty for an end within our own code, or one without a word.
QString placeOfEnd(int status, const QString &messages)
{
    QFile file(messages);
    const QString said = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    static const QRegularExpression place(
        QStringLiteral(R"(\bF\d{4} [^\n]*?([\w/.]+\.(?:cc|h|hpp):\d+)\] ([^\n]{0,100}))"));
    if (const auto match = place.match(said); match.hasMatch())
        return match.captured(1) + QStringLiteral(": ") + match.captured(2);
    if (said.contains(QLatin1String("std::bad_alloc")))
        return QStringLiteral("out of memory (std::bad_alloc)");
    return WIFSIGNALED(status) ? QStringLiteral("signal %1").arg(WTERMSIG(status)) : QString();
}

} // namespace

int main(int argc, char *argv[])
{
    const std::vector<Network> networks =
        argc == 4 ? readNetworks(QDir(QFile::decodeName(argv[1]))) : std::vector<Network>();
    if (networks.empty()) {
        std::fputs("usage: mutated_graphs MODELS FIRST END\n", stderr);
        return 2;
    }
    const int first = std::atoi(argv[2]), end = std::atoi(argv[3]);
    const QTemporaryDir folder;
    const QString messages = folder.filePath(QStringLiteral("messages"));
    auto *account = static_cast<Account *>(
        mmap(nullptr, sizeof(Account), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *account = {first, 0, 0};
    QMap<QString, QList<int>> ends;
    int nextLine = CHANGES_PER_LINE;
    while (account->next < end) {
        const int last = std::min(end, account->next + CHANGES_PER_CHILD);
        const pid_t child = fork();
        if (child == 0)
            tryChanges(networks, last, folder.filePath(QStringLiteral("changed.pb")), QFile::encodeName(messages),
                       account);
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child || (WIFEXITED(status) && WEXITSTATUS(status) == 2))
            return 2;
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            ends[placeOfEnd(status, messages)].append(account->next++);
        if (const int done = account->next - first; done >= nextLine) {
            std::fprintf(stderr, "%d of %d\n", done, end - first);
            nextLine += CHANGES_PER_LINE;
        }
    }
    std::printf("%d changed graphs: %d predicted, %d refused\n", end - first, account->predicted, account->refused);
    bool isSound = true;
    for (auto each = ends.cbegin(); each != ends.cend(); ++each) {
        isSound = isSound && !each.key().isEmpty() && !each.key().startsWith(QLatin1String("signal"));
        std::printf("%d ended the process, first number %d: %s\n", int(each.value().size()), each.value().first(),
                    qUtf8Printable(each.key()));
    }
    return isSound ? 0 : 1;
}
