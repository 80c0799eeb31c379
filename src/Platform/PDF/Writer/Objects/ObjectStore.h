#pragma once

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <QByteArray>

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>

/// The bytes of a stream: encoded as the stream's dictionary says, or those of a stream of another file, which must
/// stay open until the new file is written.
using StreamContent = std::variant<QByteArray, QPDFObjectHandle>;

class PackedLinks;

/// Where the objects of a file go that is being composed. The objects that the file has already are changed in place
/// through their handles; `noteChange` tells of it.
class ObjectStore {
public:
    explicit ObjectStore(QPDF& pdf) : m_pdf(pdf) {}
    virtual ~ObjectStore() = default;
    ObjectStore(const ObjectStore&) = delete;
    ObjectStore& operator=(const ObjectStore&) = delete;

    [[nodiscard]] QPDF& pdf() const { return m_pdf; }
    [[nodiscard]] QPDFObjectHandle root() const { return m_pdf.getRoot(); }
    /// Links of the file that are texts; null for none. They stay owned by what opened the file.
    [[nodiscard]] PackedLinks* links() const { return m_links; }
    void setLinks(PackedLinks& links) { m_links = &links; }
    /// The file's object of that number with whichever generation it has there.
    [[nodiscard]] QPDFObjectHandle object(int number);

    /// A number for an object that is filled later, so that others may refer to it before.
    [[nodiscard]] virtual QPDFObjectHandle reserve() = 0;
    virtual void fill(QPDFObjectHandle reserved, QPDFObjectHandle value) = 0;
    /// Fills it with a value as QPDF writes it. Where `keepsTexts` such an object can be referred to, but not be looked
    /// into.
    virtual void fillText(QPDFObjectHandle reserved, const std::string& value);
    [[nodiscard]] virtual bool keepsTexts() const { return false; }
    /// Makes objects of all texts, and of those to come, so that they can be looked into.
    virtual void buildTexts() {}
    [[nodiscard]] virtual QPDFObjectHandle reserveStream() = 0;
    virtual void fillStream(QPDFObjectHandle reserved, QPDFObjectHandle dictionary, const StreamContent& content) = 0;

    /// To be called for an indirect object of the file whose value was changed. A null handle's or a direct object's
    /// change is that of the object that holds it, so those are a programming error.
    virtual void noteChange(QPDFObjectHandle object) = 0;

    /// A new indirect object.
    [[nodiscard]] QPDFObjectHandle add(QPDFObjectHandle value);
    /// A new stream of plain bytes, which are compressed when that makes them shorter.
    [[nodiscard]] QPDFObjectHandle addStream(QPDFObjectHandle dictionary, const QByteArray& data);
    /// A copy of an indirect object's own value under a number of its own; what it refers to stays shared.
    [[nodiscard]] QPDFObjectHandle addCopy(QPDFObjectHandle object);
    void set(QPDFObjectHandle object, const std::string& key, QPDFObjectHandle value);
    void remove(QPDFObjectHandle object, const std::string& key);

    /// Leaves nothing of an indirect object: whatever refers to it then refers to a null. A direct one is left alone.
    void erase(QPDFObjectHandle object);

    /// The dictionary at `key` of an indirect dictionary as an indirect object, so that it can be changed alone. One
    /// that stands directly in its owner is moved out of it; one that is missing, or is something else, is made.
    [[nodiscard]] QPDFObjectHandle dictionaryAt(QPDFObjectHandle owner, const std::string& key);

private:
    QPDF& m_pdf;
    PackedLinks* m_links = nullptr;
    std::optional<std::map<int, int>> m_generations; // of the file's objects, where it isn't zero
};

/// Objects of a file that is written anew as a whole.
class FileObjects : public ObjectStore {
public:
    using ObjectStore::ObjectStore;
    using Texts = std::unordered_map<int, std::string>; // by object number

    [[nodiscard]] QPDFObjectHandle reserve() override;
    void fill(QPDFObjectHandle reserved, QPDFObjectHandle value) override;
    void fillText(QPDFObjectHandle reserved, const std::string& value) override;
    [[nodiscard]] bool keepsTexts() const override { return m_keepsTexts; }
    [[nodiscard]] QPDFObjectHandle reserveStream() override;
    void fillStream(QPDFObjectHandle reserved, QPDFObjectHandle dictionary, const StreamContent& content) override;
    void noteChange(QPDFObjectHandle object) override;

    /// From now on objects that are filled with texts stay texts, which spares the time to build them: what QPDF has of
    /// them are empty dictionaries.
    void keepTexts() { m_keepsTexts = true; }
    void buildTexts() override;
    /// Makes objects of the file's links, too.
    void buildLinks();
    [[nodiscard]] const Texts& texts() const { return m_texts; }
    /// The text that stands for an object, a link's too; null for one that QPDF has itself.
    [[nodiscard]] const std::string* text(QPDFObjGen id) const;

private:
    bool m_keepsTexts = false;
    Texts m_texts;
};

/// New and changed objects, to be appended to the file that they belong to. Nothing but the objects asked for is read:
/// numbering through QPDF would first read every object of the file.
class UpdateObjects : public ObjectStore {
public:
    explicit UpdateObjects(QPDF& pdf);
    [[nodiscard]] QPDFObjectHandle reserve() override;
    void fill(QPDFObjectHandle reserved, QPDFObjectHandle value) override;
    [[nodiscard]] QPDFObjectHandle reserveStream() override;
    void fillStream(QPDFObjectHandle reserved, QPDFObjectHandle dictionary, const StreamContent& content) override;
    void noteChange(QPDFObjectHandle object) override;

    struct Entry {
        QPDFObjectHandle object;         ///< of a stream: its dictionary
        std::optional<QByteArray> bytes; ///< of a stream
    };
    /// Everything new and changed.
    [[nodiscard]] const std::map<QPDFObjGen, Entry>& entries() const { return m_entries; }
    /// True for one that the file doesn't have yet.
    [[nodiscard]] bool isNew(QPDFObjGen id) const { return id.getObj() >= m_firstNew; }
    /// One more than the highest number in use.
    [[nodiscard]] int size() const { return m_next; }

private:
    std::map<QPDFObjGen, Entry> m_entries;
    int m_next = 1;
    int m_firstNew = 1;
};
