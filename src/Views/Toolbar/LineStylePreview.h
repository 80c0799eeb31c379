#pragma once

#include "PDFTypes.h"

#include <QIcon>
#include <QWidget>

/// A short line that ends in one of the decorations.
class LineStylePreview : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize size{34, 18};

    explicit LineStylePreview(PDFLineStyle style, QWidget* parent = nullptr);
    ~LineStylePreview() override;

    /// The same picture in the text colour of the application's palette at the time of drawing.
    [[nodiscard]] static QIcon icon(PDFLineStyle style);

    [[nodiscard]] QSize sizeHint() const override { return size; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PDFLineStyle m_style;
};
