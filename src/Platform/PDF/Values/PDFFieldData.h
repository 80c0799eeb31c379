#pragma once

#include <QString>
#include <QStringList>

#include <memory>

struct FormFieldValues;

/// The values of FT of a form field.
enum class PDFWidgetFieldType { none, text, button, choice, signature };
/// The three kinds of button.
enum class PDFWidgetControlType { pushButton = 0, radioButton = 1, checkBox = 2 };
/// The state of a check box or radio button.
enum class PDFWidgetCellState { off = 0, on = 1 };

/// What a Widget annotation shows of its form field.
struct PDFFieldData {
    QString name; ///< the full one, parts joined with dots
    PDFWidgetFieldType type = PDFWidgetFieldType::none;
    PDFWidgetControlType control = PDFWidgetControlType::pushButton;
    PDFWidgetCellState state = PDFWidgetCellState::off; ///< of a check box or radio button
    QString string;                                     ///< the value as text
    /// The export values that are chosen in a choice field; of a check box or radio button the name of the state that
    /// its field is in, "Off" for none.
    QStringList chosen;
    std::shared_ptr<const FormFieldValues> inFile; ///< the rest of what the file says; null for a new field
    int flags = 0;                                 ///< the Ff key
    int turn = 0;                                  ///< MK, R: 0, 90, 180 or 270 degrees anticlockwise against the page
};
