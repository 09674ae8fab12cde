// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/GridNavigation.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr int markTop = 46;
constexpr double markLetterSpacing = 1.47;
constexpr int captionTop = 40;
constexpr int tilesTop = 12; // below the caption
constexpr int rowSpacing = 18;
constexpr int tileSpacing = 12;

} // namespace

PhotoGalleryLayout layoutPhotoGallery(std::size_t photoCount, const PhotoGalleryMetrics &metrics, int width) {
    using Layout = PhotoGalleryLayout;
    Layout layout;
    if (photoCount == 0)
        return layout;
    const int inner = std::max(0, width - Layout::contentInset);
    layout.mark = {QPoint(Layout::gutter - metrics.mark.width(), markTop), metrics.mark};
    layout.caption = {Layout::contentInset, captionTop, inner, metrics.captionHeight};

    // What cannot be divided goes to the first tiles, a pixel each.
    const int widths = std::max(0, inner - (Layout::tilesInRow - 1) * tileSpacing);
    const int narrow = widths / Layout::tilesInRow;
    const int remainder = widths % Layout::tilesInRow;
    // One for all, so that the texts of a row stand on one line.
    const int imageHeight = static_cast<int>(std::lround(widths * 2.0 / (3.0 * Layout::tilesInRow)));
    const int tileHeight = photoTileHeight(metrics.tileLabelHeight, imageHeight);
    const int top = captionTop + metrics.captionHeight + tilesTop;
    for (std::size_t index = 0; index < photoCount; ++index) {
        const int column = static_cast<int>(index % Layout::tilesInRow);
        const int row = static_cast<int>(index / Layout::tilesInRow);
        const int x = Layout::contentInset + column * (narrow + tileSpacing) + std::min(column, remainder);
        const int tileWidth = narrow + (column < remainder ? 1 : 0);
        layout.tiles.emplace_back(x, top + row * (tileHeight + rowSpacing), tileWidth, tileHeight);
    }
    layout.height = layout.tiles.back().y() + tileHeight;
    return layout;
}

PhotoGalleryView::PhotoGalleryView(QWidget *parent)
    : QWidget(parent),
      m_markLabel(
          themeLabel(L("PhotosMark"), Theme::mono(10.5), Theme::sectionHead(), markLetterSpacing, this)),
      m_captionLabel(new ElidedLabel(Theme::system(11), Theme::daySubText(), Qt::ElideRight, this)) {
    m_markLabel->setObjectName(QStringLiteral("photosMark"));
    m_captionLabel->setObjectName(QStringLiteral("photosCaption"));
    m_markLabel->hide();
    m_captionLabel->hide();
    connect(&m_sharpening, &QTimer::timeout, this, &PhotoGalleryView::sharpenNext);
}

void PhotoGalleryView::setPhotos(const std::vector<DayPhoto> &photos, const std::optional<QString> &caption) {
    const auto rows = [](std::size_t count) {
        return (count + PhotoGalleryLayout::tilesInRow - 1) / PhotoGalleryLayout::tilesInRow;
    };
    const bool isOtherHeight = rows(photos.size()) != rows(m_tileViews.size());
    m_model = {photos, caption};

    const auto focused = focusedIndex();
    m_captionLabel->setText(caption.value_or(QString()));
    m_captionLabel->setVisible(!photos.empty());
    m_markLabel->setVisible(!photos.empty());
    const bool hasNewTiles = photos.size() > m_tileViews.size();
    for (std::size_t index = 0; index < photos.size(); ++index)
        tile(index)->update(photos[index]);
    if (hasNewTiles)
        bringInTabOrder();
    if (focused && *focused >= photos.size() && !photos.empty())
        m_tileViews[photos.size() - 1]->setFocus(Qt::OtherFocusReason);
    removeTiles(m_tileViews.size() - photos.size());
    layOut();
    if (isOtherHeight && onHeightChanged)
        onHeightChanged();
}

