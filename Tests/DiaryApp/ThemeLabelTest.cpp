// SPDX-License-Identifier: MIT
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QAccessible>
#include <QEvent>
#include <QFontMetricsF>
#include <QImage>
#include <QPixmap>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace diary {
namespace {

ThemeLabel::Style plainStyle() {
    ThemeLabel::Style style;
    style.font = Theme::system(14);
    style.color = Theme::ink();
    return style;
}

ThemeLabel::Style wrappingStyle() {
    auto style = plainStyle();
    style.wraps = true;
    return style;
}

std::vector<QString> texts(const ThemeLabel &label) {
    std::vector<QString> result;
    for (const auto &line : label.lines())
        result.push_back(line.text.trimmed());
    return result;
}

// At a width, and as high as it asks for.
std::unique_ptr<ThemeLabel> shown(const QString &text, const ThemeLabel::Style &style, int width) {
    auto label = std::make_unique<ThemeLabel>(text, style);
    label->resize(width, label->heightForWidth(width));
    return label;
}

double lineHeight(const ThemeLabel::Style &style) {
    const QFontMetricsF metrics(style.font);
    return std::ceil(metrics.ascent()) + std::ceil(metrics.descent());
}

const QString pangram = QStringLiteral("The quick brown fox jumps over the lazy dog beside the river");

TEST(ThemeLabel, carriesTextFontColourAndKern) {
    const std::unique_ptr<ThemeLabel> label(
        themeLabel(QStringLiteral("On This Day"), Theme::mono(10.5), Theme::sectionHead(), 1.47));
    EXPECT_EQ(label->text(), QStringLiteral("On This Day"));
    EXPECT_EQ(label->textStyle().color, Theme::sectionHead());
    EXPECT_EQ(label->font().families(), Theme::mono(10.5).families());
    EXPECT_EQ(label->font().pixelSize(), 11);
    EXPECT_EQ(label->font().letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_NEAR(label->font().letterSpacing(), 1.47, 1 / 64.0);
}

TEST(ThemeLabel, carriesAKernOfZeroToo) {
    auto font = Theme::system(14);
    font.setLetterSpacing(QFont::PercentageSpacing, 150);
    const std::unique_ptr<ThemeLabel> label(themeLabel(QStringLiteral("a"), font, Qt::black, 0));
    EXPECT_EQ(label->font().letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_EQ(label->font().letterSpacing(), 0);
}

TEST(ThemeLabel, makesRoomForTheKernBesideEveryCharacter) {
    const auto text = QStringLiteral("0123456789");
    const std::unique_ptr<ThemeLabel> tight(themeLabel(text, Theme::mono(12), Qt::black, 0));
    const std::unique_ptr<ThemeLabel> wide(themeLabel(text, Theme::mono(12), Qt::black, 2));
    EXPECT_NEAR(wide->sizeHint().width() - tight->sizeHint().width(), 20, 1);
}

TEST(ThemeLabel, showsMarkupAsItStands) {
    ThemeLabel label(QStringLiteral("<b>fish</b> &amp; &chips"), plainStyle());
    label.resize(label.sizeHint());
    EXPECT_EQ(texts(label), std::vector{QStringLiteral("<b>fish</b> &amp; &chips")});
    EXPECT_EQ(label.textInteractionFlags(), Qt::NoTextInteraction);
}

TEST(ThemeLabel, isReadOutAsStaticText) {
    ThemeLabel label(QStringLiteral("a < b & c"), plainStyle());
    auto *accessible = QAccessible::queryAccessibleInterface(&label);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("a < b & c"));
    EXPECT_EQ(label.focusPolicy(), Qt::NoFocus);
}

TEST(ThemeLabel, keepsOneLineTogetherWithoutWrapping) {
    ThemeLabel label(pangram, plainStyle());
    EXPECT_FALSE(label.hasHeightForWidth());
    EXPECT_EQ(label.minimumSizeHint(), label.sizeHint());
    label.resize(40, 20);
    EXPECT_EQ(texts(label), std::vector{pangram});
}

TEST(ThemeLabel, isAsHighAsItsFontWhenEmpty) {
    ThemeLabel label(QString(), plainStyle());
    EXPECT_EQ(label.sizeHint(), QSize(0, static_cast<int>(lineHeight(plainStyle()))));
}

TEST(ThemeLabel, wrapsBetweenWordsAtItsWidth) {
    const auto label = shown(pangram, wrappingStyle(), 150);
    const auto lines = label->lines();
    ASSERT_GE(lines.size(), 3U);
    QString together;
    for (const auto &line : lines) {
        EXPECT_LE(line.rect.width(), 150);
        EXPECT_FALSE(line.text.startsWith(QLatin1Char(' ')));
        together += line.text;
    }
    EXPECT_EQ(together, pangram);
    EXPECT_EQ(label->height(), static_cast<int>(lines.size()) * lineHeight(wrappingStyle()));
}

TEST(ThemeLabel, breaksAWordThatIsWiderThanTheLabel) {
    const QString word(200, QLatin1Char('m'));
    const auto label = shown(word, wrappingStyle(), 100);
    const auto lines = label->lines();
    EXPECT_GT(lines.size(), 10U);
    QString together;
    for (const auto &line : lines) {
        EXPECT_LE(line.rect.width(), 100);
        together += line.text;
    }
    EXPECT_EQ(together, word);
}

TEST(ThemeLabel, growsInALayoutThatBecomesNarrower) {
    QWidget page;
    QVBoxLayout column(&page);
    column.setContentsMargins(0, 0, 0, 0);
    auto *label = new ThemeLabel(pangram, wrappingStyle());
    column.addWidget(label);
    column.addStretch();
    page.show();
    for (const int width : {300, 150, 80}) {
        page.resize(width, 600);
        EXPECT_EQ(label->size(), QSize(width, label->heightForWidth(width)));
    }
    EXPECT_GT(label->heightForWidth(80), label->heightForWidth(150));
}

TEST(ThemeLabel, asksForNewRoomWhenItsTextChanges) {
    ThemeLabel label(QStringLiteral("one"), wrappingStyle());
    const int before = label.heightForWidth(150);
    label.setText(pangram);
    EXPECT_GT(label.heightForWidth(150), before);
    label.setText(QStringLiteral("one"));
    EXPECT_EQ(label.heightForWidth(150), before);
}

TEST(ThemeLabel, spacesLinesAndParagraphs) {
    const auto text = pangram + QStringLiteral("\nSecond.\n\nFourth.");
    for (const double multiple : {1.0, 1.5}) {
        auto style = wrappingStyle();
        style.lineSpacing = 11;
        style.paragraphSpacing = 16;
        style.lineHeightMultiple = multiple;
        const auto label = shown(text, style, 200);
        const auto lines = label->lines();
        ASSERT_GE(lines.size(), 5U);
        const double natural = lineHeight(style);
        const double height = std::round(natural * multiple);
        const auto first = lines.size() - 3; // of the second paragraph
        double bottom = height;
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (index > 0)
                bottom += height + 11 + (index >= first ? 16 : 0);
            EXPECT_EQ(lines[index].rect.bottom(), bottom) << index;
            EXPECT_EQ(lines[index].rect.height(), natural) << index;
        }
        // No spacing below the last line.
        EXPECT_EQ(label->height(), bottom);
        EXPECT_EQ(texts(*label).back(), QStringLiteral("Fourth."));
        EXPECT_EQ(texts(*label)[first + 1], QString());
    }
}

TEST(ThemeLabel, makesAllLinesEquallyHigh) {
    auto style = wrappingStyle();
    style.font = Theme::serif(14.5);
    const auto label = shown(QStringLiteral("Latin\n日記を書く\nLatin"), style, 200);
    const auto lines = label->lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].rect.top() - lines[0].rect.top(), lines[2].rect.top() - lines[1].rect.top());
    EXPECT_EQ(lines[0].rect.height(), lines[1].rect.height());
}

