#include "FormFieldIndex.h"

#include "EngineValues.h"
#include "FormFieldReader.h"
#include "SourceEngine.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace {

constexpr int nodeLimit = 200000;
constexpr int deepest = 32;
constexpr int indexedLimit = 20000;

/// A widget of the form's tree, and the page that it names.
struct Place {
    QString name;
    int object = 0;
    int pageObject = 0;
};

class Walk {
public:
    explicit Walk(const SourceEngine::Lease& lease)
        : m_context(lease.context()), m_reader(lease.context(), lease.document()) {}

    std::vector<Place> run() {
        pdf_obj* fields = nullptr;
        engineTry(m_context, [&] { fields = pdf_dict_get(m_context, m_reader.form(), PDF_NAME(Fields)); });
        visit(fields, {}, 0);
        return std::move(m_places);
    }

private:
    void visit(pdf_obj* list, const QString& above, int depth) {
        const int count = pdf_array_len(m_context, list);
        for (int i = 0; i < count && m_left > 0; ++i, --m_left) {
            pdf_obj* node = nullptr;
            pdf_obj* kids = nullptr;
            pdf_obj* title = nullptr;
            Place place;
            const bool isSound = engineTry(m_context, [&] {
                node = pdf_array_get(m_context, list, i);
                kids = pdf_dict_get(m_context, node, PDF_NAME(Kids));
                title = pdf_dict_get(m_context, node, PDF_NAME(T));
                place.object = pdf_to_num(m_context, node);
                place.pageObject = pdf_to_num(m_context, pdf_dict_get(m_context, node, PDF_NAME(P)));
            });
            if (!isSound || !pdf_is_dict(m_context, node) || (place.object && !m_seen.insert(place.object).second))
                continue;
            // The name that the widget itself would tell, which may go other ways than the list that it is in.
            place.name = title ? m_reader.fullName(node) : above;
            if (pdf_array_len(m_context, kids) > 0 && depth < deepest)
                visit(kids, place.name, depth + 1);
            else
                m_places.push_back(std::move(place));
        }
    }

    fz_context* m_context;
    FormFieldReader m_reader;
    std::vector<Place> m_places;
    std::unordered_set<int> m_seen;
    int m_left = nodeLimit;
};

/// The page of each annotation that is an object of its own.
std::unordered_map<int, int> pagesOfAnnotations(const SourceEngine::Lease& lease, int pageCount) {
    std::unordered_map<int, int> pages;
    fz_context* context = lease.context();
    const bool loaded = engineTry(context, [&] { pdf_load_page_tree(context, lease.document()); });
    for (int page = 0; page < pageCount; ++page) {
        pdf_obj* annots = nullptr;
        engineTry(context, [&] {
            annots = pdf_dict_get(context, pdf_lookup_page_obj(context, lease.document(), page), PDF_NAME(Annots));
        });
        const int count = std::min(pdf_array_len(context, annots), indexedLimit);
        for (int i = 0; i < count; ++i) {
            int number = 0;
            engineTry(context, [&] { number = pdf_to_num(context, pdf_array_get(context, annots, i)); });
            if (number > 0)
                pages.emplace(number, page);
        }
    }
    if (loaded)
        engineTry(context, [&] { pdf_drop_page_tree(context, lease.document()); });
    return pages;
}

} // namespace

std::shared_ptr<const FormFieldIndex> FormFieldIndex::read(SourceEngine& engine) {
    auto index = std::make_shared<FormFieldIndex>();
    std::vector<Place> places;
    std::unordered_map<int, int> scanned;
    bool hasScanned = false;
    {
        const SourceEngine::Lease borrowed = engine.lease();
        if (!borrowed)
            return index;
        places = Walk(borrowed).run();
    }
    for (const Place& place : places) {
        int page = place.pageObject > 0 ? engine.pageNumberOfObject(place.pageObject) : -1;
        if (page < 0 && place.object > 0) {
            if (!hasScanned) {
                const SourceEngine::Lease borrowed = engine.lease();
                if (borrowed)
                    scanned = pagesOfAnnotations(borrowed, engine.pageCount());
                hasScanned = true;
            }
            const auto found = scanned.find(place.object);
            page = found == scanned.end() ? -1 : found->second;
        }
        if (page < 0)
            continue;
        index->m_pages[place.name].push_back(page);
        index->m_pagesWithFields.insert(page);
    }
    for (std::vector<int>& pages : index->m_pages) {
        std::sort(pages.begin(), pages.end());
        pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
    }
    return index;
}
