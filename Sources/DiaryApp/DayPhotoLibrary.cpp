// SPDX-License-Identifier: MIT
#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryKit/Executor.h>

#include <QColor>
#include <QDir>
#include <QGuiApplication>
#include <QImageReader>
#include <QPointer>
#include <QStringList>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <map>
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

QString timeText(std::int64_t hour, std::int64_t minute) {
    return QStringLiteral("%1:%2").arg(hour, 2, 10, QLatin1Char('0')).arg(minute, 2, 10, QLatin1Char('0'));
}

QString timeText(const std::optional<LocalTime> &time) {
    if (!time)
        return {};
    const auto sinceMidnight = *time - std::chrono::floor<std::chrono::days>(*time);
    const std::chrono::hh_mm_ss clock(sinceMidnight);
    return timeText(clock.hours().count(), clock.minutes().count());
}

DayPhoto photoWithoutImage(PhotoSource::Asset asset) {
    return {.image = {},
            .filename = asset.filename.isEmpty() ? QStringLiteral("IMG") : std::move(asset.filename),
            .timeText = timeText(asset.creationTime),
            .assetIdentifier = std::move(asset.identifier)};
}

// None when the variable does not hold a number, and nothing else.
std::optional<std::int64_t> fakePhotoCount() {
    const auto text = qEnvironmentVariable("DIARY_FAKE_PHOTOS");
    const auto isDigit = [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    };
    const auto digits =
        text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-')) ? text.mid(1) : text;
    if (digits.isEmpty() || !std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    bool fits = false;
    const qlonglong count = text.toLongLong(&fits);
    if (!fits)
        return std::nullopt;
    return count;
}

// Of the folder's files, those that are images, by name.
const std::vector<QImage> &imagesIn(const QString &folder) {
    static std::map<QString, std::vector<QImage>> known;
    const auto [entry, isNew] = known.try_emplace(folder);
    if (!isNew)
        return entry->second;
    const QDir files(folder);
    auto names = files.entryList(QDir::Files, QDir::NoSort); // without the hidden ones
    std::sort(names.begin(), names.end());
    for (const auto &name : names) {
        QImageReader reader(files.filePath(name));
        reader.setAutoTransform(true);
        if (auto image = reader.read(); !image.isNull())
            entry->second.push_back(std::move(image));
    }
    return entry->second;
}

QImage generatedImage(std::int64_t index) {
    QImage image(DayPhotoLibrary::imageSize, QImage::Format_RGB32);
    const double hue = std::fmod(static_cast<double>(index) * 0.13, 1.0);
    image.fill(QColor::fromHsvF(static_cast<float>(hue), 0.18F, 0.85F));
    return image;
}

std::vector<DayPhoto> fakePhotos(std::int64_t count) {
    const auto names =
        qEnvironmentVariable("DIARY_FAKE_PHOTO_NAMES").split(QLatin1Char(','), Qt::SkipEmptyParts);
    const auto folder = qEnvironmentVariable("DIARY_FAKE_PHOTOS_DIR");
    const auto images = folder.isEmpty() ? std::vector<QImage>() : imagesIn(folder);
    std::vector<DayPhoto> photos;
    for (std::int64_t index = 0; index < std::min(count, DayPhotoLibrary::mostFakePhotos); ++index) {
        const auto unsignedIndex = static_cast<std::size_t>(index);
        photos.push_back(
            {.image = images.empty() ? generatedImage(index) : images[unsignedIndex % images.size()],
             .filename = names.isEmpty()
                             ? QStringLiteral("IMG_%1.HEIC").arg(4100 + index, 4, 10, QLatin1Char('0'))
                             : names[index % names.size()],
             .timeText = timeText((2 * index + 7) % 24, (17 * index + 12) % 60),
             .assetIdentifier = std::nullopt});
    }
    return photos;
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
    if (const auto count = fakePhotoCount()) {
        completion(fakePhotos(*count));
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
