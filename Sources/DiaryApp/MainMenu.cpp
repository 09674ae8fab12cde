// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/MainMenu.h>

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QWidget>

#include <algorithm>
#include <utility>
#include <vector>

namespace diary::MainMenuBuilder {

namespace {

struct Entry {
    const char *key = nullptr; // of the title; none for a separator
    QString title = {};
    QList<QKeySequence> shortcuts = {};
    std::function<void()> action = nullptr;
    // The slot of the text that has the keyboard.
    const char *textSlot = nullptr;
};

Entry separator() {
    return {};
}

Entry entry(const char *key, QList<QKeySequence> shortcuts, std::function<void()> action) {
    return {key, L(key), std::move(shortcuts), std::move(action)};
}

Entry namedEntry(const char *key, QList<QKeySequence> shortcuts, std::function<void()> action) {
    return {key, L(key, L("Diary")), std::move(shortcuts), std::move(action)};
}

// Text fields answer to these keys themselves; the menu shows them, and serves the mouse.
Entry textEntry(const char *key, const QKeySequence &shortcut, const char *slot) {
    return {key, L(key), {shortcut}, nullptr, slot};
}

bool canPerform(const QWidget *widget, const char *slot) {
    return widget && widget->metaObject()->indexOfMethod(QByteArray(slot) + "()") >= 0;
}

bool isLatinOrCyrillic(QChar character) {
    const auto script = character.script();
    return character.isLetter() && (script == QChar::Script_Latin || script == QChar::Script_Cyrillic);
}

QString withMnemonic(QString title, const QString &key, QSet<QChar> &taken) {
    title.replace(QLatin1Char('&'), QLatin1String("&&"));
    const auto take = [&taken](const QString &text) {
        const auto letter = std::find_if(text.begin(), text.end(), [&](QChar character) {
            return isLatinOrCyrillic(character) && !taken.contains(character.toCaseFolded());
        });
        if (letter != text.end())
            taken.insert(letter->toCaseFolded());
        return letter;
    };
    // By its beginning: a Latin name may stand in a Han, Kana or Hangul title.
    const auto first = std::find_if(title.cbegin(), title.cend(), [](QChar c) { return c.isLetter(); });
    if (first != title.cend() && isLatinOrCyrillic(*first)) {
        const auto letter = take(std::as_const(title));
        return letter != title.cend() ? title.insert(letter - title.cbegin(), QLatin1Char('&')) : title;
    }
    const auto letter = take(key);
    if (letter == key.end())
        return title;
    const bool hasDots = title.endsWith(QChar(0x2026));
    return title.insert(hasDots ? title.size() - 1 : title.size(),
                        QStringLiteral("(&%1)").arg(letter->toUpper()));
}

void fill(QMenu *menu, std::vector<Entry> entries) {
    QStringList titles;
    QStringList keys;
    for (const auto &entry : entries) {
        if (entry.key) {
            titles += entry.title;
            keys += QString::fromUtf8(entry.key);
        }
    }
    titles = withMnemonics(titles, keys);
    QList<QAction *> textActions;
    for (auto &entry : entries) {
        if (!entry.key) {
            menu->addSeparator();
            continue;
        }
        auto *action = menu->addAction(titles.takeFirst());
        action->setObjectName(QString::fromUtf8(entry.key));
        action->setShortcuts(entry.shortcuts);
        if (entry.textSlot) {
            action->setProperty("textSlot", QByteArray(entry.textSlot));
            textActions += action;
            QObject::connect(action, &QAction::triggered, action, [slot = entry.textSlot] {
                if (auto *widget = QApplication::focusWidget(); canPerform(widget, slot))
                    QMetaObject::invokeMethod(widget, slot);
            });
        } else if (entry.action) {
            QObject::connect(action, &QAction::triggered, action, std::move(entry.action));
        } else {
            action->setEnabled(false);
        }
    }
    // Only while the menu is shown: a disabled entry would swallow its shortcut.
    const auto enable = [textActions](bool onlyWhatCanBeDone) {
        for (auto *action : textActions)
            action->setEnabled(!onlyWhatCanBeDone || canPerform(QApplication::focusWidget(),
                                                                action->property("textSlot").toByteArray()));
    };
    if (!textActions.isEmpty()) {
        QObject::connect(menu, &QMenu::aboutToShow, menu, [enable] { enable(true); });
        QObject::connect(menu, &QMenu::aboutToHide, menu, [enable] { enable(false); });
    }
}

// Below the menu's own entries, the open windows.
void listWindowsIn(QMenu *menu) {
    const auto ownEntries = menu->actions();
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, ownEntries] {
        for (auto *action : menu->actions()) {
            if (!ownEntries.contains(action))
                delete action;
        }
        menu->addSeparator();
        for (auto *window : QApplication::topLevelWidgets()) {
            if (!window->isVisible() || window->windowType() != Qt::Window)
                continue;
            auto title = window->windowTitle();
            title.remove(QLatin1String("[*]")).replace(QLatin1Char('&'), QLatin1String("&&"));
            auto *action = menu->addAction(title);
            action->setCheckable(true);
            action->setChecked(window->isActiveWindow());
            QObject::connect(action, &QAction::triggered, window, [window] {
                window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
                window->raise();
                window->activateWindow();
            });
        }
    });
}

} // namespace

