// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QWidget>

#include <vector>

namespace diary {

class SettingsRowLabel;
class ThemeLabel;

// What one row of a card takes, in logical pixels. Baselines are those of the first lines.
struct SettingsRowMetrics {
    int labelHeight = 0; // 0 without a label
    double labelBaseline = 0;
    int controlHeight = 0;
    double controlBaseline = 0;
    bool isVisible = true;
};

// The rows below each other, counted from the first one's top.
struct SettingsRowsLayout {
    struct Row {
        int labelTop = 0;
        int controlTop = 0;
    };
    std::vector<Row> rows;
    int height = 0;
};

// Labels and controls stand on the same line. A row that is not visible takes no room.
SettingsRowsLayout layoutSettingsRows(const std::vector<SettingsRowMetrics> &rows);

// One card of the settings window: a title over a box of rows, each of a label and a control. As high as its
// rows.
class SettingsCard : public QWidget {
    Q_OBJECT

public:
    static constexpr int titleGap = 6;
    static constexpr int inset = 14;
    static constexpr int rowSpacing = 10;
    static constexpr int columnSpacing = 14;

    SettingsCard(const QString &title, int width, QWidget *parent = nullptr);

    // The width of the column of controls.
    int controlWidth() const;

    // The label, if any, names the buddy, which is the control itself or a part of it.
    void addRow(const QString &label, QWidget *control, QWidget *buddy = nullptr);

    // After a row was added or a control has another height.
    void layOut();

    QRect boxRect() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Row {
        SettingsRowLabel *label;
        QWidget *control;
    };

    ThemeLabel *m_title;
    std::vector<Row> m_rows;
};

// From the top of the control to the line on which its first text stands. The control has its size.
double firstBaseline(const QWidget &control);

} // namespace diary
