// SPDX-License-Identifier: MIT
#include <DiaryApp/SearchRowView.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace diary {
namespace {

using Model = SearchRowView::Model;

TEST(SearchRowLayout, setsTheSnippetBelowTheTitleInsideTheInsets) {
    struct Row {
        int width;
        QRect snippet;
    };
    for (const auto &row :
         std::vector<Row>{{432, {12, 28, 408, 36}}, {352, {12, 28, 328, 36}}, {20, {12, 28, 0, 36}}}) {
        const auto layout = layoutSearchRow({QSize(90, 14), 36}, row.width);
        EXPECT_EQ(layout.title, QRect(12, 10, 90, 14)) << row.width;
        EXPECT_EQ(layout.snippet, row.snippet) << row.width;
        EXPECT_EQ(layout.height, 74) << row.width;
    }
}

TEST(SearchRowModel, namesTheDayAndTheYear) {
    const auto model = Model::of({{3, 14}, 2024, "a walk"}, "walk");
    EXPECT_EQ(toUtf8(model.title), "03-14 · 2024");
    EXPECT_EQ(toUtf8(model.accessibleName), "03-14 2024 a walk");
    EXPECT_EQ(toUtf8(model.snippet), "a walk");
}

TEST(SearchRowModel, marksEveryMatchWhateverItsCaseAndComposition) {
    struct Row {
        std::string query;
        std::string snippet;
        std::vector<std::string> marked;
    };
    const std::vector<Row> rows = {
        {"rain", "Rain, rain and RAIN", {"Rain", "rain", "RAIN"}},
        {" \train ", "the rain", {"rain"}},
        {"caf\u00E9", "👩‍🚀 Cafe\u0301", {"Cafe\u0301"}},
        {"strasse", "die Straße", {"Straße"}},
        {"雨", "大雨", {"雨"}},
        {"snow", "the rain", {}},
    };
    for (const auto &row : rows) {
        const auto model = Model::of({{3, 14}, 2024, row.snippet}, row.query);
        std::vector<std::string> marked;
        for (const auto &mark : model.marks)
            marked.push_back(toUtf8(model.snippet.sliced(mark.start, mark.length)));
        EXPECT_EQ(marked, row.marked) << row.query;
    }
}

TEST(SearchRowModel, showsWhatWouldBreakTheLineAsBlanks) {
    const auto model = Model::of({{3, 14}, 2024, "one\u2028two\tthree\rfour"}, "three");
    EXPECT_EQ(toUtf8(model.snippet), "one two three four");
    EXPECT_EQ(model.marks, (std::vector<SearchRowView::Mark>{{8, 5}}));
}

class SearchRowViewTest : public ::testing::Test {
protected:
    void show(const std::string &snippet, const std::string &query, int width = 432) {
        row.update(Model::of({{3, 14}, 2024, snippet}, query), SearchRowView::Fonts::current());
        row.resize(width, row.layoutForWidth(width).height);
        row.show();
        row.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&row));
    }

    // Columns of the snippet in which the colour stands.
    std::vector<int> columnsWith(const QColor &color) {
        const QImage image = row.grab().toImage();
        const auto snippet = row.layoutForWidth(row.width()).snippet;
        std::vector<int> columns;
        for (int x = snippet.left(); x <= snippet.right(); ++x) {
            for (int y = snippet.top(); y <= snippet.bottom(); ++y) {
                if (image.pixelColor(x, y).rgb() == color.rgb()) {
                    columns.push_back(x);
                    break;
                }
            }
        }
        return columns;
    }

    SearchRowView row;
};

TEST_F(SearchRowViewTest, wrapsAtMostOnceAndShortensTheRest) {
    const std::string snippet =
        "we walked for hours through the garden and talked about letters until it was late";
    struct Row {
        int width;
        int lines;
        bool isShortened;
    };
    for (const auto &[width, lines, isShortened] :
         std::vector<Row>{{1200, 1, false}, {432, 2, false}, {200, 2, true}, {60, 2, true}}) {
        show(snippet, "late", width);
        EXPECT_EQ(row.snippetLineCount(), lines) << width;
        EXPECT_EQ(row.shownSnippet().endsWith(QStringLiteral("…")), isShortened) << width;
        EXPECT_EQ(row.shownSnippet() == toQString(snippet), !isShortened) << width;
    }
}

