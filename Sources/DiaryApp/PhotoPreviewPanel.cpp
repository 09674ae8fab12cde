// SPDX-License-Identifier: MIT
#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/IconButton.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEasingCurve>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace diary {

namespace {

constexpr double cardRadius = 10;
constexpr int shadowReach = 18;
constexpr double dimming = 0.5;
// Of the place of a picture that has no tile to zoom from.
constexpr double smallestWithoutTile = 0.94;

class AccessiblePhotoPreviewPanel : public QAccessibleWidget {
public:
    explicit AccessiblePhotoPreviewPanel(PhotoPreviewPanel *panel)
        : QAccessibleWidget(panel, QAccessible::Dialog) {}

    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object) {
    if (className != QLatin1String(PhotoPreviewPanel::staticMetaObject.className()))
        return nullptr;
    return new AccessiblePhotoPreviewPanel(static_cast<PhotoPreviewPanel *>(object));
}

ChromeButton::Style buttonStyle() {
    return {.font = Theme::system(12),
            .normalColor = Theme::chromeText(),
            .hoverColor = Theme::inkTitle(),
            .horizontalPadding = 18,
            .verticalPadding = 10};
}

QString positionText(std::size_t index, std::size_t count) {
    return QStringLiteral("%1 / %2").arg(index + 1).arg(count);
}

QRectF between(const QRectF &start, const QRectF &end, double progress) {
    const auto mix = [progress](double a, double b) { return a + (b - a) * progress; };
    return {mix(start.x(), end.x()), mix(start.y(), end.y()), mix(start.width(), end.width()),
            mix(start.height(), end.height())};
}

// The largest part in the middle that has the proportions of the frame, as a tile shows it.
QRectF croppedTo(const QSizeF &frame, const QSizeF &picture) {
    const auto size = frame.scaled(picture, Qt::KeepAspectRatio);
    return {QPointF((picture.width() - size.width()) / 2, (picture.height() - size.height()) / 2), size};
}

void paintShadow(QPainter &painter, const QRectF &card) {
    // Black, as a colour that is nearly transparent is rounded to another one.
    const QColor color(0, 0, 0, 4);
    for (int reach = 1; reach <= shadowReach; ++reach)
        paintFilledBox(painter, card.adjusted(-reach, -reach, reach, reach).translated(0, 4),
                       cardRadius + reach, color);
}

void paintCard(QPainter &painter, const QRect &card, const QRect &bar) {
    paintBorderedBox(painter, card, cardRadius, Theme::cardBgActive(), Theme::cardBorder());
    painter.fillRect(QRect(bar.left() + 1, bar.bottom(), bar.width() - 2, 1), Theme::borderSoft());
}

} // namespace

PhotoPreviewPanel::PhotoPreviewPanel(QWidget *parent) : QWidget(parent) {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    setFocusPolicy(Qt::StrongFocus);
    hide();
    const auto add = [this](auto *part, const char *name) {
        part->setObjectName(QLatin1String(name));
        return part;
    };
    const auto chevron = [this](bool isPrevious) {
        return isPrevious != isRightToLeft() ? QStringLiteral("chevron.left")
                                             : QStringLiteral("chevron.right");
    };
    m_picture = add(new QLabel(this), "photo");
    m_title = add(
        new ElidedLabel(Theme::system(13, Theme::Weight::Medium), Theme::inkTitle(), Qt::ElideMiddle, this),
        "photoTitle");
    m_previous = add(new IconButton(chevron(true), L("Previous Photo"), this), "previousPhoto");
    m_position =
        add(new ElidedLabel(Theme::mono(11), Theme::statusText(), Qt::ElideRight, this), "photoPosition");
    m_next = add(new IconButton(chevron(false), L("Next Photo"), this), "nextPhoto");
    m_openInViewer = add(new ChromeButton(L("Open in Image Viewer"), buttonStyle(), this), "openInViewer");
    m_showInFolder = add(new ChromeButton(L("Show in Folder"), buttonStyle(), this), "showInFolder");
    m_close = add(new IconButton(QStringLiteral("xmark"), L("Close"), this), "closePreview");

    m_previous->onClick = [this] { wishStep(-1); };
    m_next->onClick = [this] { wishStep(1); };
    const auto intent = [this](std::function<void()> PhotoPreviewPanel::*callback) {
        return [this, callback] {
            if (const auto action = this->*callback)
                action();
        };
    };
    m_openInViewer->onClick = intent(&PhotoPreviewPanel::onOpenInViewer);
    m_showInFolder->onClick = intent(&PhotoPreviewPanel::onShowInFolder);
    m_close->onClick = intent(&PhotoPreviewPanel::onClose);

    m_zoom = new QVariantAnimation(this);
    m_zoom->setStartValue(0.0);
    m_zoom->setEndValue(1.0);
    m_zoom->setDuration(0);
    m_zoom->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_zoom, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(m_zoom, &QVariantAnimation::finished, this, [this] { zoomEnded(); });
    parent->installEventFilter(this);
}

