// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/MarkdownScanner.h>

#include <QString>

#include <vector>

namespace diary::testing {

// How every character of a text should look, by running the ten regular expressions over the whole text, one
// after the other, each styling its matches over what the ones before it did. Slow, and easy to believe.
std::vector<MarkdownScanner::Look> referenceLooks(const QString &text);

} // namespace diary::testing
