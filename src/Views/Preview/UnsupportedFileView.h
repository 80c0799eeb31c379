#pragma once

#include <QWidget>

class QUrl;

/// What stands in a window whose file can't be shown: its name, and why.
class UnsupportedFileView : public QWidget {
    Q_OBJECT

public:
    /// Of a kind that nothing here shows.
    explicit UnsupportedFileView(const QUrl& url, QWidget* parent = nullptr);
    UnsupportedFileView(const QUrl& url, const QString& reason, QWidget* parent = nullptr);
    ~UnsupportedFileView() override;
};
