// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <filesystem>
#include <functional>

class QWidget;

namespace diary {

// Lets the user pick a folder. Main thread only.
class FolderChooser {
public:
    struct Request {
        QString title;
        std::filesystem::path startingAt; // the nearest folder above it that is there
    };

    virtual ~FolderChooser() = default;

    // Returns at once. The handler is called with the folder, and never when the user thinks better of it or
    // the window goes.
    virtual void choose(QWidget *window, const Request &request,
                        std::function<void(const std::filesystem::path &)> handler) = 0;
};

// The desktop's own window for this, where it has one. New folders can be made in it.
class DesktopFolderChooser : public FolderChooser {
public:
    void choose(QWidget *window, const Request &request,
                std::function<void(const std::filesystem::path &)> handler) override;
};

} // namespace diary
