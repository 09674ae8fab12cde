<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru" sourcelanguage="en">
<context>
    <name>Diary</name>
    <message>
        <source>Diary</source>
        <extracomment>The program's name, as it is shown everywhere. Not translated.</extracomment>
        <translation>Tavelo</translation>
    </message>
    <message>
        <source>About %@</source>
        <extracomment>Menu entry; %@ is the program's name. Room: a menu entry.</extracomment>
        <translation>О программе %@</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <extracomment>Menu entry, and a small button of the settings window. Room: 230 px in the settings window.</extracomment>
        <translation>Проверить обновления…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <extracomment>Menu entry: opens the settings window. Room: a menu entry.</extracomment>
        <translation>Настройки…</translation>
    </message>
    <message>
        <source>Hide %@</source>
        <extracomment>Menu entry: hides the windows of the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>Скрыть %@</translation>
    </message>
    <message>
        <source>Quit %@</source>
        <extracomment>Menu entry: ends the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>Завершить %@</translation>
    </message>
    <message>
        <source>File</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Файл</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>Menu entry and button: closes the window. Room: a menu entry.</extracomment>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Save</source>
        <extracomment>Menu entry: saves what was typed, now. Room: a menu entry.</extracomment>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <extracomment>Menu entry: shows the day's file in the desktop's file manager. Room: a menu entry.</extracomment>
        <translation>Показать в файловом менеджере</translation>
    </message>
    <message>
        <source>Edit</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Правка</translation>
    </message>
    <message>
        <source>Undo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Отменить</translation>
    </message>
    <message>
        <source>Redo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Cut</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Вырезать</translation>
    </message>
    <message>
        <source>Copy</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Копировать</translation>
    </message>
    <message>
        <source>Paste</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Вставить</translation>
    </message>
    <message>
        <source>Select All</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Выделить всё</translation>
    </message>
    <message>
        <source>Find…</source>
        <extracomment>Menu entry: opens the search window. Room: a menu entry.</extracomment>
        <translation>Поиск…</translation>
    </message>
    <message>
        <source>View</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Вид</translation>
    </message>
    <message>
        <source>Toggle Source</source>
        <extracomment>Menu entry: shows the day's whole file as Markdown text instead of the page, or the page again. Room: a menu entry.</extracomment>
        <translation>Показать или скрыть исходный текст</translation>
    </message>
    <message>
        <source>Navigate</source>
        <extracomment>Title of a menu with ways to go to another day. Room: the menu bar, one short word.</extracomment>
        <translation>Переход</translation>
    </message>
    <message>
        <source>Previous Day</source>
        <extracomment>Menu entry, and the name of the button ‹ for a screen reader. Room: a menu entry.</extracomment>
        <translation>Предыдущий день</translation>
    </message>
    <message>
        <source>Next Day</source>
        <extracomment>Menu entry, and the name of the button › for a screen reader. Room: a menu entry.</extracomment>
        <translation>Следующий день</translation>
    </message>
    <message>
        <source>Today</source>
        <extracomment>Menu entry: goes to today. Room: a menu entry.</extracomment>
        <translation>Сегодня</translation>
    </message>
    <message>
        <source>Random Day</source>
        <extracomment>Menu entry, and a button of the top bar: opens some day that has an entry. Room: 130 px in the top bar.</extracomment>
        <translation>Случайный день</translation>
    </message>
    <message>
        <source>Year Calendar</source>
        <extracomment>Menu entry, button tip and window title: all days of the year, shaded by how many years have an entry. Room: a menu entry.</extracomment>
        <translation>Календарь года</translation>
    </message>
    <message>
        <source>Window</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Окно</translation>
    </message>
    <message>
        <source>Minimize</source>
        <extracomment>Menu entry: puts the window away into the task bar. Room: a menu entry.</extracomment>
        <translation>Свернуть</translation>
    </message>
    <message>
        <source>Zoom</source>
        <extracomment>Menu entry: makes the window as large as the screen, or small again. Room: a menu entry.</extracomment>
        <translation>Развернуть</translation>
    </message>
    <message>
        <source>Version %@</source>
        <extracomment>In the window about the program; %@ is a version number. Room: 300 px.</extracomment>
        <translation>Версия %@</translation>
    </message>
    <message>
        <source>A diary in plain Markdown files. Licensed under the MIT License.</source>
        <extracomment>In the window about the program. Room: wraps.</extracomment>
        <translation>Дневник в простых файлах Markdown. Распространяется по лицензии MIT.</translation>
    </message>
    <message>
        <source>Built with %@</source>
        <extracomment>In the window about the program; %@ names a library and its version. Room: 300 px.</extracomment>
        <translation>Создано с помощью %@</translation>
    </message>
    <message>
        <source>OK</source>
        <extracomment>Button.</extracomment>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>Button of the top bar that shows the day's whole file as Markdown text. Room: 120 px.</extracomment>
        <translation>Исходный текст</translation>
    </message>
    <message>
        <source>Reader</source>
        <extracomment>The same button while the Markdown text is shown: goes back to the page. Room: 120 px.</extracomment>
        <translation>Чтение</translation>
    </message>
    <message>
        <source>%d year sections</source>
        <extracomment>Beside the file name in the top bar: how many years have a section in the file; any number from 0. Room: 200 px.</extracomment>
        <translation>Разделов по годам: %d</translation>
    </message>
    <message>
        <source>Viewing ## %d · %d chars</source>
        <extracomment>Right side of the status bar: the year that is shown, written like its heading in the file, and the number of characters. Room: 300 px.</extracomment>
        <translation>Открыто ## %d · %d зн.</translation>
    </message>
    <message>
        <source>MergedRemoteNotice</source>
        <extracomment>Shown for some seconds in the status bar: what another device wrote on this day was combined with what is here. Room: 560 px.</extracomment>
        <translation>Изменения, сделанные на другом устройстве, объединены</translation>
    </message>
    <message>
        <source>UpdateReadyNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ загружен и будет установлен при выходе</translation>
    </message>
    <message>
        <source>UpdateInstalledNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ установлен</translation>
    </message>
    <message>
        <source>UpdateKeptNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Не удалось установить Tavelo %@; ничего не изменилось</translation>
    </message>
    <message>
        <source>UpdateDownloadingNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Загружается Tavelo %@…</translation>
    </message>
    <message>
        <source>Days not yet downloaded: %d</source>
        <extracomment>Notice: so many day files are known to the cloud drive and not on this computer. Any number from 1. Room: 560 px.</extracomment>
        <translation>Ещё не загружено дней: %d</translation>
    </message>
    <message>
        <source>The diary folder could not be watched for changes.</source>
        <extracomment>Notice: changes by other programs will be seen later than usual. Room: 560 px.</extracomment>
        <translation>Не удалось отслеживать изменения в папке дневника.</translation>
    </message>
    <message>
        <source>Day %d / %d</source>
        <extracomment>At the top right of the page: which day of the year it is, and how many days the year has. Room: 250 px.</extracomment>
        <translation>День %d / %d</translation>
    </message>
    <message>
        <source>This file has %d past-year sections</source>
        <extracomment>Under the date: how many earlier years have an entry for this day; any number from 0. Room: 560 px.</extracomment>
        <translation>Разделов за прошлые годы в этом файле: %d</translation>
    </message>
    <message>
        <source>NoLeapDayThisYear</source>
        <extracomment>Instead of the entry, on 29 February of a year that has none.</extracomment>
        <translation>В этом году нет 29 февраля.</translation>
    </message>
    <message>
        <source>The year %d cannot be written.</source>
        <extracomment>Instead of the entry, for a year that does not have four digits.</extracomment>
        <translation>Записи за %d год вести нельзя.</translation>
    </message>
    <message>
        <source>This year</source>
        <extracomment>In the margin beside the entry, under the year. Room: 84 px.</extracomment>
        <translation>Этот год</translation>
    </message>
    <message>
        <source>%d years ago</source>
        <extracomment>In the margin beside the entry and on the cards; must read right for 1 as well as for 5. Room: 84 px.</extracomment>
        <translation>лет назад: %d</translation>
    </message>
    <message>
        <source>Write about this day in %d…</source>
        <extracomment>Invitation in an empty entry; %d is the year. Room: 560 px.</extracomment>
        <translation>Напишите об этом дне %d года…</translation>
    </message>
    <message>
        <source>GapLine</source>
        <extracomment>Under the entry; %@ lists the years without an entry, as in 2024 · 2023 · 2020. Room: wraps.</extracomment>
        <translation>Нет записей: %@</translation>
    </message>
    <message>
        <source>(empty file)</source>
        <extracomment>In place of the Markdown text of a file without any.</extracomment>
        <translation>(пустой файл)</translation>
    </message>
    <message>
        <source>PhotosMark</source>
        <extracomment>In the margin beside the photos of the day, one word. Room: 76 px.</extracomment>
        <translation>Фото</translation>
    </message>
    <message>
        <source>PhotosCaption</source>
        <extracomment>Above the photos; %d is their number, any from 1. Room: 460 px.</extracomment>
        <translation>Фото за этот день: %d</translation>
    </message>
    <message>
        <source>Previous Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Предыдущее фото</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Следующее фото</translation>
    </message>
    <message>
        <source>Open in Image Viewer</source>
        <extracomment>Opens a photo in another program. Room: a menu entry.</extracomment>
        <translation>Открыть в просмотрщике изображений</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <extracomment>Shows a photo's file in the file manager. Room: a menu entry.</extracomment>
        <translation>Показать в папке</translation>
    </message>
    <message>
        <source>On This Day</source>
        <extracomment>Title of the column of cards, one for each year of the shown day, which need not be today. Room: 230 px.</extracomment>
        <translation>В этот день</translation>
    </message>
    <message>
        <source>%d chars</source>
        <extracomment>On a card: number of characters without spaces, any from 0. Room: 150 px.</extracomment>
        <translation>%d зн.</translation>
    </message>
    <message>
        <source>Not written yet</source>
        <extracomment>On the card of a year without text. Room: wraps.</extracomment>
        <translation>Пока ничего не написано</translation>
    </message>
    <message>
        <source>This year · writing</source>
        <extracomment>On the card of the current year. Room: 220 px.</extracomment>
        <translation>Этот год · пишется</translation>
    </message>
    <message>
        <source>Add a past year</source>
        <extracomment>Button below the cards: begins an entry for an earlier year. Room: 220 px.</extracomment>
        <translation>Добавить более ранний год</translation>
    </message>
    <message>
        <source>This day is still empty</source>
        <extracomment>Below the cards. Room: wraps.</extracomment>
        <translation>Этот день пока пуст</translation>
    </message>
    <message>
        <source>Spanning %d years · earliest %d</source>
        <extracomment>Below the cards: from the earliest year with an entry to the current one, both counted, at least 2; then the earliest year. Room: wraps.</extracomment>
        <translation>Охват лет: %d · начиная с %d</translation>
    </message>
    <message>
        <source>Previous Month</source>
        <extracomment>Name of the button ‹ over the month for a screen reader.</extracomment>
        <translation>Предыдущий месяц</translation>
    </message>
    <message>
        <source>Next Month</source>
        <extracomment>Name of the button › over the month for a screen reader.</extracomment>
        <translation>Следующий месяц</translation>
    </message>
    <message>
        <source>Back to Today</source>
        <extracomment>Button of the sidebar, followed by today's date as in 03-14. Room: 145 px.</extracomment>
        <translation>Сегодня</translation>
    </message>
    <message>
        <source>Days written</source>
        <extracomment>Label in the sidebar, before a value such as 123 / 365. Room: 125 px.</extracomment>
        <translation>Дней с записями</translation>
    </message>
    <message>
        <source>Earliest year</source>
        <extracomment>Label in the sidebar, before a year. Room: 150 px.</extracomment>
        <translation>Первый год</translation>
    </message>
    <message>
        <source>Total files</source>
        <extracomment>Label in the sidebar, before a number. Room: 150 px.</extracomment>
        <translation>Всего файлов</translation>
    </message>
    <message>
        <source>Find</source>
        <extracomment>Button tip, and title of the search window.</extracomment>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>Settings</source>
        <extracomment>Button tip, and title of the settings window.</extracomment>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>A11yHasContent</source>
        <extracomment>For a screen reader, after a date in the month calendar: some year has an entry for it.</extracomment>
        <translation>есть запись</translation>
    </message>
    <message>
        <source>%d d</source>
        <extracomment>Beside the name of a month: number of its days with an entry, any from 0, abbreviated. Room: 60 px.</extracomment>
        <translation>%d дн.</translation>
    </message>
    <message>
        <source>YearsWrittenLegend</source>
        <extracomment>Before the four shades 0, 1, 2 and 3+: the number of years with an entry for a day. Room: 250 px.</extracomment>
        <translation>Лет с записями</translation>
    </message>
    <message>
        <source>Years written: %d</source>
        <extracomment>For a screen reader, after a date in the year calendar: number of years with an entry for it, any from 0.</extracomment>
        <translation>Лет с записями: %d</translation>
    </message>
    <message>
        <source>YearFootnote</source>
        <extracomment>Below the year calendar. Room: wraps at 580 px.</extracomment>
        <translation>Каждый квадрат&#xa0;— день года: чем он темнее, тем больше лет, в которые есть запись за этот день. Квадрат в рамке&#xa0;— 29 февраля, которое бывает только в високосные годы.</translation>
    </message>
    <message>
        <source>SearchPlaceholder</source>
        <extracomment>In the empty search field. Room: 330 px.</extracomment>
        <translation>Поиск по всему дневнику</translation>
    </message>
    <message>
        <source>SearchNoResults</source>
        <extracomment>In place of the list when nothing was found. Room: 330 px.</extracomment>
        <translation>Записей не найдено</translation>
    </message>
    <message>
        <source>Search</source>
        <extracomment>Name of the search field for a screen reader.</extracomment>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>Search Results</source>
        <extracomment>Name of the list of found entries for a screen reader.</extracomment>
        <translation>Результаты поиска</translation>
    </message>
    <message>
        <source>Entries found: %d</source>
        <extracomment>%d is the number of entries that a search found. Read out by screen readers; never seen.</extracomment>
        <translation>Найдено записей: %d</translation>
    </message>
    <message>
        <source>General</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Основные</translation>
    </message>
    <message>
        <source>Language</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Язык</translation>
    </message>
    <message>
        <source>System Default</source>
        <extracomment>First choice of the languages: the one that the system speaks. Room: 300 px.</extracomment>
        <translation>Как в системе</translation>
    </message>
    <message>
        <source>Diary Folder</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Папка дневника</translation>
    </message>
    <message>
        <source>Vault Location</source>
        <extracomment>Label of a row: the folder that holds the diary. Room: 84 px a word.</extracomment>
        <translation>Путь</translation>
    </message>
    <message>
        <source>Choose…</source>
        <extracomment>Small button: picks another folder. Room: 288 px together with the next two.</extracomment>
        <translation>Выбрать…</translation>
    </message>
    <message>
        <source>iCloud Drive</source>
        <extracomment>Small button: puts the diary into Apple's cloud drive, whose name this is.</extracomment>
        <translation>iCloud Drive</translation>
    </message>
    <message>
        <source>Cloud Drive</source>
        <extracomment>The same button, which cannot be pressed, on a computer without any cloud drive; with one, it bears that drive's name.</extracomment>
        <translation>Облачный диск</translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <extracomment>Small button: goes back to the usual folder.</extracomment>
        <translation>Сбросить</translation>
    </message>
    <message>
        <source>Copy your diary to the new folder?</source>
        <extracomment>Question after another folder was chosen that holds no diary yet; the folder's path stands below the next text.</extracomment>
        <translation>Скопировать дневник в новую папку?</translation>
    </message>
    <message>
        <source>There is no diary in the new folder yet. Only day files are copied, and the old folder stays as it is.</source>
        <extracomment>Text of that question. A day file is the file of one day of the year, such as 03-14.md.</extracomment>
        <translation>В новой папке ещё нет дневника. Копируются только файлы дней, а старая папка остаётся как есть.</translation>
    </message>
    <message>
        <source>Copy Diary</source>
        <extracomment>First button under that question. Room: 200 px.</extracomment>
        <translation>Скопировать дневник</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <extracomment>Second button under that question: uses the new folder without any entries. Room: 200 px.</extracomment>
        <translation>Начать с пустого</translation>
    </message>
    <message>
        <source>Cancel</source>
        <extracomment>Button. Room: 200 px.</extracomment>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Copying the diary…</source>
        <extracomment>State while the diary is copied to another folder, in place of the hint under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Копирование дневника…</translation>
    </message>
    <message>
        <source>The diary could not be copied and stays where it is.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Не удалось скопировать дневник. Он остаётся на прежнем месте.</translation>
    </message>
    <message>
        <source>This setting could not be saved.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Не удалось сохранить эту настройку.</translation>
    </message>
    <message>
        <source>VaultHint</source>
        <extracomment>Under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Каждый день года&#xa0;— это файл Markdown в этой папке. Если папка синхронизируется, дневник есть на всех ваших устройствах. Если выбрать пустую папку, Tavelo предложит скопировать в неё дневник.</translation>
    </message>
    <message>
        <source>Choose the Diary Folder</source>
        <extracomment>Title of the window in which a folder is picked.</extracomment>
        <translation>Выбор папки дневника</translation>
    </message>
    <message>
        <source>Writing</source>
        <extracomment>Title of a card about the look of the text, shown in capitals.</extracomment>
        <translation>Текст</translation>
    </message>
    <message>
        <source>Body Font</source>
        <extracomment>Label of a row: the typeface of the diary's text. Room: 84 px a word.</extracomment>
        <translation>Шрифт</translation>
    </message>
    <message>
        <source>Default (Serif)</source>
        <extracomment>First choice of the typefaces: the built-in one, which has serifs. Room: 300 px.</extracomment>
        <translation>По умолчанию (с засечками)</translation>
    </message>
    <message>
        <source>Editor Font Size</source>
        <extracomment>Label of a row, before Small, Standard and Large. Room: 84 px a word.</extracomment>
        <translation>Размер текста</translation>
    </message>
    <message>
        <source>Small</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Мелкий</translation>
    </message>
    <message>
        <source>Standard</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Обычный</translation>
    </message>
    <message>
        <source>Large</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Крупный</translation>
    </message>
    <message>
        <source>Show missing-year note</source>
        <extracomment>Check box: below the entry, name the years without one. Room: 350 px.</extracomment>
        <translation>Показывать годы без записей</translation>
    </message>
    <message>
        <source>Show photos taken this day</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Показывать фото, снятые в этот день</translation>
    </message>
    <message>
        <source>Photos</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Фотографии</translation>
    </message>
    <message>
        <source>Photo Access</source>
        <extracomment>Label of a row: whether the user's pictures can be read. Room: 84 px a word.</extracomment>
        <translation>Доступ к фото</translation>
    </message>
    <message>
        <source>PhotoAccessNotAsked</source>
        <extracomment>State: the computer has no folder of pictures.</extracomment>
        <translation>Нет папки с фото</translation>
    </message>
    <message>
        <source>PhotoAccessDenied</source>
        <extracomment>State: the folder of pictures cannot be read.</extracomment>
        <translation>Нет доступа</translation>
    </message>
    <message>
        <source>PhotoAccessLimited</source>
        <extracomment>State: some of the folders of pictures cannot be read.</extracomment>
        <translation>Только часть папок</translation>
    </message>
    <message>
        <source>PhotoAccessAllowed</source>
        <extracomment>State: all folders of pictures can be read.</extracomment>
        <translation>Разрешён</translation>
    </message>
    <message>
        <source>Photos cannot be shown: a part of Tavelo is not installed.</source>
        <extracomment>In place of the states above, where the part of the program that reads pictures is missing. Room: wraps at 330 px.</extracomment>
        <translation>Фотографии показать нельзя: часть Tavelo не установлена.</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <extracomment>Small button: picks one more folder in which photos are looked for. Room: 336 px together with any of the states above.</extracomment>
        <translation>Добавить папку…</translation>
    </message>
    <message>
        <source>Choose a Folder with Photos</source>
        <extracomment>Title of the window in which that folder is picked.</extracomment>
        <translation>Выбор папки с фотографиями</translation>
    </message>
    <message>
        <source>Remove</source>
        <extracomment>Small button beside such a folder: no longer look for photos there. The folder itself stays. Room: 120 px.</extracomment>
        <translation>Убрать</translation>
    </message>
    <message>
        <source>Updates &amp; Feedback</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Обновления и отзывы</translation>
    </message>
    <message>
        <source>Version</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Версия</translation>
    </message>
    <message>
        <source>Install updates automatically</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Устанавливать обновления автоматически</translation>
    </message>
    <message>
        <source>Checking…</source>
        <extracomment>State while the program asks for a newer version. Room: 330 px.</extracomment>
        <translation>Проверка…</translation>
    </message>
    <message>
        <source>Feedback</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Отзывы</translation>
    </message>
    <message>
        <source>Send Feedback…</source>
        <extracomment>Small button: opens an e-mail to the makers. Room: 230 px.</extracomment>
        <translation>Отправить отзыв…</translation>
    </message>
    <message>
        <source>FeedbackHint</source>
        <extracomment>Beside or under that button. Room: 340 px.</extracomment>
        <translation>Открывает письмо в вашей почтовой программе.</translation>
    </message>
    <message>
        <source>This copy of Tavelo was built without an address for feedback.</source>
        <extracomment>In place of that text, where the button cannot be pressed. Room: wraps at 330 px.</extracomment>
        <translation>Эта сборка Tavelo не содержит адреса для отзывов.</translation>
    </message>
    <message>
        <source>No e-mail program could be opened. Please write to this address:</source>
        <extracomment>Message after the button, followed by the address on a line of its own.</extracomment>
        <translation>Не удалось открыть почтовую программу. Напишите по этому адресу:</translation>
    </message>
    <message>
        <source>OnboardTitle</source>
        <extracomment>The first question at the very first start.</extracomment>
        <translation>Где хранить ваш дневник?</translation>
    </message>
    <message>
        <source>OnboardInfo</source>
        <extracomment>Under that question; %@ is the name of a cloud drive, for example Nextcloud.</extracomment>
        <translation>В %@ дневник будет и на других ваших устройствах. На этом компьютере он будет в папке документов. Позже это можно изменить в настройках.</translation>
    </message>
    <message>
        <source>OnboardICloud</source>
        <extracomment>First button under that question; %@ is the name of a cloud drive, for example Nextcloud. Room: 240 px.</extracomment>
        <translation>Хранить в %@</translation>
    </message>
    <message>
        <source>OnboardLocal</source>
        <extracomment>Second button under that question. Room: 240 px.</extracomment>
        <translation>Хранить на этом компьютере</translation>
    </message>
    <message>
        <source>This entry could not be saved. Tavelo keeps it and will try again.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Не удалось сохранить эту запись. Tavelo хранит её и попробует ещё раз.</translation>
    </message>
    <message>
        <source>Tavelo could not save this text to the diary when it was last closed. It is kept in this folder:</source>
        <extracomment>Message at the start, followed by the folder on a line of its own.</extracomment>
        <translation>При последнем закрытии программе Tavelo не удалось сохранить этот текст в дневнике. Он лежит в этой папке:</translation>
    </message>
    <message>
        <source>Show Folder</source>
        <extracomment>Button of that message. Room: 200 px.</extracomment>
        <translation>Показать папку</translation>
    </message>
    <message>
        <source>Tavelo is already open on this diary.</source>
        <extracomment>Message when the program is started a second time.</extracomment>
        <translation>Этот дневник уже открыт в Tavelo.</translation>
    </message>
    <message>
        <source>UpdateFoundTitle</source>
        <extracomment>Title of a message.</extracomment>
        <translation>Доступна новая версия</translation>
    </message>
    <message>
        <source>UpdateFoundInfo</source>
        <extracomment>Text of that message; %@ is a version number.</extracomment>
        <translation>Tavelo %@ загружен и будет установлен при выходе.</translation>
    </message>
    <message>
        <source>UpdateFailedTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Не удалось проверить обновления</translation>
    </message>
    <message>
        <source>UpdateFailedInfo</source>
        <extracomment>Text of that message: no connection, or what was fetched is not genuine.</extracomment>
        <translation>Tavelo не удалось получить или проверить новую версию. Проверьте подключение к интернету и попробуйте позже.</translation>
    </message>
    <message>
        <source>UpdateUnsupportedInfo</source>
        <extracomment>Text of that message, and state in the settings window: this copy was installed by other means. Room: wraps at 330 px.</extracomment>
        <translation>Эта копия Tavelo не умеет обновляться сама. Если она поставлялась с системой, обновите её менеджером пакетов.</translation>
    </message>
    <message>
        <source>UpToDateTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Установлена последняя версия Tavelo</translation>
    </message>
    <message>
        <source>UpToDateInfo</source>
        <extracomment>Text of that message; %@ is the version number in use.</extracomment>
        <translation>Версия %@&#xa0;— самая новая.</translation>
    </message>
    <message>
        <source>ConflictMarker</source>
        <extracomment>A line that is written into the user's files, between two versions of an entry that could not be combined. Never change it once it was published: it is how a merge is recognised. One line of plain Markdown, no heading, no list, no fence.</extracomment>
        <translation>*— Другая версия этой записи —*</translation>
    </message>
</context>
</TS>
