// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QString>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zav {

/// How much a pipeline does at a time.
struct PipelineLimits
{
    int threads = 1;  ///< workers; 1 or more
    int inFlight = 0; ///< pieces between being read and having been consumed, at most; 0: four a worker
    std::chrono::seconds patience{60}; ///< with workers at a piece when memory has run out
};

/// Works on a stream of pieces with several threads and hands the results on in the order of the stream.
///
/// Order: `sink` gets the outcome of every piece, in the order in which `source` gave the pieces, whatever the number
/// of threads. Bounds: a piece is read only when fewer than `inFlight` others are between the source and the end of
/// their turn in the sink, so that memory holds that many pieces and outcomes however long the stream and however
/// slow the sink; a worker that has run ahead waits.
///
/// Threads: `source` is called by one worker at a time, `work` by all of them at once, each with its own number from 0
/// to `threads` - 1 (for what a worker keeps to itself, a predictor say), `sink` and `isInterrupted` only by the thread
/// that called `run`. While a worker reads, the others work: no thread only reads.
///
/// What fails within a piece belongs into its outcome; the pipeline does not look there. Nothing may throw but
/// std::bad_alloc, which ends the run.
template <typename Piece, typename Outcome>
class OrderedPipeline
{
public:
    using Source = std::function<Result<std::optional<Piece>>()>;
    using Work = std::function<Outcome(int worker, Piece piece)>;
    using Sink = std::function<Error(Outcome outcome)>;
    using Interrupt = std::function<bool()>;

    /// `isInterrupted`, when given, is asked before every turn of the sink and about ten times a second while it waits.
    explicit OrderedPipeline(const PipelineLimits &limits, Interrupt isInterrupted = {})
        : m_threads(std::max(limits.threads, 1)),
          m_slots(static_cast<size_t>(limits.inFlight > 0 ? limits.inFlight : 4 * m_threads)),
          m_patience(limits.patience), m_isInterrupted(std::move(isInterrupted))
    {}

    /// Runs the stream to its end, once an object. On return no thread of the pipeline is left.
    ///
    /// An empty optional of `source` ends the stream. Its error does too: the pieces before it are worked on and
    /// consumed first, then that error is returned. An error of `sink` is returned as soon as the pieces being worked
    /// on are done; nothing more is read or consumed, and what came after it is dropped. An interrupt is the same, with
    /// a `Failure` "interrupted". Memory that runs out in any of the threads ends it too, and is std::bad_alloc here,
    /// whatever else has failed. A `source` that waits for its input holds up the return in all these cases. Where the
    /// system gives fewer threads than wanted, those that there are do the work; `Failure` when there is none.
    ///
    /// A library may keep what it locked when std::bad_alloc passes through it (Qt Gui does, with its fonts), and the
    /// other workers may wait for that. So std::terminate, with std::bad_alloc as its exception, ends the process when
    /// memory has run out and not all workers end within `patience`.
    Error run(Source source, Work work, Sink sink)
    {
        m_source = std::move(source);
        m_work = std::move(work);
        std::vector<std::thread> workers;
        workers.reserve(static_cast<size_t>(m_threads));
        Error error = start(&workers);
        if (!error.hasError())
            error = consumeAll(sink);
        stopReading();
        awaitEnds(workers.size());
        for (std::thread &worker : workers)
            worker.join();
        if (m_isOutOfMemory)
            throw std::bad_alloc();
        return error.hasError() ? error : m_sourceError;
    }

private:
    struct Numbered
    {
        size_t number;
        Piece piece;
    };

    Error start(std::vector<std::thread> *workers)
    {
        try {
            for (int worker = 0; worker < m_threads; ++worker)
                workers->emplace_back([this, worker] { workOn(worker); });
        } catch (const std::bad_alloc &) {
            noteOutOfMemory();
        } catch (const std::system_error &error) {
            if (workers->empty())
                return {Failure, QStringLiteral("cannot start a thread: %1").arg(QString::fromUtf8(error.what()))};
        }
        return {};
    }

