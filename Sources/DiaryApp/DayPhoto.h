// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

#include <optional>
#include <string>

namespace diary {

// One picture of a day, small enough to be shown among others.
struct DayPhoto {
    QImage image; // upright; null when it could not be had
    QString filename;
    QString timeText; // when it was taken, "HH:mm" by the camera's clock; empty when that is not known
    // By which the photo source finds it again; none for scripted photos.
    std::optional<std::string> assetIdentifier;

    bool operator==(const DayPhoto &) const = default;
};

} // namespace diary
