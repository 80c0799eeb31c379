#pragma once

#include <QStringView>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Finds the rows of a constant table by one of their texts. Made by the compiler, so that a look-up needs no lock, no
/// allocation and on the average one or two comparisons. Keeps a reference to the table.
template <typename Row, std::size_t Count>
class MTTextIndex {
public:
    using Rows = std::array<Row, Count>;
    using Key = std::u16string_view Row::*;
    using ComesFirst = bool (*)(const Row&, const Row&);

    /// Finds the first of several rows with the same text.
    consteval MTTextIndex(const Rows& rows, Key key)
        : MTTextIndex(rows, key, [](const Row&, const Row&) { return false; }) {}

    /// Finds, of several rows with the same text, the one that `comesFirst` puts before the others.
    consteval MTTextIndex(const Rows& rows, Key key, ComesFirst comesFirst) : m_rows(rows), m_key(key) {
        static_assert(Count < UINT16_MAX);
        for (std::size_t row = 0; row < Count; ++row) {
            std::size_t slot = firstSlot(rows[row].*key);
            while (m_slots[slot] != 0 && rows[m_slots[slot] - 1U].*key != rows[row].*key)
                slot = (slot + 1) % slotCount;
            if (m_slots[slot] == 0 || comesFirst(rows[row], rows[m_slots[slot] - 1U]))
                m_slots[slot] = static_cast<std::uint16_t>(row + 1);
        }
    }

    /// Null when no row has that text. Letter case counts.
    [[nodiscard]] const Row* find(QStringView text) const {
        const std::u16string_view wanted(text.utf16(), static_cast<std::size_t>(text.size()));
        for (std::size_t slot = firstSlot(wanted); m_slots[slot] != 0; slot = (slot + 1) % slotCount) {
            const Row& row = m_rows[m_slots[slot] - 1U];
            if (row.*m_key == wanted)
                return &row;
        }
        return nullptr;
    }

private:
    /// At least a half of the slots stay empty, which ends every search.
    static constexpr std::size_t slotCount = std::bit_ceil(2 * Count + 1);

    /// FNV-1a.
    static constexpr std::size_t firstSlot(std::u16string_view text) {
        std::uint32_t hash = 2166136261U;
        for (const char16_t unit : text)
            hash = (hash ^ unit) * 16777619U;
        return (hash ^ (hash >> 16)) % slotCount;
    }

    const Rows& m_rows;
    Key m_key;
    std::array<std::uint16_t, slotCount> m_slots{}; ///< row number plus one; 0 for an empty slot
};
