// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayChange.h>
#include <DiaryApp/EditingSession.h>
#include <DiaryApp/MainMenu.h>
#include <DiaryKit/VaultObserver.h>

#include <QObject>

#include <functional>
#include <memory>

class QComboBox;
class QEvent;
class QLabel;
class QMainWindow;
class QPushButton;
class QWidget;

namespace diary {

class EntryTextEdit;
class FileManager;

// The one main window: shows the editing session and hands the user's wishes to it. Main thread only; the
// clock and the file manager must outlive it.
class MainWindowController : public QObject {
    Q_OBJECT

public:
    // Opens today on the store. The actions are those that concern the whole program; the window adds its own
    // and has them all in its menu.
    MainWindowController(std::unique_ptr<DiaryStore> store, Clock &clock, FileManager &fileManager,
                         MenuActions programActions = {});
    ~MainWindowController() override;

    EditingSession &session() { return *m_session; }
    DiaryStore &store() { return *m_store; }
    QMainWindow *window() const { return m_window.get(); }
    // Everything below the menu bar.
    QWidget *contentView() const { return m_contentView; }
    EntryTextEdit *textView() const { return m_textView; }

    void showWindow();
    // Shown again in front of the other windows, where the desktop allows it.
    void bringToFront();

    // The user closed the window. The session is saved, as far as it could be.
    std::function<void()> onClose;

    void goToRandomDay();
    // The day's file, or the vault while there is none.
    void showInFileManager();

    // A notice in the status bar, for some seconds.
    void flash(const QString &notice);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildWindow();
    QWidget *buildTopBar();
    void connectControls();
    void buildMenu(MenuActions actions);
    void connectSession();
    void showSaveError(const QString &systemText);
    void watchVault();

    void render(EditingSession::Parts parts);
    void renderTopBar();
    void renderEntry();
    void renderStatus();

    FileManager &m_fileManager;
    std::unique_ptr<DiaryStore> m_store;
    std::unique_ptr<EditingSession> m_session;
    std::unique_ptr<Timer> m_flashTimer;
    std::unique_ptr<QMainWindow> m_window;
    QWidget *m_contentView = nullptr;
    QPushButton *m_previousDay = nullptr;
    QPushButton *m_nextDay = nullptr;
    QPushButton *m_today = nullptr;
    QLabel *m_fileName = nullptr;
    QComboBox *m_years = nullptr;
    EntryTextEdit *m_textView = nullptr;
    QLabel *m_status = nullptr;
    DayChange m_dayChange;
    // Last, so that its thread has ended before anything else goes.
    std::unique_ptr<VaultObserver> m_vaultObserver;
};

} // namespace diary