TEST(ThemeLabel, beginsEachParagraphOnTheSideOfItsScript) {
    const auto label = shown(QStringLiteral("Left\nשלום"), wrappingStyle(), 200);
    const auto lines = label->lines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].rect.left(), 0);
    EXPECT_NEAR(lines[1].rect.right(), 200, 1);
    EXPECT_GT(lines[1].rect.left(), 100);
}

TEST(ThemeLabel, tellsWhereItsFirstLettersStand) {
    auto style = plainStyle();
    ThemeLabel label(QStringLiteral("x"), style);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.firstBaseline(), std::ceil(QFontMetricsF(style.font).ascent()));
    label.resize(label.width(), label.height() + 20);
    EXPECT_EQ(label.firstBaseline(), std::ceil(QFontMetricsF(style.font).ascent()) + 10);
}

// Gives its only child the height that this asks for.
class PageOfOneLabel : public QWidget {
public:
    ThemeLabel *label = nullptr;

protected:
    bool event(QEvent *event) override {
        if (event->type() == QEvent::LayoutRequest && label)
            label->resize(label->width(), label->heightForWidth(label->width()));
        return QWidget::event(event);
    }
};

TEST(ThemeLabel, tellsTheHeightOfALongTextWhenItIsKnown) {
    // The rest is longer than the beginning suggests.
    const auto text = QStringLiteral("x\n").repeated(10'000) + (pangram + QLatin1Char('\n')).repeated(500);
    PageOfOneLabel page;
    page.label = new ThemeLabel(text, wrappingStyle(), &page);
    page.label->setGeometry(0, 0, 150, 100);
    page.resize(150, 600);
    page.show();
    const double known = static_cast<double>(page.label->lines().size()) * lineHeight(wrappingStyle());
    EXPECT_LT(page.label->heightForWidth(150), known);
    EXPECT_TRUE(QTest::qWaitFor([&] { return page.label->height() == known; }));
}

TEST(ThemeLabel, asksForTheHeightOfAllOfALongText) {
    ThemeLabel label((pangram + QLatin1Char('\n')).repeated(2'000), wrappingStyle());
    EXPECT_EQ(label.sizeHint().height(), 2'001 * lineHeight(wrappingStyle()));
}

// How many pixels are nearer to the one colour than to white.
int inked(const QImage &image, const QColor &ink) {
    const auto distance = [](const QColor &one, const QColor &other) {
        return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
               std::abs(one.blue() - other.blue());
    };
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += distance(image.pixelColor(x, y), ink) < distance(image.pixelColor(x, y), Qt::white);
    }
    return count;
}

TEST(ThemeLabel, paintsItsLinesWhereItSaysTheyAre) {
    auto style = wrappingStyle();
    style.color = QColor(200, 0, 0);
    style.lineSpacing = 9;
    const auto label = shown(QStringLiteral("HHHH\nHHHH"), style, 150);
    QPixmap picture(label->size());
    picture.fill(Qt::white);
    label->render(&picture, {}, {}, {});
    const auto image = picture.toImage();
    const auto lines = label->lines();
    int within = 0;
    for (const auto &line : lines) {
        const int ink = inked(image.copy(line.rect.toAlignedRect()), style.color);
        EXPECT_GT(ink, 20);
        within += ink;
    }
    EXPECT_EQ(within, inked(image, style.color));

    label->setColor(QColor(0, 0, 200));
    picture.fill(Qt::white);
    label->render(&picture, {}, {}, {});
    const auto repainted = picture.toImage();
    EXPECT_GT(inked(repainted, QColor(0, 0, 200)), 20);
    EXPECT_EQ(repainted.pixelColor(lines[0].rect.topLeft().toPoint()), QColor(Qt::white));
}

} // namespace
} // namespace diary
