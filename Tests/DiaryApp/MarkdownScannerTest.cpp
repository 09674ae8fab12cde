// SPDX-License-Identifier: MIT
#include "Support/ReferenceMarkdown.h"

#include <DiaryApp/MarkdownScanner.h>

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace diary {
namespace {

using MarkdownScanner::Face;
using MarkdownScanner::Ink;
using MarkdownScanner::Look;
using MarkdownScanner::State;

// One look for each UTF-16 unit; line feeds are plain.
std::vector<Look> scannedLooks(const QString &text) {
    std::vector<Look> looks;
    auto state = State::Text;
    const auto lines = text.split(QLatin1Char('\n'));
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (index > 0)
            looks.emplace_back();
        const auto line = MarkdownScanner::scan(lines[index], state);
        state = line.state;
        for (const auto &run : line.runs)
            looks.insert(looks.end(), static_cast<std::size_t>(run.length), run.look);
    }
    return looks;
}

// One letter for each UTF-16 unit, so that a row of a test reads like the text above it.
template <typename Letter>
std::string drawn(const QString &text, Letter letter) {
    std::string result;
    const auto looks = scannedLooks(text);
    for (qsizetype index = 0; index < text.size(); ++index)
        result += text[index] == QLatin1Char('\n') ? '\n' : letter(looks.at(static_cast<std::size_t>(index)));
    return result;
}

std::string faces(const QString &text) {
    return drawn(text, [](const Look &look) { return ".bim123456"[static_cast<int>(look.face)]; });
}

// Accent, source, muted, faint.
std::string inks(const QString &text) {
    return drawn(text, [](const Look &look) { return ".asmf"[static_cast<int>(look.ink)]; });
}

std::string tints(const QString &text) {
    return drawn(text, [](const Look &look) { return look.isTinted ? 't' : '.'; });
}

std::string strikes(const QString &text) {
    return drawn(text, [](const Look &look) { return look.isStruck ? 's' : '.'; });
}

struct Row {
    const char16_t *text;
    std::string faces;
    std::string inks;
};

void expect(const std::vector<Row> &rows) {
    for (const auto &row : rows) {
        const auto text = QString::fromUtf16(row.text);
        EXPECT_EQ(faces(text), row.faces) << text.toStdString();
        EXPECT_EQ(inks(text), row.inks) << text.toStdString();
    }
}

TEST(MarkdownScanner, leavesPlainTextAlone) {
    expect({
        {u"", "", ""},
        {u"Plain text, 1999.", ".................", "................."},
        {u"2 * 3", ".....", "....."},
        {u"a_b #c >d ~e~", ".............", "............."},
    });
    EXPECT_TRUE(MarkdownScanner::scan(u"", State::Text).runs.empty());
}

TEST(MarkdownScanner, mutesQuotes) {
    expect({
        {u"> said", "......", "mmmmmm"},
        {u">", ".", "m"},
        {u" > no", ".....", "....."},
        {u"> *so*", "..iiii", "mmfmmf"},
    });
}

TEST(MarkdownScanner, mutesListMarksUpToTheSpace) {
    expect({
        {u"- one", ".....", "mm..."},
        {u"* one", ".....", "mm..."},
        {u"+ one", ".....", "mm..."},
        {u"12. one", ".......", "mmmm..."},
        {u" \t- one", ".......", "mmmm..."},
        {u"-one", "....", "...."},
        {u"12 one", "......", "......"},
        {u"12.one", "......", "......"},
        {u".", ".", "."},
        {u"-", ".", "."},
        {u"1.", "..", ".."},
        {u"   ", "...", "..."},
        {u"a - b", ".....", "....."},
        {u"- - one", ".......", "mm....."},
    });
}

TEST(MarkdownScanner, countsTheDigitsOfEveryScript) {
    expect({
        {u"\u0663. x", "....", "mmm."},         // Arabic-Indic
        {u"\uFF11\uFF12. x", ".....", "mmmm."}, // full width
        {u"\U0001D7CE. x", ".....", "mmmm."},   // mathematical
        {u"\u2163. x", "....", "...."},         // a Roman numeral is a letter
        {u"\u4E00. x", "....", "...."},         // a Han number too
        {u"## \u0662\u0660\u0662\u0664", "2222222", "aaaaaaa"},
    });
}

TEST(MarkdownScanner, makesHeadingsOfOneToSixMarksAndASpace) {
    expect({
        {u"# H", "111", "f.."},
        {u"## H", "2222", "ff.."},
        {u"### H", "33333", "fff.."},
        {u"#### H", "444444", "ffff.."},
        {u"##### H", "5555555", "fffff.."},
        {u"###### H", "66666666", "ffffff.."},
        {u"####### H", ".........", "........."},
        {u"# ", "11", "f."},
        {u"#", ".", "."},
        {u"#H", "..", ".."},
        {u"#\tH", "...", "..."},
        {u" # H", "....", "...."},
    });
}

TEST(MarkdownScanner, accentsAYearHeadingWithItsMarks) {
    expect({
        {u"## 2024", "2222222", "aaaaaaa"},
        {u"##   2024 \t ", "222222222222", "aaaaaaaaaaaa"},
        {u"## 2024 notes", "2222222222222", "ff..........."},
        {u"## 20245", "22222222", "ff......"},
        {u"## 202", "222222", "ff...."},
        {u"##\t2024", ".......", "......."},
        {u"## \t2024", "22222222", "ff......"},
        {u"# 2024", "111111", "f....."},
        {u"### 2024", "33333333", "fff....."},
        {u"##2024", "......", "......"},
    });
}

TEST(MarkdownScanner, emboldensBetweenDoubledMarks) {
    expect({
        {u"**b**", "bbbbb", "ff.ff"},
        {u"__b__", "bbbbb", "ff.ff"},
        {u"x**b c**y", ".bbbbbbb.", ".ff...ff."},
        {u"**a** **b**", "bbbbb.bbbbb", "ff.ff.ff.ff"},
        {u"a****", ".....", "....."},
        {u"**", "..", ".."},
        {u"**a*", "....", "...."},
        {u"**a", "...", "..."},
        {u"**a__", ".....", "....."},
        {u"***a***", ".bbbbb.", ".ff.ff."},
        {u"**a\nb**", "...\n...", "...\n..."},
        {u"** a **", "bbbbbbb", "ff...ff"},
        {u"__a**b__", "bbbbbbbb", "ff....ff"},
    });
}

TEST(MarkdownScanner, slantsBetweenSingleMarks) {
    expect({
        {u"*i*", "iii", "f.f"},
        {u"_i_", "iii", "f.f"},
        {u"(*i j*)", ".iiiii.", ".f...f."},
        {u"* i *", "iiiii", "fm..f"}, // the space of the list mark keeps its colour
        {u"**", "..", ".."},
        {u"*i", "..", ".."},
        {u"*i_", "...", "..."},
        {u"*a*b*", ".....", "....."},
        {u"x*i*", "....", "...."},
        {u"*i*x", "....", "...."},
        {u"*a_b*", "iiiii", "f...f"},
        {u"2 * 3 * 4", "..iiiii..", "..f...f.."},
        {u"_a*b_", "iiiii", "f...f"},
    });
}

TEST(MarkdownScanner, doesNotSlantWithinWords) {
    expect({
        {u"snake_case_name", "...............", "..............."},
        {u"_snake_case", "...........", "..........."},
        {u"1_a_ _a_1", ".........", "........."},
        {u"\u00E9_a_ _a_\u00E9", ".........", "........."},
        {u"\u65E5_a_ _a_\u672C", ".........", "........."},
        {u"\U00020000_a_ _a_\U00020000", "...........", "..........."}, // a Han letter of two units
        {u"\u0301_a_ _a_\u0301", ".........", "........."},             // a combining mark
        {u"\u200D_a_ _a_\u200C", ".........", "........."},             // joiners
        {u"\u24B6_a_ _a_\u24B6", ".........", "........."},             // a letter in a circle
        {u"\u203F_a_ _a_\u203F", ".........", "........."},             // a connector
        {u"\u2014_a_\u2014", ".iii.", ".f.f."},                         // a dash is none of these
        {u"\U0001F600_a_\U0001F600", "..iii..", "..f.f.."},
        {u"\xD800_a_\xDC00", ".iii.", ".f.f."}, // halves of a pair
    });
}

TEST(MarkdownScanner, neverSlantsWhatIsBold) {
    expect({
        {u"**bold**", "bbbbbbbb", "ff....ff"},
        {u"a **b** c *d* e", "..bbbbb...iii..", "..ff.ff...f.f.."},
    });
}

TEST(MarkdownScanner, tintsCode) {
    expect({
        {u"a `b` c", "..mmm..", "..faf.."},
        {u"``", "..", ".."},
        {u"``a``", ".mmm.", ".faf."},
        {u"`a", "..", ".."},
        {u"`a\nb`", "..\n..", "..\n.."},
        {u"`*a*`", "mmmmm", "faaaf"},
        {u"**`a`**", "bbmmmbb", "fffafff"},
    });
    EXPECT_EQ(tints(QStringLiteral("a `b` c")), "..ttt..");
}

TEST(MarkdownScanner, strikesOut) {
    expect({
        {u"~~a~~", ".....", "ffmff"},
        {u"~~~~", "....", "...."},
        {u"~a~", "...", "..."},
        {u"~~a~", "....", "...."},
        {u"~~~a~~~", ".......", ".ffmff."},
        {u"~~`a`~~", "..mmm..", "ffmmmff"},
    });
    EXPECT_EQ(strikes(QStringLiteral("x ~~a~~ y")), "..sssss..");
    EXPECT_EQ(tints(QStringLiteral("~~`a`~~")), "..ttt..");
}

TEST(MarkdownScanner, dimsRules) {
    expect({
        {u"---", "...", "fff"},
        {u"***", "...", "fff"},
        {u"___", "...", "fff"},
        {u"   -----  ", "..........", "ffffffffff"},
        {u"    ---", ".......", "......."},
        {u"--", "..", ".."},
        {u"--*", "...", "..."},
        {u"---\t", "....", "...."},
        {u"---x", "....", "...."},
        {u"- - -", ".....", "mm..."},
    });
}

TEST(MarkdownScanner, accentsLinksAndDimsTheirTargets) {
    expect({
        {u"see [a](b) c", "............", ".....a..f..."},
        {u"[](b)", ".....", "...f."},
        {u"[a]()", ".....", "....."},
        {u"[a] (b)", ".......", "......."},
        {u"[a](b", ".....", "....."},
        {u"[a(b)", ".....", "....."},
        {u"[[a](b)", ".......", ".aa..f."},
        {u"[a]](b)", ".......", "......."},
        {u"[a](b)[c](d)", "............", ".a..f..a..f."},
        {u"[a](b(c))", ".........", ".a..fff.."},
        {u"[a](\nb)", "....\n..", "....\n.."},
        {u"[]([a](b)", ".........", "...fffff."},
        {u"[a]()[c](d)", "...........", "......a..f."},
        {u"[a]()x [c](d)", ".............", "........a..f."},
    });
}

TEST(MarkdownScanner, keepsTheFaceOfALinksText) {
    expect({
        {u"[*a*](b)", ".iii....", ".aaa..f."},
        {u"[`a`](b)", ".mmm....", ".aaa..f."},
        {u"# [a](b)", "11111111", "f..a..f."},
    });
}

TEST(MarkdownScanner, replacesTheFaceOfAHeadingByThatOfEmphasis) {
    expect({
        {u"# a **b** *c* `d`", "1111bbbbb1iii1mmm", "f...ff.ff.f.f.faf"},
    });
}

TEST(MarkdownScanner, showsFencedBlocksAsCode) {
    expect({
        {u"a\n```\n*x* # [y](z)\n```\n*b*", ".\nmmm\nmmmmmmmmmmmm\nmmm\niii",
         ".\nfff\nssssssssssss\nfff\nf.f"},
        {u" \t```cpp \nx\n  ``` more\n# y", "mmmmmmmmm\nm\nmmmmmmmmmm\n111", "fffffffff\ns\nffffffffff\nf.."},
        {u"``\n*x*", "..\niii", "..\nf.f"},
        {u"x ```\n*x*", ".....\niii", ".....\nf.f"},
        {u"````\nx\n```\n*y*", "mmmm\nm\nmmm\niii", "ffff\ns\nfff\nf.f"},
        {u"```\n```\n```\n*x*", "mmm\nmmm\nmmm\nmmm", "fff\nfff\nfff\nsss"},
        {u"```a```\nx", "mmmmmmm\nm", "fffffff\ns"},
    });
    EXPECT_EQ(tints(QStringLiteral("a\n```\nb\n```\nc")), ".\nttt\nt\nttt\n.");
}

TEST(MarkdownScanner, runsAnUnclosedFenceToTheEnd) {
    expect({{u"```\n**a**\n\n# b\n> `c`", "mmm\nmmmmm\n\nmmm\nmmmmm", "fff\nsssss\n\nsss\nsssss"}});
}

TEST(MarkdownScanner, carriesOnlyAnOpenFenceToTheNextLine) {
    const struct {
        const char16_t *line;
        State before;
        State behind;
    } rows[] = {
        {u"text", State::Text, State::Text},
        {u"text", State::Fenced, State::Fenced},
        {u"", State::Text, State::Text},
        {u"", State::Fenced, State::Fenced},
        {u"```", State::Text, State::Fenced},
        {u"```", State::Fenced, State::Text},
        {u"  ```sh", State::Text, State::Fenced},
        {u"``", State::Text, State::Text},
        {u"a```", State::Fenced, State::Fenced},
        {u"**open", State::Text, State::Text},
        {u"```\u2028```", State::Text, State::Text},
        {u"a\u2028```", State::Text, State::Fenced},
    };
    for (const auto &[line, before, behind] : rows)
        EXPECT_EQ(MarkdownScanner::scan(line, before).state, behind)
            << QString::fromUtf16(line).toStdString();
}

TEST(MarkdownScanner, beginsLinesAfterEveryLineEnd) {
    for (const char16_t end : {u'\r', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'}) {
        const auto text = QStringLiteral("# a?> b?- c").replace(QLatin1Char('?'), QChar(end));
        EXPECT_EQ(faces(text), "111........") << static_cast<int>(end);
        EXPECT_EQ(inks(text), "f...mmm.mm.") << static_cast<int>(end);
    }
}

TEST(MarkdownScanner, emphasizesAcrossEveryLineEndButTheLineFeed) {
    for (const char16_t end : {u'\r', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'}) {
        const auto text = QStringLiteral("**a?b** [a?b](c?d)").replace(QLatin1Char('?'), QChar(end));
        EXPECT_EQ(faces(text), "bbbbbbb...........") << static_cast<int>(end);
        EXPECT_EQ(inks(text), "ff...ff..aaa..fff.") << static_cast<int>(end);
    }
}

TEST(MarkdownScanner, opensFencesAfterLineSeparatorsButNotAfterFormFeeds) {
    for (const char16_t end : {u'\r', u'\u0085', u'\u2028', u'\u2029'}) {
        const auto text = QStringLiteral("a?```?*b*?```?*c*").replace(QLatin1Char('?'), QChar(end));
        EXPECT_EQ(faces(text), "..mmmmmmmmmmmmiii") << static_cast<int>(end);
        EXPECT_EQ(inks(text), "..fffsssssfffsf.f") << static_cast<int>(end);
    }
    for (const char16_t end : {u'\v', u'\f'}) {
        const auto text = QStringLiteral("a?```?*b*").replace(QLatin1Char('?'), QChar(end));
        EXPECT_EQ(faces(text), "......iii") << static_cast<int>(end);
    }
}

TEST(MarkdownScanner, passesOverEmphasisThatReachesIntoAFence) {
    expect({{u"**a\u2028```\u2028b**", "....mmmmmmm", "....fffssss"},
            {u"**a**\u2028```", "bbbbb.mmm", "ff.ff.fff"}});
}

TEST(MarkdownScanner, givesRunsWithoutGapsThatDiffer) {
    const auto line = MarkdownScanner::scan(u"a **b** *c*", State::Text);
    ASSERT_EQ(line.runs.size(), 8U);
    qsizetype at = 0;
    for (std::size_t index = 0; index < line.runs.size(); ++index) {
        EXPECT_EQ(line.runs[index].start, at);
        at += line.runs[index].length;
        if (index > 0) {
            EXPECT_NE(line.runs[index].look, line.runs[index - 1].look);
        }
    }
    EXPECT_EQ(at, 11);
}

// Compares with the whole-text reference, character by character; says where they part.
::testing::AssertionResult agreesWithTheReference(const QString &text) {
    const auto expected = testing::referenceLooks(text);
    const auto actual = scannedLooks(text);
    if (expected.size() != actual.size())
        return ::testing::AssertionFailure() << actual.size() << " instead of " << expected.size();
    for (std::size_t index = 0; index < expected.size(); ++index) {
        if (text[static_cast<qsizetype>(index)] == QLatin1Char('\n') || expected[index] == actual[index])
            continue;
        std::string units;
        for (const QChar unit : text)
            units += unit.unicode() >= 0x20 && unit.unicode() < 0x7F
                         ? std::string(1, unit.toLatin1())
                         : "\\u" + QString::number(unit.unicode(), 16).toStdString() + " ";
        const auto print = [](const Look &look) {
            return "face " + std::to_string(static_cast<int>(look.face)) + " ink " +
                   std::to_string(static_cast<int>(look.ink)) + (look.isTinted ? " tinted" : "") +
                   (look.isStruck ? " struck" : "");
        };
        return ::testing::AssertionFailure()
               << "at " << index << " of " << units << ": " << print(actual[index]) << " instead of "
               << print(expected[index]);
    }
    return ::testing::AssertionSuccess();
}

// All texts of these characters up to a length.
void expectAgreementOnAll(const QString &alphabet, qsizetype longest) {
    QStringList texts = {QString()};
    for (qsizetype length = 1; length <= longest; ++length) {
        QStringList longer;
        for (const auto &text : texts) {
            for (const QChar character : alphabet) {
                longer.append(text + character);
                ASSERT_TRUE(agreesWithTheReference(longer.last()));
            }
        }
        texts = longer;
    }
}

TEST(MarkdownScanner, agreesWithTheReferenceOnEveryShortText) {
    expectAgreementOnAll(QStringLiteral("*_a "), 6);
    expectAgreementOnAll(QStringLiteral("*a\n\u2028"), 6);
    expectAgreementOnAll(QStringLiteral("[]()a"), 6);
    expectAgreementOnAll(QStringLiteral("`~a\n"), 6);
    expectAgreementOnAll(QStringLiteral("# 1-."), 5);
}

TEST(MarkdownScanner, agreesWithTheReferenceOnRandomTexts) {
    QStringList pieces;
    for (const char16_t *piece :
         {u"*",      u"*",          u"**",        u"_",      u"_",          u"__",      u"`",      u"```",
          u"\n```",  u"\n```\n",    u"~",         u"~~",     u"[",          u"]",       u"](",     u"(",
          u")",      u"#",          u"\n# ",      u"\n## ",  u"\n## 2024",  u"\n>",     u"\n- ",   u"\n1. ",
          u"---",    u"\n***\n",    u"\n   ___ ", u"+",      u".",          u" ",       u" ",      u"\t",
          u"\n",     u"\n",         u"\r",        u"\r\n",   u"\v",         u"\f",      u"\u0085", u"\u2028",
          u"\u2029", u"\u2028```",  u"\r```\r",   u"a",      u"b",          u"7",       u"2024",   u"\u0663",
          u"\uFF11", u"\U0001D7D8", u"\u65E5",    u"\u8A18", u"\U00020BB7", u"e\u0301", u"\u0301", u"\u200D",
          u"\u200C", u"\u00A0",     u"\u3000",    u"\u24B6", u"\U0001F170", u"\u2160",  u"\u203F", u"\u00B2",
          u"\u05D0", u"\U0001F600", u"\xD83D",    u"\xDE00", u"\uFFFC"})
        pieces.append(QString::fromUtf16(piece));
    // NOLINTNEXTLINE(bugprone-random-generator-seed): the same texts in every run.
    std::mt19937 random(20240229);
    const auto below = [&](qsizetype limit) {
        return std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    for (int round = 0; round < 20'000; ++round) {
        // Few different pieces in each text, so that they meet.
        QStringList chosen;
        for (qsizetype count = 2 + below(8); count > 0; --count)
            chosen.append(pieces[below(pieces.size())]);
        QString text;
        for (qsizetype count = below(40); count > 0; --count)
            text += below(8) == 0 ? pieces[below(pieces.size())] : chosen[below(chosen.size())];
        ASSERT_TRUE(agreesWithTheReference(text)) << "round " << round;
    }
}

TEST(MarkdownScanner, takesTimeInProportionToTheLine) {
    const struct {
        const char16_t *repeated;
        const char16_t *last;
    } rows[] = {
        {u"[", u""},         {u"[", u"]"},
        {u"[a](", u""},      {u"[](", u")"},
        {u"[]()", u""},      {u"*", u""},
        {u"**a", u""},       {u"*a_b", u""},
        {u" *a", u"x*"},     {u"a*", u""},
        {u"_*", u""},        {u"`", u""},
        {u"`a` ", u""},      {u"~~a", u""},
        {u"~", u"a"},        {u"#", u""},
        {u"1", u"."},        {u"-", u"x"},
        {u"> ", u""},        {u"\u2028", u"```"},
        {u"\u2028```", u""}, {u"**a\u2028```\u2028**", u""},
        {u" ", u""},
    };
    for (const auto &[repeated, last] : rows) {
        const auto piece = QString::fromUtf16(repeated);
        const auto line = piece.repeated(1'000'000 / piece.size()) + QString::fromUtf16(last);
        for (const auto before : {State::Text, State::Fenced}) {
            const auto start = std::chrono::steady_clock::now();
            const auto result = MarkdownScanner::scan(line, before);
            // At most 30 ms, and some times that with the sanitizers. Were it quadratic: minutes.
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
                << piece.toStdString();
            ASSERT_FALSE(result.runs.empty());
            EXPECT_EQ(result.runs.back().start + result.runs.back().length, line.size());
        }
    }
}

} // namespace
} // namespace diary
