// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/PhotoSource.h>

#include <QColor>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace diary::testing {

// Pictures out of nowhere. What is requested waits until the test answers it, or is answered at once. For one
// thread.
class FakePhotoSource : public PhotoSource {
public:
    struct Query {
        LocalTime start;
        LocalTime end;
        std::size_t limit = 0;
    };
    struct ImageRequest {
        std::string identifier;
        QSize targetSize;
        std::function<void(QImage)> handler;

        // With an image that only this picture has.
        void answer() const { handler(imageOf(identifier, targetSize)); }
    };

    AuthorizationStatus status = AuthorizationStatus::Authorized;
    bool answersAtOnce = false;
    std::vector<Query> queries;
    std::vector<std::function<void(AuthorizationStatus)>> authorizationRequests;
    std::vector<ImageRequest> imageRequests;

    static LocalTime at(std::chrono::year_month_day day, int hour, int minute) {
        return std::chrono::local_days(day) + std::chrono::hours(hour) + std::chrono::minutes(minute);
    }

    static QImage imageOf(const std::string &identifier, QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor::fromRgb(static_cast<QRgb>(std::hash<std::string>()(identifier))));
        return image;
    }

    // The name is the identifier, too.
    void add(const std::string &name, std::optional<LocalTime> time) {
        m_pictures.push_back({name, QString::fromStdString(name), time});
    }
    void clear() { m_pictures.clear(); }

    AuthorizationStatus authorizationStatus() const override { return status; }

    void requestAuthorization(std::function<void(AuthorizationStatus)> handler) override {
        authorizationRequests.push_back(std::move(handler));
    }

    std::vector<Asset> assets(LocalTime start, LocalTime end, std::size_t limit) override {
        queries.push_back({start, end, limit});
        std::vector<Asset> found;
        for (const auto &picture : m_pictures) {
            if (picture.creationTime && *picture.creationTime >= start && *picture.creationTime < end)
                found.push_back(picture);
        }
        std::stable_sort(found.begin(), found.end(), [](const Asset &one, const Asset &other) {
            return one.creationTime < other.creationTime;
        });
        found.resize(std::min(found.size(), limit));
        return found;
    }

    void requestImage(const std::string &identifier, QSize targetSize,
                      std::function<void(QImage)> handler) override {
        imageRequests.push_back({identifier, targetSize, std::move(handler)});
        if (answersAtOnce)
            imageRequests.back().answer();
    }

    void requestFullImage(const std::string &, QSize,
                          std::function<void(std::optional<FullImage>)> handler) override {
        handler(std::nullopt);
    }

    Progress progress() const override { return {m_pictures.size(), m_pictures.size(), true}; }
    void setAddedFolders(std::vector<std::filesystem::path>) override {}

private:
    std::vector<Asset> m_pictures;
};

} // namespace diary::testing
