// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/FolderChooser.h>

#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

namespace diary::testing {

// Remembers what it was asked for; the test picks.
class FakeFolderChooser : public FolderChooser {
public:
    void choose(QWidget *, const Request &request,
                std::function<void(const std::filesystem::path &)> handler) override {
        requests.push_back(request);
        pick = std::move(handler);
    }

    std::vector<Request> requests;
    std::function<void(const std::filesystem::path &)> pick;
};

} // namespace diary::testing
