#include "OutlineReader.h"

#include "DestinationReader.h"
#include "EngineValues.h"
#include "PDFFileDestination.h"
#include "SourceEngine.h"

#include <QSet>

#include <algorithm>
#include <vector>

namespace {

constexpr int itemLimit = 100000;
constexpr std::size_t deepestLevel = 64;

/// What one item says, fetched in one go.
struct Item {
    pdf_obj* title = nullptr;
    pdf_obj* uri = nullptr;
    pdf_obj* first = nullptr;
    pdf_obj* next = nullptr;
    int count = 0;
    PDFFileDestination target;
};

Item fetch(fz_context* context, pdf_document* document, pdf_obj* dictionary) {
    Item item;
    engineTry(context, [&] {
        item.next = pdf_dict_get(context, dictionary, PDF_NAME(Next));
        item.first = pdf_dict_get(context, dictionary, PDF_NAME(First));
        item.title = pdf_dict_get(context, dictionary, PDF_NAME(Title));
        item.count = pdf_dict_get_int(context, dictionary, PDF_NAME(Count));
        item.uri = DestinationReader::uriOf(context, dictionary);
        DestinationReader::readTarget(context, document, dictionary, item.target);
    });
    return item;
}

} // namespace

PDFFileOutline OutlineReader::read(SourceEngine& engine) {
    PDFFileOutline outline;
    std::vector<PDFFileDestination> targets; // of the entries
    {
        const SourceEngine::Lease borrowed = engine.lease();
        if (!borrowed)
            return outline;
        fz_context* context = borrowed.context();
        pdf_obj* first = nullptr;
        engineTry(context, [&] {
            first = pdf_dict_getp(context, pdf_trailer(context, borrowed.document()), "Root/Outlines/First");
        });
        outline.exists = pdf_is_dict(context, first) != 0;
        std::vector<pdf_obj*> levels{first}; // what comes next on each
        QSet<int> seen;
        for (int items = 0; outline.exists && !levels.empty() && items < itemLimit; ++items) {
            pdf_obj* dictionary = levels.back();
            const int number = pdf_to_num(context, dictionary);
            if (!pdf_is_dict(context, dictionary) || number == 0 || seen.contains(number)) {
                levels.pop_back();
                continue;
            }
            seen.insert(number);
            const Item fetched = fetch(context, borrowed.document(), dictionary);
            const int level = int(std::min(levels.size(), deepestLevel)) - 1;
            outline.entries.push_back({EngineValues::text(context, fetched.title),
                                       EngineValues::text(context, fetched.uri), fetched.count > 0, number, level, -1,
                                       fetched.target.x, fetched.target.y, fetched.target.zoom});
            targets.push_back(fetched.target);
            levels.back() = fetched.next;
            if (fetched.first)
                levels.push_back(fetched.first);
        }
    }
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const PDFFileDestination& target = targets[i];
        const int page = target.pageObject > 0 ? engine.pageNumberOfObject(target.pageObject) : target.pageIndex;
        outline.entries[i].page = page < engine.pageCount() ? page : -1;
    }
    return outline;
}
