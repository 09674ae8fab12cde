// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Formatters.h>
#include <DiaryKit/DiaryDay.h>

#include <QObject>

#include <cstdint>
#include <functional>
#include <memory>

class QWidget;

namespace diary {

class DiaryStore;
class YearOverviewView;

// The window of the year overview, beside the main window. Made once and shown as often as wanted.
class YearOverviewController : public QObject {
    Q_OBJECT

public:
    // The main window, if any, must outlive the controller.
    explicit YearOverviewController(QWidget *mainWindow = nullptr);
    ~YearOverviewController() override;

    // A day was picked. The window closes after the call.
    std::function<void(MonthDay)> onPick;

    // Shows the window with the vault's present figures, which are read in the background and appear as soon
    // as they are there. The keyboard starts on the given day. The store may go at any time.
    void present(DiaryStore &store, const Formatters::Context &names, MonthDay startingAt = {});

    QWidget *window() const { return m_window.get(); }

private:
    void centerWindow();
    void pick(MonthDay monthDay);

    QWidget *m_mainWindow;
    std::unique_ptr<QWidget> m_window;
    YearOverviewView *m_view = nullptr;
    std::uint64_t m_presentation = 0; // tells the figures of the latest from those of an earlier one
};

} // namespace diary
