#include "PageObjects.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// Larger boxes are no pages: coordinates past it lose whole points in single precision.
constexpr float largestCoordinate = 8e6F;
/// Trees that claim fewer pages than this are walked through instead of believed: it costs nothing.
constexpr int believedFrom = 64;
/// Past this the engine and other readers suspect a tree of going in circles.
constexpr std::size_t deepestTree = 100;

bool sensible(const fz_rect& rect) {
    for (const float value : {rect.x0, rect.y0, rect.x1, rect.y1})
        if (!std::isfinite(value) || std::fabs(value) > largestCoordinate)
            return false;
    return rect.x1 - rect.x0 > 0 && rect.y1 - rect.y0 > 0;
}

fz_rect boxOf(fz_context* context, pdf_obj* page, pdf_obj* key, bool inherited, const fz_rect& fallback,
              const fz_rect& limit) {
    pdf_obj* array = inherited ? pdf_dict_get_inheritable(context, page, key) : pdf_dict_get(context, page, key);
    if (!pdf_is_array(context, array))
        return fallback;
    const fz_rect clipped = fz_intersect_rect(pdf_to_rect(context, array), limit);
    return sensible(clipped) ? clipped : fallback;
}

/// Puts an object into a dictionary as if the engine were just reading it, so that it doesn't take that for an edit of
/// the document. May throw the engine's way.
void putQuietly(fz_context* context, pdf_obj* dictionary, pdf_obj* key, pdf_obj* value) {
    const int parent = pdf_obj_parent_num(context, dictionary);
    pdf_set_obj_parent(context, dictionary, 0); // that of an object which is being read
    pdf_dict_put(context, dictionary, key, value);
    pdf_set_obj_parent(context, dictionary, parent);
}

/// Walks through a page tree from node to node, whatever their counts say. An object in a node that is no node itself
/// is a page: one that can't be read is an empty one to all readers.
class PageWalk {
public:
    PageWalk(fz_context* context, pdf_document* document) : m_context(context), m_document(document) {}
    ~PageWalk() {
        while (!m_path.empty())
            leave();
        pdf_drop_obj(m_context, m_pages);
    }
    PageWalk(const PageWalk&) = delete;
    PageWalk& operator=(const PageWalk&) = delete;

    /// To be called once. May throw the engine's way.
    void run(pdf_obj* root) {
        m_mostPages = std::max(pdf_xref_len(m_context, m_document), believedFrom);
        m_pages = pdf_new_array(m_context, m_document, believedFrom);
        if (isNode(root))
            enter(root);
        else if (pdf_is_dict(m_context, root))
            add(root);
        while (!m_path.empty()) {
            Node& node = m_path.back();
            if (node.next == pdf_array_len(m_context, node.kids)) {
                const int claimed = pdf_dict_get_int(m_context, node.object, PDF_NAME(Count));
                m_isSound = m_isSound && claimed == pageCount() - node.pagesBefore;
                leave();
                continue;
            }
            pdf_obj* kid = pdf_array_get(m_context, node.kids, node.next++);
            if (isNode(kid))
                enter(kid);
            else
                add(kid);
        }
    }

    [[nodiscard]] int pageCount() const { return pdf_array_len(m_context, m_pages); }
    /// False when the engine, which goes by the counts, would find other pages.
    [[nodiscard]] bool isSound() const { return m_isSound; }

    /// A tree of the same pages without nodes between, in the place of the one that was read. May throw the engine's
    /// way.
    void replaceTree() {
        pdf_obj* catalog = pdf_dict_get(m_context, pdf_trailer(m_context, m_document), PDF_NAME(Root));
        pdf_obj* tree = pdf_new_dict(m_context, m_document, 3);
        fz_try(m_context) {
            pdf_dict_put(m_context, tree, PDF_NAME(Type), PDF_NAME(Pages));
            pdf_dict_put_int(m_context, tree, PDF_NAME(Count), pageCount());
            pdf_dict_put(m_context, tree, PDF_NAME(Kids), m_pages);
            putQuietly(m_context, pdf_resolve_indirect(m_context, catalog), PDF_NAME(Pages), tree);
        }
        fz_always(m_context) pdf_drop_obj(m_context, tree);
        fz_catch(m_context) fz_rethrow(m_context);
    }

private:
    struct Node {
        pdf_obj* object; // marked, and kept: reading a kid may make the engine read the whole file anew
        pdf_obj* kids;
        int next = 0;
        int pagesBefore = 0;
    };

    [[nodiscard]] bool isNode(pdf_obj* object) {
        pdf_obj* type = pdf_dict_get(m_context, object, PDF_NAME(Type));
        return type ? pdf_name_eq(m_context, type, PDF_NAME(Pages)) != 0
                    : pdf_is_array(m_context, pdf_dict_get(m_context, object, PDF_NAME(Kids))) &&
                          !pdf_dict_get(m_context, object, PDF_NAME(MediaBox));
    }

    void enter(pdf_obj* reference) {
        pdf_obj* object = pdf_resolve_indirect(m_context, reference);
        // Each node stands once in a sound tree; more than there are objects come only from going in circles.
        if (++m_nodes > m_mostPages || pdf_mark_obj(m_context, object)) {
            m_isSound = false;
            return;
        }
        m_isSound = m_isSound && m_path.size() < deepestTree;
        m_path.push_back({pdf_keep_obj(m_context, object),
                          pdf_keep_obj(m_context, pdf_dict_get(m_context, object, PDF_NAME(Kids))), 0, pageCount()});
    }

