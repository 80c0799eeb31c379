#include "OutlineReader.h"

#include "DestinationReader.h"
#include "EngineValues.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "SourceEngine.h"

#include <QSet>

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

std::shared_ptr<PDFOutline> OutlineReader::read(SourceEngine& engine, const PDFDocument& document) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return nullptr;
    fz_context* context = borrowed.context();
    pdf_obj* first = nullptr;
    engineTry(context, [&] {
        first = pdf_dict_getp(context, pdf_trailer(context, borrowed.document()), "Root/Outlines/First");
    });
    if (!pdf_is_dict(context, first))
        return nullptr;

    struct Level {
        std::shared_ptr<PDFOutline> parent;
        pdf_obj* next;
    };
    auto root = std::make_shared<PDFOutline>();
    std::vector<Level> levels{{root, first}};
    QSet<int> seen;
    for (int items = 0; !levels.empty() && items < itemLimit; ++items) {
        Level& level = levels.back();
        pdf_obj* dictionary = level.next;
        const int number = pdf_to_num(context, dictionary);
        if (!pdf_is_dict(context, dictionary) || number == 0 || seen.contains(number)) {
            levels.pop_back();
            continue;
        }
        seen.insert(number);
        const Item fetched = fetch(context, borrowed.document(), dictionary);
        auto item = std::make_shared<PDFOutline>();
        item->setLabel(EngineValues::text(context, fetched.title));
        item->setUrl(EngineValues::text(context, fetched.uri));
        item->setOpen(fetched.count > 0);
        item->setDestination(document.destination(fetched.target, document.source()));
        item->setInFile({document.source(), number, true, true});
        level.parent->insertChild(item, level.parent->numberOfChildren());
        level.next = fetched.next;
        if (fetched.first)
            levels.push_back({levels.size() < deepestLevel ? item : level.parent, fetched.first});
    }
    return root;
}
