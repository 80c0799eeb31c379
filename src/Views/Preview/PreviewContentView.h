#pragma once

#include "AssistantSource.h"

#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class AssistantViewModel;
class FilePreview;
class QAction;
class QFrame;
class QuickLookPreviewView;
class QVBoxLayout;

/// All of a window that shows a file which isn't converted: its pages, two commands, and the assistant, who knows the
/// file's words and nothing else of it. For a file of no known kind, the refusal alone. The words are looked for once.
class PreviewContentView : public QWidget {
    Q_OBJECT

public:
    using MakeAssistant = std::function<std::shared_ptr<AssistantViewModel>(const TextOnlyAssistantContext& context)>;

    static constexpr int panelWidth = 380;

    /// `makeAssistant` makes the conversation about the words once they are there.
    PreviewContentView(QUrl url, bool isSupported, MakeAssistant makeAssistant, QWidget* parent = nullptr);
    ~PreviewContentView() override;

    /// Lets the user choose another file, which opens in a window of its own.
    void openNewDocument();

    [[nodiscard]] bool showsAssistant() const;
    void setShowsAssistant(bool shows);
    /// Null until the file's words are there, or known not to be.
    [[nodiscard]] const std::shared_ptr<AssistantViewModel>& assistant() const { return m_assistant; }

Q_SIGNALS:
    void settingsRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void makePreviewLayout();
    QWidget* makeToolbar();
    QWidget* makeWaitingPlace();
    void setText(const std::optional<QString>& text);
    void showPanel();

    const QUrl m_url;
    const bool m_isSupported;
    const MakeAssistant m_makeAssistant;
    FilePreview* m_preview;
    QuickLookPreviewView* m_pages = nullptr;
    QAction* m_ask = nullptr;
    QFrame* m_panelPlace = nullptr;
    QVBoxLayout* m_panelLayout = nullptr;
    QWidget* m_waiting = nullptr; ///< where the panel will be; null once that is there
    bool m_didAttemptExtraction = false;
    std::shared_ptr<AssistantViewModel> m_assistant;
};
