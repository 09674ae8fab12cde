// SPDX-License-Identifier: MIT
#include <DiaryKit/LineScanner.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace diary {
namespace {

struct Line {
    std::size_t begin = 0;
    std::string text;
    std::size_t next = 0;

    bool operator==(const Line &) const = default;
};

void PrintTo(const Line &line, std::ostream *out) {
    *out << line.begin << ".." << line.next << ' ' << ::testing::PrintToString(line.text);
}

// The text in memory that ends with its last byte, so that reading on is noticed.
class ExactCopy {
public:
    explicit ExactCopy(std::string_view text) : m_bytes(new char[text.size()]), m_size(text.size()) {
        std::copy(text.begin(), text.end(), m_bytes.get());
    }
    std::string_view view() const { return {m_bytes.get(), m_size}; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size;
};

std::vector<Line> candidatesFound(std::string_view text) {
    const ExactCopy copy(text);
    std::vector<Line> found;
    LineScanner scanner(copy.view());
    for (auto begin = scanner.nextCandidate(); begin != LineScanner::npos; begin = scanner.nextCandidate()) {
        Line line{begin, {}, 0};
        line.text = scanner.lineAt(begin, line.next);
        found.push_back(line);
    }
    EXPECT_EQ(scanner.nextCandidate(), LineScanner::npos);
    return found;
}

// Every line, cut byte by byte.
std::vector<Line> allLines(std::string_view text) {
    std::vector<Line> lines;
    Line line;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n' && (at == 0 || text[at - 1] != '\r')) {
            line.next = at + 1;
            lines.push_back(line);
            line = {at + 1, {}, 0};
        } else {
            line.text += text[at];
        }
    }
    if (line.begin < text.size()) {
        line.next = text.size();
        lines.push_back(line);
    }
    return lines;
}

std::vector<Line> candidates(std::string_view text) {
    auto lines = allLines(text);
    std::erase_if(lines, [](const Line &line) {
        const auto first = line.text.find_first_not_of(' ');
        return !line.text.starts_with('#') && (first == std::string::npos || line.text[first] != '`');
    });
    return lines;
}

using Lines = std::vector<Line>;

TEST(LineScanner, findsLinesThatBeginWithAHashOrWithABacktickAfterSpaces) {
    EXPECT_EQ(candidatesFound("# a\nb\n`c\n d\n  `e` ` #\n #\n\n#"),
              (Lines{{0, "# a", 4}, {6, "`c", 9}, {12, "  `e` ` #", 22}, {26, "#", 27}}));
}

TEST(LineScanner, findsNothingInATextWithoutSuchLines) {
    for (const std::string_view text : {"", "\n", "a", "a # b ` c", "\n\n\t#\n", "\r#"})
        EXPECT_EQ(candidatesFound(text), Lines{}) << text;
}

TEST(LineScanner, goesOverCarriageReturnsWithLineFeeds) {
    EXPECT_EQ(candidatesFound("# a\r\n# b\n# c\r\n"), (Lines{{0, "# a\r\n# b", 9}, {9, "# c\r\n", 14}}));
    EXPECT_EQ(candidatesFound("\r\n#\n#"), (Lines{{4, "#", 5}}));
    EXPECT_EQ(candidatesFound("a\r\r\n#"), Lines{});
    EXPECT_EQ(candidatesFound("a\r\n\n#"), (Lines{{4, "#", 5}}));
}

TEST(LineScanner, cutsTheLineAtAnyLineStart) {
    const std::string_view text = "a\n\nb\r\nc\nd";
    const LineScanner scanner(text);
    std::size_t next = 0;
    EXPECT_EQ(scanner.lineAt(0, next), "a");
    EXPECT_EQ(next, 2U);
    EXPECT_EQ(scanner.lineAt(2, next), "");
    EXPECT_EQ(next, 3U);
    EXPECT_EQ(scanner.lineAt(3, next), "b\r\nc");
    EXPECT_EQ(next, 8U);
    EXPECT_EQ(scanner.lineAt(8, next), "d");
    EXPECT_EQ(next, 9U);
    EXPECT_EQ(scanner.lineAt(9, next), "");
    EXPECT_EQ(next, 9U);
}

TEST(LineScanner, findsACandidateAtEveryOffsetOfALongText) {
    for (std::size_t size = 2; size <= 100; ++size) {
        for (std::size_t at = 0; at + 1 < size; ++at) {
            for (const char candidate : {'#', '`'}) {
                std::string text(size, 'a');
                text[at] = '\n';
                text[at + 1] = candidate;
                ASSERT_EQ(candidatesFound(text), (Lines{{at + 1, text.substr(at + 1), size}}))
                    << size << ' ' << at;
            }
        }
    }
}

TEST(LineScanner, agreesWithCuttingRandomTextsByteByByte) {
    static constexpr std::array<std::string_view, 10> alphabet = {"\n", "\r", "#", "`", " ",
                                                                  "\t", "2",  "0", "a", "é"};
    std::mt19937 random(20240314);
    for (std::size_t length = 0; length <= 200; ++length) {
        for (int round = 0; round < 100; ++round) {
            // From dense to sparse: the rarer the breaks, the longer the stretches passed at once.
            const auto plainShare = random() % 8;
            std::string text;
            while (text.size() < length)
                text += random() % 8 < plainShare ? "a" : alphabet.at(random() % alphabet.size());
            ASSERT_EQ(candidatesFound(text), candidates(text)) << ::testing::PrintToString(text);

            const ExactCopy copy(text);
            const LineScanner scanner(copy.view());
            for (const auto &line : allLines(text)) {
                std::size_t next = 0;
                ASSERT_EQ(scanner.lineAt(line.begin, next), line.text) << ::testing::PrintToString(text);
                ASSERT_EQ(next, line.next) << ::testing::PrintToString(text);
            }
        }
    }
}

} // namespace
} // namespace diary
