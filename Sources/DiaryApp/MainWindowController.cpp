// SPDX-License-Identifier: MIT
#include <DiaryApp/AboutBox.h>
#include <DiaryApp/Alert.h>
#include <DiaryApp/EntryTextEdit.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryKit/UserDirectories.h>

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QVBoxLayout>

#include <algorithm>
#include <system_error>

namespace diary {

namespace {

constexpr QSize initialContentSize{1360, 840};
constexpr QSize minimumContentSize{1080, 620};
constexpr std::chrono::seconds flashDuration{4};
constexpr int topBarHeight = 46;
constexpr int statusBarHeight = 27;
constexpr int pageMargin = 48;
constexpr int editorFontPixels = 17;
constexpr int chromeFontPixels = 13;

QFont fontOfSize(const QFont &base, int pixels) {
    QFont font = base;
    font.setPixelSize(pixels);
    return font;
}

void setBackground(QWidget *widget, const QColor &color) {
    widget->setAutoFillBackground(true);
    auto palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
}

// The entry's length as people count: characters that can be seen. Surrogate pairs count once.
qsizetype visibleLength(const QString &text) {
    const auto characters = text.toUcs4();
    return std::count_if(characters.begin(), characters.end(), [](char32_t c) { return !QChar::isSpace(c); });
}

// With the home folder as people write it.
QString abbreviatingHome(const std::filesystem::path &path) {
    const auto relative = path.lexically_relative(UserDirectories::home());
    const bool isInside = !relative.empty() && *relative.begin() != "..";
    return pathToQString(isInside ? "~" / relative : path);
}

} // namespace

MainWindowController::MainWindowController(std::unique_ptr<DiaryStore> store, Clock &clock,
                                           FileManager &fileManager, MenuActions programActions)
    : m_fileManager(fileManager),
      m_store(std::move(store)),
      m_session(std::make_unique<EditingSession>(*m_store, clock)),
      m_flashTimer(clock.makeTimer([this] { renderStatus(); })),
      m_window(std::make_unique<QMainWindow>()),
      m_dayChange(clock, [this] { m_session->calendarDayChanged(); }) {
    buildWindow();
    connectControls();
    buildMenu(std::move(programActions));
    connectSession();
    watchVault();
    m_session->openToday();
}

MainWindowController::~MainWindowController() {
    m_window->removeEventFilter(this);
}

void MainWindowController::buildWindow() {
    m_contentView = new QWidget;
    m_contentView->setObjectName(QStringLiteral("contentView"));

    m_textView = new EntryTextEdit;
    m_textView->setObjectName(QStringLiteral("textView"));
    m_textView->setFrameShape(QFrame::NoFrame);
    m_textView->setFont(fontOfSize(m_textView->font(), editorFontPixels));
    m_textView->setTabStopDistance(4.0 * m_textView->fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    m_textView->document()->setDocumentMargin(pageMargin);
    setBackground(m_textView, Theme::paper());

    auto *statusBar = new QWidget;
    statusBar->setObjectName(QStringLiteral("statusBar"));
    statusBar->setFixedHeight(statusBarHeight);
    setBackground(statusBar, Theme::bar());
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setFont(fontOfSize(m_status->font(), chromeFontPixels - 1));
    m_status->setTextFormat(Qt::PlainText);
    auto *statusLayout = new QHBoxLayout(statusBar);
    statusLayout->setContentsMargins(16, 0, 16, 0);
    statusLayout->addWidget(m_status);

    auto *layout = new QVBoxLayout(m_contentView);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildTopBar());
    layout->addWidget(m_textView, 1);
    layout->addWidget(statusBar);

    QWidget::setTabOrder(m_previousDay, m_nextDay);
    QWidget::setTabOrder(m_nextDay, m_years);
    QWidget::setTabOrder(m_years, m_today);
    QWidget::setTabOrder(m_today, m_textView);

    m_window->setObjectName(QStringLiteral("DiaryMainWindow"));
    m_window->setCentralWidget(m_contentView);
    m_contentView->setMinimumSize(minimumContentSize);
    m_window->installEventFilter(this);
}

QWidget *MainWindowController::buildTopBar() {
    auto *topBar = new QWidget;
    topBar->setObjectName(QStringLiteral("topBar"));
    topBar->setFixedHeight(topBarHeight);
    setBackground(topBar, Theme::bar());
    const auto font = fontOfSize(topBar->font(), chromeFontPixels);

    const auto addButton = [&](const QString &text, const char *name, const QString &description) {
        auto *button = new QPushButton(text, topBar);
        button->setObjectName(QLatin1String(name));
        button->setFont(font);
        button->setAccessibleName(description);
        button->setToolTip(description);
        return button;
    };
    m_previousDay = addButton(QStringLiteral("‹"), "previousDay", QStringLiteral("Previous Day"));
    m_nextDay = addButton(QStringLiteral("›"), "nextDay", QStringLiteral("Next Day"));
    m_today = addButton(QStringLiteral("Today"), "today", QStringLiteral("Go to Today"));
    m_previousDay->setFixedWidth(34);
    m_nextDay->setFixedWidth(34);

    m_fileName = new QLabel(topBar);
    m_fileName->setObjectName(QStringLiteral("fileName"));
    auto titleFont = fontOfSize(font, chromeFontPixels + 1);
    titleFont.setWeight(QFont::DemiBold);
    m_fileName->setFont(titleFont);

    m_years = new QComboBox(topBar);
    m_years->setObjectName(QStringLiteral("years"));
    m_years->setFont(font);
    m_years->setAccessibleName(QStringLiteral("Year"));
    m_years->setToolTip(QStringLiteral("The year of this day that is shown and edited"));

    auto *layout = new QHBoxLayout(topBar);
    layout->setContentsMargins(16, 0, 16, 0);
    layout->setSpacing(8);
    layout->addWidget(m_previousDay);
    layout->addWidget(m_nextDay);
    layout->addWidget(m_fileName);
    layout->addStretch(1);
    layout->addWidget(m_years);
    layout->addWidget(m_today);
    return topBar;
}

void MainWindowController::connectControls() {
    connect(m_previousDay, &QPushButton::clicked, this, [this] { m_session->step(-1); });
    connect(m_nextDay, &QPushButton::clicked, this, [this] { m_session->step(1); });
    connect(m_today, &QPushButton::clicked, this, [this] { m_session->openToday(); });
    connect(m_years, &QComboBox::activated, this,
            [this](int index) { m_session->pickYear(m_years->itemData(index).toLongLong()); });
}

void MainWindowController::buildMenu(MenuActions actions) {
    auto *window = m_window.get();
    actions.showAbout = [window] { showAboutBox(window); };
    actions.hide = [window] { window->showMinimized(); };
    actions.close = [window] { window->close(); };
    actions.save = [this] { m_session->flushSaveIfDirty(); };
    actions.showInFileManager = [this] { showInFileManager(); };
    actions.toggleSource = [this] { m_session->toggleSourceView(); };
    actions.goToPreviousDay = [this] { m_session->step(-1); };
    actions.goToNextDay = [this] { m_session->step(1); };
    actions.goToToday = [this] { m_session->openToday(); };
    actions.goToRandomDay = [this] { goToRandomDay(); };
    actions.minimize = [window] { window->showMinimized(); };
    actions.zoom = [window] { window->isMaximized() ? window->showNormal() : window->showMaximized(); };
    auto *menuBar = MainMenuBuilder::build(std::move(actions), window);
    window->setMenuBar(menuBar);
    // The measures are of the content view; the menu bar comes on top.
    window->resize(initialContentSize + QSize(0, menuBar->sizeHint().height()));
}

void MainWindowController::connectSession() {
    m_textView->onTextChanged = [this](const QString &text) { m_session->draftChanged(text); };
    m_session->onRender = [this](EditingSession::Parts parts) { render(parts); };
    m_session->onDirtyChanged = [this](bool dirty) { m_window->setWindowModified(dirty); };
    m_session->onMergedConflicts = [this] { flash(L("MergedRemoteNotice")); };
    m_session->onSaveError = [this](const QString &systemText) { showSaveError(systemText); };
    m_session->onShowFromTop = [this] {
        // Undoing here what was typed into another entry would put it into this one.
        m_textView->document()->clearUndoRedoStacks();
        m_textView->moveCursor(QTextCursor::End);
        m_textView->verticalScrollBar()->setValue(0);
        m_textView->setFocus();
    };
}

void MainWindowController::showWindow() {
    m_window->show();
    m_textView->setFocus();
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

void MainWindowController::showInFileManager() {
    const auto file = m_store->fileURL(m_session->currentMonthDay());
    std::error_code error;
    m_fileManager.reveal(std::filesystem::exists(file, error) ? file : m_store->rootURL());
}

bool MainWindowController::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Close) {
        m_session->flushSaveIfDirty();
        m_vaultObserver.reset();
        if (onClose)
            onClose();
    }
    return QObject::eventFilter(watched, event);
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
    m_status->setText(notice);
    m_flashTimer->start(flashDuration);
}

