#include "LooseReferences.h"

#include "SourceEngine.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace {

constexpr int none = -1;

/// The generation of an object as the engine writes it; none where there is no object. May throw the engine's way.
int generationOf(fz_context* context, pdf_document* document, int number) {
    if (number <= 0 || number >= pdf_xref_len(context, document))
        return none;
    const pdf_xref_entry* entry = pdf_get_xref_entry(context, document, number);
    if (entry->type == 'o')
        return 0; // what stands there is its place in a stream
    return entry->type == 'n' ? entry->gen : none;
}

/// A walk through an object, up to the references to others.
class ReferenceWalk {
public:
    ReferenceWalk(fz_context* context, pdf_document* document, bool mends)
        : m_context(context), m_document(document), m_mends(mends) {}

    /// True when there were loose ones. May throw the engine's way.
    bool through(int number) {
        if (number == 0)
            return pass(pdf_trailer(m_context, m_document), 0);
        pdf_obj* object = pdf_load_object(m_context, m_document, number);
        bool isLoose = false;
        fz_var(isLoose);
        fz_try(m_context) {
            pdf_set_obj_parent(m_context, object, 0); // or each of its values would count as edited
            isLoose = pass(object, 0);
            pdf_set_obj_parent(m_context, object, number);
        }
        fz_always(m_context) pdf_drop_obj(m_context, object);
        fz_catch(m_context) fz_rethrow(m_context);
        return isLoose;
    }

private:
    bool pass(pdf_obj* object, int depth) {
        constexpr int deepest = 100; // what stands deeper stays as it is
        if (depth > deepest || pdf_is_indirect(m_context, object))
            return false;
        const bool isArray = pdf_is_array(m_context, object) != 0;
        const int count = isArray ? pdf_array_len(m_context, object) : pdf_dict_len(m_context, object);
        bool isLoose = false;
        for (int i = 0; i < count; ++i) {
            pdf_obj* value = isArray ? pdf_array_get(m_context, object, i) : pdf_dict_get_val(m_context, object, i);
            if (!pdf_is_indirect(m_context, value)) {
                isLoose = pass(value, depth + 1) || isLoose;
                continue;
            }
            const int number = pdf_to_num(m_context, value);
            const int generation = generationOf(m_context, m_document, number);
            if (generation == none || generation == pdf_to_gen(m_context, value))
                continue;
            isLoose = true;
            if (m_mends)
                put(object, i, pdf_new_indirect(m_context, m_document, number, generation));
        }
        return isLoose;
    }

    /// Takes the value over.
    void put(pdf_obj* object, int index, pdf_obj* value) {
        if (pdf_is_array(m_context, object))
            pdf_array_put_drop(m_context, object, index, value);
        else
            pdf_dict_put_drop(m_context, object, pdf_dict_get_key(m_context, object, index), value);
    }

    fz_context* m_context;
    pdf_document* m_document;
    bool m_mends;
};

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

/// Whether the bytes hold anything that looks like one, also where no object is.
bool mayBeIn(QByteArrayView bytes, fz_context* context, pdf_document* document) {
    std::vector<int> generations;
    engineTry(context, [&] {
        generations.resize(std::size_t(pdf_xref_len(context, document)), none);
        for (int number = 1; number < int(generations.size()); ++number)
            generations[std::size_t(number)] = generationOf(context, document, number);
    });
    const bool areAllZero = std::all_of(generations.begin(), generations.end(), [](int each) { return each <= 0; });
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
        const int own = number && std::size_t(*number) < generations.size() ? generations[std::size_t(*number)] : none;
        if (own != none && own != *generation)
            return true;
    }
    return false;
}

} // namespace

bool LooseReferences::areIn(QByteArrayView bytes, SourceEngine& engine) {
    SourceEngine::Lease lease = engine.lease();
    if (!lease || !mayBeIn(bytes, lease.context(), lease.document()))
        return false;
    lease.abandon();                        // with all objects in its memory
    lease.document()->repair_attempted = 1; // nothing is to be read in another way than it was shown
    ReferenceWalk walk(lease.context(), lease.document(), false);
    bool isLoose = false;
    const int count = pdf_xref_len(lease.context(), lease.document());
    for (int number = 0; number < count && !isLoose; ++number)
        engineTry(lease.context(), [&] { isLoose = walk.through(number); });
    return isLoose;
}

void LooseReferences::mend(fz_context* context, pdf_document* document, int number) {
    ReferenceWalk(context, document, true).through(number);
}
