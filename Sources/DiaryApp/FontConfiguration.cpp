// SPDX-License-Identifier: MIT
#include <DiaryApp/FontConfiguration.h>

#include <QFontDatabase>
#include <QHash>

#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include <fontconfig/fontconfig.h>

namespace diary::FontConfiguration {

namespace {

struct PatternDeleter {
    void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

const FcChar8 *bytes(const QByteArray &text) {
    return reinterpret_cast<const FcChar8 *>(text.constData());
}

std::optional<QByteArray> value(const Pattern &pattern, const char *object) {
    FcChar8 *found = nullptr;
    if (!pattern || FcPatternGetString(pattern.get(), object, 0, &found) != FcResultMatch)
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char *>(found));
}

std::optional<QByteArray> usersLanguage() {
    const Pattern pattern(FcPatternCreate());
    FcDefaultSubstitute(pattern.get());
    return value(pattern, FC_LANG);
}

// Asked as Qt asks when it looks for a font in place of one that is not installed: the rules of the
// configuration go by the user's language and by the slant.
QString askForFamily(const QString &family) {
    const Pattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, bytes(family.toUtf8()));
    FcPatternAddInteger(wanted.get(), FC_SLANT, FC_SLANT_ROMAN);
    if (const auto language = usersLanguage())
        FcPatternAddString(wanted.get(), FC_LANG, bytes(*language));
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultMatch;
    const Pattern match(FcFontMatch(nullptr, wanted.get(), &result));
    const auto found = value(match, FC_FAMILY);
    return found ? QString::fromUtf8(*found) : family;
}

using Families = QHash<QString, QString>;

// One that was begun early, as the main thread sees it.
class Reading {
public:
    Reading() {
        std::promise<void> isRead;
        std::promise<Families> families;
        m_isRead = isRead.get_future();
        m_families = families.get_future();
        m_thread = std::thread([isRead = std::move(isRead), families = std::move(families)]() mutable {
            read(isRead, families);
        });
    }

    Reading(const Reading &) = delete;
    Reading &operator=(const Reading &) = delete;
    ~Reading() { m_thread.join(); }

    void wait() const { m_isRead.wait(); }
    std::shared_future<void> isRead() const { return m_isRead; }

    // What it found out by the way. Only once, as the configuration may be another one later.
    QString takeFamily(const QString &alias) {
        if (m_families.valid())
            m_known = m_families.get();
        return m_known.take(alias);
    }

private:
    static void read(std::promise<void> &isRead, std::promise<Families> &families) {
        FcInit();
        isRead.set_value();
        // What is asked for first, in this order, where the desktop has no fonts of its own.
        Families found;
        for (const auto &alias :
             {QStringLiteral("monospace"), QStringLiteral("Sans Serif"), QStringLiteral("serif")})
            found.insert(alias, askForFamily(alias));
        families.set_value(std::move(found));
    }

    std::shared_future<void> m_isRead;
    std::future<Families> m_families;
    Families m_known;
    std::thread m_thread;
};

std::unique_ptr<Reading> &earlyReading() {
    static std::unique_ptr<Reading> reading;
    return reading;
}

} // namespace

EarlyReading::EarlyReading() {
    earlyReading() = std::make_unique<Reading>();
}

EarlyReading::~EarlyReading() {
    earlyReading().reset();
}

EarlyListing::EarlyListing() {
    std::shared_future<void> isRead;
    if (earlyReading())
        isRead = earlyReading()->isRead();
    m_thread = std::thread([isRead = std::move(isRead)] {
        if (isRead.valid())
            isRead.wait();
        QFontDatabase::families();
    });
}

EarlyListing::~EarlyListing() {
    m_thread.join();
}

void waitUntilRead() {
    if (earlyReading())
        earlyReading()->wait();
}

QString meantFamily(const QString &family) {
    QString known = earlyReading() ? earlyReading()->takeFamily(family) : QString();
    return known.isEmpty() ? askForFamily(family) : known;
}

} // namespace diary::FontConfiguration
