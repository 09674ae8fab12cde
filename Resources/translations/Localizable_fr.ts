<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
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
        <translation>À propos de %@</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <extracomment>Menu entry, and a small button of the settings window. Room: 230 px in the settings window.</extracomment>
        <translation>Rechercher les mises à jour…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <extracomment>Menu entry: opens the settings window. Room: a menu entry.</extracomment>
        <translation>Paramètres…</translation>
    </message>
    <message>
        <source>Hide %@</source>
        <extracomment>Menu entry: hides the windows of the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>Masquer %@</translation>
    </message>
    <message>
        <source>Quit %@</source>
        <extracomment>Menu entry: ends the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>Quitter %@</translation>
    </message>
    <message>
        <source>File</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>Menu entry and button: closes the window. Room: a menu entry.</extracomment>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Save</source>
        <extracomment>Menu entry: saves what was typed, now. Room: a menu entry.</extracomment>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <extracomment>Menu entry: shows the day's file in the desktop's file manager. Room: a menu entry.</extracomment>
        <translation>Afficher dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Edit</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Édition</translation>
    </message>
    <message>
        <source>Undo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Redo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Rétablir</translation>
    </message>
    <message>
        <source>Cut</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Couper</translation>
    </message>
    <message>
        <source>Copy</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Paste</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Coller</translation>
    </message>
    <message>
        <source>Select All</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>Tout sélectionner</translation>
    </message>
    <message>
        <source>Find…</source>
        <extracomment>Menu entry: opens the search window. Room: a menu entry.</extracomment>
        <translation>Rechercher…</translation>
    </message>
    <message>
        <source>View</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Affichage</translation>
    </message>
    <message>
        <source>Toggle Source</source>
        <extracomment>Menu entry: shows the day's whole file as Markdown text instead of the page, or the page again. Room: a menu entry.</extracomment>
        <translation>Afficher ou masquer la source</translation>
    </message>
    <message>
        <source>Navigate</source>
        <extracomment>Title of a menu with ways to go to another day. Room: the menu bar, one short word.</extracomment>
        <translation>Aller</translation>
    </message>
    <message>
        <source>Previous Day</source>
        <extracomment>Menu entry, and the name of the button ‹ for a screen reader. Room: a menu entry.</extracomment>
        <translation>Jour précédent</translation>
    </message>
    <message>
        <source>Next Day</source>
        <extracomment>Menu entry, and the name of the button › for a screen reader. Room: a menu entry.</extracomment>
        <translation>Jour suivant</translation>
    </message>
    <message>
        <source>Today</source>
        <extracomment>Menu entry: goes to today. Room: a menu entry.</extracomment>
        <translation>Aujourd’hui</translation>
    </message>
    <message>
        <source>Random Day</source>
        <extracomment>Menu entry, and a button of the top bar: opens some day that has an entry. Room: 130 px in the top bar.</extracomment>
        <translation>Jour au hasard</translation>
    </message>
    <message>
        <source>Year Calendar</source>
        <extracomment>Menu entry, button tip and window title: all days of the year, shaded by how many years have an entry. Room: a menu entry.</extracomment>
        <translation>Calendrier annuel</translation>
    </message>
    <message>
        <source>Window</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>Fenêtre</translation>
    </message>
    <message>
        <source>Minimize</source>
        <extracomment>Menu entry: puts the window away into the task bar. Room: a menu entry.</extracomment>
        <translation>Réduire</translation>
    </message>
    <message>
        <source>Zoom</source>
        <extracomment>Menu entry: makes the window as large as the screen, or small again. Room: a menu entry.</extracomment>
        <translation>Agrandir</translation>
    </message>
    <message>
        <source>Version %@</source>
        <extracomment>In the window about the program; %@ is a version number. Room: 300 px.</extracomment>
        <translation>Version %@</translation>
    </message>
    <message>
        <source>A diary in plain Markdown files. Licensed under the MIT License.</source>
        <extracomment>In the window about the program. Room: wraps.</extracomment>
        <translation>Un journal en simples fichiers Markdown. Distribué sous licence MIT.</translation>
    </message>
    <message>
        <source>Built with %@</source>
        <extracomment>In the window about the program; %@ names a library and its version. Room: 300 px.</extracomment>
        <translation>Développé avec %@</translation>
    </message>
    <message>
        <source>OK</source>
        <extracomment>Button.</extracomment>
        <translation>OK</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>Button of the top bar that shows the day's whole file as Markdown text. Room: 120 px.</extracomment>
        <translation>Source</translation>
    </message>
    <message>
        <source>Reader</source>
        <extracomment>The same button while the Markdown text is shown: goes back to the page. Room: 120 px.</extracomment>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>%d year sections</source>
        <extracomment>Beside the file name in the top bar: how many years have a section in the file; any number from 0. Room: 200 px.</extracomment>
        <translation>Sections d’années&#x202f;: %d</translation>
    </message>
    <message>
        <source>Viewing ## %d · %d chars</source>
        <extracomment>Right side of the status bar: the year that is shown, written like its heading in the file, and the number of characters. Room: 300 px.</extracomment>
        <translation>Affichage de ## %d · %d car.</translation>
    </message>
    <message>
        <source>MergedRemoteNotice</source>
        <extracomment>Shown for some seconds in the status bar: what another device wrote on this day was combined with what is here. Room: 560 px.</extracomment>
        <translation>Les modifications faites sur un autre appareil ont été fusionnées</translation>
    </message>
    <message>
        <source>UpdateReadyNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ est prêt et sera installé à la fermeture</translation>
    </message>
    <message>
        <source>UpdateInstalledNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ est installé</translation>
    </message>
    <message>
        <source>UpdateKeptNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ n’a pas pu être installé ; rien n’a changé</translation>
    </message>
    <message>
        <source>UpdateDownloadingNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Téléchargement de Tavelo %@…</translation>
    </message>
    <message>
        <source>Days not yet downloaded: %d</source>
        <extracomment>Notice: so many day files are known to the cloud drive and not on this computer. Any number from 1. Room: 560 px.</extracomment>
        <translation>Jours pas encore téléchargés&#x202f;: %d</translation>
    </message>
    <message>
        <source>The diary folder could not be watched for changes.</source>
        <extracomment>Notice: changes by other programs will be seen later than usual. Room: 560 px.</extracomment>
        <translation>Impossible de surveiller les modifications du dossier du journal.</translation>
    </message>
    <message>
        <source>Day %d / %d</source>
        <extracomment>At the top right of the page: which day of the year it is, and how many days the year has. Room: 250 px.</extracomment>
        <translation>Jour %d / %d</translation>
    </message>
    <message>
        <source>This file has %d past-year sections</source>
        <extracomment>Under the date: how many earlier years have an entry for this day; any number from 0. Room: 560 px.</extracomment>
        <translation>Sections d’années passées dans ce fichier&#x202f;: %d</translation>
    </message>
    <message>
        <source>NoLeapDayThisYear</source>
        <extracomment>Instead of the entry, on 29 February of a year that has none.</extracomment>
        <translation>Il n’y a pas de 29 février cette année.</translation>
    </message>
    <message>
        <source>The year %d cannot be written.</source>
        <extracomment>Instead of the entry, for a year that does not have four digits.</extracomment>
        <translation>Impossible d’écrire dans l’année %d.</translation>
    </message>
    <message>
        <source>This year</source>
        <extracomment>In the margin beside the entry, under the year. Room: 84 px.</extracomment>
        <translation>Cette année</translation>
    </message>
    <message>
        <source>%d years ago</source>
        <extracomment>In the margin beside the entry and on the cards; must read right for 1 as well as for 5. Room: 84 px.</extracomment>
        <translation>il y a %d an(s)</translation>
    </message>
    <message>
        <source>Write about this day in %d…</source>
        <extracomment>Invitation in an empty entry; %d is the year. Room: 560 px.</extracomment>
        <translation>Racontez cette journée de %d…</translation>
    </message>
    <message>
        <source>GapLine</source>
        <extracomment>Under the entry; %@ lists the years without an entry, as in 2024 · 2023 · 2020. Room: wraps.</extracomment>
        <translation>Rien d’écrit en %@</translation>
    </message>
    <message>
        <source>(empty file)</source>
        <extracomment>In place of the Markdown text of a file without any.</extracomment>
        <translation>(fichier vide)</translation>
    </message>
    <message>
        <source>PhotosMark</source>
        <extracomment>In the margin beside the photos of the day, one word. Room: 76 px.</extracomment>
        <translation>Photos</translation>
    </message>
    <message>
        <source>PhotosCaption</source>
        <extracomment>Above the photos; %d is their number, any from 1. Room: 460 px.</extracomment>
        <translation>Photos prises ce jour-là&#x202f;: %d</translation>
    </message>
    <message>
        <source>Previous Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Photo précédente</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>Photo suivante</translation>
    </message>
    <message>
        <source>Open in Image Viewer</source>
        <extracomment>Opens a photo in another program. Room: a menu entry.</extracomment>
        <translation>Ouvrir dans la visionneuse d’images</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <extracomment>Shows a photo's file in the file manager. Room: a menu entry.</extracomment>
        <translation>Afficher dans le dossier</translation>
    </message>
    <message>
        <source>On This Day</source>
        <extracomment>Title of the column of cards, one for each year of the shown day, which need not be today. Room: 230 px.</extracomment>
        <translation>Ce jour-là</translation>
    </message>
    <message>
        <source>%d chars</source>
        <extracomment>On a card: number of characters without spaces, any from 0. Room: 150 px.</extracomment>
        <translation>%d car.</translation>
    </message>
    <message>
        <source>Not written yet</source>
        <extracomment>On the card of a year without text. Room: wraps.</extracomment>
        <translation>Pas encore écrit</translation>
    </message>
    <message>
        <source>This year · writing</source>
        <extracomment>On the card of the current year. Room: 220 px.</extracomment>
        <translation>Cette année · en cours</translation>
    </message>
    <message>
        <source>Add a past year</source>
        <extracomment>Button below the cards: begins an entry for an earlier year. Room: 220 px.</extracomment>
        <translation>Ajouter une année passée</translation>
    </message>
    <message>
        <source>This day is still empty</source>
        <extracomment>Below the cards. Room: wraps.</extracomment>
        <translation>Cette journée est encore vide</translation>
    </message>
    <message>
        <source>Spanning %d years · earliest %d</source>
        <extracomment>Below the cards: from the earliest year with an entry to the current one, both counted, at least 2; then the earliest year. Room: wraps.</extracomment>
        <translation>Sur %d ans · depuis %d</translation>
    </message>
    <message>
        <source>Previous Month</source>
        <extracomment>Name of the button ‹ over the month for a screen reader.</extracomment>
        <translation>Mois précédent</translation>
    </message>
    <message>
        <source>Next Month</source>
        <extracomment>Name of the button › over the month for a screen reader.</extracomment>
        <translation>Mois suivant</translation>
    </message>
    <message>
        <source>Back to Today</source>
        <extracomment>Button of the sidebar, followed by today's date as in 03-14. Room: 145 px.</extracomment>
        <translation>Aujourd’hui</translation>
    </message>
    <message>
        <source>Days written</source>
        <extracomment>Label in the sidebar, before a value such as 123 / 365. Room: 125 px.</extracomment>
        <translation>Jours avec entrée</translation>
    </message>
    <message>
        <source>Earliest year</source>
        <extracomment>Label in the sidebar, before a year. Room: 150 px.</extracomment>
        <translation>Première année</translation>
    </message>
    <message>
        <source>Total files</source>
        <extracomment>Label in the sidebar, before a number. Room: 150 px.</extracomment>
        <translation>Total des fichiers</translation>
    </message>
    <message>
        <source>Find</source>
        <extracomment>Button tip, and title of the search window.</extracomment>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Settings</source>
        <extracomment>Button tip, and title of the settings window.</extracomment>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>A11yHasContent</source>
        <extracomment>For a screen reader, after a date in the month calendar: some year has an entry for it.</extracomment>
        <translation>avec une entrée</translation>
    </message>
    <message>
        <source>%d d</source>
        <extracomment>Beside the name of a month: number of its days with an entry, any from 0, abbreviated. Room: 60 px.</extracomment>
        <translation>%d j</translation>
    </message>
    <message>
        <source>YearsWrittenLegend</source>
        <extracomment>Before the four shades 0, 1, 2 and 3+: the number of years with an entry for a day. Room: 250 px.</extracomment>
        <translation>Années avec entrée</translation>
    </message>
    <message>
        <source>Years written: %d</source>
        <extracomment>For a screen reader, after a date in the year calendar: number of years with an entry for it, any from 0.</extracomment>
        <translation>Années avec entrée&#x202f;: %d</translation>
    </message>
    <message>
        <source>YearFootnote</source>
        <extracomment>Below the year calendar. Room: wraps at 580 px.</extracomment>
        <translation>Chaque carré est un jour de l’année&#x202f;: plus il est foncé, plus il y a d’années avec une entrée ce jour-là. Le carré entouré est le 29 février, qui n’existe que les années bissextiles.</translation>
    </message>
    <message>
        <source>SearchPlaceholder</source>
        <extracomment>In the empty search field. Room: 330 px.</extracomment>
        <translation>Rechercher dans tout le journal</translation>
    </message>
    <message>
        <source>SearchNoResults</source>
        <extracomment>In place of the list when nothing was found. Room: 330 px.</extracomment>
        <translation>Aucune entrée trouvée</translation>
    </message>
    <message>
        <source>Search</source>
        <extracomment>Name of the search field for a screen reader.</extracomment>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Search Results</source>
        <extracomment>Name of the list of found entries for a screen reader.</extracomment>
        <translation>Résultats de la recherche</translation>
    </message>
    <message>
        <source>Entries found: %d</source>
        <extracomment>%d is the number of entries that a search found. Read out by screen readers; never seen.</extracomment>
        <translation>Entrées trouvées : %d</translation>
    </message>
    <message>
        <source>General</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Général</translation>
    </message>
    <message>
        <source>Language</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Langue</translation>
    </message>
    <message>
        <source>System Default</source>
        <extracomment>First choice of the languages: the one that the system speaks. Room: 300 px.</extracomment>
        <translation>Comme le système</translation>
    </message>
    <message>
        <source>Diary Folder</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Dossier du journal</translation>
    </message>
    <message>
        <source>Vault Location</source>
        <extracomment>Label of a row: the folder that holds the diary. Room: 84 px a word.</extracomment>
        <translation>Chemin</translation>
    </message>
    <message>
        <source>Choose…</source>
        <extracomment>Small button: picks another folder. Room: 288 px together with the next two.</extracomment>
        <translation>Choisir…</translation>
    </message>
    <message>
        <source>iCloud Drive</source>
        <extracomment>Small button: puts the diary into Apple's cloud drive, whose name this is.</extracomment>
        <translation>iCloud Drive</translation>
    </message>
    <message>
        <source>Cloud Drive</source>
        <extracomment>The same button, which cannot be pressed, on a computer without any cloud drive; with one, it bears that drive's name.</extracomment>
        <translation>Espace en ligne</translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <extracomment>Small button: goes back to the usual folder.</extracomment>
        <translation>Réinitialiser</translation>
    </message>
    <message>
        <source>Copy your diary to the new folder?</source>
        <extracomment>Question after another folder was chosen that holds no diary yet; the folder's path stands below the next text.</extracomment>
        <translation>Copier votre journal dans le nouveau dossier&#x202f;?</translation>
    </message>
    <message>
        <source>There is no diary in the new folder yet. Only day files are copied, and the old folder stays as it is.</source>
        <extracomment>Text of that question. A day file is the file of one day of the year, such as 03-14.md.</extracomment>
        <translation>Le nouveau dossier ne contient pas encore de journal. Seuls les fichiers des jours sont copiés, et l’ancien dossier reste tel quel.</translation>
    </message>
    <message>
        <source>Copy Diary</source>
        <extracomment>First button under that question. Room: 200 px.</extracomment>
        <translation>Copier le journal</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <extracomment>Second button under that question: uses the new folder without any entries. Room: 200 px.</extracomment>
        <translation>Commencer à vide</translation>
    </message>
    <message>
        <source>Cancel</source>
        <extracomment>Button. Room: 200 px.</extracomment>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Copying the diary…</source>
        <extracomment>State while the diary is copied to another folder, in place of the hint under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Copie du journal…</translation>
    </message>
    <message>
        <source>The diary could not be copied and stays where it is.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Le journal n’a pas pu être copié et reste où il est.</translation>
    </message>
    <message>
        <source>This setting could not be saved.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Ce paramètre n’a pas pu être enregistré.</translation>
    </message>
    <message>
        <source>VaultHint</source>
        <extracomment>Under the folder. Room: wraps at 330 px.</extracomment>
        <translation>Chaque jour de l’année est un fichier Markdown de ce dossier. Dans un dossier synchronisé, le journal est présent sur tous vos appareils. Si vous choisissez un dossier vide, Tavelo propose d’y copier le journal.</translation>
    </message>
    <message>
        <source>Choose the Diary Folder</source>
        <extracomment>Title of the window in which a folder is picked.</extracomment>
        <translation>Choisir le dossier du journal</translation>
    </message>
    <message>
        <source>Writing</source>
        <extracomment>Title of a card about the look of the text, shown in capitals.</extracomment>
        <translation>Écriture</translation>
    </message>
    <message>
        <source>Body Font</source>
        <extracomment>Label of a row: the typeface of the diary's text. Room: 84 px a word.</extracomment>
        <translation>Police du texte</translation>
    </message>
    <message>
        <source>Default (Serif)</source>
        <extracomment>First choice of the typefaces: the built-in one, which has serifs. Room: 300 px.</extracomment>
        <translation>Par défaut (avec empattements)</translation>
    </message>
    <message>
        <source>Editor Font Size</source>
        <extracomment>Label of a row, before Small, Standard and Large. Room: 84 px a word.</extracomment>
        <translation>Taille du texte</translation>
    </message>
    <message>
        <source>Small</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Petite</translation>
    </message>
    <message>
        <source>Standard</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Normale</translation>
    </message>
    <message>
        <source>Large</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>Grande</translation>
    </message>
    <message>
        <source>Show missing-year note</source>
        <extracomment>Check box: below the entry, name the years without one. Room: 350 px.</extracomment>
        <translation>Signaler les années sans entrée</translation>
    </message>
    <message>
        <source>Show photos taken this day</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Afficher les photos prises ce jour-là</translation>
    </message>
    <message>
        <source>Photos</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Photos</translation>
    </message>
    <message>
        <source>Photo Access</source>
        <extracomment>Label of a row: whether the user's pictures can be read. Room: 84 px a word.</extracomment>
        <translation>Accès aux photos</translation>
    </message>
    <message>
        <source>PhotoAccessNotAsked</source>
        <extracomment>State: the computer has no folder of pictures.</extracomment>
        <translation>Aucun dossier d’images</translation>
    </message>
    <message>
        <source>PhotoAccessDenied</source>
        <extracomment>State: the folder of pictures cannot be read.</extracomment>
        <translation>Lecture impossible</translation>
    </message>
    <message>
        <source>PhotoAccessLimited</source>
        <extracomment>State: some of the folders of pictures cannot be read.</extracomment>
        <translation>Certains dossiers seulement</translation>
    </message>
    <message>
        <source>PhotoAccessAllowed</source>
        <extracomment>State: all folders of pictures can be read.</extracomment>
        <translation>Autorisé</translation>
    </message>
    <message>
        <source>Photos cannot be shown: a part of Tavelo is not installed.</source>
        <extracomment>In place of the states above, where the part of the program that reads pictures is missing. Room: wraps at 330 px.</extracomment>
        <translation>Les photos ne peuvent pas être affichées&#x202f;: une partie de Tavelo n’est pas installée.</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <extracomment>Small button: picks one more folder in which photos are looked for. Room: 336 px together with any of the states above.</extracomment>
        <translation>Ajouter un dossier…</translation>
    </message>
    <message>
        <source>Choose a Folder with Photos</source>
        <extracomment>Title of the window in which that folder is picked.</extracomment>
        <translation>Choisir un dossier de photos</translation>
    </message>
    <message>
        <source>Remove</source>
        <extracomment>Small button beside such a folder: no longer look for photos there. The folder itself stays. Room: 120 px.</extracomment>
        <translation>Retirer</translation>
    </message>
    <message>
        <source>Updates &amp; Feedback</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>Mises à jour et avis</translation>
    </message>
    <message>
        <source>Version</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Version</translation>
    </message>
    <message>
        <source>Install updates automatically</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>Installer automatiquement les mises à jour</translation>
    </message>
    <message>
        <source>Checking…</source>
        <extracomment>State while the program asks for a newer version. Room: 330 px.</extracomment>
        <translation>Recherche en cours…</translation>
    </message>
    <message>
        <source>Feedback</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>Avis</translation>
    </message>
    <message>
        <source>Send Feedback…</source>
        <extracomment>Small button: opens an e-mail to the makers. Room: 230 px.</extracomment>
        <translation>Envoyer un avis…</translation>
    </message>
    <message>
        <source>FeedbackHint</source>
        <extracomment>Beside or under that button. Room: 340 px.</extracomment>
        <translation>Ouvre un message dans votre messagerie.</translation>
    </message>
    <message>
        <source>This copy of Tavelo was built without an address for feedback.</source>
        <extracomment>In place of that text, where the button cannot be pressed. Room: wraps at 330 px.</extracomment>
        <translation>Cette version de Tavelo a été compilée sans adresse pour vos commentaires.</translation>
    </message>
    <message>
        <source>No e-mail program could be opened. Please write to this address:</source>
        <extracomment>Message after the button, followed by the address on a line of its own.</extracomment>
        <translation>Aucun logiciel de messagerie n’a pu être ouvert. Veuillez écrire à cette adresse&#x202f;:</translation>
    </message>
    <message>
        <source>OnboardTitle</source>
        <extracomment>The first question at the very first start.</extracomment>
        <translation>Où souhaitez-vous conserver votre journal&#x202f;?</translation>
    </message>
    <message>
        <source>OnboardInfo</source>
        <extracomment>Under that question; %@ is the name of a cloud drive, for example Nextcloud.</extracomment>
        <translation>Dans %@, le journal est aussi présent sur vos autres appareils. Sur cet ordinateur, il se trouve dans votre dossier de documents. Vous pourrez en changer plus tard dans les paramètres.</translation>
    </message>
    <message>
        <source>OnboardICloud</source>
        <extracomment>First button under that question; %@ is the name of a cloud drive, for example Nextcloud. Room: 240 px.</extracomment>
        <translation>Le garder dans %@</translation>
    </message>
    <message>
        <source>OnboardLocal</source>
        <extracomment>Second button under that question. Room: 240 px.</extracomment>
        <translation>Le garder sur cet ordinateur</translation>
    </message>
    <message>
        <source>This entry could not be saved. Tavelo keeps it and will try again.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>Cette entrée n’a pas pu être enregistrée. Tavelo la conserve et réessaiera.</translation>
    </message>
    <message>
        <source>Tavelo could not save this text to the diary when it was last closed. It is kept in this folder:</source>
        <extracomment>Message at the start, followed by the folder on a line of its own.</extracomment>
        <translation>À sa dernière fermeture, Tavelo n’a pas pu enregistrer ce texte dans le journal. Il est conservé dans ce dossier&#x202f;:</translation>
    </message>
    <message>
        <source>Show Folder</source>
        <extracomment>Button of that message. Room: 200 px.</extracomment>
        <translation>Afficher le dossier</translation>
    </message>
    <message>
        <source>Tavelo is already open on this diary.</source>
        <extracomment>Message when the program is started a second time.</extracomment>
        <translation>Ce journal est déjà ouvert dans Tavelo.</translation>
    </message>
    <message>
        <source>UpdateFoundTitle</source>
        <extracomment>Title of a message.</extracomment>
        <translation>Une nouvelle version est disponible</translation>
    </message>
    <message>
        <source>UpdateFoundInfo</source>
        <extracomment>Text of that message; %@ is a version number.</extracomment>
        <translation>Tavelo %@ a été téléchargé et sera installé à la fermeture.</translation>
    </message>
    <message>
        <source>UpdateFailedTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Échec de la recherche de mises à jour</translation>
    </message>
    <message>
        <source>UpdateFailedInfo</source>
        <extracomment>Text of that message: no connection, or what was fetched is not genuine.</extracomment>
        <translation>Tavelo n’a pas pu obtenir ou vérifier la nouvelle version. Vérifiez votre connexion à Internet et réessayez plus tard.</translation>
    </message>
    <message>
        <source>UpdateUnsupportedInfo</source>
        <extracomment>Text of that message, and state in the settings window: this copy was installed by other means. Room: wraps at 330 px.</extracomment>
        <translation>Cette copie de Tavelo ne peut pas se mettre à jour elle-même. Si elle a été fournie avec votre système, utilisez le gestionnaire de paquets.</translation>
    </message>
    <message>
        <source>UpToDateTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Tavelo est à jour</translation>
    </message>
    <message>
        <source>UpToDateInfo</source>
        <extracomment>Text of that message; %@ is the version number in use.</extracomment>
        <translation>La version %@ est la plus récente.</translation>
    </message>
    <message>
        <source>ConflictMarker</source>
        <extracomment>A line that is written into the user's files, between two versions of an entry that could not be combined. Never change it once it was published: it is how a merge is recognised. One line of plain Markdown, no heading, no list, no fence.</extracomment>
        <translation>*— L’autre version de cette entrée —*</translation>
    </message>
</context>
</TS>
