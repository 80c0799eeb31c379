#pragma once

#include <QObject>

#include <chrono>
#include <map>
#include <memory>

class Document;
class DocumentController;
class QTimer;

/// Knows the documents whose save takes so long that the user should be told of it. Main thread only.
class SlowSaves : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds patience{500};

    /// `controller` must outlive this object.
    explicit SlowSaves(DocumentController& controller, QObject* parent = nullptr);
    ~SlowSaves() override;

    [[nodiscard]] bool contains(const Document& document) const;

Q_SIGNALS:
    /// The document is among them now, or not any more.
    void changed(const std::shared_ptr<Document>& document, bool isSlow);

private:
    void follow(const std::shared_ptr<Document>& document, bool isSaving);

    /// One for each save that is under way. It runs out when the save has become slow.
    std::map<const Document*, std::unique_ptr<QTimer>> m_timers;
};
