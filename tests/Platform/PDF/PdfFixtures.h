#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QImage;

/// Builds a PDF file for a test, part by part. Values are given in the file's own syntax ("[0 0 10 10]", "(text)",
/// "12 0 R"), so that a test can say exactly what it wants, broken things included. Page indices are zero-based.
class PdfFixture {
public:
    PdfFixture();
    ~PdfFixture();
    PdfFixture(const PdfFixture&) = delete;
    PdfFixture& operator=(const PdfFixture&) = delete;

    // Pages

    /// A page that shows the lines from the upper left in 12 point Helvetica. Returns its index.
    int addPage(const QStringList& lines, QSizeF size = {612, 792});
    /// So many pages with one line each, in which %1 stands for the page's number from 0.
    void addPages(int count, const QString& line = {});
    /// A page with this content stream; `resources` is a dictionary or a reference to one.
    int addPageWithContent(const QByteArray& content, const QByteArray& resources = "<< >>", QSizeF size = {612, 792});
    /// The content stream that `addPage` writes for the lines; it needs the font F1 of `defaultResources`.
    [[nodiscard]] static QByteArray textContent(const QStringList& lines, QSizeF size = {612, 792});
    [[nodiscard]] QByteArray defaultResources();
    /// "5 0 R".
    [[nodiscard]] QByteArray pageReference(int page) const;
    void setPageKey(int page, const QByteArray& key, const QByteArray& value);
    [[nodiscard]] int pageCount() const;
    /// Puts runs of `fanOut` pages below nodes of their own. Keys that all pages of a run have in `inherited` ("/Rotate
    /// 90") are written at the node. Call it last.
    void nestPageTree(int fanOut, const QByteArray& inherited = {});

    // Any object

    /// A new indirect object; returns the reference to it.
    QByteArray addObject(const QByteArray& value);
    QByteArray addStream(const QByteArray& dictionary, const QByteArray& data);
    /// A form XObject that draws another one ten times, which draws another one ten times, and so on: some kilobytes
    /// that ask for years of work. Returns the reference to it.
    QByteArray addEndlessForm();
    /// Keeps a number for an object that refers to itself or is referred to before it is there.
    QByteArray reserveObject();
    void fillObject(const QByteArray& reference, const QByteArray& value);
    /// Sets a key of an indirect dictionary.
    void setKey(const QByteArray& reference, const QByteArray& key, const QByteArray& value);
    void appendToArray(const QByteArray& reference, const QByteArray& key, const QByteArray& value);
    void removeFromArray(const QByteArray& reference, const QByteArray& key, const QByteArray& value);
    void setRootKey(const QByteArray& key, const QByteArray& value);
    void setTrailerKey(const QByteArray& key, const QByteArray& value);
    void setInfo(const QByteArray& key, const QString& value);
    /// A text string in the file's syntax.
    [[nodiscard]] static QByteArray textString(const QString& text);
    [[nodiscard]] static QByteArray rectArray(const QRectF& rect);
    /// The bytes of a JPEG file, for a stream.
    [[nodiscard]] static QByteArray jpegOf(const QImage& image);

    // Parts of a document

    struct OutlineItem {
        QString title;
        int page = -1; ///< where it leads; none when below zero
        std::vector<OutlineItem> children = {};
        QByteArray name = {}; ///< a named destination instead of a page
        QString url = {};     ///< a web address instead of a page
        bool open = true;
        QByteArray keys = {}; ///< more of its dictionary
    };
    void setOutline(const std::vector<OutlineItem>& items);

    /// Of the dictionary of name trees.
    void setNamesKey(const QByteArray& key, const QByteArray& value);
    /// Leads to the top of the page; in the name tree, or in the old dictionary of names.
    void addNamedDestination(const QByteArray& name, int page, bool oldDictionary = false);

    /// Appends to the page's annotations; P is set. Returns the reference to it.
    QByteArray addAnnotation(int page, const QByteArray& dictionary);
    QByteArray addLink(int page, const QRectF& rect, int targetPage);
    QByteArray addNamedLink(int page, const QRectF& rect, const QByteArray& name);
    QByteArray addUriLink(int page, const QRectF& rect, const QByteArray& url);

    /// Field and widget in one dictionary, with an appearance that shows the value. Returns the reference to it.
    QByteArray addTextField(int page, const QString& name, const QRectF& rect, const QString& value,
                            const QByteArray& moreKeys = {});
    QByteArray addCheckBox(int page, const QString& name, const QRectF& rect, bool on);
    struct RadioButton {
        int page = 0;
        QRectF rect;
        QByteArray state; ///< the name of its on state
    };
    /// A field with one widget for each button. Returns the reference to the field.
    QByteArray addRadioGroup(const QString& name, const std::vector<RadioButton>& buttons, const QByteArray& chosen);
    /// One text field that shows on several pages.
    QByteArray addSharedTextField(const QString& name, const std::vector<std::pair<int, QRectF>>& places,
                                  const QString& value);
    /// The dictionary of the form, made when there is none yet.
    QByteArray form();

    void attach(const QString& fileName, const QByteArray& data);
    /// Adds content to the page that belongs to a layer of its own. Returns the reference to the layer.
    QByteArray addLayer(int page, const QString& name, const QByteArray& content, bool visible);

    /// Makes the page's content a paragraph of the structure tree below one section for all pages.
    void tagPage(int page, const QString& actualText, const QString& title = {});
    /// Elements below the section; their P is set.
    void appendToStructure(const QByteArrayList& elements);
    void setStructureKey(const QByteArray& key, const QByteArray& value);
    void appendToParentTree(int key, const QByteArray& value);
    void setPageLabels(const QByteArray& nums);
    void setMetadata(const QByteArray& xmp);
    /// An article that runs over the pages.
    void addThread(const QString& title, const std::vector<int>& pages);

    // The file

    enum class Style { classic, objectStreams, linearized };
    enum class Encryption { rc4, aes128, aes256 };
    [[nodiscard]] QByteArray bytes(Style style = Style::classic);
    [[nodiscard]] QByteArray encrypted(const QByteArray& userPassword, const QByteArray& ownerPassword,
                                       Encryption encryption);

    /// The file followed by what its compressed streams hold, those too that nothing leads to.
    [[nodiscard]] static QByteArray withStreamsInflated(const QByteArray& file);
    /// The file without a usable cross-reference section, which readers must rebuild.
    [[nodiscard]] static QByteArray damaged(QByteArray file);

private:
    void wrapContent(int page, const QByteArray& before, const QByteArray& after);

    class Objects;
    std::unique_ptr<Objects> m_objects;
};
