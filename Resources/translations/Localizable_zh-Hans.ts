<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
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
        <translation>关于 %@</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <extracomment>Menu entry, and a small button of the settings window. Room: 230 px in the settings window.</extracomment>
        <translation>检查更新…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <extracomment>Menu entry: opens the settings window. Room: a menu entry.</extracomment>
        <translation>设置…</translation>
    </message>
    <message>
        <source>Hide %@</source>
        <extracomment>Menu entry: hides the windows of the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>隐藏 %@</translation>
    </message>
    <message>
        <source>Quit %@</source>
        <extracomment>Menu entry: ends the program; %@ is its name. Room: a menu entry.</extracomment>
        <translation>退出 %@</translation>
    </message>
    <message>
        <source>File</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>文件</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>Menu entry and button: closes the window. Room: a menu entry.</extracomment>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Save</source>
        <extracomment>Menu entry: saves what was typed, now. Room: a menu entry.</extracomment>
        <translation>保存</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <extracomment>Menu entry: shows the day's file in the desktop's file manager. Room: a menu entry.</extracomment>
        <translation>在文件管理器中显示</translation>
    </message>
    <message>
        <source>Edit</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Undo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>撤销</translation>
    </message>
    <message>
        <source>Redo</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>重做</translation>
    </message>
    <message>
        <source>Cut</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>剪切</translation>
    </message>
    <message>
        <source>Copy</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>复制</translation>
    </message>
    <message>
        <source>Paste</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>粘贴</translation>
    </message>
    <message>
        <source>Select All</source>
        <extracomment>Menu entry. Room: a menu entry.</extracomment>
        <translation>全选</translation>
    </message>
    <message>
        <source>Find…</source>
        <extracomment>Menu entry: opens the search window. Room: a menu entry.</extracomment>
        <translation>搜索…</translation>
    </message>
    <message>
        <source>View</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>视图</translation>
    </message>
    <message>
        <source>Toggle Source</source>
        <extracomment>Menu entry: shows the day's whole file as Markdown text instead of the page, or the page again. Room: a menu entry.</extracomment>
        <translation>切换源码视图</translation>
    </message>
    <message>
        <source>Navigate</source>
        <extracomment>Title of a menu with ways to go to another day. Room: the menu bar, one short word.</extracomment>
        <translation>前往</translation>
    </message>
    <message>
        <source>Previous Day</source>
        <extracomment>Menu entry, and the name of the button ‹ for a screen reader. Room: a menu entry.</extracomment>
        <translation>前一天</translation>
    </message>
    <message>
        <source>Next Day</source>
        <extracomment>Menu entry, and the name of the button › for a screen reader. Room: a menu entry.</extracomment>
        <translation>后一天</translation>
    </message>
    <message>
        <source>Today</source>
        <extracomment>Menu entry: goes to today. Room: a menu entry.</extracomment>
        <translation>今天</translation>
    </message>
    <message>
        <source>Random Day</source>
        <extracomment>Menu entry, and a button of the top bar: opens some day that has an entry. Room: 130 px in the top bar.</extracomment>
        <translation>随机一天</translation>
    </message>
    <message>
        <source>Year Calendar</source>
        <extracomment>Menu entry, button tip and window title: all days of the year, shaded by how many years have an entry. Room: a menu entry.</extracomment>
        <translation>年历</translation>
    </message>
    <message>
        <source>Window</source>
        <extracomment>Title of a menu. Room: the menu bar, one short word.</extracomment>
        <translation>窗口</translation>
    </message>
    <message>
        <source>Minimize</source>
        <extracomment>Menu entry: puts the window away into the task bar. Room: a menu entry.</extracomment>
        <translation>最小化</translation>
    </message>
    <message>
        <source>Zoom</source>
        <extracomment>Menu entry: makes the window as large as the screen, or small again. Room: a menu entry.</extracomment>
        <translation>最大化</translation>
    </message>
    <message>
        <source>Version %@</source>
        <extracomment>In the window about the program; %@ is a version number. Room: 300 px.</extracomment>
        <translation>版本 %@</translation>
    </message>
    <message>
        <source>A diary in plain Markdown files. Licensed under the MIT License.</source>
        <extracomment>In the window about the program. Room: wraps.</extracomment>
        <translation>以纯 Markdown 文件书写的日记。采用 MIT 许可证授权。</translation>
    </message>
    <message>
        <source>Built with %@</source>
        <extracomment>In the window about the program; %@ names a library and its version. Room: 300 px.</extracomment>
        <translation>使用 %@ 构建</translation>
    </message>
    <message>
        <source>OK</source>
        <extracomment>Button.</extracomment>
        <translation>确定</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>Button of the top bar that shows the day's whole file as Markdown text. Room: 120 px.</extracomment>
        <translation>源码</translation>
    </message>
    <message>
        <source>Reader</source>
        <extracomment>The same button while the Markdown text is shown: goes back to the page. Room: 120 px.</extracomment>
        <translation>阅读</translation>
    </message>
    <message>
        <source>%d year sections</source>
        <extracomment>Beside the file name in the top bar: how many years have a section in the file; any number from 0. Room: 200 px.</extracomment>
        <translation>%d 个年份小节</translation>
    </message>
    <message>
        <source>Viewing ## %d · %d chars</source>
        <extracomment>Right side of the status bar: the year that is shown, written like its heading in the file, and the number of characters. Room: 300 px.</extracomment>
        <translation>正在查看 ## %d · %d 字</translation>
    </message>
    <message>
        <source>MergedRemoteNotice</source>
        <extracomment>Shown for some seconds in the status bar: what another device wrote on this day was combined with what is here. Room: 560 px.</extracomment>
        <translation>已合并其他设备对这一天所做的更改</translation>
    </message>
    <message>
        <source>UpdateReadyNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ 已就绪，将在退出时安装</translation>
    </message>
    <message>
        <source>UpdateInstalledNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>Tavelo %@ 已安装</translation>
    </message>
    <message>
        <source>UpdateKeptNotice</source>
        <extracomment>Shown for some seconds in the status bar; %@ is a version number. Room: 560 px.</extracomment>
        <translation>未能安装 Tavelo %@，一切保持原样</translation>
    </message>
    <message>
        <source>UpdateDownloadingNotice</source>
        <extracomment>Shown for some seconds in the status bar, and in the settings window; %@ is a version number. Room: 560 px.</extracomment>
        <translation>正在下载 Tavelo %@…</translation>
    </message>
    <message>
        <source>Days not yet downloaded: %d</source>
        <extracomment>Notice: so many day files are known to the cloud drive and not on this computer. Any number from 1. Room: 560 px.</extracomment>
        <translation>尚未下载的天数：%d</translation>
    </message>
    <message>
        <source>The diary folder could not be watched for changes.</source>
        <extracomment>Notice: changes by other programs will be seen later than usual. Room: 560 px.</extracomment>
        <translation>无法监视日记文件夹中的更改。</translation>
    </message>
    <message>
        <source>Day %d / %d</source>
        <extracomment>At the top right of the page: which day of the year it is, and how many days the year has. Room: 250 px.</extracomment>
        <translation>第 %d / %d 天</translation>
    </message>
    <message>
        <source>This file has %d past-year sections</source>
        <extracomment>Under the date: how many earlier years have an entry for this day; any number from 0. Room: 560 px.</extracomment>
        <translation>此文件有 %d 个往年小节</translation>
    </message>
    <message>
        <source>NoLeapDayThisYear</source>
        <extracomment>Instead of the entry, on 29 February of a year that has none.</extracomment>
        <translation>今年没有 2 月 29 日。</translation>
    </message>
    <message>
        <source>The year %d cannot be written.</source>
        <extracomment>Instead of the entry, for a year that does not have four digits.</extracomment>
        <translation>无法书写 %d 年的日记。</translation>
    </message>
    <message>
        <source>This year</source>
        <extracomment>In the margin beside the entry, under the year. Room: 84 px.</extracomment>
        <translation>今年</translation>
    </message>
    <message>
        <source>%d years ago</source>
        <extracomment>In the margin beside the entry and on the cards; must read right for 1 as well as for 5. Room: 84 px.</extracomment>
        <translation>%d 年前</translation>
    </message>
    <message>
        <source>Write about this day in %d…</source>
        <extracomment>Invitation in an empty entry; %d is the year. Room: 560 px.</extracomment>
        <translation>写写 %d 年的这一天……</translation>
    </message>
    <message>
        <source>GapLine</source>
        <extracomment>Under the entry; %@ lists the years without an entry, as in 2024 · 2023 · 2020. Room: wraps.</extracomment>
        <translation>没有日记的年份：%@</translation>
    </message>
    <message>
        <source>(empty file)</source>
        <extracomment>In place of the Markdown text of a file without any.</extracomment>
        <translation>（空文件）</translation>
    </message>
    <message>
        <source>PhotosMark</source>
        <extracomment>In the margin beside the photos of the day, one word. Room: 76 px.</extracomment>
        <translation>照片</translation>
    </message>
    <message>
        <source>PhotosCaption</source>
        <extracomment>Above the photos; %d is their number, any from 1. Room: 460 px.</extracomment>
        <translation>这一天拍摄的照片：%d 张</translation>
    </message>
    <message>
        <source>Previous Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>上一张照片</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <extracomment>Button tip and name for a screen reader, in the photo preview.</extracomment>
        <translation>下一张照片</translation>
    </message>
    <message>
        <source>Open in Image Viewer</source>
        <extracomment>Opens a photo in another program. Room: a menu entry.</extracomment>
        <translation>用图片查看器打开</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <extracomment>Shows a photo's file in the file manager. Room: a menu entry.</extracomment>
        <translation>在文件夹中显示</translation>
    </message>
    <message>
        <source>On This Day</source>
        <extracomment>Title of the column of cards, one for each year of the shown day, which need not be today. Room: 230 px.</extracomment>
        <translation>历年此日</translation>
    </message>
    <message>
        <source>%d chars</source>
        <extracomment>On a card: number of characters without spaces, any from 0. Room: 150 px.</extracomment>
        <translation>%d 字</translation>
    </message>
    <message>
        <source>Not written yet</source>
        <extracomment>On the card of a year without text. Room: wraps.</extracomment>
        <translation>尚未书写</translation>
    </message>
    <message>
        <source>This year · writing</source>
        <extracomment>On the card of the current year. Room: 220 px.</extracomment>
        <translation>今年 · 书写中</translation>
    </message>
    <message>
        <source>Add a past year</source>
        <extracomment>Button below the cards: begins an entry for an earlier year. Room: 220 px.</extracomment>
        <translation>添加往年</translation>
    </message>
    <message>
        <source>This day is still empty</source>
        <extracomment>Below the cards. Room: wraps.</extracomment>
        <translation>这一天还是空的</translation>
    </message>
    <message>
        <source>Spanning %d years · earliest %d</source>
        <extracomment>Below the cards: from the earliest year with an entry to the current one, both counted, at least 2; then the earliest year. Room: wraps.</extracomment>
        <translation>跨越 %d 年 · 最早 %d 年</translation>
    </message>
    <message>
        <source>Previous Month</source>
        <extracomment>Name of the button ‹ over the month for a screen reader.</extracomment>
        <translation>上一月</translation>
    </message>
    <message>
        <source>Next Month</source>
        <extracomment>Name of the button › over the month for a screen reader.</extracomment>
        <translation>下一月</translation>
    </message>
    <message>
        <source>Back to Today</source>
        <extracomment>Button of the sidebar, followed by today's date as in 03-14. Room: 145 px.</extracomment>
        <translation>回到今天</translation>
    </message>
    <message>
        <source>Days written</source>
        <extracomment>Label in the sidebar, before a value such as 123 / 365. Room: 125 px.</extracomment>
        <translation>已写天数</translation>
    </message>
    <message>
        <source>Earliest year</source>
        <extracomment>Label in the sidebar, before a year. Room: 150 px.</extracomment>
        <translation>最早年份</translation>
    </message>
    <message>
        <source>Total files</source>
        <extracomment>Label in the sidebar, before a number. Room: 150 px.</extracomment>
        <translation>文件总数</translation>
    </message>
    <message>
        <source>Find</source>
        <extracomment>Button tip, and title of the search window.</extracomment>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Settings</source>
        <extracomment>Button tip, and title of the settings window.</extracomment>
        <translation>设置</translation>
    </message>
    <message>
        <source>A11yHasContent</source>
        <extracomment>For a screen reader, after a date in the month calendar: some year has an entry for it.</extracomment>
        <translation>有日记</translation>
    </message>
    <message>
        <source>%d d</source>
        <extracomment>Beside the name of a month: number of its days with an entry, any from 0, abbreviated. Room: 60 px.</extracomment>
        <translation>%d 天</translation>
    </message>
    <message>
        <source>YearsWrittenLegend</source>
        <extracomment>Before the four shades 0, 1, 2 and 3+: the number of years with an entry for a day. Room: 250 px.</extracomment>
        <translation>有日记的年数</translation>
    </message>
    <message>
        <source>Years written: %d</source>
        <extracomment>For a screen reader, after a date in the year calendar: number of years with an entry for it, any from 0.</extracomment>
        <translation>有日记的年数：%d</translation>
    </message>
    <message>
        <source>YearFootnote</source>
        <extracomment>Below the year calendar. Room: wraps at 580 px.</extracomment>
        <translation>每个方格代表一年中的一天：颜色越深，写过这一天的年份越多。带边框的方格是 2 月 29 日，只有闰年才有。</translation>
    </message>
    <message>
        <source>SearchPlaceholder</source>
        <extracomment>In the empty search field. Room: 330 px.</extracomment>
        <translation>搜索所有日记</translation>
    </message>
    <message>
        <source>SearchNoResults</source>
        <extracomment>In place of the list when nothing was found. Room: 330 px.</extracomment>
        <translation>没有找到日记</translation>
    </message>
    <message>
        <source>Search</source>
        <extracomment>Name of the search field for a screen reader.</extracomment>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Search Results</source>
        <extracomment>Name of the list of found entries for a screen reader.</extracomment>
        <translation>搜索结果</translation>
    </message>
    <message>
        <source>Entries found: %d</source>
        <extracomment>%d is the number of entries that a search found. Read out by screen readers; never seen.</extracomment>
        <translation>找到的日记：%d 篇</translation>
    </message>
    <message>
        <source>General</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>通用</translation>
    </message>
    <message>
        <source>Language</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>语言</translation>
    </message>
    <message>
        <source>System Default</source>
        <extracomment>First choice of the languages: the one that the system speaks. Room: 300 px.</extracomment>
        <translation>跟随系统</translation>
    </message>
    <message>
        <source>Diary Folder</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>日记文件夹</translation>
    </message>
    <message>
        <source>Vault Location</source>
        <extracomment>Label of a row: the folder that holds the diary. Room: 84 px a word.</extracomment>
        <translation>位置</translation>
    </message>
    <message>
        <source>Choose…</source>
        <extracomment>Small button: picks another folder. Room: 288 px together with the next two.</extracomment>
        <translation>选择…</translation>
    </message>
    <message>
        <source>iCloud Drive</source>
        <extracomment>Small button: puts the diary into Apple's cloud drive, whose name this is.</extracomment>
        <translation>iCloud 云盘</translation>
    </message>
    <message>
        <source>Cloud Drive</source>
        <extracomment>The same button, which cannot be pressed, on a computer without any cloud drive; with one, it bears that drive's name.</extracomment>
        <translation>云盘</translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <extracomment>Small button: goes back to the usual folder.</extracomment>
        <translation>恢复默认</translation>
    </message>
    <message>
        <source>Copy your diary to the new folder?</source>
        <extracomment>Question after another folder was chosen that holds no diary yet; the folder's path stands below the next text.</extracomment>
        <translation>要将日记复制到新文件夹吗？</translation>
    </message>
    <message>
        <source>There is no diary in the new folder yet. Only day files are copied, and the old folder stays as it is.</source>
        <extracomment>Text of that question. A day file is the file of one day of the year, such as 03-14.md.</extracomment>
        <translation>新文件夹中还没有日记。仅会复制每日文件，原文件夹保持不变。</translation>
    </message>
    <message>
        <source>Copy Diary</source>
        <extracomment>First button under that question. Room: 200 px.</extracomment>
        <translation>复制日记</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <extracomment>Second button under that question: uses the new folder without any entries. Room: 200 px.</extracomment>
        <translation>从空白开始</translation>
    </message>
    <message>
        <source>Cancel</source>
        <extracomment>Button. Room: 200 px.</extracomment>
        <translation>取消</translation>
    </message>
    <message>
        <source>Copying the diary…</source>
        <extracomment>State while the diary is copied to another folder, in place of the hint under the folder. Room: wraps at 330 px.</extracomment>
        <translation>正在复制日记…</translation>
    </message>
    <message>
        <source>The diary could not be copied and stays where it is.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>无法复制日记。日记仍在原处。</translation>
    </message>
    <message>
        <source>This setting could not be saved.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>无法保存此设置。</translation>
    </message>
    <message>
        <source>VaultHint</source>
        <extracomment>Under the folder. Room: wraps at 330 px.</extracomment>
        <translation>一年中的每一天都是此文件夹中的一个 Markdown 文件。放在同步文件夹中，即可在所有设备上使用日记。选择空文件夹时，Tavelo 会询问是否将日记复制过去。</translation>
    </message>
    <message>
        <source>Choose the Diary Folder</source>
        <extracomment>Title of the window in which a folder is picked.</extracomment>
        <translation>选择日记文件夹</translation>
    </message>
    <message>
        <source>Writing</source>
        <extracomment>Title of a card about the look of the text, shown in capitals.</extracomment>
        <translation>书写</translation>
    </message>
    <message>
        <source>Body Font</source>
        <extracomment>Label of a row: the typeface of the diary's text. Room: 84 px a word.</extracomment>
        <translation>正文字体</translation>
    </message>
    <message>
        <source>Default (Serif)</source>
        <extracomment>First choice of the typefaces: the built-in one, which has serifs. Room: 300 px.</extracomment>
        <translation>默认（衬线）</translation>
    </message>
    <message>
        <source>Editor Font Size</source>
        <extracomment>Label of a row, before Small, Standard and Large. Room: 84 px a word.</extracomment>
        <translation>字号</translation>
    </message>
    <message>
        <source>Small</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>小</translation>
    </message>
    <message>
        <source>Standard</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>标准</translation>
    </message>
    <message>
        <source>Large</source>
        <extracomment>Choice of the text size.</extracomment>
        <translation>大</translation>
    </message>
    <message>
        <source>Show missing-year note</source>
        <extracomment>Check box: below the entry, name the years without one. Room: 350 px.</extracomment>
        <translation>提示没有日记的年份</translation>
    </message>
    <message>
        <source>Show photos taken this day</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>显示这一天拍摄的照片</translation>
    </message>
    <message>
        <source>Photos</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>照片</translation>
    </message>
    <message>
        <source>Photo Access</source>
        <extracomment>Label of a row: whether the user's pictures can be read. Room: 84 px a word.</extracomment>
        <translation>照片访问</translation>
    </message>
    <message>
        <source>PhotoAccessNotAsked</source>
        <extracomment>State: the computer has no folder of pictures.</extracomment>
        <translation>没有图片文件夹</translation>
    </message>
    <message>
        <source>PhotoAccessDenied</source>
        <extracomment>State: the folder of pictures cannot be read.</extracomment>
        <translation>无法读取</translation>
    </message>
    <message>
        <source>PhotoAccessLimited</source>
        <extracomment>State: some of the folders of pictures cannot be read.</extracomment>
        <translation>仅部分文件夹</translation>
    </message>
    <message>
        <source>PhotoAccessAllowed</source>
        <extracomment>State: all folders of pictures can be read.</extracomment>
        <translation>已允许</translation>
    </message>
    <message>
        <source>Photos cannot be shown: a part of Tavelo is not installed.</source>
        <extracomment>In place of the states above, where the part of the program that reads pictures is missing. Room: wraps at 330 px.</extracomment>
        <translation>无法显示照片：Tavelo 的一个组件尚未安装。</translation>
    </message>
    <message>
        <source>Add Folder…</source>
        <extracomment>Small button: picks one more folder in which photos are looked for. Room: 336 px together with any of the states above.</extracomment>
        <translation>添加文件夹…</translation>
    </message>
    <message>
        <source>Choose a Folder with Photos</source>
        <extracomment>Title of the window in which that folder is picked.</extracomment>
        <translation>选择照片文件夹</translation>
    </message>
    <message>
        <source>Remove</source>
        <extracomment>Small button beside such a folder: no longer look for photos there. The folder itself stays. Room: 120 px.</extracomment>
        <translation>移除</translation>
    </message>
    <message>
        <source>Updates &amp; Feedback</source>
        <extracomment>Title of a card, shown in capitals.</extracomment>
        <translation>更新与反馈</translation>
    </message>
    <message>
        <source>Version</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>版本</translation>
    </message>
    <message>
        <source>Install updates automatically</source>
        <extracomment>Check box. Room: 350 px.</extracomment>
        <translation>自动安装更新</translation>
    </message>
    <message>
        <source>Checking…</source>
        <extracomment>State while the program asks for a newer version. Room: 330 px.</extracomment>
        <translation>正在检查…</translation>
    </message>
    <message>
        <source>Feedback</source>
        <extracomment>Label of a row. Room: 84 px a word.</extracomment>
        <translation>反馈</translation>
    </message>
    <message>
        <source>Send Feedback…</source>
        <extracomment>Small button: opens an e-mail to the makers. Room: 230 px.</extracomment>
        <translation>发送反馈…</translation>
    </message>
    <message>
        <source>FeedbackHint</source>
        <extracomment>Beside or under that button. Room: 340 px.</extracomment>
        <translation>在您的邮件程序中新建一封邮件。</translation>
    </message>
    <message>
        <source>This copy of Tavelo was built without an address for feedback.</source>
        <extracomment>In place of that text, where the button cannot be pressed. Room: wraps at 330 px.</extracomment>
        <translation>此版本的 Tavelo 未设置反馈地址。</translation>
    </message>
    <message>
        <source>No e-mail program could be opened. Please write to this address:</source>
        <extracomment>Message after the button, followed by the address on a line of its own.</extracomment>
        <translation>无法打开邮件程序。请写信至以下地址：</translation>
    </message>
    <message>
        <source>OnboardTitle</source>
        <extracomment>The first question at the very first start.</extracomment>
        <translation>您想把日记存放在哪里？</translation>
    </message>
    <message>
        <source>OnboardInfo</source>
        <extracomment>Under that question; %@ is the name of a cloud drive, for example Nextcloud.</extracomment>
        <translation>放在 %@ 中，其他设备也能使用这本日记；放在本机，则保存在您的文档文件夹中。以后可以在设置中更改。</translation>
    </message>
    <message>
        <source>OnboardICloud</source>
        <extracomment>First button under that question; %@ is the name of a cloud drive, for example Nextcloud. Room: 240 px.</extracomment>
        <translation>存放在 %@</translation>
    </message>
    <message>
        <source>OnboardLocal</source>
        <extracomment>Second button under that question. Room: 240 px.</extracomment>
        <translation>存放在本机</translation>
    </message>
    <message>
        <source>This entry could not be saved. Tavelo keeps it and will try again.</source>
        <extracomment>Message, followed by the system's own words.</extracomment>
        <translation>无法保存这篇日记。Tavelo 会保留它，并稍后重试。</translation>
    </message>
    <message>
        <source>Tavelo could not save this text to the diary when it was last closed. It is kept in this folder:</source>
        <extracomment>Message at the start, followed by the folder on a line of its own.</extracomment>
        <translation>Tavelo 上次关闭时未能将这段文字保存到日记中。文字保留在此文件夹中：</translation>
    </message>
    <message>
        <source>Show Folder</source>
        <extracomment>Button of that message. Room: 200 px.</extracomment>
        <translation>显示文件夹</translation>
    </message>
    <message>
        <source>Tavelo is already open on this diary.</source>
        <extracomment>Message when the program is started a second time.</extracomment>
        <translation>Tavelo 已经打开了这本日记。</translation>
    </message>
    <message>
        <source>UpdateFoundTitle</source>
        <extracomment>Title of a message.</extracomment>
        <translation>有新版本</translation>
    </message>
    <message>
        <source>UpdateFoundInfo</source>
        <extracomment>Text of that message; %@ is a version number.</extracomment>
        <translation>Tavelo %@ 已下载，将在退出时安装。</translation>
    </message>
    <message>
        <source>UpdateFailedTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>无法检查更新</translation>
    </message>
    <message>
        <source>UpdateFailedInfo</source>
        <extracomment>Text of that message: no connection, or what was fetched is not genuine.</extracomment>
        <translation>Tavelo 无法获取或验证新版本。请检查网络连接，稍后重试。</translation>
    </message>
    <message>
        <source>UpdateUnsupportedInfo</source>
        <extracomment>Text of that message, and state in the settings window: this copy was installed by other means. Room: wraps at 330 px.</extracomment>
        <translation>此 Tavelo 无法自行更新。如果它随系统安装，请使用软件包管理器更新。</translation>
    </message>
    <message>
        <source>UpToDateTitle</source>
        <extracomment>Title of a message, and state in the settings window. Room: 330 px.</extracomment>
        <translation>Tavelo 已是最新版本</translation>
    </message>
    <message>
        <source>UpToDateInfo</source>
        <extracomment>Text of that message; %@ is the version number in use.</extracomment>
        <translation>当前版本 %@ 即为最新版本。</translation>
    </message>
    <message>
        <source>ConflictMarker</source>
        <extracomment>A line that is written into the user's files, between two versions of an entry that could not be combined. Never change it once it was published: it is how a merge is recognised. One line of plain Markdown, no heading, no list, no fence.</extracomment>
        <translation>*——这篇日记的另一个版本——*</translation>
    </message>
</context>
</TS>