PhotoTileView *PhotoGalleryView::tile(std::size_t index) {
    if (index < m_tileViews.size())
        return m_tileViews[index];
    auto *view = new PhotoTileView(this);
    view->setObjectName(QStringLiteral("photoTile%1").arg(index));
    view->onClick = [this, index] {
        if (onOpenPhoto)
            onOpenPhoto(index);
    };
    view->onPaintedRoughly = [this] {
        if (!m_sharpening.isActive())
            m_sharpening.start();
    };
    view->installEventFilter(this);
    view->show();
    m_tileViews.push_back(view);
    return view;
}

void PhotoGalleryView::sharpenNext() {
    const auto rough = std::find_if(m_tileViews.begin(), m_tileViews.end(),
                                    [](const PhotoTileView *view) { return !view->isSharp(); });
    if (rough == m_tileViews.end())
        m_sharpening.stop();
    else
        (*rough)->sharpen();
}

void PhotoGalleryView::setTabPredecessor(QWidget *widget) {
    if (widget == m_tabPredecessor)
        return;
    m_tabPredecessor = widget;
    bringInTabOrder();
}

void PhotoGalleryView::bringInTabOrder() {
    QWidget *previous = m_tabPredecessor;
    for (auto *view : m_tileViews) {
        if (previous)
            setTabOrder(previous, view);
        previous = view;
    }
}

// The last ones.
void PhotoGalleryView::removeTiles(std::size_t count) {
    for (; count > 0; --count) {
        // It may be the one that is being clicked. Until it is gone it must not be found by name.
        auto *view = m_tileViews.back();
        m_tileViews.pop_back();
        view->removeEventFilter(this);
        view->onClick = nullptr;
        view->onPaintedRoughly = nullptr;
        view->hide();
        view->setObjectName(QString());
        view->deleteLater();
    }
}

QRect PhotoGalleryView::sourceFrameOnScreen(std::size_t index) const {
    if (index >= m_tileViews.size())
        return {};
    const auto *view = m_tileViews[index];
    const auto image = view->currentLayout().image;
    return {view->mapToGlobal(image.topLeft()), image.size()};
}

int PhotoGalleryView::heightForWidth(int width) const {
    return layoutForWidth(width).height;
}

void PhotoGalleryView::recheckPointer() {
    for (auto *view : m_tileViews)
        view->recheckPointer();
}

bool PhotoGalleryView::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusIn && onTileFocused)
        onTileFocused(static_cast<QWidget *>(watched)->geometry());
    return QWidget::eventFilter(watched, event);
}

void PhotoGalleryView::keyPressEvent(QKeyEvent *event) {
    const auto focused = focusedIndex();
    const auto target = focused
                            ? gridTarget(*event, *focused, m_tileViews.size(), PhotoGalleryLayout::tilesInRow)
                            : std::nullopt;
    if (target)
        m_tileViews[*target]->setFocus(Qt::TabFocusReason);
    else
        QWidget::keyPressEvent(event);
}

// Beside the tiles is no paper to write on.
void PhotoGalleryView::mousePressEvent(QMouseEvent *event) {
    event->setAccepted(event->pos().y() >= captionTop);
}

void PhotoGalleryView::resizeEvent(QResizeEvent *event) {
    layOut();
    QWidget::resizeEvent(event);
}

PhotoGalleryLayout PhotoGalleryView::layoutForWidth(int width) const {
    return layoutPhotoGallery(
        m_tileViews.size(),
        {m_markLabel->sizeHint(), m_captionLabel->sizeHint().height(), PhotoTileView::labelHeight()}, width);
}

void PhotoGalleryView::layOut() {
    const auto layout = layoutForWidth(width());
    m_markLabel->setGeometry(layout.mark);
    m_captionLabel->setGeometry(layout.caption);
    for (std::size_t index = 0; index < m_tileViews.size(); ++index)
        m_tileViews[index]->setGeometry(layout.tiles[index]);
    recheckPointer();
}

std::optional<std::size_t> PhotoGalleryView::focusedIndex() const {
    const auto found = std::find_if(m_tileViews.begin(), m_tileViews.end(),
                                    [](const PhotoTileView *view) { return view->hasFocus(); });
    if (found == m_tileViews.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_tileViews.begin());
}

} // namespace diary
