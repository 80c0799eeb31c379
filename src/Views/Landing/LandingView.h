#pragma once

#include <QList>
#include <QScrollArea>
#include <QUrl>

#include <functional>

class AdaptiveGridLayout;
class DocumentController;
class OpenDocumentCard;
class RecentThumbnailLoader;

/// What an empty window shows: the program's name, a card on which to choose or drop a file, and the recent files. It
/// opens nothing itself.
class LandingView : public QScrollArea {
    Q_OBJECT

public:
    /// With `onOpenInPlace` the window that holds this view takes a PDF over; without it `controller`, which must
    /// outlive the view, opens the PDF in a window of its own. Other files go to `FileOpenRouter` in both cases.
    LandingView(DocumentController& controller, std::function<void(const QUrl& url)> onOpenInPlace,
                QWidget* parent = nullptr);
    ~LandingView() override;

    void selectFile();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeRecentsSection();
    void openFile(const QUrl& url);
    void showRecents();

    DocumentController& m_controller;
    std::function<void(const QUrl&)> m_onOpenInPlace;
    RecentThumbnailLoader* m_thumbnailLoader;
    OpenDocumentCard* m_card;
    QWidget* m_recentsSection = nullptr;
    AdaptiveGridLayout* m_recentsGrid = nullptr;
    bool m_recentsShown = false;
    QList<QUrl> m_shownRecents;
};
