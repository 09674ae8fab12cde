// SPDX-License-Identifier: MIT
#include <DiaryApp/AboutBox.h>
#include <DiaryApp/Alert.h>
#include <DiaryApp/DayGridView.h>
#include <DiaryApp/DayModels.h>
#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/Formatters.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/MainWindowLayout.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/SearchWindowController.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SidebarView.h>
#include <DiaryApp/StatusBarView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TodayButton.h>
#include <DiaryApp/TopBarView.h>
#include <DiaryApp/YearOverviewController.h>
#include <DiaryApp/YearRailView.h>

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QMenuBar>
#include <QPointer>
#include <QScrollArea>

#include <algorithm>
#include <cstdint>
#include <system_error>
#include <utility>

namespace diary {

class MainWindowController::ContentView : public QWidget {
public:
    std::function<void(const MainWindowLayout &)> onLayout;

protected:
    void resizeEvent(QResizeEvent *event) override {
        if (onLayout)
            onLayout(layoutMainWindow(size()));
        QWidget::resizeEvent(event);
    }
};

MainWindowController::MainWindowController(std::unique_ptr<DiaryStore> store, Clock &clock,
                                           FileManager &fileManager, MenuActions programActions,
                                           std::unique_ptr<DayPhotoLibrary> photoLibrary,
                                           std::unique_ptr<PhotoPreviewController> photoPreview,
                                           std::unique_ptr<QMainWindow> window)
    : m_clock(clock),
      m_fileManager(fileManager),
      m_programActions(std::move(programActions)),
      m_store(std::move(store)),
      m_session(std::make_unique<EditingSession>(*m_store, clock)),
      m_window(std::move(window)),
      m_photoLibrary(photoLibrary ? std::move(photoLibrary) : std::make_unique<DayPhotoLibrary>()),
      m_galleryDebounce(clock.makeTimer([this] { fetchGallery(); })),
      m_photoPreview(std::move(photoPreview)),
      m_dayChange(clock, [this] { m_session->calendarDayChanged(); }) {
    // First, as the system's fonts are still being read about, which the window waits for.
    bool hasMergedConflicts = false;
    m_session->onMergedConflicts = [&hasMergedConflicts] { hasMergedConflicts = true; };
    m_session->openToday();
    QApplication::setFont(Theme::application());
    buildViews(clock);
    wireCallbacks();
    connectSession();
    if (!m_window) {
        m_window = std::make_unique<QMainWindow>();
        fillWindow();
    }
    if (hasMergedConflicts)
        m_session->onMergedConflicts();
}

MainWindowController::~MainWindowController() {
    m_window->removeEventFilter(this);
}

QString MainWindowController::windowTitle(const QString &fileName) {
    return fileName + QStringLiteral("[*]");
}

QWidget *MainWindowController::contentView() const {
    return m_contentView;
}

GrowingTextView *MainWindowController::textView() const {
    return m_entryView->textView();
}

void MainWindowController::buildViews(Clock &clock) {
    m_unplacedContent = std::make_unique<ContentView>();
    m_contentView = m_unplacedContent.get();
    m_contentView->setObjectName(QStringLiteral("contentView"));
    const auto add = [this](auto *view, const char *name) {
        view->setParent(m_contentView);
        view->setObjectName(QLatin1String(name));
        return view;
    };
    // In the order of the Tab key: from the text to the years, around by the bars.
    m_topBar = add(new TopBarView, "topBar");
    m_sidebar = add(new SidebarView, "sidebar");
    m_entryView = add(new EntryView, "entryView");
    m_yearRail = add(new YearRailView, "yearRail");
    m_yearRail->showOnlyCardsInSight();
    m_statusBar = add(new StatusBarView(clock), "statusBar");
    m_contentView->onLayout = [this](const MainWindowLayout &layout) {
        m_topBar->setGeometry(layout.topBar);
        m_sidebar->setGeometry(layout.sidebar);
        m_entryView->setGeometry(layout.entryView);
        m_yearRail->setGeometry(layout.yearRail);
        m_statusBar->setGeometry(layout.statusBar);
    };

    m_contentView->setMinimumSize(MainWindowLayout::minimumSize);
}

void MainWindowController::fillWindow() {
    const bool isNew = !m_window->isVisible();
    m_window->setObjectName(QStringLiteral("DiaryMainWindow"));
    m_window->setCentralWidget(m_unplacedContent.release());
    m_window->installEventFilter(this);
    buildMenu(m_programActions);
    if (isNew)
        takeInitialSize();
    layOutContent();
    render(EditingSession::allParts());
    m_session->onShowFromTop();
}

void MainWindowController::wireCallbacks() {
    m_topBar->onRandom = [this] { goToRandomDay(); };
    m_topBar->onToggleSource = [this] { m_session->toggleSourceView(); };
    m_sidebar->onPreviousMonth = [this] { stepMonths(-1); };
    m_sidebar->onNextMonth = [this] { stepMonths(1); };
    m_sidebar->todayButton()->onClick = [this] { m_session->openToday(); };
    m_sidebar->gridView()->onSelectDay = [this](std::int64_t day) {
        m_session->open({m_session->currentMonthDay().month, day});
    };
    m_sidebar->onShowSearch = [this] { showSearch(); };
    m_sidebar->onShowYearOverview = [this] { showYearOverview(); };
    m_sidebar->onShowSettings = m_programActions.showSettings;
    m_entryView->galleryView()->onOpenPhoto = [this](std::size_t index) { openPhotoPreview(index); };
    m_entryView->onDraftChanged = [this](const QString &text) { m_session->draftChanged(text); };
    m_entryView->onPreviousDay = [this] { m_session->step(-1); };
    m_entryView->onNextDay = [this] { m_session->step(1); };
}

void MainWindowController::buildMenu(MenuActions actions) {
    auto *window = m_window.get();
    actions.showAbout = [window] { showAboutBox(window); };
    actions.hide = [window] { window->showMinimized(); };
    actions.close = [window] { window->close(); };
    actions.save = [this] { m_session->flushSaveIfDirty(); };
    actions.showInFileManager = [this] { showInFileManager(); };
    actions.showSearch = [this] { showSearch(); };
    actions.toggleSource = [this] { m_session->toggleSourceView(); };
    actions.goToPreviousDay = [this] { m_session->step(-1); };
    actions.goToNextDay = [this] { m_session->step(1); };
    actions.goToToday = [this] { m_session->openToday(); };
    actions.goToRandomDay = [this] { goToRandomDay(); };
    actions.showYearOverview = [this] { showYearOverview(); };
    actions.minimize = [window] { window->showMinimized(); };
    actions.zoom = [window] { window->isMaximized() ? window->showNormal() : window->showMaximized(); };
    window->setMenuBar(MainMenuBuilder::build(actions, window));
}

void MainWindowController::takeInitialSize() {
    m_window->resize(MainWindowLayout::initialSize + menuBarHeight());
}

// The measures are of the content view; the menu bar comes on top.
QSize MainWindowController::menuBarHeight() const {
    return {0, m_window->menuBar()->sizeHint().height()};
}

// Known before it is shown, so that the first texts are laid out once, at their size.
void MainWindowController::layOutContent() {
    const QSize size = m_window->size() - menuBarHeight();
    m_contentView->resize(size);
    m_contentView->onLayout(layoutMainWindow(size));
}

void MainWindowController::connectSession() {
    m_session->onRender = [this](EditingSession::Parts parts) { render(parts); };
    m_session->onDirtyChanged = [this](bool dirty) { m_window->setWindowModified(dirty); };
    m_session->onMergedConflicts = [this] { flash(L("MergedRemoteNotice")); };
    m_session->onSaveError = [this](const QString &systemText) { showSaveError(systemText); };
    m_session->onShowFromTop = [this] {
        // Another page takes the keyboard, and its photos are others.
        if (m_photoPreview)
            m_photoPreview->dismiss();
        m_entryView->startEntry();
    };
}

void MainWindowController::showWindow() {
    if (m_unplacedContent)
        fillWindow();
    m_window->show();
    // Where the window is shown already, what was put into it is not yet.
    m_window->layout()->activate();
    m_window->menuBar()->show();
    m_contentView->show();
    m_entryView->takeKeyboard();
}

void MainWindowController::bringToFront() {
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void MainWindowController::goToRandomDay() {
    if (const auto day = m_store->randomDayWithContent())
        m_session->open(*day);
    else
        QApplication::beep();
}

void MainWindowController::stepMonths(int months) {
    const auto month = m_session->currentMonthDay().month - 1 + months;
    m_session->open({(month % 12 + 12) % 12 + 1, 1});
}

void MainWindowController::showInFileManager() {
    const auto file = m_store->fileURL(m_session->currentMonthDay());
    std::error_code error;
    m_fileManager.reveal(std::filesystem::exists(file, error) ? file : m_store->rootURL());
}

void MainWindowController::showSearch() {
    if (!m_searchController) {
        m_searchController = std::make_unique<SearchWindowController>(*m_store, m_clock);
        m_searchController->onPick = [this](MonthDay monthDay, std::int64_t year) {
            m_session->open(monthDay);
            m_session->pickYear(year);
            bringToFront();
        };
    }
    m_searchController->runSearch();
    m_searchController->present();
    if (qEnvironmentVariableIsSet("DIARY_SEARCH_QUERY")) {
        m_searchController->setQuery(qEnvironmentVariable("DIARY_SEARCH_QUERY"));
        m_searchController->runSearch();
    }
}

void MainWindowController::showYearOverview() {
    if (!m_yearOverviewController) {
        m_yearOverviewController = std::make_unique<YearOverviewController>(m_window.get());
        m_yearOverviewController->onPick = [this](MonthDay monthDay) {
            m_session->open(monthDay);
            bringToFront();
        };
    }
    m_yearOverviewController->present(*m_store, Formatters::context(), m_session->currentMonthDay());
}

void MainWindowController::openPhotoPreview(std::size_t index) {
    if (!m_photoPreview)
        return;
    const auto startIndex = static_cast<std::int64_t>(std::min(index, m_galleryPhotos.size()));
    const auto sourceFrame = [gallery = QPointer(m_entryView->galleryView())](std::size_t photo) {
        return gallery ? gallery->sourceFrameOnScreen(photo) : QRect();
    };
    if (m_photoPreview->prepare(m_galleryPhotos, startIndex, sourceFrame))
        m_photoPreview->present(m_contentView);
}

bool MainWindowController::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Paint && !std::exchange(m_hasBeenPainted, true)) {
        m_statisticsRequest = StatisticsRequest::None;
        QMetaObject::invokeMethod(
            this, [this] { catchUpAfterFirstPainted(); }, Qt::QueuedConnection);
    }
    if (event->type() == QEvent::Close) {
        m_session->flushSaveIfDirty();
        m_vaultObserver.reset();
        if (onClose)
            onClose();
    }
    return QObject::eventFilter(watched, event);
}

