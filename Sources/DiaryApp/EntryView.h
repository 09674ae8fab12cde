// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <optional>
#include <variant>

class QScrollArea;

namespace diary {

class ChromeButton;
class GrowingTextView;
class PhotoGalleryView;
class RuleView;
class ThemeLabel;

// What the texts of the page take. A height that depends on the width is asked for; what is not shown is left
// out.
struct EntryPageMetrics {
    using HeightForWidth = std::function<int(int width)>;

    QSize fileName;
    int fileNameBaseline = 0;
    QSize ordinal;
    int ordinalBaseline = 0;

    HeightForWidth source; // with it, nothing below counts

    QSize dayKey;
    int dayKeyBaseline = 0;
    QSize weekday;
    int weekdayBaseline = 0;
    QSize previousDay;
    QSize nextDay;
    int subtitleHeight = 0;
    QSize mark;
    QSize ago;
    HeightForWidth content;
    HeightForWidth gallery; // of the whole column; 0 without photos
    HeightForWidth gapLine;
};

// Where everything stands on the page: the column within the page, the rest within the column.
struct EntryPageLayout {
    static constexpr int widestColumn = 668;
    static constexpr int sideMargin = 56; // at least
    static constexpr int gutter = 76;     // the year mark ends here
    static constexpr int contentInset = 100;

    QRect column;
    int pageHeight = 0;

    QRect fileName;
    QRect ordinal;
    QRect rule;
    QRect source;
    QRect dayKey;
    QRect weekday;
    QRect previousDay;
    QRect nextDay;
    QRect subtitle;
    QRect mark;
    QRect ago;
    QRect content;
    QRect gallery;
    QRect gapLine;
};

// The width of the entry's text on a page.
int entryContentWidth(int pageWidth);

EntryPageLayout layoutEntryPage(const EntryPageMetrics &metrics, int pageWidth);

// The page of one day: its title, one year's entry with the year in the gutter, the photos of that day, and a
// note on the years without an entry; or the day file as it stands.
class EntryView : public QWidget {
    Q_OBJECT

public:
    struct Model {
        struct Block {
            // The text of the viewed year, to be edited.
            struct Editor {
                QString draft;
                QString placeholder;
                QColor textColor;
                bool operator==(const Editor &) const = default;
            };
            struct Past {
                QStringList paragraphs;
                bool operator==(const Past &) const = default;
            };
            // Nothing is written, nor can be.
            struct Empty {
                QString text;
                bool operator==(const Empty &) const = default;
            };

            QString mark;
            QColor markColor;
            QString ago;
            std::variant<Editor, Past, Empty> kind;
            bool operator==(const Block &) const = default;
        };

        QString fileName;
        QString ordinal;
        QString dayKey;
        QString weekdayName;
        QString subtitle;
        std::optional<QString> sourceText; // with it, the page is the day file as it stands
        Block block;
        std::optional<QString> gapLine;
        bool operator==(const Model &) const = default;
    };

    explicit EntryView(QWidget *parent = nullptr);
    ~EntryView() override;

    std::function<void(const QString &)> onDraftChanged;
    std::function<void()> onPreviousDay;
    std::function<void()> onNextDay;

    // Looks as a new page would. An editor that goes on with the same text keeps its caret, its history and
    // the keyboard.
    using QWidget::update;
    void update(const Model &model);

    // Another entry is shown: from its top, with the caret behind its text and nothing to undo.
    void startEntry();
    // To the editor, or to the page, which the keyboard then scrolls.
    void takeKeyboard();

    QScrollArea *scrollView() const { return m_scrollView; }
    // None while there is no editor on the page.
    GrowingTextView *textView() const { return m_textView; }
    // Stays from one update to the next, with its photos; hidden in source mode.
    PhotoGalleryView *galleryView() const { return m_galleryView; }
    // Over an empty editor.
    GrowingTextView *placeholderLabel() const { return m_placeholderLabel; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    class Column;
    class Page;

    void removeContent();
    void showBlock(const Model::Block &block);
    void showEditor(const Model::Block::Editor &editor, const QString &year);
    void showPlaceholder();
    void keepCaretVisible(const QRect &caret);
    void showTile(const QRect &tile);
    EntryPageMetrics metrics() const;
    void layOut();
    void contentDidGrow();

    QScrollArea *m_scrollView;
    QWidget *m_documentView;
    Column *m_column;
    ThemeLabel *m_fileName;
    ThemeLabel *m_ordinal;
    RuleView *m_rule;
    ThemeLabel *m_source;
    ThemeLabel *m_dayKey;
    ThemeLabel *m_weekday;
    ChromeButton *m_previousDay;
    ChromeButton *m_nextDay;
    ThemeLabel *m_subtitle;
    ThemeLabel *m_mark;
    ThemeLabel *m_ago;
    PhotoGalleryView *m_galleryView;
    ThemeLabel *m_gapLine;
    ThemeLabel *m_note = nullptr; // past text or the note of an empty block
    GrowingTextView *m_textView = nullptr;
    GrowingTextView *m_placeholderLabel = nullptr;
    QColor m_editorColor;
    QFont m_editorFont;
    bool m_isSource = false;
};

} // namespace diary
