// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"

#include <DiaryApp/Text.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace diary {
namespace {

TEST(Text, writesATildeForTheHomeFolderAlone) {
    const testing::ScopedEnvironment home("HOME", "/home/anna");
    const struct {
        const char *path;
        const char *shown;
    } rows[] = {
        {"/home/anna", "~"},
        {"/home/anna/Documents/Diary", "~/Documents/Diary"},
        {"/home/anna/", "~"},
        {"/home/annabel/Diary", "/home/annabel/Diary"},
        {"/home", "/home"},
        {"/mnt/diary", "/mnt/diary"},
        {"relative/diary", "relative/diary"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(toUtf8(abbreviatingHome(row.path)), row.shown) << row.path;
}

TEST(Text, tellsWhatTheSystemSaysAndWhere) {
    const std::filesystem::filesystem_error error("save", "/v/03-14.md",
                                                  std::error_code(ENOSPC, std::system_category()));
    EXPECT_EQ(toUtf8(systemText(error)), "No space left on device\n/v/03-14.md");
}

} // namespace
} // namespace diary