QStringList withMnemonics(const QStringList &titles, const QStringList &keys) {
    QSet<QChar> taken;
    QStringList marked;
    for (qsizetype index = 0; index < titles.size(); ++index)
        marked += titles[index].isEmpty() ? QString() : withMnemonic(titles[index], keys[index], taken);
    return marked;
}

QMenuBar *build(const MenuActions &actions, QWidget *parent) {
    const auto ctrl = [](Qt::Key key) { return QKeySequence(Qt::CTRL | key); };
    const auto alt = [](Qt::Key key) { return QKeySequence(Qt::ALT | key); };

    auto *bar = new QMenuBar(parent);
    bar->setObjectName(QStringLiteral("mainMenu"));
    const QStringList keys = {QStringLiteral("Diary"), QStringLiteral("File"),     QStringLiteral("Edit"),
                              QStringLiteral("View"),  QStringLiteral("Navigate"), QStringLiteral("Window")};
    QStringList titles;
    for (const auto &key : keys)
        titles += L(key.toUtf8().constData());
    const auto marked = withMnemonics(titles, keys);
    const auto addMenu = [&](qsizetype index, std::vector<Entry> entries) {
        auto *menu = bar->addMenu(marked[index]);
        menu->setObjectName(keys[index]);
        fill(menu, std::move(entries));
        return menu;
    };

    addMenu(0, {namedEntry("About %@", {}, actions.showAbout),
                entry("Check for Updates…", {}, actions.checkForUpdates), separator(),
                entry("Settings…", {ctrl(Qt::Key_Comma)}, actions.showSettings), separator(),
                namedEntry("Hide %@", {ctrl(Qt::Key_H)}, actions.hide), separator(),
                namedEntry("Quit %@", {ctrl(Qt::Key_Q)}, actions.quit)});
    addMenu(1, {entry("Close", {ctrl(Qt::Key_W)}, actions.close), separator(),
                entry("Save", {ctrl(Qt::Key_S)}, actions.save), separator(),
                entry("Show in Finder", {}, actions.showInFileManager)});
    addMenu(2, {textEntry("Undo", ctrl(Qt::Key_Z), "undo"),
                textEntry("Redo", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), "redo"), separator(),
                textEntry("Cut", ctrl(Qt::Key_X), "cut"), textEntry("Copy", ctrl(Qt::Key_C), "copy"),
                textEntry("Paste", ctrl(Qt::Key_V), "paste"),
                textEntry("Select All", ctrl(Qt::Key_A), "selectAll"), separator(),
                entry("Find…", {ctrl(Qt::Key_F)}, actions.showSearch)});
    addMenu(3, {entry("Toggle Source", {ctrl(Qt::Key_U)}, actions.toggleSource)});
    // Where a text has the keyboard, Ctrl and an arrow step by words; Alt and an arrow step by days
    // everywhere.
    addMenu(4, {entry("Previous Day", {ctrl(Qt::Key_Left), alt(Qt::Key_Left)}, actions.goToPreviousDay),
                entry("Next Day", {ctrl(Qt::Key_Right), alt(Qt::Key_Right)}, actions.goToNextDay),
                separator(), entry("Today", {ctrl(Qt::Key_T)}, actions.goToToday),
                entry("Random Day", {ctrl(Qt::Key_R)}, actions.goToRandomDay), separator(),
                entry("Year Calendar", {ctrl(Qt::Key_Y)}, actions.showYearOverview)});
    listWindowsIn(addMenu(
        5, {entry("Minimize", {ctrl(Qt::Key_M)}, actions.minimize), entry("Zoom", {}, actions.zoom)}));
    return bar;
}

} // namespace diary::MainMenuBuilder
