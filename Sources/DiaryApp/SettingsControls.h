// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/TextBlock.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

// What the cards of the settings window hold, besides check boxes and labels.
namespace diary {

// Texts of buttons mark their letter for Alt with an ampersand; one that is meant as such is doubled.
QString withoutMnemonics(QString text);

// A small button with round corners that is only as loud as the text around it. Where it is too narrow for
// its text, that is shortened.
class SettingsButton : public QPushButton {
    Q_OBJECT

public:
    // The text is shown as it stands.
    explicit SettingsButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_shownText;
};

// A pop-up menu. The wheel passes over it, so that scrolling changes nothing.
class SettingsMenu : public QComboBox {
    Q_OBJECT

public:
    explicit SettingsMenu(const QStringList &choices, QWidget *parent = nullptr);

protected:
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};

// The title of a row: at its column's trailing edge, on as many lines as it needs.
class SettingsRowLabel : public QLabel {
    Q_OBJECT

public:
    static constexpr int columnWidth = 84;

    explicit SettingsRowLabel(const QString &text, QWidget *parent = nullptr);

    double firstBaseline() const { return m_block.firstBaseline(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextBlock m_block;
};

} // namespace diary
