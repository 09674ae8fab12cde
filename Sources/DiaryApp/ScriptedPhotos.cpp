// SPDX-License-Identifier: MIT
#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/ScriptedPhotos.h>

#include <QColor>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QStringList>
#include <QTime>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

namespace diary {

namespace {

// None when the variable does not hold a number, and nothing else.
std::optional<std::int64_t> scriptedCount() {
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

} // namespace

QString photoTimeText(int hour, int minute) {
    return QTime(hour, minute).toString(QStringLiteral("HH:mm"));
}

std::optional<std::vector<DayPhoto>> scriptedPhotos() {
    const auto count = scriptedCount();
    if (!count)
        return std::nullopt;
    const auto names =
        qEnvironmentVariable("DIARY_FAKE_PHOTO_NAMES").split(QLatin1Char(','), Qt::SkipEmptyParts);
    const auto folder = qEnvironmentVariable("DIARY_FAKE_PHOTOS_DIR");
    const auto images = folder.isEmpty() ? std::vector<QImage>() : imagesIn(folder);
    std::vector<DayPhoto> photos;
    for (std::int64_t index = 0; index < std::min(*count, mostScriptedPhotos); ++index) {
        const auto unsignedIndex = static_cast<std::size_t>(index);
        photos.push_back(
            {.image = images.empty() ? generatedImage(index) : images[unsignedIndex % images.size()],
             .filename = names.isEmpty()
                             ? QStringLiteral("IMG_%1.HEIC").arg(4100 + index, 4, 10, QLatin1Char('0'))
                             : names[index % names.size()],
             .timeText = photoTimeText(static_cast<int>((2 * index + 7) % 24),
                                       static_cast<int>((17 * index + 12) % 60)),
             .assetIdentifier = std::nullopt});
    }
    return photos;
}

} // namespace diary
