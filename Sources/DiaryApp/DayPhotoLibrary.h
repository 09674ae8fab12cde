// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayPhoto.h>
#include <DiaryApp/PhotoSource.h>

#include <QObject>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace diary {

class Executor;

// Gathers the photos of one fetch, whose images come in any order. Main thread only.
class FetchAccumulator {
public:
    using Completion = std::function<void(std::vector<DayPhoto>)>;

    // The completion is called once, when as many photos were stored.
    FetchAccumulator(std::size_t count, Completion completion);

    // A slot that is filled already stays as it is.
    void store(DayPhoto photo, std::size_t at);

private:
    std::vector<std::optional<DayPhoto>> m_photos;
    std::size_t m_remaining;
    Completion m_completion;
};

// Finds the photos taken on one day of one year.
//
// Main thread only. The source is asked on the fetch queue, in the background, and must be there until the
// queue has done its work; the queue must outlive the library.
//
// Scripted photos go before those of the source.
class DayPhotoLibrary : public QObject {
    Q_OBJECT

public:
    using Completion = FetchAccumulator::Completion;

    // The first of the day.
    static constexpr std::size_t mostPhotos = 24;
    // Which an image just covers, in logical pixels.
    static constexpr QSize imageSize{400, 264};

    // Without a source there are none but scripted photos, and no queue is needed.
    explicit DayPhotoLibrary(PhotoSource *source = nullptr, Executor *fetchQueue = nullptr);

    // The completion is called exactly once on the main thread, perhaps before this returns and perhaps after
    // the library is gone: with the day's photos in the order in which they were taken, or with none when
    // there is no such day, no source, or no right to look. Each fetch stands for itself; whether its day is
    // still wanted is the caller's to know.
    void fetch(std::int64_t year, std::int64_t month, std::int64_t day, Completion completion);

private:
    void performFetch(std::int64_t year, std::int64_t month, std::int64_t day, Completion completion);

    PhotoSource *m_source;
    Executor *m_fetchQueue;
};

} // namespace diary
