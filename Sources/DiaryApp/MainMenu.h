// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <functional>

class QMenuBar;
class QWidget;

namespace diary {

// What the menu's entries do, besides those that go to whatever text has the keyboard. An entry without an
// action is disabled.
struct MenuActions {
    std::function<void()> showAbout;
    std::function<void()> checkForUpdates;
    std::function<void()> showSettings;
    std::function<void()> hide;
    std::function<void()> quit;
    std::function<void()> close;
    std::function<void()> save;
    std::function<void()> showInFileManager;
    std::function<void()> showSearch;
    std::function<void()> toggleSource;
    std::function<void()> goToPreviousDay;
    std::function<void()> goToNextDay;
    std::function<void()> goToToday;
    std::function<void()> goToRandomDay;
    std::function<void()> showYearOverview;
    std::function<void()> minimize;
    std::function<void()> zoom;
};

namespace MainMenuBuilder {

// The whole menu, in the language in use; a built one is never retitled. The window menu lists the program's
// open windows whenever it is shown.
QMenuBar *build(const MenuActions &actions, QWidget *parent);

// The titles with a letter each to press with Alt, no two alike as far as they have letters. A title in a
// script without letters of its own gets one of its key's in brackets, as is usual there.
QStringList withMnemonics(const QStringList &titles, const QStringList &keys);

} // namespace MainMenuBuilder

} // namespace diary
