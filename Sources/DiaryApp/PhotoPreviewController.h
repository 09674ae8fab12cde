// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayPhoto.h>
#include <DiaryApp/MotionPreference.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/PhotoSource.h>
#include <DiaryKit/Executor.h>

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace diary {

class FileManager;

// The photos of a day, one at a time and as large as the window, in a panel over it.
//
// Each photo is there at once as the page shows it. The whole picture of the one that is shown and of its
// neighbours comes from the photo source, so that a step finds it waiting and no more than three are in
// memory. Main thread only. What the constructor takes must outlive the controller;
// the source may be none.
class PhotoPreviewController : public QObject {
    Q_OBJECT

public:
    struct Item {
        // What other programs open: the photo's own file, which lies on this disk already and needs no copy,
        // or a file below exportRoot with the picture as the page shows it. Empty when there can be none.
        std::filesystem::path previewItemURL;
        QString previewItemTitle; // the photo's file name
        QImage image;
        bool hasFile = false; // whether the file was there when it was heard of last
    };

    // The rectangle of the photo's tile on the screen; empty when it cannot be seen.
    using SourceFrame = std::function<QRect(std::size_t)>;

    PhotoPreviewController(FileManager &fileManager, Executor &executor, PhotoSource *source);
    ~PhotoPreviewController() override;

    // Takes the photos and forgets those it had. False when there are none. Their files are written in the
    // background.
    bool prepare(const std::vector<DayPhoto> &photos, std::int64_t startIndex, SourceFrame sourceFrame);

    // Shows what was prepared, from the photo at startIndex on, over everything in the widget. A scripted
    // start-up sees no zoom, so that its pictures are the same every time.
    void present(QWidget *over);
    // Ends the preview without ado.
    void dismiss();

    // Asks the desktop whether it wants things to move, ahead of the first preview.
    void askForMotionPreference() { m_motion.ask(); }

    const std::vector<Item> &items() const { return m_items; }
    std::size_t startIndex() const { return m_startIndex; }
    // Larger with each preparation. What arrives late for an earlier one is dropped.
    std::uint64_t generation() const { return m_generation; }
    QRect sourceFrameOnScreen(std::size_t index) const;
    // Of this preparation alone, below the system's folder for temporary files; readable by this user only.
    // It goes with the next preparation and with the controller. Empty when it could not be made.
    std::filesystem::path exportRoot() const;

    // None before the first preview.
    PhotoPreviewPanel *panel() const { return m_panel; }

private:
    class ExportFolder;

    // What is known of a photo besides its item.
    struct Photo {
        QImage small; // as the page shows it
        std::optional<std::string> assetIdentifier;
        enum class Whole { NotAsked, Asked, Here, NotToBeHad };
        Whole whole = Whole::NotAsked;
        QSize proportions;
        PhotoEnlarging enlarging = PhotoEnlarging::UpToItsPixels;
    };

    static Photo photoOf(const DayPhoto &photo);
    void exportItem(std::size_t index, const std::string &fileName);
    void exported(std::size_t index);
    void showItem(std::size_t index);
    bool isNearShown(std::size_t index) const;
    void loadWholeImages();
    void dropFarImages();
    void requestWhole(std::size_t index);
    void upgrade(std::size_t index, const std::optional<PhotoSource::FullImage> &whole);
    PhotoPreviewPanel::Model panelModel() const;
    void updatePanel();
    void makePanel(QWidget *over);
    void giveToFileManager(void (FileManager::*action)(const std::filesystem::path &));
    // Runs the work on the main thread, unless the controller is gone or has prepared anew by then. To be
    // called there; the result, on any thread.
    template <typename... Arguments>
    std::function<void(Arguments...)> onMain(void (PhotoPreviewController::*work)(std::size_t, Arguments...),
                                             std::size_t index);

    FileManager &m_fileManager;
    Executor &m_executor;
    PhotoSource *m_source;
    MotionPreference m_motion;
    std::vector<Item> m_items;
    std::vector<Photo> m_photos; // one for each item
    SourceFrame m_sourceFrameProvider;
    std::size_t m_startIndex = 0;
    std::uint64_t m_generation = 0;
    std::shared_ptr<ExportFolder> m_exports; // with the work that writes to it
    // The photo in the panel; none while nothing is shown.
    std::optional<std::size_t> m_shown;
    QPointer<PhotoPreviewPanel> m_panel; // belongs to the widget it covers
};

} // namespace diary
