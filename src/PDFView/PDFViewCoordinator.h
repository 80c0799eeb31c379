#pragma once

#include "MarkupAction.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <optional>

class AnnotatingPDFView;
class UserDefaults;

/// The one object through which toolbar, sidebar and assistant reach the viewer of a workspace. Tells the current page,
/// remembers it for the file, and forwards markup. The viewer belongs to the widgets and may go first. Main thread
/// only.
class PDFViewCoordinator : public QObject {
    Q_OBJECT

public:
    /// `defaults`, where the pages of files are remembered, must outlive the coordinator.
    explicit PDFViewCoordinator(UserDefaults& defaults, QObject* parent = nullptr);
    ~PDFViewCoordinator() override;

    /// The current page for the reader, "3 of 12"; empty when there is none.
    [[nodiscard]] const QString& pageIndicator() const { return m_pageIndicator; }
    /// Zero-based.
    [[nodiscard]] std::optional<int> currentPageIndex() const { return m_currentPageIndex; }

    /// Empty for a document that has not been saved.
    [[nodiscard]] const QUrl& fileURL() const { return m_fileURL; }
    void setFileURL(const QUrl& fileURL) { m_fileURL = fileURL; }

    /// Null once the viewer is gone.
    [[nodiscard]] AnnotatingPDFView* pdfView() const;
    void setPdfView(AnnotatingPDFView* view);

    /// The page that was last shown of that file, or none. It may lie beyond the document's present end.
    [[nodiscard]] std::optional<int> rememberedPageIndex(const QUrl& fileURL) const;

    /// The scale at which that file was last read; none when its pages followed the width of the view.
    [[nodiscard]] std::optional<double> rememberedScale(const QUrl& fileURL) const;

    /// Marks the selected text. False when there is no selection or no viewer.
    bool applyMarkup(MarkupAction action);

    /// Takes over the viewer's current page and follows it from now on. May be called again.
    void observePageChanges();
    /// Takes over the viewer's current page, and remembers it when there is a file.
    void updatePageIndicator();

Q_SIGNALS:
    void pageIndicatorChanged(const QString& pageIndicator);
    void currentPageIndexChanged();
    /// A viewer was attached.
    void objectWillChange();

private:
    void noteScale();
    void rememberScale();
    void publish(const QString& pageIndicator, std::optional<int> pageIndex);

    UserDefaults& m_defaults;
    QString m_pageIndicator;
    std::optional<int> m_currentPageIndex;
    QUrl m_fileURL;
    QPointer<AnnotatingPDFView> m_pdfView;
    QMetaObject::Connection m_pageChangeObserver;
    QMetaObject::Connection m_scaleObserver;
    std::optional<double> m_scale; ///< none while the pages follow the width of the view
    QTimer m_scaleRest; ///< runs out when the scale has rested for a moment: zooming by hand changes it at each frame
};
