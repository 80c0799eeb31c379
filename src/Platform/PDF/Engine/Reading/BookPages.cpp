#include "BookPages.h"

#include "EngineContext.h"
#include "Logging.h"

#include <QFile>

#include <cstddef>
#include <string>
#include <vector>

namespace {

// A5, as books are; points. Letters of eleven points give lines of some seventy of them.
constexpr float pageWidth = 420;
constexpr float pageHeight = 595;
constexpr float letterSize = 11;
constexpr int mostPages = 20'000;

/// A book and the pages that are made of it.
class Book {
public:
    explicit Book(fz_context* context) : m_context(context) {}
    ~Book() {
        pdf_drop_document(m_context, m_pages);
        fz_drop_document(m_context, m_book);
    }
    Q_DISABLE_COPY_MOVE(Book)

    bool open(const QByteArray& path, std::string* error) {
        fz_stream* stream = nullptr;
        const bool opened = engineTry(
            m_context,
            [&] {
                fz_register_document_handlers(m_context);
                stream = fz_open_file(m_context, path.constData());
                m_book = fz_open_document_with_stream(m_context, "epub", stream);
                fz_layout_document(m_context, m_book, pageWidth, pageHeight, letterSize);
                m_pages = pdf_create_document(m_context);
            },
            error);
        fz_drop_stream(m_context, stream);
        return opened;
    }

    /// The number of pages.
    int addPages(std::string* error) {
        int chapters = 0;
        int count = 0;
        engineTry(m_context, [&] { chapters = fz_count_chapters(m_context, m_book); });
        for (int chapter = 0; chapter < chapters; ++chapter) {
            int inChapter = 0;
            m_starts.push_back(count);
            engineTry(
                m_context, [&] { inChapter = fz_count_chapter_pages(m_context, m_book, chapter); }, error);
            for (int page = 0; page < inChapter && count < mostPages; ++page) {
                if (addPage(chapter, page, error))
                    ++count;
            }
        }
        return count;
    }

    void addLinks() {
        for (const Place& place : m_places)
            addLinks(place);
    }

    bool save(const QByteArray& path, std::string* error) {
        return engineTry(
            m_context,
            [&] {
                pdf_write_options options = pdf_default_write_options;
                options.do_compress = 1;
                options.do_compress_images = 1;
                options.do_compress_fonts = 1;
                pdf_save_document(m_context, m_pages, path.constData(), &options);
            },
            error);
    }

private:
    /// Where a page stands in the book.
    struct Place {
        int object = 0; ///< its number in the file of pages
        int chapter = 0;
        int page = 0;
    };

    bool addPage(int chapter, int number, std::string* error) {
        fz_page* page = nullptr;
        fz_device* device = nullptr;
        pdf_obj* resources = nullptr;
        pdf_obj* object = nullptr;
        fz_buffer* content = nullptr;
        int objectNumber = 0;
        const bool added = engineTry(
            m_context,
            [&] {
                const fz_rect box{0, 0, pageWidth, pageHeight};
                page = fz_load_chapter_page(m_context, m_book, chapter, number);
                device = pdf_page_write(m_context, m_pages, box, &resources, &content);
                fz_run_page(m_context, page, device, fz_identity, nullptr);
                fz_close_device(m_context, device);
                object = pdf_add_page(m_context, m_pages, box, 0, resources, content);
                pdf_insert_page(m_context, m_pages, -1, object);
                objectNumber = pdf_to_num(m_context, object);
            },
            error);
        fz_drop_device(m_context, device);
        fz_drop_buffer(m_context, content);
        pdf_drop_obj(m_context, object);
        pdf_drop_obj(m_context, resources);
        fz_drop_page(m_context, page);
        if (added)
            m_places.push_back({objectNumber, chapter, number});
        return added;
    }

    void addLinks(const Place& place) {
        fz_page* page = nullptr;
        fz_link* links = nullptr;
        pdf_obj* object = nullptr;
        engineTry(m_context, [&] {
            page = fz_load_chapter_page(m_context, m_book, place.chapter, place.page);
            links = fz_load_links(m_context, page);
            if (!links)
                return;
            object = pdf_new_indirect(m_context, m_pages, place.object, 0);
            pdf_obj* annotations = pdf_dict_put_array(m_context, object, PDF_NAME(Annots), 4);
            for (fz_link* link = links; link; link = link->next)
                addLink(annotations, *link);
        });
        pdf_drop_obj(m_context, object);
        fz_drop_link(m_context, links);
        fz_drop_page(m_context, page);
    }

    /// May throw as the engine does.
    void addLink(pdf_obj* annotations, const fz_link& link) {
        int target = 0; // an object's number
        float x = 0;
        float y = 0;
        if (!fz_is_external_link(m_context, link.uri)) {
            const fz_location location = fz_resolve_link(m_context, m_book, link.uri, &x, &y);
            if (location.chapter < 0 || std::size_t(location.chapter) >= m_starts.size())
                return;
            const int number = m_starts[std::size_t(location.chapter)] + location.page;
            if (location.page < 0 || std::size_t(number) >= m_places.size())
                return;
            target = m_places[std::size_t(number)].object;
        }
        // What the engine throws from here on leaks no more than this book holds anyway.
        pdf_obj* annotation = pdf_array_push_dict(m_context, annotations, 5);
        pdf_dict_put(m_context, annotation, PDF_NAME(Type), PDF_NAME(Annot));
        pdf_dict_put(m_context, annotation, PDF_NAME(Subtype), PDF_NAME(Link));
        const fz_rect box{link.rect.x0, pageHeight - link.rect.y1, link.rect.x1, pageHeight - link.rect.y0};
        pdf_dict_put_rect(m_context, annotation, PDF_NAME(Rect), box);
        pdf_obj* border = pdf_dict_put_array(m_context, annotation, PDF_NAME(Border), 3);
        for (int i = 0; i < 3; ++i)
            pdf_array_push_int(m_context, border, 0);
        if (target != 0) {
            pdf_obj* destination = pdf_dict_put_array(m_context, annotation, PDF_NAME(Dest), 5);
            pdf_array_push_drop(m_context, destination, pdf_new_indirect(m_context, m_pages, target, 0));
            pdf_array_push(m_context, destination, PDF_NAME(XYZ));
            pdf_array_push_real(m_context, destination, 0);
            pdf_array_push_real(m_context, destination, double(pageHeight - y));
            pdf_array_push_int(m_context, destination, 0);
        } else {
            pdf_obj* action = pdf_dict_put_dict(m_context, annotation, PDF_NAME(A), 2);
            pdf_dict_put(m_context, action, PDF_NAME(S), PDF_NAME(URI));
            pdf_dict_put_text_string(m_context, action, PDF_NAME(URI), link.uri);
        }
    }

    fz_context* const m_context;
    fz_document* m_book = nullptr;
    pdf_document* m_pages = nullptr;
    std::vector<int> m_starts; // the number of each chapter's first page
    std::vector<Place> m_places;
};

} // namespace

bool BookPages::write(const QString& source, const QString& destination) {
    const EngineInstance instance;
    const EngineContext context(instance);
    if (!context.get())
        return false;
    Book book(context.get());
    std::string error;
    const bool readable = book.open(QFile::encodeName(source), &error) && book.addPages(&error) > 0;
    if (readable)
        book.addLinks();
    if (readable && book.save(QFile::encodeName(destination), &error))
        return true;
    qCWarning(Logging::pdf) << "a book has no pages:" << error.c_str();
    QFile::remove(destination);
    return false;
}
