// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayChange.h>
#include <DiaryApp/DayPhoto.h>
#include <DiaryApp/EditingSession.h>
#include <DiaryApp/MainMenu.h>
#include <DiaryKit/VaultObserver.h>

#include <QMainWindow>
#include <QObject>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QEvent;
class QSize;
class QWidget;

namespace diary {

class DayPhotoLibrary;
class EntryView;
class FileManager;
class GrowingTextView;
class PhotoPreviewController;
class SearchWindowController;
class SidebarView;
class StatusBarView;
class TopBarView;
class YearOverviewController;
class YearRailView;

// The one main window: shows the editing session and hands the user's wishes to it. Main thread only; the
// clock and the file manager must outlive it.
class MainWindowController : public QObject {
    Q_OBJECT

public:
    // How long a day has to be shown before its photos are looked for.
    static constexpr std::chrono::milliseconds galleryDelay{180};

    // Opens today on the store. The actions are those that concern the whole program; the window adds its own
    // and has them all in its menu. Without a library there are no photos but scripted ones; without a
    // preview they are not shown large. The window may be given, shown already; it is filled by showWindow(),
    // and keeps its size.
    MainWindowController(std::unique_ptr<DiaryStore> store, Clock &clock, FileManager &fileManager,
                         MenuActions programActions = {},
                         std::unique_ptr<DayPhotoLibrary> photoLibrary = nullptr,
                         std::unique_ptr<PhotoPreviewController> photoPreview = nullptr,
                         std::unique_ptr<QMainWindow> window = nullptr);
    ~MainWindowController() override;

    // For a day's file of that name, with the place of Qt's mark for what is not saved.
    static QString windowTitle(const QString &fileName);

    EditingSession &session() { return *m_session; }
    DiaryStore &store() { return *m_store; }
    QMainWindow *window() const { return m_window.get(); }
    // Everything below the menu bar.
    QWidget *contentView() const;
    EntryView *entryView() const { return m_entryView; }
    // None where there is nothing to edit.
    GrowingTextView *textView() const;

    // For a given window whose size was a guess.
    void takeInitialSize();

    void showWindow();
    // Shown again in front of the other windows, where the desktop allows it.
    void bringToFront();

    // The user is back, and other programs may have changed the vault meanwhile.
    void lookAgain();

    // Once, after the window's first picture with the diary in it.
    std::function<void()> onFirstPainted;

    // The user closed the window. The session is saved, as far as it could be.
    std::function<void()> onClose;

    void goToRandomDay();
    // The first day of the month that many months later, or earlier when negative.
    void stepMonths(int months);
    // The day's file, or the vault while there is none.
    void showInFileManager();

    // With what DIARY_SEARCH_QUERY holds, for demonstrations, else as it was left.
    void showSearch();

    void showYearOverview();

    // Whether what the vault holds is still to be shown.
    bool isReadingStatistics() const { return m_statisticsRequest != StatisticsRequest::None; }

    // Shows the photos of the day large, from this one on; the last when there are not so many, and nothing
    // when there are none.
    void openPhotoPreview(std::size_t index);
    // May be none.
    PhotoPreviewController *photoPreview() const { return m_photoPreview.get(); }

    // A notice in the status bar, for some seconds.
    void flash(const QString &notice);

    // Again with the present preferences, after one was changed.
    void renderEntry();

    // The photo library may answer differently than before. What is shown stays until the new answer is
    // there.
    void photosDidChange();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    class ContentView;

    void buildViews(Clock &clock);
    void wireCallbacks();
    void buildMenu(MenuActions actions);
    QSize menuBarHeight() const;
    void layOutContent();
    void fillWindow();
    void connectSession();
    void showSaveError(const QString &systemText);
    void catchUpAfterFirstPainted();
    void watchVault();

    void render(EditingSession::Parts parts);
    void refreshGallery();
    void fetchGallery();
    void showGallery(std::vector<DayPhoto> photos);
    void renderTopBar();
    void renderSidebar();
    void requestStatistics();
    void renderRail();
    void renderStatus();

    Clock &m_clock;
    FileManager &m_fileManager;
    MenuActions m_programActions;
    std::unique_ptr<DiaryStore> m_store;
    std::unique_ptr<EditingSession> m_session;
    std::unique_ptr<QMainWindow> m_window;
    std::unique_ptr<ContentView> m_unplacedContent; // until it is put into the window
    ContentView *m_contentView = nullptr;
    TopBarView *m_topBar = nullptr;
    SidebarView *m_sidebar = nullptr;
    EntryView *m_entryView = nullptr;
    YearRailView *m_yearRail = nullptr;
    StatusBarView *m_statusBar = nullptr;
    // What the last look at the whole vault told; none before the first.
    std::optional<DiaryStore::ArchiveSnapshot> m_statistics;
    enum class StatisticsRequest {
        NotYet, // the first picture comes first
        None,
        UnderWay,
        UnderWayAndAgain,
    };
    StatisticsRequest m_statisticsRequest = StatisticsRequest::NotYet;
    bool m_hasBeenPainted = false;
    // Which photos the gallery is for.
    struct GallerySubject {
        MonthDay monthDay;
        std::int64_t year = 0;
        bool isShown = false; // neither in source mode nor against the user's wish
        bool operator==(const GallerySubject &) const = default;
    };
    enum class GalleryFetch {
        None,
        UnderWay,
        UnderWayAndAgain,
    };
    std::unique_ptr<DayPhotoLibrary> m_photoLibrary;
    std::unique_ptr<Timer> m_galleryDebounce;
    GallerySubject m_gallerySubject;
    std::vector<DayPhoto> m_galleryPhotos; // as shown
    // Goes up with every refresh; an answer to a fetch of an earlier one is dropped.
    std::int64_t m_galleryGeneration = 0;
    GalleryFetch m_galleryFetch = GalleryFetch::None; // of this generation
    std::unique_ptr<PhotoPreviewController> m_photoPreview;
    std::unique_ptr<SearchWindowController> m_searchController;       // made when it is first wanted
    std::unique_ptr<YearOverviewController> m_yearOverviewController; // likewise
    DayChange m_dayChange;
    // Last, so that its thread has ended before anything else goes.
    std::unique_ptr<VaultObserver> m_vaultObserver;
};

} // namespace diary
