// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/HoverView.h>
#include <DiaryApp/TextLine.h>

#include <QRect>
#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace diary {

// The dashed card at the end of the rail: a click opens a menu of years to write about.
class AddYearCardView : public HoverView {
    Q_OBJECT

public:
    static constexpr int cardHeight = 46;

    struct Model {
        QString title;
        std::vector<std::int64_t> years; // in the order to offer
        std::function<void(std::int64_t year)> onPick;
    };

    explicit AddYearCardView(QWidget *parent = nullptr);

    // Looks as a new card would, unhovered. A menu that is open stays, unless its years are others.
    using QWidget::update;
    void update(const Model &model);

    bool opensMenu() const override { return true; }
    void showMenu();
    QRect labelRect() const;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextLine label() const;
    void pick(std::int64_t year);

    Model m_model;
};

} // namespace diary