// What takes longer the more there is in the vault, or around it, and would keep the first picture waiting.
void MainWindowController::catchUpAfterFirstPainted() {
    m_yearRail->showAllCards();
    // Not for a window that was closed in between.
    if (m_window->isVisible()) {
        watchVault();
        // What changed since the day was read.
        m_session->scheduleRemoteRefresh();
        m_store->warmEvictedFiles();
    }
    requestStatistics();
    if (m_photoPreview)
        m_photoPreview->askForMotionPreference();
    if (onFirstPainted)
        onFirstPainted();
}

void MainWindowController::lookAgain() {
    m_session->performRemoteRefresh();
    // Else it follows the first picture.
    if (m_hasBeenPainted)
        m_store->warmEvictedFiles();
}

void MainWindowController::watchVault() {
    // Called on the observer's thread. A call that is still queued when this object goes is dropped with it.
    m_vaultObserver = std::make_unique<VaultObserver>(m_store->rootURL(), [this] {
        QMetaObject::invokeMethod(
            this, [this] { m_session->scheduleRemoteRefresh(); }, Qt::QueuedConnection);
    });
    try {
        m_vaultObserver->start();
    } catch (const std::system_error &) {
        // The diary works without; it then learns of changes when it is activated.
        flash(L("The diary folder could not be watched for changes."));
    }
}

