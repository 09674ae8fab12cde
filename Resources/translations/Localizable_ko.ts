<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko" sourcelanguage="en">
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
        <translation>%@ 정보</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <extracomment>Menu entry, and a small button of the settings window. Room: 230 px in the settings window.</extracomment>
        <translation>업데이트 확인…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <extracomment>Menu entry: opens the settings window. Room: a menu entry.</extracomment>
        <translation>설정…</translation>
    </message>
    <message>
        <source>Hide %@</source>
        <extracomment>Menu entry: hides the windows of the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>%@ 숨기기</translation>
    </message>
    <message>
        <source>Quit %@</source>
        <extracomment>Menu entry: ends the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>%@ 종료</translation>
    </message>
    <message>
        <source>File</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>파일</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>Menu entry and button: closes the window. Room: a menu entry.</extracomment>
        <translation>닫기</translation>
    </message>
    <message>
        <source>Save</source>
        <extracomment>Menu entry: saves what was typed, now. Room: a menu entry.</extracomment>
        <translation>저장</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <extracomment>Menu entry: shows the day's file in the desktop's file manager. Room: a menu entry.</extracomment>
        <translation>파일 관리자에서 보기</translation>
    </message>
    <message>
        <source>Edit</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>편집</translation>
    </message>
    <message>
        <source>Undo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>실행 취소</translation>
    </message>
    <message>
        <source>Redo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>다시 실행</translation>
    </message>
    <message>
        <source>Cut</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>잘라내기</translation>
    </message>
    <message>
        <source>Copy</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>복사</translation>
    </message>
    <message>
        <source>Paste</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>붙여넣기</translation>
    </message>
    <message>
        <source>Select All</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>모두 선택</translation>
    </message>
    <message>
        <source>Find…</source>
        <extracomment>Menu entry: opens the search window. Room: a menu entry.</extracomment>
        <translation>검색…</translation>
    </message>
    <message>
        <source>View</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>보기</translation>
    </message>
    <message>
        <source>Toggle Source</source>
        <extracomment>Menu entry: shows the day's whole file as Markdown text instead of the page, or the page again. Room: a menu entry.</extracomment>
        <translation>소스 보기 전환</translation>
    </message>
    <message>
        <source>Navigate</source>
        <extracomment>Title of a menu with ways to go to another day. Room: the menu bar, one short word.</extracomment>
        <translation>이동</translation>
    </message>
    <message>
        <source>Previous Day</source>
        <extracomment>Menu entry, and the name of the button ‹ for a screen reader. Room: a menu entry.</extracomment>
        <translation>이전 날</translation>
    </message>
    <message>
        <source>Next Day</source>
        <extracomment>Menu entry, and the name of the button › for a screen reader. Room: a menu entry.</extracomment>
        <translation>다음 날</translation>
    </message>
    <message>
        <source>Today</source>
        <extracomment>Menu entry: goes to today. Room: a menu entry.</extracomment>
        <translation>오늘</translation>
    </message>
    <message>
        <source>Random Day</source>
        <extracomment>Menu entry, and a button of the top bar: opens some day that has an entry. Room: 130 px in the top bar.</extracomment>
        <translation>무작위 날짜</translation>
    </message>
    <message>
        <source>Year Calendar</source>
        <extracomment>Menu entry, button tip and window title: all days of the year, shaded by how many years have an entry. Room: a menu entry.</extracomment>
        <translation>연간 달력</translation>
    </message>
    <message>
        <source>Window</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>창</translation>
    </message>
    <message>
        <source>Minimize</source>
        <extracomment>Menu entry: puts the window away into the task bar. Room: a menu entry.</extracomment>
        <translation>최소화</translation>
    </message>
    <message>
        <source>Zoom</source>
        <extracomment>Menu entry: makes the window as large as the screen, or small again. Room: a menu entry.</extracomment>
        <translation>최대화</translation>
    </message>
    <message>
        <source>Version %@</source>
        <extracomment>In the window about the program; %@ is a version number. Room: 300 px.</extracomment>
        <translation>버전 %@</translation>
    </message>
    <message>
        <source>A diary in plain Markdown files. Licensed under the MIT License.</source>
        <extracomment>In the window about the program. Room: wraps.</extracomment>
        <translation>일반 Markdown 파일로 쓰는 일기입니다. MIT 라이선스로 배포됩니다.</translation>
    </message>
    <message>
        <source>Built with %@</source>
        <extracomment>In the window about the program; %@ names a library and its version. Room: 300 px.</extracomment>
        <translation>%@(으)로 제작</translation>
    </message>
    <message>
        <source>OK</source>
        <extracomment>Button.</extracomment>
        <translation>확인</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>Button of the top bar that shows the day's whole file as Markdown text. Room: 120 px.</extracomment>
        <translation>소스</translation>
    </message>
    <message>
        <source>Reader</source>
        <extracomment>The same button while the Markdown text is shown: goes back to the page. Room: 120 px.</extracomment>
        <translation>읽기</translation>
    </message>
    <message>
        <source>%d year sections</source>
        <extracomment>Beside the file name in the top bar: how many years have a section in the file; any number from 0. Room: 200 px.</extracomment>
        <translation>연도별 섹션 %d개</translation>
    </message>
    <message>
        <source>Viewing ## %d · %d chars</source>
        <extracomment>Right side of the status bar: the year that is shown, written like its heading in the file, and the number of characters. Room: 300 px.</extracomment>
        <translation>보는 중 ## %d · %d자</translation>
    </message>
    <message>
        <source>MergedRemoteNotice</source>
        <extracomment>Shown for some seconds in the status bar: what another device wrote on this day was combined with what is here. Room: 560 px.</extracomment>
        <translation>다른 기기에서 이날에 적용한 변경 사항을 합쳤습니다</translation>
    </message>
    <message>
        <source>UpdateReadyNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ 준비가 끝났습니다. 종료할 때 설치됩니다</translation>
    </message>
    <message>
        <source>UpdateInstalledNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@을(를) 설치했습니다</translation>
    </message>
    <message>
        <source>UpdateKeptNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@을(를) 설치하지 못했습니다. 바뀐 것은 없습니다</translation>
    </message>
    <message>
        <source>UpdateDownloadingNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ 다운로드 중…</translation>
    </message>
    <message>
        <source>Days not yet downloaded: %d</source>
        <extracomment>Notice: so many day files are known to the cloud drive and not on this computer. Any number from 1. Room: 560 px.</extracomment>
        <translation>아직 다운로드하지 않은 날: %d</translation>
    </message>
    <message>
        <source>The diary folder could not be watched for changes.</source>
        <extracomment>Notice: changes by other programs will be seen later than usual. Room: 560 px.</extracomment>
        <translation>일기 폴더의 변경 사항을 감시하지 못했습니다.</translation>
    </message>
    <message>
        <source>Day %d / %d</source>
        <extracomment>At the top right of the page: which day of the year it is, and how many days the year has. Room: 250 px.</extracomment>
        <translation>%d / %d일째</translation>
    </message>
    <message>
        <source>This file has %d past-year sections</source>
        <extracomment>Under the date: how many earlier years have an entry for this day; any number from 0. Room: 560 px.</extracomment>
        <translation>이 파일에 지난 해의 섹션이 %d개 있습니다</translation>
    </message>
    <message>
        <source>NoLeapDayThisYear</source>
        <extracomment>Instead of the entry, on 29 February of a year that has none.</extracomment>
        <translation>올해에는 2월 29일이 없습니다.</translation>
    </message>
    <message>
        <source>The year %d cannot be written.</source>
        <extracomment>Instead of the entry, for a year that does not have four digits.</extracomment>
        <translation>%d년의 일기는 쓸 수 없습니다.</translation>
    </message>
    <message>
        <source>This year</source>
        <extracomment>In the margin beside the entry, under the year. Room: 84 px.</extracomment>
        <translation>올해</translation>
    </message>
    <message>
        <source>%d years ago</source>
        <extracomment>In the margin beside the entry and on the cards; must read right for 1 as well as for 5. Room: 84 px.</extracomment>
        <translation>%d년 전</translation>
    </message>
    <message>
        <source>Write about this day in %d…</source>
        <extracomment>Invitation in an empty entry; %d is the year. Room: 560 px.</extracomment>
        <translation>%d년의 이날에 대해 써 보세요…</translation>
    </message>
    <message>
        <source>GapLine</source>
        <extracomment>Under the entry; %@ lists the years without an entry, as in 2024 · 2023 · 2020. Room: wraps.</extracomment>
        <translation>일기가 없는 해: %@</translation>
    </message>
    <message>
        <source>(empty file)</source>
        <extracomment>In place of the Markdown text of a file without any.</extracomment>
        <translation>(빈 파일)</translation>
    </message>
    <message>
        <source>PhotosMark</source>
        <extracomment>In the margin beside the photos of the day, one word. Room: 76 px.</extracomment>
        <translation>사진</translation>
    </message>
    <message>
        <source>PhotosCaption</source>
        <extracomment>Above the photos; %d is their number, any from 1. Room: 460 px.</extracomment>
        <translation>이날 찍은 사진: %d장</translation>
    </message>
    <message>
        <source>Previous Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>이전 사진</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>다음 사진</translation>
    </message>
    <message>
        <source>Open in Image Viewer</source>
        <extracomment>Opens a photo in another program. Room: a menu entry.</extracomment>
        <translation>이미지 뷰어에서 열기</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <extracomment>Shows a photo's file in the file manager. Room: a menu entry.</extracomment>
        <translation>폴더에서 보기</translation>
    </message>
    <message>
        <source>On This Day</source>
        <extracomment>Title of the column of cards, one for each year of the shown day, which need not be today. Room: 230 px.</extracomment>
        <translation>이날의 기록</translation>
    </message>
    <message>
        <source>%d chars</source>
        <extracomment>On a card: number of characters without spaces, any from 0. Room: 150 px.</extracomment>
        <translation>%d자</translation>
    </message>
    <message>
        <source>Not written yet</source>
        <extracomment>On the card of a year without text. Room: wraps.</extracomment>
        <translation>아직 쓰지 않음</translation>
    </message>
    <message>
        <source>This year · writing</source>
        <extracomment>On the card of the current year. Room: 220 px.</extracomment>
        <translation>올해 · 쓰는 중</translation>
    </message>
    <message>
        <source>Add a past year</source>
        <extracomment>Button below the cards: begins an entry for an earlier year. Room: 220 px.</extracomment>
        <translation>지난 해 추가</translation>
    </message>
    <message>
        <source>This day is still empty</source>
        <extracomment>Below the cards. Room: wraps.</extracomment>
        <translation>이날은 아직 비어 있습니다</translation>
    </message>
    <message>
        <source>Spanning %d years · earliest %d</source>
        <extracomment>Below the cards: from the earliest year with an entry to the current one, both counted, at least 2; then the earliest year. Room: wraps.</extracomment>
        <translation>%d년에 걸친 기록 · 첫해 %d년</translation>
    </message>
    <message>
        <source>Previous Month</source>
        <extracomment>Name of the button ‹ over the month for a screen reader.</extracomment>
        <translation>이전 달</translation>
    </message>
    <message>
        <source>Next Month</source>
        <extracomment>Name of the button › over the month for a screen reader.</extracomment>
        <translation>다음 달</translation>
    </message>
    <message>
        <source>Back to Today</source>
        <extracomment>Button of the sidebar, followed by today's date as in 03-14. Room: 145 px.</extracomment>
        <translation>오늘로 돌아가기</translation>
    </message>
    <message>
        <source>Days written</source>
        <extracomment>Label in the sidebar, before a value such as 123 / 365. Room: 125 px.</extracomment>
        <translation>기록한 날</translation>
    </message>
    <message>
        <source>Earliest year</source>
        <extracomment>Label in the sidebar, before a year. Room: 150 px.</extracomment>
        <translation>첫해</translation>
    </message>
    <message>
        <source>Total files</source>
        <extracomment>Label in the sidebar, before a number. Room: 150 px.</extracomment>
        <translation>전체 파일</translation>
    </message>
    <message>
        <source>Find</source>
        <extracomment>Button tip, and title of the search window.</extracomment>
        <translation>검색</translation>
    </message>
    <message>
        <source>Settings</source>
        <extracomment>Button tip, and title of the settings window.</extracomment>
        <translation>설정</translation>
    </message>
    <message>
        <source>A11yHasContent</source>
        <extracomment>For a screen reader, after a date in the month calendar: some year has an entry for it.</extracomment>
        <translation>일기 있음</translation>
    </message>
    <message>
        <source>%d d</source>
        <extracomment>Beside the name of a month: number of its days with an entry, any from 0, abbreviated. Room: 60 px.</extracomment>
        <translation>%d일</translation>
    </message>
    <message>
        <source>YearsWrittenLegend</source>
        <extracomment>Before the four shades 0, 1, 2 and 3+: the number of years with an entry for a day. Room: 250 px.</extracomment>
        <translation>기록한 해의 수</translation>
    </message>
    <message>
        <source>Years written: %d</source>
        <extracomment>For a screen reader, after a date in the year calendar: number of years with an entry for it, any from 0.</extracomment>
        <translation>기록한 해의 수: %d</translation>
    </message>
    <message>
        <source>YearFootnote</source>
        <extracomment>Below the year calendar. Room: wraps at 580 px.</extracomment>
        <translation>칸 하나가 1년 중 하루입니다. 색이 진할수록 그날의 일기를 쓴 해가 많습니다. 테두리가 있는 칸은 윤년에만 있는 2월 29일입니다.</translation>
    </message>
    <message>
        <source>SearchPlaceholder</source>
        <extracomment>In the empty search field. Room: 330 px.</extracomment>
        <translation>모든 일기 검색</translation>
    </message>
    <message>
        <source>SearchNoResults</source>
        <extracomment>In place of the list when nothing was found. Room: 330 px.</extracomment>
        <translation>일기를 찾지 못했습니다</translation>
    </message>
    <message>
        <source>Search</source>
        <extracomment>Name of the search field for a screen reader.</extracomment>
        <translation>검색</translation>
    </message>
    <message>
        <source>Search Results</source>
        <extracomment>Name of the list of found entries for a screen reader.</extracomment>
        <translation>검색 결과</translation>
    </message>
    <message>
        <source>Entries found: %d</source>
        <extracomment>%d is the number of entries that a search found. Read out by screen readers; never seen.</extracomment>
        <translation>찾은 일기: %d개</translation>
    </message>
    <message>
        <source>General</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>일반</translation>
    </message>
    <message>
        <source>Language</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>언어</translation>
    </message>
    <message>
        <source>System Default</source>
        <extracomment>First choice of the languages: the one that the system speaks. Room: 300 px.</extracomment>
        <translation>시스템 설정 따르기</translation>
    </message>
    <message>
        <source>Diary Folder</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>일기 폴더</translation>
    </message>
    <message>
        <source>Vault Location</source>
        <extracomment>Label of a row: the folder that holds the diary. Room: 84 px a word.</extracomment>
        <translation>위치</translation>
    </message>
    <message>
        <source>Choose…</source>
        <extracomment>Small button: picks another folder. Room: 288 px together with the next two.</extracomment>
        <translation>선택…</translation>
    </message>
    <message>
        <source>iCloud Drive</source>
        <extracomment>Small button: puts the diary into Apple's cloud drive, whose name this is.</extracomment>
        <translation>iCloud Drive</translation>
    </message>
    <message>
        <source>Cloud Drive</source>
        <extracomment>The same button, which cannot be pressed, on a computer without any cloud drive; with one, it bears that drive's name.</extracomment>
        <translation>클라우드</translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <extracomment>Small button: goes back to the usual folder.</extracomment>
        <translation>기본값으로</translation>
    </message>
    <message>
        <source>Copy your diary to the new folder?</source>
        <extracomment>Question after another folder was chosen that holds no diary yet; the folder's path stands below the next text.</extracomment>
        <translation>일기를 새 폴더에 복사하시겠습니까?</translation>
    </message>
    <message>
        <source>There is no diary in the new folder yet. Only day files are copied, and the old folder stays as it is.</source>
        <extracomment>Text of that question. A day file is the file of one day of the year, such as 03-14.md.</extracomment>
        <translation>새 폴더에는 아직 일기가 없습니다. 날짜 파일만 복사하며, 이전 폴더는 그대로 둡니다.</translation>
    </message>
    <message>
        <source>Copy Diary</source>
        <extracomment>First button under that question. Room: 200 px.</extracomment>
        <translation>일기 복사</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <extracomment>Second button under that question: uses the new folder without any entries. Room: 200 px.</extracomment>
        <translation>빈 상태로 시작</translation>
    </message>
    <message>
        <source>Cancel</source>
        <extracomment>Button. Room: 200 px.</extracomment>
        <translation>취소</translation>
    </message>
    <message>
        <source>Copying the diary…</source>
        <extracomment>State while the diary is copied to another folder, in place of the hint under the folder. Room: wraps at 330 px.</extracomment>
        <translation>일기를 복사하는 중…</translation>
    </message>
    <message>
        <source>The diary could not be copied and stays where it is.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>일기를 복사할 수 없습니다. 일기는 원래 위치에 그대로 있습니다.</translation>
    </message>
    <message>
        <source>This setting could not be saved.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>이 설정을 저장할 수 없습니다.</translation>
    </message>
    <message>
        <source>VaultHint</source>
        <extracomment>Under the folder. Room: wraps at 330 px.</extracomment>
        <translation>1년의 하루하루가 이 폴더의 Markdown 파일 하나입니다. 동기화되는 폴더에 두면 모든 기기에서 일기를 쓸 수 있습니다. 빈 폴더를 고르면 일기를 그곳에 복사할지 묻습니다.</translation>
    </message>
    <message>
        <source>Choose the Diary Folder</source>
        <extracomment>Title of the window in which a folder is picked.</extracomment>
        <translation>일기 폴더 선택</translation>
    </message>
    <message>
        <source>Writing</source>
        <extracomment>Title of a card about the look of the text, shown in capitals.</extracomment>
        <translation>글쓰기</translation>
    </message>
    <message>
        <source>Body Font</source>
        <extracomment>Label of a row: the typeface of the diary's text. Room: 84 px a word.</extracomment>
        <translation>본문 글꼴</translation>
    </message>
    <message>
        <source>Default (Serif)</source>
        <extracomment>First choice of the typefaces: the built-in one, which has serifs. Room: 300 px.</extracomment>
        <translation>기본값(세리프)</translation>
    </message>
    <message>
        <source>Editor Font Size</source>
        <extracomment>Label of a row, before Small, Standard and Large. Room: 84 px a word.</extracomment>
        <translation>글자 크기</translation>
    </message>
    <message>
        <source>Small</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>작게</translation>
    </message>
    <message>
        <source>Standard</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>보통</translation>
    </message>
    <message>
        <source>Large</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>크게</translation>
    </message>
    <message>
        <source>Show missing-year note</source>
        <extracomment>Check box: below the entry, name the years without one. Room: 350 px.</extracomment>
        <translation>일기가 없는 해 표시</translation>
    </message>
    <message>
        <source>Show photos taken this day</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>이날 찍은 사진 표시</translation>
    </message>
    <message>
        <source>Photos</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>사진</translation>
    </message>
    <message>
        <source>Photo Access</source>
        <extracomment>Label of a row: whether the user's pictures can be read. Room: 84 px a word.</extracomment>
        <translation>사진 접근</translation>
    </message>
    <message>
        <source>PhotoAccessNotAsked</source>
        <extracomment>State: the computer has no folder of pictures.</extracomment>
        <translation>사진 폴더 없음</translation>
    </message>
    <message>
        <source>PhotoAccessDenied</source>
        <extracomment>State: the folder of pictures cannot be read.</extracomment>
        <translation>읽을 수 없음</translation>
    </message>
    <message>
        <source>PhotoAccessLimited</source>
        <extracomment>State: some of the folders of pictures cannot be read.</extracomment>
        <translation>일부 폴더만</translation>
    </message>
    <message>
        <source>PhotoAccessAllowed</source>
        <extracomment>State: all folders of pictures can be read.</extracomment>
        <translation>허용됨</translation>
    </message>
    <message>
        <source>Photos cannot be shown: a part of Tavelo is not installed.</source>
        <extracomment>In place of the states above, where the part of the program that reads pictures is missing. Room: wraps at 330 px.</extracomment>
        <translation>사진을 표시할 수 없습니다. Tavelo의 일부가 설치되어 있지 않습니다.</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <extracomment>Small button: picks one more folder in which photos are looked for. Room: 336 px together with any of the states above.</extracomment>
        <translation>폴더 추가…</translation>
    </message>
    <message>
        <source>Choose a Folder with Photos</source>
        <extracomment>Title of the window in which that folder is picked.</extracomment>
        <translation>사진 폴더 선택</translation>
    </message>
    <message>
        <source>Remove</source>
        <extracomment>Small button beside such a folder: no longer look for photos there. The folder itself stays. Room: 120 px.</extracomment>
        <translation>제거</translation>
    </message>
    <message>
        <source>Updates &amp; Feedback</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>업데이트 및 피드백</translation>
    </message>
    <message>
        <source>Version</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>버전</translation>
    </message>
    <message>
        <source>Install updates automatically</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>업데이트 자동 설치</translation>
    </message>
    <message>
        <source>Checking…</source>
        <extracomment>State while the program asks for a newer version. Room: 330 px.</extracomment>
        <translation>확인 중…</translation>
    </message>
    <message>
        <source>Feedback</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>피드백</translation>
    </message>
    <message>
        <source>Send Feedback…</source>
        <extracomment>Small button: opens an e-mail to the makers. Room: 230 px.</extracomment>
        <translation>피드백 보내기…</translation>
    </message>
    <message>
        <source>FeedbackHint</source>
        <extracomment>Beside or under that button. Room: 340 px.</extracomment>
        <translation>메일 프로그램에서 새 메일을 엽니다.</translation>
    </message>
    <message>
        <source>This copy of Tavelo was built without an address for feedback.</source>
        <extracomment>In place of that text, where the button cannot be pressed. Room: wraps at 330 px.</extracomment>
        <translation>이 Tavelo에는 의견을 받을 주소가 설정되어 있지 않습니다.</translation>
    </message>
    <message>
        <source>No e-mail program could be opened. Please write to this address:</source>
        <extracomment>Message after the button, followed by the address on a line of its own.</extracomment>
        <translation>이메일 프로그램을 열 수 없습니다. 다음 주소로 보내 주십시오:</translation>
    </message>
    <message>
        <source>OnboardTitle</source>
        <extracomment>The first question at the very first start.</extracomment>
        <translation>일기를 어디에 보관할까요?</translation>
    </message>
    <message>
        <source>OnboardInfo</source>
        <extracomment>Under that question; %@ is the name of a cloud drive, for example Nextcloud.</extracomment>
        <translation>%@에 보관하면 다른 기기에서도 같은 일기를 쓸 수 있습니다. 이 컴퓨터에 보관하면 문서 폴더에 저장됩니다. 나중에 설정에서 바꿀 수 있습니다.</translation>
    </message>
    <message>
        <source>OnboardICloud</source>
        <extracomment>First button under that question; %@ is the name of a cloud drive, for example Nextcloud. Room: 240 px.</extracomment>
        <translation>%@에 보관</translation>
    </message>
    <message>
        <source>OnboardLocal</source>
        <extracomment>Second button under that question. Room: 240 px.</extracomment>
        <translation>이 컴퓨터에 보관</translation>
    </message>
    <message>
        <source>This entry could not be saved. Tavelo keeps it and will try again.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>이 일기를 저장하지 못했습니다. Tavelo가 보관해 두고 다시 시도합니다.</translation>
    </message>
    <message>
        <source>Tavelo could not save this text to the diary when it was last closed. It is kept in this folder:</source>
        <extracomment>Message at the start, followed by the folder on a line of its own.</extracomment>
        <translation>지난번에 닫을 때 Tavelo가 이 글을 일기에 저장하지 못했습니다. 글은 다음 폴더에 있습니다:</translation>
    </message>
    <message>
        <source>Show Folder</source>
        <extracomment>Button of that message. Room: 200 px.</extracomment>
        <translation>폴더 보기</translation>
    </message>
    <message>
        <source>Tavelo is already open on this diary.</source>
        <extracomment>Message when the program is started a second time.</extracomment>
        <translation>이 일기는 이미 Tavelo에서 열려 있습니다.</translation>
    </message>
    <message>
        <source>UpdateFoundTitle</source>
        <extracomment>Title of a message.</extracomment>
        <translation>새 버전이 있습니다</translation>
    </message>
    <message>
        <source>UpdateFoundInfo</source>
        <extracomment>Text of that message; %@ is a version number.</extracomment>
        <translation>Tavelo %@ 다운로드가 끝났습니다. 종료할 때 설치됩니다.</translation>
    </message>
    <message>
        <source>UpdateFailedTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>업데이트를 확인하지 못했습니다</translation>
    </message>
    <message>
        <source>UpdateFailedInfo</source>
        <extracomment>Text of that message: no connection, or what was fetched is not genuine.</extracomment>
        <translation>Tavelo가 새 버전을 받거나 검증하지 못했습니다. 인터넷 연결을 확인하고 나중에 다시 시도해 주십시오.</translation>
    </message>
    <message>
        <source>UpdateUnsupportedInfo</source>
        <extracomment>Text of that message, and state in the settings window: this copy was installed by other means. Room: wraps at 330 px.</extracomment>
        <translation>이 Tavelo는 스스로 업데이트할 수 없습니다. 시스템과 함께 설치되었다면 패키지 관리자로 업데이트해 주십시오.</translation>
    </message>
    <message>
        <source>UpToDateTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Tavelo가 최신 상태입니다</translation>
    </message>
    <message>
        <source>UpToDateInfo</source>
        <extracomment>Text of that message; %@ is the version number in use.</extracomment>
        <translation>현재 버전 %@이(가) 최신 버전입니다.</translation>
    </message>
    <message>
        <source>ConflictMarker</source>
        <extracomment>A line that is written into the user's files, between two versions of an entry that could not be combined. Never change it once it was published: it is how a merge is recognised. One line of plain Markdown, no heading, no list, no fence.</extracomment>
        <translation>*— 이 일기의 다른 버전 —*</translation>
    </message>
</context>
</TS>