void PhotoPreviewPanel::update(const Model &model) {
    m_model = model;
    m_title->setText(model.title);
    m_title->setAccessibleName(model.title);
    m_picture->setAccessibleName(model.title);
    const auto position = positionText(model.index, model.count);
    m_position->setText(position);
    setAccessibleName(model.count > 1 ? model.title + QStringLiteral(", ") + position : model.title);
    // A button that is disabled while it has the keyboard would pass it on to the next one.
    const auto enable = [this](QWidget *button, bool enabled) {
        if (!enabled && button->hasFocus())
            setFocus(Qt::OtherFocusReason);
        button->setEnabled(enabled);
    };
    enable(m_previous, model.index > 0);
    enable(m_next, model.index + 1 < model.count);
    enable(m_openInViewer, model.hasFile);
    enable(m_showInFolder, model.hasFile);
    layOut();
    if (m_phase == Phase::Open)
        setPartsVisible(true);
    update();
}

void PhotoPreviewPanel::setZoomDuration(std::chrono::milliseconds duration) {
    m_zoom->setDuration(static_cast<int>(duration.count()));
}

void PhotoPreviewPanel::zoomIn(const QRect &fromOnScreen) {
    if (!isOpen())
        m_keyboardBefore = window()->focusWidget();
    setGeometry(parentWidget()->rect());
    layOut();
    raise();
    startZoom(fromOnScreen, Phase::Opening);
    show();
    setFocus(Qt::OtherFocusReason);
}

void PhotoPreviewPanel::zoomOut(const QRect &toOnScreen) {
    if (!isOpen())
        return;
    startZoom(toOnScreen, Phase::Closing);
    giveKeyboardBack();
}

void PhotoPreviewPanel::dismiss() {
    if (m_phase == Phase::Closed)
        return;
    m_phase = Phase::Closing;
    giveKeyboardBack();
    m_zoom->stop();
    zoomEnded();
}

PhotoPreviewLayout PhotoPreviewPanel::currentLayout() const {
    return layoutPhotoPreview(size(), metrics(), m_model.proportions, m_model.enlarging, layoutDirection());
}

PhotoPreviewMetrics PhotoPreviewPanel::metrics() const {
    const TextLine widest{positionText(m_model.count - 1, m_model.count), m_position->font()};
    return {.iconButton = m_close->sizeHint(),
            .position = widest.naturalSize(),
            .openInViewer = m_openInViewer->sizeHint(),
            .showInFolder = m_showInFolder->sizeHint(),
            .titleWidth = m_title->sizeHint().width(),
            .titleHeight = m_title->sizeHint().height()};
}

void PhotoPreviewPanel::layOut() {
    const auto layout = currentLayout();
    m_title->setGeometry(layout.title);
    m_previous->setGeometry(layout.previous);
    m_position->setGeometry(centred(m_position->sizeHint(), layout.position));
    m_next->setGeometry(layout.next);
    m_openInViewer->setGeometry(layout.openInViewer);
    m_showInFolder->setGeometry(layout.showInFolder);
    m_close->setGeometry(layout.close);
    m_picture->setGeometry(layout.picture);
    showPicture();
}

