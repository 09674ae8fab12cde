// SPDX-License-Identifier: MIT
#include <DiaryApp/FontConfiguration.h>
#include <DiaryApp/FontFamilies.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Theme.h>

#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace diary::Theme {

namespace {

double srgbEncoded(double linear) {
    const double x = std::clamp(linear, 0.0, 1.0);
    return x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
}

// Lightness 0 to 1, chroma, hue in degrees. The matrices are those of Björn Ottosson, "A perceptual color
// space for image processing" (2020). Channels outside sRGB are clamped.
QColor oklch(double lightness, double chroma, double hue) {
    const double angle = hue * std::numbers::pi / 180;
    const double a = chroma * std::cos(angle);
    const double b = chroma * std::sin(angle);
    const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    const double red = 4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s;
    const double green = -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s;
    const double blue = -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s;
    return QColor::fromRgbF(static_cast<float>(srgbEncoded(red)), static_cast<float>(srgbEncoded(green)),
                            static_cast<float>(srgbEncoded(blue)));
}

// The fonts in size zero, kept until what they depend on changes: to ask for the installed families takes a
// tenth of a millisecond.
class FontCache {
public:
    FontCache() {
        QObject::connect(qGuiApp, &QGuiApplication::fontDatabaseChanged, qGuiApp, [this] { clear(); });
    }

    void setLanguage(const QString &code) {
        m_language = code;
        clear();
    }

    const QFont &body(const std::optional<QString> &chosen) {
        if (!m_body || m_chosen != chosen) {
            m_chosen = chosen;
            m_body = font(FontFamilies::body(chosen, meant({QStringLiteral("serif")}), surroundings()),
                          QFont::Serif);
        }
        return *m_body;
    }

    const QFont &mono() {
        if (!m_mono)
            m_mono = font(FontFamilies::mono(fixedWidth(), surroundings()), QFont::Monospace);
        return *m_mono;
    }

    const QFont &code() {
        if (!m_code)
            m_code = font(FontFamilies::code(fixedWidth(), surroundings()), QFont::Monospace);
        return *m_code;
    }

    const QFont &system() {
        const auto desktop = QGuiApplication::font().families();
        if (!m_system || m_desktop != desktop) {
            m_desktop = desktop;
            m_system = font(FontFamilies::system(meant(desktop), surroundings()), QFont::SansSerif);
        }
        return *m_system;
    }

private:
    // The families that the desktop means by its aliases. Not asked of Qt, which would load a font for each.
    static QStringList meant(const QStringList &families) {
        QStringList result;
        for (const auto &family : families)
            result.append(FontConfiguration::meantFamily(family));
        return result;
    }

    static QStringList fixedWidth() {
        return meant(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    }

    bool isInstalled(const QString &family) {
        if (m_installed.isEmpty()) {
            FontConfiguration::waitUntilRead();
            // A family of several makers is listed as "Family [Maker]" for each.
            for (const auto &listed : QFontDatabase::families())
                m_installed.insert(listed.section(QLatin1String(" ["), 0, 0));
        }
        return m_installed.contains(family);
    }

    static QFont font(const QStringList &families, QFont::StyleHint hint) {
        QFont font;
        font.setFamilies(families);
        font.setStyleHint(hint);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0);
        return font;
    }

    FontFamilies::Surroundings surroundings() {
        QStringList languages = QLocale::system().uiLanguages();
        if (!m_language.isEmpty())
            languages.prepend(m_language);
        return {languages, [this](const QString &family) { return isInstalled(family); }};
    }

    void clear() {
        m_installed.clear();
        m_body.reset();
        m_mono.reset();
        m_code.reset();
        m_system.reset();
    }

    QString m_language;
    QSet<QString> m_installed;
    std::optional<QString> m_chosen; // what m_body was made for
    QStringList m_desktop;           // what m_system was made for
    std::optional<QFont> m_body;
    std::optional<QFont> m_mono;
    std::optional<QFont> m_code;
    std::optional<QFont> m_system;
};

FontCache &fonts() {
    static FontCache cache;
    return cache;
}

QFont sized(QFont font, double size, Weight weight = Weight::Regular) {
    font.setPixelSize(std::max(1, qRound(size)));
    font.setWeight(weight == Weight::Regular ? QFont::Normal : QFont::Medium);
    return font;
}

} // namespace

QColor accent() {
    return {180, 67, 43};
}

QColor paper() {
    static const QColor color = oklch(0.978, 0.01, 85);
    return color;
}

QColor panel() {
    static const QColor color = oklch(0.963, 0.011, 85);
    return color;
}

QColor bar() {
    static const QColor color = oklch(0.958, 0.012, 85);
    return color;
}

QColor border() {
    static const QColor color = oklch(0.9, 0.012, 80);
    return color;
}

QColor borderSoft() {
    static const QColor color = oklch(0.92, 0.012, 80);
    return color;
}

QColor cardBorder() {
    static const QColor color = oklch(0.905, 0.012, 80);
    return color;
}

QColor cardBorderHover() {
    static const QColor color = oklch(0.8, 0.012, 78);
    return color;
}

QColor cardBorderActive() {
    static const QColor color = oklch(0.62, 0.014, 70);
    return color;
}

QColor cardBg() {
    static const QColor color = oklch(0.972, 0.01, 85);
    return color;
}