void MainWindowController::flash(const QString &notice) {
    m_statusBar->flash(notice);
}

void MainWindowController::showSaveError(const QString &systemText) {
    showAlert(m_window.get(),
              {.icon = QMessageBox::Warning,
               .message = L("This entry could not be saved. Tavelo keeps it and will try again."),
               .informativeText = systemText});
}

void MainWindowController::render(EditingSession::Parts parts) {
    using Part = EditingSession::Part;
    if (parts.testFlag(Part::TopBar))
        renderTopBar();
    if (parts.testFlag(Part::Sidebar))
        renderSidebar();
    if (parts.testFlag(Part::Entry))
        renderEntry();
    if (parts.testFlag(Part::Rail))
        renderRail();
    if (parts.testFlag(Part::Status))
        renderStatus();
}

void MainWindowController::renderEntry() {
    m_entryView->update(DayModels::entry(DayState::of(*m_session)));
    refreshGallery();
}

// Photos of another day or year go at once. The same page may be rendered again at any time, and keeps its
// photos until the library has answered anew.
void MainWindowController::refreshGallery() {
    ++m_galleryGeneration;
    m_galleryFetch = GalleryFetch::None;
    const GallerySubject subject{.monthDay = m_session->currentMonthDay(),
                                 .year = m_session->viewedYear(),
                                 .isShown = !m_session->showSource() && Settings::shared().showPhotos()};
    if (subject != m_gallerySubject) {
        m_gallerySubject = subject;
        showGallery({});
    }
    if (subject.isShown)
        m_galleryDebounce->start(galleryDelay);
    else
        m_galleryDebounce->stop();
}

