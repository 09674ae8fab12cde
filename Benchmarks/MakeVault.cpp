// SPDX-License-Identifier: MIT
//
// Writes a large diary for measuring: make-vault FOLDER [YEARS [CHARACTERS]]
// 366 day files with a section for each year, in seven languages by turns, the same text at every run.

#include <DiaryKit/DiaryDay.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <string_view>

namespace {

// Words that a diary is made of; sentences are drawn from one row at a time.
constexpr std::array<std::array<std::string_view, 16>, 7> languages{{
    {"the ", "morning ", "walk ", "with ", "coffee ", "and ", "rain ", "on ", "garden ", "letters ", "from ",
     "Anna ", "we ", "talked ", "until ", "late "},
    {"der ", "Morgen ", "Straße ", "mit ", "Kaffee ", "und ", "Regen ", "über ", "Garten ", "Briefe ", "von ",
     "Jürgen ", "wir ", "sprachen ", "größer ", "später "},
    {"le ", "matin ", "été ", "avec ", "café ", "et ", "pluie ", "sur ", "jardin ", "lettres ", "de ", "Zoé ",
     "nous ", "parlions ", "déjà ", "tard "},
    {"el ", "mañana ", "paseo ", "con ", "café ", "y ", "lluvia ", "sobre ", "jardín ", "cartas ", "de ",
     "Íñigo ", "nosotros ", "hablamos ", "hasta ", "noche "},
    {"утро ", "прогулка ", "с ", "кофе ", "и ", "дождь ", "над ", "садом ", "письма ", "от ", "Анны ", "мы ",
     "говорили ", "до ", "поздней ", "ночи "},
    {"早上", "散步", "咖啡", "和", "下雨", "在", "花园", "信件", "来自", "安娜", "我们", "谈到", "很晚",
     "今天", "天气", "，"},
    {"朝の", "散歩", "コーヒー", "と", "雨が", "庭に", "手紙", "から", "アンナ", "私たち", "話した",
     "遅くまで", "今日は", "天気", "よかった", "。"},
}};

std::string entry(std::mt19937 &random, std::size_t characters) {
    const auto &words = languages.at(random() % languages.size());
    std::string text;
    std::size_t count = 0;
    while (count < characters) {
        std::string sentence;
        const auto length = 6 + random() % 12;
        for (std::size_t word = 0; word < length; ++word)
            sentence += words.at(random() % words.size());
        for (const char c : sentence)
            count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
        text += sentence;
        text += random() % 8 == 0 ? "\n\n" : ". ";
    }
    return text;
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 2) {
        std::cerr << "usage: make-vault FOLDER [YEARS [CHARACTERS]]\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const int years = argc > 2 ? std::atoi(argv[2]) : 60;
    const std::size_t characters = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 2000;
    std::filesystem::create_directories(folder);
    std::mt19937 random(20260314);
    diary::MonthDay day{1, 1};
    for (std::int64_t index = 0; index < diary::MonthDay::cycleLength; ++index, day = day.advanced(1)) {
        std::ofstream file(folder / day.fileName(), std::ios::binary);
        file << "# " << day.headerTitle() << "\n";
        for (int year = 2026 - years + 1; year <= 2026; ++year)
            file << "\n## " << year << "\n\n" << entry(random, characters) << "\n";
        // One word that stands in a single place of the whole diary.
        if (index == 200)
            file << "\nThe zephyr quintet rehearsed.\n";
        if (!file.flush()) {
            std::cerr << "make-vault: cannot write " << day.fileName() << "\n";
            return 1;
        }
    }
    return 0;
}