TEST_F(SearchRowViewTest, growsWithItsSnippet) {
    show("short", "x");
    const int oneLine = row.layoutForWidth(432).height;
    const int lineHeight = row.layoutForWidth(432).snippet.height();
    EXPECT_EQ(row.layoutForWidth(120).height, oneLine);
    show("a snippet that is long enough for two lines of a row of this width, as it should be", "x");
    EXPECT_EQ(row.layoutForWidth(432).height, oneLine + lineHeight);
    show("", "x");
    EXPECT_EQ(row.layoutForWidth(432).height, oneLine);
}

TEST_F(SearchRowViewTest, breaksAWordThatIsLongerThanTheRow) {
    show(std::string(200, 'm'), "m", 200);
    EXPECT_EQ(row.snippetLineCount(), 2);
    EXPECT_TRUE(row.shownSnippet().endsWith(QStringLiteral("…")));
}

TEST_F(SearchRowViewTest, paintsTheMatchOnAMark) {
    show("rain or sun", "rain");
    const auto columns = columnsWith(Theme::selectionBg());
    ASSERT_FALSE(columns.empty());
    EXPECT_EQ(columns.front(), SearchRowLayout::sideInset);
    EXPECT_LT(columns.back(), SearchRowLayout::sideInset + 50);
    show("sun only", "rain");
    EXPECT_TRUE(columnsWith(Theme::selectionBg()).empty());
}

TEST_F(SearchRowViewTest, marksNothingInWhatWasCutOff) {
    show("we walked for hours through the garden and talked about letters until late", "a", 120);
    const auto shown = row.shownSnippet();
    ASSERT_TRUE(shown.endsWith(QStringLiteral("…")));
    const auto marks = row.shownMarks();
    ASSERT_FALSE(marks.empty());
    EXPECT_LT(marks.size(), row.model().marks.size());
    for (const auto &mark : marks)
        EXPECT_EQ(shown.sliced(mark.start, mark.length).toLower(), QStringLiteral("a"));
}

TEST_F(SearchRowViewTest, setsATextThatReadsFromTheRightAgainstTheRight) {
    show("אמר שלום", "שלום");
    const auto columns = columnsWith(Theme::selectionBg());
    ASSERT_FALSE(columns.empty());
    EXPECT_GT(columns.front(), 300);
}

TEST_F(SearchRowViewTest, hasABackgroundWhileThePointerIsOverIt) {
    show("rain", "sun");
    const auto middle = [this] { return row.grab().toImage().pixelColor(row.width() / 2, 4).rgb(); };
    QCursor::setPos(row.mapToGlobal(QPoint(-20, -20)));
    QTest::mouseMove(&row, QPoint(30, 30));
    EXPECT_TRUE(QTest::qWaitFor([this] { return row.isHovered(); }));
    EXPECT_EQ(middle(), Theme::hoverBg().rgb());
    row.forgetPointer();
    EXPECT_NE(middle(), Theme::hoverBg().rgb());
}

TEST_F(SearchRowViewTest, showsThatItHasTheKeyboard) {
    show("rain", "sun");
    const auto edge = [this] { return row.grab().toImage().pixelColor(row.width() / 2, 0).rgb(); };
    row.clearFocus();
    EXPECT_NE(edge(), Theme::accent().rgb());
    row.setFocus();
    EXPECT_EQ(edge(), Theme::accent().rgb());
}

TEST_F(SearchRowViewTest, isAButtonThatCanBePressedByAName) {
    show("a walk", "walk");
    int clicks = 0;
    row.onClick = [&] { ++clicks; };
    auto *accessible = QAccessible::queryAccessibleInterface(&row);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(toUtf8(accessible->text(QAccessible::Name)), "03-14 2024 a walk");
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, 1);
}

} // namespace
} // namespace diary
