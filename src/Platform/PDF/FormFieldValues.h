#pragma once

#include "PDFFieldData.h"
#include "PDFFormField.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// What a widget and its field say beyond the common values of annotations: how the file has it, never changed
/// afterwards, so that copies of an annotation share it.
struct FormFieldValues {
    /// The most cells that a comb is drawn with, however long a text the file allows.
    static constexpr int mostCells = 1000;

    // What the field says

    int fieldObject = 0; ///< number of the dictionary that has the field's own name; 0 for one inside another object
    QString userName;    ///< TU
    std::optional<int> maximumLength;
    PDFFormField::Alignment alignment = PDFFormField::Alignment::left;
    /// Opt of a choice field; null without one. Fields that share a list in the file share it here.
    std::shared_ptr<const std::vector<PDFFormField::Choice>> choices;
    int topIndex = 0; ///< TI, the first row of a list box that shows
    /// The value in the file, in the form of `PDFFormField::value`. It may be one that the field wouldn't take anew.
    QStringList valueInFile;

    // What the widget says

    QString onState; ///< the state of AP, N that isn't Off
    PDFWidgetCellState stateInFile = PDFWidgetCellState::off;
    bool hasStateLooks = false; ///< AP, N gives an appearance for being on
    QString mark;               ///< MK, CA: a character of ZapfDingbats
};
