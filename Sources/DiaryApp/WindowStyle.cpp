// SPDX-License-Identifier: MIT
#include <DiaryApp/WindowStyle.h>

#include <QIcon>
#include <QIconEngine>
#include <QPainter>

#include <functional>
#include <utility>

namespace diary {

namespace {

// Makes the icon when somebody wants to see it.
class LaterIconEngine : public QIconEngine {
public:
    explicit LaterIconEngine(std::function<QIcon()> make) : m_make(std::move(make)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal scale) override {
        // Of a size in the pixels of the screen already.
        return icon().pixmap(size / scale, scale, mode, state);
    }

    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        return icon().actualSize(size, mode, state);
    }

    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return icon().availableSizes(mode, state);
    }

    bool isNull() override { return false; }

    QIconEngine *clone() const override { return new LaterIconEngine(m_make); }

private:
    const QIcon &icon() {
        if (m_icon.isNull())
            m_icon = m_make();
        return m_icon;
    }

    std::function<QIcon()> m_make;
    QIcon m_icon;
};

} // namespace

WindowStyle::WindowStyle() : QProxyStyle(QStringLiteral("fusion")) {}

QIcon WindowStyle::standardIcon(StandardPixmap icon, const QStyleOption *option,
                                const QWidget *widget) const {
    if (icon != SP_ToolBarHorizontalExtensionButton)
        return QProxyStyle::standardIcon(icon, option, widget);
    // Another one is like it, should this one be gone by then.
    return QIcon(new LaterIconEngine([] {
        return QProxyStyle(QStringLiteral("fusion")).standardIcon(SP_ToolBarHorizontalExtensionButton);
    }));
}

} // namespace diary
