#include "JumpHistory.h"

static constexpr std::size_t placesKept = 100;

void JumpHistory::record(const Place& left) {
    m_forward.clear();
    m_back.push_back(left);
    if (m_back.size() > placesKept)
        m_back.erase(m_back.begin());
}

void JumpHistory::clear() {
    m_back.clear();
    m_forward.clear();
}

static std::optional<JumpHistory::Place> step(std::vector<JumpHistory::Place>& from,
                                              std::vector<JumpHistory::Place>& to, const JumpHistory::Place& present) {
    if (from.empty())
        return std::nullopt;
    const JumpHistory::Place place = from.back();
    from.pop_back();
    to.push_back(present);
    return place;
}

std::optional<JumpHistory::Place> JumpHistory::goBack(const Place& present) {
    return step(m_back, m_forward, present);
}

std::optional<JumpHistory::Place> JumpHistory::goForward(const Place& present) {
    return step(m_forward, m_back, present);
}
