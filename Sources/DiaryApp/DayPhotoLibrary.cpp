// SPDX-License-Identifier: MIT
#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/ScriptedPhotos.h>
#include <DiaryKit/Executor.h>

#include <QGuiApplication>
#include <QPointer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

namespace diary {

namespace {

using LocalTime = PhotoSource::LocalTime;
using Status = PhotoSource::AuthorizationStatus;

// Whatever is posted runs, or is dropped with the program.
void postToMain(std::function<void()> work) {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

// Passes the first value on to the main thread, from whatever thread it comes. When everybody who could give
// one has let go, an empty value is passed on.
template <typename Value>
class Answer {
public:
    explicit Answer(std::function<void(Value)> receiver) : m_receiver(std::move(receiver)) {}
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    ~Answer() { give({}); }

    void give(Value value) {
        if (m_isGiven.exchange(true))
            return;
        postToMain([receiver = std::exchange(m_receiver, nullptr), value = std::move(value)]() mutable {
            receiver(std::move(value));
        });
    }

private:
    std::function<void(Value)> m_receiver;
    std::atomic<bool> m_isGiven = false;
};

template <typename Value>
std::shared_ptr<Answer<Value>> makeAnswer(std::function<void(Value)> receiver) {
    return std::make_shared<Answer<Value>>(std::move(receiver));
}

// When that day begins; none when the calendar lacks it.
std::optional<LocalTime> startOfDay(std::int64_t year, std::int64_t month, std::int64_t day) {
    namespace chrono = std::chrono;
    constexpr auto firstYear = static_cast<int>(chrono::year::min());
    constexpr auto lastYear = static_cast<int>(chrono::year::max());
    if (year < firstYear || year > lastYear || month < 1 || month > 12 || day < 1 || day > 31)
        return std::nullopt;
    const chrono::year_month_day date(chrono::year(static_cast<int>(year)),
                                      chrono::month(static_cast<unsigned>(month)),
                                      chrono::day(static_cast<unsigned>(day)));
    if (!date.ok())
        return std::nullopt;
    return LocalTime(chrono::local_days(date));
}

QString timeText(const std::optional<LocalTime> &time) {
    if (!time)
        return {};
    const std::chrono::hh_mm_ss clock(*time - std::chrono::floor<std::chrono::days>(*time));
    return photoTimeText(static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()));
}

DayPhoto photoWithoutImage(PhotoSource::Asset asset) {
    return {.image = {},
            .filename = asset.filename.isEmpty() ? QStringLiteral("IMG") : std::move(asset.filename),
            .timeText = timeText(asset.creationTime),
            .assetIdentifier = std::move(asset.identifier)};
}

} // namespace

FetchAccumulator::FetchAccumulator(std::size_t count, Completion completion)
    : m_photos(count), m_remaining(count), m_completion(std::move(completion)) {}

void FetchAccumulator::store(DayPhoto photo, std::size_t at) {
    auto &slot = m_photos.at(at);
    if (slot)
        return;
    slot = std::move(photo);
    if (--m_remaining > 0)
        return;
    std::vector<DayPhoto> photos;
    photos.reserve(m_photos.size());
    for (const auto &stored : m_photos)
        photos.push_back(*stored);
    m_completion(std::move(photos));
}

DayPhotoLibrary::DayPhotoLibrary(PhotoSource *source, Executor *fetchQueue)
    : m_source(source), m_fetchQueue(fetchQueue) {
    Q_ASSERT(!source || fetchQueue);
}

void DayPhotoLibrary::fetch(std::int64_t year, std::int64_t month, std::int64_t day, Completion completion) {
    if (auto scripted = scriptedPhotos()) {
        completion(std::move(*scripted));
        return;
    }
    if (!m_source) {
        completion({});
        return;
    }
    const auto mayLook = [](Status status) {
        return status == Status::Authorized || status == Status::Limited;
    };
    const auto status = m_source->authorizationStatus();
    if (mayLook(status)) {
        performFetch(year, month, day, std::move(completion));
        return;
    }
    if (status != Status::NotDetermined) {
        completion({});
        return;
    }
    const QPointer<DayPhotoLibrary> library(this);
    const auto answer = makeAnswer<Status>([library, mayLook, year, month, day, completion](Status found) {
        if (library && mayLook(found))
            library->performFetch(year, month, day, completion);
        else
            completion({});
    });
    m_source->requestAuthorization([answer](Status found) { answer->give(found); });
}

void DayPhotoLibrary::performFetch(std::int64_t year, std::int64_t month, std::int64_t day,
                                   Completion completion) {
    const auto start = startOfDay(year, month, day);
    if (!start) {
        completion({});
        return;
    }
    const double pixelRatio = std::max(1.0, qGuiApp->devicePixelRatio());
    const QSize targetSize(static_cast<int>(std::ceil(imageSize.width() * pixelRatio)),
                           static_cast<int>(std::ceil(imageSize.height() * pixelRatio)));
    // The list may be long in coming, or never come; each image likewise.
    const auto answer = makeAnswer<std::vector<DayPhoto>>(std::move(completion));
    m_fetchQueue->runInBackground(
        Executor::Priority::UserInitiated, [source = m_source, start, pixelRatio, targetSize, answer] {
            auto assets = source->assets(*start, *start + std::chrono::days(1), mostPhotos);
            if (assets.size() > mostPhotos)
                assets.resize(mostPhotos);
            if (assets.empty()) {
                answer->give({});
                return;
            }
            const auto accumulator = std::make_shared<FetchAccumulator>(
                assets.size(), [answer](std::vector<DayPhoto> photos) { answer->give(std::move(photos)); });
            for (std::size_t index = 0; index < assets.size(); ++index) {
                const auto identifier = assets[index].identifier;
                const auto photo = photoWithoutImage(std::move(assets[index]));
                const auto image = makeAnswer<QImage>([accumulator, photo, index, pixelRatio](QImage found) {
                    found.setDevicePixelRatio(pixelRatio);
                    auto complete = photo;
                    complete.image = std::move(found);
                    accumulator->store(std::move(complete), index);
                });
                source->requestImage(identifier, targetSize,
                                     [image](QImage found) { image->give(std::move(found)); });
            }
        });
}

} // namespace diary
