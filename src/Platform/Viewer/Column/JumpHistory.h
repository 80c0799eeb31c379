#pragma once

#include "PageColumn.h"

#include <optional>
#include <vector>

/// The places that the reader left by a jump, as in a web browser. Scrolling is no jump.
class JumpHistory {
public:
    using Place = PageColumn::Place;

    /// Notes the place that is left by a jump elsewhere. What could be gone forward to is forgotten.
    void record(const Place& left);
    void clear();

    [[nodiscard]] bool canGoBack() const { return !m_back.empty(); }
    [[nodiscard]] bool canGoForward() const { return !m_forward.empty(); }
    /// The place to go to, or none; `present` is then where the way back leads.
    [[nodiscard]] std::optional<Place> goBack(const Place& present);
    [[nodiscard]] std::optional<Place> goForward(const Place& present);

private:
    std::vector<Place> m_back; // the last left is last
    std::vector<Place> m_forward;
};
