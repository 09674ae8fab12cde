// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <string_view>
#include <vector>

namespace diary {

// One year's section of a day file, with what the window tells about it.
struct YearEntry {
    std::int64_t year = 0;
    QString body;            // trimmed of blanks around it
    qsizetype charCount = 0; // of the body
    QString excerpt;         // of the body; empty when that is blank

    bool operator==(const YearEntry &) const = default;
};

// The sections of a day file, in its order. Two sections of one year are two entries.
std::vector<YearEntry> yearEntries(std::string_view dayFile);

// How long a text is as people count: its characters, as they see them, that are not whitespace.
qsizetype charCount(QStringView text);

// The beginning of a text in one line: 46 characters and an ellipsis when it is longer, with a space for
// every line break.
QString excerpt(QStringView text);

} // namespace diary
