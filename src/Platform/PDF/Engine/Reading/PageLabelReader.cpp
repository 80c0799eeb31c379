#include "PageLabelReader.h"

#include "EngineValues.h"
#include "SourceEngine.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace {

constexpr int rangeLimit = 100000;

PageLabels::Style styleOf(std::string_view name) {
    using Style = PageLabels::Style;
    return name == "D"   ? Style::decimal
           : name == "R" ? Style::upperRoman
           : name == "r" ? Style::lowerRoman
           : name == "A" ? Style::upperLetters
           : name == "a" ? Style::lowerLetters
                         : Style::none;
}

/// One pair of the tree.
PageLabels::Range rangeAt(fz_context* context, pdf_obj* pairs, int place) {
    PageLabels::Range range;
    pdf_obj* prefix = nullptr;
    const char* style = "";
    engineTry(context, [&] {
        range.firstPage = pdf_to_int(context, pdf_array_get(context, pairs, place));
        pdf_obj* label = pdf_array_get(context, pairs, place + 1);
        style = pdf_to_name(context, pdf_dict_get(context, label, PDF_NAME(S)));
        prefix = pdf_dict_get(context, label, PDF_NAME(P));
        range.first.number = std::max(1, pdf_to_int(context, pdf_dict_gets(context, label, "St"))); // 1 where missing
    });
    range.first.style = styleOf(style);
    range.first.prefix = EngineValues::text(context, prefix);
    return range;
}

} // namespace

PageLabels PageLabelReader::read(SourceEngine& engine) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return {};
    fz_context* context = borrowed.context();
    pdf_obj* root = nullptr;
    engineTry(context,
              [&] { root = pdf_dict_getp(context, pdf_trailer(context, borrowed.document()), "Root/PageLabels"); });
    std::vector<PageLabels::Range> ranges;
    std::vector<pdf_obj*> nodes{root};
    std::unordered_set<int> seen;
    while (!nodes.empty() && int(ranges.size()) < rangeLimit) {
        pdf_obj* node = nodes.back();
        nodes.pop_back();
        const int number = pdf_to_num(context, node);
        if (!node || (number > 0 && !seen.insert(number).second))
            continue;
        pdf_obj* pairs = nullptr;
        pdf_obj* kids = nullptr;
        engineTry(context, [&] {
            pairs = pdf_resolve_indirect(context, pdf_dict_get(context, node, PDF_NAME(Nums)));
            kids = pdf_resolve_indirect(context, pdf_dict_get(context, node, PDF_NAME(Kids)));
        });
        for (int i = 0; i + 1 < pdf_array_len(context, pairs) && int(ranges.size()) < rangeLimit; i += 2)
            ranges.push_back(rangeAt(context, pairs, i));
        for (int i = pdf_array_len(context, kids) - 1; i >= 0; --i) {
            pdf_obj* kid = nullptr;
            engineTry(context, [&] { kid = pdf_array_get(context, kids, i); });
            if (pdf_to_num(context, kid) > 0) // what stands in its node itself may go on for ever
                nodes.push_back(kid);
        }
    }
    return PageLabels(std::move(ranges));
}