    void workOn(int worker)
    {
        try {
            while (std::optional<Numbered> taken = take())
                deliver(taken->number, m_work(worker, std::move(taken->piece)));
        } catch (const std::bad_alloc &) {
            noteOutOfMemory();
        }
        const std::lock_guard lock(m_mutex);
        ++m_endedCount;
        m_changed.notify_all();
    }

    void awaitEnds(size_t workerCount)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isOutOfMemory || m_endedCount == workerCount; });
        if (m_changed.wait_for(lock, m_patience, [&] { return m_endedCount == workerCount; }))
            return;
        try {
            throw std::bad_alloc();
        } catch (const std::bad_alloc &) {
            std::terminate();
        }
    }

    void noteOutOfMemory()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isOutOfMemory = true;
        }
        stopReading();
    }

    /// The next piece of the stream, or nothing when there is none to be worked on any more.
    std::optional<Numbered> take()
    {
        const std::lock_guard reading(m_reading);
        if (!waitForRoom())
            return {};
        Result<std::optional<Piece>> next = m_source();
        const std::lock_guard lock(m_mutex);
        if (next.hasError())
            m_sourceError = next.error();
        std::optional<Piece> piece = next.hasError() ? std::nullopt : std::move(next).value();
        if (piece)
            return Numbered{m_takenCount++, std::move(*piece)};
        m_isAllTaken = true;
        m_changed.notify_all();
        return {};
    }

    /// False when nothing more is to be read.
    bool waitForRoom()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isAllTaken || m_takenCount < m_consumedCount + m_slots.size(); });
        return !m_isAllTaken;
    }

    void deliver(size_t number, Outcome outcome)
    {
        const std::lock_guard lock(m_mutex);
        slot(number).emplace(std::move(outcome));
        m_changed.notify_all();
    }

    Error consumeAll(const Sink &sink)
    {
        try {
            for (;;) {
                Result<std::optional<Outcome>> next = awaitNext();
                if (next.hasError())
                    return next.error();
                std::optional<Outcome> outcome = std::move(next).value();
                if (!outcome)
                    return {};
                if (Error error = sink(std::move(*outcome)); error.hasError())
                    return error;
                const std::lock_guard lock(m_mutex);
                ++m_consumedCount;
                m_changed.notify_all();
            }
        } catch (const std::bad_alloc &) {
            noteOutOfMemory();
            return {};
        }
    }

    /// The next outcome in order; an empty optional after the last, and when memory has run out.
    Result<std::optional<Outcome>> awaitNext()
    {
        std::unique_lock lock(m_mutex);
        const auto isReady = [this] {
            return m_isOutOfMemory || slot(m_consumedCount).has_value() ||
                   (m_isAllTaken && m_consumedCount == m_takenCount);
        };
        do {
            if (m_isInterrupted && m_isInterrupted())
                return Error(Failure, QStringLiteral("interrupted"));
        } while (!m_changed.wait_for(lock, std::chrono::milliseconds(100), isReady));
        if (m_isOutOfMemory)
            return std::optional<Outcome>();
        return std::exchange(slot(m_consumedCount), std::nullopt);
    }

    void stopReading()
    {
        const std::lock_guard lock(m_mutex);
        m_isAllTaken = true;
        m_changed.notify_all();
    }

    /// Pieces in flight differ by less than the number of slots: each has one of its own.
    std::optional<Outcome> &slot(size_t number) { return m_slots[number % m_slots.size()]; }

    const int m_threads;
    std::vector<std::optional<Outcome>> m_slots;
    const std::chrono::seconds m_patience;
    Interrupt m_isInterrupted;
    Source m_source;
    Work m_work;

    std::mutex m_reading; ///< held by the worker that reads
    std::mutex m_mutex;   ///< guards everything below, and the slots
    std::condition_variable m_changed;
    size_t m_takenCount = 0;
    size_t m_consumedCount = 0;
    size_t m_endedCount = 0; ///< of the workers
    bool m_isAllTaken = false;
    bool m_isOutOfMemory = false;
    Error m_sourceError;
};

} // namespace zav