QColor cardBgActive() {
    static const QColor color = oklch(0.99, 0.012, 85);
    return color;
}

QColor hoverBg() {
    static const QColor color = oklch(0.91, 0.014, 80);
    return color;
}

QColor gridHoverOutline() {
    static const QColor color = oklch(0.81, 0.012, 80);
    return color;
}

QColor inkStrong() {
    static const QColor color = oklch(0.24, 0.014, 60);
    return color;
}

QColor ink() {
    static const QColor color = oklch(0.28, 0.014, 60);
    return color;
}

QColor inkTitle() {
    static const QColor color = oklch(0.3, 0.014, 60);
    return color;
}

QColor inkMed() {
    static const QColor color = oklch(0.34, 0.014, 60);
    return color;
}

QColor inkSource() {
    static const QColor color = oklch(0.36, 0.014, 60);
    return color;
}

QColor serifAside() {
    static const QColor color = oklch(0.48, 0.014, 66);
    return color;
}

QColor pastText() {
    static const QColor color = oklch(0.52, 0.014, 66);
    return color;
}

QColor chromeText() {
    static const QColor color = oklch(0.55, 0.012, 70);
    return color;
}

QColor chevron() {
    static const QColor color = oklch(0.58, 0.012, 70);
    return color;
}

QColor railSnippet() {
    static const QColor color = oklch(0.58, 0.012, 72);
    return color;
}

QColor statLabel() {
    static const QColor color = oklch(0.6, 0.012, 72);
    return color;
}

QColor statusText() {
    static const QColor color = oklch(0.6, 0.012, 74);
    return color;
}

QColor railFoot() {
    static const QColor color = oklch(0.64, 0.012, 76);
    return color;
}

QColor daySubText() {
    static const QColor color = oklch(0.65, 0.012, 76);
    return color;
}

QColor sectionHead() {
    static const QColor color = oklch(0.66, 0.012, 76);
    return color;
}

QColor emptyText() {
    static const QColor color = oklch(0.68, 0.012, 78);
    return color;
}

QColor agoText() {
    static const QColor color = oklch(0.7, 0.012, 78);
    return color;
}

QColor faint() {
    static const QColor color = oklch(0.72, 0.012, 78);
    return color;
}

QColor ghostDay() {
    static const QColor color = oklch(0.73, 0.012, 78);
    return color;
}

QColor placeholder() {
    static const QColor color = oklch(0.75, 0.012, 80);
    return color;
}

QColor selectionBg() {
    static const QColor color = oklch(0.9, 0.05, 40);
    return color;
}

QColor pillBg() {
    static const QColor color = oklch(0.3, 0.014, 60);
    return color;
}

QColor pillText() {
    static const QColor color = oklch(0.96, 0.01, 85);
    return color;
}

QColor railTextActive() {
    static const QColor color = oklch(0.38, 0.014, 62);
    return color;
}

QColor railYear() {
    static const QColor color = oklch(0.42, 0.014, 64);
    return color;
}

const std::array<QColor, 4> &heatShades() {
    static const std::array<QColor, 4> shades = {oklch(0.925, 0.01, 82), oklch(0.87, 0.045, 40),
                                                 oklch(0.74, 0.09, 38), oklch(0.55, 0.13, 34)};
    return shades;
}

QFont serif(double size) {
    return sized(fonts().body(Settings::shared().bodyFontFamily()), size);
}

QFont mono(double size, Weight weight, double letterSpacing) {
    auto font = sized(fonts().mono(), size, weight);
    font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    return font;
}

QFont code(double size) {
    return sized(fonts().code(), size);
}

QFont system(double size, Weight weight) {
    return sized(fonts().system(), size, weight);
}

QFont application() {
    auto font = QGuiApplication::font();
    font.setFamilies({fonts().system().families().first()});
    font.setStyleHint(fonts().system().styleHint());
    return font;
}

void setInterfaceLanguage(const QString &code) {
    fonts().setLanguage(code);
}

QPalette palette() {
    QPalette colors;
    colors.setColor(QPalette::Window, bar());
    colors.setColor(QPalette::WindowText, ink());
    colors.setColor(QPalette::Base, paper());
    colors.setColor(QPalette::AlternateBase, panel());
    colors.setColor(QPalette::Text, inkStrong());
    colors.setColor(QPalette::PlaceholderText, placeholder());
    colors.setColor(QPalette::Button, panel());
    colors.setColor(QPalette::ButtonText, ink());
    colors.setColor(QPalette::BrightText, accent());
    colors.setColor(QPalette::ToolTipBase, cardBgActive());
    colors.setColor(QPalette::ToolTipText, ink());
    colors.setColor(QPalette::Highlight, selectionBg());
    colors.setColor(QPalette::HighlightedText, inkStrong());
    colors.setColor(QPalette::Link, accent());
    colors.setColor(QPalette::LinkVisited, accent());
    colors.setColor(QPalette::Light, cardBgActive());
    colors.setColor(QPalette::Midlight, cardBg());
    colors.setColor(QPalette::Mid, cardBorder());
    colors.setColor(QPalette::Dark, cardBorderActive());
    colors.setColor(QPalette::Shadow, inkMed());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colors.setColor(QPalette::Disabled, role, faint());
    return colors;
}

} // namespace diary::Theme
