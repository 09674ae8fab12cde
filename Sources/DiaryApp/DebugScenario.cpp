// SPDX-License-Identifier: MIT
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/DebugScenario.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/SettingsWindowController.h>

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QPixmap>
#include <QTextCursor>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>

namespace diary {

namespace {

constexpr double defaultDelaySeconds = 2.0;
constexpr double longestDelaySeconds = 24 * 60 * 60;
// The page's photos are there by then.
constexpr std::chrono::seconds photoDelay{1};
constexpr std::chrono::seconds longestSettling{10};
constexpr std::chrono::milliseconds settlingPause{10};

std::chrono::milliseconds screenshotDelay() {
    bool isNumber = false;
    const double seconds = qEnvironmentVariable("DIARY_SCREENSHOT_DELAY").toDouble(&isNumber);
    const bool usable = isNumber && seconds >= 0 && seconds <= longestDelaySeconds;
    return std::chrono::milliseconds(std::lround((usable ? seconds : defaultDelaySeconds) * 1000));
}

bool isSwitchedOn(const char *variable) {
    return qEnvironmentVariable(variable) == QLatin1String("1");
}

// File names such as 02-30.md are keys too, but no day to go to.
bool isOnCalendar(MonthDay monthDay) {
    return monthDay.day <= MonthDay::daysInCycleMonth.at(static_cast<std::size_t>(monthDay.month - 1));
}

void showRequestedEntry(EditingSession &session) {
    const auto day = qEnvironmentVariable("DIARY_VIEW_DAY").toStdString();
    if (const auto monthDay = MonthDay::parse(day + ".md"); monthDay && isOnCalendar(*monthDay))
        session.open(*monthDay);

    bool isYear = false;
    const auto year = qEnvironmentVariable("DIARY_VIEW_YEAR").toLongLong(&isYear);
    if (isYear)
        session.pickYear(year);

    if (isSwitchedOn("DIARY_VIEW_SOURCE"))
        session.toggleSourceView();
}

void openRequestedPhoto(AppDelegate &delegate) {
    bool isIndex = false;
    const auto index = qEnvironmentVariable("DIARY_OPEN_PHOTO").toLongLong(&isIndex);
    if (!isIndex)
        return;
    QTimer::singleShot(photoDelay, &delegate, [&delegate, index] {
        if (auto *mainWindow = delegate.mainWindowController())
            mainWindow->openPhotoPreview(static_cast<std::size_t>(std::max(index, 0LL)));
    });
}

void takePhotoPreviewPicture(const MainWindowController &controller, const QString &path) {
    const auto *preview = controller.photoPreview();
    if (auto *panel = preview ? preview->panel() : nullptr; panel && panel->isVisible())
        panel->grab(panel->currentLayout().card).save(path, "PNG");
}

// A picture that cannot be written is no reason to miss the next.
void takePicture(QWidget *view, const QString &path) {
    view->grab().save(path, "PNG");
}

void takePictures(AppDelegate &delegate, const QString &path) {
    // A window in the background shows no caret; without a screen every window counts as active.
    auto *focused = QApplication::focusWidget();
    if (focused && !qEnvironmentVariableIsSet("DIARY_ACTIVATE"))
        focused->clearFocus();
    if (auto *controller = delegate.mainWindowController()) {
        takePicture(controller->contentView(), path);
        takePhotoPreviewPicture(*controller, path + QStringLiteral(".ql.png"));
    }
    if (auto *controller = delegate.settingsWindowController())
        takePicture(controller->contentView(), path + QStringLiteral(".settings.png"));
    for (auto *window : QApplication::topLevelWidgets()) {
        const bool isPanel =
            qobject_cast<QDialog *>(window) || window->objectName() == QLatin1String("DiarySearchWindow");
        if (window->isVisible() && isPanel)
            takePicture(window, path + QStringLiteral(".panel.png"));
    }
}

// The figures of a slow disk may come later than the delay; two pictures of one page would then differ.
void finishWhenSettled(AppDelegate &delegate, std::chrono::steady_clock::time_point deadline) {
    const auto *controller = delegate.mainWindowController();
    if (controller && controller->isReadingStatistics() && std::chrono::steady_clock::now() < deadline) {
        QTimer::singleShot(settlingPause, &delegate,
                           [&delegate, deadline] { finishWhenSettled(delegate, deadline); });
        return;
    }
    takePictures(delegate, qEnvironmentVariable("DIARY_SCREENSHOT"));
    delegate.terminate();
}

} // namespace

bool isDebugScenario() {
    return qEnvironmentVariableIsSet("DIARY_SCREENSHOT");
}

void runDebugScenario(AppDelegate &delegate) {
    // A blinking caret would make two pictures of one page differ.
    QApplication::setCursorFlashTime(0);

    auto *mainWindow = delegate.mainWindowController();
    showRequestedEntry(mainWindow->session());
    if (isSwitchedOn("DIARY_VIEW_SETTINGS"))
        delegate.showSettings();
    if (isSwitchedOn("DIARY_VIEW_SEARCH"))
        mainWindow->showSearch();
    if (isSwitchedOn("DIARY_FULLSCREEN"))
        mainWindow->window()->setWindowState(mainWindow->window()->windowState() ^ Qt::WindowFullScreen);
    if (isSwitchedOn("DIARY_VIEW_YEARCAL"))
        mainWindow->showYearOverview();
    if (qEnvironmentVariableIsSet("DIARY_TYPE_TEXT") && mainWindow->textView())
        mainWindow->textView()->textCursor().insertText(qEnvironmentVariable("DIARY_TYPE_TEXT"));

    openRequestedPhoto(delegate);

    QTimer::singleShot(screenshotDelay(), &delegate, [&delegate] {
        finishWhenSettled(delegate, std::chrono::steady_clock::now() + longestSettling);
    });
}

} // namespace diary
