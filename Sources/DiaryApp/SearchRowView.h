// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/HoverView.h>
#include <DiaryApp/TextLine.h>
#include <DiaryKit/DiaryStore.h>

#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTextLayout>

#include <string_view>
#include <vector>

namespace diary {

// What the texts of a row take.
struct SearchRowMetrics {
    QSize title;
    int snippetHeight = 0; // at the row's width less both insets
};

struct SearchRowLayout {
    static constexpr int sideInset = 12;

    QRect title;
    QRect snippet;
    int height = 0;
};

SearchRowLayout layoutSearchRow(const SearchRowMetrics &metrics, int width);

// One entry that a search found: its day and year, and the place of the match.
class SearchRowView : public HoverView {
    Q_OBJECT

public:
    static constexpr int mostSnippetLines = 2;

    // Part of the snippet, in UTF-16 units.
    struct Mark {
        int start = 0;
        int length = 0;

        bool operator==(const Mark &) const = default;
    };
    struct Model {
        QString title;
        QString snippet;
        std::vector<Mark> marks; // in order, apart from each other
        QString accessibleName;

        static Model of(const DiaryStore::SearchHit &hit, std::string_view query);
        bool operator==(const Model &) const = default;
    };

    struct Fonts {
        QFont title;
        QFont snippet;

        static Fonts current();
    };

    explicit SearchRowView(QWidget *parent = nullptr);

    using QWidget::update;
    void update(const Model &model, const Fonts &fonts);

    const Model &model() const { return m_model; }
    SearchRowLayout layoutForWidth(int width);
    // What is to be read at the width that was laid out last, and which parts of it are marked.
    QString shownSnippet() const { return m_snippet.text(); }
    std::vector<Mark> shownMarks() const;
    int snippetLineCount() const { return m_snippet.lineCount(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void setSnippet(const QString &text, int marksEnd);
    double layOutLines(double width);

    Model m_model;
    TextLine m_title;
    QSize m_titleSize;
    QTextLayout m_snippet; // as shown, perhaps shortened
    int m_snippetWidth = -1;
    int m_snippetHeight = 0;
};

} // namespace diary
