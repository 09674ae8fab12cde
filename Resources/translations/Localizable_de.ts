<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
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
        <translation>Über %@</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <extracomment>Menu entry, and a small button of the settings window. Room: 230 px in the settings window.</extracomment>
        <translation>Nach Aktualisierungen suchen&#xa0;…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <extracomment>Menu entry: opens the settings window. Room: a menu entry.</extracomment>
        <translation>Einstellungen&#xa0;…</translation>
    </message>
    <message>
        <source>Hide %@</source>
        <extracomment>Menu entry: hides the windows of the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>%@ ausblenden</translation>
    </message>
    <message>
        <source>Quit %@</source>
        <extracomment>Menu entry: ends the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>%@ beenden</translation>
    </message>
    <message>
        <source>File</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>Menu entry and button: closes the window. Room: a menu entry.</extracomment>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Save</source>
        <extracomment>Menu entry: saves what was typed, now. Room: a menu entry.</extracomment>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <extracomment>Menu entry: shows the day's file in the desktop's file manager. Room: a menu entry.</extracomment>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Edit</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Undo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Cut</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Ausschneiden</translation>
    </message>
    <message>
        <source>Copy</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Paste</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Einfügen</translation>
    </message>
    <message>
        <source>Select All</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Alles auswählen</translation>
    </message>
    <message>
        <source>Find…</source>
        <extracomment>Menu entry: opens the search window. Room: a menu entry.</extracomment>
        <translation>Suchen&#xa0;…</translation>
    </message>
    <message>
        <source>View</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Toggle Source</source>
        <extracomment>Menu entry: shows the day's whole file as Markdown text instead of the page, or the page again. Room: a menu entry.</extracomment>
        <translation>Quelltext ein-/ausblenden</translation>
    </message>
    <message>
        <source>Navigate</source>
        <extracomment>Title of a menu with ways to go to another day. Room: the menu bar, one short word.</extracomment>
        <translation>Gehe zu</translation>
    </message>
    <message>
        <source>Previous Day</source>
        <extracomment>Menu entry, and the name of the button ‹ for a screen reader. Room: a menu entry.</extracomment>
        <translation>Vorheriger Tag</translation>
    </message>
    <message>
        <source>Next Day</source>
        <extracomment>Menu entry, and the name of the button › for a screen reader. Room: a menu entry.</extracomment>
        <translation>Nächster Tag</translation>
    </message>
    <message>
        <source>Today</source>
        <extracomment>Menu entry: goes to today. Room: a menu entry.</extracomment>
        <translation>Heute</translation>
    </message>
    <message>
        <source>Random Day</source>
        <extracomment>Menu entry, and a button of the top bar: opens some day that has an entry. Room: 130 px in the top bar.</extracomment>
        <translation>Zufälliger Tag</translation>
    </message>
    <message>
        <source>Year Calendar</source>
        <extracomment>Menu entry, button tip and window title: all days of the year, shaded by how many years have an entry. Room: a menu entry.</extracomment>
        <translation>Jahreskalender</translation>
    </message>
    <message>
        <source>Window</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Minimize</source>
        <extracomment>Menu entry: puts the window away into the task bar. Room: a menu entry.</extracomment>
        <translation>Minimieren</translation>
    </message>
    <message>
        <source>Zoom</source>
        <extracomment>Menu entry: makes the window as large as the screen, or small again. Room: a menu entry.</extracomment>
        <translation>Maximieren</translation>
    </message>
    <message>
        <source>Version %@</source>
        <extracomment>In the window about the program; %@ is a version number. Room: 300 px.</extracomment>
        <translation>Version %@</translation>
    </message>
    <message>
        <source>A diary in plain Markdown files. Licensed under the MIT License.</source>
        <extracomment>In the window about the program. Room: wraps.</extracomment>
        <translation>Ein Tagebuch aus einfachen Markdown-Dateien. Veröffentlicht unter der MIT-Lizenz.</translation>
    </message>
    <message>
        <source>Built with %@</source>
        <extracomment>In the window about the program; %@ names a library and its version. Room: 300 px.</extracomment>
        <translation>Entwickelt mit %@</translation>
    </message>
    <message>
        <source>OK</source>
        <extracomment>Button.</extracomment>
        <translation>OK</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>Button of the top bar that shows the day's whole file as Markdown text. Room: 120 px.</extracomment>
        <translation>Quelltext</translation>
    </message>
    <message>
        <source>Reader</source>
        <extracomment>The same button while the Markdown text is shown: goes back to the page. Room: 120 px.</extracomment>
        <translation>Leseansicht</translation>
    </message>
    <message>
        <source>%d year sections</source>
        <extracomment>Beside the file name in the top bar: how many years have a section in the file; any number from 0. Room: 200 px.</extracomment>
        <translation>Jahresabschnitte: %d</translation>
    </message>
    <message>
        <source>Viewing ## %d · %d chars</source>
        <extracomment>Right side of the status bar: the year that is shown, written like its heading in the file, and the number of characters. Room: 300 px.</extracomment>
        <translation>Angezeigt: ## %d · %d Zeichen</translation>
    </message>
    <message>
        <source>MergedRemoteNotice</source>
        <extracomment>Shown for some seconds in the status bar: what another device wrote on this day was combined with what is here. Room: 560 px.</extracomment>
        <translation>Änderungen von einem anderen Gerät wurden zusammengeführt</translation>
    </message>
    <message>
        <source>UpdateReadyNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ ist bereit und wird beim Beenden installiert</translation>
    </message>
    <message>
        <source>UpdateInstalledNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ ist installiert</translation>
    </message>
    <message>
        <source>UpdateKeptNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ konnte nicht installiert werden; es hat sich nichts geändert</translation>
    </message>
    <message>
        <source>UpdateDownloadingNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ wird heruntergeladen&#xa0;…</translation>
    </message>
    <message>
        <source>Days not yet downloaded: %d</source>
        <extracomment>Notice: so many day files are known to the cloud drive and not on this computer. Any number from 1. Room: 560 px.</extracomment>
        <translation>Noch nicht heruntergeladene Tage: %d</translation>
    </message>
    <message>
        <source>The diary folder could not be watched for changes.</source>
        <extracomment>Notice: changes by other programs will be seen later than usual. Room: 560 px.</extracomment>
        <translation>Der Tagebuchordner konnte nicht auf Änderungen überwacht werden.</translation>
    </message>
    <message>
        <source>Day %d / %d</source>
        <extracomment>At the top right of the page: which day of the year it is, and how many days the year has. Room: 250 px.</extracomment>
        <translation>Tag %d / %d</translation>
    </message>
    <message>
        <source>This file has %d past-year sections</source>
        <extracomment>Under the date: how many earlier years have an entry for this day; any number from 0. Room: 560 px.</extracomment>
        <translation>Abschnitte früherer Jahre in dieser Datei: %d</translation>
    </message>
    <message>
        <source>NoLeapDayThisYear</source>
        <extracomment>Instead of the entry, on 29 February of a year that has none.</extracomment>
        <translation>In diesem Jahr gibt es keinen 29. Februar.</translation>
    </message>
    <message>
        <source>The year %d cannot be written.</source>
        <extracomment>Instead of the entry, for a year that does not have four digits.</extracomment>
        <translation>Für das Jahr %d lässt sich nichts schreiben.</translation>
    </message>
    <message>
        <source>This year</source>
        <extracomment>In the margin beside the entry, under the year. Room: 84 px.</extracomment>
        <translation>Dieses Jahr</translation>
    </message>
    <message>
        <source>%d years ago</source>
        <extracomment>In the margin beside the entry and on the cards; must read right for 1 as well as for 5. Room: 84 px.</extracomment>
        <translation>vor %d J.</translation>
    </message>
    <message>
        <source>Write about this day in %d…</source>
        <extracomment>Invitation in an empty entry; %d is the year. Room: 560 px.</extracomment>
        <translation>Schreiben Sie über diesen Tag im Jahr %d&#xa0;…</translation>
    </message>
    <message>
        <source>GapLine</source>
        <extracomment>Under the entry; %@ lists the years without an entry, as in 2024 · 2023 · 2020. Room: wraps.</extracomment>
        <translation>Nichts geschrieben: %@</translation>
    </message>
    <message>
        <source>(empty file)</source>
        <extracomment>In place of the Markdown text of a file without any.</extracomment>
        <translation>(leere Datei)</translation>
    </message>
    <message>
        <source>PhotosMark</source>
        <extracomment>In the margin beside the photos of the day, one word. Room: 76 px.</extracomment>
        <translation>Fotos</translation>
    </message>
    <message>
        <source>PhotosCaption</source>
        <extracomment>Above the photos; %d is their number, any from 1. Room: 460 px.</extracomment>
        <translation>Fotos von diesem Tag: %d</translation>
    </message>
    <message>
        <source>Previous Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Vorheriges Foto</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Nächstes Foto</translation>
    </message>
    <message>
        <source>Open in Image Viewer</source>
        <extracomment>Opens a photo in another program. Room: a menu entry.</extracomment>
        <translation>Im Bildbetrachter öffnen</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <extracomment>Shows a photo's file in the file manager. Room: a menu entry.</extracomment>
        <translation>Im Ordner anzeigen</translation>
    </message>
    <message>
        <source>On This Day</source>
        <extracomment>Title of the column of cards, one for each year of the shown day, which need not be today. Room: 230 px.</extracomment>
        <translation>An diesem Tag</translation>
    </message>
    <message>
        <source>%d chars</source>
        <extracomment>On a card: number of characters without spaces, any from 0. Room: 150 px.</extracomment>
        <translation>%d Zeichen</translation>
    </message>
    <message>
        <source>Not written yet</source>
        <extracomment>On the card of a year without text. Room: wraps.</extracomment>
        <translation>Noch nichts geschrieben</translation>
    </message>
    <message>
        <source>This year · writing</source>
        <extracomment>On the card of the current year. Room: 220 px.</extracomment>
        <translation>Dieses Jahr · in Arbeit</translation>
    </message>
    <message>
        <source>Add a past year</source>
        <extracomment>Button below the cards: begins an entry for an earlier year. Room: 220 px.</extracomment>
        <translation>Früheres Jahr hinzufügen</translation>
    </message>
    <message>
        <source>This day is still empty</source>
        <extracomment>Below the cards. Room: wraps.</extracomment>
        <translation>Dieser Tag ist noch leer</translation>
    </message>
    <message>
        <source>Spanning %d years · earliest %d</source>
        <extracomment>Below the cards: from the earliest year with an entry to the current one, both counted, at least 2; then the earliest year. Room: wraps.</extracomment>
        <translation>Umfasst %d Jahre · frühestes %d</translation>
    </message>
    <message>
        <source>Previous Month</source>
        <extracomment>Name of the button ‹ over the month for a screen reader.</extracomment>
        <translation>Vorheriger Monat</translation>
    </message>
    <message>
        <source>Next Month</source>
        <extracomment>Name of the button › over the month for a screen reader.</extracomment>
        <translation>Nächster Monat</translation>
    </message>
    <message>
        <source>Back to Today</source>
        <extracomment>Button of the sidebar, followed by today's date as in 03-14. Room: 145 px.</extracomment>
        <translation>Zurück zu heute</translation>
    </message>
    <message>
        <source>Days written</source>
        <extracomment>Label in the sidebar, before a value such as 123 / 365. Room: 125 px.</extracomment>
        <translation>Tage mit Eintrag</translation>
    </message>
    <message>
        <source>Earliest year</source>
        <extracomment>Label in the sidebar, before a year. Room: 150 px.</extracomment>
        <translation>Frühestes Jahr</translation>
    </message>
    <message>
        <source>Total files</source>
        <extracomment>Label in the sidebar, before a number. Room: 150 px.</extracomment>
        <translation>Dateien gesamt</translation>
    </message>
    <message>
        <source>Find</source>
        <extracomment>Button tip, and title of the search window.</extracomment>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Settings</source>
        <extracomment>Button tip, and title of the settings window.</extracomment>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>A11yHasContent</source>
        <extracomment>For a screen reader, after a date in the month calendar: some year has an entry for it.</extracomment>
        <translation>mit Eintrag</translation>
    </message>
    <message>
        <source>%d d</source>
        <extracomment>Beside the name of a month: number of its days with an entry, any from 0, abbreviated. Room: 60 px.</extracomment>
        <translation>%d T.</translation>
    </message>
    <message>
        <source>YearsWrittenLegend</source>
        <extracomment>Before the four shades 0, 1, 2 and 3+: the number of years with an entry for a day. Room: 250 px.</extracomment>
        <translation>Jahre mit Eintrag</translation>
    </message>
    <message>
        <source>Years written: %d</source>
        <extracomment>For a screen reader, after a date in the year calendar: number of years with an entry for it, any from 0.</extracomment>
        <translation>Jahre mit Eintrag: %d</translation>
    </message>
    <message>
        <source>YearFootnote</source>
        <extracomment>Below the year calendar. Room: wraps at 580 px.</extracomment>
        <translation>Jedes Quadrat ist ein Tag des Jahres: Je dunkler es ist, desto mehr Jahre haben an diesem Tag einen Eintrag. Das umrandete Quadrat ist der 29. Februar, den es nur in Schaltjahren gibt.</translation>
    </message>
    <message>
        <source>SearchPlaceholder</source>
        <extracomment>In the empty search field. Room: 330 px.</extracomment>
        <translation>Im ganzen Tagebuch suchen</translation>
    </message>
    <message>
        <source>SearchNoResults</source>
        <extracomment>In place of the list when nothing was found. Room: 330 px.</extracomment>
        <translation>Keine Einträge gefunden</translation>
    </message>
    <message>
        <source>Search</source>
        <extracomment>Name of the search field for a screen reader.</extracomment>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search Results</source>
        <extracomment>Name of the list of found entries for a screen reader.</extracomment>
        <translation>Suchergebnisse</translation>
    </message>
    <message>
        <source>Entries found: %d</source>
        <extracomment>%d is the number of entries that a search found. Read out by screen readers; never seen.</extracomment>
        <translation>Gefundene Einträge: %d</translation>
    </message>
    <message>
        <source>General</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Language</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>System Default</source>
        <extracomment>First choice of the languages: the one that the system speaks. Room: 300 px.</extracomment>
        <translation>Wie das System</translation>
    </message>
    <message>
        <source>Diary Folder</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Tagebuchordner</translation>
    </message>
    <message>
        <source>Vault Location</source>
        <extracomment>Label of a row: the folder that holds the diary. Room: 84 px a word.</extracomment>
        <translation>Speicherort</translation>
    </message>
    <message>
        <source>Choose…</source>
        <extracomment>Small button: picks another folder. Room: 288 px together with the next two.</extracomment>
        <translation>Wählen&#xa0;…</translation>
    </message>
    <message>
        <source>iCloud Drive</source>
        <extracomment>Small button: puts the diary into Apple's cloud drive, whose name this is.</extracomment>
        <translation>iCloud Drive</translation>
    </message>
    <message>
        <source>Cloud Drive</source>
        <extracomment>The same button, which cannot be pressed, on a computer without any cloud drive; with one, it bears that drive's name.</extracomment>
        <translation>Cloud-Speicher</translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <extracomment>Small button: goes back to the usual folder.</extracomment>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Copy your diary to the new folder?</source>
        <extracomment>Question after another folder was chosen that holds no diary yet; the folder's path stands below the next text.</extracomment>
        <translation>Tagebuch in den neuen Ordner kopieren?</translation>
    </message>
    <message>
        <source>There is no diary in the new folder yet. Only day files are copied, and the old folder stays as it is.</source>
        <extracomment>Text of that question. A day file is the file of one day of the year, such as 03-14.md.</extracomment>
        <translation>Im neuen Ordner ist noch kein Tagebuch. Nur die Tagesdateien werden kopiert, und der alte Ordner bleibt, wie er ist.</translation>
    </message>
    <message>
        <source>Copy Diary</source>
        <extracomment>First button under that question. Room: 200 px.</extracomment>
        <translation>Tagebuch kopieren</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <extracomment>Second button under that question: uses the new folder without any entries. Room: 200 px.</extracomment>
        <translation>Leer beginnen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <extracomment>Button. Room: 200 px.</extracomment>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Copying the diary…</source>
        <extracomment>State while the diary is copied to another folder, in place of the hint under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Tagebuch wird kopiert&#xa0;…</translation>
    </message>
    <message>
        <source>The diary could not be copied and stays where it is.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Das Tagebuch konnte nicht kopiert werden und bleibt, wo es ist.</translation>
    </message>
    <message>
        <source>This setting could not be saved.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Diese Einstellung konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>VaultHint</source>
        <extracomment>Under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Jeder Tag des Jahres ist eine Markdown-Datei in diesem Ordner. In einem synchronisierten Ordner haben Sie das Tagebuch auf allen Geräten. Wählen Sie einen leeren Ordner, bietet Tavelo an, das Tagebuch dorthin zu kopieren.</translation>
    </message>
    <message>
        <source>Choose the Diary Folder</source>
        <extracomment>Title of the window in which a folder is picked.</extracomment>
        <translation>Tagebuchordner wählen</translation>
    </message>
    <message>
        <source>Writing</source>
        <extracomment>Title of a card about the look of the text, shown in capitals.</extracomment>
        <translation>Schreiben</translation>
    </message>
    <message>
        <source>Body Font</source>
        <extracomment>Label of a row: the typeface of the diary's text. Room: 84 px a word.</extracomment>
        <translation>Schriftart</translation>
    </message>
    <message>
        <source>Default (Serif)</source>
        <extracomment>First choice of the typefaces: the built-in one, which has serifs. Room: 300 px.</extracomment>
        <translation>Vorgabe (mit Serifen)</translation>
    </message>
    <message>
        <source>Editor Font Size</source>
        <extracomment>Label of a row, before Small, Standard and Large. Room: 84 px a word.</extracomment>
        <translation>Schriftgröße</translation>
    </message>
    <message>
        <source>Small</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Klein</translation>
    </message>
    <message>
        <source>Standard</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Large</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Groß</translation>
    </message>
    <message>
        <source>Show missing-year note</source>
        <extracomment>Check box: below the entry, name the years without one. Room: 350 px.</extracomment>
        <translation>Jahre ohne Eintrag nennen</translation>
    </message>
    <message>
        <source>Show photos taken this day</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Fotos von diesem Tag zeigen</translation>
    </message>
    <message>
        <source>Photos</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Fotos</translation>
    </message>
    <message>
        <source>Photo Access</source>
        <extracomment>Label of a row: whether the user's pictures can be read. Room: 84 px a word.</extracomment>
        <translation>Zugriff auf Fotos</translation>
    </message>
    <message>
        <source>PhotoAccessNotAsked</source>
        <extracomment>State: the computer has no folder of pictures.</extracomment>
        <translation>Kein Bilderordner</translation>
    </message>
    <message>
        <source>PhotoAccessDenied</source>
        <extracomment>State: the folder of pictures cannot be read.</extracomment>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>PhotoAccessLimited</source>
        <extracomment>State: some of the folders of pictures cannot be read.</extracomment>
        <translation>Nur einige Ordner</translation>
    </message>
    <message>
        <source>PhotoAccessAllowed</source>
        <extracomment>State: all folders of pictures can be read.</extracomment>
        <translation>Erlaubt</translation>
    </message>
    <message>
        <source>Photos cannot be shown: a part of Tavelo is not installed.</source>
        <extracomment>In place of the states above, where the part of the program that reads pictures is missing. Room: wraps at 330 px.</extracomment>
        <translation>Fotos können nicht gezeigt werden: Ein Teil von Tavelo ist nicht installiert.</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <extracomment>Small button: picks one more folder in which photos are looked for. Room: 336 px together with any of the states above.</extracomment>
        <translation>Ordner hinzufügen&#xa0;…</translation>
    </message>
    <message>
        <source>Choose a Folder with Photos</source>
        <extracomment>Title of the window in which that folder is picked.</extracomment>
        <translation>Ordner mit Fotos wählen</translation>
    </message>
    <message>
        <source>Remove</source>
        <extracomment>Small button beside such a folder: no longer look for photos there. The folder itself stays. Room: 120 px.</extracomment>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Updates &amp; Feedback</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Aktualisierungen und Feedback</translation>
    </message>
    <message>
        <source>Version</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Version</translation>
    </message>
    <message>
        <source>Install updates automatically</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Aktualisierungen automatisch installieren</translation>
    </message>
    <message>
        <source>Checking…</source>
        <extracomment>State while the program asks for a newer version. Room: 330 px.</extracomment>
        <translation>Suche läuft&#xa0;…</translation>
    </message>
    <message>
        <source>Feedback</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Feedback</translation>
    </message>
    <message>
        <source>Send Feedback…</source>
        <extracomment>Small button: opens an e-mail to the makers. Room: 230 px.</extracomment>
        <translation>Feedback senden&#xa0;…</translation>
    </message>
    <message>
        <source>FeedbackHint</source>
        <extracomment>Beside or under that button. Room: 340 px.</extracomment>
        <translation>Öffnet eine Nachricht in Ihrem E-Mail-Programm.</translation>
    </message>
    <message>
        <source>This copy of Tavelo was built without an address for feedback.</source>
        <extracomment>In place of that text, where the button cannot be pressed. Room: wraps at 330 px.</extracomment>
        <translation>Dieses Tavelo wurde ohne eine Adresse für Feedback erstellt.</translation>
    </message>
    <message>
        <source>No e-mail program could be opened. Please write to this address:</source>
        <extracomment>Message after the button, followed by the address on a line of its own.</extracomment>
        <translation>Es ließ sich kein E-Mail-Programm öffnen. Bitte schreiben Sie an diese Adresse:</translation>
    </message>
    <message>
        <source>OnboardTitle</source>
        <extracomment>The first question at the very first start.</extracomment>
        <translation>Wo soll Ihr Tagebuch liegen?</translation>
    </message>
    <message>
        <source>OnboardInfo</source>
        <extracomment>Under that question; %@ is the name of a cloud drive, for example Nextcloud.</extracomment>
        <translation>In %@ haben Sie das Tagebuch auch auf Ihren anderen Geräten. Auf diesem Computer liegt es in Ihrem Dokumente-Ordner. Sie können das später in den Einstellungen ändern.</translation>
    </message>
    <message>
        <source>OnboardICloud</source>
        <extracomment>First button under that question; %@ is the name of a cloud drive, for example Nextcloud. Room: 240 px.</extracomment>
        <translation>In %@ ablegen</translation>
    </message>
    <message>
        <source>OnboardLocal</source>
        <extracomment>Second button under that question. Room: 240 px.</extracomment>
        <translation>Auf diesem Computer ablegen</translation>
    </message>
    <message>
        <source>This entry could not be saved. Tavelo keeps it and will try again.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Dieser Eintrag konnte nicht gespeichert werden. Tavelo bewahrt ihn auf und versucht es erneut.</translation>
    </message>
    <message>
        <source>Tavelo could not save this text to the diary when it was last closed. It is kept in this folder:</source>
        <extracomment>Message at the start, followed by the folder on a line of its own.</extracomment>
        <translation>Tavelo konnte diesen Text beim letzten Schließen nicht im Tagebuch speichern. Er liegt in diesem Ordner:</translation>
    </message>
    <message>
        <source>Show Folder</source>
        <extracomment>Button of that message. Room: 200 px.</extracomment>
        <translation>Ordner anzeigen</translation>
    </message>
    <message>
        <source>Tavelo is already open on this diary.</source>
        <extracomment>Message when the program is started a second time.</extracomment>
        <translation>Dieses Tagebuch ist bereits in Tavelo geöffnet.</translation>
    </message>
    <message>
        <source>UpdateFoundTitle</source>
        <extracomment>Title of a message.</extracomment>
        <translation>Eine neue Version ist verfügbar</translation>
    </message>
    <message>
        <source>UpdateFoundInfo</source>
        <extracomment>Text of that message; %@ is a version number.</extracomment>
        <translation>Tavelo %@ wurde heruntergeladen und wird beim Beenden installiert.</translation>
    </message>
    <message>
        <source>UpdateFailedTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Suche nach Aktualisierungen fehlgeschlagen</translation>
    </message>
    <message>
        <source>UpdateFailedInfo</source>
        <extracomment>Text of that message: no connection, or what was fetched is not genuine.</extracomment>
        <translation>Tavelo konnte die neue Version nicht laden oder prüfen. Prüfen Sie Ihre Internetverbindung und versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>UpdateUnsupportedInfo</source>
        <extracomment>Text of that message, and state in the settings window: this copy was installed by other means. Room: wraps at 330 px.</extracomment>
        <translation>Diese Kopie von Tavelo kann sich nicht selbst aktualisieren. Wenn sie mit Ihrem System kam, verwenden Sie die Paketverwaltung.</translation>
    </message>
    <message>
        <source>UpToDateTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Tavelo ist aktuell</translation>
    </message>
    <message>
        <source>UpToDateInfo</source>
        <extracomment>Text of that message; %@ is the version number in use.</extracomment>
        <translation>Version %@ ist die neueste.</translation>
    </message>
    <message>
        <source>ConflictMarker</source>
        <extracomment>A line that is written into the user's files, between two versions of an entry that could not be combined. Never change it once it was published: it is how a merge is recognised. One line of plain Markdown, no heading, no list, no fence.</extracomment>
        <translation>*– Die andere Fassung dieses Eintrags –*</translation>
    </message>
</context>
</TS>