void MainWindowController::fetchGallery() {
    m_galleryFetch = GalleryFetch::UnderWay;
    const auto &[monthDay, year, isShown] = m_gallerySubject;
    m_photoLibrary->fetch(
        year, monthDay.month, monthDay.day,
        [window = QPointer(this), generation = m_galleryGeneration](std::vector<DayPhoto> photos) {
            if (!window || window->m_galleryGeneration != generation)
                return;
            window->showGallery(std::move(photos));
            const auto fetch = std::exchange(window->m_galleryFetch, GalleryFetch::None);
            if (fetch == GalleryFetch::UnderWayAndAgain)
                window->photosDidChange();
        });
}

// While pictures are being found this comes often: the wait is not begun anew each time, lest it never end.
void MainWindowController::photosDidChange() {
    if (m_galleryFetch != GalleryFetch::None)
        m_galleryFetch = GalleryFetch::UnderWayAndAgain;
    else if (m_gallerySubject.isShown && !m_galleryDebounce->isActive())
        m_galleryDebounce->start(galleryDelay);
}

void MainWindowController::showGallery(std::vector<DayPhoto> photos) {
    if (photos == m_galleryPhotos)
        return;
    m_galleryPhotos = std::move(photos);
    std::optional<QString> caption;
    if (!m_galleryPhotos.empty())
        caption = L("PhotosCaption", m_galleryPhotos.size());
    m_entryView->galleryView()->setPhotos(m_galleryPhotos, caption);
}

void MainWindowController::renderRail() {
    m_yearRail->update(
        DayModels::rail(DayState::of(*m_session), [this](std::int64_t year) { m_session->pickYear(year); }));
}

// With what is known already; what the vault holds now comes a moment later.
void MainWindowController::renderSidebar() {
    m_sidebar->update(DayModels::sidebar(DayState::of(*m_session), m_clock.today().monthDay(), m_statistics));
    requestStatistics();
}

void MainWindowController::requestStatistics() {
    if (m_statisticsRequest == StatisticsRequest::NotYet)
        return;
    if (m_statisticsRequest != StatisticsRequest::None) {
        m_statisticsRequest = StatisticsRequest::UnderWayAndAgain;
        return;
    }
    m_statisticsRequest = StatisticsRequest::UnderWay;
    m_store->loadArchiveSnapshot([this](const DiaryStore::ArchiveSnapshot &snapshot) {
        const bool isOutdated = std::exchange(m_statisticsRequest, StatisticsRequest::None) ==
                                StatisticsRequest::UnderWayAndAgain;
        if (m_statistics != snapshot) {
            m_statistics = snapshot;
            m_sidebar->update(
                DayModels::sidebar(DayState::of(*m_session), m_clock.today().monthDay(), m_statistics));
        }
        if (isOutdated)
            requestStatistics();
    });
}

void MainWindowController::renderTopBar() {
    const auto model = DayModels::topBar(DayState::of(*m_session));
    m_topBar->update(model);
    m_window->setWindowTitle(windowTitle(model.fileName));
}

void MainWindowController::renderStatus() {
    m_statusBar->update(
        DayModels::statusBar(DayState::of(*m_session), m_store->fileURL(m_session->currentMonthDay())));
}

} // namespace diary
