// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/Defaults.h>

#include <QString>
#include <QStringList>

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

namespace diary {

// The user's preferences, each with what it means when it was never set or cannot be read. Main thread only.
//
// Nothing is kept between calls, so what the settings window writes is seen by the next reader. Setters throw
// std::filesystem::filesystem_error when the settings file cannot be written.
class Settings {
public:
    static constexpr double defaultEditorFontSize = 16.5;
    struct FontSizePreset {
        const char *label; // key of its text
        double points;
    };
    static constexpr std::array<FontSizePreset, 3> fontSizePresets{
        {{"Small", 14.5}, {"Standard", defaultEditorFontSize}, {"Large", 19.0}}};

    explicit Settings(Defaults defaults);

    // Over the settings file of the user.
    static Settings &shared();

    const Defaults &defaults() const { return m_defaults; }

    // Points. A stored size outside 4 to 288 counts as none.
    double editorFontSize() const;
    void setEditorFontSize(double points);

    // Whether the years without an entry are named below the page.
    bool showGapYears() const;
    void setShowGapYears(bool show);

    bool showPhotos() const;
    void setShowPhotos(bool show);

    bool autoUpdate() const;
    void setAutoUpdate(bool update);

    // Seconds since 1970-01-01 UTC; 0 when there was no check yet.
    double lastUpdateCheck() const;
    void setLastUpdateCheck(double seconds);

    // A font family's name; none for the built-in choice.
    std::optional<QString> bodyFontFamily() const;
    void setBodyFontFamily(const std::optional<QString> &family);

    // The code stored by the user's choice, which need not be a language that is offered.
    std::optional<QString> languageOverride() const;
    void setLanguageOverride(const std::optional<QString> &code);

    // The folder that the user chose for the diary; none for the default.
    std::optional<std::filesystem::path> vaultPath() const;
    void setVaultPath(const std::optional<std::filesystem::path> &path);

    // Where photos are looked for besides the user's picture folder, in the order in which they were added.
    std::vector<std::filesystem::path> photoFolders() const;
    void setPhotoFolders(const std::vector<std::filesystem::path> &folders);

    void setHasOnboarded(bool hasOnboarded);
    // Whether to ask where the diary should live: never asked before, nothing chosen, a cloud drive to choose
    // and no diary in either place.
    bool needsOnboarding() const;

    // The families offered for the body, of these the ones that are installed, in the same order.
    static const QStringList &bodyFontChoices();
    static QStringList availableBodyFonts();

private:
    Defaults m_defaults;
};

} // namespace diary