void MainWindowController::showSaveError(const QString &systemText) {
    showAlert(m_window.get(),
              {.icon = QMessageBox::Warning,
               .message = L("This entry could not be saved. Tavelo keeps it and will try again."),
               .informativeText = systemText});
}

void MainWindowController::render(EditingSession::Parts parts) {
    if (parts.testFlag(EditingSession::Part::TopBar))
        renderTopBar();
    if (parts.testFlag(EditingSession::Part::Entry))
        renderEntry();
    if (parts.testFlag(EditingSession::Part::Status))
        renderStatus();
}

void MainWindowController::renderTopBar() {
    const auto fileName = toQString(m_session->currentMonthDay().fileName());
    m_fileName->setText(fileName);
    m_window->setWindowTitle(fileName + QStringLiteral("[*]"));
}

void MainWindowController::renderEntry() {
    const QSignalBlocker quiet(m_years);
    m_years->clear();
    for (const auto year : m_session->years())
        m_years->addItem(QString::number(year), QVariant::fromValue<qlonglong>(year));
    m_years->setCurrentIndex(m_years->findData(QVariant::fromValue<qlonglong>(m_session->viewedYear())));

    m_textView->setText(m_session->draft());
    m_textView->setEnabled(m_session->canEdit());
    m_textView->setAccessibleName(QString::number(m_session->viewedYear()));
    const bool hasDay = m_session->currentMonthDay().weekday(m_session->viewedYear()).has_value();
    const auto notEditable =
        hasDay ? QStringLiteral("The year %1 cannot be written.") : QStringLiteral("%1 has no 29 February.");
    m_textView->setPlaceholderText(
        (m_session->canEdit() ? QStringLiteral("Write about this day in %1…") : notEditable)
            .arg(m_session->viewedYear()));
}

void MainWindowController::renderStatus() {
    if (m_flashTimer->isActive())
        return;
    m_status->setText(QStringLiteral("Viewing ## %1 · %2 chars · %3")
                          .arg(m_session->viewedYear())
                          .arg(visibleLength(m_session->draft()))
                          .arg(abbreviatingHome(m_store->fileURL(m_session->currentMonthDay()))));
}

} // namespace diary