void PhotoPreviewPanel::showPicture() {
    const double ratio = devicePixelRatioF();
    const QSize size = (QSizeF(m_picture->size()) * ratio).toSize();
    if (m_model.image.isNull() || m_picture->size().isEmpty()) {
        m_scaled = {};
    } else if (m_scaled.size() != size || m_scaledFrom != m_model.image.cacheKey()) {
        m_scaled =
            QPixmap::fromImage(m_model.image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        m_scaled.setDevicePixelRatio(ratio);
    } else {
        return;
    }
    m_scaledFrom = m_model.image.cacheKey();
    m_picture->setPixmap(m_scaled);
}

void PhotoPreviewPanel::setPartsVisible(bool visible) {
    for (QWidget *part : {static_cast<QWidget *>(m_title), static_cast<QWidget *>(m_openInViewer),
                          static_cast<QWidget *>(m_showInFolder), static_cast<QWidget *>(m_close)})
        part->setVisible(visible);
    for (QWidget *part : {static_cast<QWidget *>(m_previous), static_cast<QWidget *>(m_position),
                          static_cast<QWidget *>(m_next)})
        part->setVisible(visible && m_model.count > 1);
    m_picture->setVisible(visible && !m_scaled.isNull());
}

// For the time of a zoom, in which the parts are no widgets.
QPixmap PhotoPreviewPanel::cardWithoutPicture() {
    const auto layout = currentLayout();
    QPixmap card(layout.card.size() * devicePixelRatioF());
    card.setDevicePixelRatio(devicePixelRatioF());
    card.fill(Qt::transparent);
    QPainter painter(&card);
    painter.translate(-layout.card.topLeft());
    paintCard(painter, layout.card, layout.bar);
    for (auto *part : findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (part != m_picture && !part->isHidden())
            part->render(&painter, part->pos(), {}, QWidget::DrawChildren);
    }
    return card;
}

void PhotoPreviewPanel::startZoom(const QRect &tileOnScreen, Phase phase) {
    // One that was under way ends here, without telling.
    m_phase = Phase::Closed;
    m_zoom->stop();
    setPartsVisible(true);
    m_card = cardWithoutPicture();
    setPartsVisible(false);
    m_tile = QRectF(mapFromGlobal(tileOnScreen.topLeft()), tileOnScreen.size());
    // One that was scrolled away is none to zoom to.
    if (!m_tile.intersects(rect()))
        m_tile = {};
    m_phase = phase;
    m_zoom->setDirection(phase == Phase::Opening ? QAbstractAnimation::Forward
                                                 : QAbstractAnimation::Backward);
    if (m_zoom->duration() > 0)
        m_zoom->start();
    else
        zoomEnded();
}

void PhotoPreviewPanel::zoomEnded() {
    m_card = {};
    if (m_phase == Phase::Opening) {
        m_phase = Phase::Open;
        setPartsVisible(true);
        update();
    } else if (m_phase == Phase::Closing) {
        m_phase = Phase::Closed;
        hide();
        m_model.image = {};
        m_scaled = {};
        m_picture->clear();
        if (const auto action = onClosed)
            action();
    }
}

void PhotoPreviewPanel::giveKeyboardBack() {
    auto *focused = window()->focusWidget();
    const bool isHere = focused && (focused == this || isAncestorOf(focused));
    if (isHere && m_keyboardBefore)
        m_keyboardBefore->setFocus(Qt::OtherFocusReason);
    else if (isHere)
        focused->clearFocus();
    m_keyboardBefore = nullptr;
}

bool PhotoPreviewPanel::isOutside(const QPoint &position) const {
    const auto layout = currentLayout();
    return !layout.bar.contains(position) && !layout.picture.contains(position);
}

void PhotoPreviewPanel::wishStep(int step) {
    if (step < 0 ? m_model.index > 0 : m_model.index + 1 < m_model.count)
        wish(step < 0 ? m_model.index - 1 : m_model.index + 1);
}

void PhotoPreviewPanel::wish(std::size_t index) {
    if (const auto action = onShow; action && index != m_model.index && index < m_model.count)
        action(index);
}

bool PhotoPreviewPanel::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Resize && watched == parentWidget() && isVisible())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

bool PhotoPreviewPanel::event(QEvent *event) {
    if (event->type() == QEvent::ShortcutOverride && isOpen()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool quits = key->keyCombination() == (Qt::CTRL | Qt::Key_Q);
        event->setAccepted(!quits);
        return true;
    }
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::LayoutDirectionChange)
        layOut();
    return QWidget::event(event);
}