    void leave() {
        const Node node = m_path.back();
        m_path.pop_back();
        pdf_unmark_obj(m_context, node.object);
        pdf_drop_obj(m_context, node.kids);
        pdf_drop_obj(m_context, node.object);
    }

    void add(pdf_obj* page) {
        const bool isPage = pdf_is_indirect(m_context, page) || pdf_is_dict(m_context, page);
        if (isPage && pageCount() < m_mostPages)
            pdf_array_push(m_context, m_pages, page);
        else
            m_isSound = false;
        m_isSound = m_isSound && !m_path.empty();
    }

    fz_context* m_context;
    pdf_document* m_document;
    std::vector<Node> m_path;
    pdf_obj* m_pages = nullptr;
    int m_mostPages = 0;
    int m_nodes = 0;
    bool m_isSound = true;
};

/// Takes a page's list of annotations out of the engine's sight for as long as this lives.
class AnnotationsAside {
public:
    AnnotationsAside(fz_context* context, pdf_document* document, int pageNumber) : m_context(context) {
        m_isAside = engineTry(m_context, [&] {
            m_page = pdf_keep_obj(
                m_context, pdf_resolve_indirect(m_context, pdf_lookup_page_obj(m_context, document, pageNumber)));
            m_annots = pdf_keep_obj(m_context, pdf_dict_get(m_context, m_page, PDF_NAME(Annots)));
            if (m_annots)
                put(PDF_NULL);
        });
    }
    ~AnnotationsAside() {
        if (m_annots)
            engineTry(m_context, [&] { put(m_annots); });
        pdf_drop_obj(m_context, m_annots);
        pdf_drop_obj(m_context, m_page);
    }
    AnnotationsAside(const AnnotationsAside&) = delete;
    AnnotationsAside& operator=(const AnnotationsAside&) = delete;

    /// False when the page couldn't be found.
    explicit operator bool() const { return m_isAside; }

private:
    void put(pdf_obj* annots) { putQuietly(m_context, m_page, PDF_NAME(Annots), annots); }

    fz_context* m_context;
    pdf_obj* m_page = nullptr;
    pdf_obj* m_annots = nullptr;
    bool m_isAside = false;
};

} // namespace

PDFPageGeometry PageObjects::fallbackGeometry() {
    PDFPageGeometry geometry;
    geometry.boxes.fill(QRectF(0, 0, 612, 792));
    return geometry;
}

void PageObjects::readGeometry(fz_context* context, pdf_obj* page, PDFPageGeometry& geometry) {
    const fz_rect letter = fz_make_rect(0, 0, 612, 792);
    const fz_rect media = boxOf(context, page, PDF_NAME(MediaBox), true, letter, fz_infinite_rect);
    const fz_rect crop = boxOf(context, page, PDF_NAME(CropBox), true, media, media);
    const fz_rect bleed = boxOf(context, page, PDF_NAME(BleedBox), false, crop, media);
    const fz_rect trim = boxOf(context, page, PDF_NAME(TrimBox), false, crop, media);
    const fz_rect art = boxOf(context, page, PDF_NAME(ArtBox), false, crop, media);
    geometry.boxes = {fromEngine(media), fromEngine(crop), fromEngine(bleed), fromEngine(trim), fromEngine(art)};

    const int turned = pdf_to_int(context, pdf_dict_get_inheritable(context, page, PDF_NAME(Rotate))) % 360;
    geometry.rotation = ((turned + 360 + 45) / 90 * 90) % 360;
    const float unit = pdf_dict_get_real(context, page, PDF_NAME(UserUnit));
    geometry.userUnit = std::isfinite(unit) && unit > 0 && unit <= 10000 ? double(unit) : 1.0;
}

pdf_page* PageObjects::load(fz_context* context, pdf_document* document, int pageNumber) {
    pdf_page* page = nullptr;
    // Damage that is found on the way to a page makes the engine read the whole file anew, once, and give up this time.
    constexpr int mostAttempts = 2;
    for (int attempt = 0; attempt < mostAttempts && !page; ++attempt)
        if (const AnnotationsAside aside(context, document, pageNumber); aside)
            engineTry(context, [&] { page = pdf_load_page(context, document, pageNumber); });
    return page;
}

PageObjects::Tree PageObjects::settleTree(fz_context* context, pdf_document* document, std::string* error) {
    Tree tree;
    // What is read on the way may show the engine that the file is damaged: then it has read all of it anew.
    constexpr int mostAttempts = 2;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const int repaired = pdf_was_repaired(context, document);
        PageWalk walk(context, document);
        const bool walked = engineTry(
            context,
            [&] {
                pdf_obj* root = pdf_dict_getp(context, pdf_trailer(context, document), "Root/Pages");
                const int claimed = pdf_dict_get_int(context, root, PDF_NAME(Count));
                tree.pageCount = claimed;
                tree.isThere = pdf_is_dict(context, root) != 0;
                const bool isBelieved =
                    claimed >= believedFrom && claimed <= pdf_xref_len(context, document) && !repaired;
                tree.isWalked = tree.isThere && !isBelieved;
                if (tree.isWalked)
                    walk.run(root);
            },
            error);
        if (pdf_was_repaired(context, document) != repaired)
            continue;
        if (walked && tree.isWalked) {
            tree.pageCount = walk.pageCount();
            tree.isReplaced = !walk.isSound() && engineTry(
                                                     context, [&] { walk.replaceTree(); }, error);
        }
        tree.isThere = tree.isThere && walked;
        return tree;
    }
    return {};
}
