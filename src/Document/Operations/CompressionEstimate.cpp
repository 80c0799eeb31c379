#include "CompressionEstimate.h"

#include "Logging.h"

#include <QLocale>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <vector>

namespace {

using Quality = PDFCompressor::Quality;

/// So many pages are drawn at every quality: what the finer ones take beside the coarsest hardly differs from page to
/// page, so that most of the time is better spent on many coarse ones.
constexpr std::size_t drawnAtAll = 6;
constexpr qint64 aroundPicture = 420; // bytes of the file for a page apart from its picture
constexpr qint64 aroundPages = 250;

/// All pages, spread over the document however few of the first are taken: 0, 1/2, 1/4, 3/4, 1/8 of it, and so on.
std::vector<int> spread(int count) {
    std::vector<int> order;
    std::vector<bool> isTaken(static_cast<std::size_t>(count));
    const auto take = [&](int page) {
        if (!isTaken[static_cast<std::size_t>(page)])
            order.push_back(page);
        isTaken[static_cast<std::size_t>(page)] = true;
    };
    for (qint64 parts = 1; static_cast<int>(order.size()) < count; parts *= 2)
        for (qint64 part = parts > 1 ? 1 : 0; part < parts; part += 2)
            take(static_cast<int>(part * count / parts + count / (2 * parts)));
    return order;
}

/// A page at the qualities that it has been drawn at, in bytes; below zero for others.
using Sample = std::array<qint64, PDFCompressor::qualities.size()>;

/// What the threads share.
class Sampling {
public:
    Sampling(const PDFCompressor& compressor, const std::stop_token& stop)
        : m_compressor(compressor), m_stop(stop), m_order(spread(compressor.pageCount())),
          m_samples(m_order.size(), Sample{-1, -1, -1}) {
        const auto add = [this](std::size_t first, std::size_t last, std::initializer_list<Quality> all) {
            for (std::size_t i = first; i < std::min(last, m_order.size()); ++i)
                for (const Quality quality : all)
                    m_steps.push_back({i, quality});
        };
        constexpr std::size_t first = 2; // soon something is known of all
        add(0, first, {Quality::good, Quality::better, Quality::best});
        add(first, drawnAtAll * 2, {Quality::good});
        add(first, drawnAtAll, {Quality::better, Quality::best});
        add(drawnAtAll * 2, m_order.size(), {Quality::good});
        add(drawnAtAll, m_order.size(), {Quality::better, Quality::best});
    }

    /// Until all is drawn or time is up.
    void work() {
        try {
            for (std::optional<Step> step = next(); step; step = next()) {
                const QByteArray jpeg =
                    m_compressor.compressPage(m_order[step->page], step->quality, m_timeUp.get_token());
                note(*step, jpeg.size());
            }
        } catch (const std::exception& error) {
            qCWarning(Logging::document) << "estimating a size failed:" << Logging::causes(error);
        }
        const std::lock_guard lock(m_mutex);
        ++m_ended;
        m_changed.notify_all();
    }

    void waitFor(int threads, std::chrono::milliseconds patience) {
        const std::stop_callback stopped(m_stop, [this] { m_timeUp.request_stop(); });
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, patience, [&] { return m_ended == threads; });
        m_changed.wait(lock, [&] { return m_ended == threads || m_knowsAll || m_stop.stop_requested(); });
        m_timeUp.request_stop();
    }

    [[nodiscard]] std::optional<CompressionEstimate::Sizes> result() const {
        CompressionEstimate::Sizes sizes{};
        qint64 coarse = 0;
        qint64 pages = 0;
        for (const Sample& sample : m_samples)
            if (sample[0] >= 0) {
                coarse += sample[0];
                ++pages;
            }
        if (coarse == 0 || m_stop.stop_requested())
            return std::nullopt;
        for (std::size_t quality = 0; quality < sizes.size(); ++quality) {
            qint64 these = 0;
            qint64 beside = 0; // of the same pages, at the coarsest
            for (const Sample& sample : m_samples)
                if (sample[0] >= 0 && sample[quality] >= 0) {
                    these += sample[quality];
                    beside += sample[0];
                }
            if (beside == 0)
                return std::nullopt;
            const double all = double(coarse) / double(pages) * m_compressor.pageCount();
            sizes[quality] =
                aroundPages + aroundPicture * m_compressor.pageCount() + qRound64(all * double(these) / double(beside));
        }
        return sizes;
    }

private:
    struct Step {
        std::size_t page; ///< in the order
        Quality quality;
    };

    std::optional<Step> next() {
        const std::lock_guard lock(m_mutex);
        return m_timeUp.stop_requested() || m_next >= m_steps.size() ? std::nullopt : std::optional(m_steps[m_next++]);
    }

    void note(const Step& step, qint64 size) {
        const std::lock_guard lock(m_mutex);
        if (m_timeUp.stop_requested())
            return; // perhaps it wasn't drawn for that
        Sample& sample = m_samples[step.page];
        sample[static_cast<std::size_t>(step.quality)] = size;
        m_knowsAll = m_knowsAll || (*std::min_element(sample.begin(), sample.end()) >= 0 && size > 0);
        m_changed.notify_all();
    }

    const PDFCompressor& m_compressor;
    const std::stop_token m_stop;
    const std::vector<int> m_order;
    std::vector<Step> m_steps;
    std::stop_source m_timeUp;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    // Guarded by `m_mutex` as long as threads work.
    std::vector<Sample> m_samples;
    std::size_t m_next = 0;
    int m_ended = 0;
    bool m_knowsAll = false; ///< there is a page that is known at all qualities
};

} // namespace

std::optional<CompressionEstimate::Sizes> CompressionEstimate::of(const PDFCompressor& compressor,
                                                                  const std::stop_token& stop,
                                                                  std::chrono::milliseconds patience) {
    constexpr int threads = 2;
    Sampling sampling(compressor, stop);
    std::vector<std::future<void>> running;
    for (int i = 0; i < threads; ++i)
        running.push_back(std::async(std::launch::async, [&sampling] { sampling.work(); }));
    sampling.waitFor(threads, patience);
    for (std::future<void>& each : running)
        each.wait();
    return sampling.result();
}

QString CompressionEstimate::sentence(qint64 size, std::optional<qint64> present) {
    const auto words = [](qint64 bytes) {
        return QLocale(QLocale::English).formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
    };
    return present ? QStringLiteral("About %1 (now %2)").arg(words(size), words(*present))
                   : QStringLiteral("About %1").arg(words(size));
}
