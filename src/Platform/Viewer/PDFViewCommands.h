#pragma once

#include "PDFView.h"

#include <map>

/// The actions of a view: their texts, what they do and when they can. The window gives them keys.
class PDFViewCommands {
public:
    /// The actions belong to the view.
    explicit PDFViewCommands(PDFView& view);

    [[nodiscard]] QAction* action(PDFViewCommand command) const { return m_actions.at(command); }

private:
    void updateEnabled() const;

    PDFView& m_view;
    std::map<PDFViewCommand, QAction*> m_actions;
};
