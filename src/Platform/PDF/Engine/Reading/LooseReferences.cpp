#include "LooseReferences.h"

#include "SourceEngine.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace {

constexpr int none = -1;

/// By object number; none where there is no object.
std::vector<int> generations(SourceEngine& engine) {
    std::vector<int> all;
    const SourceEngine::Lease lease = engine.lease();
    if (!lease)
        return all;
    fz_context* context = lease.context();
    engineTry(context, [&] {
        const int count = pdf_xref_len(context, lease.document());
        all.assign(std::size_t(count), none);
        for (int number = 1; number < count; ++number) {
            const pdf_xref_entry* entry = pdf_get_xref_entry(context, lease.document(), number);
            if (entry->type == 'n' || entry->type == 'o') // in an object stream it has none, but a place
                all[std::size_t(number)] = entry->type == 'n' ? entry->gen : 0;
        }
    });
    return all;
}

/// The number that stands right before a blank before `end`, which moves to the number's first digit.
std::optional<int> numberBefore(const char* begin, const char*& end) {
    constexpr int mostDigits = 8; // as many as the number of any object has
    if (end - begin < 2 || end[-1] != ' ')
        return std::nullopt;
    const char* const last = end - 1;
    const char* first = last;
    int number = 0;
    for (int unit = 1; first > begin && first[-1] >= '0' && first[-1] <= '9'; unit *= 10) {
        if (last - first == mostDigits)
            return std::nullopt;
        number += (*--first - '0') * unit;
    }
    end = first;
    return first == last ? std::nullopt : std::optional(number);
}

} // namespace

bool LooseReferences::areIn(QByteArrayView bytes, SourceEngine& engine) {
    const std::vector<int> known = generations(engine);
    const bool areAllZero = std::all_of(known.begin(), known.end(), [](int generation) { return generation <= 0; });
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    for (const char* at = begin; at < end; ++at) {
        at = static_cast<const char*>(std::memchr(at, 'R', std::size_t(end - at)));
        if (!at)
            break;
        const char* start = at;
        const std::optional<int> generation = numberBefore(begin, start);
        if (!generation || (*generation == 0 && areAllZero))
            continue;
        const std::optional<int> number = numberBefore(begin, start);
        const int own = number && std::size_t(*number) < known.size() ? known[std::size_t(*number)] : none;
        if (own != none && own != *generation)
            return true;
    }
    return false;
}
