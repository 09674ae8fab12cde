// SPDX-License-Identifier: MIT
//
// A short run of the fuzzer's checks over made-up day files, the same at every start. A violation ends the
// process with the texts that show it.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace diary {
namespace {

constexpr std::array<std::string_view, 40> pieces = {"## 2019\n",
                                                     "## 2020\n",
                                                     "## 2021\n",
                                                     "## 2022\n\n",
                                                     "\n## 2023\n\n",
                                                     "## 2024",
                                                     "## 2020 \t\n",
                                                     "##\t2021\n",
                                                     "## 2020\r",
                                                     "## 2020\r\n",
                                                     " ## 2022\n",
                                                     "\t## 2023\n",
                                                     "## 20245\n",
                                                     "```\n",
                                                     "```",
                                                     "   ```c\n",
                                                     "\t```\n",
                                                     "```\u0301\n",
                                                     "\r\n",
                                                     "\r",
                                                     "\n",
                                                     "\n\n",
                                                     " ",
                                                     "\t",
                                                     "\u00A0",
                                                     "\u2028",
                                                     "# 03-14\n",
                                                     "# 03-14\n\n",
                                                     "word",
                                                     "two words",
                                                     "Grüße\n",
                                                     "春の日\n",
                                                     "e\u0301",
                                                     "\u0301",
                                                     "#",
                                                     "## ",
                                                     "`",
                                                     "a\n\nb\n\nc",
                                                     "\xC3",
                                                     "a long paragraph that says little\n"};

class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    std::size_t upTo(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(m_random);
    }

    std::vector<std::string_view> text(std::size_t mostPieces) {
        std::vector<std::string_view> chosen(upTo(mostPieces));
        for (auto &piece : chosen)
            piece = anyPiece();
        return chosen;
    }

    // What an editor, a sync tool or a crash may make of it.
    std::vector<std::string_view> changed(std::vector<std::string_view> text) {
        for (auto changes = upTo(3); changes > 0; --changes) {
            const auto place = text.begin() + static_cast<std::ptrdiff_t>(upTo(text.size()));
            if (place != text.end() && upTo(2) == 0)
                text.erase(place);
            else
                text.insert(place, anyPiece());
        }
        if (upTo(9) == 0)
            text.resize(upTo(text.size()));
        return text;
    }

private:
    std::string_view anyPiece() { return pieces[upTo(pieces.size() - 1)]; }

    std::mt19937 m_random;
};

std::string joined(const std::vector<std::string_view> &text) {
    std::string result;
    for (const auto piece : text)
        result += piece;
    return result;
}

TEST(DayFileFuzz, findsNothingInMadeUpTexts) {
    constexpr int rounds = 3000;
    Generator generator(20240314);
    for (int round = 0; round < rounds; ++round) {
        const auto base = generator.text(14);
        std::string input(1, static_cast<char>(generator.upTo(7)));
        input += joined(generator.text(6));
        for (const auto &text : {base, generator.changed(base), generator.changed(base)})
            input += "\xFF" + joined(text);
        const std::vector<std::uint8_t> bytes(input.begin(), input.end());
        ASSERT_EQ(LLVMFuzzerTestOneInput(bytes.data(), bytes.size()), 0);
    }
}

} // namespace
} // namespace diary
