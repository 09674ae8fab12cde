// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/EditingSession.h>
#include <DiaryKit/VaultObserver.h>

#include <QObject>

#include <memory>

class QComboBox;
class QEvent;
class QLabel;
class QMainWindow;
class QPushButton;
class QWidget;

namespace diary {

class EntryTextEdit;

// The one main window: shows the editing session and hands the user's wishes to it. Main thread only; the
// clock must outlive it.
class MainWindowController : public QObject {
    Q_OBJECT

public:
    // Opens today on the store.
    MainWindowController(std::unique_ptr<DiaryStore> store, Clock &clock);
    ~MainWindowController() override;

    EditingSession &session() { return *m_session; }
    DiaryStore &store() { return *m_store; }
    QMainWindow *window() const { return m_window.get(); }
    // Everything below the menu bar.
    QWidget *contentView() const { return m_contentView; }
    EntryTextEdit *textView() const { return m_textView; }

    void showWindow();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildWindow();
    QWidget *buildTopBar();
    void buildActions();
    void connectSession();
    void showSaveError(const QString &systemText);
    void flash(const QString &notice);
    void watchVault();

    void render(EditingSession::Parts parts);
    void renderTopBar();
    void renderEntry();
    void renderStatus();

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
    // Last, so that its thread has ended before anything else goes.
    std::unique_ptr<VaultObserver> m_vaultObserver;
};

} // namespace diary
