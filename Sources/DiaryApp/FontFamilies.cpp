// SPDX-License-Identifier: MIT
#include <DiaryApp/FontFamilies.h>

#include <QLocale>

namespace diary::FontFamilies {

namespace {

QString hanRegion(const QLocale &locale) {
    switch (locale.language()) {
    case QLocale::Japanese:
        return QStringLiteral("JP");
    case QLocale::Korean:
        return QStringLiteral("KR");
    case QLocale::Chinese:
        if (locale.script() != QLocale::TraditionalHanScript)
            return QStringLiteral("SC");
        return locale.territory() == QLocale::HongKong || locale.territory() == QLocale::Macao
                   ? QStringLiteral("HK")
                   : QStringLiteral("TC");
    default:
        return {};
    }
}

QString hanRegion(const QStringList &languages) {
    for (const auto &code : languages) {
        if (auto region = hanRegion(QLocale(code)); !region.isEmpty())
            return region;
    }
    return QStringLiteral("SC");
}

void appendFirstInstalled(QStringList &families, const QStringList &candidates,
                          const Surroundings &surroundings) {
    for (const auto &family : candidates) {
        if (surroundings.isInstalled(family)) {
            families.append(family);
            return;
        }
    }
}

// Han characters in the first of the typefaces, then coloured pictures: these last, since their fonts have
// digits of their own.
QStringList completed(QStringList families, const QStringList &hanTypefaces,
                      const Surroundings &surroundings) {
    const auto region = hanRegion(surroundings.languages);
    QStringList han;
    for (const auto &typeface : hanTypefaces)
        han.append(typeface + QLatin1Char(' ') + region);
    appendFirstInstalled(families, han, surroundings);
    appendFirstInstalled(families, {QStringLiteral("Noto Color Emoji"), QStringLiteral("Twemoji")},
                         surroundings);
    families.removeDuplicates();
    return families;
}

QStringList fixedWidth(const QString &preferred, const QStringList &desktop,
                       const Surroundings &surroundings) {
    QStringList families;
    if (surroundings.isInstalled(preferred))
        families.append(preferred);
    else
        appendFirstInstalled(families, {QStringLiteral("IBM Plex Mono")}, surroundings);
    return completed(
        families + desktop,
        {QStringLiteral("Noto Sans Mono CJK"), QStringLiteral("Noto Sans CJK"), QStringLiteral("Noto Sans")},
        surroundings);
}

} // namespace

QStringList body(const std::optional<QString> &chosen, const QStringList &desktop,
                 const Surroundings &surroundings) {
    QStringList families;
    QStringList preferred = {QStringLiteral("PingFang SC"), QStringLiteral("Songti SC")};
    if (chosen)
        preferred.prepend(*chosen);
    appendFirstInstalled(families, preferred, surroundings);
    // Also behind a preferred family, for the letters that it lacks.
    const auto count = families.size();
    appendFirstInstalled(families,
                         {QStringLiteral("Source Serif 4"), QStringLiteral("Source Serif Pro"),
                          QStringLiteral("Noto Serif"), QStringLiteral("DejaVu Serif"),
                          QStringLiteral("Liberation Serif")},
                         surroundings);
    if (families.size() == count)
        families.append(desktop);
    return completed(families,
                     {QStringLiteral("Noto Serif CJK"), QStringLiteral("Noto Serif"),
                      QStringLiteral("Source Han Serif"), QStringLiteral("Noto Sans CJK"),
                      QStringLiteral("Noto Sans")},
                     surroundings);
}

QStringList mono(const QStringList &desktop, const Surroundings &surroundings) {
    return fixedWidth(QStringLiteral("IBM Plex Mono"), desktop, surroundings);
}

QStringList code(const QStringList &desktop, const Surroundings &surroundings) {
    return fixedWidth(QStringLiteral("Menlo"), desktop, surroundings);
}

QStringList system(const QStringList &desktop, const Surroundings &surroundings) {
    return completed(
        desktop,
        {QStringLiteral("Noto Sans CJK"), QStringLiteral("Noto Sans"), QStringLiteral("Source Han Sans")},
        surroundings);
}

} // namespace diary::FontFamilies
