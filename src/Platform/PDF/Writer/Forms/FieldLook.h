#pragma once

#include "ObjectStore.h"

#include <QColor>
#include <QRectF>
#include <QString>

#include <optional>

struct FieldText;
struct FieldFrame;
class FieldFont;

/// The appearance of a text or choice field as its dictionary, its field and its form ask for it.
class FieldLook {
public:
    FieldLook(QPDFObjectHandle widget, QPDFObjectHandle form);

    /// True for a widget that covers nothing.
    [[nodiscard]] bool isEmpty() const { return m_rect.isEmpty(); }
    /// The resource name of the font, with its slash.
    [[nodiscard]] QByteArray fontName() const { return m_fontName; }
    /// A form XObject; uninitialized when the font lacks a character. A given background takes the place of that in the
    /// dictionary, which can't say how opaque it is.
    [[nodiscard]] QPDFObjectHandle make(ObjectStore& objects, const std::optional<QColor>& background) const;

private:
    [[nodiscard]] FieldFrame frame() const;
    [[nodiscard]] FieldText text(const FieldFrame& frame, const FieldFont& font) const;
    void addRows(FieldText& text) const;
    [[nodiscard]] QString label(const QString& exportValue) const;

    QPDFObjectHandle m_widget;
    QPDFObjectHandle m_form;
    QRectF m_rect;
    bool m_isChoice = false;
    int m_flags = 0;
    int m_turn = 0;
    QByteArray m_fontName = "/Helv";
    double m_size = 0;
    QByteArray m_colorOperators = "0 g";
};