bool PhotoPreviewPanel::focusNextPrevChild(bool next) {
    QList<QWidget *> stops{this};
    for (QWidget *part : {static_cast<QWidget *>(m_previous), static_cast<QWidget *>(m_next),
                          static_cast<QWidget *>(m_openInViewer), static_cast<QWidget *>(m_showInFolder),
                          static_cast<QWidget *>(m_close)}) {
        if (part->isVisible() && part->isEnabled())
            stops.append(part);
    }
    const auto current = std::max<qsizetype>(0, stops.indexOf(window()->focusWidget()));
    const auto target = (current + (next ? 1 : stops.size() - 1)) % stops.size();
    stops.at(target)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void PhotoPreviewPanel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const double shown = isZooming() ? m_zoom->currentValue().toDouble() : 1;
    auto dim = Theme::inkStrong();
    dim.setAlphaF(static_cast<float>(dimming * shown));
    painter.fillRect(rect(), dim);
    if (isZooming()) {
        paintZoom(painter);
        return;
    }
    const auto layout = currentLayout();
    paintShadow(painter, layout.card);
    paintCard(painter, layout.card, layout.bar);
}

void PhotoPreviewPanel::paintZoom(QPainter &painter) const {
    const double shown = m_zoom->currentValue().toDouble();
    const auto layout = currentLayout();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setOpacity(shown);
    paintShadow(painter, layout.card);
    painter.drawPixmap(layout.card.topLeft(), m_card);
    if (m_scaled.isNull())
        return;
    const QRectF place = layout.picture;
    QRectF start = m_tile;
    if (start.isEmpty()) {
        start.setSize(place.size() * smallestWithoutTile);
        start.moveCenter(place.center());
    } else {
        painter.setOpacity(1);
    }
    // As much of it as the frame holds, undistorted.
    const auto frame = between(start, place, shown);
    painter.drawPixmap(frame, m_scaled, croppedTo(frame.size(), m_scaled.size()));
}

void PhotoPreviewPanel::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    if (isZooming()) {
        m_zoom->stop();
        zoomEnded();
    }
    layOut();
}

void PhotoPreviewPanel::keyPressEvent(QKeyEvent *event) {
    // Nothing behind the panel hears of a key.
    event->accept();
    if (!isOpen())
        return;
    const auto combination =
        QKeyCombination(event->modifiers() & ~Qt::KeypadModifier, static_cast<Qt::Key>(event->key()));
    const bool closes = combination == QKeyCombination(Qt::Key_Escape) ||
                        combination == QKeyCombination(Qt::Key_Space) ||
                        combination == (Qt::CTRL | Qt::Key_W);
    if (closes) {
        // A key that is still held from opening the preview is not meant to close it.
        if (const auto action = onClose; action && !event->isAutoRepeat())
            action();
        return;
    }
    if (combination.keyboardModifiers() != Qt::NoModifier)
        return;
    const int forward = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        wishStep(-forward);
        break;
    case Qt::Key_Right:
        wishStep(forward);
        break;
    case Qt::Key_PageUp:
    case Qt::Key_Up:
        wishStep(-1);
        break;
    case Qt::Key_PageDown:
    case Qt::Key_Down:
        wishStep(1);
        break;
    case Qt::Key_Home:
        wish(0);
        break;
    case Qt::Key_End:
        wish(m_model.count - 1);
        break;
    default:
        break;
    }
}

void PhotoPreviewPanel::mousePressEvent(QMouseEvent *event) {
    m_isPressedOutside = event->button() == Qt::LeftButton && isOutside(event->position().toPoint());
}

void PhotoPreviewPanel::mouseReleaseEvent(QMouseEvent *event) {
    const bool isClick = event->button() == Qt::LeftButton && std::exchange(m_isPressedOutside, false) &&
                         isOutside(event->position().toPoint());
    if (const auto action = onClose; action && isClick && isOpen())
        action();
}

void PhotoPreviewPanel::wheelEvent(QWheelEvent *event) {
    // The page behind stands still.
    event->accept();
}

} // namespace diary
