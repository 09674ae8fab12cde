// SPDX-License-Identifier: MIT
#include <DiaryApp/Symbols.h>

#include <QHash>
#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>

namespace diary {

namespace {

constexpr double lineWidth = 1.5;

QPainterPath stroked(const QPainterPath &line, double width) {
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    stroker.setCurveThreshold(0.02);
    return stroker.createStroke(line);
}

QPainterPath polyline(const QPolygonF &points) {
    QPainterPath line;
    line.addPolygon(points);
    return stroked(line, lineWidth);
}

QPainterPath magnifyingGlass() {
    QPainterPath lens;
    lens.addEllipse(QPointF(-1.25, -1.25), 4.5, 4.5);
    QPainterPath outline = stroked(lens, lineWidth);
    outline.addPath(polyline({{2.1, 2.1}, {5.75, 5.75}}));
    outline.setFillRule(Qt::WindingFill);
    return outline;
}

// Nine hollow squares of 4 pixels with 1 pixel between them.
QPainterPath grid() {
    QPainterPath outline;
    for (const double y : {-7.0, -2.0, 3.0}) {
        for (const double x : {-7.0, -2.0, 3.0}) {
            outline.addRect(x, y, 4, 4);
            outline.addRect(x + 1, y + 1, 2, 2);
        }
    }
    outline.setFillRule(Qt::OddEvenFill);
    return outline;
}

QPainterPath gear() {
    constexpr int teeth = 8;
    QPainterPath rim;
    rim.addEllipse(QPointF(0, 0), 5, 5);
    QPainterPath tooth;
    tooth.addRoundedRect(QRectF(-1.2, -6.6, 2.4, 4), 0.8, 0.8);
    for (int index = 0; index < teeth; ++index)
        rim = rim.united(QTransform().rotate(360.0 * index / teeth).map(tooth));
    QPainterPath hub;
    hub.addEllipse(QPointF(0, 0), 2, 2);
    auto outline = stroked(rim.simplified(), 1.3);
    outline.addPath(stroked(hub, 1.3));
    outline.setFillRule(Qt::WindingFill);
    return outline;
}

QPainterPath cross() {
    auto outline = polyline({{-4.5, -4.5}, {4.5, 4.5}});
    outline.addPath(polyline({{-4.5, 4.5}, {4.5, -4.5}}));
    outline.setFillRule(Qt::WindingFill);
    return outline;
}

} // namespace

QPainterPath symbolOutline(const QString &name) {
    static const QHash<QString, QPainterPath> outlines = {
        {QStringLiteral("magnifyingglass"), magnifyingGlass()},
        {QStringLiteral("square.grid.3x3"), grid()},
        {QStringLiteral("gearshape"), gear()},
        {QStringLiteral("chevron.left"), polyline({{2.25, -4.75}, {-2.5, 0}, {2.25, 4.75}})},
        {QStringLiteral("chevron.right"), polyline({{-2.25, -4.75}, {2.5, 0}, {-2.25, 4.75}})},
        {QStringLiteral("xmark"), cross()},
    };
    return outlines.value(name);
}

} // namespace diary
